// What the codecs of attribute values and the record lists have in common.
#pragma once

#include "cades/attribute_values.schema.h"
#include "engine/views.h"
#include "x509/algorithm.h"

namespace tlvforge {

// For parts that aren't there. The lengths have been checked.
template <class... Outputs>
Status StoreNothing(const Outputs&... outputs) {
    ((*outputs.length = 0), ...);
    return StatusOk;
}

// Both outputs, whatever happens to the first; the first failure is the result. A null record has neither.
Status GetTypedValue(const TypedValue* record, Output type, Output value);

// A view of a record of two fields, an OBJECT IDENTIFIER and ANY. Null without an OID; the ANY is null for null bytes.
template <class Record>
class OidAndAnyView {
public:
    OidAndAnyView(const uint8_t* oid, Bytes any)
        : oid_(ViewOfOid(oid)),
          any_{any.data != nullptr && any.length != 0 ? any.data[0] & 31u : 0, any.length, Unconst(any.data)},
          record_{&oid_, any.data != nullptr ? &any_ : nullptr} {}
    OidAndAnyView(const OidAndAnyView&) = delete;
    OidAndAnyView& operator=(const OidAndAnyView&) = delete;

    Record* Get() { return oid_.data != nullptr ? &record_ : nullptr; }

private:
    Asn1Value oid_;
    Asn1Any any_;
    Record record_;
};

using TypedValueView = OidAndAnyView<TypedValue>;

// Parameters of length 0 are none.
struct AlgorithmView : OidAndAnyView<AlgorithmIdentifier> {
    AlgorithmView(const uint8_t* oid, Bytes parameters)
        : OidAndAnyView(oid, parameters.length != 0 ? parameters : Bytes{}) {}
};

}  // namespace tlvforge
