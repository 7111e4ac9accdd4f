// Trees as a whole: create, copy, free, compare.

#include "engine/items.h"
#include "engine/nodes.h"

using namespace tlvforge;

namespace tlvforge {
namespace {

// NULL is left out on purpose: trees that hold one can't be copied or compared.
bool IsCopiedAsValue(uint8_t kind) { return kind != Asn1KindNull && IsValueKind(kind); }

bool IsBlock(const Asn1Item& item) { return item.kind == Asn1KindSequence || item.kind == Asn1KindSet; }

const Asn1Item* ChildOf(const Asn1Item& item, uint32_t index) {
    return index < item.childCount && item.children != nullptr ? item.children[index] : nullptr;
}

Status CreateInArena(const Asn1Item* item, void** out, uint32_t fill, Arena& arena);
Status CopyChild(const Asn1Item* item, const void* source, void** out, Arena& arena);

Cell* NewCells(const Asn1Item& item, Arena& arena) {
    const size_t size = BlockSize(item);
    void* block = arena.Allocate(size);
    if (block != nullptr) memset(block, 0, size);
    return static_cast<Cell*>(block);
}

Status StoreNode(void* node, void** out) {
    *out = node;
    return node == nullptr ? Fail(StatusOutOfMemory) : StatusOk;
}

Status CreateBlock(const Asn1Item& item, void** out, uint32_t fill, Arena& arena) {
    Cell* block = NewCells(item, arena);
    if (block == nullptr) return Fail(StatusOutOfMemory);
    for (uint32_t i = 0; i < item.childCount; ++i) {
        const Status status = CreateInArena(ChildOf(item, i), &block[i], fill, arena);
        if (status != StatusOk) {
            FreeAsn1Object(&item, block);
            return status;
        }
    }
    *out = block;
    return StatusOk;
}

Status CreatePrimitive(uint8_t kind, void** out, uint32_t fill, Arena& arena) {
    // The cell stays as it is: the block around it has zeroed it.
    if (fill == 0) return StatusOk;
    if (kind == Asn1KindBitString) return StoreNode(NewRecord<Asn1BitString>(arena), out);
    Asn1Value* value = NewRecord<Asn1Value>(arena);
    // An empty value has type 0 and not its kind, but for an object identifier.
    if (value != nullptr && kind == Asn1KindObjectIdentifier) value->type = kind;
    return StoreNode(value, out);
}

Status CopyBlock(const Asn1Item& item, const Cell* source, void** out, Arena& arena) {
    Cell* block = NewCells(item, arena);
    if (block == nullptr) return Fail(StatusOutOfMemory);
    for (uint32_t i = 0; i < item.childCount; ++i) {
        if (source[i] == nullptr) continue;
        const Status status = CopyChild(ChildOf(item, i), source[i], &block[i], arena);
        if (status != StatusOk) {
            FreeAsn1Object(&item, block);
            return status;
        }
    }
    *out = block;
    return StatusOk;
}

Status CopyChoice(const Asn1Item& item, const Asn1Choice& source, void** out, Arena& arena) {
    if (source.selected >= item.childCount) return Fail(StatusBadAlternative);
    void* value = nullptr;
    const Status status = CopyChild(ChildOf(item, source.selected), source.value, &value, arena);
    if (status != StatusOk) return status;
    Asn1Choice* copy = NewRecord<Asn1Choice>(arena);
    if (copy == nullptr) {
        FreeAsn1Object(ChildOf(item, source.selected), value);
        return Fail(StatusOutOfMemory);
    }
    *copy = {source.selected, value};
    *out = copy;
    return StatusOk;
}

Status CopyElements(const Asn1Item& element, const Asn1List& source, Asn1List* copy, Arena& arena) {
    for (uint32_t i = 0; i < source.count; ++i) {
        void* node = nullptr;
        if (const Status status = CopyChild(&element, source.items[i], &node, arena)) return status;
        static_cast<Cell*>(copy->items)[copy->count++] = node;
    }
    return StatusOk;
}

// The copy's sorted flag is that of a new list.
Status CopyList(const Asn1Item& item, const Asn1List& source, void** out, Arena& arena) {
    const Asn1Item* element = ChildOf(item, 0);
    if (source.count != 0 && AnyNull(element, source.items)) return Fail(StatusBadArgument);
    Asn1List* copy = NewListWithTable(source.count, arena);
    if (copy == nullptr) return Fail(StatusOutOfMemory);
    const Status status = source.count == 0 ? StatusOk : CopyElements(*element, source, copy, arena);
    if (status != StatusOk) {
        FreeAsn1Object(&item, copy);
        return status;
    }
    *out = copy;
    return StatusOk;
}

template <class Record>
Status CopyRecord(const Record& source, void** out, Arena& arena) {
    if (HasLostBytes(&source)) return Fail(StatusAbsent);
    Record* copy = NewRecordWithBytes<Record>(source.length, arena);
    if (copy == nullptr) return Fail(StatusOutOfMemory);
    CopyBytes(BytesBeside(copy), source.data, source.length);
    if constexpr (requires { copy->type; }) {
        copy->type = source.type;
    } else {
        copy->unusedBits = source.unusedBits;
    }
    *out = copy;
    return StatusOk;
}

Status CopyNode(const Asn1Item& item, const void* source, void** out, Arena& arena) {
    if (IsCopiedAsValue(item.kind)) return CopyRecord(*static_cast<const Asn1Value*>(source), out, arena);
    if (item.kind == Asn1KindBitString) return CopyRecord(*static_cast<const Asn1BitString*>(source), out, arena);
    if (item.kind == Asn1KindAny) return CopyRecord(*static_cast<const Asn1Any*>(source), out, arena);
    if (item.kind == Asn1KindChoice) return CopyChoice(item, *static_cast<const Asn1Choice*>(source), out, arena);
    if (IsList(item)) return CopyList(item, *static_cast<const Asn1List*>(source), out, arena);
    if (IsBlock(item)) return CopyBlock(item, static_cast<const Cell*>(source), out, arena);
    return Fail(StatusUnsupportedKind);
}

Status CopyChild(const Asn1Item* item, const void* source, void** out, Arena& arena) {
    return AnyNull(item, source) ? Fail(StatusBadArgument) : CopyIntoArena(*item, source, out, arena);
}

// ---- Freeing. A node's parts are freed before it, and nothing of a node is read after it ----------------------------

// Values of all kinds have their bytes at one place.
template <class Record>
[[gnu::always_inline]] inline void FreeRecord(Record* record, Releases& releases) {
    ReleaseBytes(record);
    releases.Add(record);
}

void FreeComposed(const Facts& facts, void* node, Releases& releases);
void FreeForeign(const Asn1Item& item, void* node, Releases& releases);

// The item's constructed bit decides first: an item that should have it and hasn't frees nothing.
[[gnu::always_inline]] inline void FreeNode(const Facts& facts, void* node, Releases& releases) {
    if (node == nullptr) return;
    if (facts.Is(Facts::kLeaf)) {
        FreeRecord(static_cast<Asn1Value*>(node), releases);
    } else if (facts.children != nullptr) {
        FreeComposed(facts, node, releases);
    } else if (facts.item->constructedBit != 0) {
        FreeForeign(*facts.item, node, releases);
    }
}

inline void FreeTable(Asn1List* list, Releases& releases) {
    if (list->items != nullptr) ReleaseListTable(list);
    releases.Add(list);
}

[[gnu::noinline]] void FreeComposed(const Facts& facts, void* node, Releases& releases) {
    if (facts.kind == Asn1KindSequence) {
        Cell* cell = static_cast<Cell*>(node);
        const Facts* const last = facts.children + facts.childCount;
        for (const Facts* field = facts.children; field != last; ++field, ++cell) FreeNode(*field, *cell, releases);
        releases.Add(node);
    } else if (facts.kind == Asn1KindChoice) {
        const Asn1Choice choice = *static_cast<Asn1Choice*>(node);
        releases.Add(node);
        if (choice.selected < facts.childCount) FreeNode(facts.children[choice.selected], choice.value, releases);
    } else {
        Asn1List* list = static_cast<Asn1List*>(node);
        Cell* const items = static_cast<Cell*>(list->items);
        for (uint32_t i = 0; items != nullptr && i < list->count; ++i) FreeNode(*facts.children, items[i], releases);
        FreeTable(list, releases);
    }
}

// A child of an item of another maker, which may be missing.
void FreeChild(const Asn1Item* item, void* node, Releases& releases) {
    if (item != nullptr) FreeNode(FactsOf(*item), node, releases);
}

[[gnu::noinline]] void FreeForeign(const Asn1Item& item, void* node, Releases& releases) {
    if (IsList(item)) {
        Asn1List* list = static_cast<Asn1List*>(node);
        for (uint32_t i = 0; list->items != nullptr && i < list->count; ++i) {
            FreeChild(ChildOf(item, 0), list->items[i], releases);
        }
        FreeTable(list, releases);
    } else if (item.kind == Asn1KindChoice) {
        const Asn1Choice choice = *static_cast<Asn1Choice*>(node);
        releases.Add(node);
        FreeChild(ChildOf(item, choice.selected), choice.value, releases);
    } else {
        Cell* block = static_cast<Cell*>(node);
        for (uint32_t i = 0; i < item.childCount; ++i) FreeChild(ChildOf(item, i), block[i], releases);
        releases.Add(block);
    }
}

// ---- Comparing ------------------------------------------------------------------------------------------------------

Status CompareBlocks(const Asn1Item& item, const Cell* left, const Cell* right, uint32_t* equal) {
    *equal = 1;
    for (uint32_t i = 0; i < item.childCount && *equal != 0; ++i) {
        const Status status = CompareAsn1Objects(ChildOf(item, i), left[i], right[i], equal);
        if (status != StatusOk) return status;
    }
    return StatusOk;
}

Status CompareLists(const Asn1Item& item, const Asn1List& left, const Asn1List& right, uint32_t* equal) {
    *equal = left.count == right.count ? 1 : 0;
    if (*equal == 0 || left.count == 0) return StatusOk;
    if (AnyNull(left.items, right.items)) return Fail(StatusBadArgument);
    for (uint32_t i = 0; i < left.count && *equal != 0; ++i) {
        const Status status = CompareAsn1Objects(ChildOf(item, 0), left.items[i], right.items[i], equal);
        if (status != StatusOk) return status;
    }
    return StatusOk;
}

Status CompareNodes(const Asn1Item& item, const void* left, const void* right, uint32_t* equal) {
    if (IsBlock(item)) {
        return CompareBlocks(item, static_cast<const Cell*>(left), static_cast<const Cell*>(right), equal);
    }
    if (IsList(item)) {
        return CompareLists(item, *static_cast<const Asn1List*>(left), *static_cast<const Asn1List*>(right), equal);
    }
    if (item.kind == Asn1KindBitString) {
        const auto& a = *static_cast<const Asn1BitString*>(left);
        const auto& b = *static_cast<const Asn1BitString*>(right);
        *equal = a.unusedBits == b.unusedBits && EqualRecords(a, b) ? 1 : 0;
        return StatusOk;
    }
    if (item.kind == Asn1KindEnumerated || !IsCopiedAsValue(item.kind)) return Fail(StatusUnsupportedKind);
    *equal = EqualRecords(*static_cast<const Asn1Value*>(left), *static_cast<const Asn1Value*>(right)) ? 1 : 0;
    return StatusOk;
}

// The slab of a tree of unknown size that is created or copied: most fit one.
constexpr size_t kSmallSlab = 512;

Status CreateInArena(const Asn1Item* item, void** out, uint32_t fill, Arena& arena) {
    if (AnyNull(item, out)) return Fail(StatusBadArgument);
    if ((item->itemFlags & Asn1FlagOptional) != 0) {
        if (item->defaultValue != nullptr) return CopyIntoArena(*item, item->defaultValue, out, arena);
        *static_cast<Cell*>(out) = nullptr;
        return StatusOk;
    }
    const uint8_t kind = item->kind;
    if (kind == Asn1KindBitString || IsValueKind(kind)) return CreatePrimitive(kind, out, fill, arena);
    *static_cast<Cell*>(out) = nullptr;
    if (IsBlock(*item)) return CreateBlock(*item, out, fill, arena);
    if (kind == Asn1KindChoice) return StoreNode(NewRecord<Asn1Choice>(arena), out);
    if (kind == Asn1KindAny) return StoreNode(NewRecord<Asn1Any>(arena), out);
    // A block of its own: programs take empty lists out of a new tree and end them by themselves.
    if (IsList(*item)) return StoreNode(AllocAsn1List(), out);
    return Fail(StatusUnsupportedKind);
}

}  // namespace

Status CopyIntoArena(const Asn1Item& item, const void* source, void** out, Arena& arena) {
    void* copy = nullptr;
    const Status status = CopyNode(item, source, &copy, arena);
    *static_cast<Cell*>(out) = copy;
    return status;
}

Status CopyAsn1Object(const Asn1Item* item, const void* source, void** out) {
    if (AnyNull(item, source, out)) return Fail(StatusBadArgument);
    Arena arena(item->constructedBit != 0 ? kSmallSlab : 0);
    return CopyIntoArena(*item, source, out, arena);
}

Status CreateInSlab(const Asn1Item& item, size_t units, void** out, uint32_t fill) {
    if (out == nullptr) return Fail(StatusBadArgument);
    const bool hasOneNode = !IsBlock(item) || units <= Arena::UnitsOf(BlockSize(item));
    Arena arena(hasOneNode ? 0 : Arena::SizeFor(units));
    return CreateInArena(&item, out, fill, arena);
}

void FreeWithFacts(const Facts& facts, void* node) {
    Releases releases;
    FreeNode(facts, node, releases);
}

}  // namespace tlvforge

Status CreateAsn1Object(const Asn1Item* item, void** out, uint32_t fill) {
    Arena arena(item != nullptr && IsBlock(*item) ? kSmallSlab : 0);
    return CreateInArena(item, out, fill, arena);
}

Status CreateOptionalAsn1Sequence(const Asn1Item* item, void** out, uint32_t fill) {
    if (AnyNull(item, out)) return Fail(StatusBadArgument);
    if ((item->itemFlags & Asn1FlagOptional) == 0 || !IsBlock(*item)) return Fail(StatusBadArgument);
    *static_cast<Cell*>(out) = nullptr;
    Arena arena(kSmallSlab);
    return CreateBlock(*item, out, fill, arena);
}

Status FreeAsn1Object(const Asn1Item* item, void* node) {
    if (item != nullptr) FreeWithFacts(FactsOf(*item), node);
    return StatusOk;
}

Status CompareAsn1Objects(const Asn1Item* item, const void* left, const void* right, uint32_t* equal) {
    if (AnyNull(item, equal)) return Fail(StatusBadArgument);
    if (left == nullptr || right == nullptr) {
        *equal = left == right ? 1 : 0;
        return StatusOk;
    }
    return CompareNodes(*item, left, right, equal);
}
