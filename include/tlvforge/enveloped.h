/*
 * Encrypted messages: the EnvelopedData of CMS with its key transport recipient (RFC 5652, 6), and what a GOST key
 * transport puts into them (RFC 4490, 4.2). Nothing is encrypted or decrypted here: encrypted key, encrypted content
 * and algorithm parameters are bytes that the caller brings and takes. No field is derived from another, the versions
 * neither.
 *
 * An EnvelopedData travels as the content of a ContentInfo of type 1.2.840.113549.1.7.3 (cms.h).
 */
#ifndef TLVFORGE_ENVELOPED_H
#define TLVFORGE_ENVELOPED_H

#include "tlvforge/attributes.h"
#include "tlvforge/cms.h"
#include "tlvforge/names.h"
#include "tlvforge/status.h"

TLVFORGE_BEGIN

typedef struct CmsEnvelopedData CmsEnvelopedData;           /* EnvelopedData (RFC 5652, 6.1) */
typedef struct KeyTrans KeyTrans;                           /* KeyTransRecipientInfo (RFC 5652, 6.2.1) */
typedef struct GostR3410KeyTransport GostR3410KeyTransport; /* GostR3410-KeyTransport (RFC 4490, 4.2) */

/* Kinds of recipients. All but the first are kept as whole elements, tagged [1] to [4]. */
enum {
    CmsRecipientKindKeyTransport = 1,
    CmsRecipientKindKeyAgreement = 2,
    CmsRecipientKindKeyEncryptionKey = 3,
    CmsRecipientKindPassword = 4,
    CmsRecipientKindOther = 5
};

/* --- EnvelopedData: the object --- */

/**
 * CreateCmsEnvelopedData makes a document with every required field in place and empty, without originatorInfo,
 * encrypted content and unprotected attributes. The caller owns it.
 */
TLVFORGE_STATUS CreateCmsEnvelopedData(CmsEnvelopedData** out);

/**
 * DecodeCmsEnvelopedData reads one BER EnvelopedData, not a ContentInfo, at the start of the bytes; what follows it is
 * ignored. The caller owns it. StatusBadEncoding also for a CRL in originatorInfo that is a plain CertificateList.
 */
TLVFORGE_STATUS DecodeCmsEnvelopedData(const uint8_t* data, uint32_t length, CmsEnvelopedData** out);

/**
 * EncodeCmsEnvelopedData writes the document as DER. StatusBadAlternative while it holds a CRL that was added,
 * StatusAbsent while a recipient lacks a field.
 */
TLVFORGE_STATUS EncodeCmsEnvelopedData(const CmsEnvelopedData* enveloped, uint8_t* buffer, uint32_t* length);

/** FreeCmsEnvelopedData frees a document with all that it owns. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeCmsEnvelopedData(CmsEnvelopedData* enveloped);

/**
 * GetCmsEnvelopedDataVersion and SetCmsEnvelopedDataVersion: the number on the wire, 0, 2, 3 or 4 by the rules of RFC
 * 5652, 6.1, none of which is checked. Getting: StatusAbsent while there is none, StatusBufferTooSmall for a number of
 * more than four bytes.
 */
TLVFORGE_STATUS GetCmsEnvelopedDataVersion(const CmsEnvelopedData* enveloped, int32_t* version);
TLVFORGE_STATUS SetCmsEnvelopedDataVersion(CmsEnvelopedData* enveloped, uint32_t version);

/* --- EnvelopedData: certificates and CRLs of originatorInfo --- */

/**
 * GetCmsEnvelopedDataCertificatesCount and GetCmsEnvelopedDataCrlsCount store the numbers of members; 0 without
 * originatorInfo or without the set.
 */
TLVFORGE_STATUS GetCmsEnvelopedDataCertificatesCount(const CmsEnvelopedData* enveloped, uint32_t* count);
TLVFORGE_STATUS GetCmsEnvelopedDataCrlsCount(const CmsEnvelopedData* enveloped, uint32_t* count);

/**
 * GetCmsEnvelopedDataEncodedCertificate copies a whole element out, as GetCmsSignedDataEncodedCertificate does.
 * StatusAbsent without the set.
 * @param kind a certificateKind of cms.h, according to the first octet.
 * @param length may be null together with buffer, for the kind alone.
 */
TLVFORGE_STATUS GetCmsEnvelopedDataEncodedCertificate(const CmsEnvelopedData* enveloped, uint32_t index, uint8_t* kind,
                                                      uint8_t* buffer, uint32_t* length);

/** GetCmsEnvelopedDataEncodedCrl has no member that it can read: StatusBadEncoding. StatusAbsent without the set. */
TLVFORGE_STATUS GetCmsEnvelopedDataEncodedCrl(const CmsEnvelopedData* enveloped, uint32_t index, uint8_t* kind,
                                              uint8_t* buffer, uint32_t* length);

/**
 * AddCmsEnvelopedDataEncodedCertificate appends a copy of a whole element, which is neither parsed nor checked. Its
 * first octet is set to that of the kind. What is in the set already is not added again (StatusOk). originatorInfo and
 * the set are made first and stay after a failure. StatusBadArgument for length 0.
 * @param kind a certificateKind of cms.h, otherwise StatusBadAlternative, where AddCmsSignedDataEncodedCertificate
 *     returns StatusBadArgument.
 */
TLVFORGE_STATUS AddCmsEnvelopedDataEncodedCertificate(CmsEnvelopedData* enveloped, uint8_t kind, const uint8_t* data,
                                                      uint32_t length);

/**
 * AddCmsEnvelopedDataEncodedCrl makes originatorInfo and the set, and adds a member that counts and can't be read
 * (StatusBadEncoding). The document doesn't encode (StatusBadAlternative) until the CRLs are removed.
 * @param kind a crlKind of cms.h, otherwise StatusBadAlternative.
 * @param data required, not kept.
 */
TLVFORGE_STATUS AddCmsEnvelopedDataEncodedCrl(CmsEnvelopedData* enveloped, uint8_t kind, const uint8_t* data,
                                              uint32_t length);

/**
 * RemoveCmsEnvelopedDataCertificates and RemoveCmsEnvelopedDataCrls take the set away, and originatorInfo with it when
 * the other set is absent or empty. Without the set they do nothing (StatusOk).
 */
TLVFORGE_STATUS RemoveCmsEnvelopedDataCertificates(CmsEnvelopedData* enveloped);
TLVFORGE_STATUS RemoveCmsEnvelopedDataCrls(CmsEnvelopedData* enveloped);

/* --- EnvelopedData: recipients --- */

/** GetCmsEnvelopedDataRecipientInfosCount stores the number of recipients. */
TLVFORGE_STATUS GetCmsEnvelopedDataRecipientInfosCount(const CmsEnvelopedData* enveloped, uint32_t* count);

/**
 * GetCmsEnvelopedDataRecipientInfo lends a recipient and stores its kind, a CmsRecipientKind number.
 * @param recipient a KeyTrans for kind 1, otherwise an Asn1Any (asn1.h) with the whole element.
 */
TLVFORGE_STATUS GetCmsEnvelopedDataRecipientInfo(const CmsEnvelopedData* enveloped, uint32_t index, void** recipient,
                                                 uint32_t* kind);

/**
 * AddCmsEnvelopedDataRecipientInfo appends a recipient, which the document adopts: the caller must not free it after
 * success, and a recipient can be added once only. StatusBadArgument for an unknown kind.
 * @param recipient a KeyTrans for kind 1.
 */
TLVFORGE_STATUS AddCmsEnvelopedDataRecipientInfo(CmsEnvelopedData* enveloped, uint32_t kind, void* recipient);

/** RemoveCmsEnvelopedDataRecipientInfos frees all recipients; the empty set stays. */
TLVFORGE_STATUS RemoveCmsEnvelopedDataRecipientInfos(CmsEnvelopedData* enveloped);

/* --- EnvelopedData: the encrypted content --- */

/**
 * GetCmsEnvelopedDataEncryptedContentTypeOid and SetCmsEnvelopedDataEncryptedContentTypeOid: what the content is once
 * it is decrypted, 1.2.840.113549.1.7.1 for plain data.
 * @param oid length-prefixed; empty in a new document.
 */
TLVFORGE_STATUS GetCmsEnvelopedDataEncryptedContentTypeOid(const CmsEnvelopedData* enveloped, uint8_t* oid,
                                                           uint32_t* length);
TLVFORGE_STATUS SetCmsEnvelopedDataEncryptedContentTypeOid(CmsEnvelopedData* enveloped, const uint8_t* oid);

/**
 * GetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters reads the algorithm of the content encryption. One call
 * is enough for both lengths. StatusBufferTooSmall when either buffer is too small.
 * @param parameters may be null together with its length.
 */
TLVFORGE_STATUS GetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters(const CmsEnvelopedData* enveloped,
                                                                              uint8_t* oid, uint32_t* oidLength,
                                                                              uint8_t* parameters,
                                                                              uint32_t* parametersLength);

/** SetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters sets it. */
TLVFORGE_STATUS SetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters(CmsEnvelopedData* enveloped,
                                                                              const uint8_t* oid,
                                                                              const uint8_t* parameters,
                                                                              uint32_t parametersLength);

/**
 * GetCmsEnvelopedDataEncryptedContent copies the encrypted bytes; without the field the length is 0.
 * SetCmsEnvelopedDataEncryptedContent stores them.
 * @param data null, or length 0, takes the field away.
 */
TLVFORGE_STATUS GetCmsEnvelopedDataEncryptedContent(const CmsEnvelopedData* enveloped, uint8_t* buffer,
                                                    uint32_t* length);
TLVFORGE_STATUS SetCmsEnvelopedDataEncryptedContent(CmsEnvelopedData* enveloped, const uint8_t* data, uint32_t length);

/**
 * GetCmsEnvelopedDataUnprotectedAttributes lends the handle of the field, for the functions of attributes.h. It works
 * while the document has no such attributes, too, and must never go to FreeRsaAttributes.
 */
TLVFORGE_STATUS GetCmsEnvelopedDataUnprotectedAttributes(CmsEnvelopedData* enveloped, RsaAttributes* out);

/* --- The key transport recipient --- */

/**
 * CreateKeyTrans makes a recipient with every field in place and empty. The caller owns it (FreeKeyTrans) until it is
 * added to a document. It does not encode before its identifier has been set (StatusAbsent).
 */
TLVFORGE_STATUS CreateKeyTrans(KeyTrans** out);

/** DecodeKeyTrans reads one KeyTransRecipientInfo, owned by the caller; EncodeKeyTrans is the reverse. */
TLVFORGE_STATUS DecodeKeyTrans(const uint8_t* data, uint32_t length, KeyTrans** out);
TLVFORGE_STATUS EncodeKeyTrans(const KeyTrans* recipient, uint8_t* buffer, uint32_t* length);

/** FreeKeyTrans frees a recipient, not one that a document has adopted. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeKeyTrans(KeyTrans* recipient);

/**
 * GetKeyTransVersion and SetKeyTransVersion: 0 for a recipient named by issuer and serial number, 2 for one named by
 * key identifier; not checked. Getting: StatusAbsent while there is none, StatusBufferTooSmall for a number of more
 * than four bytes.
 */
TLVFORGE_STATUS GetKeyTransVersion(const KeyTrans* recipient, int32_t* version);
TLVFORGE_STATUS SetKeyTransVersion(KeyTrans* recipient, uint32_t version);

/**
 * GetKeyTransRecipientIdentifier reads by which of two forms the recipient is named. Parameters of the other form may
 * be null. StatusAbsent while the recipient isn't named. Issuer and serial number: *keyIdLength becomes 0, also
 * where one of the two is missing (StatusAbsent); *issuer is lent. There is no size query in this form: serial is
 * required (StatusBadArgument), with room for one byte more than the number (StatusBufferTooSmall, with the length and
 * *issuer stored). Key identifier: *issuer becomes null and *serialLength 0; keyId and keyIdLength are an output
 * buffer.
 */
TLVFORGE_STATUS GetKeyTransRecipientIdentifier(KeyTrans* recipient, X509Name** issuer, uint8_t* serial,
                                               uint32_t* serialLength, uint8_t* keyId, uint32_t* keyIdLength);

/**
 * SetKeyTransRecipientIdentifierIssuerAndSerialNumber names the recipient by its certificate, and
 * SetKeyTransRecipientIdentifierSubjectKeyIdentifier by its key, instead of what was there.
 * @param issuer copied.
 * @param serial big-endian content bytes, stored unchanged. If there is no memory to replace a serial number, it is
 *     lost with StatusOk, as intended (docs/oddities.md).
 */
TLVFORGE_STATUS SetKeyTransRecipientIdentifierIssuerAndSerialNumber(KeyTrans* recipient, const X509Name* issuer,
                                                                    const uint8_t* serial, uint32_t serialLength);
TLVFORGE_STATUS SetKeyTransRecipientIdentifierSubjectKeyIdentifier(KeyTrans* recipient, const uint8_t* keyId,
                                                                   uint32_t length);

/**
 * GetKeyTransKeyEncryptionAlgorithmOidAndParameters and SetKeyTransKeyEncryptionAlgorithmOidAndParameters are as the
 * two functions for the algorithm of the content encryption.
 */
TLVFORGE_STATUS GetKeyTransKeyEncryptionAlgorithmOidAndParameters(const KeyTrans* recipient, uint8_t* oid,
                                                                  uint32_t* oidLength, uint8_t* parameters,
                                                                  uint32_t* parametersLength);
TLVFORGE_STATUS SetKeyTransKeyEncryptionAlgorithmOidAndParameters(KeyTrans* recipient, const uint8_t* oid,
                                                                  const uint8_t* parameters, uint32_t parametersLength);

/**
 * GetKeyTransEncryptedKey and SetKeyTransEncryptedKey: the encrypted key; length 0 in a new recipient. Under GOST R
 * 34.10 it is the encoding of a GostR3410KeyTransport.
 */
TLVFORGE_STATUS GetKeyTransEncryptedKey(const KeyTrans* recipient, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS SetKeyTransEncryptedKey(KeyTrans* recipient, const uint8_t* data, uint32_t length);

/* --- Parameters of GOST 28147-89 as content encryption, 1.2.643.2.2.21 (RFC 4357, 8.1) --- */

/**
 * DecodeGost2814789Parameters reads initialization vector and parameter set. A short iv buffer (StatusBufferTooSmall)
 * ends the call before the OID. StatusBadEncoding for anything that isn't such a sequence.
 */
TLVFORGE_STATUS DecodeGost2814789Parameters(const uint8_t* data, uint32_t length, uint8_t* iv, uint32_t* ivLength,
                                            uint8_t* oid, uint32_t* oidLength);

/**
 * EncodeGost2814789Parameters writes them.
 * @param iv of any length, 8 in the standard.
 */
TLVFORGE_STATUS EncodeGost2814789Parameters(const uint8_t* iv, uint32_t ivLength, const uint8_t* oid, uint8_t* buffer,
                                            uint32_t* length);

/* --- GostR3410-KeyTransport, the encrypted key of a GOST recipient (RFC 4490, 4.2). No length is checked --- */

/**
 * CreateGostR3410KeyTransport makes an object with an empty sessionEncryptedKey and without transportParameters. The
 * caller owns it. The first setter that needs transportParameters makes them with all required fields empty; set them
 * all before encoding, which writes an empty field as it stands.
 */
TLVFORGE_STATUS CreateGostR3410KeyTransport(GostR3410KeyTransport** out);

/** DecodeGostR3410KeyTransport reads one element, owned by the caller; EncodeGostR3410KeyTransport is the reverse. */
TLVFORGE_STATUS DecodeGostR3410KeyTransport(const uint8_t* data, uint32_t length, GostR3410KeyTransport** out);
TLVFORGE_STATUS EncodeGostR3410KeyTransport(const GostR3410KeyTransport* transport, uint8_t* buffer, uint32_t* length);

/** FreeGostR3410KeyTransport frees it. Null is allowed; always StatusOk. */
TLVFORGE_API Status FreeGostR3410KeyTransport(GostR3410KeyTransport* transport);

/**
 * GetGostR3410KeyTransportEncryptedKey, GetGostR3410KeyTransportMaskKey and GetGostR3410KeyTransportMacKey copy the
 * fields of sessionEncryptedKey. They are empty in a new object (length 0), an absent mask is, too.
 */
TLVFORGE_STATUS GetGostR3410KeyTransportEncryptedKey(const GostR3410KeyTransport* transport, uint8_t* buffer,
                                                     uint32_t* length);
TLVFORGE_STATUS GetGostR3410KeyTransportMaskKey(const GostR3410KeyTransport* transport, uint8_t* buffer,
                                                uint32_t* length);
TLVFORGE_STATUS GetGostR3410KeyTransportMacKey(const GostR3410KeyTransport* transport, uint8_t* buffer,
                                               uint32_t* length);

/**
 * GetGostR3410KeyTransportEncryptionParamSetOid copies the parameter set, length-prefixed, and
 * GetGostR3410KeyTransportUkm the user keying material. StatusAbsent without transportParameters; a field of them that
 * was never set is empty.
 */
TLVFORGE_STATUS GetGostR3410KeyTransportEncryptionParamSetOid(const GostR3410KeyTransport* transport, uint8_t* oid,
                                                              uint32_t* length);
TLVFORGE_STATUS GetGostR3410KeyTransportUkm(const GostR3410KeyTransport* transport, uint8_t* buffer, uint32_t* length);

/**
 * GetGostR3410KeyTransportEphemeralPublicKey copies the content of the key's BIT STRING, and
 * GetGostR3410KeyTransportEphemeralPublicKeyAlgorithmOidAndParameters its algorithm by the rule of the other algorithm
 * getters. StatusAbsent without ephemeralPublicKey, and for a key that was never set.
 */
TLVFORGE_STATUS GetGostR3410KeyTransportEphemeralPublicKey(const GostR3410KeyTransport* transport, uint8_t* buffer,
                                                           uint32_t* length);
TLVFORGE_STATUS GetGostR3410KeyTransportEphemeralPublicKeyAlgorithmOidAndParameters(
    const GostR3410KeyTransport* transport, uint8_t* oid, uint32_t* oidLength, uint8_t* parameters,
    uint32_t* parametersLength);

/**
 * SetGostR3410KeyTransportEncryptedKey, SetGostR3410KeyTransportMaskKey and SetGostR3410KeyTransportMacKey store the
 * fields of sessionEncryptedKey. A mask that is null or of length 0 takes the field away.
 */
TLVFORGE_STATUS SetGostR3410KeyTransportEncryptedKey(GostR3410KeyTransport* transport, const uint8_t* data,
                                                     uint32_t length);
TLVFORGE_STATUS SetGostR3410KeyTransportMaskKey(GostR3410KeyTransport* transport, const uint8_t* data, uint32_t length);
TLVFORGE_STATUS SetGostR3410KeyTransportMacKey(GostR3410KeyTransport* transport, const uint8_t* data, uint32_t length);

/**
 * SetGostR3410KeyTransportEncryptionParamSetOid stores the parameter set, once: when there is one already, set or
 * decoded, it is emptied, whatever oid is. A further call then fills it.
 */
TLVFORGE_STATUS SetGostR3410KeyTransportEncryptionParamSetOid(GostR3410KeyTransport* transport, const uint8_t* oid);

/**
 * SetGostR3410KeyTransportEphemeralPublicKey stores the key as a BIT STRING with the given content, and
 * SetGostR3410KeyTransportEphemeralPublicKeyAlgorithmOidAndParameters its algorithm. A null data or oid takes
 * ephemeralPublicKey away, with both its fields.
 */
TLVFORGE_STATUS SetGostR3410KeyTransportEphemeralPublicKey(GostR3410KeyTransport* transport, const uint8_t* data,
                                                           uint32_t length);
TLVFORGE_STATUS SetGostR3410KeyTransportEphemeralPublicKeyAlgorithmOidAndParameters(GostR3410KeyTransport* transport,
                                                                                    const uint8_t* oid,
                                                                                    const uint8_t* parameters,
                                                                                    uint32_t parametersLength);

/** SetGostR3410KeyTransportUkm stores the user keying material. */
TLVFORGE_STATUS SetGostR3410KeyTransportUkm(GostR3410KeyTransport* transport, const uint8_t* data, uint32_t length);

TLVFORGE_END

#endif
