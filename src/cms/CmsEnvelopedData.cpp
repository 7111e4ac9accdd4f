#include "tlvforge/enveloped.h"

#include "cms/document_parts.h"
#include "cms/enveloped.schema.h"
#include "x509/fields.h"

using namespace tlvforge;

namespace {

// A field of originatorInfo, and of encryptedContentInfo.
template <auto Member, class Record>
auto Originator(Record* enveloped, Place place = Place::Here()) {
    return At<&CmsEnvelopedData::originatorInfo, Member>(enveloped, place);
}
template <auto Member, class Record>
auto EncryptedContent(Record* enveloped, Place place = Place::Here()) {
    return At<&CmsEnvelopedData::encryptedContentInfo, Member>(enveloped, place);
}

// Makes a set of originatorInfo, which stays after a failure.
template <class Set>
Status EnsureSet(CmsEnvelopedData* enveloped, Set* OriginatorInfo::*set) {
    if (const Status status = Ensure(&enveloped->originatorInfo)) return status;
    return Ensure(&(enveloped->originatorInfo->*set));
}

// originatorInfo is freed with its last set; an empty one doesn't keep it.
template <class Set, class Other>
Status RemoveSet(CmsEnvelopedData* enveloped, Set* OriginatorInfo::*set, Other* OriginatorInfo::*other) {
    OriginatorInfo* info = enveloped->originatorInfo;
    if (info == nullptr || info->*set == nullptr) return StatusOk;
    FreeField(&(info->*set));
    if (GetAsn1ListLength(info->*other) == 0) FreeField(&enveloped->originatorInfo);
    return StatusOk;
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
    return GetInt32(At<&CmsEnvelopedData::version>(enveloped), version);
}

Status SetCmsEnvelopedDataVersion(CmsEnvelopedData* enveloped, uint32_t version) {
    if (enveloped == nullptr) return Fail(StatusBadArgument);
    return SetInt32(At<&CmsEnvelopedData::version>(enveloped), static_cast<int32_t>(version));
}

Status GetCmsEnvelopedDataCertificatesCount(const CmsEnvelopedData* enveloped, uint32_t* count) {
    if (AnyNull(enveloped, count)) return Fail(StatusBadArgument);
    return GetOptionalCount(Originator<&OriginatorInfo::certs>(enveloped), count);
}

Status GetCmsEnvelopedDataCrlsCount(const CmsEnvelopedData* enveloped, uint32_t* count) {
    if (AnyNull(enveloped, count)) return Fail(StatusBadArgument);
    return GetOptionalCount(Originator<&OriginatorInfo::crls>(enveloped), count);
}

Status GetCmsEnvelopedDataEncodedCertificate(const CmsEnvelopedData* enveloped, uint32_t index, uint8_t* kind,
                                             uint8_t* buffer, uint32_t* length) {
    if (AnyNull(enveloped, kind)) return Fail(StatusBadArgument);
    const auto certificates = Originator<&OriginatorInfo::certs>(enveloped);
    Bytes certificate{};
    if (const Status status = GetEncodedCertificate(certificates, index, kind, &certificate)) return status;
    if (length == nullptr) return buffer == nullptr ? StatusOk : Fail(StatusBadArgument);
    return CopyOut(certificate.data, certificate.length, buffer, length);
}

// No CRL can be read back: see docs/oddities.md.
Status GetCmsEnvelopedDataEncodedCrl(const CmsEnvelopedData* enveloped, uint32_t index, uint8_t* kind, uint8_t*,
                                     uint32_t*) {
    if (AnyNull(enveloped, kind)) return Fail(StatusBadArgument);
    const auto crls = Originator<&OriginatorInfo::crls>(enveloped);
    RevocationInfoChoice* crl = nullptr;
    if (const Status status = GetMember(crls, index, &crl)) return status;
    return Fail(StatusBadEncoding);
}

Status AddCmsEnvelopedDataEncodedCertificate(CmsEnvelopedData* enveloped, uint8_t kind, const uint8_t* data,
                                             uint32_t length) {
    if (AnyNull(enveloped, data)) return Fail(StatusBadArgument);
    if (const Status status = EnsureSet(enveloped, &OriginatorInfo::certs)) return status;
    if (!IsCertificateKind(kind)) return Fail(StatusBadAlternative);
    if (length == 0) return Fail(StatusBadArgument);
    return AddEncodedCertificate(enveloped->originatorInfo->certs, kind, {data, length});
}

Status AddCmsEnvelopedDataEncodedCrl(CmsEnvelopedData* enveloped, uint8_t kind, const uint8_t* data, uint32_t) {
    if (AnyNull(enveloped, data)) return Fail(StatusBadArgument);
    if (const Status status = EnsureSet(enveloped, &OriginatorInfo::crls)) return status;
    if (!IsCrlKind(kind)) return Fail(StatusBadAlternative);
    return AddEncodedCrl(enveloped->originatorInfo->crls);
}

Status RemoveCmsEnvelopedDataCertificates(CmsEnvelopedData* enveloped) {
    if (enveloped == nullptr) return Fail(StatusBadArgument);
    return RemoveSet(enveloped, &OriginatorInfo::certs, &OriginatorInfo::crls);
}

Status RemoveCmsEnvelopedDataCrls(CmsEnvelopedData* enveloped) {
    if (enveloped == nullptr) return Fail(StatusBadArgument);
    return RemoveSet(enveloped, &OriginatorInfo::crls, &OriginatorInfo::certs);
}

Status GetCmsEnvelopedDataRecipientInfosCount(const CmsEnvelopedData* enveloped, uint32_t* count) {
    if (AnyNull(enveloped, count)) return Fail(StatusBadArgument);
    return GetOptionalCount(At<&CmsEnvelopedData::recipientInfos>(enveloped), count);
}

Status GetCmsEnvelopedDataRecipientInfo(const CmsEnvelopedData* enveloped, uint32_t index, void** recipient,
                                        uint32_t* kind) {
    if (AnyNull(enveloped, recipient, kind)) return Fail(StatusBadArgument);
    const auto recipients = At<&CmsEnvelopedData::recipientInfos>(enveloped);
    RecipientInfo* choice = nullptr;
    if (const Status status = GetMember(recipients, index, &choice)) return status;
    *static_cast<Cell*>(recipient) = choice->value;
    *kind = choice->selected < itemOf<RecipientInfo>.childCount ? choice->selected + 1 : 0;
    return StatusOk;
}

Status AddCmsEnvelopedDataRecipientInfo(CmsEnvelopedData* enveloped, uint32_t kind, void* recipient) {
    if (enveloped == nullptr || recipient == nullptr) return Fail(StatusBadArgument);
    if (const Status status = Ensure(&enveloped->recipientInfos)) return status;
    if (kind == 0 || kind > itemOf<RecipientInfo>.childCount) return Fail(StatusBadArgument);
    Tree<RecipientInfo> choice(AllocChoice<RecipientInfo>(kind - 1));
    if (!choice) return Fail(StatusOutOfMemory);
    RecipientInfo* const member = choice.Get();
    if (const Status status = choice.MoveTo(enveloped->recipientInfos)) return status;
    // Only now, so that after a failure the recipient is still the caller's.
    member->value = recipient;
    return StatusOk;
}

Status RemoveCmsEnvelopedDataRecipientInfos(CmsEnvelopedData* enveloped) {
    if (enveloped == nullptr) return Fail(StatusBadArgument);
    if (enveloped->recipientInfos != nullptr) ClearList(enveloped->recipientInfos);
    return StatusOk;
}

Status GetCmsEnvelopedDataEncryptedContentTypeOid(const CmsEnvelopedData* enveloped, uint8_t* oid, uint32_t* length) {
    if (AnyNull(enveloped, length)) return Fail(StatusBadArgument);
    return GetOid(EncryptedContent<&EncryptedContentInfo::contentType>(enveloped), oid, length);
}

Status SetCmsEnvelopedDataEncryptedContentTypeOid(CmsEnvelopedData* enveloped, const uint8_t* oid) {
    if (AnyNull(enveloped, oid)) return Fail(StatusBadArgument);
    return SetOid(EncryptedContent<&EncryptedContentInfo::contentType>(enveloped), oid);
}

Status GetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters(const CmsEnvelopedData* enveloped, uint8_t* oid,
                                                                     uint32_t* oidLength, uint8_t* parameters,
                                                                     uint32_t* parametersLength) {
    if (AnyNull(enveloped, oidLength)) return Fail(StatusBadArgument);
    return GetAlgorithm(EncryptedContent<&EncryptedContentInfo::contentEncryptionAlgorithm>(enveloped),
                        {oid, oidLength}, {parameters, parametersLength});
}

Status SetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters(CmsEnvelopedData* enveloped, const uint8_t* oid,
                                                                     const uint8_t* parameters,
                                                                     uint32_t parametersLength) {
    if (AnyNull(enveloped, oid)) return Fail(StatusBadArgument);
    return SetAlgorithm(EncryptedContent<&EncryptedContentInfo::contentEncryptionAlgorithm>(enveloped), oid,
                        {parameters, parametersLength});
}

Status GetCmsEnvelopedDataEncryptedContent(const CmsEnvelopedData* enveloped, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(enveloped, length)) return Fail(StatusBadArgument);
    return GetOptionalBytes(EncryptedContent<&EncryptedContentInfo::encryptedContent>(enveloped), buffer, length);
}

Status SetCmsEnvelopedDataEncryptedContent(CmsEnvelopedData* enveloped, const uint8_t* data, uint32_t length) {
    if (enveloped == nullptr) return Fail(StatusBadArgument);
    return ReplaceContent(EncryptedContent<&EncryptedContentInfo::encryptedContent>(enveloped), {data, length});
}

Status GetCmsEnvelopedDataUnprotectedAttributes(CmsEnvelopedData* enveloped, RsaAttributes* out) {
    if (AnyNull(enveloped, out)) return Fail(StatusBadArgument);
    return Borrow(At<&CmsEnvelopedData::unprotectedAttrs>(enveloped), out);
}

Status CreateKeyTrans(KeyTrans** out) { return CreateTree(out); }

Status DecodeKeyTrans(const uint8_t* data, uint32_t length, KeyTrans** out) { return DecodeTree(data, length, out); }

Status EncodeKeyTrans(const KeyTrans* recipient, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(recipient, buffer, length);
}

Status FreeKeyTrans(KeyTrans* recipient) { return FreeTree(recipient); }

Status GetKeyTransVersion(const KeyTrans* recipient, int32_t* version) {
    if (AnyNull(recipient, version)) return Fail(StatusBadArgument);
    return GetInt32(At<&KeyTrans::version>(recipient), version);
}

Status SetKeyTransVersion(KeyTrans* recipient, uint32_t version) {
    if (recipient == nullptr) return Fail(StatusBadArgument);
    return SetInt32(At<&KeyTrans::version>(recipient), static_cast<int32_t>(version));
}

Status GetKeyTransRecipientIdentifier(KeyTrans* recipient, X509Name** issuer, uint8_t* serial, uint32_t* serialLength,
                                      uint8_t* keyId, uint32_t* keyIdLength) {
    if (recipient == nullptr) return Fail(StatusBadArgument);
    const auto identifier = At<&KeyTrans::rid>(recipient);
    IdentifierParts parts;
    if (const Status status = parts.Of(identifier, serialLength, keyIdLength)) return status;
    if (parts.keyId != nullptr) {
        if (issuer != nullptr) *issuer = nullptr;
        return GetAsn1Value(parts.keyId, keyId, keyIdLength);
    }
    if (AnyNull(issuer, serial, serialLength)) return Fail(StatusBadArgument);
    *issuer = parts.issuer;
    // The buffer has to have room for a byte more than the number: see docs/oddities.md.
    const uint32_t offered = *serialLength;
    *serialLength = GetAsn1ValueLength(parts.serialNumber);
    if (offered <= *serialLength) return Fail(StatusBufferTooSmall);
    return GetAsn1Value(parts.serialNumber, serial, serialLength);
}

Status SetKeyTransRecipientIdentifierIssuerAndSerialNumber(KeyTrans* recipient, const X509Name* issuer,
                                                           const uint8_t* serial, uint32_t serialLength) {
    if (AnyNull(recipient, issuer, serial)) return Fail(StatusBadArgument);
    return SetIssuerAndSerialNumber(At<&KeyTrans::rid>(recipient), issuer, {serial, serialLength});
}

Status SetKeyTransRecipientIdentifierSubjectKeyIdentifier(KeyTrans* recipient, const uint8_t* keyId, uint32_t length) {
    if (AnyNull(recipient, keyId)) return Fail(StatusBadArgument);
    return SetSubjectKeyIdentifier(At<&KeyTrans::rid>(recipient), {keyId, length});
}

Status GetKeyTransKeyEncryptionAlgorithmOidAndParameters(const KeyTrans* recipient, uint8_t* oid, uint32_t* oidLength,
                                                         uint8_t* parameters, uint32_t* parametersLength) {
    if (AnyNull(recipient, oidLength)) return Fail(StatusBadArgument);
    return GetAlgorithm(At<&KeyTrans::keyEncryptionAlgorithm>(recipient), {oid, oidLength},
                        {parameters, parametersLength});
}

Status SetKeyTransKeyEncryptionAlgorithmOidAndParameters(KeyTrans* recipient, const uint8_t* oid,
                                                         const uint8_t* parameters, uint32_t parametersLength) {
    if (AnyNull(recipient, oid)) return Fail(StatusBadArgument);
    return SetAlgorithm(At<&KeyTrans::keyEncryptionAlgorithm>(recipient), oid, {parameters, parametersLength});
}

Status GetKeyTransEncryptedKey(const KeyTrans* recipient, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(recipient, length)) return Fail(StatusBadArgument);
    return GetBytes(At<&KeyTrans::encryptedKey>(recipient), buffer, length);
}

Status SetKeyTransEncryptedKey(KeyTrans* recipient, const uint8_t* data, uint32_t length) {
    if (AnyNull(recipient, data)) return Fail(StatusBadArgument);
    return SetBytes(At<&KeyTrans::encryptedKey>(recipient), Asn1KindOctetString, data, length);
}

Status DecodeGost2814789Parameters(const uint8_t* data, uint32_t length, uint8_t* iv, uint32_t* ivLength, uint8_t* oid,
                                   uint32_t* oidLength) {
    if (AnyNull(data, ivLength, oidLength)) return Fail(StatusBadArgument);
    Tree<Gost2814789Parameters> parameters;
    if (parameters.Decode(data, length) != StatusOk) return Fail(StatusBadEncoding);
    if (const Status status = GetAsn1Value(parameters->iv, iv, ivLength)) return status;
    return GetAsn1Oid(parameters->encryptionParamSet, oid, oidLength);
}

Status EncodeGost2814789Parameters(const uint8_t* iv, uint32_t ivLength, const uint8_t* oid, uint8_t* buffer,
                                   uint32_t* length) {
    if (AnyNull(iv, oid, length)) return Fail(StatusBadArgument);
    Tree<Gost2814789Parameters> parameters;
    if (const Status status = parameters.Create()) return status;
    if (const Status status = SetAsn1ValueField(&parameters->iv, Asn1KindOctetString, iv, ivLength)) return status;
    if (const Status status = ReplaceOidField(&parameters->encryptionParamSet, oid)) return status;
    return parameters.Encode(buffer, length);
}
