#include "tlvforge/cms.h"

#include "cms/document_parts.h"
#include "x509/fields.h"

using namespace tlvforge;

namespace {

template <auto Member, class Record>
auto Encapsulated(Record* signedData, Place place = Place::Here()) {
    return At<&CmsSignedData::encapContentInfo, Member>(signedData, place);
}

}  // namespace

// --- SignedData ---

Status GetCmsSignedDataVersion(const CmsSignedData* signedData, int32_t* version) {
    if (AnyNull(signedData, version)) return Fail(StatusBadArgument);
    return GetInt32(At<&CmsSignedData::version>(signedData), version);
}

Status SetCmsSignedDataVersion(CmsSignedData* signedData, uint32_t version) {
    if (signedData == nullptr) return Fail(StatusBadArgument);
    return SetInt32(At<&CmsSignedData::version>(signedData), static_cast<int32_t>(version));
}

Status GetCmsSignedDataDigestAlgorithmsCount(const CmsSignedData* signedData, uint32_t* count) {
    if (AnyNull(signedData, count)) return Fail(StatusBadArgument);
    return GetCount(At<&CmsSignedData::digestAlgorithms>(signedData), count);
}

Status GetCmsSignedDataDigestAlgorithmOidAndParameters(const CmsSignedData* signedData, uint32_t index, uint8_t* oid,
                                                       uint32_t* oidLength, uint8_t* parameters,
                                                       uint32_t* parametersLength) {
    if (AnyNull(signedData, oidLength, parametersLength)) return Fail(StatusBadArgument);
    const auto algorithms = At<&CmsSignedData::digestAlgorithms>(signedData);
    AlgorithmIdentifier* algorithm = nullptr;
    if (const Status status = GetMember(algorithms, index, &algorithm)) return status;
    return GetAlgorithm({algorithm, algorithms.place}, {oid, oidLength}, {parameters, parametersLength});
}

Status AddCmsSignedDataDigestAlgorithmOidAndParameters(CmsSignedData* signedData, const uint8_t* oid,
                                                       const uint8_t* parameters, uint32_t length) {
    if (AnyNull(signedData, oid)) return Fail(StatusBadArgument);
    const auto algorithms = At<&CmsSignedData::digestAlgorithms>(signedData);
    if (!algorithms) return algorithms.Absent();
    Tree<AlgorithmIdentifier> algorithm;
    if (const Status status = algorithm.Create()) return status;
    if (const Status status = SetAlgorithm({algorithm.Get(), algorithms.place}, oid, {parameters, length}))
        return status;
    const Status status = AddAsn1ListItemUnique(algorithms.node, itemOf<AlgorithmIdentifier>, algorithm.Get());
    if (status == StatusOk) algorithm.Take();
    return status == StatusDuplicateItem ? StatusOk : status;
}

Status ClearCmsSignedDataDigestAlgorithms(CmsSignedData* signedData) {
    if (signedData == nullptr) return Fail(StatusBadArgument);
    return Clear(At<&CmsSignedData::digestAlgorithms>(signedData));
}

Status GetCmsSignedDataContentTypeOid(const CmsSignedData* signedData, uint8_t* oid, uint32_t* length) {
    if (AnyNull(signedData, length)) return Fail(StatusBadArgument);
    return GetOid(Encapsulated<&EncapsulatedContentInfo::eContentType>(signedData), oid, length);
}

Status SetCmsSignedDataContentTypeOid(CmsSignedData* signedData, const uint8_t* oid) {
    if (AnyNull(signedData, oid)) return Fail(StatusBadArgument);
    return SetOid(Encapsulated<&EncapsulatedContentInfo::eContentType>(signedData), oid);
}

Status GetCmsSignedDataContentInfo(const CmsSignedData* signedData, CmsContentInfo** info) {
    if (AnyNull(signedData, info)) return Fail(StatusBadArgument);
    const auto encapsulated = At<&CmsSignedData::encapContentInfo>(signedData);
    if (!encapsulated) return encapsulated.Absent();
    *info = reinterpret_cast<CmsContentInfo*>(encapsulated.node);
    return StatusOk;
}

Status GetCmsSignedDataContent(const CmsSignedData* signedData, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(signedData, length)) return Fail(StatusBadArgument);
    return GetOptionalBytes(Encapsulated<&EncapsulatedContentInfo::eContent>(signedData), buffer, length);
}

Status SetCmsSignedDataContent(CmsSignedData* signedData, const uint8_t* data, uint32_t length) {
    if (signedData == nullptr) return Fail(StatusBadArgument);
    return ReplaceContent(Encapsulated<&EncapsulatedContentInfo::eContent>(signedData), {data, length});
}

Status GetCmsSignedDataCertificatesCount(const CmsSignedData* signedData, uint32_t* count) {
    if (AnyNull(signedData, count)) return Fail(StatusBadArgument);
    return GetOptionalCount(At<&CmsSignedData::certificates>(signedData), count);
}

Status GetCmsSignedDataEncodedCertificate(const CmsSignedData* signedData, uint32_t index, uint8_t* kind,
                                          uint8_t* buffer, uint32_t* length) {
    if (AnyNull(signedData, kind)) return Fail(StatusBadArgument);
    const auto certificates = At<&CmsSignedData::certificates>(signedData);
    Bytes certificate{};
    if (const Status status = GetEncodedCertificate(certificates, index, kind, &certificate)) return status;
    if (length == nullptr) return buffer == nullptr ? StatusOk : Fail(StatusBadArgument);
    return CopyOut(certificate.data, certificate.length, buffer, length);
}

Status AddCmsSignedDataEncodedCertificate(CmsSignedData* signedData, uint8_t kind, const uint8_t* data,
                                          uint32_t length) {
    if (AnyNull(signedData, data)) return Fail(StatusBadArgument);
    if (const Status status = Ensure(&signedData->certificates)) return status;
    if (!IsCertificateKind(kind)) return Fail(StatusBadArgument);
    if (length == 0) return Fail(StatusBadArgument);
    return AddEncodedCertificate(signedData->certificates, kind, {data, length});
}

Status RemoveCmsSignedDataCertificates(CmsSignedData* signedData) {
    if (signedData == nullptr) return Fail(StatusBadArgument);
    return Remove(At<&CmsSignedData::certificates>(signedData));
}

Status GetCmsSignedDataCrlsCount(const CmsSignedData* signedData, uint32_t* count) {
    if (AnyNull(signedData, count)) return Fail(StatusBadArgument);
    return GetOptionalCount(At<&CmsSignedData::crls>(signedData), count);
}

// No CRL can be read back: see docs/oddities.md.
Status GetCmsSignedDataEncodedCrl(const CmsSignedData* signedData, uint32_t index, uint8_t* kind, uint8_t*, uint32_t*) {
    if (AnyNull(signedData, kind)) return Fail(StatusBadArgument);
    const auto crls = At<&CmsSignedData::crls>(signedData);
    RevocationInfoChoice* crl = nullptr;
    if (const Status status = GetMember(crls, index, &crl)) return status;
    return Fail(StatusBadEncoding);
}

Status AddCmsSignedDataEncodedCrl(CmsSignedData* signedData, uint8_t kind, const uint8_t* data, uint32_t) {
    if (AnyNull(signedData, data)) return Fail(StatusBadArgument);
    if (const Status status = Ensure(&signedData->crls)) return status;
    if (!IsCrlKind(kind)) return Fail(StatusBadArgument);
    return AddEncodedCrl(signedData->crls);
}

Status RemoveCmsSignedDataCrls(CmsSignedData* signedData) {
    if (signedData == nullptr) return Fail(StatusBadArgument);
    return Remove(At<&CmsSignedData::crls>(signedData));
}

Status GetCmsSignedDataSignerInfosCount(const CmsSignedData* signedData, uint32_t* count) {
    if (AnyNull(signedData, count)) return Fail(StatusBadArgument);
    return GetCount(At<&CmsSignedData::signerInfos>(signedData), count);
}

Status GetCmsSignedDataSignerInfo(const CmsSignedData* signedData, uint32_t index, CmsSignerInfo** signer) {
    if (AnyNull(signedData, signer)) return Fail(StatusBadArgument);
    const auto signers = At<&CmsSignedData::signerInfos>(signedData);
    return GetMember(signers, index, signer);
}

Status AddCmsSignedDataSignerInfo(CmsSignedData* signedData, CmsSignerInfo** signer) {
    if (AnyNull(signedData, signer)) return Fail(StatusBadArgument);
    *signer = nullptr;
    const auto signers = At<&CmsSignedData::signerInfos>(signedData);
    if (!signers) return signers.Absent();
    Tree<CmsSignerInfo> member;
    if (const Status status = member.Create(1)) return status;
    CmsSignerInfo* const lent = member.Get();
    if (const Status status = member.MoveTo(signers.node)) return status;
    *signer = lent;
    return StatusOk;
}

Status ClearCmsSignedDataSignerInfos(CmsSignedData* signedData) {
    if (signedData == nullptr) return Fail(StatusBadArgument);
    return Clear(At<&CmsSignedData::signerInfos>(signedData));
}

Status DeleteCmsSignedDataSignerInfo(CmsSignedData* signedData, uint32_t index) {
    if (signedData == nullptr) return Fail(StatusBadArgument);
    const auto signers = At<&CmsSignedData::signerInfos>(signedData);
    if (!signers) return signers.Absent();
    return RemoveMember(signers.node, index);
}

// --- SignerInfo ---

Status GetCmsSignerInfoVersion(const CmsSignerInfo* signer, int32_t* version) {
    if (AnyNull(signer, version)) return Fail(StatusBadArgument);
    return GetInt32(At<&CmsSignerInfo::version>(signer), version);
}

Status SetCmsSignerInfoVersion(CmsSignerInfo* signer, uint32_t version) {
    if (signer == nullptr) return Fail(StatusBadArgument);
    return SetInt32(At<&CmsSignerInfo::version>(signer), static_cast<int32_t>(version));
}

Status GetCmsSignerInfoDigestAlgorithmOidAndParameters(const CmsSignerInfo* signer, uint8_t* oid, uint32_t* oidLength,
                                                       uint8_t* parameters, uint32_t* parametersLength) {
    if (AnyNull(signer, oidLength)) return Fail(StatusBadArgument);
    return GetAlgorithm(At<&CmsSignerInfo::digestAlgorithm>(signer), {oid, oidLength}, {parameters, parametersLength});
}

Status GetCmsSignerInfoSignatureAlgorithmOidAndParameters(const CmsSignerInfo* signer, uint8_t* oid,
                                                          uint32_t* oidLength, uint8_t* parameters,
                                                          uint32_t* parametersLength) {
    if (AnyNull(signer, oidLength)) return Fail(StatusBadArgument);
    return GetAlgorithm(At<&CmsSignerInfo::signatureAlgorithm>(signer), {oid, oidLength},
                        {parameters, parametersLength});
}

Status SetCmsSignerInfoDigestAlgorithmOidAndParameters(CmsSignerInfo* signer, const uint8_t* oid,
                                                       const uint8_t* parameters, uint32_t length) {
    if (AnyNull(signer, oid)) return Fail(StatusBadArgument);
    return SetAlgorithm(At<&CmsSignerInfo::digestAlgorithm>(signer), oid, {parameters, length});
}

Status SetCmsSignerInfoSignatureAlgorithmOidAndParameters(CmsSignerInfo* signer, const uint8_t* oid,
                                                          const uint8_t* parameters, uint32_t length) {
    if (AnyNull(signer, oid)) return Fail(StatusBadArgument);
    return SetAlgorithm(At<&CmsSignerInfo::signatureAlgorithm>(signer), oid, {parameters, length});
}

Status GetCmsSignerInfoSignature(const CmsSignerInfo* signer, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(signer, length)) return Fail(StatusBadArgument);
    return GetBytes(At<&CmsSignerInfo::signature>(signer), buffer, length);
}

Status SetCmsSignerInfoSignature(CmsSignerInfo* signer, const uint8_t* data, uint32_t length) {
    if (AnyNull(signer, data)) return Fail(StatusBadArgument);
    return SetBytes(At<&CmsSignerInfo::signature>(signer), Asn1KindOctetString, data, length);
}

Status GetCmsSignerInfoSignedAttributes(CmsSignerInfo* signer, RsaAttributes* attributes) {
    if (AnyNull(signer, attributes)) return Fail(StatusBadArgument);
    return Borrow(At<&CmsSignerInfo::signedAttrs>(signer), attributes);
}

Status GetCmsSignerInfoUnsignedAttributes(CmsSignerInfo* signer, RsaAttributes* attributes) {
    if (AnyNull(signer, attributes)) return Fail(StatusBadArgument);
    return Borrow(At<&CmsSignerInfo::unsignedAttrs>(signer), attributes);
}

Status GetCmsSignerInfoEncodedSignedAttributes(const CmsSignerInfo* signer, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(signer, length)) return Fail(StatusBadArgument);
    if (signer->signedAttrs.list == nullptr) return CopyOut(nullptr, 0, buffer, length);
    return EncodeTree(signer->signedAttrs.list, buffer, length);
}

Status GetCmsSignerInfoSignerIdentifier(CmsSignerInfo* signer, X509Name** issuer, uint8_t* serial,
                                        uint32_t* serialLength, uint8_t* keyId, uint32_t* keyIdLength) {
    if (signer == nullptr) return Fail(StatusBadArgument);
    const auto identifier = At<&CmsSignerInfo::sid>(signer);
    IdentifierParts parts;
    if (const Status status = parts.Of(identifier, serialLength, keyIdLength)) return status;
    if (issuer != nullptr) *issuer = parts.issuer;
    if (parts.keyId != nullptr) return GetAsn1Value(parts.keyId, keyId, keyIdLength);
    if (issuer == nullptr) return Fail(StatusBadArgument);
    return GetAsn1Value(parts.serialNumber, serial, serialLength);
}

Status SetCmsSignerInfoSignerIdentifierIssuerAndSerialNumber(CmsSignerInfo* signer, const X509Name* issuer,
                                                             const uint8_t* serial, uint32_t serialLength) {
    if (AnyNull(signer, issuer, serial)) return Fail(StatusBadArgument);
    return SetIssuerAndSerialNumber(At<&CmsSignerInfo::sid>(signer), issuer, {serial, serialLength});
}

Status SetCmsSignerInfoSignerSubjectKeyIdentifier(CmsSignerInfo* signer, const uint8_t* keyId, uint32_t length) {
    if (AnyNull(signer, keyId)) return Fail(StatusBadArgument);
    return SetSubjectKeyIdentifier(At<&CmsSignerInfo::sid>(signer), {keyId, length});
}
