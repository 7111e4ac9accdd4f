#include "tlvforge/attribute_values.h"

#include "cades/value_parts.h"
#include "common/times.h"

using namespace tlvforge;

namespace {

// --- Adding: a view of the member is made of the arguments, and its copy appended ---

template <class Record>
Status AddCopy(ListOf<Record>* list, const Record& view) {
    Tree<Record> member;
    const Status status = member.CopyOf(&view);
    return status == StatusOk ? member.MoveTo(list) : status;
}

Asn1Value ViewOfHash(const uint8_t* hash, uint32_t length) { return ViewOf(Asn1KindOctetString, hash, length); }

// Issuer and serial number of a certificate, which come together or not at all.
class IssuerSerialView {
public:
    IssuerSerialView(const X509GeneralNames* issuer, const uint8_t* serial, uint32_t length)
        : serial_(ViewOf(Asn1KindInteger, serial, length)), record_{Borrow(issuer), &serial_} {}
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
    OtherHashView(const uint8_t* hash, uint32_t hashLength, const uint8_t* oid, const uint8_t* parameters,
                  uint32_t parametersLength)
        : hash_(ViewOfHash(hash, hashLength)), algorithm_(oid, parameters, parametersLength) {
        withAlgorithm_ = {algorithm_.Get(), &hash_};
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

// The member at an index, part by part.
template <class Record, class... Reads>
Status ReadMember(const ListOf<Record>* list, uint32_t index, Reads... reads) {
    Record* member = nullptr;
    const Status status = GetListMember(list, index, &member);
    return status == StatusOk ? ReadEach([&] { return reads(*member); }...) : status;
}

struct HashOutputs {
    Output oid;
    Output parameters;
    Output hash;

    bool LackLength() const { return AnyNull(oid.length, parameters.length, hash.length); }
};

Status ReadHash(const Asn1Value* value, Output hash) {
    return value != nullptr ? GetAsn1Value(value, hash.buffer, hash.length) : Fail(StatusAbsent);
}

Status ReadHashWithAlgorithm(const AlgorithmIdentifier* algorithm, const Asn1Value* hash, const HashOutputs& out) {
    if (AnyNull(algorithm, hash)) return Fail(StatusAbsent);  // before an output is stored
    return ReadEach(
        [&] { return GetAlgorithmIdentifierOid(algorithm, out.oid.buffer, out.oid.length); },
        [&] { return GetAlgorithmIdentifierParameters(algorithm, out.parameters.buffer, out.parameters.length); },
        [&] { return GetAsn1Value(hash, out.hash.buffer, out.hash.length); });
}

Status ReadOtherHash(const Asn1Choice* choice, const HashOutputs& out) {
    if (choice == nullptr || choice->value == nullptr) return Fail(StatusAbsent);
    if (choice->selected == kHashWithAlgorithm) {
        const auto* both = static_cast<const OtherHashAlgAndValue*>(choice->value);
        return ReadHashWithAlgorithm(both->hashAlgorithm, both->hashValue, out);
    }
    if (choice->selected != kSha1Hash) return Fail(StatusBadEncoding);
    (void)GiveNothing(out.oid, out.parameters);
    return ReadHash(static_cast<const Asn1Value*>(choice->value), out.hash);
}

// Lends a node, or null, through a pointer that may be missing.
template <class Node>
void Lend(Node* node, Node** out) {
    if (out != nullptr) *out = node;
}

Status ReadIssuerSerial(const IssuerSerial* record, X509GeneralNames** issuer, Output serial) {
    Lend(record != nullptr ? record->issuer : nullptr, issuer);
    return ReadOptional(record != nullptr ? record->serialNumber : nullptr, serial);
}

Status ReadHashOf(const ESSCertIDv2& id, const HashOutputs& out) {
    return ReadHashWithAlgorithm(id.hashAlgorithm, id.certHash, out);
}

Status ReadHashOf(const OtherCertID& id, const HashOutputs& out) { return ReadOtherHash(id.otherCertHash, out); }

template <class Record>
Status ReadCertID(const ListOf<Record>* list, uint32_t index, const HashOutputs& out, X509GeneralNames** issuer,
                  Output serial) {
    if (out.LackLength() || serial.length == nullptr) return Fail(StatusBadArgument);
    return ReadMember(
        list, index, [&](auto& id) { return ReadHashOf(id, out); },
        [&](auto& id) { return ReadIssuerSerial(id.issuerSerial, issuer, serial); });
}

Status ReadCrlIdentifier(const CrlIdentifier* record, X509Name** issuer, LibraryTime* issued, Output number) {
    Lend(record != nullptr ? record->crlissuer : nullptr, issuer);
    if (record == nullptr) {
        if (issued != nullptr) *issued = {};
        return GiveNothing(number);
    }
    const Status status = UtcTimeToLibraryTime(record->crlIssuedTime, issued);
    return status == StatusOk ? ReadOptional(record->crlNumber, number) : status;
}

// What stands for a name, a bare key hash too, is lent as the node that holds it.
Status ReadResponder(const Asn1Choice* choice, void** responder, Output keyHash) {
    if (choice == nullptr || choice->value == nullptr) return Fail(StatusAbsent);
    if (choice->selected > kResponderNameTree) return Fail(StatusBadEncoding);
    const bool byKey = choice->selected == kResponderByKey;
    Lend(byKey ? nullptr : choice->value, responder);
    return ReadOptional(byKey ? choice->value : nullptr, keyHash);
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
    IssuerSerialView issuerSerial(issuer, serial, serialLength);
    if (AnyNull(list, hash) || issuerSerial.IsHalf()) return Fail(StatusBadArgument);
    Asn1Value hashView = ViewOfHash(hash, hashLength);
    return AddCopy(list, ESSCertID{&hashView, issuerSerial.Get()});
}

Status GetESSCertIDInformation(const ESSCertIDs* list, uint32_t index, uint8_t* hash, uint32_t* hashLength,
                               X509GeneralNames** issuer, uint8_t* serial, uint32_t* serialLength) {
    if (AnyNull(hashLength, serialLength)) return Fail(StatusBadArgument);
    return ReadMember(
        list, index,
        [&](auto& id) {
            return ReadHash(id.certHash, {hash, hashLength});
        },
        [&](auto& id) {
            return ReadIssuerSerial(id.issuerSerial, issuer, {serial, serialLength});
        });
}

Status AddESSCertIDv2ToList(ESSCertIDsV2* list, const uint8_t* oid, const uint8_t* parameters,
                            uint32_t parametersLength, const uint8_t* hash, uint32_t hashLength,
                            const X509GeneralNames* issuer, const uint8_t* serial, uint32_t serialLength) {
    IssuerSerialView issuerSerial(issuer, serial, serialLength);
    if (AnyNull(list, oid, hash) || issuerSerial.IsHalf()) return Fail(StatusBadArgument);
    AlgorithmView algorithm(oid, parameters, parametersLength);
    Asn1Value hashView = ViewOfHash(hash, hashLength);
    return AddCopy(list, ESSCertIDv2{algorithm.Get(), &hashView, issuerSerial.Get()});
}

Status GetESSCertIDV2Information(const ESSCertIDsV2* list, uint32_t index, uint8_t* oid, uint32_t* oidLength,
                                 uint8_t* parameters, uint32_t* parametersLength, uint8_t* hash, uint32_t* hashLength,
                                 X509GeneralNames** issuer, uint8_t* serial, uint32_t* serialLength) {
    return ReadCertID(list, index, {{oid, oidLength}, {parameters, parametersLength}, {hash, hashLength}}, issuer,
                      {serial, serialLength});
}

Status AddOtherCertIDToList(OtherCertIDs* list, const uint8_t* oid, const uint8_t* parameters,
                            uint32_t parametersLength, const uint8_t* hash, uint32_t hashLength,
                            const X509GeneralNames* issuer, const uint8_t* serial, uint32_t serialLength) {
    IssuerSerialView issuerSerial(issuer, serial, serialLength);
    if (AnyNull(list, hash) || issuerSerial.IsHalf()) return Fail(StatusBadArgument);
    OtherHashView otherHash(hash, hashLength, oid, parameters, parametersLength);
    return AddCopy(list, OtherCertID{otherHash.Get(), issuerSerial.Get()});
}

Status GetOtherCertIDInformation(const OtherCertIDs* list, uint32_t index, uint8_t* oid, uint32_t* oidLength,
                                 uint8_t* parameters, uint32_t* parametersLength, uint8_t* hash, uint32_t* hashLength,
                                 X509GeneralNames** issuer, uint8_t* serial, uint32_t* serialLength) {
    return ReadCertID(list, index, {{oid, oidLength}, {parameters, parametersLength}, {hash, hashLength}}, issuer,
                      {serial, serialLength});
}

// --- CRLs and OCSP responses. A time that can't be written adds nothing and is no failure: intended, callers look at
//     the count ---

Status AddCrlValidatedIdToList(CrlListIDs* list, const uint8_t* hash, uint32_t hashLength, const uint8_t* oid,
                               const uint8_t* parameters, uint32_t parametersLength, const X509Name* issuer,
                               const LibraryTime* issued, const uint8_t* number, uint32_t numberLength) {
    if (AnyNull(list, hash)) return Fail(StatusBadArgument);
    OtherHashView crlHash(hash, hashLength, oid, parameters, parametersLength);
    if (issuer == nullptr) return AddCopy(list, CrlValidatedID{crlHash.Get(), nullptr});
    const Tree<schema::UTCTime> time(LibraryTimeToUtcTime(issued));
    if (!time) return StatusOk;
    Asn1Value numberView = ViewOf(Asn1KindInteger, number, numberLength);
    const bool hasNumber = number != nullptr && numberLength != 0;
    CrlIdentifier identifier = {Borrow(issuer), time.Get(), hasNumber ? &numberView : nullptr};
    return AddCopy(list, CrlValidatedID{crlHash.Get(), &identifier});
}

Status GetCrlValidatedIdInformation(const CrlListIDs* list, uint32_t index, uint8_t* hash, uint32_t* hashLength,
                                    uint8_t* oid, uint32_t* oidLength, uint8_t* parameters, uint32_t* parametersLength,
                                    X509Name** issuer, LibraryTime* issued, uint8_t* number, uint32_t* numberLength) {
    const HashOutputs out = {{oid, oidLength}, {parameters, parametersLength}, {hash, hashLength}};
    if (out.LackLength() || numberLength == nullptr) return Fail(StatusBadArgument);
    return ReadMember(
        list, index, [&](auto& id) { return ReadOtherHash(id.crlHash, out); },
        [&](auto& id) {
            return ReadCrlIdentifier(id.crlIdentifier, issuer, issued, {number, numberLength});
        });
}

Status AddOcspResponseIdToList(OcspListIDs* list, const X509Name* responder, const uint8_t* keyHash,
                               uint32_t keyHashLength, const LibraryTime* producedAt, const uint8_t* hash,
                               uint32_t hashLength, const uint8_t* oid, const uint8_t* parameters,
                               uint32_t parametersLength) {
    if (AnyNull(list, producedAt) || (responder == nullptr && keyHash == nullptr)) return Fail(StatusBadArgument);
    const Tree<schema::GeneralizedTime> time(LibraryTimeToGeneralizedTime(producedAt));
    if (!time) return StatusOk;
    // A key hash takes the place of an encoded name, without a header of its own: intended, the bytes depend on it.
    Asn1Any bareKeyHash = {Asn1KindOctetString, keyHashLength, Borrow(keyHash)};
    OcspResponder choice = {{kResponderByName, &bareKeyHash}};
    if (responder != nullptr) choice = {{kResponderNameTree, Borrow(responder)}};
    OtherHashView response(hash, hashLength, oid, parameters, parametersLength);
    OcspIdentifier identifier = {&choice, time.Get()};
    return AddCopy(list, OcspResponseId{&identifier, response.Get()});
}

Status GetOcspResponseIdInformation(const OcspListIDs* list, uint32_t index, void** responder, uint8_t* keyHash,
                                    uint32_t* keyHashLength, LibraryTime* producedAt, uint8_t* hash,
                                    uint32_t* hashLength, uint8_t* oid, uint32_t* oidLength, uint8_t* parameters,
                                    uint32_t* parametersLength) {
    const HashOutputs out = {{oid, oidLength}, {parameters, parametersLength}, {hash, hashLength}};
    if (out.LackLength() || keyHashLength == nullptr) return Fail(StatusBadArgument);
    return ReadMember(
        list, index,
        [&](auto& id) {
            return ReadResponder(id.ocspIdentifier->ocspResponderID, responder, {keyHash, keyHashLength});
        },
        [&](auto& id) { return GeneralizedTimeToLibraryTime(id.ocspIdentifier->producedAt, producedAt); },
        [&](auto& id) {
            const bool given = id.ocspRepHash != nullptr;
            return given ? ReadOtherHash(id.ocspRepHash, out) : GiveNothing(out.oid, out.parameters, out.hash);
        });
}

// --- References ---

Status AddCrlOcspRefToList(CrlOcspRefs* list, CrlListIDs* crls, OcspListIDs* ocsps, const uint8_t* otherOid,
                           const uint8_t* otherValue, uint32_t otherLength) {
    const bool hasOther = otherOid != nullptr && otherValue != nullptr && otherLength != 0;
    if (list == nullptr || (crls == nullptr && ocsps == nullptr && !hasOther)) return Fail(StatusBadArgument);
    TypedValueView other(otherOid, otherValue, otherLength);
    Wrapped<CrlListIDs> noCrls = {};
    Wrapped<OcspListIDs> noOcsps = {};
    const CrlOcspRef view = {crls != nullptr ? &noCrls : nullptr, ocsps != nullptr ? &noOcsps : nullptr,
                             hasOther ? other.Get() : nullptr};
    const Status status = AddCopy(list, view);
    if (status != StatusOk) return status;
    // The lists come last, so that they are still the caller's after every failure.
    const CrlOcspRef* ref = list->At(list->count - 1);
    if (crls != nullptr) ref->crlids->list = crls;
    if (ocsps != nullptr) ref->ocspids->list = ocsps;
    return StatusOk;
}

Status GetCrlOcspRefInformation(const CrlOcspRefs* list, uint32_t index, CrlListIDs** crls, OcspListIDs** ocsps,
                                uint8_t* otherOid, uint32_t* otherOidLength, uint8_t* otherValue,
                                uint32_t* otherValueLength) {
    if (AnyNull(otherOidLength, otherValueLength)) return Fail(StatusBadArgument);
    return ReadMember(list, index, [&](auto& ref) {
        if (ref.crlids == nullptr && ref.ocspids == nullptr && ref.otherRev == nullptr) return Fail(StatusAbsent);
        Lend(Unwrapped(ref.crlids), crls);
        Lend(Unwrapped(ref.ocspids), ocsps);
        return ReadTypedValue(ref.otherRev, {otherOid, otherOidLength}, {otherValue, otherValueLength});
    });
}
