#include "tlvforge/ocsp.h"

#include "common/times.h"
#include "engine/list_cells.h"
#include "engine/nodes.h"
#include "engine/oids.h"
#include "ocsp/ocsp.schema.h"
#include "ocsp/ocsp_fields.h"
#include "x509/extension_codecs.h"
#include "x509/fields.h"

using namespace tlvforge;

namespace {

// Alternatives of ResponderID and CertStatus.
enum { kByName = 0, kByKey = 1 };
enum { kGood = 0, kRevoked = 1, kUnknown = 2 };

Status GetTime(const Asn1Value* field, LibraryTime* time, Place place = Place::Here()) {
    return field == nullptr ? Fail(StatusAbsent, place) : GeneralizedTimeToLibraryTime(field, time);
}

// Null leaves the field absent, and so does a time that can't be written.
Status ReplaceTime(Asn1Value** field, const LibraryTime* time) {
    FreeField(field);
    return SetOptionalTime(field, time);
}

// A choice without a value has nothing chosen, whatever its selector says.
bool HasChoice(const Asn1Choice* choice) { return choice != nullptr && choice->value != nullptr; }

// Puts a value in the place of what was chosen. After a failure nothing is, and the value is still the caller's.
template <class ChoiceType>
Status ReplaceChoice(ChoiceType** field, uint32_t selected, void* value, Place place = Place::Here()) {
    FreeField(field);
    *field = static_cast<ChoiceType*>(AllocAsn1Choice(selected, value));
    return *field == nullptr ? Fail(StatusOutOfMemory, place) : StatusOk;
}

// The same for a value that has just been made: null when out of memory, and freed after a failure.
template <class ChoiceType>
Status MoveToChoice(ChoiceType** field, uint32_t selected, void* value, Place place = Place::Here()) {
    if (value == nullptr) return Fail(StatusOutOfMemory, place);
    const Status status = ReplaceChoice(field, selected, value, place);
    if (status != StatusOk) FreeAsn1Object(itemOf<ChoiceType>.children[selected], value);
    return status;
}

// Null too where the response has no tbsResponseData.
ListOf<OcspSingleResponse>* SingleResponsesOf(const OcspBasicResponse* response) {
    return FieldOf(response->tbsResponseData, &ResponseData::responses);
}

}  // namespace

// --- The message ---

Status CreateOcspResponse(OcspResponse** response) { return CreateTree(response); }

Status DecodeOcspResponse(const uint8_t* bytes, uint32_t length, OcspResponse** response) {
    return DecodeTree(bytes, length, response);
}

Status EncodeOcspResponse(const OcspResponse* response, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(response, buffer, length);
}

Status FreeOcspResponse(OcspResponse* response) { return FreeTree(response); }

Status GetOcspResponseStatus(const OcspResponse* response, int32_t* status) {
    if (AnyNull(response, status)) return Fail(StatusBadArgument);
    return GetNumber(response->responseStatus, status);
}

Status SetOcspResponseStatus(OcspResponse* response, uint32_t status) {
    if (response == nullptr) return Fail(StatusBadArgument);
    return SetAsn1Int32Field(&response->responseStatus, static_cast<int32_t>(status));
}

Status GetOcspResponseBytes(const OcspResponse* response, uint8_t* typeOid, uint32_t* typeOidLength, uint8_t* bytes,
                            uint32_t* bytesLength) {
    if (AnyNull(response, typeOidLength, bytesLength)) return Fail(StatusBadArgument);
    const OcspResponseBytes* block = response->responseBytes;
    if (block == nullptr) {
        *typeOidLength = *bytesLength = 0;
        return StatusOk;
    }
    if (block->responseType == nullptr) return Fail(StatusAbsent);
    const Status first = GetAsn1Oid(block->responseType, typeOid, typeOidLength);
    if (block->response == nullptr) return Fail(StatusAbsent);
    return StatusOfBoth(first, GetAsn1Value(block->response, bytes, bytesLength));
}

Status SetOcspResponseBytes(OcspResponse* response, const uint8_t* typeOid, const uint8_t* bytes, uint32_t length) {
    if (response == nullptr) return Fail(StatusBadArgument);
    if (typeOid == nullptr || typeOid[0] == 0) {
        if (length != 0) return Fail(StatusBadArgument);
        FreeField(&response->responseBytes);
        return StatusOk;
    }
    OcspResponseBytes** block = &response->responseBytes;
    Status status = StatusOk;
    if (*block == nullptr) status = CreateTree(block, 0);
    if (status == StatusOk) status = ReplaceOidField(&(*block)->responseType, typeOid);
    // A type alone is no failure: it leaves the bytes that are there.
    if (status != StatusOk || bytes == nullptr || length == 0) return status;
    return SetAsn1ValueField(&(*block)->response, Asn1KindOctetString, bytes, length);
}

// --- Basic responses ---

Status CreateOcspBasicResponse(OcspBasicResponse** response) { return CreateTree(response); }

Status DecodeOcspBasicResponse(const uint8_t* bytes, uint32_t length, OcspBasicResponse** response) {
    return DecodeTree(bytes, length, response);
}

Status EncodeOcspBasicResponse(const OcspBasicResponse* response, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(response, buffer, length);
}

Status FreeOcspBasicResponse(OcspBasicResponse* response) { return FreeTree(response); }

Status GetOcspBasicResponseToBeSignedPart(const OcspBasicResponse* response, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(response, length)) return Fail(StatusBadArgument);
    if (response->tbsResponseData == nullptr) return Fail(StatusAbsent);
    return EncodeTree(response->tbsResponseData, buffer, length);
}

Status GetOcspBasicResponseVersion(const OcspBasicResponse* response, int32_t* version) {
    if (AnyNull(response, version)) return Fail(StatusBadArgument);
    return GetNumber(FieldOf(response->tbsResponseData, &ResponseData::version), version);
}

Status SetOcspBasicResponseVersion(OcspBasicResponse* response, uint32_t version) {
    if (response == nullptr) return Fail(StatusBadArgument);
    if (response->tbsResponseData == nullptr) return Fail(StatusAbsent);
    return SetAsn1Int32Field(&response->tbsResponseData->version, static_cast<int32_t>(version));
}

Status GetOcspBasicResponseResponderID(const OcspBasicResponse* response, uint32_t* type, uint8_t* buffer,
                                       uint32_t* length) {
    if (AnyNull(response, type, length)) return Fail(StatusBadArgument);
    const Asn1Choice* responder = FieldOf(response->tbsResponseData, &ResponseData::responderID);
    if (!HasChoice(responder)) return Fail(StatusAbsent);
    if (responder->selected > kByKey) return Fail(StatusBadAlternative);
    *type = responder->selected;
    return GetAsn1Value(responder->value, buffer, length);
}

Status SetOcspBasicResponseResponderID(OcspBasicResponse* response, uint32_t type, const uint8_t* bytes,
                                       uint32_t length) {
    if (AnyNull(response, bytes) || type > kByKey) return Fail(StatusBadArgument);
    if (response->tbsResponseData == nullptr) return Fail(StatusAbsent);
    OcspResponderID** field = &response->tbsResponseData->responderID;
    FreeField(field);
    void* value = nullptr;
    if (type == kByName) {
        value = AllocAsn1Any(length != 0 ? bytes[0] & 31 : 0, bytes, length);
    } else {
        value = AllocAsn1Value(Asn1KindOctetString, bytes, length);
    }
    return MoveToChoice(field, type, value);
}

Status GetOcspBasicResponseProducedAt(const OcspBasicResponse* response, LibraryTime* time) {
    if (AnyNull(response, time)) return Fail(StatusBadArgument);
    return GetTime(FieldOf(response->tbsResponseData, &ResponseData::producedAt), time);
}

Status SetOcspBasicResponseProducedAt(OcspBasicResponse* response, const LibraryTime* time) {
    if (AnyNull(response, time)) return Fail(StatusBadArgument);
    if (response->tbsResponseData == nullptr) return Fail(StatusAbsent);
    return ReplaceTime(&response->tbsResponseData->producedAt, time);
}

Status GetOcspBasicResponseSingleResponsesCount(const OcspBasicResponse* response, uint32_t* count) {
    if (AnyNull(response, count)) return Fail(StatusBadArgument);
    const auto* list = SingleResponsesOf(response);
    return list == nullptr ? Fail(StatusAbsent) : GetListCount(list, count);
}

Status GetOcspBasicResponseSingleResponse(const OcspBasicResponse* response, int32_t index,
                                          OcspSingleResponse** single) {
    if (AnyNull(response, single)) return Fail(StatusBadArgument);
    const auto* list = SingleResponsesOf(response);
    return list == nullptr ? Fail(StatusAbsent) : GetListMember(list, static_cast<uint32_t>(index), single);
}

Status AddOcspBasicResponseSingleResponse(OcspBasicResponse* response, OcspSingleResponse* single) {
    if (AnyNull(response, single)) return Fail(StatusBadArgument);
    if (response->tbsResponseData == nullptr) return Fail(StatusAbsent);
    ListOf<OcspSingleResponse>** list = &response->tbsResponseData->responses;
    const Status status = NeedList(list);
    return status == StatusOk ? AddMember(*list, single) : status;
}

Status ClearOcspBasicResponseResponses(OcspBasicResponse* response) {
    if (response == nullptr) return Fail(StatusBadArgument);
    if (response->tbsResponseData == nullptr) return Fail(StatusAbsent);
    ListOf<OcspSingleResponse>** list = &response->tbsResponseData->responses;
    // Without a list and without memory for one the answers are gone as well: no failure.
    if (*list == nullptr) *list = AllocList<ListOf<OcspSingleResponse>>();
    if (*list != nullptr) ClearList(*list);
    return StatusOk;
}

Status GetOcspBasicResponseExtensions(const OcspBasicResponse* response, X509Extensions* extensions) {
    if (AnyNull(response, extensions)) return Fail(StatusBadArgument);
    return LendExtensions(response->tbsResponseData, &ResponseData::responseExtensions, extensions);
}

Status GetOcspBasicResponseSignature(const OcspBasicResponse* response, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(response, length)) return Fail(StatusBadArgument);
    return GetBitStringField(response->signature, buffer, length);
}

Status SetOcspBasicResponseSignature(OcspBasicResponse* response, const uint8_t* bytes, uint32_t length) {
    if (AnyNull(response, bytes)) return Fail(StatusBadArgument);
    return ReplaceBitString(&response->signature, bytes, length, 0);
}

Status GetOcspBasicResponseSignatureAlgorithmAndParameters(const OcspBasicResponse* response, uint8_t* oid,
                                                           uint32_t* oidLength, uint8_t* parameters,
                                                           uint32_t* parametersLength) {
    if (AnyNull(response, oidLength)) return Fail(StatusBadArgument);
    return ReadAlgorithm(response->signatureAlgorithm, {oid, oidLength}, {parameters, parametersLength});
}

Status SetOcspBasicResponseSignatureAlgorithmOidAndParameters(OcspBasicResponse* response, const uint8_t* oid,
                                                              const uint8_t* parameters, uint32_t parametersLength) {
    if (AnyNull(response, oid)) return Fail(StatusBadArgument);
    return SetAlgorithm(response->signatureAlgorithm, oid, parameters, parametersLength);
}

Status AddOcspBasicResponseCertificate(OcspBasicResponse* response, Certificate* certificate) {
    if (AnyNull(response, certificate)) return Fail(StatusBadArgument);
    return AddCertificate(&response->certs, certificate);
}

Status GetOcspBasicResponseCertificatesCount(const OcspBasicResponse* response, uint32_t* count) {
    if (AnyNull(response, count)) return Fail(StatusBadArgument);
    *count = GetAsn1ListLength(response->certs);
    return StatusOk;
}

Status GetOcspBasicResponseCertificate(const OcspBasicResponse* response, int32_t index, Certificate** certificate) {
    if (AnyNull(response, certificate)) return Fail(StatusBadArgument);
    return LendCertificate(response->certs, static_cast<uint32_t>(index), certificate);
}

Status RemoveOcspBasicResponseCertificates(OcspBasicResponse* response) {
    if (response == nullptr) return Fail(StatusBadArgument);
    FreeField(&response->certs);
    return StatusOk;
}

// --- Answers for one certificate ---

Status CreateOcspSingleResponse(OcspSingleResponse** single) { return CreateTree(single); }

Status DecodeOcspSingleResponse(const uint8_t* bytes, uint32_t length, OcspSingleResponse** single) {
    return DecodeTree(bytes, length, single);
}

Status EncodeOcspSingleResponse(const OcspSingleResponse* single, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(single, buffer, length);
}

Status FreeOcspSingleResponse(OcspSingleResponse* single) { return FreeTree(single); }

Status GetOcspSingleResponseCertID(const OcspSingleResponse* single, uint8_t* hashOid, uint32_t* hashOidLength,
                                   uint8_t* parameters, uint32_t* parametersLength, uint8_t* nameHash,
                                   uint32_t* nameHashLength, uint8_t* keyHash, uint32_t* keyHashLength, uint8_t* serial,
                                   uint32_t* serialLength) {
    if (AnyNull(single, hashOidLength, parametersLength, nameHashLength, keyHashLength, serialLength)) {
        return Fail(StatusBadArgument);
    }
    return ReadCertID(single->certID, {hashOid, hashOidLength}, {parameters, parametersLength},
                      {nameHash, nameHashLength}, {keyHash, keyHashLength}, {serial, serialLength});
}

Status SetOcspSingleResponseCertID(OcspSingleResponse* single, const uint8_t* hashOid, const uint8_t* parameters,
                                   uint32_t parametersLength, const uint8_t* nameHash, uint32_t nameHashLength,
                                   const uint8_t* keyHash, uint32_t keyHashLength, const uint8_t* serial,
                                   uint32_t serialLength) {
    if (AnyNull(single, hashOid, nameHash, keyHash, serial)) return Fail(StatusBadArgument);
    return WriteCertID(single->certID, hashOid, {parameters, parametersLength}, {nameHash, nameHashLength},
                       {keyHash, keyHashLength}, {serial, serialLength});
}

Status GetOcspSingleResponseCertStatus(const OcspSingleResponse* single, uint32_t* certStatus) {
    if (AnyNull(single, certStatus)) return Fail(StatusBadArgument);
    if (!HasChoice(single->certStatus)) return Fail(StatusAbsent);
    *certStatus = single->certStatus->selected;
    return StatusOk;
}

Status GetOcspSingleResponseCertStatusRevokedInfo(const OcspSingleResponse* single, LibraryTime* time,
                                                  uint32_t* reason) {
    if (AnyNull(single, time, reason)) return Fail(StatusBadArgument);
    const Asn1Choice* certStatus = single->certStatus;
    if (certStatus != nullptr && certStatus->selected != kRevoked) return Fail(StatusBadArgument);
    if (!HasChoice(certStatus)) return Fail(StatusAbsent);
    const auto* info = static_cast<const OcspRevokedInfo*>(certStatus->value);
    Status status = GetTime(info->revocationTime, time);
    int32_t number = -1;  // without a reason
    if (status == StatusOk && info->revocationReason != nullptr) status = GetAsn1Int32(info->revocationReason, &number);
    if (status == StatusOk) *reason = static_cast<uint32_t>(number);
    return status;
}

Status SetOcspSingleResponseCertStatus(OcspSingleResponse* single, uint32_t index, void* value) {
    if (AnyNull(single, value)) return Fail(StatusBadArgument);
    return ReplaceChoice(&single->certStatus, index, value);
}

Status SetOcspSingleResponseCertStatusGood(OcspSingleResponse* single) {
    if (single == nullptr) return Fail(StatusBadArgument);
    return MoveToChoice(&single->certStatus, kGood, AllocAsn1Value(Asn1KindNull, nullptr, 0));
}

Status SetOcspSingleResponseCertStatusUnknown(OcspSingleResponse* single) {
    if (single == nullptr) return Fail(StatusBadArgument);
    return MoveToChoice(&single->certStatus, kUnknown, AllocAsn1Value(Asn1KindNull, nullptr, 0));
}

Status SetOcspSingleResponseCertStatusRevoked(OcspSingleResponse* single, const LibraryTime* time, int32_t reason) {
    if (AnyNull(single, time)) return Fail(StatusBadArgument);
    OcspRevokedInfo* info = nullptr;
    const Status status = AllocCertStatusRevokedInfo(time, reason, &info);
    if (status != StatusOk) return status;
    return MoveToChoice(&single->certStatus, kRevoked, info);
}

Status AllocCertStatusRevokedInfo(const LibraryTime* time, int32_t reason, OcspRevokedInfo** info) {
    if (AnyNull(time, info)) return Fail(StatusBadArgument);
    *info = nullptr;
    Tree<OcspRevokedInfo> record;
    Status status = record.Create();
    if (status == StatusOk) status = SetOptionalTime(&record->revocationTime, time);
    if (status == StatusOk && reason >= 0) status = SetAsn1Int32Field(&record->revocationReason, reason);
    if (status == StatusOk) *info = record.Take();
    return status;
}

Status GetOcspSingleResponseThisUpdate(const OcspSingleResponse* single, LibraryTime* time) {
    if (AnyNull(single, time)) return Fail(StatusBadArgument);
    return GetTime(single->thisUpdate, time);
}

Status GetOcspSingleResponseNextUpdate(const OcspSingleResponse* single, LibraryTime* time) {
    if (AnyNull(single, time)) return Fail(StatusBadArgument);
    return GetTime(single->nextUpdate, time);
}

Status SetOcspSingleResponseThisUpdate(OcspSingleResponse* single, const LibraryTime* time) {
    if (AnyNull(single, time)) return Fail(StatusBadArgument);
    return ReplaceTime(&single->thisUpdate, time);
}

Status SetOcspSingleResponseNextUpdate(OcspSingleResponse* single, const LibraryTime* time) {
    if (single == nullptr) return Fail(StatusBadArgument);
    return ReplaceTime(&single->nextUpdate, time);
}

Status GetOcspSingleResponseExtensions(OcspSingleResponse* single, X509Extensions* extensions) {
    if (AnyNull(single, extensions)) return Fail(StatusBadArgument);
    return LendExtensions(single, &OcspSingleResponse::singleExtensions, extensions);
}

// --- Lists of basic responses ---

Status CreateOcspBasicResponses(OcspBasicResponses** responses) { return CreateTree(responses); }

Status CreateOcspBasicResponsesCopy(const OcspBasicResponses* responses, OcspBasicResponses** copy) {
    return CopyTree(responses, copy);
}

Status DecodeOcspBasicResponses(const uint8_t* bytes, uint32_t length, OcspBasicResponses** responses) {
    return DecodeTree(bytes, length, responses);
}

Status EncodeOcspBasicResponses(const OcspBasicResponses* responses, uint8_t* buffer, uint32_t* length) {
    return EncodeTree(responses, buffer, length);
}

Status FreeOcspBasicResponses(OcspBasicResponses* responses) { return FreeTree(responses); }

Status AddResponseToOcspBasicResponses(OcspBasicResponses* responses, OcspBasicResponse* response) {
    if (AnyNull(responses, response)) return Fail(StatusBadArgument);
    return AddMember(responses, response);
}

Status GetOcspBasicResponsesCount(const OcspBasicResponses* responses, uint32_t* count) {
    return GetListCount(responses, count);
}

Status GetOcspBasicResponsesResponse(const OcspBasicResponses* responses, uint32_t index,
                                     OcspBasicResponse** response) {
    return GetListMember(responses, index, response);
}
