// What the handles of lists have in common. A handle is the address of a cell: a block of its own, or the slot of a
// document, so that a field which the document lacks can be filled through it. Cells are structs of one member `list`.
// The item of a cell is that of the bare list: which tag the slot has in its document makes no difference here.
#pragma once

#include "engine/access.h"
#include "tlvforge/oid.h"

namespace tlvforge {

template <schema::ListCell Cell>
using ListIn = std::remove_pointer_t<decltype(Cell::list)>;

// Moves a list into a cell of its own.
template <schema::ListCell Cell>
Status WrapInCell(Tree<ListIn<Cell>>* list, Cell** out, Place place = Place::Here()) {
    void* block = Allocate(sizeof(Cell));
    if (block == nullptr) return Fail(StatusOutOfMemory, place);
    *out = new (block) Cell{list->Take()};
    return StatusOk;
}

template <schema::ListCell Cell>
Status CreateCell(Cell** out, Place place = Place::Here()) {
    *out = nullptr;
    Tree<ListIn<Cell>> list;
    if (const Status status = list.Create()) return status;
    return WrapInCell(&list, out, place);
}

// *out is stored on success only.
template <schema::ListCell Cell>
Status DecodeCell(const uint8_t* data, uint32_t length, Cell** out, Place place = Place::Here()) {
    Tree<ListIn<Cell>> list;
    if (const Status status = list.Decode(data, length)) return status;
    return WrapInCell(&list, out, place);
}

// An empty cell is StatusBadArgument, as the encoder takes it for a missing argument.
template <schema::ListCell Cell>
Status EncodeCell(const Cell* cell, uint8_t* buffer, uint32_t* length, Place place = Place::Here()) {
    return cell != nullptr ? EncodeTree(cell->list, buffer, length) : Fail(StatusBadArgument, place);
}

template <schema::ListCell Cell>
Status FreeCell(Cell* cell) {
    if (cell == nullptr) return StatusOk;
    FreeTree(cell->list);
    Release(cell);
    return StatusOk;
}

template <schema::ListCell Cell>
Status ClearCell(Cell* cell, Place place = Place::Here()) {
    if (cell == nullptr) return Fail(StatusBadArgument, place);
    if (cell->list != nullptr) ClearList(cell->list);
    return StatusOk;
}

// Leaves an empty cell.
template <schema::ListCell Cell>
Status EmptyCell(Cell* cell, Place place = Place::Here()) {
    if (cell == nullptr) return Fail(StatusBadArgument, place);
    FreeField(&cell->list);
    return StatusOk;
}

template <schema::ListCell Cell>
Status GetCellCount(const Cell* cell, uint32_t* count, Place place = Place::Here()) {
    if (AnyNull(cell, count)) return Fail(StatusBadArgument, place);
    *count = GetAsn1ListLength(cell->list);
    return StatusOk;
}

template <schema::ListCell Cell>
Status SetCellSorted(Cell* cell, uint32_t sorted, Place place = Place::Here()) {
    if (cell == nullptr) return Fail(StatusBadArgument, place);
    SetAsn1ListSorted(cell->list, sorted);
    return StatusOk;
}

// Whether a member has an OID in a field. Null members have none.
template <class Member>
bool HasOid(const ListOf<Member>* list, uint32_t index, Asn1Value* Member::*field, const uint8_t* oid) {
    const Member* member = list->At(index);
    return member != nullptr && IsOidAndAsn1ObjectIdentifierEquals(oid, member->*field) != 0;
}

// The first member that has an OID in a field. StatusNotFound without one, also for a null list.
template <class Member>
Status FindByOid(const ListOf<Member>* list, Asn1Value* Member::*field, const uint8_t* oid, uint32_t* index,
                 Place place = Place::Here()) {
    for (uint32_t i = 0; i < GetAsn1ListLength(list); ++i) {
        if (!HasOid(list, i, field, oid)) continue;
        *index = i;
        return StatusOk;
    }
    return Fail(StatusNotFound, place);
}

}  // namespace tlvforge
