// Attributes of requests and of CMS (RFC 2986, 4.1; RFC 5652, 5.3), and their set.
#pragma once

#include "engine/items.h"
#include "tlvforge/attributes.h"

struct RsaAttribute {
    Asn1Value* type;
    tlvforge::ListOf<Asn1Any>* values;
};

struct RsaAttributeList : tlvforge::ListOf<RsaAttribute> {};

// What an RsaAttributes handle points to: a cell of its own, or the slot of a document. Null list: no attributes.
struct RsaAttributesCell {
    RsaAttributeList* list;
};

namespace tlvforge::schema {
// clang-format off

template <> struct Schema<RsaAttribute> : Record<
    Field<&RsaAttribute::type, ObjectIdentifier>,
    Field<&RsaAttribute::values, SetOf<Any>>> {};

template <> struct Schema<RsaAttributeList> : SetOf<RsaAttribute> {};
// clang-format on
}  // namespace tlvforge::schema
