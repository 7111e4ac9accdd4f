/*
 * Certificate revocation lists (RFC 5280, section 5): read, change, build, and look a certificate up. Nothing is signed
 * or verified here: a caller fills the fields, takes the bytes of GetX509CrlToBeSignedPart, signs them elsewhere and
 * stores the result with SetX509CrlSignature.
 *
 * As with certificates the tree of fields is the only truth, and what is written is encoded again, as DER. A CRL
 * belongs to one thread at a time: reading or looking up the issuer may change it.
 */
#ifndef TLVFORGE_CRL_H
#define TLVFORGE_CRL_H

#include "tlvforge/certificate.h"
#include "tlvforge/extensions.h"
#include "tlvforge/names.h"
#include "tlvforge/status.h"
#include "tlvforge/time.h"

TLVFORGE_BEGIN

typedef struct X509Crl X509Crl;                                 /* CertificateList (RFC 5280, 5.1) */
typedef struct X509Crls X509Crls;                               /* SEQUENCE OF X509Crl */
typedef struct X509RevokedCertificates X509RevokedCertificates; /* the revokedCertificates alone (RFC 5280, 5.1.2.6) */

/* --- The objects --- */

/**
 * CreateX509Crl makes a CRL with every required field in place and empty, without version, nextUpdate and entries. The
 * caller owns it. It does not encode before issuer and thisUpdate have been set (StatusAbsent).
 */
TLVFORGE_STATUS CreateX509Crl(X509Crl** crl);

/**
 * CreateX509CrlCopy makes a deep copy, owned by the caller. StatusBadArgument also for a CRL whose issuer has never
 * been set or read, or whose thisUpdate has never been set.
 */
TLVFORGE_STATUS CreateX509CrlCopy(const X509Crl* crl, X509Crl** copy);

/** DecodeX509Crl reads one BER CRL at the start of the bytes; what follows it is ignored. The caller owns it. */
TLVFORGE_STATUS DecodeX509Crl(const uint8_t* bytes, uint32_t length, X509Crl** crl);

/** EncodeX509Crl writes the CRL as DER. StatusAbsent while a required field has no value. */
TLVFORGE_STATUS EncodeX509Crl(const X509Crl* crl, uint8_t* buffer, uint32_t* length);

/** FreeX509Crl frees a CRL with all that it owns. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeX509Crl(X509Crl* crl);

/** CreateX509Crls makes an empty list, owned by the caller. The four below are as those of a single CRL. */
TLVFORGE_STATUS CreateX509Crls(X509Crls** crls);
TLVFORGE_STATUS CreateX509CrlsCopy(const X509Crls* crls, X509Crls** copy);
TLVFORGE_STATUS DecodeX509Crls(const uint8_t* bytes, uint32_t length, X509Crls** crls);
TLVFORGE_STATUS EncodeX509Crls(const X509Crls* crls, uint8_t* buffer, uint32_t* length);
TLVFORGE_API Status FreeX509Crls(X509Crls* crls);

/** AddX509CrlToX509Crls appends a CRL, which the list adopts: the caller must not free it after success. */
TLVFORGE_STATUS AddX509CrlToX509Crls(X509Crls* crls, X509Crl* crl);

/** GetX509CrlsCount stores the number of CRLs in the list. */
TLVFORGE_STATUS GetX509CrlsCount(const X509Crls* crls, uint32_t* count);

/**
 * GetX509CrlsCrl lends a member of the list. StatusBadArgument for an index at or beyond the count, StatusAbsent for a
 * null member.
 */
TLVFORGE_STATUS GetX509CrlsCrl(const X509Crls* crls, uint32_t index, X509Crl** crl);

/**
 * GetX509CrlToBeSignedPart encodes tbsCertList, the bytes that an issuer signs. For a CRL that was decoded from other
 * than DER they can differ from the bytes that its issuer signed.
 */
TLVFORGE_STATUS GetX509CrlToBeSignedPart(const X509Crl* crl, uint8_t* buffer, uint32_t* length);

/* --- Revoked certificates, counted from 0 in the order of the list. An index at or beyond the count is
 *    StatusBadArgument, a CRL without the field StatusAbsent --- */

/**
 * AddX509CrlRevokedCertificate appends an entry; the list is neither sorted nor searched for the same number. The first
 * entry creates the field, which stays even if the entry itself fails. StatusBadTime.
 * @param serial big-endian content bytes, stored unchanged: neither sign nor minimal form is checked, and an empty
 *     number can't be decoded again.
 * @param index may be null; that of the entry.
 */
TLVFORGE_STATUS AddX509CrlRevokedCertificate(X509Crl* crl, const uint8_t* serial, uint32_t serialLength,
                                             const LibraryTime* revocationDate, uint32_t* index);

/** GetX509CrlRevokedCertificateCount stores the number of entries; 0, with StatusOk, without the field. */
TLVFORGE_STATUS GetX509CrlRevokedCertificateCount(const X509Crl* crl, uint32_t* count);

/** GetX509CrlRevokedCertificateSerialNumber copies the content bytes of an entry's serial number, big-endian. */
TLVFORGE_STATUS GetX509CrlRevokedCertificateSerialNumber(const X509Crl* crl, uint32_t index, uint8_t* buffer,
                                                         uint32_t* length);

/**
 * GetX509CrlRevokedCertificateRevokationDate reads an entry's date, in UTC. Statuses of the text as
 * GetX509CrlThisUpdate. The spelling of the name is intended (docs/conventions.md).
 */
TLVFORGE_STATUS GetX509CrlRevokedCertificateRevokationDate(const X509Crl* crl, uint32_t index,
                                                           LibraryTime* revocationDate);

/**
 * GetX509CrlRevokedCertificateExtensions lends the handle of an entry's extensions, for the functions of extensions.h:
 * what is added through it is added to the entry. It lives as long as the entry and must never go to
 * FreeX509Extensions.
 */
TLVFORGE_STATUS GetX509CrlRevokedCertificateExtensions(const X509Crl* crl, uint32_t index, X509Extensions* extensions);

/**
 * ClearX509CrlRevokedCertificates frees all entries and leaves an empty list, which is encoded as an empty field;
 * RemoveX509CrlRevokedCertificates takes the field away as well. StatusOk without the field.
 */
TLVFORGE_STATUS ClearX509CrlRevokedCertificates(X509Crl* crl);
TLVFORGE_STATUS RemoveX509CrlRevokedCertificates(X509Crl* crl);

/**
 * CreateX509RevokedCertificates makes a list of entries that belongs to no CRL, for its encoding alone. The caller owns
 * it. The functions below are as those of a CRL's entries.
 */
TLVFORGE_STATUS CreateX509RevokedCertificates(X509RevokedCertificates** list);
TLVFORGE_STATUS AddX509RevokedCertificatesRevokedCertificate(X509RevokedCertificates* list, const uint8_t* serial,
                                                             uint32_t serialLength, const LibraryTime* revocationDate,
                                                             uint32_t* index);
TLVFORGE_STATUS GetX509RevokedCertificatesRevokedCertificateExtensions(const X509RevokedCertificates* list,
                                                                       uint32_t index, X509Extensions* extensions);

/** EncodeX509RevokedCertificates writes the SEQUENCE OF the entries as DER. */
TLVFORGE_STATUS EncodeX509RevokedCertificates(const X509RevokedCertificates* list, uint8_t* buffer, uint32_t* length);

/** FreeX509RevokedCertificates frees the list with its entries. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeX509RevokedCertificates(X509RevokedCertificates* list);

/* --- Fields --- */

/**
 * GetX509CrlVersion and SetX509CrlVersion: the number on the wire, 0 or 1 for the versions 1 and 2.
 * Getting: StatusAbsent where the field is absent, as it is in CRLs of version 1 and in a new one; StatusBufferTooSmall
 * for a number of more than four bytes. Setting: StatusBadArgument for any other number; a 0 is written too, and
 * nothing removes the field again.
 */
TLVFORGE_STATUS GetX509CrlVersion(const X509Crl* crl, int32_t* version);
TLVFORGE_STATUS SetX509CrlVersion(X509Crl* crl, uint32_t version);

/**
 * GetX509CrlIssuer lends the name inside the CRL: what is added to it is added to the CRL. A name that was never set is
 * created empty, so the CRL is changed by reading.
 */
TLVFORGE_STATUS GetX509CrlIssuer(X509Crl* crl, X509Name** name);

/** SetX509CrlIssuer stores a copy of a name. After a failed copy the field is empty. */
TLVFORGE_STATUS SetX509CrlIssuer(X509Crl* crl, const X509Name* name);

/**
 * GetX509CrlThisUpdate and GetX509CrlNextUpdate read a time, in UTC. A two-digit year below 50 is 20xx, any other 19xx.
 * StatusBadEncoding for a time without text, as in a new CRL, StatusBadValue for one that is too short, StatusBadTime
 * for one outside the years 1900 to 2100; StatusAbsent without nextUpdate.
 */
TLVFORGE_STATUS GetX509CrlThisUpdate(const X509Crl* crl, LibraryTime* time);
TLVFORGE_STATUS GetX509CrlNextUpdate(const X509Crl* crl, LibraryTime* time);

/**
 * SetX509CrlThisUpdate and SetX509CrlNextUpdate store a time, in UTC: as UTCTime for a year below 2050, as
 * GeneralizedTime from then on. StatusBadTime for an invalid time, which a null pointer and the null time are; the
 * field stays as it was then.
 */
TLVFORGE_STATUS SetX509CrlThisUpdate(X509Crl* crl, const LibraryTime* time);
TLVFORGE_STATUS SetX509CrlNextUpdate(X509Crl* crl, const LibraryTime* time);

/** RemoveX509CrlNextUpdate takes the field away. StatusOk where it is absent already. */
TLVFORGE_STATUS RemoveX509CrlNextUpdate(X509Crl* crl);

/**
 * GetX509CrlExtensions lends the handle of the CRL's extensions, for the functions of extensions.h. The first extension
 * that is added through it creates the list. It lives as long as the CRL and must never go to FreeX509Extensions.
 */
TLVFORGE_STATUS GetX509CrlExtensions(const X509Crl* crl, X509Extensions* extensions);

/**
 * SetX509CrlAuthorityKeyIdentifier replaces extension 2.5.29.35 by a non-critical one that names the certificate of the
 * CRL's signer: its subject key identifier, where it has one of up to 32 bytes, the name of its issuer and its serial
 * number. StatusWorkBufferTooSmall for a serial number of more than 64 bytes.
 */
TLVFORGE_STATUS SetX509CrlAuthorityKeyIdentifier(X509Crl* crl, Certificate* issuerCertificate);

/**
 * SetX509CrlAuthorityKeyIdentifier2 does the same from parts.
 * @param issuer required; copied as the only general name.
 * @param keyId, serial either may be null and is left out then, not both (StatusBadArgument).
 * @param serial big-endian content bytes, stored unchanged.
 */
TLVFORGE_STATUS SetX509CrlAuthorityKeyIdentifier2(X509Crl* crl, const uint8_t* keyId, uint32_t keyIdLength,
                                                  const X509Name* issuer, const uint8_t* serial, uint32_t serialLength);

/* --- Lookup --- */

/**
 * FindX509CrlFind stores the index of the first entry that revokes a certificate. An entry belongs to the CRL's issuer
 * or, in an indirect CRL, to the one that the last certificateIssuer extension (2.5.29.29) up to it names; the last
 * directory name in there counts. Names are compared as DER and serial numbers as bytes. StatusNotFound without such an
 * entry. The first entry with a fault ends the search, a match after it isn't seen: StatusBufferTooSmall for a serial
 * number above 150 bytes or a certificateIssuer above 1500, also for a CRL issuer above 1500; StatusBadEncoding and
 * others of DecodeX509GeneralNames.
 * @param issuer, serial those of the certificate.
 */
TLVFORGE_STATUS FindX509CrlFind(X509Crl* crl, const X509Name* issuer, const uint8_t* serial, uint32_t serialLength,
                                uint32_t* index);

/* --- Signature. Algorithm ids and parameter sets are those of algorithms.h --- */

/**
 * GetX509CrlSignature copies the content of the signature's BIT STRING; SetX509CrlSignature stores it unchanged.
 * Getting: StatusAbsent while there is none.
 */
TLVFORGE_STATUS GetX509CrlSignature(const X509Crl* crl, uint8_t* signature, uint32_t* length);
TLVFORGE_STATUS SetX509CrlSignature(X509Crl* crl, const uint8_t* signature, uint32_t length);

/**
 * GetX509CrlSignatureAlgorithmOidAndParameters reads the algorithm in tbsCertList, which is the signed one, never the
 * outer. One call is enough for both lengths. StatusBufferTooSmall when either buffer is too small.
 * @param parameters may be null together with its length.
 */
TLVFORGE_STATUS GetX509CrlSignatureAlgorithmOidAndParameters(const X509Crl* crl, uint8_t* oid, uint32_t* oidLength,
                                                             uint8_t* parameters, uint32_t* parametersLength);

/**
 * SetX509CrlSignatureAlgorithmOidAndParameters sets the algorithm in tbsCertList and then the outer one. If the second
 * fails, the first stays changed.
 */
TLVFORGE_STATUS SetX509CrlSignatureAlgorithmOidAndParameters(X509Crl* crl, const uint8_t* oid,
                                                             const uint8_t* parameters, uint32_t length);

/**
 * SetX509CrlGostR34102001SignatureAlgorithmIDAndParameters does the same with GOST parameters. StatusUnknownId for an
 * unknown number, StatusBadArgument for another form.
 */
TLVFORGE_STATUS SetX509CrlGostR34102001SignatureAlgorithmIDAndParameters(X509Crl* crl, uint32_t algorithmId,
                                                                         uint8_t parametersForm,
                                                                         uint32_t publicKeyParamSet,
                                                                         uint32_t digestParamSet,
                                                                         uint32_t encryptionParamSet);

/**
 * SetX509CrlGostR34102001SignatureAlgorithmID has no sets and takes the parametersForm 0 or 255 only
 * (StatusBadArgument); of the number only the low byte counts.
 */
TLVFORGE_STATUS SetX509CrlGostR34102001SignatureAlgorithmID(X509Crl* crl, uint32_t algorithmId,
                                                            uint32_t parametersForm);

TLVFORGE_END

#endif
