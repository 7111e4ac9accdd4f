// What the codecs of extension values have in common.
#pragma once

#include "engine/access.h"
#include "tlvforge/time.h"
#include "x509/standard_extensions.schema.h"

namespace tlvforge {

// An ENUMERATED as a 32-bit number.
Status DecodeEnumerated(Bytes bytes, int32_t* number);
Status EncodeEnumerated(uint32_t number, Output out, Place place = Place::Here());

// An optional GeneralizedTime of a record. Reading leaves the time as it was when the field is absent: a record fresh
// from its Create function then stays the null time. Writing leaves the field as it was for a null pointer, and returns
// StatusOutOfMemory, not StatusBadTime, for a time that can't be written: see docs/oddities.md.
Status GetOptionalTime(const Asn1Value* field, LibraryTime* time);
Status SetOptionalTime(Asn1Value** field, const LibraryTime* time, Place place = Place::Here());

Status DecodeTimePair(Bytes bytes, LibraryTime* first, LibraryTime* second);
Status EncodeTimePair(const LibraryTime* first, const LibraryTime* second, Output out, Place place = Place::Here());

inline uint32_t QualifierCount(const PolicyInformation* policy) {
    return policy != nullptr ? GetAsn1ListLength(policy->policyQualifiers) : 0;
}

// True for the slots in which a policy stands in its own qualifier list: see AddExtensionPolicyQualifier.
inline bool IsSelf(const PolicyInformation* policy, uint32_t qualifierIndex) {
    return policy->policyQualifiers->items[qualifierIndex] == policy;
}

// A list of certificate policies as the encoder may walk it: without the policies in their own qualifier lists, and
// without a qualifier list that had no others. It borrows from the list, which has to outlive it unchanged.
class PoliciesView {
public:
    // Status 1. A list without self references is not copied.
    Status Of(const ExtensionCertificatePolicies* policies, Place place = Place::Here());
    const ExtensionCertificatePolicies* List() const { return list_; }

private:
    const ExtensionCertificatePolicies* list_ = nullptr;
    ExtensionCertificatePolicies filtered_{};
    Block block_;
};

}  // namespace tlvforge
