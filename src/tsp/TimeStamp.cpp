#include "tlvforge/timestamp.h"

#include <utility>

#include "common/times.h"
#include "engine/list_cells.h"
#include "engine/nodes.h"
#include "engine/oids.h"
#include "engine/outputs.h"
#include "tsp/timestamp.schema.h"
#include "x509/algorithm.h"
#include "x509/transition.h"

using namespace tlvforge;

namespace {

// Outputs that are fields.
class FieldOutputs : public Outputs {
public:
    // An output that the caller left out, by a null pointer or length, is skipped. Absent bytes have the length 0.
    template <class Out>
    void Read(Status (*get)(const Asn1Value*, Out*), const Asn1Value* field, Out* out) {
        if (out != nullptr) Then(get, field, out);
    }
    template <class Field>
    void Read(Status (*get)(const Field*, uint8_t*, uint32_t*), const Field* field, uint8_t* buffer, uint32_t* length) {
        if (length == nullptr) return;
        Then([=] { return field != nullptr ? get(field, buffer, length) : CopyOut(nullptr, 0, buffer, length); });
    }
};

void ReadImprint(FieldOutputs* outputs, const MessageImprint* imprint, uint8_t* hashOid, uint32_t* hashOidLength,
                 uint8_t* parameters, uint32_t* parametersLength, uint8_t* hash, uint32_t* hashLength) {
    const AlgorithmIdentifier* algorithm = imprint->hashAlgorithm;
    outputs->Read<Asn1Value>(GetAsn1Oid, algorithm->algorithm, hashOid, hashOidLength);
    outputs->Read<void>(GetAsn1AnyValue, algorithm->parameters, parameters, parametersLength);
    outputs->Read<void>(GetAsn1Value, imprint->hashedMessage, hash, hashLength);
}

Status ReadPart(const Asn1Value* field, uint32_t* part) {
    if (field == nullptr) return StatusOk;
    int32_t number = 0;
    const Status status = GetAsn1Int32(field, &number);
    if (status == StatusOk) *part = static_cast<uint32_t>(number);
    return status;
}

// Absent seconds leave what the caller's record holds, while the other parts become 0. That is intended: callers
// depend on it, and clear the record before.
Status ReadAccuracy(const AccuracyParts* parts, Accuracy* accuracy) {
    if (accuracy == nullptr) return StatusOk;
    if (parts == nullptr) return SetAccuracyToNull(accuracy);
    accuracy->milliseconds = 0;
    accuracy->microseconds = 0;
    FieldOutputs outputs;
    outputs.Read(ReadPart, parts->seconds, &accuracy->seconds);
    outputs.Read(ReadPart, parts->millis, &accuracy->milliseconds);
    outputs.Read(ReadPart, parts->micros, &accuracy->microseconds);
    return outputs.Result();
}

// Parts of a tree are handed over as they are: the tree has no more use for them.
template <class T>
Status MoveOut(T** field, T** out) {
    if (out == nullptr) return StatusOk;
    *out = *field;
    *field = nullptr;
    return StatusOk;
}

Status MoveExtensionsOut(X509ExtensionList** field, X509Extensions* out) {
    if (AnyNull(out, *field)) return StatusOk;
    Tree<X509ExtensionList> list(*field);
    *field = nullptr;
    return WrapInCell(&list, out, Place::Here());
}

template <class T>
void SetToNull(T** out) {
    if (out != nullptr) *out = nullptr;
}

Status SetNumber(Asn1Value** field, uint32_t number) { return SetAsn1Int32Field(field, static_cast<int32_t>(number)); }

// Leaves hashedMessage null, with status 0, when there is no memory for it.
Status SetImprint(MessageImprint* imprint, const uint8_t* hashOid, const uint8_t* parameters, uint32_t parametersLength,
                  const uint8_t* hash, uint32_t hashLength) {
    const Status status =
        SetAlgorithmIdentifierOidAndParameters(imprint->hashAlgorithm, hashOid, parameters, parametersLength);
    if (status == StatusOk) imprint->hashedMessage = AllocAsn1Value(Asn1KindOctetString, hash, hashLength);
    return status;
}

Status SetInteger(Asn1Value** field, const uint8_t* bytes, uint32_t length) {
    return bytes == nullptr ? StatusOk : SetAsn1ValueField(field, Asn1KindInteger, bytes, length);
}

Status SetPart(Asn1Value** field, uint32_t part) { return part == 0 ? StatusOk : SetNumber(field, part); }

Status WriteAccuracy(AccuracyParts** field, const Accuracy* accuracy) {
    if (IsAccuracyNull(accuracy) != 0) return StatusOk;
    Status status = CreateOptionalAsn1Sequence(&itemOf<schema::Optional<AccuracyParts>>, Untyped(field), 0);
    if (status == StatusOk) status = SetPart(&(*field)->seconds, accuracy->seconds);
    if (status == StatusOk) status = SetPart(&(*field)->millis, accuracy->milliseconds);
    if (status == StatusOk) status = SetPart(&(*field)->micros, accuracy->microseconds);
    return status;
}

// A name without a value is 32, by the copy.
Status CopyName(const X509GeneralName* source, X509GeneralName** field) {
    return source == nullptr ? StatusOk : CopyTree(source, field);
}

// An empty cell is 32, by the copy.
Status CopyExtensions(X509Extensions source, X509ExtensionList** field) {
    return source == nullptr ? StatusOk : CopyTree(source->list, field);
}

}  // namespace

Status EncodeTimeStampReq(uint32_t version, const uint8_t* hashOid, const uint8_t* parameters,
                          uint32_t parametersLength, const uint8_t* hash, uint32_t hashLength, const uint8_t* policyOid,
                          uint32_t /*policyOidLength*/, const uint8_t* nonce, uint32_t nonceLength, uint32_t certReq,
                          X509Extensions extensions, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(hashOid, hash, length)) return Fail(StatusBadArgument);
    Tree<TimeStampReq> request;
    Status status = request.Create();
    if (status == StatusOk) status = SetNumber(&request->version, version);
    if (status != StatusOk) return status;
    MessageImprint* imprint = request->messageImprint;
    status = SetImprint(imprint, hashOid, parameters, parametersLength, hash, hashLength);
    // Without memory for the hash nothing is written and the status is 0: intended, callers see an unchanged length.
    if (status != StatusOk || imprint->hashedMessage == nullptr) return status;
    if (policyOid != nullptr) status = ReplaceOidField(&request->reqPolicy, policyOid);
    if (status == StatusOk) status = SetInteger(&request->nonce, nonce, nonceLength);
    if (status == StatusOk) status = SetAsn1BooleanField(&request->certReq, certReq != 0);
    if (status == StatusOk) status = CopyExtensions(extensions, &request->extensions);
    return status == StatusOk ? request.Encode(buffer, length) : status;
}

Status DecodeTimeStampReq(const uint8_t* bytes, uint32_t length, int32_t* version, uint8_t* hashOid,
                          uint32_t* hashOidLength, uint8_t* parameters, uint32_t* parametersLength, uint8_t* hash,
                          uint32_t* hashLength, uint8_t* policyOid, uint32_t* policyOidLength, uint8_t* nonce,
                          uint32_t* nonceLength, uint32_t* certReq, X509Extensions* extensions) {
    if (AnyNull(bytes, version, hashOidLength, hashLength, policyOidLength, nonceLength, certReq, extensions) ||
        length == 0 || (parameters != nullptr && parametersLength == nullptr)) {
        return Fail(StatusBadArgument);
    }
    *extensions = nullptr;
    Tree<TimeStampReq> request;
    const Status status = request.Decode(bytes, length);
    if (status != StatusOk) return status;
    FieldOutputs outputs;
    outputs.Read(GetAsn1Int32, request->version, version);
    ReadImprint(&outputs, request->messageImprint, hashOid, hashOidLength, parameters, parametersLength, hash,
                hashLength);
    outputs.Read<Asn1Value>(GetAsn1Oid, request->reqPolicy, policyOid, policyOidLength);
    outputs.Read<void>(GetAsn1Value, request->nonce, nonce, nonceLength);
    outputs.Read(GetAsn1Boolean, request->certReq, certReq);
    outputs.Then(MoveExtensionsOut, &request->extensions, extensions);
    return outputs.Result();
}

Status EncodeTimeStampResp(uint32_t status, const PKIFreeText* statusString, uint32_t failInfo,
                           const CmsContentInfo* token, uint8_t* buffer, uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    const Tree<schema::Integer> number(AllocAsn1Integer(static_cast<int32_t>(status)));
    const Tree<schema::BitString> flags(failInfo == 0 ? nullptr : AllocAsn1BitStringFromFlags(failInfo));
    if (!number || (failInfo != 0 && !flags)) return Fail(StatusOutOfMemory);
    // The encoder only reads what is borrowed.
    PKIStatusInfo info = {number.Get(), const_cast<PKIFreeText*>(statusString), flags.Get()};
    const TimeStampResp response = {&info, const_cast<CmsContentInfo*>(token)};
    return EncodeTree(&response, buffer, length);
}

Status DecodeTimeStampResp(const uint8_t* bytes, uint32_t length, int32_t* status, PKIFreeText** statusString,
                           uint32_t* failInfo, CmsContentInfo** token) {
    if (AnyNull(bytes, status, statusString, failInfo, token) || length == 0) return Fail(StatusBadArgument);
    *statusString = nullptr;
    *token = nullptr;
    Tree<TimeStampResp> response;
    Status result = response.Decode(bytes, length);
    if (result != StatusOk) return result;
    PKIStatusInfo* info = response->status;
    result = GetAsn1Int32(info->status, status);
    if (result != StatusOk) return result;
    *failInfo = info->failInfo == nullptr ? 0 : FlagsOfAsn1BitString(info->failInfo);
    *statusString = std::exchange(info->statusString, nullptr);
    *token = std::exchange(response->timeStampToken, nullptr);
    return StatusOk;
}

Status EncodeTSTInfo(uint32_t version, const uint8_t* policyOid, const uint8_t* hashOid, const uint8_t* parameters,
                     uint32_t parametersLength, const uint8_t* hash, uint32_t hashLength, const uint8_t* serial,
                     uint32_t serialLength, const LibraryPreciseTime* genTime, const Accuracy* accuracy,
                     uint32_t ordering, const uint8_t* nonce, uint32_t nonceLength, const X509GeneralName* tsa,
                     X509Extensions extensions, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(hashOid, hash, serial, genTime, length)) return Fail(StatusBadArgument);
    Tree<TSTInfo> info;
    Status status = info.Create();
    if (status == StatusOk) status = SetNumber(&info->version, version);
    // A null OID is reported like a lack of memory, and so is a time without a text: callers depend on both.
    if (status == StatusOk) status = ReplaceOidField(&info->policy, policyOid);
    if (status != StatusOk) return status;
    MessageImprint* imprint = info->messageImprint;
    status = SetImprint(imprint, hashOid, parameters, parametersLength, hash, hashLength);
    // As in a request.
    if (status != StatusOk || imprint->hashedMessage == nullptr) return status;
    status = SetInteger(&info->serialNumber, serial, serialLength);
    if (status != StatusOk) return status;
    info->genTime = PreciseTimeToGeneralizedTime(genTime);
    if (info->genTime == nullptr) return Fail(StatusOutOfMemory);
    status = WriteAccuracy(&info->accuracy, accuracy);
    if (status == StatusOk) status = SetAsn1BooleanField(&info->ordering, ordering != 0);
    if (status == StatusOk) status = SetInteger(&info->nonce, nonce, nonceLength);
    if (status == StatusOk) status = CopyName(tsa, &info->tsa);
    if (status == StatusOk) status = CopyExtensions(extensions, &info->extensions);
    return status == StatusOk ? info.Encode(buffer, length) : status;
}

Status DecodeTSTInfo(const uint8_t* bytes, uint32_t length, int32_t* version, uint8_t* policyOid,
                     uint32_t* policyOidLength, uint8_t* hashOid, uint32_t* hashOidLength, uint8_t* parameters,
                     uint32_t* parametersLength, uint8_t* hash, uint32_t* hashLength, uint8_t* serial,
                     uint32_t* serialLength, LibraryPreciseTime* genTime, Accuracy* accuracy, uint32_t* ordering,
                     uint8_t* nonce, uint32_t* nonceLength, X509GeneralName** tsa, X509Extensions* extensions) {
    if (bytes == nullptr || length == 0) return Fail(StatusBadArgument);
    SetToNull(tsa);
    SetToNull(extensions);
    Tree<TSTInfo> info;
    const Status status = info.Decode(bytes, length);
    if (status != StatusOk) return status;
    FieldOutputs outputs;
    outputs.Read(GetAsn1Int32, info->version, version);
    outputs.Read<Asn1Value>(GetAsn1Oid, info->policy, policyOid, policyOidLength);
    ReadImprint(&outputs, info->messageImprint, hashOid, hashOidLength, parameters, parametersLength, hash, hashLength);
    outputs.Read<void>(GetAsn1Value, info->serialNumber, serial, serialLength);
    outputs.Read(GeneralizedTimeToPreciseTime, info->genTime, genTime);
    outputs.Then(ReadAccuracy, info->accuracy, accuracy);
    outputs.Read(GetAsn1Boolean, info->ordering, ordering);
    outputs.Read<void>(GetAsn1Value, info->nonce, nonce, nonceLength);
    outputs.Then(MoveOut<X509GeneralName>, &info->tsa, tsa);
    outputs.Then(MoveExtensionsOut, &info->extensions, extensions);
    return outputs.Result();
}
