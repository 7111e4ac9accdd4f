// Attributes of requests and of CMS (RFC 2986, 4.1; RFC 5652, 5.3), and their set.
#pragma once

#include "engine/items.h"
#include "tlvforge/attributes.h"

struct RsaAttribute {
    Asn1Value* type;
    Asn1List* values;  // of Asn1Any
};

// What an RsaAttributes handle points to: a cell of its own, or the slot of a document. Null list: no attributes.
struct RsaAttributesCell {
    Asn1List* list;
};

namespace tlvforge {
namespace schema {
// clang-format off

inline constexpr Asn1Item RsaAttribute = Sequence<
    ObjectIdentifier, // type
    SetOf<Any>>;      // values

inline constexpr Asn1Item RsaAttributes = SetOf<RsaAttribute>;

// clang-format on
}  // namespace schema

static_assert(sizeof(::RsaAttribute) == schema::RsaAttribute.valueSize);

}  // namespace tlvforge
