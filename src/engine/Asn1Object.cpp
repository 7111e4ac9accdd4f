// Trees as a whole: create, copy, free, compare.

#include "engine/items.h"
#include "engine/nodes.h"

using namespace tlvforge;

namespace tlvforge {
namespace {

bool IsAbsentOrUnknown(uint8_t kind) { return kind == 0 || kind > Asn1KindSetOf; }

// NULL is left out on purpose: trees that hold one can't be copied or compared.
bool IsCopiedAsValue(uint8_t kind) { return kind != Asn1KindNull && IsValueKind(kind); }

bool IsBlock(const Asn1Item& item) { return item.kind == Asn1KindSequence || item.kind == Asn1KindSet; }

const Asn1Item* ChildOf(const Asn1Item& item, uint32_t index) {
    return index < item.childCount && item.children != nullptr ? item.children[index] : nullptr;
}

Cell* NewCells(const Asn1Item& item) {
    const size_t size = BlockSize(item);
    void* block = Allocate(size);
    if (block != nullptr) memset(block, 0, size);
    return static_cast<Cell*>(block);
}

Status StoreNode(void* node, void** out) {
    *out = node;
    return node == nullptr ? Fail(StatusOutOfMemory) : StatusOk;
}

Status CreateBlock(const Asn1Item& item, void** out, uint32_t fill) {
    Cell* block = NewCells(item);
    if (block == nullptr) return Fail(StatusOutOfMemory);
    for (uint32_t i = 0; i < item.childCount; ++i) {
        const Status status = CreateAsn1Object(ChildOf(item, i), &block[i], fill);
        if (status != StatusOk) {
            FreeAsn1Object(&item, block);
            return status;
        }
    }
    *out = block;
    return StatusOk;
}

Status CreatePrimitive(uint8_t kind, void** out, uint32_t fill) {
    // Not even a store: the caller's cell is zeroed by the block around it.
    if (fill == 0) return StatusOk;
    if (kind == Asn1KindBitString) return StoreNode(NewRecord<Asn1BitString>(), out);
    Asn1Value* value = NewRecord<Asn1Value>();
    // An empty value has type 0 and not its kind, but for an object identifier.
    if (value != nullptr && kind == Asn1KindObjectIdentifier) value->type = kind;
    return StoreNode(value, out);
}

Status CopyBlock(const Asn1Item& item, const Cell* source, void** out) {
    Cell* block = NewCells(item);
    if (block == nullptr) return Fail(StatusOutOfMemory);
    for (uint32_t i = 0; i < item.childCount; ++i) {
        if (source[i] == nullptr) continue;
        const Status status = CopyAsn1Object(ChildOf(item, i), source[i], &block[i]);
        if (status != StatusOk) {
            FreeAsn1Object(&item, block);
            return status;
        }
    }
    *out = block;
    return StatusOk;
}

Status CopyChoice(const Asn1Item& item, const Asn1Choice& source, void** out) {
    if (source.selected >= item.childCount) return Fail(StatusBadAlternative);
    void* value = nullptr;
    const Status status = CopyAsn1Object(ChildOf(item, source.selected), source.value, &value);
    if (status != StatusOk) return status;
    Asn1Choice* copy = AllocAsn1Choice(source.selected, value);
    if (copy == nullptr) FreeAsn1Object(ChildOf(item, source.selected), value);
    return StoreNode(copy, out);
}

Status CopyElements(const Asn1Item& element, const Asn1List& source, Asn1List* copy) {
    for (uint32_t i = 0; i < source.count; ++i) {
        void* node = nullptr;
        Status status = CopyAsn1Object(&element, source.items[i], &node);
        if (status == StatusOk) {
            status = AddAsn1ListItem(copy, element, node);
            if (status != StatusOk) FreeAsn1Object(&element, node);
        }
        if (status != StatusOk) return status;
    }
    return StatusOk;
}

// The copy's sorted flag is that of a new list.
Status CopyList(const Asn1Item& item, const Asn1List& source, void** out) {
    const Asn1Item* element = ChildOf(item, 0);
    if (source.count != 0 && AnyNull(element, source.items)) return Fail(StatusBadArgument);
    Asn1List* copy = AllocAsn1List();
    if (copy == nullptr) return Fail(StatusOutOfMemory);
    const Status status = source.count == 0 ? StatusOk : CopyElements(*element, source, copy);
    if (status != StatusOk) {
        FreeAsn1Object(&item, copy);
        return status;
    }
    *out = copy;
    return StatusOk;
}

template <class Record>
Status CopyRecord(const Record& source, void** out) {
    if (HasLostBytes(&source)) return Fail(StatusAbsent);
    Record* copy = NewRecordWithBytes<Record>(source.length);
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

Status CopyNode(const Asn1Item& item, const void* source, void** out) {
    if (IsCopiedAsValue(item.kind)) return CopyRecord(*static_cast<const Asn1Value*>(source), out);
    if (item.kind == Asn1KindBitString) return CopyRecord(*static_cast<const Asn1BitString*>(source), out);
    if (item.kind == Asn1KindAny) return CopyRecord(*static_cast<const Asn1Any*>(source), out);
    if (item.kind == Asn1KindChoice) return CopyChoice(item, *static_cast<const Asn1Choice*>(source), out);
    if (IsList(item)) return CopyList(item, *static_cast<const Asn1List*>(source), out);
    if (IsBlock(item)) return CopyBlock(item, static_cast<const Cell*>(source), out);
    return Fail(StatusUnsupportedKind);
}

void FreeConstructed(const Asn1Item& item, void* node);

// The item's constructed bit decides first: an item that should have it and hasn't frees nothing.
inline void FreeNode(const Asn1Item& item, void* node) {
    if (item.constructedBit == 0 && IsValueKind(item.kind)) {
        ReleaseRecord(static_cast<Asn1Value*>(node));
    } else if (item.kind == Asn1KindAny) {
        ReleaseRecord(static_cast<Asn1Any*>(node));
    } else if (item.constructedBit != 0) {
        FreeConstructed(item, node);
    } else if (item.kind == Asn1KindBitString) {
        ReleaseRecord(static_cast<Asn1BitString*>(node));
    }
}

inline void FreeChild(const Asn1Item* item, void* node) {
    if (item != nullptr && node != nullptr) FreeNode(*item, node);
}

void FreeList(const Asn1Item* element, Asn1List* list) {
    if (list->items != nullptr) {
        for (uint32_t i = 0; i < list->count; ++i) FreeChild(element, list->items[i]);
        ReleaseListTable(list);
    }
    Release(list);
}

void FreeConstructed(const Asn1Item& item, void* node) {
    if (IsList(item)) {
        FreeList(ChildOf(item, 0), static_cast<Asn1List*>(node));
    } else if (item.kind == Asn1KindChoice) {
        Asn1Choice* choice = static_cast<Asn1Choice*>(node);
        FreeChild(ChildOf(item, choice->selected), choice->value);
        Release(choice);
    } else {
        Cell* block = static_cast<Cell*>(node);
        for (uint32_t i = 0; i < item.childCount; ++i) FreeChild(ChildOf(item, i), block[i]);
        Release(block);
    }
}

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

}  // namespace

Status CopyAsn1Object(const Asn1Item* item, const void* source, void** out) {
    if (AnyNull(item, source, out)) return Fail(StatusBadArgument);
    void* copy = nullptr;
    const Status status = IsAbsentOrUnknown(item->kind) ? Fail(StatusUnsupportedKind) : CopyNode(*item, source, &copy);
    *static_cast<Cell*>(out) = copy;
    return status;
}

}  // namespace tlvforge

Status CreateAsn1Object(const Asn1Item* item, void** out, uint32_t fill) {
    if (AnyNull(item, out)) return Fail(StatusBadArgument);
    if ((item->itemFlags & Asn1FlagOptional) != 0) {
        if (item->defaultValue != nullptr) return CopyAsn1Object(item, item->defaultValue, out);
        *static_cast<Cell*>(out) = nullptr;
        return StatusOk;
    }
    const uint8_t kind = item->kind;
    if (kind == Asn1KindBitString || IsValueKind(kind)) {
        return CreatePrimitive(kind, out, fill);
    }
    *static_cast<Cell*>(out) = nullptr;
    if (IsBlock(*item)) return CreateBlock(*item, out, fill);
    if (kind == Asn1KindChoice) return StoreNode(AllocAsn1Choice(), out);
    if (kind == Asn1KindAny) return StoreNode(NewRecord<Asn1Any>(), out);
    if (IsList(*item)) return StoreNode(AllocAsn1List(), out);
    return Fail(StatusUnsupportedKind);
}

Status CreateOptionalAsn1Sequence(const Asn1Item* item, void** out, uint32_t fill) {
    if (AnyNull(item, out)) return Fail(StatusBadArgument);
    if ((item->itemFlags & Asn1FlagOptional) == 0 || !IsBlock(*item)) return Fail(StatusBadArgument);
    *static_cast<Cell*>(out) = nullptr;
    return CreateBlock(*item, out, fill);
}

Status FreeAsn1Object(const Asn1Item* item, void* node) {
    FreeChild(item, node);
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
