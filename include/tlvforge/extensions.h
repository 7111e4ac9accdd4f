/*
 * Extensions (RFC 5280, 4.1.2.9): the container that certificates, CRLs, requests, OCSP messages and time-stamps share,
 * and the codecs of the standard extensions.
 *
 * The container knows an extension as an OID, a critical flag and the bytes of a value. The codecs turn those bytes,
 * the content of extnValue, into plain arguments and back. They do not look at the OID: the one that goes with a codec
 * is named at its functions, for the caller to hand to the container.
 */
#ifndef TLVFORGE_EXTENSIONS_H
#define TLVFORGE_EXTENSIONS_H

#include "tlvforge/names.h"
#include "tlvforge/status.h"
#include "tlvforge/time.h"

TLVFORGE_BEGIN

typedef struct Certificate Certificate;

/* One extension on its own: Extension (RFC 5280, 4.1). */
typedef struct X509Extension X509Extension;

/*
 * X509Extensions is a handle: the address of a cell that holds a list of extensions, or nothing. A handle from
 * CreateX509Extensions or DecodeX509Extensions is the caller's. A handle from a document's getter is the slot inside
 * that document: it lives as long as the document and must not reach FreeX509Extensions. An empty cell is a document
 * without the field; the first add makes the list.
 */
typedef struct X509ExtensionsCell* X509Extensions;

/* The values of extensions that are lists, each owned by the caller and freed with its own Free function. */

/* CRLDistributionPoints (RFC 5280, 4.2.1.13). */
typedef struct ExtensionCrlDistributionPoints ExtensionCrlDistributionPoints;
/* ExtKeyUsageSyntax (RFC 5280, 4.2.1.12). */
typedef struct ExtensionExtendedKeyUsage ExtensionExtendedKeyUsage;
/* AuthorityInfoAccessSyntax (RFC 5280, 4.2.2.1). */
typedef struct ExtensionAuthorityInformationAccess ExtensionAuthorityInformationAccess;
/* CertificatePolicies (RFC 5280, 4.2.1.4). */
typedef struct ExtensionCertificatePolicies ExtensionCertificatePolicies;

/* ---- One extension ---- */

/**
 * CreateX509Extension makes an extension, owned by the caller (FreeX509Extension).
 * @param value DER of the extension's own type; length 0 is allowed. *out is null after every failure.
 */
TLVFORGE_STATUS CreateX509Extension(X509Extension** out, const uint8_t* oid, uint32_t critical, const uint8_t* value,
                                    uint32_t valueLength);

/** SetX509Extension replaces all three fields. Arguments as CreateX509Extension. */
TLVFORGE_STATUS SetX509Extension(X509Extension* extension, const uint8_t* oid, uint32_t critical, const uint8_t* value,
                                 uint32_t valueLength);

/**
 * GetX509Extension reads all three fields at once. oid and value may be null, their lengths may not: each length
 * becomes the size needed. StatusAbsent a field is missing, StatusBadValue a flag byte that is neither 0 nor 255.
 * @param critical 1 or 0. A buffer that is too small doesn't keep the others from being filled; the result is
 *     StatusBufferTooSmall then. A null critical is StatusBadArgument after the buffers have been filled.
 */
TLVFORGE_STATUS GetX509Extension(const X509Extension* extension, uint8_t* oid, uint32_t* oidLength, uint32_t* critical,
                                 uint8_t* value, uint32_t* valueLength);

/** DecodeX509Extension reads one Extension element; the caller owns the result. EncodeX509Extension is the reverse. */
TLVFORGE_STATUS DecodeX509Extension(const uint8_t* data, uint32_t length, X509Extension** out);
TLVFORGE_STATUS EncodeX509Extension(const X509Extension* extension, uint8_t* buffer, uint32_t* length);

/** FreeX509Extension frees an extension. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeX509Extension(X509Extension* extension);

/* ---- The list ---- */

/** CreateX509Extensions makes a cell of its own with an empty list, owned by the caller (FreeX509Extensions). */
TLVFORGE_STATUS CreateX509Extensions(X509Extensions* out);

/**
 * DecodeX509Extensions reads a SEQUENCE OF Extension into a cell of its own, owned by the caller. *out is stored on
 * success only. EncodeX509Extensions is the reverse; an empty cell is StatusBadArgument.
 */
TLVFORGE_STATUS DecodeX509Extensions(const uint8_t* data, uint32_t length, X509Extensions* out);
TLVFORGE_STATUS EncodeX509Extensions(X509Extensions extensions, uint8_t* buffer, uint32_t* length);

/**
 * FreeX509Extensions frees the list and the cell; only for handles that the caller owns. Null is allowed; always
 * StatusOk.
 */
TLVFORGE_API Status FreeX509Extensions(X509Extensions extensions);

/**
 * ClearX509Extensions leaves an empty list, which a document encodes as an empty field; RemoveX509Extensions leaves no
 * list, and the field goes from the document. StatusOk for an empty cell.
 */
TLVFORGE_STATUS ClearX509Extensions(X509Extensions extensions);
TLVFORGE_STATUS RemoveX509Extensions(X509Extensions extensions);

/**
 * AddX509ExtensionsExtension appends an extension. oid, critical and value as CreateX509Extension. An OID that is there
 * already isn't looked for: to replace an extension, remove it first.
 */
TLVFORGE_STATUS AddX509ExtensionsExtension(X509Extensions extensions, const uint8_t* oid, int32_t critical,
                                           const uint8_t* value, uint32_t valueLength);

/** FindX509Extension stores the index of the first extension with a length-prefixed OID. StatusNotFound without one. */
TLVFORGE_STATUS FindX509Extension(X509Extensions extensions, const uint8_t* oid, uint32_t* index);

/** GetX509ExtensionsExtensionsCount stores the number of extensions, 0 for an empty cell. */
TLVFORGE_STATUS GetX509ExtensionsExtensionsCount(X509Extensions extensions, uint32_t* count);

/** GetX509ExtensionsExtension is GetX509Extension on the member at an index. StatusAbsent also for an empty cell. */
TLVFORGE_STATUS GetX509ExtensionsExtension(X509Extensions extensions, uint32_t index, uint8_t* oid, uint32_t* oidLength,
                                           uint32_t* critical, uint8_t* value, uint32_t* valueLength);

/** GetX509ExtensionsExtensionValue copies the value of the first extension with an OID. StatusNotFound without one. */
TLVFORGE_STATUS GetX509ExtensionsExtensionValue(X509Extensions extensions, const uint8_t* oid, uint8_t* value,
                                                uint32_t* valueLength);

/**
 * RemoveX509ExtensionsExtension removes the member at an index; later ones move down. StatusAbsent for an empty cell.
 */
TLVFORGE_STATUS RemoveX509ExtensionsExtension(X509Extensions extensions, uint32_t index);

/**
 * RemoveX509ExtensionsExtension2 removes the extensions with an OID. StatusOk without any, too. The member right after
 * a removed one is not looked at: of two neighbours with the same OID, the second stays.
 */
TLVFORGE_STATUS RemoveX509ExtensionsExtension2(X509Extensions extensions, const uint8_t* oid);

/**
 * SetX509ExtensionsSorted sets the sorted flag of the list; StatusOk for an empty cell. Extensions are a SEQUENCE OF
 * and are written in list order with either value.
 * @param sorted any number.
 */
TLVFORGE_STATUS SetX509ExtensionsSorted(X509Extensions extensions, uint32_t sorted);

/* ---- Simple values ---- */

/**
 * Flag words: named bits as a number whose bytes, lowest first, are the bytes of the BIT STRING. Bit 0
 * (digitalSignature) is 0x80, bit 7 is 0x01, bit 8 (decipherOnly) is 0x8000. Bytes after the fourth are dropped on
 * reading; trailing zero bits are not written. DecodeExtensionKeyUsage and EncodeExtensionKeyUsage: KeyUsage,
 * 2.5.29.15. The Netscape names are the same functions, for 2.16.840.1.113730.1.1. Decoding: StatusBadArgument also for
 * length 0.
 */
TLVFORGE_STATUS DecodeExtensionKeyUsage(const uint8_t* data, uint32_t length, uint32_t* flags);
TLVFORGE_STATUS EncodeExtensionKeyUsage(uint32_t flags, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS DecodeExtensionNetscapeCertificateType(const uint8_t* data, uint32_t length, uint32_t* flags);
TLVFORGE_STATUS EncodeExtensionNetscapeCertificateType(uint32_t flags, uint8_t* buffer, uint32_t* length);

/** DecodeExtensionSubjectKeyIdentifier and its encoder: the content of an OCTET STRING, 2.5.29.14. */
TLVFORGE_STATUS DecodeExtensionSubjectKeyIdentifier(const uint8_t* data, uint32_t length, uint8_t* keyId,
                                                    uint32_t* keyIdLength);
TLVFORGE_STATUS EncodeExtensionSubjectKeyIdentifier(const uint8_t* keyId, uint32_t keyIdLength, uint8_t* buffer,
                                                    uint32_t* length);

/**
 * DecodeExtensionBasicConstraints: 2.5.29.19. StatusBufferTooSmall for a path length above four bytes.
 * @param cA 255 for true and 0 for false.
 * @param pathLength all bits set when there is no constraint.
 */
TLVFORGE_STATUS DecodeExtensionBasicConstraints(const uint8_t* data, uint32_t length, uint8_t* cA,
                                                uint32_t* pathLength);

/** EncodeExtensionBasicConstraints: any cA but 0 is true; a pathLength of 0xFFFFFFFF means no constraint. */
TLVFORGE_STATUS EncodeExtensionBasicConstraints(uint8_t cA, uint32_t pathLength, uint8_t* buffer, uint32_t* length);

/**
 * DecodeExtensionReasonCode and its encoder: CRLReason, an ENUMERATED, 2.5.29.21. StatusBufferTooSmall above four
 * bytes.
 */
TLVFORGE_STATUS DecodeExtensionReasonCode(const uint8_t* data, uint32_t length, int32_t* reason);
TLVFORGE_STATUS EncodeExtensionReasonCode(uint32_t reason, uint8_t* buffer, uint32_t* length);

/**
 * DecodeExtensionInvalidityDate and its encoder: a GeneralizedTime, 2.5.29.24. time is filled by the decoder.
 * Decoding: StatusBadValue a text below 15 characters, StatusBadTime a date out of range. Encoding: StatusOutOfMemory,
 * not StatusBadTime, for a time that can't be written, the null time among them.
 */
TLVFORGE_STATUS DecodeExtensionInvalidityDate(const uint8_t* data, uint32_t length, LibraryTime* time);
TLVFORGE_STATUS EncodeExtensionInvalidityDate(const LibraryTime* time, uint8_t* buffer, uint32_t* length);

/**
 * DecodeExtensionPrivateKeyUsagePeriod: 2.5.29.16. A time that is absent leaves the caller's record as it was, so that
 * a fresh record of CreateLibraryTime stays the null time. Statuses as DecodeExtensionInvalidityDate.
 */
TLVFORGE_STATUS DecodeExtensionPrivateKeyUsagePeriod(const uint8_t* data, uint32_t length, LibraryTime* notBefore,
                                                     LibraryTime* notAfter);

/**
 * EncodeExtensionPrivateKeyUsagePeriod: a null time leaves its field out; one that can't be written is
 * StatusOutOfMemory.
 */
TLVFORGE_STATUS EncodeExtensionPrivateKeyUsagePeriod(const LibraryTime* notBefore, const LibraryTime* notAfter,
                                                     uint8_t* buffer, uint32_t* length);

/**
 * DecodeExtensionCrlNumber, EncodeExtensionCrlNumber: an INTEGER as its big-endian content bytes, taken unchanged,
 * 2.5.29.20. The DeltaCrlIndicator names are the same functions, for 2.5.29.27.
 */
TLVFORGE_STATUS DecodeExtensionCrlNumber(const uint8_t* data, uint32_t length, uint8_t* number, uint32_t* numberLength);
TLVFORGE_STATUS EncodeExtensionCrlNumber(const uint8_t* number, uint32_t numberLength, uint8_t* buffer,
                                         uint32_t* length);
TLVFORGE_STATUS DecodeExtensionDeltaCrlIndicator(const uint8_t* data, uint32_t length, uint8_t* number,
                                                 uint32_t* numberLength);
TLVFORGE_STATUS EncodeExtensionDeltaCrlIndicator(const uint8_t* number, uint32_t numberLength, uint8_t* buffer,
                                                 uint32_t* length);

/** DecodeExtensionOcspNonce and its encoder: the content of an OCTET STRING (RFC 8954), 1.3.6.1.5.5.7.48.1.2. */
TLVFORGE_STATUS DecodeExtensionOcspNonce(const uint8_t* data, uint32_t length, uint8_t* nonce, uint32_t* nonceLength);
TLVFORGE_STATUS EncodeExtensionOcspNonce(const uint8_t* nonce, uint32_t nonceLength, uint8_t* buffer, uint32_t* length);

/* ---- Authority key identifier, 2.5.29.35 ---- */

/**
 * DecodeExtensionAuthorityKeyIdentifier reads the three optional fields; one that is absent has length 0, or null.
 * StatusBadArgument also for length 0.
 * @param issuer may be null; a copy that the caller owns (FreeX509GeneralNames), also with StatusBufferTooSmall.
 * @param serial big-endian. All three are attempted; the first failure is the result.
 */
TLVFORGE_STATUS DecodeExtensionAuthorityKeyIdentifier(const uint8_t* data, uint32_t length, uint8_t* keyId,
                                                      uint32_t* keyIdLength, X509GeneralNames** issuer, uint8_t* serial,
                                                      uint32_t* serialLength);

/** EncodeExtensionAuthorityKeyIdentifier leaves a field out when its argument is null. serial is taken unchanged. */
TLVFORGE_STATUS EncodeExtensionAuthorityKeyIdentifier(const uint8_t* keyId, uint32_t keyIdLength,
                                                      const X509GeneralNames* issuer, const uint8_t* serial,
                                                      uint32_t serialLength, uint8_t* buffer, uint32_t* length);

/* ---- Issuing distribution point, 2.5.29.28 ---- */

/**
 * DecodeExtensionIssuingDistributionPoint reads all fields.
 * @param fullName, relativeName not null where the name is there, and that is all: what they point to has been freed
 *     when the function returns. Never follow or free them. A relative name in the form of RFC 5280 is
 *     StatusBadEncoding.
 * @param onlyUser, onlyCa, indirect, onlyAttribute 255 for true, 0 for false.
 * @param hasOnlyUser, hasOnlyCa, hasIndirect, hasOnlyAttribute always 1, since an absent boolean reads as false.
 * @param onlySomeReasons flag word. Its field has the tag [1], the same as onlyContainsUserCerts, so that reasons
 *     written without onlyContainsUserCerts are taken for it: StatusBadValue.
 */
TLVFORGE_STATUS DecodeExtensionIssuingDistributionPoint(const uint8_t* data, uint32_t length,
                                                        X509GeneralNames** fullName, X509Name** relativeName,
                                                        uint8_t* onlyUser, uint32_t* hasOnlyUser, uint8_t* onlyCa,
                                                        uint32_t* hasOnlyCa, uint32_t* onlySomeReasons,
                                                        uint32_t* hasOnlySomeReasons, uint8_t* indirect,
                                                        uint32_t* hasIndirect, uint8_t* onlyAttribute,
                                                        uint32_t* hasOnlyAttribute);

/**
 * EncodeExtensionIssuingDistributionPoint writes a field when its has argument isn't 0; a false boolean is its default
 * and is left out all the same. fullName and relativeName may be null; the first wins over the second. A relative name
 * is written as a whole name, which reads back as absent.
 * @param onlyUser, onlyCa, indirect, onlyAttribute any number but 0 is true.
 */
TLVFORGE_STATUS EncodeExtensionIssuingDistributionPoint(const X509GeneralNames* fullName, const X509Name* relativeName,
                                                        uint8_t onlyUser, int32_t hasOnlyUser, uint8_t onlyCa,
                                                        int32_t hasOnlyCa, uint32_t onlySomeReasons,
                                                        int32_t hasOnlySomeReasons, uint8_t indirect,
                                                        int32_t hasIndirect, uint8_t onlyAttribute,
                                                        int32_t hasOnlyAttribute, uint8_t* buffer, uint32_t* length);

/* ---- CRL distribution points, 2.5.29.31 ---- */

/** CreateExtensionCrlDistributionPoints makes an empty list, owned by the caller. */
TLVFORGE_STATUS CreateExtensionCrlDistributionPoints(ExtensionCrlDistributionPoints** out);
/** DecodeExtensionCrlDistributionPoints: the caller owns the list. StatusBadArgument also for length 0. */
TLVFORGE_STATUS DecodeExtensionCrlDistributionPoints(const uint8_t* data, uint32_t length,
                                                     ExtensionCrlDistributionPoints** out);
/** EncodeExtensionCrlDistributionPoints writes the list. */
TLVFORGE_STATUS EncodeExtensionCrlDistributionPoints(const ExtensionCrlDistributionPoints* list, uint8_t* buffer,
                                                     uint32_t* length);
/** FreeExtensionCrlDistributionPoints frees the list with its points. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeExtensionCrlDistributionPoints(ExtensionCrlDistributionPoints* list);

/**
 * AddExtensionCrlDistributionPoint appends a point and *adopts* the objects: do not free them after success. After
 * StatusBadArgument they are still the caller's; after StatusOutOfMemory they have been freed, all of them. fullName,
 * relativeName and crlIssuer may be null, reasons (a flag word) 0, but not all of them; both kinds of name together are
 * StatusBadArgument, and so is one object passed twice. A relative name is written as a whole name, and hides what
 * follows it from every reader.
 */
TLVFORGE_STATUS AddExtensionCrlDistributionPoint(ExtensionCrlDistributionPoints* list, X509GeneralNames* fullName,
                                                 X509Name* relativeName, uint32_t reasons, X509GeneralNames* crlIssuer);

/**
 * GetExtensionCrlDistributionPoint *lends* the parts of a point, null where absent; reasons is a flag word, 0 where
 * absent. StatusBadAlternative for a name of an unknown kind.
 */
TLVFORGE_STATUS GetExtensionCrlDistributionPoint(const ExtensionCrlDistributionPoints* list, uint32_t index,
                                                 X509GeneralNames** fullName, X509Name** relativeName,
                                                 uint32_t* reasons, X509GeneralNames** crlIssuer);

/**
 * GetExtensionCrlDistributionPointsCount stores the number of points; RemoveExtensionCrlDistributionPoint frees one.
 */
TLVFORGE_STATUS GetExtensionCrlDistributionPointsCount(const ExtensionCrlDistributionPoints* list, uint32_t* count);
TLVFORGE_STATUS RemoveExtensionCrlDistributionPoint(ExtensionCrlDistributionPoints* list, uint32_t index);

/**
 * SetCertificateExtensionCrlDistributionPoints adds one distribution point with one URI, not critical, to a
 * certificate. A value above 2048 bytes is StatusBufferTooSmall and changes nothing; a certificate without content is
 * StatusAbsent. Older ones go by RemoveX509ExtensionsExtension2.
 * @param url zero-terminated text.
 */
TLVFORGE_STATUS SetCertificateExtensionCrlDistributionPoints(Certificate* certificate, const char* url);

/* ---- Extended key usage, 2.5.29.37 ---- */

/** CreateExtensionExtendedKeyUsage makes an empty list, owned by the caller. */
TLVFORGE_STATUS CreateExtensionExtendedKeyUsage(ExtensionExtendedKeyUsage** out);
/** DecodeExtensionExtendedKeyUsage: the caller owns the list. StatusBadArgument also for length 0. */
TLVFORGE_STATUS DecodeExtensionExtendedKeyUsage(const uint8_t* data, uint32_t length, ExtensionExtendedKeyUsage** out);
/** EncodeExtensionExtendedKeyUsage writes the list. */
TLVFORGE_STATUS EncodeExtensionExtendedKeyUsage(const ExtensionExtendedKeyUsage* list, uint8_t* buffer,
                                                uint32_t* length);
/** FreeExtensionExtendedKeyUsage frees the list. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeExtensionExtendedKeyUsage(ExtensionExtendedKeyUsage* list);

/** AddExtensionExtendedKeyUsage appends a length-prefixed OID, without looking for it. */
TLVFORGE_STATUS AddExtensionExtendedKeyUsage(ExtensionExtendedKeyUsage* list, const uint8_t* oid);
/** GetExtensionExtendedKeyUsage copies a member in the length-prefixed form. */
TLVFORGE_STATUS GetExtensionExtendedKeyUsage(const ExtensionExtendedKeyUsage* list, uint32_t index, uint8_t* oid,
                                             uint32_t* oidLength);
/** GetExtensionExtendedKeyUsageCount stores the number of members; RemoveExtensionExtendedKeyUsage frees one. */
TLVFORGE_STATUS GetExtensionExtendedKeyUsageCount(const ExtensionExtendedKeyUsage* list, uint32_t* count);
TLVFORGE_STATUS RemoveExtensionExtendedKeyUsage(ExtensionExtendedKeyUsage* list, uint32_t index);

/* ---- Authority information access, 1.3.6.1.5.5.7.1.1 ---- */

/** CreateExtensionAuthorityInformationAccess makes an empty list, owned by the caller. */
TLVFORGE_STATUS CreateExtensionAuthorityInformationAccess(ExtensionAuthorityInformationAccess** out);
/** DecodeExtensionAuthorityInformationAccess: the caller owns the list. StatusBadArgument also for length 0. */
TLVFORGE_STATUS DecodeExtensionAuthorityInformationAccess(const uint8_t* data, uint32_t length,
                                                          ExtensionAuthorityInformationAccess** out);
/** EncodeExtensionAuthorityInformationAccess writes the list. StatusAbsent for a location without a value. */
TLVFORGE_STATUS EncodeExtensionAuthorityInformationAccess(const ExtensionAuthorityInformationAccess* list,
                                                          uint8_t* buffer, uint32_t* length);
/** FreeExtensionAuthorityInformationAccess frees the list with its locations. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeExtensionAuthorityInformationAccess(ExtensionAuthorityInformationAccess* list);

/**
 * AddExtensionAuthorityInformationAccess appends a length-prefixed method OID; it *adopts* location on success only.
 */
TLVFORGE_STATUS AddExtensionAuthorityInformationAccess(ExtensionAuthorityInformationAccess* list, const uint8_t* method,
                                                       X509GeneralName* location);
/**
 * GetExtensionAuthorityInformationAccess copies the method in the length-prefixed form and *lends* the location, also
 * when the method's buffer is too small.
 * @param location may be null.
 */
TLVFORGE_STATUS GetExtensionAuthorityInformationAccess(const ExtensionAuthorityInformationAccess* list, uint32_t index,
                                                       uint8_t* method, uint32_t* methodLength,
                                                       X509GeneralName** location);
/** GetExtensionAuthorityInformationAccessCount stores the number of members; the Remove function frees one. */
TLVFORGE_STATUS GetExtensionAuthorityInformationAccessCount(const ExtensionAuthorityInformationAccess* list,
                                                            uint32_t* count);
TLVFORGE_STATUS RemoveExtensionAuthorityInformationAccess(ExtensionAuthorityInformationAccess* list, uint32_t index);

/* ---- Certificate policies, 2.5.29.32 ---- */

/** CreateExtensionCertificatePolicies makes an empty list, owned by the caller. */
TLVFORGE_STATUS CreateExtensionCertificatePolicies(ExtensionCertificatePolicies** out);
/** DecodeExtensionCertificatePolicies: the caller owns the list. StatusBadArgument also for length 0. */
TLVFORGE_STATUS DecodeExtensionCertificatePolicies(const uint8_t* data, uint32_t length,
                                                   ExtensionCertificatePolicies** out);
/** EncodeExtensionCertificatePolicies writes the list, without the qualifiers of AddExtensionPolicyQualifier. */
TLVFORGE_STATUS EncodeExtensionCertificatePolicies(const ExtensionCertificatePolicies* list, uint8_t* buffer,
                                                   uint32_t* length);
/** FreeExtensionCertificatePolicies frees the list with its policies. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeExtensionCertificatePolicies(ExtensionCertificatePolicies* list);

/**
 * AddExtensionPolicyInformation appends a policy without qualifiers.
 * @param index may be null; that of the new policy.
 */
TLVFORGE_STATUS AddExtensionPolicyInformation(ExtensionCertificatePolicies* list, const uint8_t* oid, uint32_t* index);
/** GetExtensionPolicyInformation copies a policy's OID in the length-prefixed form. */
TLVFORGE_STATUS GetExtensionPolicyInformation(const ExtensionCertificatePolicies* list, uint32_t index, uint8_t* oid,
                                              uint32_t* oidLength);
/** GetExtensionPolicyInformationCount stores the number of policies; RemoveExtensionPolicyInformation frees one. */
TLVFORGE_STATUS GetExtensionPolicyInformationCount(const ExtensionCertificatePolicies* list, uint32_t* count);
TLVFORGE_STATUS RemoveExtensionPolicyInformation(ExtensionCertificatePolicies* list, uint32_t index);

/**
 * AddExtensionPolicyQualifier raises the qualifier count of a policy by one. The new member stands for the policy
 * itself, and neither oid nor value is kept, as intended (docs/oddities.md). Such a member reads back as the policy's
 * OID with no value, and is never written.
 * @param value a whole element; may be null, or valueLength 0.
 */
TLVFORGE_STATUS AddExtensionPolicyQualifier(ExtensionCertificatePolicies* list, uint32_t policyIndex,
                                            const uint8_t* oid, const uint8_t* value, uint32_t valueLength);
/**
 * GetExtensionPolicyQualifier copies a qualifier's OID in the length-prefixed form and its value as a whole element,
 * length 0 without one. The OID is written even if the value's buffer is too small.
 */
TLVFORGE_STATUS GetExtensionPolicyQualifier(const ExtensionCertificatePolicies* list, uint32_t policyIndex,
                                            uint32_t qualifierIndex, uint8_t* oid, uint32_t* oidLength, uint8_t* value,
                                            uint32_t* valueLength);
/** GetExtensionPolicyQualifiersCount stores the number of qualifiers of a policy, 0 without a list of them. */
TLVFORGE_STATUS GetExtensionPolicyQualifiersCount(const ExtensionCertificatePolicies* list, uint32_t policyIndex,
                                                  uint32_t* count);
/**
 * RemoveExtensionPolicyQualifier frees one qualifier of a policy. StatusBadArgument for a policy without a list of
 * them.
 */
TLVFORGE_STATUS RemoveExtensionPolicyQualifier(ExtensionCertificatePolicies* list, uint32_t policyIndex,
                                               uint32_t qualifierIndex);

TLVFORGE_END

#endif
