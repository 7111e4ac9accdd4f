#include "x509/extension_codecs.h"

#include "common/times.h"

namespace tlvforge {

namespace {

// One policy of a filtered view, with the list of the qualifiers that are left.
struct FilteredPolicy {
    PolicyInformation policy;
    ListOf<PolicyQualifierInfo> qualifiers;
};

// Fills a view's policy, and returns the first cell that it did not use.
void** Filter(const PolicyInformation* policy, FilteredPolicy* filtered, void** cells) {
    filtered->policy = *policy;
    if (policy->policyQualifiers == nullptr) return cells;
    filtered->qualifiers = *policy->policyQualifiers;
    filtered->qualifiers.items = cells;
    filtered->qualifiers.count = 0;
    for (uint32_t i = 0; i < QualifierCount(policy); ++i) {
        if (!IsSelf(policy, i)) cells[filtered->qualifiers.count++] = policy->policyQualifiers->items[i];
    }
    const uint32_t kept = filtered->qualifiers.count;
    const bool emptied = kept == 0 && QualifierCount(policy) != 0;
    filtered->policy.policyQualifiers = emptied ? nullptr : &filtered->qualifiers;
    return cells + kept;
}

}  // namespace

Status DecodeEnumerated(Bytes bytes, int32_t* number) {
    Tree<schema::Enumerated> value;
    if (const Status status = value.Decode(bytes.data, bytes.length)) return status;
    return GetAsn1Int32(value.Get(), number);
}

Status EncodeEnumerated(uint32_t number, Output out, Place place) {
    const Tree<schema::Enumerated> value(AllocAsn1Integer(static_cast<int32_t>(number)));
    return value ? value.Encode(out.buffer, out.length) : Fail(StatusOutOfMemory, place);
}

Status GetOptionalTime(const Asn1Value* field, LibraryTime* time) {
    return field != nullptr ? GeneralizedTimeToLibraryTime(field, time) : StatusOk;
}

Status SetOptionalTime(Asn1Value** field, const LibraryTime* time, Place place) {
    return time != nullptr ? ReplaceField(field, LibraryTimeToGeneralizedTime(time), place) : StatusOk;
}

Status DecodeTimePair(Bytes bytes, LibraryTime* first, LibraryTime* second) {
    Tree<TimePair> pair;
    if (const Status status = pair.Decode(bytes.data, bytes.length)) return status;
    if (const Status status = GetOptionalTime(pair->first, first)) return status;
    return GetOptionalTime(pair->second, second);
}

Status EncodeTimePair(const LibraryTime* first, const LibraryTime* second, Output out, Place place) {
    Tree<TimePair> pair;
    if (const Status status = pair.Create()) return status;
    if (const Status status = SetOptionalTime(&pair->first, first, place)) return status;
    if (const Status status = SetOptionalTime(&pair->second, second, place)) return status;
    return pair.Encode(out.buffer, out.length);
}

Status PoliciesView::Of(const ExtensionCertificatePolicies* policies, Place place) {
    list_ = policies;
    uint64_t cells = policies->count;
    bool hasSelf = false;
    for (uint32_t i = 0; i < policies->count; ++i) {
        const PolicyInformation* policy = policies->At(i);
        cells += QualifierCount(policy);
        for (uint32_t at = 0; at < QualifierCount(policy) && !hasSelf; ++at) hasSelf = IsSelf(policy, at);
    }
    if (!hasSelf) return StatusOk;

    const size_t recordsSize = policies->count * sizeof(FilteredPolicy);
    *block_.Slot() = static_cast<uint8_t*>(Allocate(recordsSize + cells * sizeof(void*)));
    if (!block_) return Fail(StatusOutOfMemory, place);
    auto* records = reinterpret_cast<FilteredPolicy*>(block_.Bytes());
    auto** items = reinterpret_cast<void**>(block_.Bytes() + recordsSize);
    void** next = items + policies->count;
    for (uint32_t i = 0; i < policies->count; ++i) {
        const PolicyInformation* policy = policies->At(i);
        FilteredPolicy* filtered = new (&records[i]) FilteredPolicy{};
        if (policy != nullptr) next = Filter(policy, filtered, next);
        items[i] = policy != nullptr ? &filtered->policy : nullptr;
    }
    filtered_ = *policies;
    filtered_.items = items;
    list_ = &filtered_;
    return StatusOk;
}

}  // namespace tlvforge
