// The decoder and the encoder: the only two that parse and write BER, walking an item and a tree side by side.

#include <string.h>

#include <bit>

#include "engine/arena.h"
#include "engine/codec.h"
#include "engine/header.h"
#include "engine/nodes.h"
#include "engine/output.h"

using namespace tlvforge;

namespace tlvforge {
namespace {

// ---- Header octets -------------------------------------------------------------------------------------------------

// Finds the end of an element in indefinite form, whose header has been read. Depth is counted, so that no input
// can exhaust the stack.
Status MeasureIndefinite(const uint8_t* content, const uint8_t* end, const uint8_t** next) {
    uint64_t left = static_cast<uint64_t>(end - content);
    const uint8_t* at = content;
    for (uint32_t depth = 1; depth != 0;) {
        if (left == 0) return Fail(StatusBadIndefinite);
        uint64_t step = 2;
        if (AtEndOfContents(at, end)) {
            --depth;
        } else {
            Header header;
            if (const Status status = ReadHeader(at, end, &header)) return status;
            step = header.headerLength;
            if (header.indefinite) {
                ++depth;
            } else {
                step += header.contentLength;
                if (step >= left) return Fail(StatusBadIndefinite);
            }
        }
        at += step;
        left -= step;
    }
    *next = at;
    return StatusOk;
}

// ---- Decoder -------------------------------------------------------------------------------------------------------

// End of the bytes that were used, or the status of a failure: two registers, on the way that everything takes.
struct Decoded {
    const uint8_t* next;
    uint64_t status;  // as wide as its register

    Decoded(const uint8_t* used) : next(used), status(StatusOk) {}
    Decoded(Status failure) : next(nullptr), status(failure) {}
};

// In all functions below [at, end) are the bytes that are there, and *out is stored only on success. The usual forms of
// elements are decided by the facts of their item; the careful code at the end of the decoder takes all others.
Decoded DecodeCarefully(const uint8_t* at, const uint8_t* end, const Facts& facts, Cell* out, Arena& arena);

inline bool IsAllowed(uint8_t kind, const uint8_t* content, uint32_t length) {
    if (kind == Asn1KindBoolean) return IsDerBoolean(content, length);
    if (kind == Asn1KindInteger) return IsMinimalInteger(content, length);
    return true;
}

inline Decoded StoreNode(void* node, Cell* out, const uint8_t* next) {
    if (node == nullptr) [[unlikely]]
        return Fail(StatusOutOfMemory);
    *out = node;
    return next;
}

// A value with its bytes, and the end of them.
template <class Record>
[[gnu::always_inline]] inline Decoded StoreValue(uint32_t type, const uint8_t* bytes, uint32_t length, Cell* out,
                                                 Arena& arena) {
    Record* record = static_cast<Record*>(arena.AllocateRecord(bytes, length));
    if (record == nullptr) [[unlikely]]
        return Fail(StatusOutOfMemory);
    *record = {type, length, length != 0 ? BytesBeside(record) : nullptr};
    *out = record;
    return bytes + length;
}

// The item isn't there: an error, its default, or null. No bytes are used.
[[gnu::noinline]] Decoded DecodeAbsent(const uint8_t* at, const Asn1Item& item, Cell* out, Arena& arena) {
    if ((item.itemFlags & Asn1FlagOptional) == 0) return Fail(StatusBadEncoding);
    if (item.defaultValue == nullptr) {
        *out = nullptr;
        return at;
    }
    const Status status = CopyIntoArena(item, item.defaultValue, out, arena);
    return status == StatusOk ? Decoded(at) : Decoded(status);
}

// Most defaults are values of one byte.
[[gnu::noinline]] Decoded DecodeDefault(const uint8_t* at, const Facts& facts, Cell* out, Arena& arena) {
    const Asn1Value& value = *static_cast<const Asn1Value*>(facts.item->defaultValue);
    if (facts.op > Op::kInteger || value.length != 1 || facts.kind == Asn1KindNull) {
        return DecodeAbsent(at, *facts.item, out, arena);
    }
    Asn1Value* node = NewRecordWithBytes<Asn1Value>(1, arena);
    if (node == nullptr) return Fail(StatusOutOfMemory);
    node->type = value.type;
    node->data[0] = value.data[0];
    *out = node;
    return at;
}

Decoded DecodeBitString(const uint8_t* content, const uint8_t* end, Cell* out, Arena& arena) {
    if (content == end || content[0] > 7) return Fail(StatusBadEncoding);
    const uint32_t length = static_cast<uint32_t>(end - content - 1);
    Asn1BitString* node = static_cast<Asn1BitString*>(arena.AllocateRecord(content + 1, length));
    if (node == nullptr) return Fail(StatusOutOfMemory);
    *node = {content[0], length, length != 0 ? BytesBeside(node) : nullptr};
    if (length != 0) node->data[length - 1] &= static_cast<uint8_t>(0xFF << node->unusedBits);
    *out = node;
    return end;
}

Decoded DecodeList(const uint8_t* at, const uint8_t* end, bool indefinite, const Facts& facts, Cell* out, Arena& arena);
Decoded DecodeBlock(const uint8_t* at, const uint8_t* end, const Facts& facts, Cell* out, Arena& arena);
Decoded DecodeAlternative(const uint8_t* at, const uint8_t* end, const Facts& facts, Cell* out, Arena& arena);

// An element whose identifier is the one of its item, in the usual form.
[[gnu::always_inline]] inline Decoded DecodeKnown(const uint8_t* content, uint32_t length, const Facts& facts,
                                                  Cell* out, Arena& arena) {
    if (facts.op <= Op::kInteger) {
        if (facts.op == Op::kInteger && !IsMinimalInteger(content, length)) [[unlikely]]
            return Fail(StatusBadValue);
        if (facts.op == Op::kBoolean && !IsDerBoolean(content, length)) [[unlikely]]
            return Fail(StatusBadValue);
        return StoreValue<Asn1Value>(facts.kind, content, length, out, arena);
    }
    if (facts.op == Op::kBlock) return DecodeBlock(content, content + length, facts, out, arena);
    if (facts.op == Op::kList) return DecodeList(content, content + length, false, facts, out, arena);
    return DecodeBitString(content, content + length, out, arena);
}

// One element, or the absence of one.
[[gnu::always_inline]] inline Decoded DecodeElement(const uint8_t* at, const uint8_t* end, const Facts& facts,
                                                    Cell* out, Arena& arena) {
    CountDecoderVisit();
    const uint8_t* content = nullptr;
    uint32_t length = 0;
    if (!ReadUsualLength(at, end, &content, &length)) [[unlikely]]
        return DecodeCarefully(at, end, facts, out, arena);
    const bool isWhole = length <= static_cast<uint64_t>(end - content);
    if (at[0] == facts.identifier) {
        if (!isWhole || facts.op >= Op::kChoice) [[unlikely]]
            return DecodeCarefully(at, end, facts, out, arena);
        return DecodeKnown(content, length, facts, out, arena);
    }
    if ((at[0] & 0x1F) == 0x1F) [[unlikely]]
        return DecodeCarefully(at, end, facts, out, arena);
    if (facts.op >= Op::kChoice) {
        if (facts.op == Op::kChoice) return DecodeAlternative(at, end, facts, out, arena);
        if (facts.op == Op::kOther || !isWhole) return DecodeCarefully(at, end, facts, out, arena);
        const uint32_t size = static_cast<uint32_t>(content - at) + length;
        return StoreValue<Asn1Any>(at[0] & 0x1F, at, size, out, arena);
    }
    if (facts.Is(Facts::kNullIfAbsent)) {
        *out = nullptr;
        return at;
    }
    return facts.Is(Facts::kHasDefault) ? DecodeDefault(at, facts, out, arena)
                                        : DecodeAbsent(at, *facts.item, out, arena);
}

// A CHOICE before a header in the usual form. An alternative's own content isn't looked into.
[[gnu::noinline]] Decoded DecodeAlternative(const uint8_t* at, const uint8_t* end, const Facts& facts, Cell* out,
                                            Arena& arena) {
    for (uint32_t i = 0; i < facts.childCount; ++i) {
        if (facts.children[i].alternative != at[0]) continue;
        Asn1Choice* choice = NewRecord<Asn1Choice>(arena);
        if (choice == nullptr) return Fail(StatusOutOfMemory);
        choice->selected = i;
        const Decoded decoded =
            DecodeElement(at, end, facts.children[i], reinterpret_cast<Cell*>(&choice->value), arena);
        if (decoded.status != StatusOk) [[unlikely]] {
            Release(choice);
            return decoded;
        }
        *out = choice;
        return decoded;
    }
    return DecodeAbsent(at, *facts.item, out, arena);
}

// Elements that seem to follow, at least one. The count is exact for definite elements; after an indefinite one nobody
// has looked, and the table may have to grow. It ends at the first of these, so that all counts together are linear.
uint32_t CountElements(const uint8_t* at, const uint8_t* end, bool indefinite) {
    uint32_t count = 0;
    Header header;
    while (at != end && !(indefinite && AtEndOfContents(at, end))) {
        ++count;
        if (ReadHeader(at, end, &header) != StatusOk || header.indefinite) break;
        at += header.headerLength;
        if (header.contentLength >= static_cast<uint64_t>(end - at)) break;
        at += header.contentLength;
    }
    return count;
}

inline bool IsOneElement(const uint8_t* at, const uint8_t* end) {
    return (at[0] & 0x1F) != 0x1F && at[1] < 0x80 && at[1] == end - at - 2;
}

// In indefinite form a list may end with its bytes, without end-of-contents octets.
[[gnu::always_inline]] inline Decoded DecodeElements(const uint8_t* at, const uint8_t* end, bool indefinite,
                                                     const Facts& element, Asn1List* list, Arena& arena) {
    while (at != end) {
        if (end - at == 1) [[unlikely]]
            return Fail(StatusBadEncoding);
        if (indefinite && AtEndOfContents(at, end)) return at + 2;
        if (list->count == list->capacity) [[unlikely]] {
            if (const Status status = ReserveAsn1ListItem(list)) return status;
        }
        const Decoded decoded = DecodeElement(at, end, element, &static_cast<Cell*>(list->items)[list->count], arena);
        if (decoded.status != StatusOk) [[unlikely]]
            return decoded;
        ++list->count;
        if (decoded.next == at) [[unlikely]]
            return Fail(StatusBadEncoding);  // an absent element, again and again
        at = decoded.next;
    }
    return end;
}

// Elements keep the order of the input, for SET OF too.
[[gnu::noinline]] Decoded DecodeList(const uint8_t* at, const uint8_t* end, bool indefinite, const Facts& facts,
                                     Cell* out, Arena& arena) {
    const bool ended = indefinite && AtEndOfContents(at, end);
    if (at == end || ended) return StoreNode(NewListWithTable(0, arena), out, ended ? at + 2 : end);
    // An element has at least two bytes: a short list needs no count to be known for one.
    const bool isShort = end - at < 22 || IsOneElement(at, end);
    Asn1List* list = isShort ? NewShortList(arena) : NewListWithTable(CountElements(at, end, indefinite), arena);
    if (list == nullptr) return Fail(StatusOutOfMemory);
    const Decoded decoded = facts.children != nullptr
                                ? DecodeElements(at, end, indefinite, *facts.children, list, arena)
                                : DecodeElements(at, end, indefinite, FactsOf(*facts.item->children[0]), list, arena);
    if (decoded.status != StatusOk) [[unlikely]] {
        FreeAsn1Object(facts.item, list);
        return decoded;
    }
    *out = list;
    return decoded;
}

// Fills the cells of a new block, which have not been zeroed: after a failure those that are left are nulled.
[[gnu::always_inline]] inline Decoded DecodeFields(const uint8_t* at, const uint8_t* end, const Facts& facts,
                                                   Cell* cell, Arena& arena) {
    const Facts* field = facts.children;
    const Facts* const last = field + facts.childCount;
    for (; field != last; ++field, ++cell) {
        const Decoded decoded = DecodeElement(at, end, *field, cell, arena);
        if (decoded.status != StatusOk) [[unlikely]] {
            for (; field != last; ++field, ++cell) *cell = nullptr;
            return decoded;
        }
        at = decoded.next;
    }
    return at;
}

// A SEQUENCE in definite form, decoded by position, in the order of the schema.
[[gnu::noinline]] Decoded DecodeBlock(const uint8_t* at, const uint8_t* end, const Facts& facts, Cell* out,
                                      Arena& arena) {
    Cell* block = static_cast<Cell*>(arena.Allocate(facts.childCount * sizeof(void*)));
    if (block == nullptr) [[unlikely]]
        return Fail(StatusOutOfMemory);
    const Decoded decoded = DecodeFields(at, end, facts, block, arena);
    if (decoded.status != StatusOk) [[unlikely]] {
        FreeAsn1Object(facts.item, block);
        return decoded;
    }
    *out = block;
    return end;  // unknown fields after the last known one are passed over
}

// ---- The careful half of the decoder: all forms, and the items of other makers --------------------------------------

// Facts of a child, which an item of another maker has only when they are asked for.
inline Facts ChildFactsOf(const Facts& facts, uint32_t index) {
    return facts.children != nullptr ? facts.children[index] : FactsOf(*facts.item->children[index]);
}

// A constructed OCTET STRING, which is accepted in indefinite form only: its segments are measured, then joined
// in one block. A segment's class and form are not looked at, and a segment is not descended into.
Decoded DecodeSegments(const uint8_t* content, const uint8_t* end, bool indefinite, Cell* out, Arena& arena) {
    uint32_t total = 0;
    const uint8_t* at = content;
    while (at != end && !(indefinite && AtEndOfContents(at, end))) {
        Header header;
        if (const Status status = ReadHeader(at, end, &header)) return status;
        if (header.tagNumber != Asn1KindOctetString) return Fail(StatusBadSegment);
        at += header.headerLength;
        if (header.contentLength > static_cast<uint64_t>(end - at)) return Fail(StatusBadEncoding);
        at += header.contentLength;
        total += header.contentLength;
    }

    Asn1Value* node = NewRecordWithBytes<Asn1Value>(total, arena);
    if (node == nullptr) return Fail(StatusOutOfMemory);
    node->type = Asn1KindOctetString;
    uint8_t* to = node->data;
    for (const uint8_t* from = content; from != at;) {
        Header header;
        (void)ReadHeader(from, end, &header);  // read before, without a failure
        from += header.headerLength;
        CopyBytes(to, from, header.contentLength);
        to += header.contentLength;
        from += header.contentLength;
    }
    *out = node;
    return at == end ? at : at + 2;
}

// Fields whose items may be missing, one by one.
Decoded DecodeAnyFields(const uint8_t* at, const uint8_t* end, const Facts& facts, Cell* block, Arena& arena) {
    const Asn1Item& item = *facts.item;
    for (uint32_t i = 0; i < item.childCount; ++i) {
        const Decoded decoded = item.children[i] != nullptr
                                    ? DecodeElement(at, end, ChildFactsOf(facts, i), &block[i], arena)
                                    : Decoded(Fail(StatusBadArgument));
        if (decoded.status != StatusOk) {
            for (; i < item.childCount; ++i) block[i] = nullptr;
            return decoded;
        }
        at = decoded.next;
    }
    return at;
}

// SEQUENCE and SET alike, in both forms.
[[gnu::noinline]] Decoded DecodeAnyBlock(const uint8_t* at, const uint8_t* end, bool indefinite, const Facts& facts,
                                         Cell* out, Arena& arena) {
    const Asn1Item& item = *facts.item;
    if (item.kind != Asn1KindSequence && item.kind != Asn1KindSet) return Fail(StatusBadArgument);
    if (item.children == nullptr && item.childCount != 0) return Fail(StatusBadArgument);
    Cell* block = static_cast<Cell*>(arena.Allocate(BlockSize(item)));
    if (block == nullptr) return Fail(StatusOutOfMemory);
    const size_t cells = item.childCount * sizeof(void*);
    if (cells < BlockSize(item)) memset(block + item.childCount, 0, BlockSize(item) - cells);
    Decoded decoded = DecodeAnyFields(at, end, facts, block, arena);
    if (decoded.status == StatusOk && indefinite && !AtEndOfContents(decoded.next, end)) {
        decoded = Fail(StatusBadIndefinite);
    }
    if (decoded.status != StatusOk) {
        FreeAsn1Object(&item, block);
        return decoded;
    }
    *out = block;
    return indefinite ? decoded.next + 2 : end;
}

// Whether an alternative of a CHOICE begins with this header.
inline bool Matches(const Asn1Item& alternative, const Header& header) {
    if (alternative.tagClass != header.tagClass) return false;
    if ((alternative.itemFlags & Asn1FlagExplicit) != 0) {
        return header.constructedBit != 0 && static_cast<uint32_t>(alternative.tagNumber) == header.tagNumber;
    }
    return alternative.constructedBit == header.constructedBit &&
           static_cast<uint32_t>(TagOf(alternative)) == header.tagNumber;
}

Decoded DecodeChoice(const uint8_t* at, const uint8_t* end, const Header& header, const Facts& facts, Cell* out,
                     Arena& arena) {
    const Asn1Item& item = *facts.item;
    if (item.children == nullptr && item.childCount != 0) return Fail(StatusBadArgument);
    for (uint32_t i = 0; i < item.childCount; ++i) {
        if (item.children[i] == nullptr) return Fail(StatusBadArgument);
        if (!Matches(*item.children[i], header)) continue;
        Asn1Choice* choice = NewRecord<Asn1Choice>(arena);
        if (choice == nullptr) return Fail(StatusOutOfMemory);
        choice->selected = i;
        const Decoded decoded =
            DecodeElement(at, end, ChildFactsOf(facts, i), reinterpret_cast<Cell*>(&choice->value), arena);
        if (decoded.status != StatusOk) {
            Release(choice);
            return decoded;
        }
        *out = choice;
        return decoded;
    }
    return DecodeAbsent(at, item, out, arena);
}

// ANY takes whatever stands there, header included.
Decoded DecodeAny(const uint8_t* at, const uint8_t* end, const Header& header, Cell* out, Arena& arena) {
    const uint8_t* next = at + header.headerLength;
    if (header.indefinite) {
        if (const Status status = MeasureIndefinite(next, end, &next)) return status;
    } else {
        if (header.contentLength > static_cast<uint64_t>(end - next)) return Fail(StatusBadEncoding);
        next += header.contentLength;
    }
    return StoreValue<Asn1Any>(header.tagNumber, at, static_cast<uint32_t>(next - at), out, arena);
}

Decoded DecodePrimitive(const uint8_t* content, const uint8_t* end, uint8_t kind, Cell* out, Arena& arena) {
    if (kind == Asn1KindBitString) return DecodeBitString(content, end, out, arena);
    if (!IsValueKind(kind)) return Fail(StatusUnsupportedKind);
    const uint32_t length = static_cast<uint32_t>(end - content);
    if (!IsAllowed(kind, content, length)) return Fail(StatusBadValue);
    return StoreValue<Asn1Value>(kind, content, length, out, arena);
}

// A matching element that isn't CHOICE or ANY.
Decoded DecodeContent(const uint8_t* at, const uint8_t* end, const Header& header, const Facts& facts, Cell* out,
                      Arena& arena) {
    const Asn1Item& item = *facts.item;
    const uint8_t* content = at + header.headerLength;
    if (header.contentLength > static_cast<uint64_t>(end - content)) return Fail(StatusBadEncoding);
    const uint8_t* contentEnd = content + header.contentLength;
    if (header.constructedBit == 0) {
        if (header.indefinite) return Fail(StatusBadIndefinite);
        return DecodePrimitive(content, contentEnd, item.kind, out, arena);
    }
    if (item.kind == Asn1KindOctetString) return DecodeSegments(content, contentEnd, header.indefinite, out, arena);
    if (!IsList(item)) return DecodeAnyBlock(content, contentEnd, header.indefinite, facts, out, arena);
    if (item.childCount != 1 || item.children == nullptr || item.children[0] == nullptr) return Fail(StatusBadItem);
    return DecodeList(content, contentEnd, header.indefinite, facts, out, arena);
}

// One element against an item, without the explicit wrapper that it may have.
Decoded DecodeBody(const uint8_t* at, const uint8_t* end, const Facts& facts, uint8_t tagClass, int32_t tagNumber,
                   Cell* out, Arena& arena) {
    const Asn1Item& item = *facts.item;
    Header header;
    // A malformed header is a failure, also where an optional item may stand.
    if (const Status status = ReadHeader(at, end, &header)) return status;
    if (item.kind == Asn1KindChoice) return DecodeChoice(at, end, header, facts, out, arena);
    if (item.kind == Asn1KindAny) return DecodeAny(at, end, header, out, arena);

    const bool tagFits = header.tagNumber == static_cast<uint32_t>(tagNumber) && header.tagClass == tagClass;
    // A string in segments is taken in indefinite form only; any other constructed string is a tag mismatch.
    const int32_t ownTag = UniversalTagOf(item.kind);
    const bool isString = ownTag == Asn1KindBitString || ownTag == Asn1KindOctetString;
    const bool formFits = header.constructedBit == item.constructedBit || (header.indefinite && isString);
    return tagFits && formFits ? DecodeContent(at, end, header, facts, out, arena) : DecodeAbsent(at, item, out, arena);
}

// An item with a wrapper. The wrapper's length is not compared with what the inner element uses: what it declares
// beyond that is left for the next field.
[[gnu::noinline]] Decoded DecodeExplicit(const uint8_t* at, const uint8_t* end, const Facts& facts, Cell* out,
                                         Arena& arena) {
    const Asn1Item& item = *facts.item;
    if (item.tagNumber < 0) return Fail(StatusBadItem);
    Header wrapper;
    if (const Status status = ReadHeader(at, end, &wrapper)) return status;
    if (wrapper.tagNumber != static_cast<uint32_t>(item.tagNumber) || wrapper.tagClass != item.tagClass ||
        wrapper.constructedBit == 0) {
        return DecodeAbsent(at, item, out, arena);
    }
    Cell inner = nullptr;
    const Decoded decoded =
        DecodeBody(at + wrapper.headerLength, end, facts, Asn1ClassUniversal, UniversalTagOf(item.kind), &inner, arena);
    if (decoded.status != StatusOk) return decoded;
    if (wrapper.indefinite && !AtEndOfContents(decoded.next, end)) {
        FreeAsn1Object(&item, inner);
        return Fail(StatusBadIndefinite);
    }
    *out = inner;
    return wrapper.indefinite ? decoded.next + 2 : decoded.next;
}

[[gnu::noinline]] Decoded DecodeCarefully(const uint8_t* at, const uint8_t* end, const Facts& facts, Cell* out,
                                          Arena& arena) {
    const Asn1Item& item = *facts.item;
    if (at == end) return DecodeAbsent(at, item, out, arena);
    if ((item.itemFlags & Asn1FlagExplicit) != 0) return DecodeExplicit(at, end, facts, out, arena);
    return DecodeBody(at, end, facts, item.tagClass, TagOf(item), out, arena);
}

// ---- Encoder -------------------------------------------------------------------------------------------------------

// Octets of a length behind its first, and of a tag number behind the first of the identifier.
inline uint32_t LengthOctets(uint64_t length) {
    return length < 0x80 ? 0 : (static_cast<uint32_t>(std::bit_width(length)) + 7) / 8;
}

inline uint32_t TagOctets(uint32_t tagNumber) {
    return tagNumber < 31 ? 0 : (static_cast<uint32_t>(std::bit_width(tagNumber)) + 6) / 7;
}

// The passes of the encoder are one code over several cursors. The measuring pass goes forward, so that the first fault
// is the one reported, and it alone checks the tree. The writing pass fills its buffer from the end: content first,
// then the header, whose length is simply known then. Each pass visits a node once.
struct Measure {
    using Cursor = uint64_t;  // bytes so far
    static constexpr bool kBackwards = false;
    static constexpr bool kChecks = true;

    static bool Fits(Cursor, uint32_t) { return true; }
    static uint64_t Between(Cursor mark, Cursor at) { return at - mark; }
    static Cursor Bytes(Cursor at, const uint8_t*, uint32_t count) { return at + count; }
    template <class Record>
    static Cursor BytesOf(Cursor at, const Record& record) {
        return at + record.length;
    }
    static Cursor Octet(Cursor at, uint8_t) { return at + 1; }
    static Cursor LowTagHeader(Cursor at, uint8_t, uint32_t contentLength) {
        return at + (contentLength < 0x80 ? 2 : 2 + LengthOctets(contentLength));
    }
    static Cursor Header(Cursor at, uint8_t, uint8_t, uint32_t tagNumber, uint32_t contentLength) {
        return at + TlvSize(contentLength, tagNumber) - contentLength;
    }
    static void ReplaceFirst(Cursor, uint8_t) {}
};

struct Write {
    using Cursor = uint8_t*;  // where what is written begins
    static constexpr bool kBackwards = true;
    static constexpr bool kChecks = false;

    static bool Fits(Cursor, uint32_t) { return true; }
    static uint64_t Between(Cursor mark, Cursor at) { return static_cast<uint64_t>(mark - at); }
    static Cursor Bytes(Cursor at, const uint8_t* bytes, uint32_t count) {
        CopyBytes(at - count, bytes, count);
        return at - count;
    }
    template <class Record>
    static Cursor BytesOf(Cursor at, const Record& record) {
        return Bytes(at, record.data, record.length);
    }
    static Cursor Octet(Cursor at, uint8_t octet) {
        *--at = octet;
        return at;
    }
    static Cursor LowTagHeader(Cursor at, uint8_t identifier, uint32_t contentLength) {
        if (contentLength < 0x80) [[likely]] {
            at -= 2;
            at[0] = identifier;
            at[1] = static_cast<uint8_t>(contentLength);
            return at;
        }
        uint32_t octets = 0;
        for (; contentLength != 0; contentLength >>= 8, ++octets) *--at = static_cast<uint8_t>(contentLength);
        *--at = static_cast<uint8_t>(0x80 | octets);
        *--at = identifier;
        return at;
    }
    static Cursor Header(Cursor at, uint8_t tagClass, uint8_t constructedBit, uint32_t tagNumber,
                         uint32_t contentLength) {
        if (tagNumber < 31) {
            return LowTagHeader(at, static_cast<uint8_t>(tagClass | constructedBit | tagNumber), contentLength);
        }
        at -= TlvSize(contentLength, tagNumber) - contentLength;
        WriteHeader(tagClass, constructedBit, tagNumber, contentLength, at);
        return at;
    }
    static void ReplaceFirst(Cursor at, uint8_t octet) { *at = octet; }
};

// One pass for small documents: backwards into a scratch area that is aligned to its size, so that the address tells
// how much room is left. What doesn't fit, or has a fault, is left to the two passes.
struct WriteOnce : Write {
    static constexpr bool kChecks = true;
    static constexpr uint32_t kArea = 8192;
    static constexpr uint32_t kHeaderRoom = 32;  // for the headers that follow content without another look

    static uint32_t Room(Cursor at) { return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(at - 1) & (kArea - 1)); }
    static bool Fits(Cursor at, uint32_t count) { return count < kArea && count + kHeaderRoom <= Room(at); }
    // Bytes beside their record have its 16 before them: short ones are copied as the 16 or 32 bytes that end with
    // them, and what is too much is written over later.
    template <class Record>
    static Cursor BytesOf(Cursor at, const Record& record) {
        if (record.length <= 32 && record.data == BytesBeside(&record)) [[likely]] {
            memcpy(at - 16, record.data + record.length - 16, 16);
            if (record.length > 16) memcpy(at - 32, record.data + record.length - 32, 16);
            return at - record.length;
        }
        return Bytes(at, record.data, record.length);
    }
};

// The cursor after what was emitted, or the status of a failure, in two registers.
template <class Pass>
struct Emitted {
    typename Pass::Cursor at;
    Status status;

    static Emitted At(typename Pass::Cursor cursor) { return {cursor, StatusOk}; }
    static Emitted Failed(Status failure) { return {{}, failure}; }
    // Only the scratch area has no room, and that is no failure of the caller's.
    static Emitted NoRoom() { return {{}, StatusBufferTooSmall}; }
};

template <class Pass>
Emitted<Pass> EmitCarefully(const void* node, const Facts& facts, typename Pass::Cursor at);
template <class Pass>
Emitted<Pass> EmitBlock(const Cell* block, const Facts& facts, typename Pass::Cursor at);
template <class Pass>
Emitted<Pass> EmitList(const Asn1List& list, const Facts& facts, typename Pass::Cursor at);
template <class Pass>
Emitted<Pass> EmitAlternative(const Asn1Choice& choice, const Facts& facts, typename Pass::Cursor at);

// DER leaves out an optional item that equals its DEFAULT. A tree with a NULL or ENUMERATED default can't be compared.
inline Status EqualsDefault(const void* node, const Asn1Item& item, uint32_t* equal) {
    if (item.constructedBit != 0 || (item.itemFlags & Asn1FlagExplicit) != 0 || !IsValueKind(item.kind) ||
        item.kind == Asn1KindNull || item.kind == Asn1KindEnumerated) {
        return CompareAsn1Objects(&item, node, item.defaultValue, equal);
    }
    *equal = EqualRecords(*static_cast<const Asn1Value*>(node), *static_cast<const Asn1Value*>(item.defaultValue));
    return StatusOk;
}

// Bytes of a record, without a header.
template <class Pass, class Record>
[[gnu::always_inline]] inline Emitted<Pass> EmitBytes(const Record& record, typename Pass::Cursor at) {
    if (Pass::kChecks && HasLostBytes(&record)) [[unlikely]]
        return Emitted<Pass>::Failed(Fail(StatusAbsent));
    if (!Pass::Fits(at, record.length)) [[unlikely]]
        return Emitted<Pass>::NoRoom();
    return Emitted<Pass>::At(Pass::BytesOf(at, record));
}

// Most nodes are values, and most others are composed of them: those are decided by the facts.
template <class Pass>
[[gnu::always_inline]] inline Emitted<Pass> EmitItem(const void* node, const Facts& facts, typename Pass::Cursor at) {
    CountEncoderVisit();
    if (node == nullptr) [[unlikely]] {
        if (facts.Is(Facts::kOptional)) return Emitted<Pass>::At(at);
        return Emitted<Pass>::Failed(Fail(StatusAbsent));
    }
    if (facts.op <= Op::kInteger) {
        const Asn1Value& value = *static_cast<const Asn1Value*>(node);
        if (facts.Is(Facts::kHasDefault)) [[unlikely]] {
            if (Pass::kChecks && HasLostBytes(&value)) return Emitted<Pass>::Failed(Fail(StatusAbsent));
            uint32_t equal = 0;
            const Status status = EqualsDefault(node, *facts.item, &equal);
            if (status != StatusOk || equal != 0) return {at, status};
        }
        const Emitted<Pass> content = EmitBytes<Pass>(value, at);
        if (content.status != StatusOk) [[unlikely]]
            return content;
        return Emitted<Pass>::At(Pass::LowTagHeader(content.at, facts.identifier, value.length));
    }
    if (!facts.Is(Facts::kHasDefault)) [[likely]] {
        if (facts.op == Op::kBlock) return EmitBlock<Pass>(static_cast<const Cell*>(node), facts, at);
        if (facts.op == Op::kChoice) return EmitAlternative<Pass>(*static_cast<const Asn1Choice*>(node), facts, at);
        if (facts.op == Op::kList) return EmitList<Pass>(*static_cast<const Asn1List*>(node), facts, at);
        if (facts.op == Op::kAny && facts.item->tagClass != Asn1ClassContext) {
            return EmitBytes<Pass>(*static_cast<const Asn1Any*>(node), at);
        }
    }
    return EmitCarefully<Pass>(node, facts, at);
}

template <class Pass>
[[gnu::always_inline]] inline Emitted<Pass> CloseElement(typename Pass::Cursor mark, typename Pass::Cursor at,
                                                         uint8_t tagClass, uint8_t constructedBit, int32_t tagNumber) {
    const uint64_t content = Pass::Between(mark, at);
    if (!Pass::Fits(at, 0)) [[unlikely]]
        return Emitted<Pass>::NoRoom();
    if (Pass::kChecks && content > UINT32_MAX) [[unlikely]]
        return Emitted<Pass>::Failed(Fail(StatusLengthTooLong));
    return Emitted<Pass>::At(
        Pass::Header(at, tagClass, constructedBit, static_cast<uint32_t>(tagNumber), static_cast<uint32_t>(content)));
}

// The same for a header of one identifier octet.
template <class Pass>
[[gnu::always_inline]] inline Emitted<Pass> CloseLowTag(typename Pass::Cursor mark, typename Pass::Cursor at,
                                                        uint8_t identifier) {
    const uint64_t content = Pass::Between(mark, at);
    if (!Pass::Fits(at, 0)) [[unlikely]]
        return Emitted<Pass>::NoRoom();
    if (Pass::kChecks && content > UINT32_MAX) [[unlikely]]
        return Emitted<Pass>::Failed(Fail(StatusLengthTooLong));
    return Emitted<Pass>::At(Pass::LowTagHeader(at, identifier, static_cast<uint32_t>(content)));
}

// The fields of a record of a typed schema.
template <class Pass>
[[gnu::noinline]] Emitted<Pass> EmitBlock(const Cell* block, const Facts& facts, typename Pass::Cursor at) {
    const typename Pass::Cursor mark = at;
    const int32_t step = Pass::kBackwards ? -1 : 1;
    const Facts* field = facts.children + (Pass::kBackwards ? facts.childCount - 1 : 0);
    const Cell* cell = block + (Pass::kBackwards ? facts.childCount - 1 : 0);
    for (uint32_t left = facts.childCount; left != 0; --left, field += step, cell += step) {
        const Emitted<Pass> emitted = EmitItem<Pass>(*cell, *field, at);
        if (emitted.status != StatusOk) [[unlikely]]
            return emitted;
        at = emitted.at;
    }
    return CloseLowTag<Pass>(mark, at, facts.identifier);
}

template <class Pass>
[[gnu::noinline]] Emitted<Pass> EmitAlternative(const Asn1Choice& choice, const Facts& facts,
                                                typename Pass::Cursor at) {
    if (Pass::kChecks && choice.selected >= facts.childCount) [[unlikely]] {
        return Emitted<Pass>::Failed(Fail(StatusBadAlternative));
    }
    return EmitItem<Pass>(choice.value, facts.children[choice.selected], at);
}

struct Encoding {
    const uint8_t* bytes;
    uint32_t length;
};

int CompareEncodings(const void* left, const void* right) {
    const Encoding& a = *static_cast<const Encoding*>(left);
    const Encoding& b = *static_cast<const Encoding*>(right);
    const int order = memcmp(a.bytes, b.bytes, a.length < b.length ? a.length : b.length);
    if (order != 0) return order;
    return a.length == b.length ? 0 : a.length < b.length ? -1 : 1;
}

// Puts the encodings, which lie one after the other from `at`, into DER order through one scratch block.
Status PermuteEncodings(uint8_t* at, Encoding* encodings, uint32_t count) {
    qsort(encodings, count, sizeof(Encoding), CompareEncodings);
    size_t total = 0;
    for (uint32_t i = 0; i < count; ++i) total += encodings[i].length;
    const Block scratch(total);
    if (!scratch) return Fail(StatusOutOfMemory);
    uint8_t* to = scratch.Bytes();
    for (uint32_t i = 0; i < count; ++i) {
        memcpy(to, encodings[i].bytes, encodings[i].length);
        to += encodings[i].length;
    }
    memcpy(at, scratch.Bytes(), total);
    return StatusOk;
}

// SET OF in DER order: notes where each element's encoding lies. Nothing more happens when they are in order already.
template <class Pass>
[[gnu::noinline]] Emitted<Pass> WriteSorted(const Asn1List& list, const Facts& element, uint8_t* at) {
    constexpr uint32_t kFew = 16;
    Encoding few[kFew];
    const Block many = list.count > kFew ? Block(list.count * sizeof(Encoding)) : Block();
    Encoding* encodings = list.count > kFew ? reinterpret_cast<Encoding*>(many.Bytes()) : few;
    if (encodings == nullptr) return Emitted<Pass>::Failed(Fail(StatusOutOfMemory));

    bool inOrder = true;
    for (uint32_t i = list.count; i-- > 0;) {
        const Emitted<Pass> emitted = EmitItem<Pass>(list.items[i], element, at);
        if (emitted.status != StatusOk) return emitted;
        encodings[i] = {emitted.at, static_cast<uint32_t>(at - emitted.at)};
        at = emitted.at;
        if (i + 1 < list.count) inOrder = inOrder && CompareEncodings(&encodings[i], &encodings[i + 1]) <= 0;
    }
    return {at, inOrder ? StatusOk : PermuteEncodings(at, encodings, list.count)};
}

template <class Pass>
[[gnu::always_inline]] inline Emitted<Pass> EmitElements(const Asn1List& list, uint8_t kind, const Facts& element,
                                                         typename Pass::Cursor at) {
    if (Pass::kChecks && list.count != 0 && list.items == nullptr) return Emitted<Pass>::Failed(Fail(StatusAbsent));
    if constexpr (Pass::kBackwards) {
        if (kind == Asn1KindSetOf && list.sorted != 0 && list.count > 1) return WriteSorted<Pass>(list, element, at);
    }
    for (uint32_t i = 0; i < list.count; ++i) {
        const uint32_t index = Pass::kBackwards ? list.count - 1 - i : i;
        const Emitted<Pass> emitted = EmitItem<Pass>(list.items[index], element, at);
        if (emitted.status != StatusOk) [[unlikely]]
            return emitted;
        at = emitted.at;
    }
    return Emitted<Pass>::At(at);
}

template <class Pass>
[[gnu::noinline]] Emitted<Pass> EmitList(const Asn1List& list, const Facts& facts, typename Pass::Cursor at) {
    const Emitted<Pass> content = EmitElements<Pass>(list, facts.kind, *facts.children, at);
    if (content.status != StatusOk) [[unlikely]]
        return content;
    return CloseLowTag<Pass>(at, content.at, facts.identifier);
}

// ---- The careful half of the encoder: all forms, and the items of other makers --------------------------------------

// Composed elements of any item, without their header.
template <class Pass>
Emitted<Pass> EmitAnyElements(const Asn1List& list, const Facts& facts, typename Pass::Cursor at) {
    const Asn1Item& item = *facts.item;
    if (Pass::kChecks && (item.childCount != 1 || item.children == nullptr || item.children[0] == nullptr)) {
        return Emitted<Pass>::Failed(Fail(StatusBadItem));
    }
    return EmitElements<Pass>(list, item.kind, ChildFactsOf(facts, 0), at);
}

template <class Pass>
Emitted<Pass> EmitAnyFields(const Cell* block, const Facts& facts, typename Pass::Cursor at) {
    const Asn1Item& item = *facts.item;
    if (Pass::kChecks && item.children == nullptr && item.childCount != 0) {
        return Emitted<Pass>::Failed(Fail(StatusBadArgument));
    }
    for (uint32_t i = 0; i < item.childCount; ++i) {
        const uint32_t field = Pass::kBackwards ? item.childCount - 1 - i : i;
        if (Pass::kChecks && item.children[field] == nullptr) return Emitted<Pass>::Failed(Fail(StatusBadArgument));
        const Emitted<Pass> emitted = EmitItem<Pass>(block[field], ChildFactsOf(facts, field), at);
        if (emitted.status != StatusOk) return emitted;
        at = emitted.at;
    }
    return Emitted<Pass>::At(at);
}

// Content is written as it stands: making it canonical is the setters' business.
template <class Pass>
Emitted<Pass> EmitPrimitive(const void* node, uint8_t kind, typename Pass::Cursor at) {
    if (kind == Asn1KindBitString) {
        const Asn1BitString& value = *static_cast<const Asn1BitString*>(node);
        const Emitted<Pass> content = EmitBytes<Pass>(value, at);
        if (content.status != StatusOk) return content;
        return Emitted<Pass>::At(Pass::Octet(content.at, value.unusedBits));
    }
    if (!IsValueKind(kind)) return Emitted<Pass>::Failed(Fail(StatusUnsupportedKind));
    return EmitBytes<Pass>(*static_cast<const Asn1Value*>(node), at);
}

template <class Pass>
Emitted<Pass> EmitContent(const void* node, const Facts& facts, typename Pass::Cursor at) {
    const Asn1Item& item = *facts.item;
    if (item.constructedBit == 0) return EmitPrimitive<Pass>(node, item.kind, at);
    if (IsList(item)) return EmitAnyElements<Pass>(*static_cast<const Asn1List*>(node), facts, at);
    // A fixed SET can be decoded and not encoded.
    if (item.kind != Asn1KindSequence) return Emitted<Pass>::Failed(Fail(StatusUnsupportedKind));
    return EmitAnyFields<Pass>(static_cast<const Cell*>(node), facts, at);
}

// An implicit tag takes the place of the captured element's class and number; its constructed bit stays.
template <class Pass>
Emitted<Pass> EmitAny(const Asn1Any& any, const Asn1Item& item, typename Pass::Cursor at) {
    const Emitted<Pass> element = EmitBytes<Pass>(any, at);
    if (element.status != StatusOk) return element;
    if (item.tagClass == Asn1ClassContext && (item.itemFlags & Asn1FlagExplicit) == 0 && any.length > 0) {
        Pass::ReplaceFirst(element.at, static_cast<uint8_t>((any.data[0] & Asn1Constructed) | Asn1ClassContext |
                                                            static_cast<uint8_t>(item.tagNumber)));
    }
    return element;
}

template <class Pass>
Emitted<Pass> EmitBody(const void* node, const Facts& facts, uint8_t tagClass, int32_t tagNumber,
                       typename Pass::Cursor at) {
    const Asn1Item& item = *facts.item;
    if (item.kind == Asn1KindAny) return EmitAny<Pass>(*static_cast<const Asn1Any*>(node), item, at);
    if (item.kind == Asn1KindChoice) {
        // A tag of the CHOICE itself is not written: only an explicit one has an effect, by its wrapper.
        const Asn1Choice& choice = *static_cast<const Asn1Choice*>(node);
        if (Pass::kChecks && choice.selected >= item.childCount) {
            return Emitted<Pass>::Failed(Fail(StatusBadAlternative));
        }
        if (Pass::kChecks && (item.children == nullptr || item.children[choice.selected] == nullptr)) {
            return Emitted<Pass>::Failed(Fail(StatusBadArgument));
        }
        return EmitItem<Pass>(choice.value, ChildFactsOf(facts, choice.selected), at);
    }
    const Emitted<Pass> content = EmitContent<Pass>(node, facts, at);
    if (content.status != StatusOk) return content;
    return CloseElement<Pass>(at, content.at, tagClass, item.constructedBit, tagNumber);
}

template <class Pass>
[[gnu::noinline]] Emitted<Pass> EmitCarefully(const void* node, const Facts& facts, typename Pass::Cursor at) {
    const Asn1Item& item = *facts.item;
    if (facts.Is(Facts::kHasDefault)) {
        uint32_t equal = 0;
        const Status status = EqualsDefault(node, item, &equal);
        if (status != StatusOk || equal != 0) return {at, status};
    }
    const bool wrapped = (item.itemFlags & Asn1FlagExplicit) != 0;
    if (Pass::kChecks && wrapped && item.tagNumber < 0) return Emitted<Pass>::Failed(Fail(StatusBadItem));
    const uint8_t tagClass = wrapped ? uint8_t{Asn1ClassUniversal} : item.tagClass;
    const int32_t tagNumber = wrapped ? UniversalTagOf(item.kind) : TagOf(item);
    const Emitted<Pass> inner = EmitBody<Pass>(node, facts, tagClass, tagNumber, at);
    if (!wrapped || inner.status != StatusOk) return inner;
    return CloseElement<Pass>(at, inner.at, item.tagClass, Asn1Constructed, item.tagNumber);
}

Status MeasureTree(const void* node, const Facts& facts, uint32_t* length) {
    const Emitted<Measure> measured = EmitItem<Measure>(node, facts, 0);
    if (measured.status != StatusOk) return measured.status;
    if (measured.at > UINT32_MAX) return Fail(StatusLengthTooLong);
    *length = static_cast<uint32_t>(measured.at);
    return StatusOk;
}

Status WriteTree(const void* node, const Facts& facts, uint8_t* buffer, uint32_t length) {
    return EmitItem<Write>(node, facts, buffer + length).status;
}

// Whether the document could be written into the scratch area, and then what became of the caller's buffer. A large
// document and one with a fault need the two passes.
[[gnu::noinline]] bool EncodeOnce(const void* node, const Facts& facts, uint8_t* buffer, uint32_t* length,
                                  Status* status) {
    alignas(WriteOnce::kArea) uint8_t area[WriteOnce::kArea];
    uint8_t* const end = area + WriteOnce::kArea;
    const Emitted<WriteOnce> emitted = EmitItem<WriteOnce>(node, facts, end);
    *status = emitted.status;
    if (emitted.status != StatusOk) return false;
    *status = CopyOut(emitted.at, static_cast<uint32_t>(end - emitted.at), buffer, length);
    return true;
}

}  // namespace

[[gnu::noinline]] Status ReadLongHeader(const uint8_t* data, uint32_t length, Header* header) {
    if (length < 2) return Fail(StatusBadEncoding);
    header->tagClass = data[0] & 0xC0;
    header->constructedBit = data[0] & Asn1Constructed;
    header->tagNumber = data[0] & 0x1F;
    uint32_t at = 1;
    if (header->tagNumber == 0x1F) {
        // More than 32 bits of a tag number shift out silently: see docs/oddities.md.
        header->tagNumber = 0;
        uint8_t octet;
        do {
            if (at == length) return Fail(StatusBadEncoding);
            octet = data[at++];
            header->tagNumber = header->tagNumber << 7 | (octet & 0x7F);
        } while ((octet & 0x80) != 0);
        if (at == length) return Fail(StatusBadEncoding);
    }

    const uint8_t form = data[at++];
    header->indefinite = form == 0x80;
    if (form <= 0x80) {
        header->headerLength = at;
        header->contentLength = header->indefinite ? length - at : form;
        return StatusOk;
    }
    const uint32_t octets = form & 0x7F;
    if (octets > 4) return Fail(StatusLengthTooLong);
    if (octets > length - at) return Fail(StatusBadEncoding);
    header->contentLength = 0;
    for (uint32_t i = 0; i < octets; ++i) header->contentLength = header->contentLength << 8 | data[at++];
    header->headerLength = at;
    return StatusOk;
}

uint64_t TlvSize(uint64_t contentLength, uint32_t tagNumber) {
    return contentLength + 2 + TagOctets(tagNumber) + LengthOctets(contentLength);
}

uint32_t WriteHeader(uint8_t tagClass, uint8_t constructedBit, uint32_t tagNumber, uint32_t contentLength,
                     uint8_t* out) {
    uint32_t at = 0;
    uint32_t octets = TagOctets(tagNumber);
    out[at++] = static_cast<uint8_t>(tagClass | constructedBit | (octets != 0 ? 0x1F : tagNumber));
    while (octets-- > 0)
        out[at++] = static_cast<uint8_t>((tagNumber >> (7 * octets) & 0x7F) | (octets != 0 ? 0x80 : 0));
    octets = LengthOctets(contentLength);
    out[at++] = static_cast<uint8_t>(octets != 0 ? 0x80 | octets : contentLength);
    while (octets-- > 0) out[at++] = static_cast<uint8_t>(contentLength >> (8 * octets));
    return at;
}

Status DecodeWithFacts(const uint8_t* data, uint32_t length, const Facts& facts, void** out, uint32_t* consumed) {
    if (AnyNull(data, out)) return Fail(StatusBadArgument);
    // A value alone is a block of its own.
    Arena arena(data, facts.Is(Facts::kLeaf) ? 0 : length);
    Cell node = nullptr;
    const Decoded decoded = DecodeElement(data, data + length, facts, &node, arena);
    *static_cast<Cell*>(out) = node;
    if (decoded.status == StatusOk && consumed != nullptr) *consumed = static_cast<uint32_t>(decoded.next - data);
    return static_cast<Status>(decoded.status);
}

Status EncodeWithFacts(const void* node, const Facts& facts, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(static_cast<const uint8_t*>(node), length)) return Fail(StatusBadArgument);
    Status once = StatusOk;
    if (buffer != nullptr && EncodeOnce(node, facts, buffer, length, &once)) return once;
    uint32_t needed = 0;
    bool write = false;
    if (const Status status = MeasureTree(node, facts, &needed)) return status;
    if (const Status status = ReserveOutput(needed, buffer, length, &write)) return status;
    if (!write) return StatusOk;
    if (once == StatusOutOfMemory) return once;
    return WriteTree(node, facts, buffer, needed);
}

}  // namespace tlvforge

// ---- Exports -------------------------------------------------------------------------------------------------------

Status GetAsn1ObjectInfo(const uint8_t* data, uint32_t length, uint8_t* tagClass, uint8_t* constructedBit,
                         uint32_t* tagNumber, uint32_t* contentLength, uint32_t* indefinite, uint32_t* headerLength) {
    if (AnyNull(data, tagClass, constructedBit, tagNumber, contentLength, headerLength)) return Fail(StatusBadArgument);
    Header header;
    const Status status = ReadLongHeader(data, length, &header);
    if (length < 2) return status;
    *tagClass = header.tagClass;
    *constructedBit = header.constructedBit;
    *tagNumber = header.tagNumber;
    if (status != StatusOk) return status;
    *contentLength = header.contentLength;
    *headerLength = header.headerLength;
    if (indefinite != nullptr) {
        *indefinite = header.indefinite ? 1 : 0;
        return StatusOk;
    }
    return header.contentLength > length - header.headerLength ? Fail(StatusBadEncoding) : StatusOk;
}

Status GetAsn1AnyInfo(const Asn1Any* any, uint8_t* tagClass, uint8_t* constructedBit, uint32_t* tagNumber,
                      uint32_t* contentLength, uint32_t* headerLength) {
    if (AnyNull(any, tagClass, constructedBit, tagNumber, contentLength, headerLength)) return Fail(StatusBadArgument);
    if (any->data == nullptr) return Fail(StatusBadEncoding);
    uint32_t indefinite = 0;
    const Status status = GetAsn1ObjectInfo(any->data, any->length, tagClass, constructedBit, tagNumber, contentLength,
                                            &indefinite, headerLength);
    if (status != StatusOk || indefinite == 0) return status;
    const uint8_t* content = any->data + *headerLength;
    const uint8_t* next = nullptr;
    const Status measured = MeasureIndefinite(content, any->data + any->length, &next);
    if (measured == StatusOk) *contentLength = static_cast<uint32_t>(next - content);
    return measured;
}

Status Asn1DecodeItem(const uint8_t* data, uint32_t length, const Asn1Item* item, void** out, uint32_t* consumed) {
    if (AnyNull(data, item, out, consumed)) return Fail(StatusBadArgument);
    return DecodeWithFacts(data, length, FactsOf(*item), out, consumed);
}

Status Asn1Encode(const void* node, const Asn1Item* item, uint8_t** out, uint32_t* length) {
    if (AnyNull(node, item, length)) return Fail(StatusBadArgument);
    const Facts facts = FactsOf(*item);
    Status status = MeasureTree(node, facts, length);
    if (status != StatusOk || out == nullptr) return status;
    *out = static_cast<uint8_t*>(Allocate(*length));
    if (*out == nullptr) return Fail(StatusOutOfMemory);
    status = WriteTree(node, facts, *out, *length);
    if (status != StatusOk) {
        ReleaseBlock(*out);
        *out = nullptr;
    }
    return status;
}

Status GetAsn1EncodedValue(const void* node, const Asn1Item* item, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(node, item, length)) return Fail(StatusBadArgument);
    return EncodeWithFacts(node, FactsOf(*item), buffer, length);
}
