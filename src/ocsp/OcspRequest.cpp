#include "tlvforge/ocsp.h"

#include "ocsp/ocsp_fields.h"

using namespace tlvforge;

namespace {

// A field of tbsRequest.
template <auto... Members, class Record>
auto Tbs(Record* request, Place place = Place::Here()) {
    return At<&OcspRequest::tbsRequest, Members...>(request, place);
}

Part<Certificates> CertificatesOf(const OcspRequest* request, Place place = Place::Here()) {
    return At<&OcspRequest::optionalSignature, &OcspSignature::certs>(request, place);
}

// Runs a setter on the block of the signature. A new block becomes the request's only after the setter's success.
template <class Set>
Status ChangeSignature(OcspRequest* request, const Set& set) {
    if (request->optionalSignature != nullptr) return set(request->optionalSignature);
    Tree<OcspSignature> block;
    if (const Status status = block.Create(1)) return status;
    if (const Status status = set(block.Get())) return status;
    request->optionalSignature = block.Take();
    return StatusOk;
}

}  // namespace

Status CreateOcspRequest(OcspRequest** request) { return CreateTree(request); }

Status DecodeOcspRequest(const uint8_t* bytes, uint32_t length, OcspRequest** request) {
    return DecodeTree(bytes, length, request);
}

Status EncodeOcspRequest(const OcspRequest* request, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(request, buffer, length);
}

Status FreeOcspRequest(OcspRequest* request) { return FreeTree(request); }

Status GetOcspRequestVersion(const OcspRequest* request, int32_t* version) {
    if (AnyNull(request, version)) return Fail(StatusBadArgument);
    return GetInt32(Tbs<&TBSRequest::version>(request), version);
}

Status SetOcspRequestVersion(OcspRequest* request, uint32_t version) {
    if (request == nullptr) return Fail(StatusBadArgument);
    return SetInt32(Tbs<&TBSRequest::version>(request), static_cast<int32_t>(version));
}

Status GetOcspRequestExtensions(const OcspRequest* request, X509Extensions* extensions) {
    if (AnyNull(request, extensions)) return Fail(StatusBadArgument);
    return Borrow(Tbs<&TBSRequest::requestExtensions>(request), extensions);
}

Status AddOcspRequestCertRequest(OcspRequest* request, const uint8_t* hashOid, const uint8_t* parameters,
                                 uint32_t parametersLength, const uint8_t* nameHash, uint32_t nameHashLength,
                                 const uint8_t* keyHash, uint32_t keyHashLength, const uint8_t* serial,
                                 uint32_t serialLength, X509Extensions extensions) {
    if (AnyNull(request, hashOid, nameHash, keyHash, serial)) return Fail(StatusBadArgument);
    const auto list = Tbs<&TBSRequest::requestList>(request);
    if (!list) return list.Absent();
    Tree<OcspCertRequest> entry;
    if (const Status status = entry.Create(1)) return status;
    const Part<CertID> id = At<&OcspCertRequest::reqCert>(entry.Get());
    if (const Status status = WriteCertID(id, hashOid, {parameters, parametersLength}, {nameHash, nameHashLength},
                                          {keyHash, keyHashLength}, {serial, serialLength})) {
        return status;
    }
    if (const Status status = CopyExtensions(extensions, &entry->singleRequestExtensions.list)) return status;
    if (const Status status = ReserveAsn1ListItem(list.node)) return status;  // a failed add loses nothing
    return entry.MoveTo(list.node);
}

Status GetOcspRequestCertRequestsCount(const OcspRequest* request, uint32_t* count) {
    if (AnyNull(request, count)) return Fail(StatusBadArgument);
    return GetOptionalCount(Tbs<&TBSRequest::requestList>(request), count);
}

Status GetOcspRequestCertRequest(const OcspRequest* request, int32_t index, uint8_t* hashOid, uint32_t* hashOidLength,
                                 uint8_t* parameters, uint32_t* parametersLength, uint8_t* nameHash,
                                 uint32_t* nameHashLength, uint8_t* keyHash, uint32_t* keyHashLength, uint8_t* serial,
                                 uint32_t* serialLength, X509Extensions* extensions) {
    if (AnyNull(request, hashOidLength, parametersLength, nameHashLength, keyHashLength, serialLength)) {
        return Fail(StatusBadArgument);
    }
    const auto list = Tbs<&TBSRequest::requestList>(request);
    OcspCertRequest* entry = nullptr;
    if (const Status status = GetMember(list, static_cast<uint32_t>(index), &entry)) return status;
    if (extensions != nullptr) *extensions = &entry->singleRequestExtensions;
    return ReadCertID(At<&OcspCertRequest::reqCert>(entry), {hashOid, hashOidLength}, {parameters, parametersLength},
                      {nameHash, nameHashLength}, {keyHash, keyHashLength}, {serial, serialLength});
}

Status ClearOcspRequestCertRequests(OcspRequest* request) {
    if (request == nullptr) return Fail(StatusBadArgument);
    return Clear(Tbs<&TBSRequest::requestList>(request));
}

Status GetOcspRequestRequestorName(const OcspRequest* request, X509GeneralName** name) {
    if (AnyNull(request, name)) return Fail(StatusBadArgument);
    if (request->tbsRequest == nullptr) return Fail(StatusAbsent);
    *name = request->tbsRequest->requestorName;
    return StatusOk;
}

Status GetOcspRequestRequestorNameValue(const OcspRequest* request, uint32_t* type, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(request, type, length)) return Fail(StatusBadArgument);
    X509GeneralName* name = nullptr;
    if (const Status status = GetOcspRequestRequestorName(request, &name)) return status;
    return GetX509GeneralNameValue(name, type, buffer, length);
}

Status SetOcspRequestRequestorName(OcspRequest* request, uint32_t type, const uint8_t* value, uint32_t length) {
    if (AnyNull(request, value)) return Fail(StatusBadArgument);
    if (const Status status = RemoveOcspRequestRequestorName(request)) return status;
    return AllocX509GeneralNameValue(&request->tbsRequest->requestorName, type, value, length);
}

Status RemoveOcspRequestRequestorName(OcspRequest* request) {
    if (request == nullptr) return Fail(StatusBadArgument);
    return Remove(Tbs<&TBSRequest::requestorName>(request));
}

Status IsExistsOcspRequestSignature(const OcspRequest* request) {
    if (request == nullptr) return Fail(StatusBadArgument);
    return request->optionalSignature == nullptr ? Fail(StatusAbsent) : StatusOk;
}

Status GetOcspRequestSignature(const OcspRequest* request, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(request, length)) return Fail(StatusBadArgument);
    return GetBits(At<&OcspRequest::optionalSignature, &OcspSignature::signature>(request), buffer, length);
}

Status SetOcspRequestSignature(OcspRequest* request, const uint8_t* bytes, uint32_t length) {
    if (AnyNull(request, bytes)) return Fail(StatusBadArgument);
    return ChangeSignature(
        request, [=](OcspSignature* block) { return SetBits(At<&OcspSignature::signature>(block), bytes, length); });
}

Status GetOcspRequestSignatureAlgorithmAndParameters(const OcspRequest* request, uint8_t* oid, uint32_t* oidLength,
                                                     uint8_t* parameters, uint32_t* parametersLength) {
    if (AnyNull(request, oidLength)) return Fail(StatusBadArgument);
    return ReadAlgorithm(At<&OcspRequest::optionalSignature, &OcspSignature::signatureAlgorithm>(request),
                         {oid, oidLength}, {parameters, parametersLength});
}

Status SetOcspRequestSignatureAlgorithmOidAndParameters(OcspRequest* request, const uint8_t* oid,
                                                        const uint8_t* parameters, uint32_t parametersLength) {
    if (AnyNull(request, oid)) return Fail(StatusBadArgument);
    return ChangeSignature(request, [=](OcspSignature* block) {
        return SetAlgorithm(At<&OcspSignature::signatureAlgorithm>(block), oid, {parameters, parametersLength});
    });
}

Status RemoveOcspRequestSignature(OcspRequest* request) {
    if (request == nullptr) return Fail(StatusBadArgument);
    FreeField(&request->optionalSignature);
    return StatusOk;
}

Status AddOcspRequestCertificate(OcspRequest* request, Certificate* certificate) {
    if (AnyNull(request, certificate)) return Fail(StatusBadArgument);
    return ChangeSignature(request, [=](OcspSignature* block) { return AddCertificate(&block->certs, certificate); });
}

Status GetOcspRequestCertificatesCount(const OcspRequest* request, uint32_t* count) {
    if (AnyNull(request, count)) return Fail(StatusBadArgument);
    return GetOptionalCount(CertificatesOf(request), count);
}

Status GetOcspRequestCertificate(const OcspRequest* request, int32_t index, Certificate** certificate) {
    // A negative one is refused before the list is looked for.
    if (AnyNull(request, certificate) || index < 0) return Fail(StatusBadArgument);
    const auto certificates = CertificatesOf(request);
    return GetMember(certificates, static_cast<uint32_t>(index), certificate);
}

Status RemoveOcspRequestCertificates(OcspRequest* request) {
    if (request == nullptr) return Fail(StatusBadArgument);
    if (request->optionalSignature != nullptr) FreeField(&request->optionalSignature->certs);
    return StatusOk;
}
