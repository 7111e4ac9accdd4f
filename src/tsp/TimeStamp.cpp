#include "tlvforge/timestamp.h"

#include "common/times.h"
#include "engine/list_cells.h"
#include "engine/views.h"
#include "tsp/timestamp.schema.h"
#include "x509/fields.h"

using namespace tlvforge;

namespace {

// Fields as functions for ReadOutputs. An output that the caller left out, by a null pointer or length, is skipped.
// Absent bytes have the length 0.
template <class Out>
auto ValueIfAsked(Status (*get)(const Asn1Value*, Out*), const Asn1Value* field, Out* out) {
    return [=]() -> Status { return out != nullptr ? get(field, out) : StatusOk; };
}

auto BytesIfAsked(const void* field, Output out) {
    return [=]() -> Status { return out.length != nullptr ? GetOptionalBytes(field, out) : StatusOk; };
}

auto OidIfAsked(const Asn1Value* field, Output out) {
    return [=]() -> Status {
        if (out.length == nullptr) return StatusOk;
        return field != nullptr ? GetAsn1Oid(field, out.buffer, out.length)
                                : CopyOut(nullptr, 0, out.buffer, out.length);
    };
}

auto ImprintInto(const MessageImprint* imprint, Output hashOid, Output parameters, Output hash) {
    return [=] {
        const AlgorithmIdentifier* algorithm = imprint->hashAlgorithm;
        return ReadOutputs(OutputRule::kPastSmallBuffers, OidIfAsked(algorithm->algorithm, hashOid),
                           BytesIfAsked(algorithm->parameters, parameters), BytesIfAsked(imprint->hashedMessage, hash));
    };
}

Status ReadPart(const Asn1Value* field, uint32_t* part) {
    if (field == nullptr) return StatusOk;
    int32_t number = 0;
    if (const Status status = GetAsn1Int32(field, &number)) return status;
    *part = static_cast<uint32_t>(number);
    return StatusOk;
}

// Absent seconds leave what the caller's record holds, while the other parts become 0: see docs/oddities.md.
Status ReadAccuracy(const AccuracyParts* parts, Accuracy* accuracy) {
    if (accuracy == nullptr) return StatusOk;
    if (parts == nullptr) return SetAccuracyToNull(accuracy);
    accuracy->milliseconds = 0;
    accuracy->microseconds = 0;
    return ReadOutputs(OutputRule::kPastSmallBuffers, ValueIfAsked(ReadPart, parts->seconds, &accuracy->seconds),
                       ValueIfAsked(ReadPart, parts->millis, &accuracy->milliseconds),
                       ValueIfAsked(ReadPart, parts->micros, &accuracy->microseconds));
}

Status TakeExtensions(X509ExtensionList** field, X509Extensions* out) {
    if (AnyNull(out, *field)) return StatusOk;
    Tree<X509ExtensionList> list(TakeField(field));
    return WrapInCell(&list, out);
}

template <class T>
void SetToNull(T** out) {
    if (out != nullptr) *out = nullptr;
}

Status SetNumber(Asn1Value** field, uint32_t number) { return SetAsn1Int32Field(field, static_cast<int32_t>(number)); }

// Leaves hashedMessage null, with status 0, when there is no memory for it.
Status SetImprint(MessageImprint* imprint, const uint8_t* hashOid, Bytes parameters, Bytes hash) {
    const auto algorithm = At<&MessageImprint::hashAlgorithm>(imprint);
    if (const Status status = SetAlgorithm(algorithm, hashOid, parameters)) return status;
    imprint->hashedMessage = AllocAsn1Value(Asn1KindOctetString, hash.data, hash.length);
    return StatusOk;
}

Status SetPart(Asn1Value** field, uint32_t part) { return part != 0 ? SetNumber(field, part) : StatusOk; }

Status WriteAccuracy(AccuracyParts** field, const Accuracy* accuracy) {
    if (IsAccuracyNull(accuracy) != 0) return StatusOk;
    const Asn1Item* item = &itemOf<schema::Optional<AccuracyParts>>;
    if (const Status status = CreateOptionalAsn1Sequence(item, Untyped(field), 0)) return status;
    if (const Status status = SetPart(&(*field)->seconds, accuracy->seconds)) return status;
    if (const Status status = SetPart(&(*field)->millis, accuracy->milliseconds)) return status;
    return SetPart(&(*field)->micros, accuracy->microseconds);
}

}  // namespace

Status EncodeTimeStampReq(uint32_t version, const uint8_t* hashOid, const uint8_t* parameters,
                          uint32_t parametersLength, const uint8_t* hash, uint32_t hashLength, const uint8_t* policyOid,
                          uint32_t /*policyOidLength*/, const uint8_t* nonce, uint32_t nonceLength, uint32_t certReq,
                          X509Extensions extensions, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(hashOid, hash, length)) return Fail(StatusBadArgument);
    Tree<TimeStampReq> request;
    if (const Status status = request.Create()) return status;
    if (const Status status = SetNumber(&request->version, version)) return status;
    MessageImprint* imprint = request->messageImprint;
    const Bytes parametersBytes = {parameters, parametersLength};
    if (const Status status = SetImprint(imprint, hashOid, parametersBytes, {hash, hashLength})) return status;
    // Without memory for the hash nothing is written, with status 0: see docs/oddities.md.
    if (imprint->hashedMessage == nullptr) return StatusOk;
    if (policyOid != nullptr) {
        if (const Status status = ReplaceOidField(&request->reqPolicy, policyOid)) return status;
    }
    if (const Status status = SetOptionalBytes(&request->nonce, Asn1KindInteger, {nonce, nonceLength})) return status;
    if (const Status status = SetAsn1BooleanField(&request->certReq, certReq != 0)) return status;
    if (const Status status = CopyExtensions(extensions, &request->extensions)) return status;
    return request.Encode(buffer, length);
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
    if (const Status status = request.Decode(bytes, length)) return status;
    return ReadOutputs(OutputRule::kPastSmallBuffers, ValueIfAsked(GetAsn1Int32, request->version, version),
                       ImprintInto(request->messageImprint, {hashOid, hashOidLength}, {parameters, parametersLength},
                                   {hash, hashLength}),
                       OidIfAsked(request->reqPolicy, {policyOid, policyOidLength}),
                       BytesIfAsked(request->nonce, {nonce, nonceLength}),
                       ValueIfAsked(GetAsn1Boolean, request->certReq, certReq),
                       [&] { return TakeExtensions(&request->extensions, extensions); });
}

Status EncodeTimeStampResp(uint32_t status, const PKIFreeText* statusString, uint32_t failInfo,
                           const CmsContentInfo* token, uint8_t* buffer, uint32_t* length) {
    if (length == nullptr) return Fail(StatusBadArgument);
    const Tree<schema::Integer> number(AllocAsn1Integer(static_cast<int32_t>(status)));
    const Tree<schema::BitString> flags(failInfo == 0 ? nullptr : AllocAsn1BitStringFromFlags(failInfo));
    if (!number || (failInfo != 0 && !flags)) return Fail(StatusOutOfMemory);
    PKIStatusInfo info = {number.Get(), Unconst(statusString), flags.Get()};
    const TimeStampResp response = {&info, Unconst(token)};
    return EncodeTree(&response, buffer, length);
}

Status DecodeTimeStampResp(const uint8_t* bytes, uint32_t length, int32_t* status, PKIFreeText** statusString,
                           uint32_t* failInfo, CmsContentInfo** token) {
    if (AnyNull(bytes, status, statusString, failInfo, token) || length == 0) return Fail(StatusBadArgument);
    *statusString = nullptr;
    *token = nullptr;
    Tree<TimeStampResp> response;
    if (const Status result = response.Decode(bytes, length)) return result;
    PKIStatusInfo* info = response->status;
    if (const Status result = GetAsn1Int32(info->status, status)) return result;
    *failInfo = info->failInfo == nullptr ? 0 : FlagsOfAsn1BitString(info->failInfo);
    *statusString = TakeField(&info->statusString);
    *token = TakeField(&response->timeStampToken);
    return StatusOk;
}

Status EncodeTSTInfo(uint32_t version, const uint8_t* policyOid, const uint8_t* hashOid, const uint8_t* parameters,
                     uint32_t parametersLength, const uint8_t* hash, uint32_t hashLength, const uint8_t* serial,
                     uint32_t serialLength, const LibraryPreciseTime* genTime, const Accuracy* accuracy,
                     uint32_t ordering, const uint8_t* nonce, uint32_t nonceLength, const X509GeneralName* tsa,
                     X509Extensions extensions, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(hashOid, hash, serial, genTime, length)) return Fail(StatusBadArgument);
    Tree<TSTInfo> info;
    if (const Status status = info.Create()) return status;
    if (const Status status = SetNumber(&info->version, version)) return status;
    // A null OID is reported like a lack of memory, and so is a time without a text: see docs/oddities.md.
    if (const Status status = ReplaceOidField(&info->policy, policyOid)) return status;
    MessageImprint* imprint = info->messageImprint;
    const Bytes parametersBytes = {parameters, parametersLength}, serialBytes = {serial, serialLength};
    if (const Status status = SetImprint(imprint, hashOid, parametersBytes, {hash, hashLength})) return status;
    if (imprint->hashedMessage == nullptr) return StatusOk;  // as in a request
    if (const Status status = SetOptionalBytes(&info->serialNumber, Asn1KindInteger, serialBytes)) return status;
    if (const Status status = ReplaceField(&info->genTime, PreciseTimeToGeneralizedTime(genTime))) return status;
    if (const Status status = WriteAccuracy(&info->accuracy, accuracy)) return status;
    if (const Status status = SetAsn1BooleanField(&info->ordering, ordering != 0)) return status;
    if (const Status status = SetOptionalBytes(&info->nonce, Asn1KindInteger, {nonce, nonceLength})) return status;
    // A name without a value is StatusBadArgument, by the copy.
    if (const Status status = CopyOptional(tsa, &info->tsa)) return status;
    if (const Status status = CopyExtensions(extensions, &info->extensions)) return status;
    return info.Encode(buffer, length);
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
    if (const Status status = info.Decode(bytes, length)) return status;
    return ReadOutputs(
        OutputRule::kPastSmallBuffers, ValueIfAsked(GetAsn1Int32, info->version, version),
        OidIfAsked(info->policy, {policyOid, policyOidLength}),
        ImprintInto(info->messageImprint, {hashOid, hashOidLength}, {parameters, parametersLength}, {hash, hashLength}),
        BytesIfAsked(info->serialNumber, {serial, serialLength}),
        ValueIfAsked(GeneralizedTimeToPreciseTime, info->genTime, genTime),
        [&] { return ReadAccuracy(info->accuracy, accuracy); }, ValueIfAsked(GetAsn1Boolean, info->ordering, ordering),
        BytesIfAsked(info->nonce, {nonce, nonceLength}),
        [&]() -> Status {
            if (tsa != nullptr) *tsa = TakeField(&info->tsa);
            return StatusOk;
        },
        [&] { return TakeExtensions(&info->extensions, extensions); });
}
