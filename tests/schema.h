// Schemas for tests of the engine: sequences without a struct, items written out, and owners of their trees.
#pragma once

#include "engine/nodes.h"

namespace test_schema {

// The node of a Sequence: a block of cells.
template <size_t Count>
struct Cells {
    void* cell[Count];
};

template <class... Elements>
struct Sequence {
    using Node = Cells<sizeof...(Elements)>;

    static constexpr tlvforge::schema::ChildTable<sizeof...(Elements)> Children() {
        return {{&tlvforge::itemOf<Elements>...}};
    }

    template <class Self>
    static constexpr Asn1Item Item() {
        return {0,
                Asn1Constructed,
                0,
                Asn1KindSequence,
                -1,
                sizeof(Node),
                tlvforge::childTable<Self>.items,
                sizeof...(Elements),
                nullptr};
    }
};

// An item as it is written, where an element is expected.
template <const Asn1Item& Literal>
struct Element {
    using Node = Asn1Value;

    template <class>
    static constexpr Asn1Item Item() {
        return Literal;
    }
};

// Sole owner of a tree of any item.
class AnyTree {
public:
    explicit AnyTree(const Asn1Item& item, void* node = nullptr) : item_(&item), node_(static_cast<void**>(node)) {}
    AnyTree(AnyTree&& other) noexcept : item_(other.item_), node_(other.Take()) {}
    ~AnyTree() { FreeAsn1Object(item_, node_); }

    // The cells of a SEQUENCE.
    void** Get() const { return node_; }
    Status Create(uint32_t fill) { return CreateAsn1Object(item_, tlvforge::Untyped(&node_), fill); }
    Status Decode(const uint8_t* data, uint32_t length) {
        uint32_t consumed = 0;
        return Asn1DecodeItem(data, length, item_, tlvforge::Untyped(&node_), &consumed);
    }
    Status CopyOf(const void* source) { return tlvforge::CopyAsn1Object(item_, source, tlvforge::Untyped(&node_)); }
    void** Take() {
        void** node = node_;
        node_ = nullptr;
        return node;
    }

private:
    const Asn1Item* item_;
    void** node_;
};

}  // namespace test_schema
