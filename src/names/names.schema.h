// Distinguished names and general names (RFC 5280, 4.1.2.4 and 4.2.1.6): items, and the records that lie over them.
#pragma once

#include "engine/items.h"
#include "tlvforge/names.h"

namespace tlvforge {

struct AttributeTypeAndValue {
    Asn1Value* type;
    Asn1Any* value;
};

struct RelativeDistinguishedName : ListOf<AttributeTypeAndValue> {};

}  // namespace tlvforge

struct X509Name : tlvforge::ListOf<tlvforge::RelativeDistinguishedName> {};
struct X509GeneralName : Asn1Choice {};  // selected is the context tag number
struct X509GeneralNames : tlvforge::ListOf<X509GeneralName> {};
struct PKIFreeText : tlvforge::ListOf<Asn1Value> {};
struct OctetStrings : tlvforge::ListOf<Asn1Value> {};

namespace tlvforge {

// Documents hold their names through a CHOICE of one alternative.
struct Name : Asn1Choice {};

namespace schema {
// clang-format off

template <> struct Schema<AttributeTypeAndValue> : Record<
    Field<&AttributeTypeAndValue::type, ObjectIdentifier>,
    Field<&AttributeTypeAndValue::value, Any>> {};

template <> struct Schema<RelativeDistinguishedName> : SetOf<AttributeTypeAndValue> {};
template <> struct Schema<X509Name> : SequenceOf<RelativeDistinguishedName> {};

template <> struct Schema<Name> : Choice<X509Name> {};

template <> struct Schema<X509GeneralName> : Choice<
    ImplicitConstructedAny<0>, // otherName
    Implicit<1, IA5String>,    // rfc822Name
    Implicit<2, IA5String>,    // dNSName
    Implicit<3, Any>,          // x400Address; primitive in this schema, so a constructed one does not decode
    Explicit<4, Any>,          // directoryName
    ImplicitConstructedAny<5>, // ediPartyName
    Implicit<6, IA5String>,    // uniformResourceIdentifier
    Implicit<7, OctetString>,  // iPAddress
    Implicit<8, ObjectIdentifier>> {};  // registeredID

template <> struct Schema<X509GeneralNames> : SequenceOf<X509GeneralName> {};

template <> struct Schema<PKIFreeText> : SequenceOf<UTF8String> {};
template <> struct Schema<OctetStrings> : SequenceOf<OctetString> {};
// clang-format on
}  // namespace schema
}  // namespace tlvforge
