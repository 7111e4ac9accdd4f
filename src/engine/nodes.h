// Internal operations on the node records, and the owners of trees.
//
// A record that is decoded or copied lies in one block with its bytes right after it; allocators and setters
// give the bytes a block of their own. Releasing tells the two apart by the address, so a record's block is
// always larger than the record alone, and no other block can begin right after a record.
#pragma once

#include <string.h>

#include <new>

#include "engine/arena.h"
#include "engine/failure.h"
#include "engine/items.h"

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

template <class Record>
const uint8_t* BytesBeside(const Record* record) {
    return reinterpret_cast<const uint8_t*>(record + 1);
}

// A zeroed record without bytes, from an arena or a block of its own.
template <class Record, class Source = Heap>
Record* NewRecord(Source&& source = {}) {
    void* block = source.Allocate(sizeof(Record) + 1);
    if (block == nullptr) return nullptr;
    return new (block) Record{};
}

// A record with room for `length` bytes beside it, which the caller fills.
template <class Record, class Source = Heap>
Record* NewRecordWithBytes(uint32_t length, Source&& source = {}) {
    void* block = source.Allocate(sizeof(Record) + (length != 0 ? length : 1));
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

template <class Record>
void ReleaseBytes(Record* record) {
    if (record->data != BytesBeside(record)) ReleaseBlock(record->data);
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

// A value record with a copy of the bytes beside it, of any kind but BIT STRING. Null when out of memory, and for lost
// bytes.
template <class Record>
Record* NewValue(uint32_t type, const uint8_t* data, uint32_t length) {
    if (data == nullptr && length != 0) return nullptr;
    Record* record = NewRecordWithBytes<Record>(length);
    if (record == nullptr) return nullptr;
    record->type = type;
    CopyBytes(BytesBeside(record), data, length);
    return record;
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

// Asn1Value. Allocators return null when out of memory and record nothing; setters record.
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
// A list with the first table, which lies beside the record. Null when out of memory.
[[gnu::always_inline]] inline Asn1List* NewShortList(Arena& arena) {
    constexpr uint32_t kSlots = NextSlots(0);
    void* block = arena.Allocate(sizeof(Asn1List) + kSlots * sizeof(void*));
    if (block == nullptr) return nullptr;
    Asn1List* list = static_cast<Asn1List*>(block);
    return new (list) Asn1List{0, reinterpret_cast<void**>(list + 1), kSlots, nullptr, 1};
}
// With a table as the growth to `count` elements would have made it, but at once.
Asn1List* NewListWithTable(uint32_t count, Arena& arena);
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
Status CopyIntoArena(const Asn1Item& item, const void* source, void** out, Arena& arena);

// The exports of the engine for the items of typed schemas, by their facts. *consumed may be missing.
Status DecodeWithFacts(const uint8_t* data, uint32_t length, const Facts& facts, void** out,
                       uint32_t* consumed = nullptr);
Status EncodeWithFacts(const void* node, const Facts& facts, uint8_t* buffer, uint32_t* length);
void FreeWithFacts(const Facts& facts, void* node);
// The tree takes so many units of its slab.
Status CreateInSlab(const Asn1Item& item, size_t units, void** out, uint32_t fill);

// ---- Trees by the type of their root --------------------------------------------------------------------------------

// The facts that free a node. Any kind of value does for a value record.
template <class Node>
inline constexpr const Facts& releaseFactsOf = factsOf<Node>;
template <>
inline constexpr const Facts& releaseFactsOf<Asn1Value> = factsOf<schema::OctetString>;
template <>
inline constexpr const Facts& releaseFactsOf<Asn1BitString> = factsOf<schema::BitString>;
template <>
inline constexpr const Facts& releaseFactsOf<Asn1Any> = factsOf<schema::Any>;
template <class Node>
inline constexpr const Asn1Item& releaseItemOf = *releaseFactsOf<Node>.item;

// What a new tree takes of a slab, in units of 16 bytes. A record takes two, and so does a value: one without bytes,
// made where `filled`, and the short one that a default is. Lists are no part of a slab.
constexpr size_t CreatedUnits(const Facts& facts, bool filled) {
    if (facts.Is(Facts::kHasDefault)) return 2;
    if (facts.Is(Facts::kOptional) || IsList(*facts.item)) return 0;
    if (facts.kind != Asn1KindSequence)
        return filled || facts.kind == Asn1KindChoice || facts.kind == Asn1KindAny ? 2 : 0;
    size_t units = Arena::UnitsOf(8 * facts.childCount);
    for (uint16_t i = 0; i < facts.childCount; ++i) units += CreatedUnits(facts.children[i], filled);
    return units;
}

// Without values, and with empty ones.
template <class Node>
inline constexpr size_t createdUnits[] = {CreatedUnits(factsOf<Node>, false), CreatedUnits(factsOf<Node>, true)};

template <class Node>
Status CreateTree(Node** out, uint32_t fill = 1) {
    return CreateInSlab(itemOf<Node>, createdUnits<Node>[fill != 0], Untyped(out), fill);
}

template <class Node>
Status CopyTree(const Node* source, Node** out) {
    return CopyAsn1Object(&itemOf<Node>, source, Untyped(out));
}

// Null leaves the field as it is.
template <class Node>
Status CopyOptional(const Node* source, Node** field) {
    return source != nullptr ? CopyTree(source, field) : StatusOk;
}

// One element at the front; what follows it is ignored.
template <class Node>
Status DecodeTree(const uint8_t* data, uint32_t length, Node** out) {
    return DecodeWithFacts(data, length, factsOf<Node>, Untyped(out));
}

// For decoders that refuse an empty input as an argument, where the engine would call it bad encoding.
template <class Node>
Status DecodeNonEmpty(const uint8_t* data, uint32_t length, Node** out, Place place = Place::Here()) {
    if (AnyNull(data, out) || length == 0) return Fail(StatusBadArgument, place);
    return DecodeTree(data, length, out);
}

template <class Node>
Status EncodeTree(const Node* node, uint8_t* buffer, uint32_t* length) {
    return EncodeWithFacts(node, factsOf<Node>, buffer, length);
}

template <class Node>
Status FreeTree(Node* node) {
    FreeWithFacts(releaseFactsOf<Node>, node);
    return StatusOk;
}

// Frees what a field holds, and empties the field.
template <class Node>
void FreeField(Node** field) {
    FreeTree(*field);
    *field = nullptr;
}

// Empties a field whose node becomes the caller's.
template <class Node>
Node* TakeField(Node** field) {
    Node* node = *field;
    *field = nullptr;
    return node;
}

// Frees what a field holds, and puts a node in its place. Null is a failed allocation: 1, and the field is empty.
template <class Node>
Status ReplaceField(Node** field, Node* node, Place place = Place::Here()) {
    FreeTree(*field);
    *field = node;
    return node == nullptr ? Fail(StatusOutOfMemory, place) : StatusOk;
}

// Sole owner of a tree, so that every return is a clean one. Element is the type of the root, or one of the building
// blocks for a value: Tree<Certificate>, Tree<schema::Integer>.
template <class Element>
class Tree {
public:
    using Node = NodeOf<Element>;

    explicit Tree(Node* node = nullptr) : node_(node) {}
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;
    ~Tree() { FreeWithFacts(factsOf<Element>, node_); }

    Node* Get() const { return node_; }
    Node* operator->() const { return node_; }
    explicit operator bool() const { return node_ != nullptr; }
    // For functions that store a new tree.
    Node** Slot() { return &node_; }

    Status Create(uint32_t fill = 0) {
        return CreateInSlab(itemOf<Element>, createdUnits<Element>[fill != 0], Untyped(&node_), fill);
    }
    Status Decode(const uint8_t* data, uint32_t length) {
        return DecodeWithFacts(data, length, factsOf<Element>, Untyped(&node_));
    }
    Status CopyOf(const Node* source) { return CopyAsn1Object(&itemOf<Element>, source, Untyped(&node_)); }
    Status Encode(uint8_t* buffer, uint32_t* length) const {
        return EncodeWithFacts(node_, factsOf<Element>, buffer, length);
    }

    // Hands the tree over.
    Node* Take() { return TakeField(&node_); }
    // Adds the tree to a list, which owns it on success.
    Status MoveTo(ListOf<Node>* list) {
        const Status status = AddAsn1ListItem(list, itemOf<Element>, node_);
        if (status == StatusOk) node_ = nullptr;
        return status;
    }

private:
    Node* node_;
};

// ---- Lists and choices by their types -------------------------------------------------------------------------------

template <class List>
List* AllocList() {
    return static_cast<List*>(AllocAsn1List());
}

template <class Choice>
Choice* AllocChoice(uint32_t selected = 0, void* value = nullptr) {
    return static_cast<Choice*>(AllocAsn1Choice(selected, value));
}

// As AddAsn1ListItem: the element is still the caller's after a failure.
template <class Node>
Status AddMember(ListOf<Node>* list, std::type_identity_t<Node>* element) {
    return AddAsn1ListItem(list, releaseItemOf<Node>, element);
}

template <class Node>
Status RemoveMember(ListOf<Node>* list, uint32_t index) {
    return RemoveAsn1ListItem(list, index, releaseItemOf<Node>);
}

template <class Node>
void ClearList(ListOf<Node>* list) {
    ClearAsn1List(list, releaseItemOf<Node>);
}

// Either null: 32.
Status GetListCount(const Asn1List* list, uint32_t* count, Place place = Place::Here());

}  // namespace tlvforge
