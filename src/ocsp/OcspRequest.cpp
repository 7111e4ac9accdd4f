#include "tlvforge/ocsp.h"

#include "engine/list_cells.h"
#include "engine/nodes.h"
#include "ocsp/ocsp.schema.h"
#include "ocsp/ocsp_fields.h"
#include "x509/fields.h"

using namespace tlvforge;

namespace tlvforge {

Status ReadCertID(const CertID* id, const Output& hashOid, const Output& parameters, const Output& nameHash,
                  const Output& keyHash, const Output& serial, Place place) {
    if (id == nullptr || AnyNull(id->hashAlgorithm, id->issuerNameHash, id->issuerKeyHash, id->serialNumber)) {
        return Fail(StatusAbsent, place);
    }
    const Status first = GetAlgorithmIdentifierOid(id->hashAlgorithm, hashOid.buffer, hashOid.length);
    if (first != StatusOk) return first;
    const Status second = GetAlgorithmIdentifierParameters(id->hashAlgorithm, parameters.buffer, parameters.length);
    Status pending = second < StatusBufferTooSmall ? StatusOk : StatusBufferTooSmall;

    const Asn1Value* const values[] = {id->issuerNameHash, id->issuerKeyHash, id->serialNumber};
    const Output* const outputs[] = {&nameHash, &keyHash, &serial};
    for (int i = 0; i < 3; ++i) {
        const Status status = GetAsn1Value(values[i], outputs[i]->buffer, outputs[i]->length);
        if (status == StatusBufferTooSmall) {
            pending = status;
        } else if (pending != StatusOk || status != StatusOk) {
            return pending != StatusOk ? pending : status;
        }
    }
    return pending;
}

Status WriteCertID(CertID* id, const uint8_t* hashOid, const Input& parameters, const Input& nameHash,
                   const Input& keyHash, const Input& serial, Place place) {
    if (id == nullptr) return Fail(StatusAbsent, place);
    Status status = SetAlgorithm(id->hashAlgorithm, hashOid, parameters.data, parameters.length, place);
    const auto set = [&](Asn1Value** field, uint32_t type, const Input& value) {
        if (status == StatusOk) status = SetAsn1ValueField(field, type, value.data, value.length);
    };
    set(&id->issuerNameHash, Asn1KindOctetString, nameHash);
    set(&id->issuerKeyHash, Asn1KindOctetString, keyHash);
    set(&id->serialNumber, Asn1KindInteger, serial);
    return status;
}

Status ReadAlgorithm(const AlgorithmIdentifier* field, const Output& oid, const Output& parameters, Place place) {
    if (field == nullptr || field->algorithm == nullptr) return Fail(StatusAbsent, place);
    const Status first = GetAlgorithmIdentifierOid(field, oid.buffer, oid.length);
    return StatusOfBoth(first, GetAlgorithmIdentifierParameters(field, parameters.buffer, parameters.length));
}

Status AddCertificate(Certificates** certs, Certificate* certificate, Place place) {
    const Status status = NeedList(certs, place);
    return status == StatusOk ? AddMember(*certs, certificate) : status;
}

Status LendCertificate(const Certificates* certs, uint32_t index, Certificate** certificate, Place place) {
    return certs == nullptr ? Fail(StatusAbsent, place) : GetListMember(certs, index, certificate, place);
}

}  // namespace tlvforge

namespace {

// Runs a setter on the block of the signature. A new block becomes the request's only after the setter's success.
template <class Set>
Status ChangeSignature(OcspRequest* request, Set set) {
    if (request->optionalSignature != nullptr) return set(request->optionalSignature);
    Tree<OcspSignature> block;
    Status status = block.Create(1);
    if (status == StatusOk) status = set(block.Get());
    if (status == StatusOk) request->optionalSignature = block.Take();
    return status;
}

const Certificates* CertificatesOf(const OcspRequest* request) {
    return FieldOf(request->optionalSignature, &OcspSignature::certs);
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
    return GetNumber(FieldOf(request->tbsRequest, &TBSRequest::version), version);
}

Status SetOcspRequestVersion(OcspRequest* request, uint32_t version) {
    if (request == nullptr) return Fail(StatusBadArgument);
    if (request->tbsRequest == nullptr) return Fail(StatusAbsent);
    return SetAsn1Int32Field(&request->tbsRequest->version, static_cast<int32_t>(version));
}

Status GetOcspRequestExtensions(const OcspRequest* request, X509Extensions* extensions) {
    if (AnyNull(request, extensions)) return Fail(StatusBadArgument);
    return LendExtensions(request->tbsRequest, &TBSRequest::requestExtensions, extensions);
}

Status AddOcspRequestCertRequest(OcspRequest* request, const uint8_t* hashOid, const uint8_t* parameters,
                                 uint32_t parametersLength, const uint8_t* nameHash, uint32_t nameHashLength,
                                 const uint8_t* keyHash, uint32_t keyHashLength, const uint8_t* serial,
                                 uint32_t serialLength, X509Extensions extensions) {
    if (AnyNull(request, hashOid, nameHash, keyHash, serial)) return Fail(StatusBadArgument);
    if (FieldOf(request->tbsRequest, &TBSRequest::requestList) == nullptr) return Fail(StatusAbsent);
    Tree<OcspCertRequest> entry;
    Status status = entry.Create(1);
    if (status == StatusOk) {
        status = WriteCertID(entry->reqCert, hashOid, {parameters, parametersLength}, {nameHash, nameHashLength},
                             {keyHash, keyHashLength}, {serial, serialLength});
    }
    if (status == StatusOk && extensions != nullptr) {
        status = CopyTree(extensions->list, &entry->singleRequestExtensions.list);
    }
    if (status == StatusOk)
        status = ReserveAsn1ListItem(request->tbsRequest->requestList);  // a failed add loses nothing
    return status == StatusOk ? entry.MoveTo(request->tbsRequest->requestList) : status;
}

Status GetOcspRequestCertRequestsCount(const OcspRequest* request, uint32_t* count) {
    if (AnyNull(request, count)) return Fail(StatusBadArgument);
    *count = GetAsn1ListLength(FieldOf(request->tbsRequest, &TBSRequest::requestList));
    return StatusOk;
}

Status GetOcspRequestCertRequest(const OcspRequest* request, int32_t index, uint8_t* hashOid, uint32_t* hashOidLength,
                                 uint8_t* parameters, uint32_t* parametersLength, uint8_t* nameHash,
                                 uint32_t* nameHashLength, uint8_t* keyHash, uint32_t* keyHashLength, uint8_t* serial,
                                 uint32_t* serialLength, X509Extensions* extensions) {
    if (AnyNull(request, hashOidLength, parametersLength, nameHashLength, keyHashLength, serialLength)) {
        return Fail(StatusBadArgument);
    }
    const auto* list = FieldOf(request->tbsRequest, &TBSRequest::requestList);
    if (list == nullptr) return Fail(StatusAbsent);
    OcspCertRequest* entry = nullptr;
    const Status status = GetListMember(list, static_cast<uint32_t>(index), &entry);
    if (status != StatusOk) return status;
    if (extensions != nullptr) *extensions = &entry->singleRequestExtensions;
    return ReadCertID(entry->reqCert, {hashOid, hashOidLength}, {parameters, parametersLength},
                      {nameHash, nameHashLength}, {keyHash, keyHashLength}, {serial, serialLength});
}

Status ClearOcspRequestCertRequests(OcspRequest* request) {
    if (request == nullptr) return Fail(StatusBadArgument);
    auto* list = FieldOf(request->tbsRequest, &TBSRequest::requestList);
    if (list == nullptr) return Fail(StatusAbsent);
    ClearList(list);
    return StatusOk;
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
    const Status status = GetOcspRequestRequestorName(request, &name);
    return status == StatusOk ? GetX509GeneralNameValue(name, type, buffer, length) : status;
}

Status SetOcspRequestRequestorName(OcspRequest* request, uint32_t type, const uint8_t* value, uint32_t length) {
    if (value == nullptr) return Fail(StatusBadArgument);
    const Status status = RemoveOcspRequestRequestorName(request);
    if (status != StatusOk) return status;
    return AllocX509GeneralNameValue(&request->tbsRequest->requestorName, type, value, length);
}

Status RemoveOcspRequestRequestorName(OcspRequest* request) {
    if (request == nullptr) return Fail(StatusBadArgument);
    if (request->tbsRequest == nullptr) return Fail(StatusAbsent);
    FreeField(&request->tbsRequest->requestorName);
    return StatusOk;
}

Status IsExistsOcspRequestSignature(const OcspRequest* request) {
    if (request == nullptr) return Fail(StatusBadArgument);
    return request->optionalSignature == nullptr ? Fail(StatusAbsent) : StatusOk;
}

Status GetOcspRequestSignature(const OcspRequest* request, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(request, length)) return Fail(StatusBadArgument);
    return GetBitStringField(FieldOf(request->optionalSignature, &OcspSignature::signature), buffer, length);
}

Status SetOcspRequestSignature(OcspRequest* request, const uint8_t* bytes, uint32_t length) {
    if (AnyNull(request, bytes)) return Fail(StatusBadArgument);
    return ChangeSignature(
        request, [=](OcspSignature* block) { return SetAsn1BitStringField(&block->signature, bytes, length); });
}

Status GetOcspRequestSignatureAlgorithmAndParameters(const OcspRequest* request, uint8_t* oid, uint32_t* oidLength,
                                                     uint8_t* parameters, uint32_t* parametersLength) {
    if (AnyNull(request, oidLength)) return Fail(StatusBadArgument);
    return ReadAlgorithm(FieldOf(request->optionalSignature, &OcspSignature::signatureAlgorithm), {oid, oidLength},
                         {parameters, parametersLength});
}

Status SetOcspRequestSignatureAlgorithmOidAndParameters(OcspRequest* request, const uint8_t* oid,
                                                        const uint8_t* parameters, uint32_t parametersLength) {
    if (AnyNull(request, oid)) return Fail(StatusBadArgument);
    return ChangeSignature(request, [=](OcspSignature* block) {
        return SetAlgorithm(block->signatureAlgorithm, oid, parameters, parametersLength);
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
    *count = GetAsn1ListLength(CertificatesOf(request));
    return StatusOk;
}

Status GetOcspRequestCertificate(const OcspRequest* request, int32_t index, Certificate** certificate) {
    // A negative one is refused before the list is looked for.
    if (AnyNull(request, certificate) || index < 0) return Fail(StatusBadArgument);
    return LendCertificate(CertificatesOf(request), static_cast<uint32_t>(index), certificate);
}

Status RemoveOcspRequestCertificates(OcspRequest* request) {
    if (request == nullptr) return Fail(StatusBadArgument);
    if (request->optionalSignature != nullptr) FreeField(&request->optionalSignature->certs);
    return StatusOk;
}
