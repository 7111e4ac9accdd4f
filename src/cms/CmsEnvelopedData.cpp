#include "tlvforge/enveloped.h"

#include "cms/document_parts.h"
#include "cms/enveloped.schema.h"
#include "engine/list_cells.h"
#include "engine/oids.h"
#include "x509/fields.h"
#include "x509/transition.h"

using namespace tlvforge;

namespace {

template <class Set>
using OriginatorSet = Set* OriginatorInfo::*;

// A set of originatorInfo; null too where the document has no originatorInfo.
template <class Set>
const Set* SetOf(const CmsEnvelopedData* enveloped, OriginatorSet<Set> set) {
    return enveloped->originatorInfo == nullptr ? nullptr : enveloped->originatorInfo->*set;
}

template <class Set>
Status CountSet(const CmsEnvelopedData* enveloped, OriginatorSet<Set> set, uint32_t* count,
                Place place = Place::Here()) {
    if (AnyNull(enveloped, count)) return Fail(StatusBadArgument, place);
    *count = GetAsn1ListLength(SetOf(enveloped, set));
    return StatusOk;
}

// Adds with one of the two functions for encoded members. originatorInfo is made first and stays after a failure.
template <class Set>
Status AddToSet(CmsEnvelopedData* enveloped, OriginatorSet<Set> set,
                Status (*add)(Set**, uint8_t, const uint8_t*, uint32_t, Status, Place), uint8_t kind,
                const uint8_t* data, uint32_t length, Place place = Place::Here()) {
    if (AnyNull(enveloped, data)) return Fail(StatusBadArgument, place);
    OriginatorInfo** info = &enveloped->originatorInfo;
    const Status status = *info == nullptr ? CreateTree(info) : StatusOk;
    return status == StatusOk ? add(&((*info)->*set), kind, data, length, StatusBadAlternative, place) : status;
}

// originatorInfo goes with its last set; an empty one doesn't hold it.
template <class Set, class Other>
Status RemoveSet(CmsEnvelopedData* enveloped, OriginatorSet<Set> set, OriginatorSet<Other> other,
                 Place place = Place::Here()) {
    if (enveloped == nullptr) return Fail(StatusBadArgument, place);
    if (SetOf(enveloped, set) == nullptr) return StatusOk;
    FreeField(&(enveloped->originatorInfo->*set));
    if (GetAsn1ListLength(SetOf(enveloped, other)) == 0) FreeField(&enveloped->originatorInfo);
    return StatusOk;
}

AlgorithmIdentifier* ContentAlgorithmOf(const CmsEnvelopedData* enveloped) {
    const EncryptedContentInfo* info = enveloped->encryptedContentInfo;
    return info == nullptr ? nullptr : info->contentEncryptionAlgorithm;
}

}  // namespace

Status CreateCmsEnvelopedData(CmsEnvelopedData** out) { return CreateTree(out); }

Status DecodeCmsEnvelopedData(const uint8_t* data, uint32_t length, CmsEnvelopedData** out) {
    return DecodeTree(data, length, out);
}

Status EncodeCmsEnvelopedData(const CmsEnvelopedData* enveloped, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(enveloped, buffer, length);
}

Status FreeCmsEnvelopedData(CmsEnvelopedData* enveloped) { return FreeTree(enveloped); }

Status GetCmsEnvelopedDataVersion(const CmsEnvelopedData* enveloped, int32_t* version) {
    if (AnyNull(enveloped, version)) return Fail(StatusBadArgument);
    if (enveloped->version == nullptr) return Fail(StatusAbsent);
    return GetAsn1Int32(enveloped->version, version);
}

Status SetCmsEnvelopedDataVersion(CmsEnvelopedData* enveloped, uint32_t version) {
    if (enveloped == nullptr) return Fail(StatusBadArgument);
    return SetAsn1Int32Field(&enveloped->version, static_cast<int32_t>(version));
}

Status GetCmsEnvelopedDataCertificatesCount(const CmsEnvelopedData* enveloped, uint32_t* count) {
    return CountSet(enveloped, &OriginatorInfo::certs, count);
}

Status GetCmsEnvelopedDataCrlsCount(const CmsEnvelopedData* enveloped, uint32_t* count) {
    return CountSet(enveloped, &OriginatorInfo::crls, count);
}

Status GetCmsEnvelopedDataEncodedCertificate(const CmsEnvelopedData* enveloped, uint32_t index, uint8_t* kind,
                                             uint8_t* buffer, uint32_t* length) {
    if (AnyNull(enveloped, kind)) return Fail(StatusBadArgument);
    return GetEncodedCertificate(SetOf(enveloped, &OriginatorInfo::certs), index, kind, buffer, length);
}

Status GetCmsEnvelopedDataEncodedCrl(const CmsEnvelopedData* enveloped, uint32_t index, uint8_t* kind, uint8_t* buffer,
                                     uint32_t* length) {
    if (AnyNull(enveloped, kind)) return Fail(StatusBadArgument);
    return GetEncodedCrl(SetOf(enveloped, &OriginatorInfo::crls), index, kind, buffer, length);
}

Status AddCmsEnvelopedDataEncodedCertificate(CmsEnvelopedData* enveloped, uint8_t kind, const uint8_t* data,
                                             uint32_t length) {
    return AddToSet(enveloped, &OriginatorInfo::certs, AddEncodedCertificate, kind, data, length);
}

Status AddCmsEnvelopedDataEncodedCrl(CmsEnvelopedData* enveloped, uint8_t kind, const uint8_t* data, uint32_t length) {
    return AddToSet(enveloped, &OriginatorInfo::crls, AddEncodedCrl, kind, data, length);
}

Status RemoveCmsEnvelopedDataCertificates(CmsEnvelopedData* enveloped) {
    return RemoveSet(enveloped, &OriginatorInfo::certs, &OriginatorInfo::crls);
}

Status RemoveCmsEnvelopedDataCrls(CmsEnvelopedData* enveloped) {
    return RemoveSet(enveloped, &OriginatorInfo::crls, &OriginatorInfo::certs);
}

Status GetCmsEnvelopedDataRecipientInfosCount(const CmsEnvelopedData* enveloped, uint32_t* count) {
    if (AnyNull(enveloped, count)) return Fail(StatusBadArgument);
    *count = GetAsn1ListLength(enveloped->recipientInfos);
    return StatusOk;
}

Status GetCmsEnvelopedDataRecipientInfo(const CmsEnvelopedData* enveloped, uint32_t index, void** recipient,
                                        uint32_t* kind) {
    if (AnyNull(enveloped, recipient, kind)) return Fail(StatusBadArgument);
    if (enveloped->recipientInfos == nullptr) return Fail(StatusAbsent);
    RecipientInfo* choice = nullptr;
    const Status status = GetListMember(enveloped->recipientInfos, index, &choice);
    if (status != StatusOk) return status;
    *static_cast<Cell*>(recipient) = choice->value;
    *kind = choice->selected < itemOf<RecipientInfo>.childCount ? choice->selected + 1 : 0;
    return StatusOk;
}

Status AddCmsEnvelopedDataRecipientInfo(CmsEnvelopedData* enveloped, uint32_t kind, void* recipient) {
    if (enveloped == nullptr || recipient == nullptr) return Fail(StatusBadArgument);
    Status status = NeedList(&enveloped->recipientInfos);
    if (status != StatusOk) return status;
    if (kind == 0 || kind > itemOf<RecipientInfo>.childCount) return Fail(StatusBadArgument);
    Tree<RecipientInfo> choice(AllocChoice<RecipientInfo>(kind - 1));
    if (!choice) return Fail(StatusOutOfMemory);
    RecipientInfo* const member = choice.Get();
    status = choice.MoveTo(enveloped->recipientInfos);
    // Only now, so that after a failure the recipient is still the caller's.
    if (status == StatusOk) member->value = recipient;
    return status;
}

Status RemoveCmsEnvelopedDataRecipientInfos(CmsEnvelopedData* enveloped) {
    if (enveloped == nullptr) return Fail(StatusBadArgument);
    if (enveloped->recipientInfos != nullptr) ClearList(enveloped->recipientInfos);
    return StatusOk;
}

Status GetCmsEnvelopedDataEncryptedContentTypeOid(const CmsEnvelopedData* enveloped, uint8_t* oid, uint32_t* length) {
    if (AnyNull(enveloped, length)) return Fail(StatusBadArgument);
    const EncryptedContentInfo* info = enveloped->encryptedContentInfo;
    if (info == nullptr || info->contentType == nullptr) return Fail(StatusAbsent);
    return GetAsn1Oid(info->contentType, oid, length);
}

Status SetCmsEnvelopedDataEncryptedContentTypeOid(CmsEnvelopedData* enveloped, const uint8_t* oid) {
    if (AnyNull(enveloped, oid)) return Fail(StatusBadArgument);
    if (enveloped->encryptedContentInfo == nullptr) return Fail(StatusAbsent);
    return ReplaceOidField(&enveloped->encryptedContentInfo->contentType, oid);
}

Status GetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters(const CmsEnvelopedData* enveloped, uint8_t* oid,
                                                                     uint32_t* oidLength, uint8_t* parameters,
                                                                     uint32_t* parametersLength) {
    if (AnyNull(enveloped, oidLength)) return Fail(StatusBadArgument);
    return GetAlgorithm(ContentAlgorithmOf(enveloped), oid, oidLength, parameters, parametersLength);
}

Status SetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters(CmsEnvelopedData* enveloped, const uint8_t* oid,
                                                                     const uint8_t* parameters,
                                                                     uint32_t parametersLength) {
    if (AnyNull(enveloped, oid)) return Fail(StatusBadArgument);
    return SetAlgorithm(ContentAlgorithmOf(enveloped), oid, parameters, parametersLength);
}

Status GetCmsEnvelopedDataEncryptedContent(const CmsEnvelopedData* enveloped, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(enveloped, length)) return Fail(StatusBadArgument);
    const EncryptedContentInfo* info = enveloped->encryptedContentInfo;
    if (info == nullptr) return Fail(StatusAbsent);
    if (info->encryptedContent != nullptr) return GetAsn1Value(info->encryptedContent, buffer, length);
    *length = 0;
    return StatusOk;
}

Status SetCmsEnvelopedDataEncryptedContent(CmsEnvelopedData* enveloped, const uint8_t* data, uint32_t length) {
    if (enveloped == nullptr) return Fail(StatusBadArgument);
    EncryptedContentInfo* info = enveloped->encryptedContentInfo;
    if (info == nullptr) return Fail(StatusAbsent);
    // Freed first: content can be large, and two of them need not be in memory at once.
    FreeField(&info->encryptedContent);
    if (data == nullptr || length == 0) return StatusOk;
    return SetAsn1ValueField(&info->encryptedContent, Asn1KindOctetString, data, length);
}

Status GetCmsEnvelopedDataUnprotectedAttributes(CmsEnvelopedData* enveloped, RsaAttributes* out) {
    if (AnyNull(enveloped, out)) return Fail(StatusBadArgument);
    *out = &enveloped->unprotectedAttrs;
    return StatusOk;
}

Status CreateKeyTrans(KeyTrans** out) { return CreateTree(out); }

Status DecodeKeyTrans(const uint8_t* data, uint32_t length, KeyTrans** out) { return DecodeTree(data, length, out); }

Status EncodeKeyTrans(const KeyTrans* recipient, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(recipient, buffer, length);
}

Status FreeKeyTrans(KeyTrans* recipient) { return FreeTree(recipient); }

Status GetKeyTransVersion(const KeyTrans* recipient, int32_t* version) {
    if (AnyNull(recipient, version)) return Fail(StatusBadArgument);
    if (recipient->version == nullptr) return Fail(StatusAbsent);
    return GetAsn1Int32(recipient->version, version);
}

Status SetKeyTransVersion(KeyTrans* recipient, uint32_t version) {
    if (recipient == nullptr) return Fail(StatusBadArgument);
    return SetAsn1Int32Field(&recipient->version, static_cast<int32_t>(version));
}

Status GetKeyTransRecipientIdentifier(KeyTrans* recipient, X509Name** issuer, uint8_t* serial, uint32_t* serialLength,
                                      uint8_t* keyId, uint32_t* keyIdLength) {
    if (recipient == nullptr) return Fail(StatusBadArgument);
    IdentifierParts parts;
    const Status status = parts.Of(recipient->rid, serialLength, keyIdLength);
    if (status != StatusOk) return status;
    if (parts.keyId != nullptr) {
        if (issuer != nullptr) *issuer = nullptr;
        return GetAsn1Value(parts.keyId, keyId, keyIdLength);
    }
    if (AnyNull(issuer, serial, serialLength)) return Fail(StatusBadArgument);
    *issuer = parts.issuer;
    // The buffer has to have room for a byte more than the number. This margin is intended.
    const uint32_t needed = GetAsn1ValueLength(parts.serialNumber);
    const bool fits = *serialLength > needed;
    *serialLength = needed;
    return fits ? GetAsn1Value(parts.serialNumber, serial, serialLength) : Fail(StatusBufferTooSmall);
}

Status SetKeyTransRecipientIdentifierIssuerAndSerialNumber(KeyTrans* recipient, const X509Name* issuer,
                                                           const uint8_t* serial, uint32_t serialLength) {
    if (AnyNull(recipient, issuer, serial)) return Fail(StatusBadArgument);
    return SetIssuerAndSerialNumber(recipient->rid, issuer, serial, serialLength);
}

Status SetKeyTransRecipientIdentifierSubjectKeyIdentifier(KeyTrans* recipient, const uint8_t* keyId, uint32_t length) {
    if (AnyNull(recipient, keyId)) return Fail(StatusBadArgument);
    return SetSubjectKeyIdentifier(recipient->rid, keyId, length);
}

Status GetKeyTransKeyEncryptionAlgorithmOidAndParameters(const KeyTrans* recipient, uint8_t* oid, uint32_t* oidLength,
                                                         uint8_t* parameters, uint32_t* parametersLength) {
    if (AnyNull(recipient, oidLength)) return Fail(StatusBadArgument);
    return GetAlgorithm(recipient->keyEncryptionAlgorithm, oid, oidLength, parameters, parametersLength);
}

Status SetKeyTransKeyEncryptionAlgorithmOidAndParameters(KeyTrans* recipient, const uint8_t* oid,
                                                         const uint8_t* parameters, uint32_t parametersLength) {
    if (AnyNull(recipient, oid)) return Fail(StatusBadArgument);
    return SetAlgorithm(recipient->keyEncryptionAlgorithm, oid, parameters, parametersLength);
}

Status GetKeyTransEncryptedKey(const KeyTrans* recipient, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(recipient, length)) return Fail(StatusBadArgument);
    if (recipient->encryptedKey == nullptr) return Fail(StatusAbsent);
    return GetAsn1Value(recipient->encryptedKey, buffer, length);
}

Status SetKeyTransEncryptedKey(KeyTrans* recipient, const uint8_t* data, uint32_t length) {
    if (AnyNull(recipient, data)) return Fail(StatusBadArgument);
    return SetAsn1ValueField(&recipient->encryptedKey, Asn1KindOctetString, data, length);
}

Status DecodeGost2814789Parameters(const uint8_t* data, uint32_t length, uint8_t* iv, uint32_t* ivLength, uint8_t* oid,
                                   uint32_t* oidLength) {
    if (AnyNull(data, ivLength, oidLength)) return Fail(StatusBadArgument);
    Tree<Gost2814789Parameters> parameters;
    if (parameters.Decode(data, length) != StatusOk) return Fail(StatusBadEncoding);
    const Status status = GetAsn1Value(parameters->iv, iv, ivLength);
    return status == StatusOk ? GetAsn1Oid(parameters->encryptionParamSet, oid, oidLength) : status;
}

Status EncodeGost2814789Parameters(const uint8_t* iv, uint32_t ivLength, const uint8_t* oid, uint8_t* buffer,
                                   uint32_t* length) {
    if (AnyNull(iv, oid, length)) return Fail(StatusBadArgument);
    Tree<Gost2814789Parameters> parameters;
    Status status = parameters.Create();
    if (status == StatusOk) status = SetAsn1ValueField(&parameters->iv, Asn1KindOctetString, iv, ivLength);
    if (status == StatusOk) status = ReplaceOidField(&parameters->encryptionParamSet, oid);
    return status == StatusOk ? parameters.Encode(buffer, length) : status;
}
