/*
 * Certificates (RFC 5280, section 4.1): read, change, build. Nothing is signed or verified here: a caller fills the
 * fields, takes the bytes of GetCertificateToBeSignedPart, signs them elsewhere and stores the result with
 * SetCertificateSignature.
 *
 * The tree of fields is the only truth. No copy of decoded bytes is kept, so everything is encoded again, as DER. A
 * certificate belongs to one thread at a time: even the name getters may change it.
 */
#ifndef TLVFORGE_CERTIFICATE_H
#define TLVFORGE_CERTIFICATE_H

#include "tlvforge/extensions.h"
#include "tlvforge/names.h"
#include "tlvforge/status.h"
#include "tlvforge/time.h"

TLVFORGE_BEGIN

typedef struct Certificate Certificate;   /* Certificate (RFC 5280, 4.1) */
typedef struct Certificates Certificates; /* SEQUENCE OF Certificate, a list */

/* --- The objects --- */

/**
 * CreateCertificate makes a certificate with every required field in place and empty. The caller owns it. It does not
 * encode before issuer, subject and both times have been set (StatusAbsent).
 */
TLVFORGE_STATUS CreateCertificate(Certificate** certificate);

/**
 * CreateCertificateCopy makes a deep copy, owned by the caller. StatusBadArgument also for a certificate whose issuer,
 * subject or a time has never been set or read.
 */
TLVFORGE_STATUS CreateCertificateCopy(const Certificate* certificate, Certificate** copy);

/**
 * DecodeCertificate reads one BER certificate at the start of the bytes; what follows it is ignored. The caller owns
 * it.
 */
TLVFORGE_STATUS DecodeCertificate(const uint8_t* bytes, uint32_t length, Certificate** certificate);

/** EncodeCertificate writes the certificate as DER. StatusAbsent while a required field has no value. */
TLVFORGE_STATUS EncodeCertificate(const Certificate* certificate, uint8_t* buffer, uint32_t* length);

/** FreeCertificate frees a certificate with all that it owns. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeCertificate(Certificate* certificate);

/**
 * CreateCertificates makes an empty list, owned by the caller. The functions below are as those of a single
 * certificate.
 */
TLVFORGE_STATUS CreateCertificates(Certificates** certificates);
TLVFORGE_STATUS CreateCertificatesCopy(const Certificates* certificates, Certificates** copy);
TLVFORGE_STATUS DecodeCertificates(const uint8_t* bytes, uint32_t length, Certificates** certificates);
TLVFORGE_STATUS EncodeCertificates(const Certificates* certificates, uint8_t* buffer, uint32_t* length);
TLVFORGE_API Status FreeCertificates(Certificates* certificates);

/**
 * AddCertificateToCertificates appends a certificate, which the list adopts: the caller must not free it after success.
 */
TLVFORGE_STATUS AddCertificateToCertificates(Certificates* certificates, Certificate* certificate);

/** GetCertificatesCount stores the number of certificates in the list. */
TLVFORGE_STATUS GetCertificatesCount(const Certificates* certificates, uint32_t* count);

/**
 * GetCertificatesCertificate lends a member of the list. StatusBadArgument for an index at or beyond the count,
 * StatusAbsent for a null member.
 */
TLVFORGE_STATUS GetCertificatesCertificate(const Certificates* certificates, uint32_t index, Certificate** certificate);

/* --- Fields --- */

/**
 * GetCertificateVersion and SetCertificateVersion: the number on the wire, 0, 1 and 2 for the versions 1, 2 and 3.
 * Getting: 0 where the field is absent, StatusBufferTooSmall for a number of more than four bytes. Setting:
 * StatusBadArgument for any other number.
 */
TLVFORGE_STATUS GetCertificateVersion(const Certificate* certificate, int32_t* version);
TLVFORGE_STATUS SetCertificateVersion(Certificate* certificate, uint32_t version);

/**
 * GetCertificateSerialNumber copies the content bytes of the serial number, big-endian two's complement as on the wire.
 * A certificate that has none yet: length 0 and StatusOk.
 */
TLVFORGE_STATUS GetCertificateSerialNumber(const Certificate* certificate, uint8_t* buffer, uint32_t* length);

/**
 * ptr_GetCertificateSerialNumber lends the bytes of the serial number, until it is set again or the certificate is
 * freed.
 * @return the bytes; null when an argument is null or there are no bytes.
 */
TLVFORGE_API uint8_t* ptr_GetCertificateSerialNumber(const Certificate* certificate, uint32_t* length);

/**
 * SetCertificateSerialNumber stores big-endian content bytes as they are: neither sign nor minimal form is checked.
 * This differs from SetAsn1Integer, which takes the least significant byte first. StatusBadArgument for length 0.
 */
TLVFORGE_STATUS SetCertificateSerialNumber(Certificate* certificate, const uint8_t* bytes, uint32_t length);

/**
 * GetCertificateIssuer and GetCertificateSubject lend the name inside the certificate: what is added to it is added to
 * the certificate. A name that was never set is created empty, so the certificate is changed by reading.
 */
TLVFORGE_STATUS GetCertificateIssuer(Certificate* certificate, X509Name** name);
TLVFORGE_STATUS GetCertificateSubject(Certificate* certificate, X509Name** name);

/** SetCertificateIssuer and SetCertificateSubject store a copy of a name. After a failed copy the field is empty. */
TLVFORGE_STATUS SetCertificateIssuer(Certificate* certificate, const X509Name* name);
TLVFORGE_STATUS SetCertificateSubject(Certificate* certificate, const X509Name* name);

/**
 * SetCertificateIssuer_i and SetCertificateSubject_i store a copy of the name, or adopt it: the caller must not free it
 * after success, and it must not belong to another object then.
 * @param copy not 0 to copy the name, 0 to adopt it.
 */
TLVFORGE_STATUS SetCertificateIssuer_i(Certificate* certificate, X509Name* name, int32_t copy);
TLVFORGE_STATUS SetCertificateSubject_i(Certificate* certificate, X509Name* name, int32_t copy);

/**
 * GetCertificateValidNotBefore and GetCertificateValidNotAfter read a time, in UTC. A two-digit year below 50 is 20xx,
 * any other 19xx. StatusBadEncoding for a time without text, StatusBadValue for one that is too short, StatusBadTime
 * for one outside the years 1900 to 2100.
 */
TLVFORGE_STATUS GetCertificateValidNotBefore(const Certificate* certificate, LibraryTime* time);
TLVFORGE_STATUS GetCertificateValidNotAfter(const Certificate* certificate, LibraryTime* time);

/**
 * SetCertificateValidNotBefore and SetCertificateValidNotAfter store a time, in UTC: as UTCTime for a year below 2050,
 * as GeneralizedTime from then on. StatusBadTime for an invalid time, which a null pointer and the null time are.
 */
TLVFORGE_STATUS SetCertificateValidNotBefore(Certificate* certificate, const LibraryTime* time);
TLVFORGE_STATUS SetCertificateValidNotAfter(Certificate* certificate, const LibraryTime* time);

/**
 * GetCertificateIssuerUniqueId and GetCertificateSubjectUniqueId copy the bytes of a BIT STRING. StatusAbsent for an
 * absent or empty field.
 * @param unusedBits may be null; number of unused low bits in the last byte.
 */
TLVFORGE_STATUS GetCertificateIssuerUniqueId(const Certificate* certificate, uint8_t* buffer, uint32_t* length,
                                             uint8_t* unusedBits);
TLVFORGE_STATUS GetCertificateSubjectUniqueId(const Certificate* certificate, uint8_t* buffer, uint32_t* length,
                                              uint8_t* unusedBits);

/**
 * SetCertificateIssuerUniqueId and SetCertificateSubjectUniqueId replace the field; null bytes remove it.
 * @param unusedBits 0 to 7; a higher number stores an empty BIT STRING.
 */
TLVFORGE_STATUS SetCertificateIssuerUniqueId(Certificate* certificate, const uint8_t* bytes, uint32_t length,
                                             uint8_t unusedBits);
TLVFORGE_STATUS SetCertificateSubjectUniqueId(Certificate* certificate, const uint8_t* bytes, uint32_t length,
                                              uint8_t unusedBits);

/**
 * GetCertificateExtensions lends the handle of the certificate's extensions, for the functions of extensions.h. The
 * first extension that is added through it creates the list. It lives as long as the certificate and must never go to
 * FreeX509Extensions.
 */
TLVFORGE_STATUS GetCertificateExtensions(const Certificate* certificate, X509Extensions* extensions);

/**
 * SetCertificateExtensions replaces all extensions by a copy of the source's, which may be the certificate's own. A
 * source without a list removes the field. After a failed copy the field is absent.
 */
TLVFORGE_STATUS SetCertificateExtensions(Certificate* certificate, X509Extensions source);

/**
 * GetCertificateToBeSignedPart encodes tbsCertificate, the bytes that an issuer signs. For a certificate that was
 * decoded from other than DER they can differ from the bytes that its issuer signed.
 */
TLVFORGE_STATUS GetCertificateToBeSignedPart(const Certificate* certificate, uint8_t* buffer, uint32_t* length);

/* --- Extensions reached through the certificate --- */

/**
 * GetCertificateExtensionValue copies the value (the content of extnValue) of the first extension with an OID.
 * StatusNotFound without such an extension.
 */
TLVFORGE_STATUS GetCertificateExtensionValue(const Certificate* certificate, const uint8_t* oid, uint8_t* value,
                                             uint32_t* length);

/**
 * GetCertificateSubjectKeyIdentifier copies the key identifier of extension 2.5.29.14. StatusNotFound without the
 * extension; StatusOutOfMemory for an extension value of more than 1024 bytes, as intended (docs/oddities.md);
 * StatusBadEncoding.
 */
TLVFORGE_STATUS GetCertificateSubjectKeyIdentifier(const Certificate* certificate, uint8_t* keyId, uint32_t* length);

/**
 * SetCertificateSubjectKeyIdentifier replaces extension 2.5.29.14 by a non-critical one with the SHA-1 of the subject
 * public key, the content of its BIT STRING (RFC 5280, 4.2.1.2, method 1). StatusAbsent without a key,
 * StatusWorkBufferTooSmall for one above 512 bytes.
 */
TLVFORGE_STATUS SetCertificateSubjectKeyIdentifier(Certificate* certificate);

/**
 * GetCertificateAuthorityKeyIdentifier reads extension 2.5.29.35. Absent parts have length 0, or are null.
 * StatusNotFound without the extension, StatusWorkBufferTooSmall for a value of more than 1024 bytes,
 * StatusBadEncoding.
 * @param issuer may be null; the caller owns the names (FreeX509GeneralNames), also with StatusBufferTooSmall.
 */
TLVFORGE_STATUS GetCertificateAuthorityKeyIdentifier(const Certificate* certificate, uint8_t* keyId,
                                                     uint32_t* keyIdLength, X509GeneralNames** issuer, uint8_t* serial,
                                                     uint32_t* serialLength);

/**
 * GetCertificateAuthorityKeyIdentifier2 is the same with the first directory name of the issuer's general names.
 * @param issuer required here; the caller owns the name (FreeX509Name), also with StatusBufferTooSmall. Null without
 *     general names, and after every other failure, StatusBadArgument too; StatusNotFound when none of them is a
 *     directory name.
 */
TLVFORGE_STATUS GetCertificateAuthorityKeyIdentifier2(const Certificate* certificate, uint8_t* keyId,
                                                      uint32_t* keyIdLength, X509Name** issuer, uint8_t* serial,
                                                      uint32_t* serialLength);

/**
 * SetCertificateAuthorityKeyIdentifier replaces extension 2.5.29.35 by a non-critical one that names the issuer's
 * certificate by its subject key identifier, where it has one of up to 32 bytes, its issuer name and its serial number.
 * StatusWorkBufferTooSmall for a serial number of more than 64 bytes.
 */
TLVFORGE_STATUS SetCertificateAuthorityKeyIdentifier(Certificate* certificate, Certificate* issuerCertificate);

/**
 * SetCertificateAuthorityKeyIdentifier2 does the same from parts. Each may be null and is left out then;
 * StatusBadArgument for a null keyId without both issuer and serial.
 * @param issuer copied as the only general name.
 * @param serial big-endian content bytes, stored unchanged.
 */
TLVFORGE_STATUS SetCertificateAuthorityKeyIdentifier2(Certificate* certificate, const uint8_t* keyId,
                                                      uint32_t keyIdLength, const X509Name* issuer,
                                                      const uint8_t* serial, uint32_t serialLength);

/**
 * SetCertificateZelcryptKeyIdentifier replaces extension 1.2.643.3.123.3.1 by a non-critical one with a text as
 * UTF8String. StatusWorkBufferTooSmall for a text of more than about 128 bytes in UTF-8; the old extension is gone
 * then.
 * @param text zero-terminated, in code page 1251.
 */
TLVFORGE_STATUS SetCertificateZelcryptKeyIdentifier(Certificate* certificate, const char* text);

/**
 * IsCertificateCorrespondToAuthKeyIdent compares an authority key identifier with this certificate. Note the sense:
 * StatusOk for a match, StatusNotEqual for a difference. A keyId that isn't null decides alone, otherwise serial number
 * and issuer have to be equal (CompareX509Names). StatusBadArgument also when all three are null, or the issuer alone
 * and the serial number is equal; StatusBadValue for a certificate without serial number, StatusWorkBufferTooSmall for
 * one whose key identifier is longer than 32 bytes.
 */
TLVFORGE_STATUS IsCertificateCorrespondToAuthKeyIdent(Certificate* certificate, const uint8_t* keyId,
                                                      uint32_t keyIdLength, const X509Name* issuer,
                                                      const uint8_t* serial, uint32_t serialLength);

/* --- Public key. Algorithm ids and parameter sets are those of algorithms.h --- */

/**
 * GetCertificatePublicKey copies the content of the key's BIT STRING; a GOST key is an OCTET STRING element in there.
 */
TLVFORGE_STATUS GetCertificatePublicKey(const Certificate* certificate, uint8_t* key, uint32_t* length);

/** SetCertificatePublicKey stores the content of the key's BIT STRING unchanged. */
TLVFORGE_STATUS SetCertificatePublicKey(Certificate* certificate, const uint8_t* key, uint32_t length);

/**
 * SetCertificateGostR34102001PublicKey wraps a GOST key (RFC 4491, RFC 9215; both generations) as an OCTET STRING and
 * stores it. StatusWorkBufferTooSmall for a key that is longer than 256 bytes when wrapped.
 * @param key in the byte order of the wire.
 */
TLVFORGE_STATUS SetCertificateGostR34102001PublicKey(Certificate* certificate, const uint8_t* key, uint32_t length);

/**
 * GetCertificatePublicKeyGostR3410 unwraps the OCTET STRING of a GOST key without a look at its algorithm.
 * StatusBadEncoding for another key, and for a certificate without a key; StatusWorkBufferTooSmall for a wrapped key of
 * more than 270 bytes.
 */
TLVFORGE_STATUS GetCertificatePublicKeyGostR3410(const Certificate* certificate, uint8_t* key, uint32_t* length);

/**
 * GetCertificateDecodedPublicKeyGostR34102012 reads a GOST key of either generation with its parameter sets, and checks
 * that they go together. The sets are stored before that check. StatusUnknownOid an unknown algorithm or set,
 * StatusBadKeyForm not a GOST public key algorithm or parameters that don't fit it, StatusBadEncoding;
 * StatusBufferTooSmall, with the length untouched, also for a wrapped key of more than 168 bytes and for an algorithm
 * OID or parameters of more than 100.
 */
TLVFORGE_STATUS GetCertificateDecodedPublicKeyGostR34102012(const Certificate* certificate, uint8_t* key,
                                                            uint32_t* length, uint32_t* publicKeyParamSet,
                                                            uint32_t* digestParamSet, uint32_t* encryptionParamSet);

/**
 * GetCertificatePublicKeyAlgorithmOidAndParameters reads the algorithm of the key. One call is enough for both lengths.
 * StatusBufferTooSmall when either buffer is too small.
 * @param parameters may be null together with its length.
 */
TLVFORGE_STATUS GetCertificatePublicKeyAlgorithmOidAndParameters(const Certificate* certificate, uint8_t* oid,
                                                                 uint32_t* oidLength, uint8_t* parameters,
                                                                 uint32_t* parametersLength);

/**
 * SetCertificatePublicKeyAlgorithmOidAndParameters sets the algorithm of the key; the Id form takes a number of
 * algorithms.h (StatusUnknownId for an unknown one).
 */
TLVFORGE_STATUS SetCertificatePublicKeyAlgorithmOidAndParameters(Certificate* certificate, const uint8_t* oid,
                                                                 const uint8_t* parameters, uint32_t length);
TLVFORGE_STATUS SetCertificatePublicKeyAlgorithmIdAndParameters(Certificate* certificate, uint32_t id,
                                                                const uint8_t* parameters, uint32_t length);

/**
 * SetCertificateGostR34102001PublicKeyAlgorithmIdAndParameters sets the algorithm of the key with GOST parameters.
 * StatusUnknownId for an unknown number, StatusBadArgument for another form.
 */
TLVFORGE_STATUS SetCertificateGostR34102001PublicKeyAlgorithmIdAndParameters(
    Certificate* certificate, uint32_t algorithmId, uint8_t parametersForm, uint32_t publicKeyParamSet,
    uint32_t digestParamSet, uint32_t encryptionParamSet);

/* --- Signature --- */

/**
 * GetCertificateSignature copies the content of the signature's BIT STRING; SetCertificateSignature stores it
 * unchanged.
 * Getting: StatusAbsent while there is none.
 */
TLVFORGE_STATUS GetCertificateSignature(const Certificate* certificate, uint8_t* signature, uint32_t* length);
TLVFORGE_STATUS SetCertificateSignature(Certificate* certificate, const uint8_t* signature, uint32_t length);

/**
 * GetCertificateSignatureAlgorithmOidAndParameters reads the algorithm in tbsCertificate, which is the signed one,
 * never the outer. Outputs and statuses as GetCertificatePublicKeyAlgorithmOidAndParameters.
 */
TLVFORGE_STATUS GetCertificateSignatureAlgorithmOidAndParameters(const Certificate* certificate, uint8_t* oid,
                                                                 uint32_t* oidLength, uint8_t* parameters,
                                                                 uint32_t* parametersLength);

/**
 * SetCertificateSignatureAlgorithmOidAndParameters sets the algorithm in tbsCertificate and then the outer one. If the
 * second fails, the first stays changed.
 */
TLVFORGE_STATUS SetCertificateSignatureAlgorithmOidAndParameters(Certificate* certificate, const uint8_t* oid,
                                                                 const uint8_t* parameters, uint32_t length);

/**
 * SetCertificateGostR34102001SignatureAlgorithmIDAndParameters does the same with GOST parameters, as for the key.
 * SetCertificateGostR34102001SignatureAlgorithmID has no sets and takes the parametersForm 0 or 255 only
 * (StatusBadArgument).
 */
TLVFORGE_STATUS SetCertificateGostR34102001SignatureAlgorithmIDAndParameters(
    Certificate* certificate, uint32_t algorithmId, uint8_t parametersForm, uint32_t publicKeyParamSet,
    uint32_t digestParamSet, uint32_t encryptionParamSet);
TLVFORGE_STATUS SetCertificateGostR34102001SignatureAlgorithmID(Certificate* certificate, uint32_t algorithmId,
                                                                uint8_t parametersForm);

TLVFORGE_END

#endif
