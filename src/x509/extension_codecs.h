// What the codecs of extension values have in common.
#pragma once

#include "engine/nodes.h"
#include "tlvforge/time.h"
#include "x509/standard_extensions.schema.h"
#include "x509/transition.h"

namespace tlvforge {

// A decoder that answers an empty value as a bad argument, where the engine would call it bad encoding.
template <class T>
Status DecodeNonEmpty(const uint8_t* data, uint32_t length, T** out, Place place = Place::Here()) {
    if (AnyNull(data, out) || length == 0) return Fail(StatusBadArgument, place);
    return DecodeTree(data, length, out);
}

// The remove function of a list; either a null list or a bad index is 32.
template <class Node>
Status RemoveListMember(ListOf<Node>* list, uint32_t index, Place place = Place::Here()) {
    if (list == nullptr) return Fail(StatusBadArgument, place);
    return RemoveMember(list, index);
}

// An ENUMERATED as a 32-bit number.
Status DecodeEnumerated(const uint8_t* data, uint32_t length, int32_t* number);
Status EncodeEnumerated(uint32_t number, uint8_t* buffer, uint32_t* length);

// An optional GeneralizedTime of a record. Reading leaves the time as it was when the field is absent: a record fresh
// from its Create function then stays the null time. Writing leaves the field absent for a null pointer, and answers
// 1, not 313, for a time that can't be written: that is intended.
Status GetOptionalTime(const Asn1Value* field, LibraryTime* time);
Status SetOptionalTime(Asn1Value** field, const LibraryTime* time);

Status DecodeTimePair(const uint8_t* data, uint32_t length, LibraryTime* first, LibraryTime* second);
Status EncodeTimePair(const LibraryTime* first, const LibraryTime* second, uint8_t* buffer, uint32_t* length);

// A list of certificate policies as the encoder may walk it. The qualifier list of a policy can hold the policy itself
// (see AddExtensionPolicyQualifier); the view leaves such members out, and a qualifier list that had no others.
// It borrows from the list, which has to outlive it unchanged.
class PoliciesView {
public:
    // Status 1. A list without self references is not copied.
    Status Of(const ExtensionCertificatePolicies* policies);
    const ExtensionCertificatePolicies* List() const { return list_; }

private:
    const ExtensionCertificatePolicies* list_ = nullptr;
    ExtensionCertificatePolicies filtered_{};
    Block block_;
};

}  // namespace tlvforge
