// Extensions and their list (RFC 5280, 4.1.2.9).
#pragma once

#include "engine/items.h"
#include "tlvforge/extensions.h"

struct X509Extension {
    Asn1Value* extnID;
    Asn1Value* critical;
    Asn1Value* extnValue;
};

// What an X509Extensions handle points to: a cell of its own, or the slot of a document. Null list: no extensions.
struct X509ExtensionsCell {
    Asn1List* list;
};

namespace tlvforge {
namespace schema {
// clang-format off

inline constexpr Asn1Item X509Extension = Sequence<
    ObjectIdentifier,          // extnID
    Default<Boolean, kFalse>,  // critical
    OctetString>;              // extnValue

inline constexpr Asn1Item X509Extensions = SequenceOf<X509Extension>;

// clang-format on
}  // namespace schema

static_assert(sizeof(::X509Extension) == schema::X509Extension.valueSize);

}  // namespace tlvforge
