// Distinguished names and general names (RFC 5280, 4.1.2.4 and 4.2.1.6): items, and the records that lie over them.
#pragma once

#include "engine/items.h"
#include "tlvforge/names.h"

struct X509Name : Asn1List {};           // of RelativeDistinguishedName
struct X509GeneralName : Asn1Choice {};  // selected is the context tag number
struct X509GeneralNames : Asn1List {};   // of X509GeneralName
struct PKIFreeText : Asn1List {};        // of Asn1Value
struct OctetStrings : Asn1List {};       // of Asn1Value

namespace tlvforge {

struct AttributeTypeAndValue {
    Asn1Value* type;
    Asn1Any* value;
};

using RelativeDistinguishedName = Asn1List;  // of AttributeTypeAndValue

namespace schema {
// clang-format off

inline constexpr Asn1Item AttributeTypeAndValue = Sequence<
    ObjectIdentifier, // type
    Any>;             // value

inline constexpr Asn1Item RelativeDistinguishedName = SetOf<AttributeTypeAndValue>;
inline constexpr Asn1Item X509Name = SequenceOf<RelativeDistinguishedName>;

// Documents hold their names through a CHOICE of one alternative.
inline constexpr Asn1Item Name = Choice<X509Name>;

inline constexpr Asn1Item X509GeneralName = Choice<
    ImplicitConstructedAny<0>, // otherName
    Implicit<1, IA5String>,    // rfc822Name
    Implicit<2, IA5String>,    // dNSName
    Implicit<3, Any>,          // x400Address; primitive in this schema, so a constructed one does not decode
    Explicit<4, Any>,          // directoryName
    ImplicitConstructedAny<5>, // ediPartyName
    Implicit<6, IA5String>,    // uniformResourceIdentifier
    Implicit<7, OctetString>,  // iPAddress
    Implicit<8, ObjectIdentifier>>; // registeredID

inline constexpr Asn1Item X509GeneralNames = SequenceOf<X509GeneralName>;

inline constexpr Asn1Item PKIFreeText = SequenceOf<UTF8String>;
inline constexpr Asn1Item OctetStrings = SequenceOf<OctetString>;

// clang-format on
}  // namespace schema

static_assert(sizeof(AttributeTypeAndValue) == schema::AttributeTypeAndValue.valueSize);

}  // namespace tlvforge
