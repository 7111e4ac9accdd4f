// The floor under decode and free: one malloc, memcpy and free for each node of the same tree.
#pragma once

#include <cstdlib>
#include <cstring>
#include <vector>

#include "engine/items.h"
#include "engine/nodes.h"

namespace bench {

struct Node {
    const void* bytes;
    size_t size;
};

template <class Record>
void CollectRecord(const Record* record, std::vector<Node>* nodes) {
    const bool beside = record->data == reinterpret_cast<const uint8_t*>(record + 1);
    nodes->push_back({record, sizeof(Record) + (beside ? record->length : 1)});
}

// Every node of a tree, in the order in which the decoder makes them.
inline void Collect(const Asn1Item& item, const void* node, std::vector<Node>* nodes) {
    if (node == nullptr) return;
    if (item.kind == Asn1KindChoice) {
        const auto* choice = static_cast<const Asn1Choice*>(node);
        nodes->push_back({choice, sizeof(Asn1Choice)});
        Collect(*item.children[choice->selected], choice->value, nodes);
    } else if (tlvforge::IsList(item)) {
        const auto* list = static_cast<const Asn1List*>(node);
        const bool beside = list->items == reinterpret_cast<void* const*>(list + 1);
        nodes->push_back({list, sizeof(Asn1List) + (beside ? list->capacity * sizeof(void*) : 0)});
        for (uint32_t i = 0; i < list->count; ++i) Collect(*item.children[0], list->items[i], nodes);
    } else if (item.kind == Asn1KindSequence) {
        const auto* cells = static_cast<const tlvforge::Cell*>(node);
        nodes->push_back({cells, item.valueSize});
        for (uint32_t i = 0; i < item.childCount; ++i) Collect(*item.children[i], cells[i], nodes);
    } else if (item.kind == Asn1KindBitString) {
        CollectRecord(static_cast<const Asn1BitString*>(node), nodes);
    } else {
        CollectRecord(static_cast<const Asn1Value*>(node), nodes);
    }
}

inline void AllocateAll(const std::vector<Node>& nodes, std::vector<void*>* blocks) {
    for (size_t i = 0; i < nodes.size(); ++i) {
        (*blocks)[i] = std::malloc(nodes[i].size);
        std::memcpy((*blocks)[i], nodes[i].bytes, nodes[i].size);
    }
    for (void* block : *blocks) std::free(block);
}

}  // namespace bench
