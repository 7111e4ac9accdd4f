// What the walks over a tree need to know of an item, computed at compile time for the items of typed schemas: most
// elements are decided by one octet and one operation, without a look at the item.
#pragma once

#include <stdint.h>

#include "tlvforge/asn1.h"

namespace tlvforge {

constexpr bool IsList(const Asn1Item& item) { return item.kind == Asn1KindSequenceOf || item.kind == Asn1KindSetOf; }

template <class... Kinds>
constexpr uint32_t KindBits(Kinds... kinds) {
    return ((1u << kinds) | ...);
}

// Kinds whose node is an Asn1Value with the content bytes as they stand.
inline constexpr uint32_t kValueKinds = KindBits(
    Asn1KindBoolean, Asn1KindInteger, Asn1KindOctetString, Asn1KindNull, Asn1KindObjectIdentifier, Asn1KindEnumerated,
    Asn1KindUTF8String, Asn1KindNumericString, Asn1KindPrintableString, Asn1KindTeletexString, Asn1KindVideotexString,
    Asn1KindIA5String, Asn1KindUTCTime, Asn1KindGeneralizedTime, Asn1KindGraphicString, Asn1KindVisibleString,
    Asn1KindGeneralString, Asn1KindUniversalString, Asn1KindBMPString);

constexpr bool IsValueKind(uint8_t kind) { return kind < 32 && (kValueKinds >> kind & 1) != 0; }

// The tag number that a kind has in the universal class: lists have that of SEQUENCE and SET.
constexpr int32_t UniversalTagOf(uint8_t kind) { return kind & 127; }

// The tag number that an item has on the wire.
constexpr int32_t TagOf(const Asn1Item& item) {
    return item.tagNumber >= 0 ? item.tagNumber : UniversalTagOf(item.kind);
}

// What a walk does with an element whose header is in its usual form. kOther is for the careful code: explicit tags,
// tag numbers above 30, fixed SETs, and the composed items of other makers.
enum class Op : uint8_t { kValue, kBoolean, kInteger, kBits, kBlock, kList, kChoice, kAny, kOther };

struct Facts {
    enum Flag : uint8_t { kOptional = 1, kNullIfAbsent = 2, kHasDefault = 4, kLeaf = 8 };

    // Of an identifier that no single octet decides: the high tag form is never looked up by its octet.
    static constexpr uint8_t kNoIdentifier = 0x1F;

    const Asn1Item* item;
    const Facts* children;  // of its fields, alternatives or element; null for an item of another maker
    uint16_t childCount;
    uint8_t identifier;   // first octet of the element
    uint8_t alternative;  // the same where it is an alternative of a CHOICE, explicit tags included
    Op op;
    uint8_t flags;
    uint8_t kind;

    constexpr bool Is(Flag flag) const { return (flags & flag) != 0; }
};

constexpr Op OpOf(const Asn1Item& item, bool hasChildFacts) {
    if ((item.itemFlags & Asn1FlagExplicit) != 0) return Op::kOther;
    if (item.kind == Asn1KindAny) return Op::kAny;
    if (item.kind == Asn1KindChoice) return hasChildFacts ? Op::kChoice : Op::kOther;
    if (TagOf(item) > 30) return Op::kOther;
    if (item.constructedBit == 0) {
        if (item.kind == Asn1KindBoolean) return Op::kBoolean;
        if (item.kind == Asn1KindInteger) return Op::kInteger;
        if (item.kind == Asn1KindBitString) return Op::kBits;
        return IsValueKind(item.kind) ? Op::kValue : Op::kOther;
    }
    if (hasChildFacts && IsList(item)) return Op::kList;
    return hasChildFacts && item.kind == Asn1KindSequence ? Op::kBlock : Op::kOther;
}

constexpr Facts MakeFacts(const Asn1Item& item, const Facts* children, uint16_t childCount, bool hasDefault) {
    const bool wrapped = (item.itemFlags & Asn1FlagExplicit) != 0;
    const bool lowTag = TagOf(item) <= 30;
    const uint8_t form = wrapped ? uint8_t{Asn1Constructed} : item.constructedBit;
    const uint8_t octet =
        lowTag ? static_cast<uint8_t>(item.tagClass | form | TagOf(item)) : uint8_t{Facts::kNoIdentifier};
    const Op op = OpOf(item, childCount != 0);
    uint8_t flags = 0;
    if ((item.itemFlags & Asn1FlagOptional) != 0) {
        flags |= Facts::kOptional | (hasDefault ? Facts::kHasDefault : Facts::kNullIfAbsent);
    }
    const bool primitive = item.constructedBit == 0 && (IsValueKind(item.kind) || item.kind == Asn1KindBitString);
    if (primitive || item.kind == Asn1KindAny) flags |= Facts::kLeaf;
    const uint8_t identifier = op < Op::kChoice ? octet : uint8_t{Facts::kNoIdentifier};
    return {&item, children, childCount, identifier, octet, op, flags, item.kind};
}

// Of an item that a caller made, or changed a copy of: it is read as it stands.
inline Facts FactsOf(const Asn1Item& item) { return MakeFacts(item, nullptr, 0, item.defaultValue != nullptr); }

}  // namespace tlvforge
