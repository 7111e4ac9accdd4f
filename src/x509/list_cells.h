// What the handles of lists have in common. A handle is the address of a cell: a block of its own, or the slot of a
// document, so that a field which the document lacks can be filled through it. Cells are structs of one member `list`.
// The item of a cell is that of the bare list: which tag the slot has in its document makes no difference here.
// Failures are recorded at the place of the caller.
#pragma once

#include "engine/nodes.h"
#include "tlvforge/oid.h"

namespace tlvforge {

template <class T>
using ListOfCell = NodeOf<std::remove_pointer_t<decltype(T::list)>>;

// Moves a list into a cell of its own.
template <class T>
Status WrapInCell(Tree<ListOfCell<T>>* list, T** out, Place place) {
    void* block = Allocate(sizeof(T));
    if (block == nullptr) return Fail(StatusOutOfMemory, place);
    *out = new (block) T{list->Take()};
    return StatusOk;
}

template <class T>
Status CreateCell(T** out, Place place = Place::Here()) {
    if (out == nullptr) return Fail(StatusBadArgument, place);
    *out = nullptr;
    Tree<ListOfCell<T>> list;
    const Status status = list.Create();
    return status == StatusOk ? WrapInCell(&list, out, place) : status;
}

// *out is stored on success only.
template <class T>
Status DecodeCell(const uint8_t* data, uint32_t length, T** out, Place place = Place::Here()) {
    if (AnyNull(data, out)) return Fail(StatusBadArgument, place);
    Tree<ListOfCell<T>> list;
    const Status status = list.Decode(data, length);
    return status == StatusOk ? WrapInCell(&list, out, place) : status;
}

// An empty cell is 32, as the encoder takes it for a missing argument.
template <class T>
Status EncodeCell(const T* cell, uint8_t* buffer, uint32_t* length, Place place = Place::Here()) {
    if (cell == nullptr) return Fail(StatusBadArgument, place);
    return EncodeTree(cell->list, buffer, length);
}

template <class T>
Status FreeCell(T* cell) {
    if (cell == nullptr) return StatusOk;
    FreeTree(cell->list);
    Release(cell);
    return StatusOk;
}

template <class T>
Status ClearCell(T* cell, Place place = Place::Here()) {
    if (cell == nullptr) return Fail(StatusBadArgument, place);
    if (cell->list != nullptr) ClearList(cell->list);
    return StatusOk;
}

// Leaves an empty cell.
template <class T>
Status EmptyCell(T* cell, Place place = Place::Here()) {
    if (cell == nullptr) return Fail(StatusBadArgument, place);
    FreeField(&cell->list);
    return StatusOk;
}

template <class T>
Status GetCellCount(const T* cell, uint32_t* count, Place place = Place::Here()) {
    if (AnyNull(cell, count)) return Fail(StatusBadArgument, place);
    *count = GetAsn1ListLength(cell->list);
    return StatusOk;
}

template <class T>
Status SetCellSorted(T* cell, uint32_t sorted, Place place = Place::Here()) {
    if (cell == nullptr) return Fail(StatusBadArgument, place);
    SetAsn1ListSorted(cell->list, sorted);
    return StatusOk;
}

// Makes the list where there is none.
template <class List>
Status NeedList(List** list, Place place = Place::Here()) {
    if (*list == nullptr) *list = AllocList<List>();
    return *list == nullptr ? Fail(StatusOutOfMemory, place) : StatusOk;
}

// Whether a member has an OID in a field. Null members have none.
template <class Member>
bool HasOid(const ListOf<Member>* list, uint32_t index, Asn1Value* Member::*field, const uint8_t* oid) {
    const Member* member = list->At(index);
    return member != nullptr && IsOidAndAsn1ObjectIdentifierEquals(oid, member->*field) != 0;
}

// The first member that has an OID in a field. Status 322 without one, also for null.
template <class Member>
Status FindByOid(const ListOf<Member>* list, Asn1Value* Member::*field, const uint8_t* oid, uint32_t* index,
                 Place place = Place::Here()) {
    const uint32_t count = GetAsn1ListLength(list);
    for (uint32_t i = 0; i < count; ++i) {
        if (!HasOid(list, i, field, oid)) continue;
        *index = i;
        return StatusOk;
    }
    return Fail(StatusNotFound, place);
}

}  // namespace tlvforge
