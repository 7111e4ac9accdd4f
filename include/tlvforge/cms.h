/*
 * Signed messages (CMS, RFC 5652): ContentInfo, SignedData and SignerInfo, read, changed and built field by field, and
 * a container of several messages. Nothing is digested, signed or verified here: a caller brings digests and
 * signatures.
 *
 * The fields are independent of each other. Adding or removing a signer touches neither the digest algorithms nor the
 * certificates nor a version; CreateCmsFileSignature2 alone brings them together.
 *
 * A message holds certificates and CRLs as bytes with a kind. Nothing looks into them.
 */
#ifndef TLVFORGE_CMS_H
#define TLVFORGE_CMS_H

#include "tlvforge/attributes.h"
#include "tlvforge/names.h"
#include "tlvforge/status.h"
#include "tlvforge/time.h"

TLVFORGE_BEGIN

typedef struct CmsContentInfo CmsContentInfo; /* ContentInfo (RFC 5652, 3): a content and its type */
typedef struct CmsSignedData CmsSignedData;   /* SignedData (RFC 5652, 5.1) */
typedef struct CmsSignerInfo CmsSignerInfo;   /* SignerInfo (RFC 5652, 5.3): one signer of a SignedData */
typedef struct SeveralData SeveralData;       /* SEQUENCE OF CmsContentInfo */

/*
 * certificateKind: the choice that a certificate of a message is (RFC 5652, 10.2.2), with its identifier octet. Getting
 * stores 0 for any other octet; 0 can't be set.
 */
enum {
    CmsCertificateKindCertificate = 1,            /* 0x30 */
    CmsCertificateKindExtendedCertificate = 2,    /* 0xA0 */
    CmsCertificateKindAttributeCertificateV1 = 3, /* 0xA1 */
    CmsCertificateKindAttributeCertificateV2 = 4, /* 0xA2 */
    CmsCertificateKindOther = 5                   /* 0xA3 */
};

/* crlKind: the choice that revocation information of a message is (RFC 5652, 10.2.1). */
enum {
    CmsCrlKindCertificateList = 1, /* 0x30 */
    CmsCrlKindOther = 2            /* 0xA1 */
};

/* --- ContentInfo: a content of any type --- */

/**
 * CreateCmsContentInfo makes a ContentInfo with an empty type and no content. The caller owns it. It encodes as it is,
 * with an OID of no bytes.
 */
TLVFORGE_STATUS CreateCmsContentInfo(CmsContentInfo** info);

/** CreateCmsContentInfoCopy makes a deep copy, owned by the caller. */
TLVFORGE_STATUS CreateCmsContentInfoCopy(const CmsContentInfo* info, CmsContentInfo** copy);

/**
 * DecodeCmsContentInfo reads one BER ContentInfo at the start of the bytes; what follows it is ignored. The caller owns
 * it. The content is kept as it stands, in whatever form it has.
 */
TLVFORGE_STATUS DecodeCmsContentInfo(const uint8_t* bytes, uint32_t length, CmsContentInfo** info);

/** EncodeCmsContentInfo writes the ContentInfo. It is DER if the content is. */
TLVFORGE_STATUS EncodeCmsContentInfo(const CmsContentInfo* info, uint8_t* buffer, uint32_t* length);

/** FreeCmsContentInfo frees a ContentInfo of the caller's. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeCmsContentInfo(CmsContentInfo* info);

/**
 * GetCmsContentInfoTypeOid copies contentType, length-prefixed; the empty identifier while none was set.
 * SetCmsContentInfoTypeOid replaces it; after StatusOutOfMemory the field is absent.
 */
TLVFORGE_STATUS GetCmsContentInfoTypeOid(const CmsContentInfo* info, uint8_t* oid, uint32_t* length);
TLVFORGE_STATUS SetCmsContentInfoTypeOid(CmsContentInfo* info, const uint8_t* oid);

/**
 * GetCmsContentInfoContent copies the content, a whole element without its explicit tag. No content: length 0,
 * StatusOk.
 */
TLVFORGE_STATUS GetCmsContentInfoContent(const CmsContentInfo* info, uint8_t* buffer, uint32_t* length);

/**
 * SetCmsContentInfoContent replaces the content.
 * @param data a whole element, taken unchanged without a check; null or length 0: no content from now on.
 */
TLVFORGE_STATUS SetCmsContentInfoContent(CmsContentInfo* info, const uint8_t* data, uint32_t length);

/**
 * DecodeCmsContentInfoContent copies the content bytes of an OCTET STRING element, which is what the type data
 * (1.2.840.113549.1.7.1) has for content; EncodeCmsContentInfoContent wraps bytes in one.
 */
TLVFORGE_STATUS DecodeCmsContentInfoContent(const uint8_t* data, uint32_t length, uint8_t* buffer,
                                            uint32_t* bufferLength);
TLVFORGE_STATUS EncodeCmsContentInfoContent(const uint8_t* value, uint32_t valueLength, uint8_t* buffer,
                                            uint32_t* length);

/* --- SignedData --- */

/**
 * CreateCmsSignedData makes a SignedData with an empty version and content type, no content, and empty sets of digest
 * algorithms and signers. The caller owns it.
 */
TLVFORGE_STATUS CreateCmsSignedData(CmsSignedData** signedData);

/**
 * CreateCmsSignedDataCopy makes a deep copy, owned by the caller. StatusBadAlternative after
 * AddCmsSignedDataEncodedCrl.
 */
TLVFORGE_STATUS CreateCmsSignedDataCopy(const CmsSignedData* signedData, CmsSignedData** copy);

/**
 * DecodeCmsSignedData reads one BER SignedData at the start of the bytes, which is the content of a ContentInfo; what
 * follows it is ignored. The caller owns it. Content in segments, of indefinite length, is joined; one in segments of
 * definite length is passed over, and the message then has none. StatusBadEncoding also for a message with an ordinary
 * CertificateList among its CRLs, as intended (docs/oddities.md).
 */
TLVFORGE_STATUS DecodeCmsSignedData(const uint8_t* bytes, uint32_t length, CmsSignedData** signedData);

/**
 * EncodeCmsSignedData writes the SignedData as DER. StatusAbsent while a signer has no identifier, StatusBadAlternative
 * after AddCmsSignedDataEncodedCrl.
 */
TLVFORGE_STATUS EncodeCmsSignedData(const CmsSignedData* signedData, uint8_t* buffer, uint32_t* length);

/** FreeCmsSignedData frees a SignedData with all that it owns. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeCmsSignedData(CmsSignedData* signedData);

/**
 * GetCmsSignedDataVersion and SetCmsSignedDataVersion: the number on the wire. Getting: StatusAbsent while there is
 * none, StatusBufferTooSmall for a number of more than four bytes. Setting takes any number.
 */
TLVFORGE_STATUS GetCmsSignedDataVersion(const CmsSignedData* signedData, int32_t* version);
TLVFORGE_STATUS SetCmsSignedDataVersion(CmsSignedData* signedData, uint32_t version);

/** GetCmsSignedDataDigestAlgorithmsCount stores the number of digest algorithms. */
TLVFORGE_STATUS GetCmsSignedDataDigestAlgorithmsCount(const CmsSignedData* signedData, uint32_t* count);

/**
 * GetCmsSignedDataDigestAlgorithmOidAndParameters reads the digest algorithm at an index. One call is enough for both
 * lengths. StatusBufferTooSmall when either buffer is too small.
 */
TLVFORGE_STATUS GetCmsSignedDataDigestAlgorithmOidAndParameters(const CmsSignedData* signedData, uint32_t index,
                                                                uint8_t* oid, uint32_t* oidLength, uint8_t* parameters,
                                                                uint32_t* parametersLength);

/**
 * AddCmsSignedDataDigestAlgorithmOidAndParameters adds a digest algorithm unless one with the same OID and parameters
 * is there; StatusOk in both cases.
 */
TLVFORGE_STATUS AddCmsSignedDataDigestAlgorithmOidAndParameters(CmsSignedData* signedData, const uint8_t* oid,
                                                                const uint8_t* parameters, uint32_t length);

/** ClearCmsSignedDataDigestAlgorithms leaves an empty set. */
TLVFORGE_STATUS ClearCmsSignedDataDigestAlgorithms(CmsSignedData* signedData);

/** GetCmsSignedDataContentTypeOid and SetCmsSignedDataContentTypeOid: eContentType, as the type of a ContentInfo. */
TLVFORGE_STATUS GetCmsSignedDataContentTypeOid(const CmsSignedData* signedData, uint8_t* oid, uint32_t* length);
TLVFORGE_STATUS SetCmsSignedDataContentTypeOid(CmsSignedData* signedData, const uint8_t* oid);

/**
 * GetCmsSignedDataContentInfo lends encapContentInfo, for the functions of a ContentInfo that read and set its type and
 * content. Unlike there, the content is the bytes inside the OCTET STRING. It must go to no other function.
 */
TLVFORGE_STATUS GetCmsSignedDataContentInfo(const CmsSignedData* signedData, CmsContentInfo** info);

/**
 * GetCmsSignedDataContent copies the signed content, the bytes of eContent. A detached signature: length 0, StatusOk.
 */
TLVFORGE_STATUS GetCmsSignedDataContent(const CmsSignedData* signedData, uint8_t* buffer, uint32_t* length);

/** SetCmsSignedDataContent replaces the signed content; null or length 0 makes the signature detached. */
TLVFORGE_STATUS SetCmsSignedDataContent(CmsSignedData* signedData, const uint8_t* data, uint32_t length);

/** GetCmsSignedDataCertificatesCount stores the number of certificates, 0 without the field. */
TLVFORGE_STATUS GetCmsSignedDataCertificatesCount(const CmsSignedData* signedData, uint32_t* count);

/**
 * GetCmsSignedDataEncodedCertificate copies a certificate as it stands in the message, under the tag of its kind.
 * StatusAbsent without the field; StatusBadEncoding and StatusLengthTooLong, with kind untouched, for bytes that don't
 * begin with the header of an element within them.
 * @param kind certificateKind.
 * @param length may be null with a null buffer, to ask for the kind alone.
 */
TLVFORGE_STATUS GetCmsSignedDataEncodedCertificate(const CmsSignedData* signedData, uint32_t index, uint8_t* kind,
                                                   uint8_t* buffer, uint32_t* length);

/**
 * AddCmsSignedDataEncodedCertificate adds a certificate unless the same bytes are there under the same kind; StatusOk
 * in both cases. StatusBadArgument for another kind and for length 0; the field is then there, if only as an empty set.
 * @param data a whole element, not checked. Its first byte is replaced by the one of the kind.
 */
TLVFORGE_STATUS AddCmsSignedDataEncodedCertificate(CmsSignedData* signedData, uint8_t kind, const uint8_t* data,
                                                   uint32_t length);

/** RemoveCmsSignedDataCertificates takes the field away. StatusOk where it is absent already. */
TLVFORGE_STATUS RemoveCmsSignedDataCertificates(CmsSignedData* signedData);

/** GetCmsSignedDataCrlsCount stores the number of CRLs, 0 without the field. */
TLVFORGE_STATUS GetCmsSignedDataCrlsCount(const CmsSignedData* signedData, uint32_t* count);

/**
 * GetCmsSignedDataEncodedCrl distinguishes CRLs that are there (StatusBadEncoding) from an index out of range
 * (StatusBadArgument) and a message without the field (StatusAbsent). None of them can be read, and no output is
 * stored.
 */
TLVFORGE_STATUS GetCmsSignedDataEncodedCrl(const CmsSignedData* signedData, uint32_t index, uint8_t* kind,
                                           uint8_t* buffer, uint32_t* length);

/**
 * AddCmsSignedDataEncodedCrl adds a placeholder that counts as a CRL and holds nothing. The message can't be encoded or
 * copied (StatusBadAlternative) until RemoveCmsSignedDataCrls. That is intended: no message with CRLs can be made
 * (docs/oddities.md). StatusBadArgument for another crlKind; the field is then there, if only as an empty set.
 * @param data required, not kept.
 */
TLVFORGE_STATUS AddCmsSignedDataEncodedCrl(CmsSignedData* signedData, uint8_t kind, const uint8_t* data,
                                           uint32_t length);

/** RemoveCmsSignedDataCrls takes the field away. StatusOk where it is absent already. */
TLVFORGE_STATUS RemoveCmsSignedDataCrls(CmsSignedData* signedData);

/** GetCmsSignedDataSignerInfosCount stores the number of signers. */
TLVFORGE_STATUS GetCmsSignedDataSignerInfosCount(const CmsSignedData* signedData, uint32_t* count);

/** GetCmsSignedDataSignerInfo lends the signer at an index. It lives until it is deleted. */
TLVFORGE_STATUS GetCmsSignedDataSignerInfo(const CmsSignedData* signedData, uint32_t index, CmsSignerInfo** signer);

/** AddCmsSignedDataSignerInfo appends an empty signer and lends it. *signer is null after a failure. */
TLVFORGE_STATUS AddCmsSignedDataSignerInfo(CmsSignedData* signedData, CmsSignerInfo** signer);

/** ClearCmsSignedDataSignerInfos deletes all signers, DeleteCmsSignedDataSignerInfo the one at an index. */
TLVFORGE_STATUS ClearCmsSignedDataSignerInfos(CmsSignedData* signedData);
TLVFORGE_STATUS DeleteCmsSignedDataSignerInfo(CmsSignedData* signedData, uint32_t index);

/* --- SignerInfo --- */

/**
 * CreateCmsSignerInfo makes a signer that belongs to no message, with every required field in place and empty. The
 * caller owns it (FreeCmsSignerInfo). To make one in a message, use AddCmsSignedDataSignerInfo.
 */
TLVFORGE_STATUS CreateCmsSignerInfo(CmsSignerInfo** signer);

/** FreeCmsSignerInfo frees a signer of the caller's, not one of a message. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeCmsSignerInfo(CmsSignerInfo* signer);

/** GetCmsSignerInfoVersion and SetCmsSignerInfoVersion: as the version of a SignedData. */
TLVFORGE_STATUS GetCmsSignerInfoVersion(const CmsSignerInfo* signer, int32_t* version);
TLVFORGE_STATUS SetCmsSignerInfoVersion(CmsSignerInfo* signer, uint32_t version);

/**
 * GetCmsSignerInfoDigestAlgorithmOidAndParameters and GetCmsSignerInfoSignatureAlgorithmOidAndParameters read an
 * algorithm. One call is enough for both lengths. StatusBufferTooSmall when either buffer is too small.
 * @param parameters may be null together with its length.
 */
TLVFORGE_STATUS GetCmsSignerInfoDigestAlgorithmOidAndParameters(const CmsSignerInfo* signer, uint8_t* oid,
                                                                uint32_t* oidLength, uint8_t* parameters,
                                                                uint32_t* parametersLength);
TLVFORGE_STATUS GetCmsSignerInfoSignatureAlgorithmOidAndParameters(const CmsSignerInfo* signer, uint8_t* oid,
                                                                   uint32_t* oidLength, uint8_t* parameters,
                                                                   uint32_t* parametersLength);

/**
 * SetCmsSignerInfoDigestAlgorithmOidAndParameters and SetCmsSignerInfoSignatureAlgorithmOidAndParameters set one.
 * @param parameters whole element, or null for none. The digest algorithm isn't added to the set of the message.
 */
TLVFORGE_STATUS SetCmsSignerInfoDigestAlgorithmOidAndParameters(CmsSignerInfo* signer, const uint8_t* oid,
                                                                const uint8_t* parameters, uint32_t length);
TLVFORGE_STATUS SetCmsSignerInfoSignatureAlgorithmOidAndParameters(CmsSignerInfo* signer, const uint8_t* oid,
                                                                   const uint8_t* parameters, uint32_t length);

/** GetCmsSignerInfoSignature and SetCmsSignerInfoSignature: the bytes of the signature; none are length 0, StatusOk. */
TLVFORGE_STATUS GetCmsSignerInfoSignature(const CmsSignerInfo* signer, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS SetCmsSignerInfoSignature(CmsSignerInfo* signer, const uint8_t* data, uint32_t length);

/**
 * GetCmsSignerInfoSignedAttributes and GetCmsSignerInfoUnsignedAttributes lend the handle of a set of attributes, for
 * the functions of attributes.h, also while the field is absent. It lives as long as the signer and must never go to
 * FreeRsaAttributes.
 */
TLVFORGE_STATUS GetCmsSignerInfoSignedAttributes(CmsSignerInfo* signer, RsaAttributes* attributes);
TLVFORGE_STATUS GetCmsSignerInfoUnsignedAttributes(CmsSignerInfo* signer, RsaAttributes* attributes);

/**
 * GetCmsSignerInfoEncodedSignedAttributes copies the bytes that the signature covers: the signed attributes as DER,
 * under the tag of a SET and not the one that they have in the message. No signed attributes: length 0, StatusOk.
 */
TLVFORGE_STATUS GetCmsSignerInfoEncodedSignedAttributes(const CmsSignerInfo* signer, uint8_t* buffer, uint32_t* length);

/**
 * GetCmsSignerInfoSignerIdentifier reads the identifier of the signer's certificate in either form. Issuer and serial
 * number: the length of keyId becomes 0, also where one of the two is missing (StatusAbsent); *issuer is lent and never
 * null; serial gets the content bytes, big-endian. Key identifier: *issuer and the length of serial become null and 0;
 * keyId gets it. issuer, and the length of the form's bytes, may be null with the other form only (StatusBadArgument).
 * StatusAbsent without an identifier.
 */
TLVFORGE_STATUS GetCmsSignerInfoSignerIdentifier(CmsSignerInfo* signer, X509Name** issuer, uint8_t* serial,
                                                 uint32_t* serialLength, uint8_t* keyId, uint32_t* keyIdLength);

/**
 * SetCmsSignerInfoSignerIdentifierIssuerAndSerialNumber identifies the signer's certificate by issuer and serial
 * number.
 * @param issuer copied; may be the signer's own.
 * @param serial big-endian content bytes, stored unchanged. If there is no memory to replace a serial number, it is
 *     lost with StatusOk, as intended (docs/oddities.md).
 */
TLVFORGE_STATUS SetCmsSignerInfoSignerIdentifierIssuerAndSerialNumber(CmsSignerInfo* signer, const X509Name* issuer,
                                                                      const uint8_t* serial, uint32_t serialLength);

/** SetCmsSignerInfoSignerSubjectKeyIdentifier identifies the signer's certificate by its subject key identifier. */
TLVFORGE_STATUS SetCmsSignerInfoSignerSubjectKeyIdentifier(CmsSignerInfo* signer, const uint8_t* keyId,
                                                           uint32_t length);

/* --- A whole signed document --- */

/**
 * CreateCmsFileSignature2 makes a whole signed document, a ContentInfo with a SignedData in DER, or adds a signer to
 * one. All input and output is in memory. With useSignedAttributes not 0, the signature is the one of the bytes of
 * GetCmsSignedDataToBeSignedPart2 for the same digest, signingTime and extraAttributes, otherwise the one of the
 * content. A size query costs as much as the call without the copy of the content. StatusWrongContentType if
 * existingSignature isn't a SignedData, StatusNotEqual if its content differs from content; StatusAbsent for a
 * signingTime that isn't set, or extraAttributes without a set.
 * @param content the document; null: a detached signature, also where existingSignature has content, which is dropped.
 * @param digest, signingTime required with useSignedAttributes not 0, otherwise, as extraAttributes always, may be
 *     null.
 * @param digestAlgorithmOid, signatureAlgorithmOid length-prefixed; their parameters whole elements, or null.
 * @param signerCertificate a certificate in BER, for its issuer and serial number; it isn't put into the document.
 * @param certificates, certificateLengths certificateCount certificates to put into the document, except those that it
 *     has already; may be null with count 0.
 * @param reserved not used.
 * @param existingSignature the document to add a signer to; null or length 0: a new one.
 * @param useSignedAttributes not 0 to sign attributes, 0 to sign the content.
 * @param certificateCount the number of certificates.
 */
TLVFORGE_STATUS CreateCmsFileSignature2(const uint8_t* content, uint32_t contentLength, const uint8_t* digest,
                                        uint32_t digestLength, const LibraryTime* signingTime,
                                        const uint8_t* digestAlgorithmOid, const uint8_t* digestParameters,
                                        uint32_t digestParametersLength, const uint8_t* signerCertificate,
                                        uint32_t signerCertificateLength, const uint8_t* const* certificates,
                                        const uint32_t* certificateLengths, uint32_t certificateCount,
                                        const uint8_t* signatureAlgorithmOid, const uint8_t* signatureParameters,
                                        uint32_t signatureParametersLength, uint32_t useSignedAttributes,
                                        RsaAttributes extraAttributes, const void* reserved, const uint8_t* signature,
                                        uint32_t signatureLength, const uint8_t* existingSignature,
                                        uint32_t existingSignatureLength, uint8_t* output, uint32_t* outputLength);

/* --- Several messages in one object: a plain SEQUENCE OF ContentInfo, without a type of its own --- */

/** CreateSeveralData makes an empty container, owned by the caller. */
TLVFORGE_STATUS CreateSeveralData(SeveralData** data);

/** DecodeSeveralData reads one container at the start of the bytes; what follows it is ignored. The caller owns it. */
TLVFORGE_STATUS DecodeSeveralData(const uint8_t* bytes, uint32_t length, SeveralData** data);

/** EncodeSeveralData writes the container with its messages in their order. */
TLVFORGE_STATUS EncodeSeveralData(const SeveralData* data, uint8_t* buffer, uint32_t* length);

/** FreeSeveralData frees the container with all messages. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeSeveralData(SeveralData* data);

/**
 * AddSeveralDataContentInfo appends a message, which the container adopts: the caller must not free it after success,
 * nor add it again.
 */
TLVFORGE_STATUS AddSeveralDataContentInfo(SeveralData* data, CmsContentInfo* info);

/**
 * GetSeveralDataContentInfoCount stores the number of messages, GetSeveralDataContentInfo lends the one at an index.
 */
TLVFORGE_STATUS GetSeveralDataContentInfoCount(const SeveralData* data, uint32_t* count);
TLVFORGE_STATUS GetSeveralDataContentInfo(const SeveralData* data, uint32_t index, CmsContentInfo** info);

/** RemoveSeveralDataContentInfo frees the message at an index. */
TLVFORGE_STATUS RemoveSeveralDataContentInfo(SeveralData* data, uint32_t index);

TLVFORGE_END

#endif
