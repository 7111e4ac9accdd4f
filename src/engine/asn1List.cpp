#include "engine/nodes.h"

using namespace tlvforge;

namespace tlvforge {

void ReleaseListTable(Asn1List* list) {
    if (list->items != reinterpret_cast<void**>(list + 1)) ReleaseBlock(list->items);
}

Asn1List* AllocAsn1List() {
    Asn1List* list = NewRecord<Asn1List>();
    if (list != nullptr) list->sorted = 1;
    return list;
}

Asn1List* NewListWithTable(uint32_t count, Arena& arena) {
    uint64_t slots = NextSlots(0);
    if (count != 0 && count <= slots) return NewShortList(arena);
    Asn1List* list = NewRecord<Asn1List>(arena);
    if (list == nullptr) return nullptr;
    list->sorted = 1;
    if (count == 0) return list;
    while (slots < count) slots = NextSlots(slots);
    list->items = static_cast<void**>(Allocate(slots * sizeof(void*)));
    list->capacity = static_cast<uint32_t>(slots);
    if (list->items != nullptr) return list;
    Release(list);
    return nullptr;
}

Status ReserveAsn1ListItem(Asn1List* list) {
    if (list->count != list->capacity) return StatusOk;
    const uint64_t capacity = NextSlots(list->capacity);
    void* table = capacity <= INT32_MAX / sizeof(void*) ? Allocate(capacity * sizeof(void*)) : nullptr;
    if (table == nullptr) return Fail(StatusOutOfMemory);
    if (list->count != 0) memcpy(table, list->items, list->count * sizeof(void*));
    ReleaseListTable(list);
    list->items = static_cast<void**>(table);
    list->capacity = static_cast<uint32_t>(capacity);
    return StatusOk;
}

Status AddAsn1ListItem(Asn1List* list, const Asn1Item& item, void* element) {
    if (list == nullptr) return Fail(StatusBadArgument);
    const Status status = ReserveAsn1ListItem(list);
    if (status != StatusOk) {
        ClearAsn1List(list, item);
        ReleaseListTable(list);
        list->items = nullptr;
        list->capacity = 0;
        return status;
    }
    static_cast<Cell*>(list->items)[list->count++] = element;
    return StatusOk;
}

Status AddAsn1ListItemUnique(Asn1List* list, const Asn1Item& item, void* element) {
    if (AnyNull(list, element)) return Fail(StatusBadArgument);
    uint32_t size = 0;
    Status status = GetAsn1EncodedValue(element, &item, nullptr, &size);
    if (status != StatusOk) return status;
    const Block encoding(size), member(size);
    if (!encoding || !member) return Fail(StatusOutOfMemory);
    uint32_t length = size;
    status = GetAsn1EncodedValue(element, &item, encoding.Bytes(), &length);
    for (uint32_t i = 0; status == StatusOk && list->items != nullptr && i < list->count; ++i) {
        status = GetAsn1EncodedValue(list->items[i], &item, nullptr, &length);
        if (status != StatusOk || length != size) continue;
        status = GetAsn1EncodedValue(list->items[i], &item, member.Bytes(), &length);
        if (status == StatusOk && memcmp(encoding.Bytes(), member.Bytes(), size) == 0) return Fail(StatusDuplicateItem);
    }
    return status == StatusOk ? AddAsn1ListItem(list, item, element) : status;
}

Status RemoveAsn1ListItem(Asn1List* list, uint32_t index, const Asn1Item& item) {
    if (list == nullptr || index >= list->count || list->items == nullptr) return Fail(StatusBadArgument);
    FreeAsn1Object(&item, list->items[index]);
    --list->count;
    memmove(list->items + index, list->items + index + 1, (list->count - index) * sizeof(void*));
    return StatusOk;
}

void ClearAsn1List(Asn1List* list, const Asn1Item& item) {
    for (uint32_t i = 0; list->items != nullptr && i < list->count; ++i) FreeAsn1Object(&item, list->items[i]);
    list->count = 0;
}

Status GetListCount(const Asn1List* list, uint32_t* count, Place place) {
    if (AnyNull(list, count)) return Fail(StatusBadArgument, place);
    *count = list->count;
    return StatusOk;
}

}  // namespace tlvforge

Status GetAsn1ListItem(const Asn1List* list, int32_t index, void** element) {
    if (AnyNull(list, element) || index < 0) return Fail(StatusBadArgument);
    if (static_cast<uint32_t>(index) >= list->count || list->items == nullptr) return Fail(StatusBadArgument);
    *static_cast<Cell*>(element) = list->items[index];
    return StatusOk;
}

uint32_t GetAsn1ListLength(const Asn1List* list) { return list == nullptr ? 0 : list->count; }

void SetAsn1ListSorted(Asn1List* list, uint32_t sorted) {
    if (list != nullptr) list->sorted = sorted;
}
