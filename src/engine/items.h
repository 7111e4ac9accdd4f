// The building blocks of schemas: items composed at compile time, so that a schema reads like the ASN.1 module
// text that it stands for. Malformed items do not compile.
//
//     inline constexpr Asn1Item RevokedCertificate = Sequence<
//         Integer,                      // userCertificate
//         Time,                         // revocationDate
//         Optional<X509Extensions>>;    // crlEntryExtensions
//
// The record that lies over a SEQUENCE is a struct of pointers, one a field; a static_assert beside it compares sizes.
#pragma once

#include "tlvforge/asn1.h"

namespace tlvforge {

// Tables of the children, one for each composition.
template <const Asn1Item&... Children>
inline constexpr const Asn1Item* childTable[] = {&Children...};

constexpr bool IsList(const Asn1Item& item) { return item.kind == Asn1KindSequenceOf || item.kind == Asn1KindSetOf; }

constexpr uint32_t KindBits() { return 0; }
template <class... Rest>
constexpr uint32_t KindBits(uint32_t kind, Rest... rest) {
    return 1u << kind | KindBits(rest...);
}

// Kinds whose node is an Asn1Value with the content bytes as they stand.
inline constexpr uint32_t kValueKinds = KindBits(1, 2, 4, 5, 6, 10, 12, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 30);

constexpr bool IsValueKind(uint8_t kind) { return kind < 32 && (kValueKinds >> kind & 1) != 0; }

// Tag number that an item has on the wire.
constexpr int32_t TagOf(const Asn1Item& item) { return item.tagNumber >= 0 ? item.tagNumber : item.kind & 127; }

namespace schema {
// clang-format off

template <uint8_t Kind, uint32_t RecordSize = sizeof(Asn1Value)>
inline constexpr Asn1Item Primitive = {0, 0, 0, Kind, -1, RecordSize, nullptr, 0, nullptr};

inline constexpr const Asn1Item& Boolean = Primitive<Asn1KindBoolean>;
inline constexpr const Asn1Item& Integer = Primitive<Asn1KindInteger>;
inline constexpr const Asn1Item& BitString = Primitive<Asn1KindBitString, sizeof(Asn1BitString)>;
inline constexpr const Asn1Item& OctetString = Primitive<Asn1KindOctetString>;
inline constexpr const Asn1Item& Null = Primitive<Asn1KindNull>;
inline constexpr const Asn1Item& ObjectIdentifier = Primitive<Asn1KindObjectIdentifier>;
inline constexpr const Asn1Item& Enumerated = Primitive<Asn1KindEnumerated>;
inline constexpr const Asn1Item& UTF8String = Primitive<Asn1KindUTF8String>;
inline constexpr const Asn1Item& IA5String = Primitive<Asn1KindIA5String>;
inline constexpr const Asn1Item& UTCTime = Primitive<Asn1KindUTCTime>;
inline constexpr const Asn1Item& GeneralizedTime = Primitive<Asn1KindGeneralizedTime>;
inline constexpr Asn1Item Any = {0, 0, 0, Asn1KindAny, -1, sizeof(Asn1Any), nullptr, 0, nullptr};

template <const Asn1Item&... Fields>
inline constexpr Asn1Item Sequence = {0, Asn1Constructed, 0, Asn1KindSequence, -1, sizeof...(Fields) * sizeof(void*),
                                      childTable<Fields...>, sizeof...(Fields), nullptr};

template <const Asn1Item& Element>
inline constexpr Asn1Item SequenceOf = {0, Asn1Constructed, 0, Asn1KindSequenceOf, -1, sizeof(Asn1List),
                                        childTable<Element>, 1, nullptr};

template <const Asn1Item& Element>
inline constexpr Asn1Item SetOf = {0, Asn1Constructed, 0, Asn1KindSetOf, -1, sizeof(Asn1List),
                                   childTable<Element>, 1, nullptr};

// An alternative without a tag of its own that is itself a CHOICE or ANY could never be told from the others.
template <const Asn1Item&... Alternatives>
inline constexpr Asn1Item Choice = [] {
    static_assert(((Alternatives.tagNumber >= 0 || Alternatives.kind < Asn1KindChoice || IsList(Alternatives)) && ...),
                  "an alternative that can never match");
    return Asn1Item{0, Asn1Constructed, 0, Asn1KindChoice, -1, sizeof(Asn1Choice),
                    childTable<Alternatives...>, sizeof...(Alternatives), nullptr};
}();

constexpr Asn1Item Tagged(Asn1Item item, uint8_t tagClass, int32_t number, uint8_t flag) {
    item.tagClass = tagClass;
    item.tagNumber = number;
    item.itemFlags |= flag;
    return item;
}

template <int32_t Number, const Asn1Item& Base>
inline constexpr Asn1Item Implicit = [] {
    static_assert(Number >= 0 && (Base.itemFlags & Asn1FlagExplicit) == 0, "a second tag on an explicit item");
    return Tagged(Base, Asn1ClassContext, Number, 0);
}();

template <int32_t Number, const Asn1Item& Base>
inline constexpr Asn1Item Explicit = [] {
    static_assert(Number >= 0, "an explicit item needs a number");
    static_assert(Base.tagNumber < 0, "a second tag on a tagged item");
    return Tagged(Base, Asn1ClassContext, Number, Asn1FlagExplicit);
}();

// An ANY whose implicit tag is known to stand for a constructed value.
template <int32_t Number>
inline constexpr Asn1Item ImplicitConstructedAny = [] {
    Asn1Item item = Tagged(Any, Asn1ClassContext, Number, 0);
    item.constructedBit = Asn1Constructed;
    return item;
}();

// Odd tags that the wire format of some structures asks for, where a module would have context tags: a number in the
// universal class, implicit or explicit, and a context class with the number of the kind.
template <int32_t Number, const Asn1Item& Base>
inline constexpr Asn1Item UniversalTag = [] {
    static_assert(Number >= 0 && Base.tagNumber < 0 && Base.itemFlags == 0, "a second tag on a tagged item");
    return Tagged(Base, Asn1ClassUniversal, Number, 0);
}();

template <int32_t Number, const Asn1Item& Base>
inline constexpr Asn1Item UniversalExplicit = [] {
    static_assert(Number >= 0 && Base.tagNumber < 0 && Base.itemFlags == 0, "a second tag on a tagged item");
    return Tagged(Base, Asn1ClassUniversal, Number, Asn1FlagExplicit);
}();

template <const Asn1Item& Base>
inline constexpr Asn1Item ContextOfKind = [] {
    static_assert(Base.tagNumber < 0 && Base.itemFlags == 0, "a second tag on a tagged item");
    return Tagged(Base, Asn1ClassContext, -1, 0);
}();

// The element of a list of constructed values that are kept as they stand.
inline constexpr Asn1Item ConstructedAny = {0, Asn1Constructed, 0, Asn1KindAny, -1, sizeof(Asn1Any), nullptr, 0, nullptr};

template <const Asn1Item& Base>
inline constexpr Asn1Item Optional = [] {
    Asn1Item item = Base;
    item.itemFlags |= Asn1FlagOptional;
    return item;
}();

constexpr bool FitsDefault(const Asn1Item& item, const Asn1Value& node) { return item.kind == node.type; }

template <const Asn1Item& Base, const auto& Node>
inline constexpr Asn1Item Default = [] {
    static_assert(FitsDefault(Base, Node), "a default of another kind");
    Asn1Item item = Base;
    item.itemFlags |= Asn1FlagOptional;
    item.defaultValue = &Node;
    return item;
}();

// Bytes of a constant node. Nothing writes through it: defaults are copied before they are handed out.
template <uint8_t... Bytes>
inline constexpr uint8_t constantBytes[] = {Bytes...};

template <uint32_t Type, uint8_t... Bytes>
inline constexpr Asn1Value ConstantValue = {Type, sizeof...(Bytes), const_cast<uint8_t*>(constantBytes<Bytes...>)};

inline constexpr const Asn1Value& kFalse = ConstantValue<Asn1KindBoolean, 0>;
inline constexpr const Asn1Value& kZero = ConstantValue<Asn1KindInteger, 0>;

inline constexpr Asn1Item Time = Choice<UTCTime, GeneralizedTime>;

// clang-format on
}  // namespace schema
}  // namespace tlvforge
