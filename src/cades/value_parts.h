// What the codecs of attribute values and the record lists have in common.
#pragma once

#include "cades/attribute_values.schema.h"
#include "engine/nodes.h"
#include "engine/oids.h"
#include "engine/outputs.h"
#include "x509/algorithm.h"
#include "x509/transition.h"

namespace tlvforge {

// For parts that aren't there. The lengths have been checked.
template <class... Outputs>
Status GiveNothing(Outputs... outputs) {
    ((*outputs.length = 0), ...);
    return StatusOk;
}

inline Status ReadOptional(const void* value, Output out) { return GetOptionalValue(value, out.buffer, out.length); }

// Both outputs, whatever happens to the first; the first failure is the result.
inline Status ReadTypedValue(const TypedValue* record, Output type, Output value) {
    const Status first = record != nullptr ? GetAsn1Oid(record->type, type.buffer, type.length) : GiveNothing(type);
    const Status second = ReadOptional(record != nullptr ? record->value : nullptr, value);
    return first != StatusOk ? first : second;
}

// Views: records over what a caller owns, for the encoder and for copies, which only read.
template <class Node>
Node* Borrow(const Node* node) {
    return const_cast<Node*>(node);
}

inline Asn1Value ViewOf(uint32_t type, const uint8_t* data, uint32_t length) { return {type, length, Borrow(data)}; }

// A view of a record of two fields, an OBJECT IDENTIFIER and ANY. Null without an OID; the ANY is null for null bytes.
template <class Record>
class OidAndAnyView {
public:
    OidAndAnyView(const uint8_t* oid, const uint8_t* bytes, uint32_t length) {
        if (oid == nullptr) return;
        oid_ = ViewOf(Asn1KindObjectIdentifier, oid + 1, oid[0]);
        any_ = {bytes != nullptr && length != 0 ? bytes[0] & 31u : 0, length, Borrow(bytes)};
        record_ = {&oid_, bytes != nullptr ? &any_ : nullptr};
    }
    OidAndAnyView(const OidAndAnyView&) = delete;
    OidAndAnyView& operator=(const OidAndAnyView&) = delete;

    Record* Get() { return oid_.data != nullptr ? &record_ : nullptr; }

private:
    Asn1Value oid_{};
    Asn1Any any_{};
    Record record_{};
};

using TypedValueView = OidAndAnyView<TypedValue>;

// Parameters of length 0 are none.
struct AlgorithmView : OidAndAnyView<AlgorithmIdentifier> {
    AlgorithmView(const uint8_t* oid, const uint8_t* parameters, uint32_t length)
        : OidAndAnyView(oid, length != 0 ? parameters : nullptr, length) {}
};

}  // namespace tlvforge
