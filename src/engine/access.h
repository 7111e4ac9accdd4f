// The one way from the record of an export to a field, and what is done with a field there.
//
//     Status GetCertificateVersion(const Certificate* certificate, int32_t* version) {
//         if (AnyNull(certificate, version)) return Fail(StatusBadArgument);
//         return GetInt32(At<&Certificate::tbsCertificate, &TBSCertificate::version>(certificate), version);
//     }
//
// The arguments are checked on a line of their own, an index among them. What the document lacks is StatusAbsent at the
// line that names the path, so that the failure record tells the two apart.
#pragma once

#include "engine/nodes.h"
#include "engine/oids.h"
#include "engine/outputs.h"

namespace tlvforge {

// A node of a document, or null where the document lacks it or a record on the way to it. Absence is recorded at the
// place of the caller.
template <class Node>
struct Part {
    Node* node;
    Place place;

    explicit operator bool() const { return node != nullptr; }
    Node* operator->() const { return node; }
    Status Absent() const { return Fail(StatusAbsent, place); }
};

// A part that can be replaced: the cell that holds it, null where the document lacks a record on the way.
template <class Node>
struct Slot : Part<Node> {
    Node** cell;
};

namespace access {

// The part that a cell holds. The cell of a list that has handles is itself what is handed out.
template <class Node>
Slot<Node> PartIn(Node** cell, Place place) {
    return {{cell != nullptr ? *cell : nullptr, place}, cell};
}
template <class Node>
Part<Node> PartIn(Node* const* cell, Place place) {
    return {cell != nullptr ? *cell : nullptr, place};
}
template <schema::ListCell Cell>
Part<Cell> PartIn(Cell* cell, Place place) {
    return {cell, place};
}
template <schema::ListCell Cell>
Part<Cell> PartIn(const Cell* cell, Place place) {
    return {const_cast<Cell*>(cell), place};
}

template <auto Member, auto... Rest, class Record>
constexpr auto CellOf(Record* record) {
    if constexpr (sizeof...(Rest) == 0) {
        return record != nullptr ? &(record->*Member) : nullptr;
    } else {
        return CellOf<Rest...>(record != nullptr ? record->*Member : nullptr);
    }
}

}  // namespace access

// The field at the end of a path of members. The record may be null.
template <auto... Members, class Record>
auto At(Record* record, Place place = Place::Here()) {
    return access::PartIn(access::CellOf<Members...>(record), place);
}

// A member of a list whose index has been checked with the arguments: HasIndex.
template <class Node>
Part<Node> MemberAt(const ListOf<Node>* list, uint32_t index, Place place = Place::Here()) {
    return {list->items != nullptr ? list->At(index) : nullptr, place};
}

inline bool HasIndex(const Asn1List* list, uint32_t index) { return list != nullptr && index < list->count; }

// ---- Reading --------------------------------------------------------------------------------------------------------

// Lends a node, which lives as long as its tree.
template <class Node>
Status Borrow(const Part<Node>& part, std::type_identity_t<Node>** out) {
    if (!part) return part.Absent();
    *out = part.node;
    return StatusOk;
}

inline Status GetInt32(const Part<Asn1Value>& field, int32_t* number) {
    return field ? GetAsn1Int32(field.node, number) : field.Absent();
}

// An absent number leaves what is there.
inline Status GetOptionalInt32(const Asn1Value* field, int32_t* number) {
    return field != nullptr ? GetAsn1Int32(field, number) : StatusOk;
}

// Content bytes of a value, or a whole captured element, by the output-buffer rule.
template <class Node>
Status GetBytes(const Part<Node>& field, uint8_t* buffer, uint32_t* length) {
    static_assert(std::is_same_v<Node, Asn1Value> || std::is_same_v<Node, Asn1Any>);
    return field ? GetAsn1Value(field.node, buffer, length) : field.Absent();
}

// Content bytes of a field that is optional in its record: the length 0 without it.
inline Status GetOptionalBytes(const Slot<Asn1Value>& field, uint8_t* buffer, uint32_t* length) {
    return field.cell != nullptr ? GetOptionalBytes(field.node, {buffer, length}) : field.Absent();
}

inline Status GetOid(const Part<Asn1Value>& field, uint8_t* oid, uint32_t* length) {
    return field ? GetAsn1Oid(field.node, oid, length) : field.Absent();
}

inline Status GetBits(const Part<Asn1BitString>& field, uint8_t* buffer, uint32_t* length,
                      uint8_t* unusedBits = nullptr) {
    return field ? GetAsn1BitString(field.node, unusedBits, buffer, length) : field.Absent();
}

template <class Node>
Status Encode(const Part<Node>& part, uint8_t* buffer, uint32_t* length) {
    return part ? EncodeTree(part.node, buffer, length) : part.Absent();
}

// A member of a list that is looked for before the index is checked: StatusAbsent at the line of the path, then
// StatusBadArgument at the line of this call. A null member is absent like the list.
template <class List>
Status GetMember(const Part<List>& list, uint32_t index, typename List::Element** member, Place place = Place::Here()) {
    if (!list) return list.Absent();
    if (index >= list->count) return Fail(StatusBadArgument, place);
    return Borrow(MemberAt(list.node, index, list.place), member);
}

// Members of a list that has to be there.
template <class List>
Status GetCount(const Part<List>& list, uint32_t* count) {
    if (!list) return list.Absent();
    *count = list->count;
    return StatusOk;
}

// Members of a list that is empty where it isn't there.
template <class List>
Status GetOptionalCount(const Part<List>& list, uint32_t* count) {
    *count = GetAsn1ListLength(list.node);
    return StatusOk;
}

// ---- Changing -------------------------------------------------------------------------------------------------------

inline Status SetInt32(const Slot<Asn1Value>& field, int32_t number) {
    return field.cell != nullptr ? SetAsn1Int32Field(field.cell, number) : field.Absent();
}

inline Status SetBytes(const Slot<Asn1Value>& field, uint32_t kind, const uint8_t* data, uint32_t length) {
    return field.cell != nullptr ? SetAsn1ValueField(field.cell, kind, data, length) : field.Absent();
}

// Null bytes leave the field as it is.
inline Status SetOptionalBytes(Asn1Value** field, uint32_t kind, Bytes bytes) {
    return bytes.data != nullptr ? SetAsn1ValueField(field, kind, bytes.data, bytes.length) : StatusOk;
}

inline Status SetOid(const Slot<Asn1Value>& field, const uint8_t* oid) {
    return field.cell != nullptr ? ReplaceOidField(field.cell, oid) : field.Absent();
}

// Whole bytes into the record that is there, or into a new one.
inline Status SetBits(const Slot<Asn1BitString>& field, const uint8_t* data, uint32_t length) {
    return field.cell != nullptr ? SetAsn1BitStringField(field.cell, data, length) : field.Absent();
}

// A new record in any case: after status 1 the field is empty.
inline Status ReplaceBits(const Slot<Asn1BitString>& field, const uint8_t* data, uint32_t length,
                          uint8_t unusedBits = 0) {
    if (field.cell == nullptr) return field.Absent();
    return ReplaceField(field.cell, AllocAsn1BitString(data, length, unusedBits), field.place);
}

template <class Node>
Status Remove(const Slot<Node>& field) {
    if (field.cell == nullptr) return field.Absent();
    FreeField(field.cell);
    return StatusOk;
}

// Makes an empty list of a type without a name where there is none.
template <class List>
Status EnsureList(List** cell, Place place = Place::Here()) {
    if (*cell == nullptr) *cell = AllocList<List>();
    return *cell != nullptr ? StatusOk : Fail(StatusOutOfMemory, place);
}

// Makes an empty list, or a record with empty required fields, where there is none.
template <class Node>
Status Ensure(Node** cell, uint32_t fill = 1) {
    return *cell != nullptr ? StatusOk : CreateTree(cell, fill);
}

// The remove function of a list: a null list and a bad index are StatusBadArgument.
template <class Node>
Status RemoveListMember(ListOf<Node>* list, uint32_t index, Place place = Place::Here()) {
    if (list == nullptr) return Fail(StatusBadArgument, place);
    return RemoveMember(list, index);
}

// Frees the members of a list that has to be there.
template <class List>
Status Clear(const Part<List>& list) {
    if (!list) return list.Absent();
    ClearList(list.node);
    return StatusOk;
}

}  // namespace tlvforge
