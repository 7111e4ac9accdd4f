// The decoder and the encoder: the only two that parse and write BER, walking an item and a tree side by side.

#include <string.h>

#include <bit>

#include "engine/codec.h"
#include "engine/items.h"
#include "engine/nodes.h"
#include "engine/output.h"

using namespace tlvforge;

namespace tlvforge {
namespace {

// ---- Header octets -------------------------------------------------------------------------------------------------

struct Header {
    uint32_t tagNumber;
    uint32_t headerLength;
    uint32_t contentLength;  // all that remains in the indefinite form
    uint8_t tagClass;
    uint8_t constructedBit;
    bool indefinite;
};

// Every form of a header. Non-minimal tags and lengths are accepted. Fields that were read before a failure stay
// stored. The declared content is not compared with the bytes that are there: that is for the reader of the content.
[[gnu::noinline]] Status ReadLongHeader(const uint8_t* data, uint32_t length, Header* header) {
    if (length < 2) return Fail(StatusBadEncoding);
    header->tagClass = data[0] & 0xC0;
    header->constructedBit = data[0] & Asn1Constructed;
    header->tagNumber = data[0] & 0x1F;
    uint32_t at = 1;
    if (header->tagNumber == 0x1F) {
        // More than 32 bits of a tag number shift out silently, which is meant.
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

// The header at the front of [at, end). Nearly all are two bytes, and read here.
inline Status ReadHeader(const uint8_t* at, const uint8_t* end, Header* header) {
    if (end - at >= 2 && (at[0] & 0x1F) != 0x1F && at[1] < 0x80) [[likely]] {
        header->tagClass = at[0] & 0xC0;
        header->constructedBit = at[0] & Asn1Constructed;
        header->tagNumber = at[0] & 0x1F;
        header->indefinite = false;
        header->headerLength = 2;
        header->contentLength = at[1];
        return StatusOk;
    }
    return ReadLongHeader(at, static_cast<uint32_t>(end - at), header);
}

// Only where two bytes are left can they be the end-of-contents octets.
inline bool AtEndOfContents(const uint8_t* at, const uint8_t* end) { return end - at >= 2 && at[0] == 0 && at[1] == 0; }

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
            const Status status = ReadHeader(at, end, &header);
            if (status != StatusOk) return status;
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
    Status status;

    Decoded(const uint8_t* used) : next(used), status(StatusOk) {}
    Decoded(Status failure) : next(nullptr), status(failure) {}
};

// In all functions below [at, end) are the bytes that are there, and *out is stored only on success.
Decoded DecodeAnyItem(const uint8_t* at, const uint8_t* end, const Asn1Item& item, Cell* out);

inline bool IsAllowed(uint8_t kind, const uint8_t* content, uint32_t length) {
    if (kind == Asn1KindBoolean) return IsDerBoolean(content, length);
    if (kind == Asn1KindInteger) return IsMinimalInteger(content, length);
    return true;
}

// Primitive, with its own or an implicit tag of one octet.
inline bool IsPlainValue(const Asn1Item& item) {
    return (item.constructedBit | (item.itemFlags & Asn1FlagExplicit)) == 0 && IsValueKind(item.kind) &&
           item.tagNumber < 31;
}

inline Decoded StoreNode(void* node, Cell* out, const uint8_t* next) {
    if (node == nullptr) return Fail(StatusOutOfMemory);
    *out = node;
    return next;
}

// The item isn't there: an error, its default, or null. Nothing is used.
Decoded DecodeAbsent(const uint8_t* at, const Asn1Item& item, Cell* out) {
    if ((item.itemFlags & Asn1FlagOptional) == 0) return Fail(StatusBadEncoding);
    if (item.defaultValue == nullptr) {
        *out = nullptr;
        return at;
    }
    if (IsPlainValue(item) && item.kind != Asn1KindNull) {  // a NULL can't be copied
        const Asn1Value& value = *static_cast<const Asn1Value*>(item.defaultValue);
        return StoreNode(NewValue<Asn1Value>(value.type, value.data, value.length), out, at);
    }
    const Status status = CopyAsn1Object(&item, item.defaultValue, out);
    return status == StatusOk ? Decoded(at) : Decoded(status);
}

Decoded DecodeBitString(const uint8_t* content, const uint8_t* end, Cell* out) {
    if (content == end || content[0] > 7) return Fail(StatusBadEncoding);
    const uint32_t length = static_cast<uint32_t>(end - content - 1);
    Asn1BitString* node = NewRecordWithBytes<Asn1BitString>(length);
    if (node == nullptr) return Fail(StatusOutOfMemory);
    node->unusedBits = content[0];
    if (length != 0) {
        memcpy(node->data, content + 1, length);
        node->data[length - 1] &= static_cast<uint8_t>(0xFF << node->unusedBits);
    }
    *out = node;
    return end;
}

inline Decoded DecodePrimitive(const uint8_t* content, const uint8_t* end, uint8_t kind, Cell* out) {
    if (kind == Asn1KindBitString) return DecodeBitString(content, end, out);
    if (!IsValueKind(kind)) return Fail(StatusUnsupportedKind);
    const uint32_t length = static_cast<uint32_t>(end - content);
    if (!IsAllowed(kind, content, length)) return Fail(StatusBadValue);
    return StoreNode(NewValue<Asn1Value>(kind, content, length), out, end);
}

// Most elements are present primitive values with a header of two bytes: they are made here, everything else below.
inline Decoded DecodeElement(const uint8_t* at, const uint8_t* end, const Asn1Item& item, Cell* out) {
    CountDecoderVisit();
    if (end - at >= 2 && IsPlainValue(item) && at[0] == (item.tagClass | TagOf(item)) && at[1] < 0x80 &&
        at[1] <= end - at - 2 && IsAllowed(item.kind, at + 2, at[1])) {
        return StoreNode(NewValue<Asn1Value>(item.kind, at + 2, at[1]), out, at + 2 + at[1]);
    }
    return DecodeAnyItem(at, end, item, out);
}

// A constructed OCTET STRING, which is accepted in indefinite form only: its segments are measured, then joined
// in one block. A segment's class and form are not looked at, and a segment is not descended into.
Decoded DecodeSegments(const uint8_t* content, const uint8_t* end, bool indefinite, Cell* out) {
    uint32_t total = 0;
    const uint8_t* at = content;
    while (at != end && !(indefinite && AtEndOfContents(at, end))) {
        Header header;
        const Status status = ReadHeader(at, end, &header);
        if (status != StatusOk) return status;
        if (header.tagNumber != Asn1KindOctetString) return Fail(StatusBadSegment);
        at += header.headerLength;
        if (header.contentLength > static_cast<uint64_t>(end - at)) return Fail(StatusBadEncoding);
        at += header.contentLength;
        total += header.contentLength;
    }

    Asn1Value* node = NewRecordWithBytes<Asn1Value>(total);
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

// A decoded list is known to get elements: a table as the growth to their count would have made it, but at once. The
// smallest is beside the record.
Asn1List* NewListWithTable(uint32_t count) {
    uint64_t slots = NextSlots(0);
    const bool beside = count <= slots;
    while (slots < count) slots = NextSlots(slots);
    void* block = Allocate(sizeof(Asn1List) + (beside ? slots * sizeof(void*) : 0));
    if (block == nullptr) return nullptr;
    Asn1List* list = new (block) Asn1List{};
    list->items = beside ? reinterpret_cast<void**>(list + 1) : static_cast<void**>(Allocate(slots * sizeof(void*)));
    list->capacity = static_cast<uint32_t>(slots);
    list->sorted = 1;
    if (list->items != nullptr) return list;
    Release(block);
    return nullptr;
}

// In indefinite form a list may end with its bytes, without end-of-contents octets.
Decoded DecodeElements(const uint8_t* at, const uint8_t* end, bool indefinite, const Asn1Item& element,
                       Asn1List* list) {
    while (at != end) {
        if (end - at == 1) return Fail(StatusBadEncoding);
        if (indefinite && AtEndOfContents(at, end)) return at + 2;
        const Status status = ReserveAsn1ListItem(list);
        if (status != StatusOk) return status;
        const Decoded decoded = DecodeElement(at, end, element, &static_cast<Cell*>(list->items)[list->count]);
        if (decoded.status != StatusOk) return decoded;
        ++list->count;
        if (decoded.next == at) return Fail(StatusBadEncoding);  // an absent optional element, again and again
        at = decoded.next;
    }
    return end;
}

// Elements keep the order of the input, for SET OF too.
Decoded DecodeList(const uint8_t* at, const uint8_t* end, bool indefinite, const Asn1Item& item, Cell* out) {
    if (item.childCount != 1 || item.children == nullptr || item.children[0] == nullptr) return Fail(StatusBadItem);
    const bool ended = indefinite && AtEndOfContents(at, end);
    if (at == end || ended) return StoreNode(AllocAsn1List(), out, ended ? at + 2 : end);
    Asn1List* list = NewListWithTable(CountElements(at, end, indefinite));
    if (list == nullptr) return Fail(StatusOutOfMemory);
    const Decoded decoded = DecodeElements(at, end, indefinite, *item.children[0], list);
    if (decoded.status != StatusOk) {
        FreeAsn1Object(&item, list);
        return decoded;
    }
    *out = list;
    return decoded;
}

// Fills the cells of a new block, which have not been zeroed: after a failure those that are left are nulled.
Decoded DecodeFields(const uint8_t* at, const uint8_t* end, const Asn1Item& item, Cell* block) {
    for (uint32_t i = 0; i < item.childCount; ++i) {
        const Decoded decoded = item.children[i] != nullptr ? DecodeElement(at, end, *item.children[i], &block[i])
                                                            : Decoded(Fail(StatusBadArgument));
        if (decoded.status != StatusOk) {
            for (; i < item.childCount; ++i) block[i] = nullptr;
            return decoded;
        }
        at = decoded.next;
    }
    return at;
}

// SEQUENCE and SET alike are decoded by position, in the order of the schema.
Decoded DecodeBlock(const uint8_t* at, const uint8_t* end, bool indefinite, const Asn1Item& item, Cell* out) {
    if (item.kind != Asn1KindSequence && item.kind != Asn1KindSet) return Fail(StatusBadArgument);
    if (item.children == nullptr && item.childCount != 0) return Fail(StatusBadArgument);
    Cell* block = static_cast<Cell*>(Allocate(BlockSize(item)));
    if (block == nullptr) return Fail(StatusOutOfMemory);
    const size_t cells = item.childCount * sizeof(void*);
    if (cells < BlockSize(item)) memset(block + item.childCount, 0, BlockSize(item) - cells);
    Decoded decoded = DecodeFields(at, end, item, block);
    if (decoded.status == StatusOk && indefinite && !AtEndOfContents(decoded.next, end)) {
        decoded = Fail(StatusBadIndefinite);
    }
    if (decoded.status != StatusOk) {
        FreeAsn1Object(&item, block);
        return decoded;
    }
    *out = block;
    return indefinite ? decoded.next + 2 : end;  // unknown fields behind the last known one are passed over
}

// Whether an alternative of a CHOICE begins with this header. An alternative's own content isn't looked into.
inline bool Matches(const Asn1Item& alternative, const Header& header) {
    if (alternative.tagClass != header.tagClass) return false;
    if ((alternative.itemFlags & Asn1FlagExplicit) != 0) {
        return header.constructedBit != 0 && static_cast<uint32_t>(alternative.tagNumber) == header.tagNumber;
    }
    return alternative.constructedBit == header.constructedBit &&
           static_cast<uint32_t>(TagOf(alternative)) == header.tagNumber;
}

Decoded DecodeChoice(const uint8_t* at, const uint8_t* end, const Header& header, const Asn1Item& item, Cell* out) {
    if (item.children == nullptr && item.childCount != 0) return Fail(StatusBadArgument);
    for (uint32_t i = 0; i < item.childCount; ++i) {
        if (item.children[i] == nullptr) return Fail(StatusBadArgument);
        if (!Matches(*item.children[i], header)) continue;
        Asn1Choice* choice = AllocAsn1Choice(i);
        if (choice == nullptr) return Fail(StatusOutOfMemory);
        const Decoded decoded = DecodeElement(at, end, *item.children[i], reinterpret_cast<Cell*>(&choice->value));
        if (decoded.status != StatusOk) {
            Release(choice);
            return decoded;
        }
        *out = choice;
        return decoded;
    }
    return DecodeAbsent(at, item, out);
}

// ANY takes whatever stands there, header included.
Decoded DecodeAny(const uint8_t* at, const uint8_t* end, const Header& header, Cell* out) {
    const uint8_t* next = at + header.headerLength;
    if (header.indefinite) {
        const Status status = MeasureIndefinite(next, end, &next);
        if (status != StatusOk) return status;
    } else {
        if (header.contentLength > static_cast<uint64_t>(end - next)) return Fail(StatusBadEncoding);
        next += header.contentLength;
    }
    return StoreNode(NewValue<Asn1Any>(header.tagNumber, at, static_cast<uint32_t>(next - at)), out, next);
}

// A matching element that isn't CHOICE or ANY.
inline Decoded DecodeContent(const uint8_t* at, const uint8_t* end, const Header& header, const Asn1Item& item,
                             Cell* out) {
    const uint8_t* content = at + header.headerLength;
    if (header.contentLength > static_cast<uint64_t>(end - content)) return Fail(StatusBadEncoding);
    const uint8_t* contentEnd = content + header.contentLength;
    if (header.constructedBit == 0) {
        if (header.indefinite) return Fail(StatusBadIndefinite);
        return DecodePrimitive(content, contentEnd, item.kind, out);
    }
    if (item.kind == Asn1KindOctetString) return DecodeSegments(content, contentEnd, header.indefinite, out);
    if (IsList(item)) return DecodeList(content, contentEnd, header.indefinite, item, out);
    return DecodeBlock(content, contentEnd, header.indefinite, item, out);
}

// One element against an item, without the explicit wrapper that it may have.
inline Decoded DecodeBody(const uint8_t* at, const uint8_t* end, const Asn1Item& item, uint8_t tagClass,
                          int32_t tagNumber, Cell* out) {
    Header header;
    const Status status = ReadHeader(at, end, &header);
    if (status != StatusOk) return status;  // a malformed header is a failure, also where an optional item may stand
    if (item.kind == Asn1KindChoice) return DecodeChoice(at, end, header, item, out);
    if (item.kind == Asn1KindAny) return DecodeAny(at, end, header, out);

    const bool tagFits = header.tagNumber == static_cast<uint32_t>(tagNumber) && header.tagClass == tagClass;
    // A string in segments is taken in indefinite form only; any other constructed string is a tag mismatch.
    const bool formFits = header.constructedBit == item.constructedBit ||
                          (header.indefinite && ((item.kind & 127) == 3 || (item.kind & 127) == 4));
    if (tagFits && formFits) return DecodeContent(at, end, header, item, out);
    return DecodeAbsent(at, item, out);
}

// An item with a wrapper. The wrapper's length is not compared with what the inner element uses: what it declares
// beyond that is left for the next field.
[[gnu::noinline]] Decoded DecodeExplicit(const uint8_t* at, const uint8_t* end, const Asn1Item& item, Cell* out) {
    if (item.tagNumber < 0) return Fail(StatusBadItem);
    Header wrapper;
    const Status status = ReadHeader(at, end, &wrapper);
    if (status != StatusOk) return status;
    if (wrapper.tagNumber != static_cast<uint32_t>(item.tagNumber) || wrapper.tagClass != item.tagClass ||
        wrapper.constructedBit == 0) {
        return DecodeAbsent(at, item, out);
    }
    Cell inner = nullptr;
    const Decoded decoded =
        DecodeBody(at + wrapper.headerLength, end, item, Asn1ClassUniversal, item.kind & 127, &inner);
    if (decoded.status != StatusOk) return decoded;
    if (wrapper.indefinite && !AtEndOfContents(decoded.next, end)) {
        FreeAsn1Object(&item, inner);
        return Fail(StatusBadIndefinite);
    }
    *out = inner;
    return wrapper.indefinite ? decoded.next + 2 : decoded.next;
}

Decoded DecodeAnyItem(const uint8_t* at, const uint8_t* end, const Asn1Item& item, Cell* out) {
    if (at == end) return DecodeAbsent(at, item, out);
    if ((item.itemFlags & Asn1FlagExplicit) != 0) return DecodeExplicit(at, end, item, out);
    return DecodeBody(at, end, item, item.tagClass, TagOf(item), out);
}

// ---- Encoder -------------------------------------------------------------------------------------------------------

// Octets of a length behind its first, and of a tag number behind the first of the identifier.
inline uint32_t LengthOctets(uint64_t length) {
    return length < 0x80 ? 0 : (static_cast<uint32_t>(std::bit_width(length)) + 7) / 8;
}

inline uint32_t TagOctets(uint32_t tagNumber) {
    return tagNumber < 31 ? 0 : (static_cast<uint32_t>(std::bit_width(tagNumber)) + 6) / 7;
}

// The two passes of the encoder are one code over two cursors. The measuring pass goes forward, so that the first fault
// is the one reported, and it alone checks the tree. The writing pass fills its buffer from the end: content first,
// then the header, whose length is simply known then. Each pass visits a node once.
struct Measure {
    using Cursor = uint64_t;  // bytes so far
    static constexpr bool kBackwards = false;
    static constexpr bool kChecks = true;

    static uint64_t Between(Cursor mark, Cursor at) { return at - mark; }
    static Cursor Bytes(Cursor at, const uint8_t*, uint32_t count) { return at + count; }
    static Cursor Octet(Cursor at, uint8_t) { return at + 1; }
    static Cursor Header(Cursor at, uint8_t, uint8_t, uint32_t tagNumber, uint32_t contentLength) {
        if (tagNumber < 31 && contentLength < 0x80) [[likely]]
            return at + 2;
        return at + TlvSize(contentLength, tagNumber) - contentLength;
    }
    static void ReplaceFirst(Cursor, uint8_t) {}
};

struct Write {
    using Cursor = uint8_t*;  // where what is written begins
    static constexpr bool kBackwards = true;
    static constexpr bool kChecks = false;

    static uint64_t Between(Cursor mark, Cursor at) { return static_cast<uint64_t>(mark - at); }
    static Cursor Bytes(Cursor at, const uint8_t* bytes, uint32_t count) {
        CopyBytes(at - count, bytes, count);
        return at - count;
    }
    static Cursor Octet(Cursor at, uint8_t octet) {
        *--at = octet;
        return at;
    }
    static Cursor Header(Cursor at, uint8_t tagClass, uint8_t constructedBit, uint32_t tagNumber,
                         uint32_t contentLength) {
        if (tagNumber < 31 && contentLength < 0x80) [[likely]] {
            at -= 2;
            at[0] = static_cast<uint8_t>(tagClass | constructedBit | tagNumber);
            at[1] = static_cast<uint8_t>(contentLength);
            return at;
        }
        if (tagNumber < 31) {
            uint32_t octets = 0;
            for (; contentLength != 0; contentLength >>= 8, ++octets) *--at = static_cast<uint8_t>(contentLength);
            *--at = static_cast<uint8_t>(0x80 | octets);
            *--at = static_cast<uint8_t>(tagClass | constructedBit | tagNumber);
            return at;
        }
        at -= TlvSize(contentLength, tagNumber) - contentLength;
        WriteHeader(tagClass, constructedBit, tagNumber, contentLength, at);
        return at;
    }
    static void ReplaceFirst(Cursor at, uint8_t octet) { *at = octet; }
};

// The cursor behind what was emitted, or the status of a failure, in two registers.
template <class Pass>
struct Emitted {
    typename Pass::Cursor at;
    Status status;

    static Emitted At(typename Pass::Cursor cursor) { return {cursor, StatusOk}; }
    static Emitted Failed(Status failure) { return {{}, failure}; }
};

template <class Pass>
Emitted<Pass> EmitAnyItem(const void* node, const Asn1Item& item, typename Pass::Cursor at);

// DER leaves out an optional item that equals its DEFAULT. A tree with a NULL or ENUMERATED default can't be compared.
inline Status EqualsDefault(const void* node, const Asn1Item& item, uint32_t* equal) {
    if (!IsPlainValue(item) || item.kind == Asn1KindNull || item.kind == Asn1KindEnumerated) {
        return CompareAsn1Objects(&item, node, item.defaultValue, equal);
    }
    *equal = EqualRecords(*static_cast<const Asn1Value*>(node), *static_cast<const Asn1Value*>(item.defaultValue));
    return StatusOk;
}

inline bool HasDefault(const Asn1Item& item) {
    return item.defaultValue != nullptr && (item.itemFlags & Asn1FlagOptional) != 0;
}

// As in the decoder, most nodes are present primitive values, and most others are alternatives or blocks of them.
template <class Pass>
[[gnu::always_inline]] inline Emitted<Pass> EmitItem(const void* node, const Asn1Item& item, typename Pass::Cursor at) {
    CountEncoderVisit();
    if (node == nullptr) [[unlikely]] {
        if ((item.itemFlags & Asn1FlagOptional) != 0) return Emitted<Pass>::At(at);
        return Emitted<Pass>::Failed(Fail(StatusAbsent));
    }
    if (!IsPlainValue(item)) return EmitAnyItem<Pass>(node, item, at);
    const Asn1Value& value = *static_cast<const Asn1Value*>(node);
    if (Pass::kChecks && HasLostBytes(&value)) return Emitted<Pass>::Failed(Fail(StatusAbsent));
    if (HasDefault(item)) {
        uint32_t equal = 0;
        const Status status = EqualsDefault(node, item, &equal);
        if (status != StatusOk || equal != 0) return {at, status};
    }
    at = Pass::Bytes(at, value.data, value.length);
    return Emitted<Pass>::At(Pass::Header(at, item.tagClass, 0, static_cast<uint32_t>(TagOf(item)), value.length));
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

// Puts the encodings, which lie one behind the other from `at`, into DER order through one scratch block.
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
[[gnu::noinline]] Emitted<Write> WriteSorted(const Asn1List& list, const Asn1Item& element, uint8_t* at) {
    constexpr uint32_t kFew = 16;
    Encoding few[kFew];
    const Block many = list.count > kFew ? Block(list.count * sizeof(Encoding)) : Block();
    Encoding* encodings = list.count > kFew ? reinterpret_cast<Encoding*>(many.Bytes()) : few;
    if (encodings == nullptr) return Emitted<Write>::Failed(Fail(StatusOutOfMemory));

    bool inOrder = true;
    for (uint32_t i = list.count; i-- > 0;) {
        const Emitted<Write> emitted = EmitItem<Write>(list.items[i], element, at);
        if (emitted.status != StatusOk) return emitted;
        encodings[i] = {emitted.at, static_cast<uint32_t>(at - emitted.at)};
        at = emitted.at;
        if (i + 1 < list.count) inOrder = inOrder && CompareEncodings(&encodings[i], &encodings[i + 1]) <= 0;
    }
    return {at, inOrder ? StatusOk : PermuteEncodings(at, encodings, list.count)};
}

template <class Pass>
[[gnu::always_inline]] inline Emitted<Pass> EmitList(const Asn1List& list, const Asn1Item& item,
                                                     typename Pass::Cursor at) {
    if (Pass::kChecks && (item.childCount != 1 || item.children == nullptr || item.children[0] == nullptr)) {
        return Emitted<Pass>::Failed(Fail(StatusBadItem));
    }
    if (Pass::kChecks && list.count != 0 && list.items == nullptr) return Emitted<Pass>::Failed(Fail(StatusAbsent));
    const Asn1Item& element = *item.children[0];
    if constexpr (Pass::kBackwards) {
        if (item.kind == Asn1KindSetOf && list.sorted != 0 && list.count > 1) return WriteSorted(list, element, at);
    }
    for (uint32_t i = 0; i < list.count; ++i) {
        const Emitted<Pass> emitted =
            EmitItem<Pass>(list.items[Pass::kBackwards ? list.count - 1 - i : i], element, at);
        if (emitted.status != StatusOk) return emitted;
        at = emitted.at;
    }
    return Emitted<Pass>::At(at);
}

template <class Pass>
[[gnu::always_inline]] inline Emitted<Pass> EmitFields(const Cell* block, const Asn1Item& item,
                                                       typename Pass::Cursor at) {
    if (Pass::kChecks && item.children == nullptr && item.childCount != 0)
        return Emitted<Pass>::Failed(Fail(StatusBadArgument));
    for (uint32_t i = 0; i < item.childCount; ++i) {
        const uint32_t field = Pass::kBackwards ? item.childCount - 1 - i : i;
        if (Pass::kChecks && item.children[field] == nullptr) return Emitted<Pass>::Failed(Fail(StatusBadArgument));
        const Emitted<Pass> emitted = EmitItem<Pass>(block[field], *item.children[field], at);
        if (emitted.status != StatusOk) return emitted;
        at = emitted.at;
    }
    return Emitted<Pass>::At(at);
}

// Content goes out as it stands: making it canonical is the setters' business.
template <class Pass>
Emitted<Pass> EmitPrimitive(const void* node, uint8_t kind, typename Pass::Cursor at) {
    if (kind == Asn1KindBitString) {
        const Asn1BitString& value = *static_cast<const Asn1BitString*>(node);
        if (Pass::kChecks && HasLostBytes(&value)) return Emitted<Pass>::Failed(Fail(StatusAbsent));
        return Emitted<Pass>::At(Pass::Octet(Pass::Bytes(at, value.data, value.length), value.unusedBits));
    }
    if (!IsValueKind(kind)) return Emitted<Pass>::Failed(Fail(StatusUnsupportedKind));
    const Asn1Value& value = *static_cast<const Asn1Value*>(node);
    if (Pass::kChecks && HasLostBytes(&value)) return Emitted<Pass>::Failed(Fail(StatusAbsent));
    return Emitted<Pass>::At(Pass::Bytes(at, value.data, value.length));
}

template <class Pass>
[[gnu::always_inline]] inline Emitted<Pass> EmitContent(const void* node, const Asn1Item& item,
                                                        typename Pass::Cursor at) {
    if (item.constructedBit == 0) return EmitPrimitive<Pass>(node, item.kind, at);
    if (IsList(item)) return EmitList<Pass>(*static_cast<const Asn1List*>(node), item, at);
    // A fixed SET can be decoded and not encoded.
    if (item.kind != Asn1KindSequence) return Emitted<Pass>::Failed(Fail(StatusUnsupportedKind));
    return EmitFields<Pass>(static_cast<const Cell*>(node), item, at);
}

// An implicit tag takes the place of the captured element's class and number; its constructed bit stays.
template <class Pass>
Emitted<Pass> EmitAny(const Asn1Any& any, const Asn1Item& item, typename Pass::Cursor at) {
    if (Pass::kChecks && HasLostBytes(&any)) return Emitted<Pass>::Failed(Fail(StatusAbsent));
    at = Pass::Bytes(at, any.data, any.length);
    if (item.tagClass == Asn1ClassContext && (item.itemFlags & Asn1FlagExplicit) == 0 && any.length > 0) {
        Pass::ReplaceFirst(at, static_cast<uint8_t>((any.data[0] & Asn1Constructed) | Asn1ClassContext |
                                                    static_cast<uint8_t>(item.tagNumber)));
    }
    return Emitted<Pass>::At(at);
}

template <class Pass>
[[gnu::always_inline]] inline Emitted<Pass> CloseElement(typename Pass::Cursor mark, typename Pass::Cursor at,
                                                         uint8_t tagClass, uint8_t constructedBit, int32_t tagNumber) {
    const uint64_t content = Pass::Between(mark, at);
    if (Pass::kChecks && content > UINT32_MAX) return Emitted<Pass>::Failed(Fail(StatusLengthTooLong));
    return Emitted<Pass>::At(
        Pass::Header(at, tagClass, constructedBit, static_cast<uint32_t>(tagNumber), static_cast<uint32_t>(content)));
}

template <class Pass>
[[gnu::always_inline]] inline Emitted<Pass> EmitBody(const void* node, const Asn1Item& item, uint8_t tagClass,
                                                     int32_t tagNumber, typename Pass::Cursor at) {
    if (item.kind == Asn1KindAny) return EmitAny<Pass>(*static_cast<const Asn1Any*>(node), item, at);
    if (item.kind == Asn1KindChoice) {
        // A tag of the CHOICE itself is not written: only an explicit one has an effect, by its wrapper.
        const Asn1Choice& choice = *static_cast<const Asn1Choice*>(node);
        if (Pass::kChecks && choice.selected >= item.childCount)
            return Emitted<Pass>::Failed(Fail(StatusBadAlternative));
        if (Pass::kChecks && (item.children == nullptr || item.children[choice.selected] == nullptr)) {
            return Emitted<Pass>::Failed(Fail(StatusBadArgument));
        }
        return EmitItem<Pass>(choice.value, *item.children[choice.selected], at);
    }
    const Emitted<Pass> content = EmitContent<Pass>(node, item, at);
    if (content.status != StatusOk) return content;
    return CloseElement<Pass>(at, content.at, tagClass, item.constructedBit, tagNumber);
}

template <class Pass>
Emitted<Pass> EmitAnyItem(const void* node, const Asn1Item& item, typename Pass::Cursor at) {
    if (HasDefault(item)) {
        uint32_t equal = 0;
        const Status status = EqualsDefault(node, item, &equal);
        if (status != StatusOk || equal != 0) return {at, status};
    }
    const bool wrapped = (item.itemFlags & Asn1FlagExplicit) != 0;
    if (Pass::kChecks && wrapped && item.tagNumber < 0) return Emitted<Pass>::Failed(Fail(StatusBadItem));
    const uint8_t tagClass = wrapped ? uint8_t{Asn1ClassUniversal} : item.tagClass;
    const Emitted<Pass> inner = EmitBody<Pass>(node, item, tagClass, wrapped ? item.kind & 127 : TagOf(item), at);
    if (!wrapped || inner.status != StatusOk) return inner;
    return CloseElement<Pass>(at, inner.at, item.tagClass, Asn1Constructed, item.tagNumber);
}

Status MeasureTree(const void* node, const Asn1Item& item, uint32_t* length) {
    const Emitted<Measure> measured = EmitItem<Measure>(node, item, 0);
    if (measured.status != StatusOk) return measured.status;
    if (measured.at > UINT32_MAX) return Fail(StatusLengthTooLong);
    *length = static_cast<uint32_t>(measured.at);
    return StatusOk;
}

Status WriteTree(const void* node, const Asn1Item& item, uint8_t* buffer, uint32_t length) {
    return EmitItem<Write>(node, item, buffer + length).status;
}

}  // namespace

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
    Cell node = nullptr;
    const Decoded decoded = DecodeElement(data, data + length, *item, &node);
    *static_cast<Cell*>(out) = node;
    if (decoded.status == StatusOk) *consumed = static_cast<uint32_t>(decoded.next - data);
    return decoded.status;
}

Status Asn1Encode(const void* node, const Asn1Item* item, uint8_t** out, uint32_t* length) {
    if (AnyNull(node, item, length)) return Fail(StatusBadArgument);
    Status status = MeasureTree(node, *item, length);
    if (status != StatusOk || out == nullptr) return status;
    *out = static_cast<uint8_t*>(Allocate(*length));
    if (*out == nullptr) return Fail(StatusOutOfMemory);
    status = WriteTree(node, *item, *out, *length);
    if (status != StatusOk) {
        Release(*out);
        *out = nullptr;
    }
    return status;
}

Status GetAsn1EncodedValue(const void* node, const Asn1Item* item, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(node, item, length)) return Fail(StatusBadArgument);
    uint32_t needed = 0;
    Status status = MeasureTree(node, *item, &needed);
    if (status != StatusOk) return status;
    bool write = false;
    status = ReserveOutput(needed, buffer, length, &write);
    return write ? WriteTree(node, *item, buffer, needed) : status;
}
