/*
 * Codecs of attribute values, and the record lists of advanced signatures (RFC 2634, RFC 5035, RFC 5126).
 *
 * Attributes carry their values as bytes, see attributes.h. The codecs here turn those bytes into plain arguments and
 * back. They do not look at the attribute's OID: the ones that go with a codec are named at its functions. A value is
 * one whole element at the start of the bytes; what follows it is ignored.
 *
 * Seven encoders, each of which says so, know no capacity: they store the length and write all of it whatever *length
 * held, so that the caller must ask for the size first. They never return StatusBufferTooSmall.
 */
#ifndef TLVFORGE_ATTRIBUTE_VALUES_H
#define TLVFORGE_ATTRIBUTE_VALUES_H

#include "tlvforge/crl.h"
#include "tlvforge/extensions.h"
#include "tlvforge/names.h"
#include "tlvforge/ocsp.h"
#include "tlvforge/status.h"
#include "tlvforge/time.h"

TLVFORGE_BEGIN

/* Lists of references to certificates and to revocation data, each owned by the caller and freed by its own Free. */
typedef struct ESSCertIDs ESSCertIDs;     /* certificates by SHA-1 hashes: ESSCertID (RFC 2634, 5.4.1) */
typedef struct ESSCertIDsV2 ESSCertIDsV2; /* certificates by hashes of any algorithm: ESSCertIDv2 (RFC 5035, 4) */
typedef struct OtherCertIDs OtherCertIDs; /* the same in the older form: OtherCertID (RFC 5126, 5.7.3.3) */
typedef struct CrlListIDs CrlListIDs;     /* CRLs: CrlValidatedID (RFC 5126, 6.2.2) */
typedef struct OcspListIDs OcspListIDs;   /* OCSP responses: OcspResponsesID (RFC 5126, 6.2.2) */
typedef struct CrlOcspRefs CrlOcspRefs;   /* one for each certificate of a path: CrlOcspRef (RFC 5126, 6.2.2) */

/* ---- Simple values: each pair of functions exists under the names of several attributes ---- */

/**
 * DecodeRsaAttributeContentTypeValue copies the length-prefixed OID of an OBJECT IDENTIFIER, and
 * EncodeRsaAttributeContentTypeValue is the reverse; DecodeAsn1Oid and EncodeAsn1Oid under the names of attributes.
 * ContentType: 1.2.840.113549.1.9.3.
 */
TLVFORGE_STATUS DecodeRsaAttributeContentTypeValue(const uint8_t* data, uint32_t length, uint8_t* oid,
                                                   uint32_t* oidLength);
TLVFORGE_STATUS EncodeRsaAttributeContentTypeValue(const uint8_t* oid, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS DecodeRsaAttributeChannelCspClassValue(const uint8_t* data, uint32_t length, uint8_t* oid,
                                                       uint32_t* oidLength);
TLVFORGE_STATUS EncodeRsaAttributeChannelCspClassValue(const uint8_t* oid, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS DecodeRsaAttributeRequestCertificateStatusValue(const uint8_t* data, uint32_t length, uint8_t* oid,
                                                                uint32_t* oidLength);
TLVFORGE_STATUS EncodeRsaAttributeRequestCertificateStatusValue(const uint8_t* oid, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS DecodeRsaAttributeSecurityTokenTypeValue(const uint8_t* data, uint32_t length, uint8_t* oid,
                                                         uint32_t* oidLength);
TLVFORGE_STATUS EncodeRsaAttributeSecurityTokenTypeValue(const uint8_t* oid, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS DecodeRsaAttributeSignatureConfirmationTypeValue(const uint8_t* data, uint32_t length, uint8_t* oid,
                                                                 uint32_t* oidLength);
TLVFORGE_STATUS EncodeRsaAttributeSignatureConfirmationTypeValue(const uint8_t* oid, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS DecodeRsaAttributeUsageValue(const uint8_t* data, uint32_t length, uint8_t* oid, uint32_t* oidLength);
TLVFORGE_STATUS EncodeRsaAttributeUsageValue(const uint8_t* oid, uint8_t* buffer, uint32_t* length);

/**
 * DecodeRsaAttributeValidityPeriodValue stores the number of an INTEGER, and EncodeRsaAttributeValidityPeriodValue is
 * the reverse; DecodeAsn1Int32 and EncodeAsn1Int32 under the names of attributes. Decoding: StatusBadArgument for
 * length 0, StatusBadEncoding for an ENUMERATED, StatusBufferTooSmall for a number of more than four bytes.
 */
TLVFORGE_STATUS DecodeRsaAttributeValidityPeriodValue(const uint8_t* data, uint32_t length, int32_t* number);
TLVFORGE_STATUS EncodeRsaAttributeValidityPeriodValue(int32_t number, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS DecodeRsaAttributePacketDigestCountValue(const uint8_t* data, uint32_t length, int32_t* number);
TLVFORGE_STATUS EncodeRsaAttributePacketDigestCountValue(int32_t number, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS DecodeRsaAttributePacketDigestNumberValue(const uint8_t* data, uint32_t length, int32_t* number);
TLVFORGE_STATUS EncodeRsaAttributePacketDigestNumberValue(int32_t number, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS DecodeRsaAttributePinNumberValue(const uint8_t* data, uint32_t length, int32_t* number);
TLVFORGE_STATUS EncodeRsaAttributePinNumberValue(int32_t number, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS DecodeRsaAttributeRequestCertificateTypeValue(const uint8_t* data, uint32_t length, int32_t* number);
TLVFORGE_STATUS EncodeRsaAttributeRequestCertificateTypeValue(int32_t number, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS DecodeRsaAttributeTokenSignatureNumberValue(const uint8_t* data, uint32_t length, int32_t* number);
TLVFORGE_STATUS EncodeRsaAttributeTokenSignatureNumberValue(int32_t number, uint8_t* buffer, uint32_t* length);

/**
 * DecodeRsaAttributeMessageDigestValue copies the content of an OCTET STRING, and EncodeRsaAttributeMessageDigestValue
 * is the reverse. MessageDigest: 1.2.840.113549.1.9.4.
 */
TLVFORGE_STATUS DecodeRsaAttributeMessageDigestValue(const uint8_t* data, uint32_t length, uint8_t* value,
                                                     uint32_t* valueLength);
TLVFORGE_STATUS EncodeRsaAttributeMessageDigestValue(const uint8_t* value, uint32_t valueLength, uint8_t* buffer,
                                                     uint32_t* length);
TLVFORGE_STATUS DecodeRsaAttributeCyksCertificateValue(const uint8_t* data, uint32_t length, uint8_t* value,
                                                       uint32_t* valueLength);
TLVFORGE_STATUS EncodeRsaAttributeCyksCertificateValue(const uint8_t* value, uint32_t valueLength, uint8_t* buffer,
                                                       uint32_t* length);
TLVFORGE_STATUS DecodeRsaAttributeTemplateDigestValue(const uint8_t* data, uint32_t length, uint8_t* value,
                                                      uint32_t* valueLength);
TLVFORGE_STATUS EncodeRsaAttributeTemplateDigestValue(const uint8_t* value, uint32_t valueLength, uint8_t* buffer,
                                                      uint32_t* length);
TLVFORGE_STATUS DecodeRsaAttributeX509CertificateValue(const uint8_t* data, uint32_t length, uint8_t* value,
                                                       uint32_t* valueLength);
TLVFORGE_STATUS EncodeRsaAttributeX509CertificateValue(const uint8_t* value, uint32_t valueLength, uint8_t* buffer,
                                                       uint32_t* length);
TLVFORGE_STATUS DecodeRsaAttributeZelcryptPubKeyValue(const uint8_t* data, uint32_t length, uint8_t* value,
                                                      uint32_t* valueLength);
TLVFORGE_STATUS EncodeRsaAttributeZelcryptPubKeyValue(const uint8_t* value, uint32_t valueLength, uint8_t* buffer,
                                                      uint32_t* length);

/** DecodeRsaAttributeTokenSerialNumberValue copies the bytes of a UTF8String, without a terminating zero. */
TLVFORGE_STATUS DecodeRsaAttributeTokenSerialNumberValue(const uint8_t* data, uint32_t length, uint8_t* text,
                                                         uint32_t* textLength);
/** EncodeRsaAttributeTokenSerialNumberValue is the reverse; the bytes are not checked. */
TLVFORGE_STATUS EncodeRsaAttributeTokenSerialNumberValue(const uint8_t* text, uint32_t textLength, uint8_t* buffer,
                                                         uint32_t* length);

/**
 * DecodeRsaAttributeSigningTimeValue stores the time of a UTCTime or GeneralizedTime, and
 * EncodeRsaAttributeSigningTimeValue is the reverse; DecodeTime and EncodeTime under the name of SigningTime,
 * 1.2.840.113549.1.9.5. Writing a time that isn't set is StatusAbsent.
 */
TLVFORGE_STATUS DecodeRsaAttributeSigningTimeValue(const uint8_t* data, uint32_t length, LibraryTime* time);
TLVFORGE_STATUS EncodeRsaAttributeSigningTimeValue(const LibraryTime* time, uint8_t* buffer, uint32_t* length);

/* ---- Values with several fields ---- */

/**
 * DecodeRsaAttributeValidityValue stores the two times of a Validity (RFC 5280, 4.1.2.5). StatusBadEncoding,
 * StatusBadValue, StatusBadTime.
 */
TLVFORGE_STATUS DecodeRsaAttributeValidityValue(const uint8_t* data, uint32_t length, LibraryTime* notBefore,
                                                LibraryTime* notAfter);
/**
 * EncodeRsaAttributeValidityValue writes each below the year 2050 as UTCTime. StatusBadTime for the null time.
 */
TLVFORGE_STATUS EncodeRsaAttributeValidityValue(const LibraryTime* notBefore, const LibraryTime* notAfter,
                                                uint8_t* buffer, uint32_t* length);

/**
 * DecodeRsaAttributeExtSubjInfoValue copies a length-prefixed OID and the whole element that goes with it. Both outputs
 * are tried; the first failure is the result.
 */
TLVFORGE_STATUS DecodeRsaAttributeExtSubjInfoValue(const uint8_t* data, uint32_t length, uint8_t* oid,
                                                   uint32_t* oidLength, uint8_t* value, uint32_t* valueLength);
/**
 * EncodeRsaAttributeExtSubjInfoValue is the reverse.
 * @param value one whole element, which is not checked.
 */
TLVFORGE_STATUS EncodeRsaAttributeExtSubjInfoValue(const uint8_t* oid, const uint8_t* value, uint32_t valueLength,
                                                   uint8_t* buffer, uint32_t* length);

/**
 * DecodeDocInfo stores the number, texts and times that describe a document. Absent texts have length 0, absent times
 * become the null time. All fields are read whatever happens, and the last failure is the result.
 */
TLVFORGE_STATUS DecodeDocInfo(const uint8_t* data, uint32_t length, int32_t* docType, uint8_t* text0,
                              uint32_t* text0Length, uint8_t* text1, uint32_t* text1Length, uint8_t* text2,
                              uint32_t* text2Length, LibraryTime* time3, LibraryTime* time4, uint8_t* text5,
                              uint32_t* text5Length);
/**
 * EncodeDocInfo leaves out texts that are null, and times that are null or the null time. StatusOutOfMemory also for a
 * time that can't be written. text2 is taken and ignored: field [2] is never written.
 */
TLVFORGE_STATUS EncodeDocInfo(uint32_t docType, const uint8_t* text0, uint32_t text0Length, const uint8_t* text1,
                              uint32_t text1Length, const uint8_t* text2, uint32_t text2Length,
                              const LibraryTime* time3, const LibraryTime* time4, const uint8_t* text5,
                              uint32_t text5Length, uint8_t* buffer, uint32_t* length);

/* ---- Signing certificates ---- */

/**
 * DecodeRsaAttributeSigningCertificateValue reads a SigningCertificate (RFC 2634, 5.4; 1.2.840.113549.1.9.16.2.12), and
 * the two functions after it a SigningCertificateV2 (RFC 5035, 3; 1.2.840.113549.1.9.16.2.47) and an
 * OtherSigningCertificate (RFC 5126, 5.7.3.3; 1.2.840.113549.1.9.16.2.19). The caller owns both lists; policies is null
 * when there are none. Both are null after every failure but StatusBadArgument.
 */
TLVFORGE_STATUS DecodeRsaAttributeSigningCertificateValue(const uint8_t* data, uint32_t length, ESSCertIDs** certs,
                                                          ExtensionCertificatePolicies** policies);
TLVFORGE_STATUS DecodeRsaAttributeSigningCertificateV2Value(const uint8_t* data, uint32_t length, ESSCertIDsV2** certs,
                                                            ExtensionCertificatePolicies** policies);
TLVFORGE_STATUS DecodeRsaAttributeOtherSigningCertificateValue(const uint8_t* data, uint32_t length,
                                                               OtherCertIDs** certs,
                                                               ExtensionCertificatePolicies** policies);
/**
 * EncodeRsaAttributeSigningCertificateValue and the two functions after it write such a value; they know no capacity.
 * policies may be null, and is written as by EncodeExtensionCertificatePolicies. The lists stay the caller's.
 */
TLVFORGE_STATUS EncodeRsaAttributeSigningCertificateValue(const ESSCertIDs* certs,
                                                          const ExtensionCertificatePolicies* policies, uint8_t* buffer,
                                                          uint32_t* length);
TLVFORGE_STATUS EncodeRsaAttributeSigningCertificateV2Value(const ESSCertIDsV2* certs,
                                                            const ExtensionCertificatePolicies* policies,
                                                            uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS EncodeRsaAttributeOtherSigningCertificateValue(const OtherCertIDs* certs,
                                                               const ExtensionCertificatePolicies* policies,
                                                               uint8_t* buffer, uint32_t* length);

/** DecodeOtherCertIDs reads a SEQUENCE OF OtherCertID (RFC 5126, 6.2.1); the caller owns the list. */
TLVFORGE_STATUS DecodeOtherCertIDs(const uint8_t* data, uint32_t length, OtherCertIDs** list);
/** EncodeOtherCertIDs writes one; it knows no capacity. */
TLVFORGE_STATUS EncodeOtherCertIDs(const OtherCertIDs* list, uint8_t* buffer, uint32_t* length);

/* ---- Revocation data ---- */

/**
 * DecodeRsaAttributeCompleteRevocationRefs reads CompleteRevocationRefs (RFC 5126, 6.2.2; 1.2.840.113549.1.9.16.2.22).
 * The caller owns the list. Its other references have the identifier octet 22 here, where the standard has A2.
 */
TLVFORGE_STATUS DecodeRsaAttributeCompleteRevocationRefs(const uint8_t* data, uint32_t length, CrlOcspRefs** list);
/** EncodeRsaAttributeCompleteRevocationRefs writes one; it knows no capacity. */
TLVFORGE_STATUS EncodeRsaAttributeCompleteRevocationRefs(const CrlOcspRefs* list, uint8_t* buffer, uint32_t* length);

/**
 * DecodeRsaAttributeRevocationValues reads RevocationValues (RFC 5126, 6.3.4; 1.2.840.113549.1.9.16.2.24). Its two
 * lists are tagged implicitly, and its other values have the identifier octet 22.
 * @param crls, ocsps owned by the caller, also with StatusBufferTooSmall; null when absent, and after any failure but
 *     StatusBadArgument.
 * @param otherOid, otherValue length-prefixed, and a whole element; both lengths are 0 when absent.
 */
TLVFORGE_STATUS DecodeRsaAttributeRevocationValues(const uint8_t* data, uint32_t length, X509Crls** crls,
                                                   OcspBasicResponses** ocsps, uint8_t* otherOid,
                                                   uint32_t* otherOidLength, uint8_t* otherValue,
                                                   uint32_t* otherValueLength);
/**
 * EncodeRsaAttributeRevocationValues writes the parts that aren't null; it knows no capacity. Each list may be null;
 * the other values need their OID, their value and its length, or are left out. The lists stay the caller's.
 */
TLVFORGE_STATUS EncodeRsaAttributeRevocationValues(const X509Crls* crls, const OcspBasicResponses* ocsps,
                                                   const uint8_t* otherOid, const uint8_t* otherValue,
                                                   uint32_t otherLength, uint8_t* buffer, uint32_t* length);

/**
 * DecodeRsaAttributeAtsHashIndex reads an ATSHashIndex (ETSI TS 101 733, 6.4.2; 0.4.0.1733.2.5). The caller owns the
 * three lists; they are null after every failure but StatusBadArgument. A value without an algorithm reads as SHA-256.
 * A buffer for the OID or the parameters that is too small is left as it was and its length stored, with StatusOk: the
 * caller compares the lengths.
 */
TLVFORGE_STATUS DecodeRsaAttributeAtsHashIndex(const uint8_t* data, uint32_t length, uint8_t* oid, uint32_t* oidLength,
                                               uint8_t* parameters, uint32_t* parametersLength,
                                               OctetStrings** certificates, OctetStrings** crls,
                                               OctetStrings** attributes);
/**
 * EncodeRsaAttributeAtsHashIndex writes one; it knows no capacity. SHA-256 without parameters is the default and isn't
 * written.
 * @param parameters a whole element, may be null. The lists stay the caller's.
 */
TLVFORGE_STATUS EncodeRsaAttributeAtsHashIndex(const uint8_t* oid, const uint8_t* parameters, uint32_t parametersLength,
                                               const OctetStrings* certificates, const OctetStrings* crls,
                                               const OctetStrings* attributes, uint8_t* buffer, uint32_t* length);

/* ---- Record lists ---- */

/** CreateESSCertIDs and the functions after it make an empty list, owned by the caller. */
TLVFORGE_STATUS CreateESSCertIDs(ESSCertIDs** list);
TLVFORGE_STATUS CreateESSCertIDsV2(ESSCertIDsV2** list);
TLVFORGE_STATUS CreateOtherCertIDs(OtherCertIDs** list);
TLVFORGE_STATUS CreateCrlListIDs(CrlListIDs** list);
TLVFORGE_STATUS CreateOcspListIDs(OcspListIDs** list);
TLVFORGE_STATUS CreateCrlOcspRefs(CrlOcspRefs** list);

/** FreeESSCertIDs and the functions after it free a list with its members. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeESSCertIDs(ESSCertIDs* list);
TLVFORGE_API Status FreeESSCertIDsV2(ESSCertIDsV2* list);
TLVFORGE_API Status FreeOtherCertIDs(OtherCertIDs* list);
TLVFORGE_API Status FreeCrlListIDs(CrlListIDs* list);
TLVFORGE_API Status FreeOcspListIDs(OcspListIDs* list);
TLVFORGE_API Status FreeCrlOcspRefs(CrlOcspRefs* list);

/** GetESSCertIDCount and the functions after it store the number of members. */
TLVFORGE_STATUS GetESSCertIDCount(const ESSCertIDs* list, uint32_t* count);
TLVFORGE_STATUS GetESSCertIDV2Count(const ESSCertIDsV2* list, uint32_t* count);
TLVFORGE_STATUS GetOtherCertIDCount(const OtherCertIDs* list, uint32_t* count);
TLVFORGE_STATUS GetCrlListIDsCount(const CrlListIDs* list, uint32_t* count);
TLVFORGE_STATUS GetOcspListIDsCount(const OcspListIDs* list, uint32_t* count);
TLVFORGE_STATUS GetCrlOcspRefCount(const CrlOcspRefs* list, uint32_t* count);

/*
 * The Information functions below read one member. Each output follows the buffer rule by itself, a length may not be
 * null; StatusBufferTooSmall doesn't keep the others from being read, and is the result at the end. Handles are lent,
 * and their out-pointers may be null. StatusBadArgument for an index out of range, StatusBadEncoding for a hash or
 * responder in an unknown form.
 */

/**
 * AddESSCertIDToList adds a certificate by its SHA-1 hash (ESSCertID, RFC 2634, 5.4.1).
 * @param issuer, serial both or neither may be null, otherwise StatusBadArgument; the names are copied.
 */
TLVFORGE_STATUS AddESSCertIDToList(ESSCertIDs* list, const uint8_t* hash, uint32_t hashLength,
                                   const X509GeneralNames* issuer, const uint8_t* serial, uint32_t serialLength);
/** GetESSCertIDInformation reads a member. Without issuer and serial: a null issuer and a serial of length 0. */
TLVFORGE_STATUS GetESSCertIDInformation(const ESSCertIDs* list, uint32_t index, uint8_t* hash, uint32_t* hashLength,
                                        X509GeneralNames** issuer, uint8_t* serial, uint32_t* serialLength);

/**
 * AddESSCertIDv2ToList adds a certificate by a hash (ESSCertIDv2, RFC 5035, 4).
 * @param oid of the hash algorithm, length-prefixed.
 * @param parameters a whole element, may be null. SHA-256 without parameters is the default and isn't written.
 * @param issuer, serial as AddESSCertIDToList.
 */
TLVFORGE_STATUS AddESSCertIDv2ToList(ESSCertIDsV2* list, const uint8_t* oid, const uint8_t* parameters,
                                     uint32_t parametersLength, const uint8_t* hash, uint32_t hashLength,
                                     const X509GeneralNames* issuer, const uint8_t* serial, uint32_t serialLength);
/**
 * GetESSCertIDV2Information reads a member. StatusAbsent, with nothing stored, for one that lacks its algorithm or
 * hash.
 * @param issuer, serial as GetESSCertIDInformation.
 */
TLVFORGE_STATUS GetESSCertIDV2Information(const ESSCertIDsV2* list, uint32_t index, uint8_t* oid, uint32_t* oidLength,
                                          uint8_t* parameters, uint32_t* parametersLength, uint8_t* hash,
                                          uint32_t* hashLength, X509GeneralNames** issuer, uint8_t* serial,
                                          uint32_t* serialLength);

/**
 * AddOtherCertIDToList adds a certificate by a hash (OtherCertID, RFC 5126, 5.7.3.3). Arguments as
 * AddESSCertIDv2ToList, but for oid, which may be null: then the hash is SHA-1 and is written without its algorithm.
 */
TLVFORGE_STATUS AddOtherCertIDToList(OtherCertIDs* list, const uint8_t* oid, const uint8_t* parameters,
                                     uint32_t parametersLength, const uint8_t* hash, uint32_t hashLength,
                                     const X509GeneralNames* issuer, const uint8_t* serial, uint32_t serialLength);
/** GetOtherCertIDInformation reads a member. Both lengths of the algorithm are 0 for a hash without one. */
TLVFORGE_STATUS GetOtherCertIDInformation(const OtherCertIDs* list, uint32_t index, uint8_t* oid, uint32_t* oidLength,
                                          uint8_t* parameters, uint32_t* parametersLength, uint8_t* hash,
                                          uint32_t* hashLength, X509GeneralNames** issuer, uint8_t* serial,
                                          uint32_t* serialLength);

/**
 * AddCrlValidatedIdToList adds a CRL by a hash (CrlValidatedID, RFC 5126, 6.2.2).
 * @param oid, parameters as AddOtherCertIDToList.
 * @param issuer may be null; issued and number are looked at only with it.
 * @param issued thisUpdate; if it can't be written, nothing is added and the status is StatusOk all the same.
 * @param number big-endian content of the CRL number, may be null.
 */
TLVFORGE_STATUS AddCrlValidatedIdToList(CrlListIDs* list, const uint8_t* hash, uint32_t hashLength, const uint8_t* oid,
                                        const uint8_t* parameters, uint32_t parametersLength, const X509Name* issuer,
                                        const LibraryTime* issued, const uint8_t* number, uint32_t numberLength);
/**
 * GetCrlValidatedIdInformation reads a member. Without an issuer: a null issuer, the null time, a number of length 0.
 * With one only a UTCTime of 15 bytes or more, that is one with a zone, can be read; the result for the ordinary one of
 * 13 bytes is StatusBadValue, with number untouched.
 */
TLVFORGE_STATUS GetCrlValidatedIdInformation(const CrlListIDs* list, uint32_t index, uint8_t* hash,
                                             uint32_t* hashLength, uint8_t* oid, uint32_t* oidLength,
                                             uint8_t* parameters, uint32_t* parametersLength, X509Name** issuer,
                                             LibraryTime* issued, uint8_t* number, uint32_t* numberLength);

/**
 * AddOcspResponseIdToList adds an OCSP response by its responder (OcspResponsesID, RFC 5126, 6.2.2).
 * @param responder, keyHash one may be null; the name wins. keyHash is written as bare bytes inside [1], where the
 *     standard has an OCTET STRING inside [2].
 * @param producedAt if it can't be written, nothing is added and the status is StatusOk all the same.
 * @param hash of the response, may be null, and the algorithm is left out with it.
 * @param oid, parameters as AddOtherCertIDToList.
 */
TLVFORGE_STATUS AddOcspResponseIdToList(OcspListIDs* list, const X509Name* responder, const uint8_t* keyHash,
                                        uint32_t keyHashLength, const LibraryTime* producedAt, const uint8_t* hash,
                                        uint32_t hashLength, const uint8_t* oid, const uint8_t* parameters,
                                        uint32_t parametersLength);
/**
 * GetOcspResponseIdInformation reads a member. The three lengths of hash and algorithm are 0 for an absent hash.
 * @param responder lends what is inside [1], with a keyHash of length 0. That is an X509Name for a member that was
 *     added with one; otherwise, added with a key hash or decoded, its bytes are read with GetAsn1AnyValue: those of
 *     the key hash, or the whole element of the name. Null for [2], the key hash of decoded members, which goes to
 *     keyHash.
 */
TLVFORGE_STATUS GetOcspResponseIdInformation(const OcspListIDs* list, uint32_t index, void** responder,
                                             uint8_t* keyHash, uint32_t* keyHashLength, LibraryTime* producedAt,
                                             uint8_t* hash, uint32_t* hashLength, uint8_t* oid, uint32_t* oidLength,
                                             uint8_t* parameters, uint32_t* parametersLength);

/**
 * AddCrlOcspRefToList adds the references of one certificate (CrlOcspRef, RFC 5126, 6.2.2). It adopts both lists.
 * StatusBadArgument without any of the three parts.
 * @param crls, ocsps may be null.
 * @param otherOid, otherValue a length-prefixed OID and a whole element, left out unless OID, value and length are
 *     there.
 */
TLVFORGE_STATUS AddCrlOcspRefToList(CrlOcspRefs* list, CrlListIDs* crls, OcspListIDs* ocsps, const uint8_t* otherOid,
                                    const uint8_t* otherValue, uint32_t otherLength);
/**
 * GetCrlOcspRefInformation reads a member. Lists that are absent are null, absent other references have lengths of 0.
 * StatusAbsent for a member without any part.
 */
TLVFORGE_STATUS GetCrlOcspRefInformation(const CrlOcspRefs* list, uint32_t index, CrlListIDs** crls,
                                         OcspListIDs** ocsps, uint8_t* otherOid, uint32_t* otherOidLength,
                                         uint8_t* otherValue, uint32_t* otherValueLength);

TLVFORGE_END

#endif
