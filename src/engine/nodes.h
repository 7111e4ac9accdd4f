// Internal operations on the node records, and the owners of trees.
//
// A record that is decoded or copied lies in one block with its bytes right after it; allocators and setters
// give the bytes a block of their own. Releasing tells the two apart by the address, so a record's block is
// always larger than the record alone, and no other block can begin right after a record.
#pragma once

#include <string.h>

#include <new>

#include "engine/failure.h"
#include "engine/tmalloc.h"
#include "tlvforge/asn1.h"

namespace tlvforge {

// A pointer cell of a block or a table. The engine sees cells untyped where accessors see typed pointers.
using Cell [[gnu::may_alias]] = void*;

// Lets a typed out-pointer be handed to the engine, which stores through Cell.
template <class T>
void** Untyped(T** out) {
    return reinterpret_cast<void**>(out);
}

template <class Record>
uint8_t* BytesBeside(Record* record) {
    return reinterpret_cast<uint8_t*>(record + 1);
}

// A zeroed record without bytes.
template <class Record>
Record* NewRecord() {
    void* block = Allocate(sizeof(Record) + 1);
    if (block == nullptr) return nullptr;
    return new (block) Record{};
}

// A record with room for `length` bytes beside it, which the caller fills.
template <class Record>
Record* NewRecordWithBytes(uint32_t length) {
    void* block = Allocate(sizeof(Record) + (length != 0 ? length : 1));
    if (block == nullptr) return nullptr;
    Record* record = new (block) Record{};
    record->length = length;
    if (length != 0) record->data = BytesBeside(record);
    return record;
}

// Most values are a few bytes: those are copied without a call.
inline void CopyBytes(uint8_t* to, const uint8_t* from, uint32_t length) {
    if (length > 16) {
        memcpy(to, from, length);
    } else if (length >= 8) {
        uint64_t first, last;
        memcpy(&first, from, 8);
        memcpy(&last, from + length - 8, 8);
        memcpy(to, &first, 8);
        memcpy(to + length - 8, &last, 8);
    } else if (length >= 4) {
        uint32_t first, last;
        memcpy(&first, from, 4);
        memcpy(&last, from + length - 4, 4);
        memcpy(to, &first, 4);
        memcpy(to + length - 4, &last, 4);
    } else if (length != 0) {
        to[0] = from[0];
        to[length / 2] = from[length / 2];
        to[length - 1] = from[length - 1];
    }
}

// A copy of the bytes in a block of their own. Null for length 0 too.
inline uint8_t* CopyOfBytes(const uint8_t* data, uint32_t length) {
    if (length == 0) return nullptr;
    uint8_t* copy = static_cast<uint8_t*>(Allocate(length));
    if (copy != nullptr) CopyBytes(copy, data, length);
    return copy;
}

// A value record with a copy of the bytes beside it, of any kind but BIT STRING. Null when out of memory.
template <class Record>
Record* NewValue(uint32_t type, const uint8_t* data, uint32_t length) {
    Record* record = NewRecordWithBytes<Record>(length);
    if (record == nullptr) return nullptr;
    record->type = type;
    CopyBytes(BytesBeside(record), data, length);
    return record;
}

template <class Record>
void ReleaseBytes(Record* record) {
    if (record->data != BytesBeside(record)) Release(record->data);
}

template <class Record>
void ReleaseRecord(Record* record) {
    if (record == nullptr) return;
    ReleaseBytes(record);
    Release(record);
}

// True for a record whose bytes were lost to a failed allocation: it must not be read.
template <class Record>
bool HasLostBytes(const Record* record) {
    return record->data == nullptr && record->length != 0;
}

// A value record for a caller who may end it himself, with free for the bytes and free for the record: two blocks.
// Null when out of memory, and for lost bytes.
template <class Record>
Record* NewValueInTwoBlocks(uint32_t type, const uint8_t* data, uint32_t length) {
    if (data == nullptr && length != 0) return nullptr;
    Record* record = NewRecord<Record>();
    if (record == nullptr) return nullptr;
    *record = {type, length, CopyOfBytes(data, length)};
    if (!HasLostBytes(record)) return record;
    Release(record);
    return nullptr;
}

inline bool SameBytes(const void* left, uint32_t leftLength, const void* right, uint32_t rightLength) {
    if (leftLength != rightLength || leftLength == 0) return leftLength == rightLength;
    return *static_cast<const uint8_t*>(left) == *static_cast<const uint8_t*>(right) &&
           (leftLength == 1 || memcmp(left, right, leftLength) == 0);
}

template <class Record>
bool EqualRecords(const Record& left, const Record& right) {
    if (HasLostBytes(&left) || HasLostBytes(&right)) return false;
    return SameBytes(left.data, left.length, right.data, right.length);
}

// Bytes of the block of a SEQUENCE: an item whose size and child count disagree gets the larger.
inline size_t BlockSize(const Asn1Item& item) {
    const size_t cells = item.childCount * sizeof(void*);
    return cells > item.valueSize ? cells : item.valueSize;
}

// Asn1Value. Allocators give null when out of memory and record nothing; setters record.
Asn1Value* AllocAsn1Value(uint32_t type, const uint8_t* data, uint32_t length);
Status SetAsn1Value(Asn1Value* value, uint32_t type, const uint8_t* data, uint32_t length);
// Fills an empty field with a new value, or sets the one that is there.
Status SetAsn1ValueField(Asn1Value** field, uint32_t type, const uint8_t* data, uint32_t length);
Status SetAsn1BooleanField(Asn1Value** field, int32_t flag);
Status SetAsn1Int32Field(Asn1Value** field, int32_t number);

// Asn1Any.
Asn1Any* AllocAsn1Any(uint32_t type, const uint8_t* data, uint32_t length);
Asn1Any* AllocAsn1AnyFromContent(uint8_t tagClass, uint8_t constructedBit, uint32_t tagNumber, const uint8_t* content,
                                 uint32_t length);

// Asn1BitString. A set that fails its checks leaves an empty record; `trim` drops trailing zero bits.
Asn1BitString* AllocAsn1BitString(const uint8_t* data, uint32_t length, uint8_t unusedBits, bool trim = false);
Status SetAsn1BitString(Asn1BitString* bitString, const uint8_t* data, uint32_t length, uint8_t unusedBits,
                        bool trim = false);
// Whole bytes into an empty field, or into the record that is there.
Status SetAsn1BitStringField(Asn1BitString** field, const uint8_t* data, uint32_t length);
// Flag words: named bits as a u32 whose bytes, lowest first, are the bytes of the BIT STRING.
Asn1BitString* AllocAsn1BitStringFromFlags(uint32_t flags);
uint32_t FlagsOfAsn1BitString(const Asn1BitString* bitString);

// Asn1Choice.
Asn1Choice* AllocAsn1Choice(uint32_t selected = 0, void* value = nullptr);
// Frees the value; the selector remains.
Status ClearAsn1Choice(const Asn1Item& item, Asn1Choice* choice);

// Asn1List.
// Slots of the table that follows one of `slots`, 0 being no table: the first is small because most lists are short,
// later ones grow fast, for the sake of large CRLs.
constexpr uint64_t NextSlots(uint64_t slots) { return slots == 0 ? 10 : slots + 200 + slots / 2; }
Asn1List* AllocAsn1List();
// The first table may lie beside the record, in its block.
void ReleaseListTable(Asn1List* list);
// Makes room for one element more. After a failure the list is as it was.
Status ReserveAsn1ListItem(Asn1List* list);
// Appends and adopts, with the element's item. When the table can't grow (1), the list loses all its elements, which
// are freed, and the new element is still the caller's.
Status AddAsn1ListItem(Asn1List* list, const Asn1Item& item, void* element);
// Appends and adopts unless a member has the same encoding: 344, and the element is still the caller's, as after any
// failure.
Status AddAsn1ListItemUnique(Asn1List* list, const Asn1Item& item, void* element);
// Index at or beyond the count: 32. The later elements move down.
Status RemoveAsn1ListItem(Asn1List* list, uint32_t index, const Asn1Item& item);
// Frees the elements and keeps the table.
void ClearAsn1List(Asn1List* list, const Asn1Item& item);

// Deep copy of any tree. *out is null after a failure.
Status CopyAsn1Object(const Asn1Item* item, const void* source, void** out);

template <class T>
Status CopyTree(const Asn1Item& item, const T* source, T** out) {
    return CopyAsn1Object(&item, source, Untyped(out));
}

// Sole owner of a tree, so that every return is a clean one.
template <class T>
class Tree {
public:
    explicit Tree(const Asn1Item& item, T* node = nullptr) : item_(item), node_(node) {}
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;
    ~Tree() { FreeAsn1Object(&item_, node_); }

    T* Get() const { return node_; }
    T* operator->() const { return node_; }
    explicit operator bool() const { return node_ != nullptr; }

    Status Create(uint32_t fill = 0) { return CreateAsn1Object(&item_, Untyped(&node_), fill); }
    Status Decode(const uint8_t* data, uint32_t length) {
        uint32_t consumed = 0;
        return Asn1DecodeItem(data, length, &item_, Untyped(&node_), &consumed);
    }
    Status CopyOf(const T* source) { return CopyTree(item_, source, &node_); }
    Status Encode(uint8_t* buffer, uint32_t* length) const {
        return GetAsn1EncodedValue(node_, &item_, buffer, length);
    }

    // Hands the tree over.
    T* Take() {
        T* node = node_;
        node_ = nullptr;
        return node;
    }
    // Adds the tree to a list, which owns it on success.
    Status MoveTo(Asn1List* list) {
        const Status status = AddAsn1ListItem(list, item_, node_);
        if (status == StatusOk) node_ = nullptr;
        return status;
    }

private:
    const Asn1Item& item_;
    T* node_;
};

// DecodeX of every document: one element at the front, what follows it is ignored.
template <class T>
Status DecodeTree(const Asn1Item& item, const uint8_t* data, uint32_t length, T** out) {
    uint32_t consumed = 0;
    return Asn1DecodeItem(data, length, &item, Untyped(out), &consumed);
}

// Frees what a field holds, and empties the field.
template <class T>
void FreeField(const Asn1Item& item, T** field) {
    FreeAsn1Object(&item, *field);
    *field = nullptr;
}

// What the lists of the documents have in common: count, member by index, removal.

// Either null: 32.
Status GetListCount(const Asn1List* list, uint32_t* count, Place place = Place::Here());

// Checks the list (32) and the index (32), and lends the member (311 when it is null).
Status FindListMember(const Asn1List* list, uint32_t index, void** member, Place place);

template <class T>
Status GetListMember(const Asn1List* list, uint32_t index, T** member, Place place = Place::Here()) {
    return FindListMember(list, index, Untyped(member), place);
}

}  // namespace tlvforge
