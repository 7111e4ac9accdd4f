#include "tlvforge/ocsp.h"

#include "common/times.h"
#include "ocsp/ocsp_fields.h"
#include "x509/extension_codecs.h"

using namespace tlvforge;

namespace {

// Alternatives of ResponderID and CertStatus.
enum { kByName = 0, kByKey = 1 };
enum { kGood = 0, kRevoked = 1, kUnknown = 2 };

// A field of tbsResponseData.
template <auto... Members, class Record>
auto Tbs(Record* response, Place place = Place::Here()) {
    return At<&OcspBasicResponse::tbsResponseData, Members...>(response, place);
}

Status GetGeneralizedTime(const Part<Asn1Value>& field, LibraryTime* time) {
    return field ? GeneralizedTimeToLibraryTime(field.node, time) : field.Absent();
}

// Null leaves the field absent, and so does a time that can't be written.
Status ReplaceTime(const Slot<Asn1Value>& field, const LibraryTime* time) {
    if (const Status status = Remove(field)) return status;
    return SetOptionalTime(field.cell, time);
}

// A choice without a value has nothing chosen, whatever its selector says.
bool HasChoice(const Asn1Choice* choice) { return choice != nullptr && choice->value != nullptr; }

// Puts a value that has just been made in the place of what was chosen: null when out of memory, and freed after a
// failure.
template <class ChoiceType>
Status MoveToChoice(ChoiceType** field, uint32_t selected, void* value, Place place = Place::Here()) {
    if (value == nullptr) return Fail(StatusOutOfMemory, place);
    const Status status = ReplaceField(field, AllocChoice<ChoiceType>(selected, value), place);
    if (status != StatusOk) FreeAsn1Object(itemOf<ChoiceType>.children[selected], value);
    return status;
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
    return GetInt32(At<&OcspResponse::responseStatus>(response), status);
}

Status SetOcspResponseStatus(OcspResponse* response, uint32_t status) {
    if (response == nullptr) return Fail(StatusBadArgument);
    return SetInt32(At<&OcspResponse::responseStatus>(response), static_cast<int32_t>(status));
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
    return ReadOutputs(
        OutputRule::kAllSmallLast, [&] { return GetAsn1Oid(block->responseType, typeOid, typeOidLength); },
        [&] { return GetBytes(At<&OcspResponseBytes::response>(block), bytes, bytesLength); });
}

Status SetOcspResponseBytes(OcspResponse* response, const uint8_t* typeOid, const uint8_t* bytes, uint32_t length) {
    if (response == nullptr) return Fail(StatusBadArgument);
    if (typeOid == nullptr || typeOid[0] == 0) {
        if (length != 0) return Fail(StatusBadArgument);
        FreeField(&response->responseBytes);
        return StatusOk;
    }
    if (const Status status = Ensure(&response->responseBytes, 0)) return status;
    OcspResponseBytes* block = response->responseBytes;
    if (const Status status = ReplaceOidField(&block->responseType, typeOid)) return status;
    // A type alone is no failure: it leaves the bytes that are there.
    if (bytes == nullptr || length == 0) return StatusOk;
    return SetAsn1ValueField(&block->response, Asn1KindOctetString, bytes, length);
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
    return Encode(At<&OcspBasicResponse::tbsResponseData>(response), buffer, length);
}

Status GetOcspBasicResponseVersion(const OcspBasicResponse* response, int32_t* version) {
    if (AnyNull(response, version)) return Fail(StatusBadArgument);
    return GetInt32(Tbs<&ResponseData::version>(response), version);
}

Status SetOcspBasicResponseVersion(OcspBasicResponse* response, uint32_t version) {
    if (response == nullptr) return Fail(StatusBadArgument);
    return SetInt32(Tbs<&ResponseData::version>(response), static_cast<int32_t>(version));
}

Status GetOcspBasicResponseResponderID(const OcspBasicResponse* response, uint32_t* type, uint8_t* buffer,
                                       uint32_t* length) {
    if (AnyNull(response, type, length)) return Fail(StatusBadArgument);
    const Part<OcspResponderID> responder = Tbs<&ResponseData::responderID>(response);
    if (!HasChoice(responder.node)) return responder.Absent();
    if (responder->selected > kByKey) return Fail(StatusBadAlternative);
    *type = responder->selected;
    return GetAsn1Value(responder->value, buffer, length);
}

Status SetOcspBasicResponseResponderID(OcspBasicResponse* response, uint32_t type, const uint8_t* bytes,
                                       uint32_t length) {
    if (AnyNull(response, bytes) || type > kByKey) return Fail(StatusBadArgument);
    const Slot<OcspResponderID> field = Tbs<&ResponseData::responderID>(response);
    if (const Status status = Remove(field)) return status;
    void* value = nullptr;
    if (type == kByName) {
        value = AllocAsn1Any(length != 0 ? bytes[0] & 31 : 0, bytes, length);
    } else {
        value = AllocAsn1Value(Asn1KindOctetString, bytes, length);
    }
    return MoveToChoice(field.cell, type, value);
}

Status GetOcspBasicResponseProducedAt(const OcspBasicResponse* response, LibraryTime* time) {
    if (AnyNull(response, time)) return Fail(StatusBadArgument);
    return GetGeneralizedTime(Tbs<&ResponseData::producedAt>(response), time);
}

Status SetOcspBasicResponseProducedAt(OcspBasicResponse* response, const LibraryTime* time) {
    if (AnyNull(response, time)) return Fail(StatusBadArgument);
    return ReplaceTime(Tbs<&ResponseData::producedAt>(response), time);
}

Status GetOcspBasicResponseSingleResponsesCount(const OcspBasicResponse* response, uint32_t* count) {
    if (AnyNull(response, count)) return Fail(StatusBadArgument);
    return GetCount(Tbs<&ResponseData::responses>(response), count);
}

Status GetOcspBasicResponseSingleResponse(const OcspBasicResponse* response, int32_t index,
                                          OcspSingleResponse** single) {
    if (AnyNull(response, single)) return Fail(StatusBadArgument);
    const auto list = Tbs<&ResponseData::responses>(response);
    return GetMember(list, static_cast<uint32_t>(index), single);
}

Status AddOcspBasicResponseSingleResponse(OcspBasicResponse* response, OcspSingleResponse* single) {
    if (AnyNull(response, single)) return Fail(StatusBadArgument);
    const auto list = Tbs<&ResponseData::responses>(response);
    if (list.cell == nullptr) return list.Absent();
    if (const Status status = EnsureList(list.cell)) return status;
    return AddMember(*list.cell, single);
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
    return Borrow(Tbs<&ResponseData::responseExtensions>(response), extensions);
}

Status GetOcspBasicResponseSignature(const OcspBasicResponse* response, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(response, length)) return Fail(StatusBadArgument);
    return GetBits(At<&OcspBasicResponse::signature>(response), buffer, length);
}

Status SetOcspBasicResponseSignature(OcspBasicResponse* response, const uint8_t* bytes, uint32_t length) {
    if (AnyNull(response, bytes)) return Fail(StatusBadArgument);
    return ReplaceBits(At<&OcspBasicResponse::signature>(response), bytes, length);
}

Status GetOcspBasicResponseSignatureAlgorithmAndParameters(const OcspBasicResponse* response, uint8_t* oid,
                                                           uint32_t* oidLength, uint8_t* parameters,
                                                           uint32_t* parametersLength) {
    if (AnyNull(response, oidLength)) return Fail(StatusBadArgument);
    return ReadAlgorithm(At<&OcspBasicResponse::signatureAlgorithm>(response), {oid, oidLength},
                         {parameters, parametersLength});
}

Status SetOcspBasicResponseSignatureAlgorithmOidAndParameters(OcspBasicResponse* response, const uint8_t* oid,
                                                              const uint8_t* parameters, uint32_t parametersLength) {
    if (AnyNull(response, oid)) return Fail(StatusBadArgument);
    return SetAlgorithm(At<&OcspBasicResponse::signatureAlgorithm>(response), oid, {parameters, parametersLength});
}

Status AddOcspBasicResponseCertificate(OcspBasicResponse* response, Certificate* certificate) {
    if (AnyNull(response, certificate)) return Fail(StatusBadArgument);
    return AddCertificate(&response->certs, certificate);
}

Status GetOcspBasicResponseCertificatesCount(const OcspBasicResponse* response, uint32_t* count) {
    if (AnyNull(response, count)) return Fail(StatusBadArgument);
    return GetOptionalCount(At<&OcspBasicResponse::certs>(response), count);
}

Status GetOcspBasicResponseCertificate(const OcspBasicResponse* response, int32_t index, Certificate** certificate) {
    if (AnyNull(response, certificate)) return Fail(StatusBadArgument);
    const auto certificates = At<&OcspBasicResponse::certs>(response);
    return GetMember(certificates, static_cast<uint32_t>(index), certificate);
}

Status RemoveOcspBasicResponseCertificates(OcspBasicResponse* response) {
    if (response == nullptr) return Fail(StatusBadArgument);
    return Remove(At<&OcspBasicResponse::certs>(response));
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
    return ReadCertID(At<&OcspSingleResponse::certID>(single), {hashOid, hashOidLength}, {parameters, parametersLength},
                      {nameHash, nameHashLength}, {keyHash, keyHashLength}, {serial, serialLength});
}

Status SetOcspSingleResponseCertID(OcspSingleResponse* single, const uint8_t* hashOid, const uint8_t* parameters,
                                   uint32_t parametersLength, const uint8_t* nameHash, uint32_t nameHashLength,
                                   const uint8_t* keyHash, uint32_t keyHashLength, const uint8_t* serial,
                                   uint32_t serialLength) {
    if (AnyNull(single, hashOid, nameHash, keyHash, serial)) return Fail(StatusBadArgument);
    return WriteCertID(At<&OcspSingleResponse::certID>(single), hashOid, {parameters, parametersLength},
                       {nameHash, nameHashLength}, {keyHash, keyHashLength}, {serial, serialLength});
}

Status GetOcspSingleResponseCertStatus(const OcspSingleResponse* single, uint32_t* certStatus) {
    if (AnyNull(single, certStatus)) return Fail(StatusBadArgument);
    const Part<OcspCertStatus> choice = At<&OcspSingleResponse::certStatus>(single);
    if (!HasChoice(choice.node)) return choice.Absent();
    *certStatus = choice->selected;
    return StatusOk;
}

Status GetOcspSingleResponseCertStatusRevokedInfo(const OcspSingleResponse* single, LibraryTime* time,
                                                  uint32_t* reason) {
    if (AnyNull(single, time, reason)) return Fail(StatusBadArgument);
    const Part<OcspCertStatus> choice = At<&OcspSingleResponse::certStatus>(single);
    if (choice && choice->selected != kRevoked) return Fail(StatusBadArgument);
    if (!HasChoice(choice.node)) return choice.Absent();
    const auto* info = static_cast<const OcspRevokedInfo*>(choice->value);
    int32_t number = -1;  // without a reason
    if (const Status status = GetGeneralizedTime(At<&OcspRevokedInfo::revocationTime>(info), time)) return status;
    if (const Status status = GetOptionalInt32(info->revocationReason, &number)) return status;
    *reason = static_cast<uint32_t>(number);
    return StatusOk;
}

Status SetOcspSingleResponseCertStatus(OcspSingleResponse* single, uint32_t index, void* value) {
    if (AnyNull(single, value)) return Fail(StatusBadArgument);
    return ReplaceField(&single->certStatus, AllocChoice<OcspCertStatus>(index, value));
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
    if (const Status status = AllocCertStatusRevokedInfo(time, reason, &info)) return status;
    return MoveToChoice(&single->certStatus, kRevoked, info);
}

Status AllocCertStatusRevokedInfo(const LibraryTime* time, int32_t reason, OcspRevokedInfo** info) {
    if (AnyNull(time, info)) return Fail(StatusBadArgument);
    *info = nullptr;
    // Blocks that the caller may end by itself, and bytes in blocks of their own.
    Tree<OcspRevokedInfo> record(NewRecord<OcspRevokedInfo>());
    const Tree<schema::GeneralizedTime> value(LibraryTimeToGeneralizedTime(time));
    if (!record || !value) return Fail(StatusOutOfMemory);
    record->revocationTime = NewValueInTwoBlocks<Asn1Value>(value->type, value->data, value->length);
    if (reason >= 0) record->revocationReason = AllocAsn1Integer(reason);
    const bool complete = record->revocationTime != nullptr && (reason < 0 || record->revocationReason != nullptr);
    if (!complete) return Fail(StatusOutOfMemory);
    *info = record.Take();
    return StatusOk;
}

Status GetOcspSingleResponseThisUpdate(const OcspSingleResponse* single, LibraryTime* time) {
    if (AnyNull(single, time)) return Fail(StatusBadArgument);
    return GetGeneralizedTime(At<&OcspSingleResponse::thisUpdate>(single), time);
}

Status GetOcspSingleResponseNextUpdate(const OcspSingleResponse* single, LibraryTime* time) {
    if (AnyNull(single, time)) return Fail(StatusBadArgument);
    return GetGeneralizedTime(At<&OcspSingleResponse::nextUpdate>(single), time);
}

Status SetOcspSingleResponseThisUpdate(OcspSingleResponse* single, const LibraryTime* time) {
    if (AnyNull(single, time)) return Fail(StatusBadArgument);
    return ReplaceTime(At<&OcspSingleResponse::thisUpdate>(single), time);
}

Status SetOcspSingleResponseNextUpdate(OcspSingleResponse* single, const LibraryTime* time) {
    if (single == nullptr) return Fail(StatusBadArgument);
    return ReplaceTime(At<&OcspSingleResponse::nextUpdate>(single), time);
}

Status GetOcspSingleResponseExtensions(OcspSingleResponse* single, X509Extensions* extensions) {
    if (AnyNull(single, extensions)) return Fail(StatusBadArgument);
    return Borrow(At<&OcspSingleResponse::singleExtensions>(single), extensions);
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
    if (response == nullptr || !HasIndex(responses, index)) return Fail(StatusBadArgument);
    return Borrow(MemberAt(responses, index), response);
}
