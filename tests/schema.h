// Schemas for tests of the engine: sequences without a struct, items written out, and owners of their trees.
#pragma once

#include "engine/nodes.h"
#include "walk.h"

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
struct AnyTree {
    explicit AnyTree(const Asn1Item& schema, void* node = nullptr) : item(schema), root(node) {}
    AnyTree(AnyTree&& other) noexcept : item(other.item), root(std::exchange(other.root, nullptr)) {}
    ~AnyTree() { FreeAsn1Object(&item, root); }

    // From a block of exactly the bytes' size: one read too far is seen.
    Status Decode(const uint8_t* data, size_t size, uint32_t* consumed) {
        const walk::Bytes exact(data, size);
        return Asn1DecodeItem(exact.data(), exact.size(), &item, &root, consumed);
    }
    // The cells of a SEQUENCE.
    void** Get() const { return static_cast<void**>(root); }

    const Asn1Item& item;
    void* root;
};

}  // namespace test_schema
