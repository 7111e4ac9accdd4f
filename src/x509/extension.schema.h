// Extensions and their list (RFC 5280, 4.1.2.9).
#pragma once

#include "engine/items.h"
#include "tlvforge/extensions.h"

struct X509Extension {
    Asn1Value* extnID;
    Asn1Value* critical;
    Asn1Value* extnValue;
};

struct X509ExtensionList : tlvforge::ListOf<X509Extension> {};

// What an X509Extensions handle points to: a cell of its own, or the slot of a document. Null list: no extensions.
struct X509ExtensionsCell {
    X509ExtensionList* list;
};

namespace tlvforge::schema {
// clang-format off

template <> struct Schema<X509Extension> : Record<
    Field<&X509Extension::extnID, ObjectIdentifier>,
    Field<&X509Extension::critical, Default<Boolean, kFalse>>,
    Field<&X509Extension::extnValue, OctetString>> {};

template <> struct Schema<X509ExtensionList> : SequenceOf<X509Extension> {};
// clang-format on
}  // namespace tlvforge::schema
