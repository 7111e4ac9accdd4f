// The building blocks of schemas: items composed at compile time, so that a schema reads like the ASN.1 module text
// that it stands for. Schemas that are malformed, or that disagree with the struct they describe, do not compile.
//
//     struct X509RevokedCertificate {
//         Asn1Value* userCertificate;
//         Time* revocationDate;
//         X509ExtensionsCell crlEntryExtensions;
//     };
//
//     template <> struct Schema<X509RevokedCertificate> : Record<
//         Field<&X509RevokedCertificate::userCertificate, Integer>,
//         Field<&X509RevokedCertificate::revocationDate, Time>,
//         Field<&X509RevokedCertificate::crlEntryExtensions, Optional<X509ExtensionList>>> {};
//
// An element of a schema is a type: a building block below (Integer, Optional<...>), or a node type that has a Schema
// of its own. itemOf<Element> is its item, the only one that a tree of that type is decoded, copied and freed with.
#pragma once

#include <stddef.h>

#include <type_traits>
#include <utility>

#include "engine/facts.h"

namespace tlvforge {

// ---- Nodes ----------------------------------------------------------------------------------------------------------

// The node of a SEQUENCE OF or SET OF, with the type of its elements' nodes. Lists with a name derive from it.
template <class Node>
struct ListOf : Asn1List {
    using Element = Node;

    Node* At(uint32_t index) const { return static_cast<Node*>(items[index]); }
};

namespace schema {

// The schema of a node type is a specialisation that derives from Record, Choice, SequenceOf, SetOf or a tagged block.
// A building block is its own schema.
template <class Element>
struct Schema : Element {};

template <class Element>
concept BuildingBlock = requires {
    typename Element::Node;
};

template <class Element>
struct NodeOfElement {
    using Type = Element;
};
template <BuildingBlock Element>
struct NodeOfElement<Element> {
    using Type = typename Element::Node;
};

}  // namespace schema

// The type of an element's node.
template <class Element>
using NodeOf = typename schema::NodeOfElement<Element>::Type;

// The items of an element's children, and the item itself.
template <class Element>
inline constexpr auto childTable = schema::Schema<Element>::Children();

template <class Element>
inline constexpr Asn1Item itemOf = [] {
    static_assert(std::is_base_of_v<typename schema::Schema<Element>::Node, NodeOf<Element>>,
                  "the schema describes nodes of another type");
    return schema::Schema<Element>::template Item<Element>();
}();

// ---- Facts ----------------------------------------------------------------------------------------------------------

namespace schema {

// The composed element under tags and options, and whether one of them is a default.
template <class Element>
struct Peeled {
    using Composed = Element;
    static constexpr bool kHasDefault = false;
};
template <class Element>
requires requires { typename Schema<Element>::Base; }
struct Peeled<Element> {
    using Inner = Peeled<typename Schema<Element>::Base>;
    using Composed = typename Inner::Composed;
    static constexpr bool kHasDefault = Inner::kHasDefault || requires { Schema<Element>::kDefault; };
};

template <class Element>
concept Composed = requires {
    Schema<Element>::ChildFacts();
};

}  // namespace schema

template <class Element>
inline constexpr auto childFacts = schema::Schema<Element>::ChildFacts();

template <class Element>
constexpr Facts MakeFactsOf() {
    using Peeled = schema::Peeled<Element>;
    if constexpr (schema::Composed<typename Peeled::Composed>) {
        constexpr auto& children = childFacts<typename Peeled::Composed>;
        return MakeFacts(itemOf<Element>, children.facts, children.kCount, Peeled::kHasDefault);
    } else {
        return MakeFacts(itemOf<Element>, nullptr, 0, Peeled::kHasDefault);
    }
}

// The facts of an element of a typed schema.
template <class Element>
inline constexpr Facts factsOf = MakeFactsOf<Element>();

namespace schema {

template <size_t Count>
struct ChildTable {
    const Asn1Item* items[Count];
};

template <uint16_t Count>
struct ChildFactTable {
    static constexpr uint16_t kCount = Count;
    Facts facts[Count];
};

// ---- Primitive elements ---------------------------------------------------------------------------------------------

template <uint8_t Kind, class NodeType = Asn1Value>
struct Primitive {
    using Node = NodeType;

    template <class>
    static constexpr Asn1Item Item() {
        return {0, 0, 0, Kind, -1, sizeof(Node), nullptr, 0, nullptr};
    }
};

struct Boolean : Primitive<Asn1KindBoolean> {};
struct Integer : Primitive<Asn1KindInteger> {};
struct BitString : Primitive<Asn1KindBitString, Asn1BitString> {};
struct OctetString : Primitive<Asn1KindOctetString> {};
struct Null : Primitive<Asn1KindNull> {};
struct ObjectIdentifier : Primitive<Asn1KindObjectIdentifier> {};
struct Enumerated : Primitive<Asn1KindEnumerated> {};
struct UTF8String : Primitive<Asn1KindUTF8String> {};
struct IA5String : Primitive<Asn1KindIA5String> {};
struct UTCTime : Primitive<Asn1KindUTCTime> {};
struct GeneralizedTime : Primitive<Asn1KindGeneralizedTime> {};
struct Any : Primitive<Asn1KindAny, Asn1Any> {};

// ---- Records --------------------------------------------------------------------------------------------------------

// What the handle of a list points to: a struct of one member.
template <class Cell>
concept ListCell = requires(Cell cell) {
    cell.list;
};

template <class Cell>
struct NodeOfCell;
template <class Node>
struct NodeOfCell<Node*> {
    using Type = Node;
};
template <ListCell Cell>
struct NodeOfCell<Cell> {
    using Type = std::remove_pointer_t<decltype(Cell::list)>;
};

template <class Member>
struct MemberTraits;
template <class RecordType, class CellType>
struct MemberTraits<CellType RecordType::*> {
    using Record = RecordType;
    using Cell = CellType;
};

// A field of a SEQUENCE: the member that holds its node, and its element.
template <auto Member, class ElementType>
struct Field {
    using Element = ElementType;
    using Record = typename MemberTraits<decltype(Member)>::Record;
    using Cell = typename MemberTraits<decltype(Member)>::Cell;
    static constexpr auto member = Member;

    static_assert(std::is_pointer_v<Cell> || ListCell<Cell>, "a field is one cell");
    static_assert(std::is_same_v<typename NodeOfCell<Cell>::Type, NodeOf<Element>>,
                  "the member's node is not the element's");
};

// The order of fields: in a record of which the n-th cell alone is marked, the member of the n-th field is the marked
// one. Marked and unmarked cells point to one of two nodes. Null can't stand for one of them: that an address isn't
// null is no constant where null pointers are checked for.
template <class Node>
union Storage {
    char none;
    Node node;
    constexpr Storage() : none(0) {}
    constexpr ~Storage() {}
};
template <class Node>
inline constinit Storage<Node> nodeFor[2]{};

template <class Node>
constexpr Node* CellNode(bool marked) {
    auto& nodes = nodeFor<Node>;
    return &nodes[marked].node;
}

struct CellValue {
    bool marked;

    template <class Node>
    constexpr operator Node*() const {
        return CellNode<Node>(marked);
    }
    template <ListCell Cell>
    constexpr operator Cell() const {
        return Cell{*this};
    }
};

template <class Node>
constexpr bool IsMarked(Node* const& cell) {
    return cell == CellNode<Node>(true);
}
template <ListCell Cell>
constexpr bool IsMarked(const Cell& cell) {
    return IsMarked(cell.list);
}

template <class RecordType, size_t Which, size_t... Cells>
constexpr RecordType WithOneCell(std::index_sequence<Cells...>) {
    return RecordType{CellValue{Cells == Which}...};
}

template <class RecordType, class... Fields, size_t... Cells>
constexpr bool AreInOrder(std::index_sequence<Cells...> cells) {
    return (IsMarked(WithOneCell<RecordType, Cells>(cells).*Fields::member) && ...);
}

template <class First, class...>
struct FirstOf {
    using Type = First;
};

// A SEQUENCE whose fields are the members of a struct, all of them, in their order.
template <class... Fields>
struct Record {
    using Node = typename FirstOf<Fields...>::Type::Record;

    static constexpr ChildTable<sizeof...(Fields)> Children() { return {{&itemOf<typename Fields::Element>...}}; }
    static constexpr ChildFactTable<sizeof...(Fields)> ChildFacts() { return {{factsOf<typename Fields::Element>...}}; }

    template <class Self>
    static constexpr Asn1Item Item() {
        static_assert((std::is_same_v<Node, typename Fields::Record> && ...), "a member of another struct");
        static_assert(sizeof(Node) == sizeof...(Fields) * sizeof(void*), "a field is missing");
        if constexpr (sizeof(Node) == sizeof...(Fields) * sizeof(void*)) {
            static_assert(AreInOrder<Node, Fields...>(std::index_sequence_for<Fields...>()), "fields are out of order");
        }
        return {
            0,      Asn1Constructed, 0, Asn1KindSequence, -1, sizeof(Node), childTable<Self>.items, sizeof...(Fields),
            nullptr};
    }
};

// ---- Lists and choices ----------------------------------------------------------------------------------------------

template <uint8_t Kind, class Element>
struct List {
    using Node = ListOf<NodeOf<Element>>;

    static constexpr ChildTable<1> Children() { return {{&itemOf<Element>}}; }
    static constexpr ChildFactTable<1> ChildFacts() { return {{factsOf<Element>}}; }

    template <class Self>
    static constexpr Asn1Item Item() {
        return {0, Asn1Constructed, 0, Kind, -1, sizeof(Node), childTable<Self>.items, 1, nullptr};
    }
};

template <class Element>
struct SequenceOf : List<Asn1KindSequenceOf, Element> {};
template <class Element>
struct SetOf : List<Asn1KindSetOf, Element> {};

// An alternative without a tag of its own that is itself a CHOICE or ANY could never be told from the others.
constexpr bool CanMatch(const Asn1Item& alternative) {
    return alternative.tagNumber >= 0 || alternative.kind < Asn1KindChoice || IsList(alternative);
}

template <class... Alternatives>
struct Choice {
    using Node = Asn1Choice;

    static constexpr ChildTable<sizeof...(Alternatives)> Children() { return {{&itemOf<Alternatives>...}}; }
    static constexpr ChildFactTable<sizeof...(Alternatives)> ChildFacts() { return {{factsOf<Alternatives>...}}; }

    template <class Self>
    static constexpr Asn1Item Item() {
        static_assert((CanMatch(itemOf<Alternatives>) && ...), "an alternative that can never match");
        return {0,
                Asn1Constructed,
                0,
                Asn1KindChoice,
                -1,
                sizeof(Node),
                childTable<Self>.items,
                sizeof...(Alternatives),
                nullptr};
    }
};

// ---- Tags -----------------------------------------------------------------------------------------------------------

constexpr Asn1Item Tagged(Asn1Item item, uint8_t tagClass, int32_t number, uint8_t flag) {
    item.tagClass = tagClass;
    item.tagNumber = number;
    item.itemFlags |= flag;
    return item;
}

template <int32_t Number, class Element>
struct Implicit {
    using Base = Element;
    using Node = NodeOf<Base>;

    template <class>
    static constexpr Asn1Item Item() {
        static_assert(Number >= 0 && (itemOf<Base>.itemFlags & Asn1FlagExplicit) == 0,
                      "a second tag on an explicit item");
        return Tagged(itemOf<Base>, Asn1ClassContext, Number, 0);
    }
};

template <int32_t Number, class Element>
struct Explicit {
    using Base = Element;
    using Node = NodeOf<Base>;

    template <class>
    static constexpr Asn1Item Item() {
        static_assert(Number >= 0, "an explicit item needs a number");
        static_assert(itemOf<Base>.tagNumber < 0, "a second tag on a tagged item");
        return Tagged(itemOf<Base>, Asn1ClassContext, Number, Asn1FlagExplicit);
    }
};

// The element of a list of constructed values that are kept as they stand.
struct ConstructedAny : Any {
    template <class>
    static constexpr Asn1Item Item() {
        Asn1Item item = itemOf<Any>;
        item.constructedBit = Asn1Constructed;
        return item;
    }
};

// An ANY whose implicit tag is known to stand for a constructed value.
template <int32_t Number>
struct ImplicitConstructedAny : Implicit<Number, ConstructedAny> {};

// Odd tags that the wire format of some structures asks for, where a module would have context tags: a number in the
// universal class, implicit or explicit, and a context class with the number of the kind.
template <class Element, int32_t Number, uint8_t TagClass, uint8_t Flag>
struct OddTag {
    using Base = Element;
    using Node = NodeOf<Base>;

    template <class>
    static constexpr Asn1Item Item() {
        static_assert(itemOf<Base>.tagNumber < 0 && itemOf<Base>.itemFlags == 0, "a second tag on a tagged item");
        return Tagged(itemOf<Base>, TagClass, Number, Flag);
    }
};

template <int32_t Number, class Element>
struct UniversalTag : OddTag<Element, Number, Asn1ClassUniversal, 0> {};
template <int32_t Number, class Element>
struct UniversalExplicit : OddTag<Element, Number, Asn1ClassUniversal, Asn1FlagExplicit> {};
template <class Element>
struct ContextOfKind : OddTag<Element, -1, Asn1ClassContext, 0> {};

// ---- Optional elements and their defaults ---------------------------------------------------------------------------

template <class Element>
struct Optional {
    using Base = Element;
    using Node = NodeOf<Base>;

    template <class>
    static constexpr Asn1Item Item() {
        Asn1Item item = itemOf<Base>;
        item.itemFlags |= Asn1FlagOptional;
        return item;
    }
};

constexpr bool FitsDefault(const Asn1Item& item, const Asn1Value& value) { return item.kind == value.type; }
template <class Node>
constexpr bool FitsDefault(const Asn1Item&, const Node&) {
    return true;
}

template <class Element, const auto& Value>
struct Default {
    using Base = Element;
    using Node = NodeOf<Base>;
    static constexpr bool kDefault = true;

    template <class>
    static constexpr Asn1Item Item() {
        static_assert(std::is_same_v<const Node&, decltype(Value)> && FitsDefault(itemOf<Base>, Value),
                      "a default of another kind");
        Asn1Item item = itemOf<Optional<Base>>;
        item.defaultValue = &Value;
        return item;
    }
};

// Bytes of a constant node. Nothing writes through it: defaults are copied before they are handed out.
template <uint8_t... Bytes>
inline constexpr uint8_t constantBytes[] = {Bytes...};

template <uint32_t Type, uint8_t... Bytes>
inline constexpr Asn1Value ConstantValue = {Type, sizeof...(Bytes), const_cast<uint8_t*>(constantBytes<Bytes...>)};

inline constexpr const Asn1Value& kFalse = ConstantValue<Asn1KindBoolean, 0>;
inline constexpr const Asn1Value& kZero = ConstantValue<Asn1KindInteger, 0>;

}  // namespace schema

// The CHOICE of the two forms of a time (RFC 5280, 4.1.2.5).
struct Time : Asn1Choice {};

template <>
struct schema::Schema<Time> : schema::Choice<schema::UTCTime, schema::GeneralizedTime> {};

}  // namespace tlvforge
