// Schemas that must not compile. The comment after each use is what the compiler has to say.
#include "engine/access.h"
#include "x509/certificate.schema.h"

namespace tlvforge {

struct Exchanged {
    Time* first;
    Time* second;
};
struct Incomplete {
    Time* first;
    Time* second;
};
struct WrongMember {
    Asn1Value* number;
};
struct Foreign {
    Validity* validity;
};
struct Defaulted {
    Asn1Value* flag;
};
struct Ambiguous : Asn1Choice {};
struct TwiceTagged {
    Asn1Value* number;
};
struct WrongList : ListOf<Certificate> {};

namespace schema {
// clang-format off

template <> struct Schema<Exchanged> : Record<Field<&Exchanged::second, Time>, Field<&Exchanged::first, Time>> {};
template <> struct Schema<Incomplete> : Record<Field<&Incomplete::first, Time>> {};
template <> struct Schema<WrongMember> : Record<Field<&WrongMember::number, Time>> {};
template <> struct Schema<Foreign> : Record<Field<&Exchanged::first, Time>> {};
template <> struct Schema<Defaulted> : Record<Field<&Defaulted::flag, Default<Boolean, kZero>>> {};
template <> struct Schema<Ambiguous> : Choice<Integer, Any> {};
template <> struct Schema<TwiceTagged> : Record<Field<&TwiceTagged::number, Explicit<0, Implicit<1, Integer>>>> {};
template <> struct Schema<WrongList> : SequenceOf<Validity> {};

// clang-format on
}  // namespace schema

void Use() {
    (void)&itemOf<Exchanged>;    // fields are out of order
    (void)&itemOf<Incomplete>;   // a field is missing
    (void)&itemOf<WrongMember>;  // the member's node is not the element's
    (void)&itemOf<Foreign>;      // the schema describes nodes of another type
    (void)&itemOf<Defaulted>;    // a default of another kind
    (void)&itemOf<Ambiguous>;    // an alternative that can never match
    (void)&itemOf<TwiceTagged>;  // a second tag on a tagged item
    (void)&itemOf<WrongList>;    // the schema describes nodes of another type
}

// A tree of another type.
Status Mistake(X509Name* name, Certificate** out) {
    return CopyTree(name, out);  // no matching function for call
}

}  // namespace tlvforge
