#include "tlvforge/cms.h"

#include "cms/cms.schema.h"
#include "cms/document_parts.h"
#include "engine/nodes.h"
#include "engine/oids.h"
#include "engine/output.h"
#include "x509/fields.h"
#include "x509/transition.h"

using namespace tlvforge;

namespace {

// Lists that every message has, if perhaps empty: 311 without one.
Status GetRequiredCount(const Asn1List* list, uint32_t* count, Place place = Place::Here()) {
    if (list == nullptr) return Fail(StatusAbsent, place);
    return GetListCount(list, count, place);
}

template <class T>
Status GetRequiredMember(const ListOf<T>* list, uint32_t index, T** member, Place place = Place::Here()) {
    if (list == nullptr) return Fail(StatusAbsent, place);
    return GetListMember(list, index, member, place);
}

template <class T>
Status ClearRequired(ListOf<T>* list, Place place = Place::Here()) {
    if (list == nullptr) return Fail(StatusAbsent, place);
    ClearList(list);
    return StatusOk;
}

Status GetVersion(const Asn1Value* field, int32_t* version, Place place = Place::Here()) {
    if (field == nullptr) return Fail(StatusAbsent, place);
    return GetAsn1Int32(field, version);
}

}  // namespace

// --- SignedData ---

Status GetCmsSignedDataVersion(const CmsSignedData* signedData, int32_t* version) {
    if (AnyNull(signedData, version)) return Fail(StatusBadArgument);
    return GetVersion(signedData->version, version);
}

Status SetCmsSignedDataVersion(CmsSignedData* signedData, uint32_t version) {
    if (signedData == nullptr) return Fail(StatusBadArgument);
    return SetAsn1Int32Field(&signedData->version, static_cast<int32_t>(version));
}

Status GetCmsSignedDataDigestAlgorithmsCount(const CmsSignedData* signedData, uint32_t* count) {
    if (AnyNull(signedData, count)) return Fail(StatusBadArgument);
    return GetRequiredCount(signedData->digestAlgorithms, count);
}

Status GetCmsSignedDataDigestAlgorithmOidAndParameters(const CmsSignedData* signedData, uint32_t index, uint8_t* oid,
                                                       uint32_t* oidLength, uint8_t* parameters,
                                                       uint32_t* parametersLength) {
    if (AnyNull(signedData, oidLength, parametersLength)) return Fail(StatusBadArgument);
    AlgorithmIdentifier* algorithm = nullptr;
    const Status status = GetRequiredMember(signedData->digestAlgorithms, index, &algorithm);
    return status == StatusOk ? GetAlgorithm(algorithm, oid, oidLength, parameters, parametersLength) : status;
}

Status AddCmsSignedDataDigestAlgorithmOidAndParameters(CmsSignedData* signedData, const uint8_t* oid,
                                                       const uint8_t* parameters, uint32_t length) {
    if (AnyNull(signedData, oid)) return Fail(StatusBadArgument);
    if (signedData->digestAlgorithms == nullptr) return Fail(StatusAbsent);
    Tree<AlgorithmIdentifier> algorithm;
    Status status = algorithm.Create();
    if (status == StatusOk) status = SetAlgorithm(algorithm.Get(), oid, parameters, length);
    if (status != StatusOk) return status;
    status = AddAsn1ListItemUnique(signedData->digestAlgorithms, itemOf<AlgorithmIdentifier>, algorithm.Get());
    if (status == StatusOk) algorithm.Take();
    return status == StatusDuplicateItem ? StatusOk : status;
}

Status ClearCmsSignedDataDigestAlgorithms(CmsSignedData* signedData) {
    if (signedData == nullptr) return Fail(StatusBadArgument);
    return ClearRequired(signedData->digestAlgorithms);
}

Status GetCmsSignedDataContentTypeOid(const CmsSignedData* signedData, uint8_t* oid, uint32_t* length) {
    if (AnyNull(signedData, length)) return Fail(StatusBadArgument);
    const EncapsulatedContentInfo* info = signedData->encapContentInfo;
    if (info == nullptr || info->eContentType == nullptr) return Fail(StatusAbsent);
    return GetAsn1Oid(info->eContentType, oid, length);
}

Status SetCmsSignedDataContentTypeOid(CmsSignedData* signedData, const uint8_t* oid) {
    if (AnyNull(signedData, oid)) return Fail(StatusBadArgument);
    if (signedData->encapContentInfo == nullptr) return Fail(StatusAbsent);
    return ReplaceOidField(&signedData->encapContentInfo->eContentType, oid);
}

Status GetCmsSignedDataContentInfo(const CmsSignedData* signedData, CmsContentInfo** info) {
    if (AnyNull(signedData, info)) return Fail(StatusBadArgument);
    if (signedData->encapContentInfo == nullptr) return Fail(StatusAbsent);
    *info = reinterpret_cast<CmsContentInfo*>(signedData->encapContentInfo);
    return StatusOk;
}

Status GetCmsSignedDataContent(const CmsSignedData* signedData, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(signedData, length)) return Fail(StatusBadArgument);
    if (signedData->encapContentInfo == nullptr) return Fail(StatusAbsent);
    const Asn1Value* content = signedData->encapContentInfo->eContent;
    return content == nullptr ? CopyOut(nullptr, 0, buffer, length) : GetAsn1Value(content, buffer, length);
}

Status SetCmsSignedDataContent(CmsSignedData* signedData, const uint8_t* data, uint32_t length) {
    if (signedData == nullptr) return Fail(StatusBadArgument);
    EncapsulatedContentInfo* info = signedData->encapContentInfo;
    if (info == nullptr) return Fail(StatusAbsent);
    // Freed first: large content shouldn't be there twice.
    FreeField(&info->eContent);
    if (data == nullptr || length == 0) return StatusOk;
    info->eContent = AllocAsn1Value(Asn1KindOctetString, data, length);
    return info->eContent == nullptr ? Fail(StatusOutOfMemory) : StatusOk;
}

Status GetCmsSignedDataCertificatesCount(const CmsSignedData* signedData, uint32_t* count) {
    if (AnyNull(signedData, count)) return Fail(StatusBadArgument);
    *count = GetAsn1ListLength(signedData->certificates);
    return StatusOk;
}

Status GetCmsSignedDataEncodedCertificate(const CmsSignedData* signedData, uint32_t index, uint8_t* kind,
                                          uint8_t* buffer, uint32_t* length) {
    if (AnyNull(signedData, kind)) return Fail(StatusBadArgument);
    return GetEncodedCertificate(signedData->certificates, index, kind, buffer, length);
}

Status AddCmsSignedDataEncodedCertificate(CmsSignedData* signedData, uint8_t kind, const uint8_t* data,
                                          uint32_t length) {
    if (AnyNull(signedData, data)) return Fail(StatusBadArgument);
    return AddEncodedCertificate(&signedData->certificates, kind, data, length, StatusBadArgument);
}

Status RemoveCmsSignedDataCertificates(CmsSignedData* signedData) {
    if (signedData == nullptr) return Fail(StatusBadArgument);
    FreeField(&signedData->certificates);
    return StatusOk;
}

Status GetCmsSignedDataCrlsCount(const CmsSignedData* signedData, uint32_t* count) {
    if (AnyNull(signedData, count)) return Fail(StatusBadArgument);
    *count = GetAsn1ListLength(signedData->crls);
    return StatusOk;
}

Status GetCmsSignedDataEncodedCrl(const CmsSignedData* signedData, uint32_t index, uint8_t* kind, uint8_t* buffer,
                                  uint32_t* length) {
    if (AnyNull(signedData, kind)) return Fail(StatusBadArgument);
    return GetEncodedCrl(signedData->crls, index, kind, buffer, length);
}

Status AddCmsSignedDataEncodedCrl(CmsSignedData* signedData, uint8_t kind, const uint8_t* data, uint32_t length) {
    if (AnyNull(signedData, data)) return Fail(StatusBadArgument);
    return AddEncodedCrl(&signedData->crls, kind, data, length, StatusBadArgument);
}

Status RemoveCmsSignedDataCrls(CmsSignedData* signedData) {
    if (signedData == nullptr) return Fail(StatusBadArgument);
    FreeField(&signedData->crls);
    return StatusOk;
}

Status GetCmsSignedDataSignerInfosCount(const CmsSignedData* signedData, uint32_t* count) {
    if (AnyNull(signedData, count)) return Fail(StatusBadArgument);
    return GetRequiredCount(signedData->signerInfos, count);
}

Status GetCmsSignedDataSignerInfo(const CmsSignedData* signedData, uint32_t index, CmsSignerInfo** signer) {
    if (AnyNull(signedData, signer)) return Fail(StatusBadArgument);
    return GetRequiredMember(signedData->signerInfos, index, signer);
}

Status AddCmsSignedDataSignerInfo(CmsSignedData* signedData, CmsSignerInfo** signer) {
    if (AnyNull(signedData, signer)) return Fail(StatusBadArgument);
    *signer = nullptr;
    if (signedData->signerInfos == nullptr) return Fail(StatusAbsent);
    Tree<CmsSignerInfo> fresh;
    Status status = fresh.Create(1);
    CmsSignerInfo* lent = fresh.Get();
    if (status == StatusOk) status = fresh.MoveTo(signedData->signerInfos);
    if (status == StatusOk) *signer = lent;
    return status;
}

Status ClearCmsSignedDataSignerInfos(CmsSignedData* signedData) {
    if (signedData == nullptr) return Fail(StatusBadArgument);
    return ClearRequired(signedData->signerInfos);
}

Status DeleteCmsSignedDataSignerInfo(CmsSignedData* signedData, uint32_t index) {
    if (signedData == nullptr) return Fail(StatusBadArgument);
    if (signedData->signerInfos == nullptr) return Fail(StatusAbsent);
    return RemoveMember(signedData->signerInfos, index);
}

// --- SignerInfo ---

Status GetCmsSignerInfoVersion(const CmsSignerInfo* signer, int32_t* version) {
    if (AnyNull(signer, version)) return Fail(StatusBadArgument);
    return GetVersion(signer->version, version);
}

Status SetCmsSignerInfoVersion(CmsSignerInfo* signer, uint32_t version) {
    if (signer == nullptr) return Fail(StatusBadArgument);
    return SetAsn1Int32Field(&signer->version, static_cast<int32_t>(version));
}

Status GetCmsSignerInfoDigestAlgorithmOidAndParameters(const CmsSignerInfo* signer, uint8_t* oid, uint32_t* oidLength,
                                                       uint8_t* parameters, uint32_t* parametersLength) {
    if (AnyNull(signer, oidLength)) return Fail(StatusBadArgument);
    return GetAlgorithm(signer->digestAlgorithm, oid, oidLength, parameters, parametersLength);
}

Status GetCmsSignerInfoSignatureAlgorithmOidAndParameters(const CmsSignerInfo* signer, uint8_t* oid,
                                                          uint32_t* oidLength, uint8_t* parameters,
                                                          uint32_t* parametersLength) {
    if (AnyNull(signer, oidLength)) return Fail(StatusBadArgument);
    return GetAlgorithm(signer->signatureAlgorithm, oid, oidLength, parameters, parametersLength);
}

Status SetCmsSignerInfoDigestAlgorithmOidAndParameters(CmsSignerInfo* signer, const uint8_t* oid,
                                                       const uint8_t* parameters, uint32_t length) {
    if (AnyNull(signer, oid)) return Fail(StatusBadArgument);
    return SetAlgorithm(signer->digestAlgorithm, oid, parameters, length);
}

Status SetCmsSignerInfoSignatureAlgorithmOidAndParameters(CmsSignerInfo* signer, const uint8_t* oid,
                                                          const uint8_t* parameters, uint32_t length) {
    if (AnyNull(signer, oid)) return Fail(StatusBadArgument);
    return SetAlgorithm(signer->signatureAlgorithm, oid, parameters, length);
}

Status GetCmsSignerInfoSignature(const CmsSignerInfo* signer, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(signer, length)) return Fail(StatusBadArgument);
    if (signer->signature == nullptr) return Fail(StatusAbsent);
    return GetAsn1Value(signer->signature, buffer, length);
}

Status SetCmsSignerInfoSignature(CmsSignerInfo* signer, const uint8_t* data, uint32_t length) {
    if (AnyNull(signer, data)) return Fail(StatusBadArgument);
    return SetAsn1ValueField(&signer->signature, Asn1KindOctetString, data, length);
}

Status GetCmsSignerInfoSignedAttributes(CmsSignerInfo* signer, RsaAttributes* attributes) {
    if (AnyNull(signer, attributes)) return Fail(StatusBadArgument);
    *attributes = &signer->signedAttrs;
    return StatusOk;
}

Status GetCmsSignerInfoUnsignedAttributes(CmsSignerInfo* signer, RsaAttributes* attributes) {
    if (AnyNull(signer, attributes)) return Fail(StatusBadArgument);
    *attributes = &signer->unsignedAttrs;
    return StatusOk;
}

Status GetCmsSignerInfoEncodedSignedAttributes(const CmsSignerInfo* signer, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(signer, length)) return Fail(StatusBadArgument);
    if (signer->signedAttrs.list == nullptr) return CopyOut(nullptr, 0, buffer, length);
    return EncodeTree(signer->signedAttrs.list, buffer, length);
}

Status GetCmsSignerInfoSignerIdentifier(CmsSignerInfo* signer, X509Name** issuer, uint8_t* serial,
                                        uint32_t* serialLength, uint8_t* keyId, uint32_t* keyIdLength) {
    if (signer == nullptr) return Fail(StatusBadArgument);
    IdentifierParts parts;
    const Status status = parts.Of(signer->sid, serialLength, keyIdLength);
    if (status != StatusOk) return status;
    if (issuer != nullptr) *issuer = parts.issuer;
    if (parts.keyId != nullptr) return GetAsn1Value(parts.keyId, keyId, keyIdLength);
    return issuer != nullptr ? GetAsn1Value(parts.serialNumber, serial, serialLength) : Fail(StatusBadArgument);
}

Status SetCmsSignerInfoSignerIdentifierIssuerAndSerialNumber(CmsSignerInfo* signer, const X509Name* issuer,
                                                             const uint8_t* serial, uint32_t serialLength) {
    if (AnyNull(signer, issuer, serial)) return Fail(StatusBadArgument);
    return SetIssuerAndSerialNumber(signer->sid, issuer, serial, serialLength);
}

Status SetCmsSignerInfoSignerSubjectKeyIdentifier(CmsSignerInfo* signer, const uint8_t* keyId, uint32_t length) {
    if (AnyNull(signer, keyId)) return Fail(StatusBadArgument);
    return SetSubjectKeyIdentifier(signer->sid, keyId, length);
}
