#include "tlvforge/attribute_values.h"

#include "cades/value_parts.h"
#include "common/times.h"

using namespace tlvforge;

namespace {

// --- Adding: a view of the member is made of the arguments, and its copy appended ---

template <class Record>
Status AddCopy(ListOf<Record>* list, const Record& view) {
    Tree<Record> member;
    if (const Status status = member.CopyOf(&view)) return status;
    return member.MoveTo(list);
}

Asn1Value ViewOfHash(Bytes hash) { return ViewOf(Asn1KindOctetString, hash); }

// Issuer and serial number of a certificate, which come together or not at all.
class IssuerSerialView {
public:
    IssuerSerialView(const X509GeneralNames* issuer, Bytes serial)
        : serial_(ViewOf(Asn1KindInteger, serial)), record_{Unconst(issuer), &serial_} {}
    IssuerSerialView(const IssuerSerialView&) = delete;
    IssuerSerialView& operator=(const IssuerSerialView&) = delete;

    bool IsHalf() const { return (record_.issuer == nullptr) != (serial_.data == nullptr); }
    IssuerSerial* Get() { return record_.issuer != nullptr ? &record_ : nullptr; }

private:
    Asn1Value serial_;
    IssuerSerial record_;
};

// The bare form for a hash without an algorithm.
class OtherHashView {
public:
    OtherHashView(Bytes hash, const uint8_t* oid, Bytes parameters)
        : hash_(ViewOfHash(hash)), algorithm_(oid, parameters), withAlgorithm_{algorithm_.Get(), &hash_} {
        choice_ = oid == nullptr ? OtherHash{{kSha1Hash, &hash_}} : OtherHash{{kHashWithAlgorithm, &withAlgorithm_}};
    }
    OtherHashView(const OtherHashView&) = delete;
    OtherHashView& operator=(const OtherHashView&) = delete;

    OtherHash* Get() { return hash_.data != nullptr ? &choice_ : nullptr; }

private:
    Asn1Value hash_;
    AlgorithmView algorithm_;
    OtherHashAlgAndValue withAlgorithm_;
    OtherHash choice_;
};

// --- Reading ---

template <class... Reads>
Status ReadParts(const Reads&... reads) {
    return ReadOutputs(OutputRule::kPastSmallBuffers, reads...);
}

struct HashOutputs {
    Output oid;
    Output parameters;
    Output hash;

    bool LackLength() const { return AnyNull(oid.length, parameters.length, hash.length); }
};

Status GetHash(const AlgorithmIdentifier* algorithm, const Asn1Value* hash, const HashOutputs& out) {
    if (AnyNull(algorithm, hash)) return Fail(StatusAbsent);  // before an output is stored
    return ReadParts([&] { return GetAlgorithmIdentifierOid(algorithm, out.oid); },
                     [&] { return GetAlgorithmIdentifierParameters(algorithm, out.parameters); },
                     BytesInto(hash, out.hash.buffer, out.hash.length));
}

Status GetHash(const OtherHash* choice, const HashOutputs& out) {
    if (choice == nullptr || choice->value == nullptr) return Fail(StatusAbsent);
    if (choice->selected == kHashWithAlgorithm) {
        const auto* both = static_cast<const OtherHashAlgAndValue*>(choice->value);
        return GetHash(both->hashAlgorithm, both->hashValue, out);
    }
    if (choice->selected != kSha1Hash) return Fail(StatusBadEncoding);
    (void)StoreNothing(out.oid, out.parameters);
    return GetAsn1Value(choice->value, out.hash.buffer, out.hash.length);
}

Status GetHash(const ESSCertIDv2* id, const HashOutputs& out) { return GetHash(id->hashAlgorithm, id->certHash, out); }

Status GetHash(const OtherCertID* id, const HashOutputs& out) { return GetHash(id->otherCertHash, out); }

// Lends a node, or null, through a pointer that may be missing.
template <class Node>
void BorrowOptional(Node* node, Node** out) {
    if (out != nullptr) *out = node;
}

Status GetIssuerSerial(const IssuerSerial* record, X509GeneralNames** issuer, Output serial) {
    BorrowOptional(record != nullptr ? record->issuer : nullptr, issuer);
    return GetOptionalBytes(record != nullptr ? record->serialNumber : nullptr, serial);
}

template <class Record>
Status GetCertID(const ListOf<Record>* list, uint32_t index, const HashOutputs& out, X509GeneralNames** issuer,
                 Output serial) {
    if (out.LackLength() || serial.length == nullptr || !HasIndex(list, index)) return Fail(StatusBadArgument);
    const Part<Record> id = MemberAt(list, index);
    if (!id) return id.Absent();
    return ReadParts([&] { return GetHash(id.node, out); },
                     [&] { return GetIssuerSerial(id->issuerSerial, issuer, serial); });
}

Status GetCrlIdentifier(const CrlIdentifier* record, X509Name** issuer, LibraryTime* issued, Output number) {
    BorrowOptional(record != nullptr ? record->crlissuer : nullptr, issuer);
    if (record == nullptr) {
        if (issued != nullptr) *issued = {};
        return StoreNothing(number);
    }
    if (const Status status = UtcTimeToLibraryTime(record->crlIssuedTime, issued)) return status;
    return GetOptionalBytes(record->crlNumber, number);
}

// What stands for a name, a bare key hash too, is lent as the node that holds it.
Status GetResponder(const Part<OcspResponder>& choice, void** responder, Output keyHash) {
    if (!choice || choice->value == nullptr) return choice.Absent();
    if (choice->selected > kResponderNameTree) return Fail(StatusBadEncoding);
    const bool byKey = choice->selected == kResponderByKey;
    BorrowOptional(byKey ? nullptr : choice->value, responder);
    return GetOptionalBytes(byKey ? choice->value : nullptr, keyHash);
}

template <class List>
List* Unwrapped(const Wrapped<List>* wrapper) {
    return wrapper != nullptr ? wrapper->list : nullptr;
}

}  // namespace

// --- Create, free, count ---

Status CreateESSCertIDs(ESSCertIDs** list) { return CreateTree(list); }
Status CreateESSCertIDsV2(ESSCertIDsV2** list) { return CreateTree(list); }
Status CreateOtherCertIDs(OtherCertIDs** list) { return CreateTree(list); }
Status CreateCrlListIDs(CrlListIDs** list) { return CreateTree(list); }
Status CreateOcspListIDs(OcspListIDs** list) { return CreateTree(list); }
Status CreateCrlOcspRefs(CrlOcspRefs** list) { return CreateTree(list); }

Status FreeESSCertIDs(ESSCertIDs* list) { return FreeTree(list); }
Status FreeESSCertIDsV2(ESSCertIDsV2* list) { return FreeTree(list); }
Status FreeOtherCertIDs(OtherCertIDs* list) { return FreeTree(list); }
Status FreeCrlListIDs(CrlListIDs* list) { return FreeTree(list); }
Status FreeOcspListIDs(OcspListIDs* list) { return FreeTree(list); }
Status FreeCrlOcspRefs(CrlOcspRefs* list) { return FreeTree(list); }

Status GetESSCertIDCount(const ESSCertIDs* list, uint32_t* count) { return GetListCount(list, count); }
Status GetESSCertIDV2Count(const ESSCertIDsV2* list, uint32_t* count) { return GetListCount(list, count); }
Status GetOtherCertIDCount(const OtherCertIDs* list, uint32_t* count) { return GetListCount(list, count); }
Status GetCrlListIDsCount(const CrlListIDs* list, uint32_t* count) { return GetListCount(list, count); }
Status GetOcspListIDsCount(const OcspListIDs* list, uint32_t* count) { return GetListCount(list, count); }
Status GetCrlOcspRefCount(const CrlOcspRefs* list, uint32_t* count) { return GetListCount(list, count); }

// --- Certificates ---

Status AddESSCertIDToList(ESSCertIDs* list, const uint8_t* hash, uint32_t hashLength, const X509GeneralNames* issuer,
                          const uint8_t* serial, uint32_t serialLength) {
    IssuerSerialView issuerSerial(issuer, {serial, serialLength});
    if (AnyNull(list, hash) || issuerSerial.IsHalf()) return Fail(StatusBadArgument);
    Asn1Value hashView = ViewOfHash({hash, hashLength});
    return AddCopy(list, ESSCertID{&hashView, issuerSerial.Get()});
}

Status GetESSCertIDInformation(const ESSCertIDs* list, uint32_t index, uint8_t* hash, uint32_t* hashLength,
                               X509GeneralNames** issuer, uint8_t* serial, uint32_t* serialLength) {
    if (AnyNull(hashLength, serialLength) || !HasIndex(list, index)) return Fail(StatusBadArgument);
    const Part<ESSCertID> id = MemberAt(list, index);
    if (!id) return id.Absent();
    return ReadParts([&] { return GetBytes(At<&ESSCertID::certHash>(id.node), hash, hashLength); },
                     [&] {
                         return GetIssuerSerial(id->issuerSerial, issuer, {serial, serialLength});
                     });
}

Status AddESSCertIDv2ToList(ESSCertIDsV2* list, const uint8_t* oid, const uint8_t* parameters,
                            uint32_t parametersLength, const uint8_t* hash, uint32_t hashLength,
                            const X509GeneralNames* issuer, const uint8_t* serial, uint32_t serialLength) {
    IssuerSerialView issuerSerial(issuer, {serial, serialLength});
    if (AnyNull(list, oid, hash) || issuerSerial.IsHalf()) return Fail(StatusBadArgument);
    AlgorithmView algorithm(oid, {parameters, parametersLength});
    Asn1Value hashView = ViewOfHash({hash, hashLength});
    return AddCopy(list, ESSCertIDv2{algorithm.Get(), &hashView, issuerSerial.Get()});
}

Status GetESSCertIDV2Information(const ESSCertIDsV2* list, uint32_t index, uint8_t* oid, uint32_t* oidLength,
                                 uint8_t* parameters, uint32_t* parametersLength, uint8_t* hash, uint32_t* hashLength,
                                 X509GeneralNames** issuer, uint8_t* serial, uint32_t* serialLength) {
    return GetCertID(list, index, {{oid, oidLength}, {parameters, parametersLength}, {hash, hashLength}}, issuer,
                     {serial, serialLength});
}

Status AddOtherCertIDToList(OtherCertIDs* list, const uint8_t* oid, const uint8_t* parameters,
                            uint32_t parametersLength, const uint8_t* hash, uint32_t hashLength,
                            const X509GeneralNames* issuer, const uint8_t* serial, uint32_t serialLength) {
    IssuerSerialView issuerSerial(issuer, {serial, serialLength});
    if (AnyNull(list, hash) || issuerSerial.IsHalf()) return Fail(StatusBadArgument);
    OtherHashView otherHash({hash, hashLength}, oid, {parameters, parametersLength});
    return AddCopy(list, OtherCertID{otherHash.Get(), issuerSerial.Get()});
}

Status GetOtherCertIDInformation(const OtherCertIDs* list, uint32_t index, uint8_t* oid, uint32_t* oidLength,
                                 uint8_t* parameters, uint32_t* parametersLength, uint8_t* hash, uint32_t* hashLength,
                                 X509GeneralNames** issuer, uint8_t* serial, uint32_t* serialLength) {
    return GetCertID(list, index, {{oid, oidLength}, {parameters, parametersLength}, {hash, hashLength}}, issuer,
                     {serial, serialLength});
}

// --- CRLs and OCSP responses. A time that can't be written adds nothing and is no failure: see docs/oddities.md ---

Status AddCrlValidatedIdToList(CrlListIDs* list, const uint8_t* hash, uint32_t hashLength, const uint8_t* oid,
                               const uint8_t* parameters, uint32_t parametersLength, const X509Name* issuer,
                               const LibraryTime* issued, const uint8_t* number, uint32_t numberLength) {
    if (AnyNull(list, hash)) return Fail(StatusBadArgument);
    OtherHashView crlHash({hash, hashLength}, oid, {parameters, parametersLength});
    if (issuer == nullptr) return AddCopy(list, CrlValidatedID{crlHash.Get(), nullptr});
    const Tree<schema::UTCTime> time(LibraryTimeToUtcTime(issued));
    if (!time) return StatusOk;
    Asn1Value numberView = ViewOf(Asn1KindInteger, {number, numberLength});
    const bool hasNumber = number != nullptr && numberLength != 0;
    CrlIdentifier identifier = {Unconst(issuer), time.Get(), hasNumber ? &numberView : nullptr};
    return AddCopy(list, CrlValidatedID{crlHash.Get(), &identifier});
}

Status GetCrlValidatedIdInformation(const CrlListIDs* list, uint32_t index, uint8_t* hash, uint32_t* hashLength,
                                    uint8_t* oid, uint32_t* oidLength, uint8_t* parameters, uint32_t* parametersLength,
                                    X509Name** issuer, LibraryTime* issued, uint8_t* number, uint32_t* numberLength) {
    const HashOutputs out = {{oid, oidLength}, {parameters, parametersLength}, {hash, hashLength}};
    if (out.LackLength() || numberLength == nullptr || !HasIndex(list, index)) return Fail(StatusBadArgument);
    const Part<CrlValidatedID> id = MemberAt(list, index);
    if (!id) return id.Absent();
    return ReadParts([&] { return GetHash(id->crlHash, out); },
                     [&] {
                         return GetCrlIdentifier(id->crlIdentifier, issuer, issued, {number, numberLength});
                     });
}

Status AddOcspResponseIdToList(OcspListIDs* list, const X509Name* responder, const uint8_t* keyHash,
                               uint32_t keyHashLength, const LibraryTime* producedAt, const uint8_t* hash,
                               uint32_t hashLength, const uint8_t* oid, const uint8_t* parameters,
                               uint32_t parametersLength) {
    if (AnyNull(list, producedAt) || (responder == nullptr && keyHash == nullptr)) return Fail(StatusBadArgument);
    const Tree<schema::GeneralizedTime> time(LibraryTimeToGeneralizedTime(producedAt));
    if (!time) return StatusOk;
    // A key hash takes the place of an encoded name, without a header of its own: see docs/oddities.md.
    Asn1Any bareKeyHash = {Asn1KindOctetString, keyHashLength, Unconst(keyHash)};
    OcspResponder choice = {{kResponderByName, &bareKeyHash}};
    if (responder != nullptr) choice = {{kResponderNameTree, Unconst(responder)}};
    OtherHashView response({hash, hashLength}, oid, {parameters, parametersLength});
    OcspIdentifier identifier = {&choice, time.Get()};
    return AddCopy(list, OcspResponseId{&identifier, response.Get()});
}

Status GetOcspResponseIdInformation(const OcspListIDs* list, uint32_t index, void** responder, uint8_t* keyHash,
                                    uint32_t* keyHashLength, LibraryTime* producedAt, uint8_t* hash,
                                    uint32_t* hashLength, uint8_t* oid, uint32_t* oidLength, uint8_t* parameters,
                                    uint32_t* parametersLength) {
    const HashOutputs out = {{oid, oidLength}, {parameters, parametersLength}, {hash, hashLength}};
    if (out.LackLength() || keyHashLength == nullptr || !HasIndex(list, index)) return Fail(StatusBadArgument);
    const Part<OcspResponseId> id = MemberAt(list, index);
    if (!id) return id.Absent();
    const auto choice = At<&OcspResponseId::ocspIdentifier, &OcspIdentifier::ocspResponderID>(id.node);
    return ReadParts(
        [&] {
            return GetResponder(choice, responder, {keyHash, keyHashLength});
        },
        [&] { return GeneralizedTimeToLibraryTime(id->ocspIdentifier->producedAt, producedAt); },
        [&] {
            return id->ocspRepHash != nullptr ? GetHash(id->ocspRepHash, out)
                                              : StoreNothing(out.oid, out.parameters, out.hash);
        });
}

// --- References ---

Status AddCrlOcspRefToList(CrlOcspRefs* list, CrlListIDs* crls, OcspListIDs* ocsps, const uint8_t* otherOid,
                           const uint8_t* otherValue, uint32_t otherLength) {
    const bool hasOther = otherOid != nullptr && otherValue != nullptr && otherLength != 0;
    if (list == nullptr || (crls == nullptr && ocsps == nullptr && !hasOther)) return Fail(StatusBadArgument);
    TypedValueView other(otherOid, {otherValue, otherLength});
    Wrapped<CrlListIDs> noCrls = {};
    Wrapped<OcspListIDs> noOcsps = {};
    const CrlOcspRef view = {crls != nullptr ? &noCrls : nullptr, ocsps != nullptr ? &noOcsps : nullptr,
                             hasOther ? other.Get() : nullptr};
    if (const Status status = AddCopy(list, view)) return status;
    // The lists come last, so that they are still the caller's after every failure.
    const CrlOcspRef* ref = list->At(list->count - 1);
    if (crls != nullptr) ref->crlids->list = crls;
    if (ocsps != nullptr) ref->ocspids->list = ocsps;
    return StatusOk;
}

Status GetCrlOcspRefInformation(const CrlOcspRefs* list, uint32_t index, CrlListIDs** crls, OcspListIDs** ocsps,
                                uint8_t* otherOid, uint32_t* otherOidLength, uint8_t* otherValue,
                                uint32_t* otherValueLength) {
    if (AnyNull(otherOidLength, otherValueLength) || !HasIndex(list, index)) return Fail(StatusBadArgument);
    const Part<CrlOcspRef> ref = MemberAt(list, index);
    if (!ref || (ref->crlids == nullptr && ref->ocspids == nullptr && ref->otherRev == nullptr)) return ref.Absent();
    BorrowOptional(Unwrapped(ref->crlids), crls);
    BorrowOptional(Unwrapped(ref->ocspids), ocsps);
    return GetTypedValue(ref->otherRev, {otherOid, otherOidLength}, {otherValue, otherValueLength});
}
