#include "engine/nodes.h"

using namespace tlvforge;

namespace tlvforge {
namespace {

void ReleaseTable(Asn1List* list) {
    if (list->items != reinterpret_cast<void**>(list + 1)) Release(list->items);
}

}  // namespace

Asn1List* AllocAsn1List() {
    Asn1List* list = NewRecord<Asn1List>();
    if (list != nullptr) list->sorted = 1;
    return list;
}

Status GrowAsn1List(Asn1List* list, const Asn1Item& item, uint64_t capacity) {
    void* table = capacity <= INT32_MAX / sizeof(void*) ? Allocate(capacity * sizeof(void*)) : nullptr;
    if (table == nullptr) {
        ClearAsn1List(list, item);
        ReleaseTable(list);
        list->items = nullptr;
        list->capacity = 0;
        return Fail(StatusOutOfMemory);
    }
    if (list->count != 0) memcpy(table, list->items, list->count * sizeof(void*));
    ReleaseTable(list);
    list->items = static_cast<void**>(table);
    list->capacity = static_cast<uint32_t>(capacity);
    return StatusOk;
}

// The first table is small because most lists are short; later ones grow fast, for the sake of large CRLs.
Status AddAsn1ListItem(Asn1List* list, const Asn1Item& item, void* element) {
    if (list == nullptr) return Fail(StatusBadArgument);
    if (list->count == list->capacity) {
        const uint64_t capacity = list->capacity == 0 ? kFirstSlots : uint64_t{list->capacity} * 3 / 2 + 200;
        const Status status = GrowAsn1List(list, item, capacity);
        if (status != StatusOk) return status;
    }
    static_cast<Cell*>(list->items)[list->count++] = element;
    return StatusOk;
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

Status FindListMember(const Asn1List* list, uint32_t index, void** member, Place place) {
    if (AnyNull(list, member) || index >= list->count) return Fail(StatusBadArgument, place);
    if (list->items == nullptr || list->items[index] == nullptr) return Fail(StatusAbsent, place);
    *static_cast<Cell*>(member) = list->items[index];
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
