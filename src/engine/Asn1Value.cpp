// Value records: raw content, BOOLEAN, INTEGER, and the codecs of single primitive elements.

#include "engine/alias.h"
#include "engine/codec.h"
#include "engine/items.h"
#include "engine/nodes.h"
#include "engine/output.h"

using namespace tlvforge;

namespace tlvforge {
namespace {

// Bytes of a number in minimal two's complement, big-endian, right-aligned in its field.
struct Int32Bytes {
    uint8_t bytes[4];
    uint32_t skip;

    explicit Int32Bytes(int32_t number) : skip(0) {
        for (int i = 0; i < 4; ++i) bytes[i] = static_cast<uint8_t>(static_cast<uint32_t>(number) >> (24 - 8 * i));
        while (skip < 3 && bytes[skip] == (bytes[skip + 1] & 0x80 ? 0xFF : 0x00)) ++skip;
    }
    const uint8_t* Data() const { return bytes + skip; }
    uint32_t Length() const { return 4 - skip; }
};

// The records of values and of captured elements have the same fields.
Status GiveValue(const void* value, uint8_t* buffer, uint32_t* length) {
    Asn1Value record;
    memcpy(&record, value, sizeof(record));
    if (HasLostBytes(&record)) return Fail(StatusAbsent);
    return CopyOut(record.data, record.length, buffer, length);
}

constexpr Asn1Item PrimitiveItem(uint8_t kind) {
    Asn1Item item = itemOf<schema::OctetString>;
    item.kind = kind;
    return item;
}

}  // namespace

Asn1Value* AllocAsn1Value(uint32_t type, const uint8_t* data, uint32_t length) {
    return NewValue<Asn1Value>(type, data, length);
}

// Copies first, so that a value can be set from its own bytes. After a failed copy the bytes are lost: null data
// with the new length.
Status SetAsn1Value(Asn1Value* value, uint32_t type, const uint8_t* data, uint32_t length) {
    if (value == nullptr || (data == nullptr && length != 0)) return Fail(StatusBadArgument);
    uint8_t* copy = CopyOfBytes(data, length);
    ReleaseBytes(value);
    *value = {type, length, copy};
    return HasLostBytes(value) ? Fail(StatusOutOfMemory) : StatusOk;
}

Status SetAsn1ValueField(Asn1Value** field, uint32_t type, const uint8_t* data, uint32_t length) {
    if (field == nullptr || (data == nullptr && length != 0)) return Fail(StatusBadArgument);
    if (*field != nullptr) return SetAsn1Value(*field, type, data, length);
    *field = AllocAsn1Value(type, data, length);
    return *field == nullptr ? Fail(StatusOutOfMemory) : StatusOk;
}

Status SetAsn1BooleanField(Asn1Value** field, int32_t flag) {
    const uint8_t content = flag != 0 ? 0xFF : 0x00;
    return SetAsn1ValueField(field, Asn1KindBoolean, &content, 1);
}

Status SetAsn1Int32Field(Asn1Value** field, int32_t number) {
    const Int32Bytes bytes(number);
    return SetAsn1ValueField(field, Asn1KindInteger, bytes.Data(), bytes.Length());
}

}  // namespace tlvforge

Status GetAsn1Value(const void* value, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(static_cast<const uint8_t*>(value), length)) return Fail(StatusBadArgument);
    return GiveValue(value, buffer, length);
}

Status GetAsn1ValueAndType(const void* value, uint32_t* type, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(static_cast<const uint8_t*>(value), type, length)) return Fail(StatusBadArgument);
    Asn1Value record;
    memcpy(&record, value, sizeof(record));
    if (record.data == nullptr) return Fail(StatusAbsent);
    const Status status = GiveValue(value, buffer, length);
    if (status == StatusOk && buffer != nullptr) *type = record.type;
    return status;
}

uint32_t GetAsn1ValueLength(const void* value) {
    if (value == nullptr) return 0;
    Asn1Value record;
    memcpy(&record, value, sizeof(record));
    return record.length;
}

Asn1Value* AllocAsn1Boolean(uint32_t flag) {
    const uint8_t content = flag != 0 ? 0xFF : 0x00;
    return NewValueInTwoBlocks<Asn1Value>(Asn1KindBoolean, &content, 1);
}

Status GetAsn1Boolean(const Asn1Value* value, uint32_t* flag) {
    if (AnyNull(value, flag)) return Fail(StatusBadArgument);
    if (HasLostBytes(value)) return Fail(StatusAbsent);
    if (!IsDerBoolean(value->data, value->length)) return Fail(StatusBadValue);
    *flag = value->data[0] != 0 ? 1 : 0;
    return StatusOk;
}

Status CheckAsn1Boolean(const Asn1Value* value) {
    if (value == nullptr) return Fail(StatusBadArgument);
    const bool allowed =
        value->type == Asn1KindBoolean && !HasLostBytes(value) && IsDerBoolean(value->data, value->length);
    return allowed ? StatusOk : Fail(StatusBadValue);
}

Status CheckAsn1Integer(const Asn1Value* value) {
    if (value == nullptr) return Fail(StatusBadArgument);
    const bool allowed =
        value->type == Asn1KindInteger && !HasLostBytes(value) && IsMinimalInteger(value->data, value->length);
    return allowed ? StatusOk : Fail(StatusBadValue);
}

Asn1Value* AllocAsn1Integer(int32_t value) {
    const Int32Bytes bytes(value);
    return NewValueInTwoBlocks<Asn1Value>(Asn1KindInteger, bytes.Data(), bytes.Length());
}

Asn1Value* AllocAsn1Integer_s(const uint8_t* data, uint32_t length) {
    return NewValueInTwoBlocks<Asn1Value>(Asn1KindInteger, data, length);
}

Status SetAsn1Integer(Asn1Value* value, const uint8_t* data, uint32_t length) {
    if (AnyNull(value, data) || length == 0) return Fail(StatusBadArgument);
    // The sign is decided once, by the very top byte; padding bytes of that sign are dropped.
    const uint8_t padding = data[length - 1] & 0x80 ? 0xFF : 0x00;
    while (length > 1 && data[length - 1] == padding && (data[length - 2] & 0x80) == (padding & 0x80)) --length;
    uint8_t* bytes = static_cast<uint8_t*>(Allocate(length));
    for (uint32_t i = 0; bytes != nullptr && i < length; ++i) bytes[i] = data[length - 1 - i];
    ReleaseBytes(value);
    *value = {Asn1KindInteger, length, bytes};
    return bytes == nullptr ? Fail(StatusOutOfMemory) : StatusOk;
}

Status SetAsn1Int32(Asn1Value* value, int32_t number) {
    if (value == nullptr) return Fail(StatusBadArgument);
    return SetAsn1Int32Field(&value, number);
}

Status GetAsn1Integer(const Asn1Value* value, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(value, length)) return Fail(StatusBadArgument);
    if (value->data == nullptr) return Fail(StatusAbsent);
    bool write = false;
    const Status status = ReserveOutput(value->length, buffer, length, &write);
    for (uint32_t i = 0; write && i < value->length; ++i) buffer[i] = value->data[value->length - 1 - i];
    return status;
}

Status GetAsn1Int32(const Asn1Value* value, int32_t* number) {
    if (AnyNull(value, number)) return Fail(StatusBadArgument);
    uint8_t bytes[4] = {};
    uint32_t length = sizeof(bytes);
    const Status status = GetAsn1Integer(value, bytes, &length);
    if (status != StatusOk) return status;
    uint32_t result = length != 0 && bytes[length - 1] & 0x80 ? UINT32_MAX : 0;
    for (uint32_t i = length; i-- > 0;) result = result << 8 | bytes[i];
    *number = static_cast<int32_t>(result);
    return StatusOk;
}

Status DecodeAsn1Int32(const uint8_t* data, uint32_t length, int32_t* number) {
    if (AnyNull(data, number) || length == 0) return Fail(StatusBadArgument);
    Tree<schema::Integer> value;
    const Status status = value.Decode(data, length);
    return status == StatusOk ? GetAsn1Int32(value.Get(), number) : status;
}

Status EncodeAsn1Int32(int32_t number, uint8_t* buffer, uint32_t* length) {
    const Int32Bytes bytes(number);
    return EncodeAsn1PrimitiveValue(Asn1KindInteger, bytes.Data(), bytes.Length(), buffer, length);
}

Status DecodeAsn1PrimitiveValue(uint8_t kind, const uint8_t* data, uint32_t length, uint8_t* buffer,
                                uint32_t* bufferLength) {
    if (AnyNull(data, bufferLength)) return Fail(StatusBadArgument);
    const Asn1Item item = PrimitiveItem(kind);
    if (kind == Asn1KindBitString) {
        Tree<schema::BitString> bits;
        const Status status = bits.Decode(data, length);
        return status == StatusOk ? CopyOut(bits->data, bits->length, buffer, bufferLength) : status;
    }
    void* value = nullptr;
    uint32_t consumed = 0;
    Status status = Asn1DecodeItem(data, length, &item, &value, &consumed);
    if (status == StatusOk) status = GiveValue(value, buffer, bufferLength);
    FreeAsn1Object(&item, value);
    return status;
}

Status EncodeAsn1PrimitiveValue(uint8_t kind, const uint8_t* data, uint32_t length, uint8_t* buffer,
                                uint32_t* bufferLength) {
    if (AnyNull(data, bufferLength)) return Fail(StatusBadArgument);
    const Asn1Item item = PrimitiveItem(kind);
    uint8_t* bytes = const_cast<uint8_t*>(data);  // the encoder only reads
    const Asn1Value value = {kind, length, bytes};
    const Asn1Any any = {kind, length, bytes};
    const Asn1BitString bits = {0, length, bytes};
    const Asn1Choice choice = {0, nullptr};
    const void* node = kind == Asn1KindBitString ? static_cast<const void*>(&bits)
                       : kind == Asn1KindAny     ? static_cast<const void*>(&any)
                       : kind == Asn1KindChoice  ? static_cast<const void*>(&choice)
                                                 : static_cast<const void*>(&value);
    return GetAsn1EncodedValue(node, &item, buffer, bufferLength);
}

Status DecodeAsn1UTF8String(const uint8_t* data, uint32_t length, uint8_t* text, uint32_t* textLength) {
    return DecodeAsn1PrimitiveValue(Asn1KindUTF8String, data, length, text, textLength);
}

Status EncodeAsn1UTF8String(const uint8_t* text, uint32_t textLength, uint8_t* buffer, uint32_t* length) {
    return EncodeAsn1PrimitiveValue(Asn1KindUTF8String, text, textLength, buffer, length);
}

Status DecodeAsn1IA5String(const uint8_t* data, uint32_t length, uint8_t* text, uint32_t* textLength) {
    return DecodeAsn1PrimitiveValue(Asn1KindIA5String, data, length, text, textLength);
}

Status EncodeAsn1IA5String(const uint8_t* text, uint32_t textLength, uint8_t* buffer, uint32_t* length) {
    return EncodeAsn1PrimitiveValue(Asn1KindIA5String, text, textLength, buffer, length);
}

Status DecodeAsn1NumericString(const uint8_t* data, uint32_t length, uint8_t* text, uint32_t* textLength) {
    return DecodeAsn1PrimitiveValue(Asn1KindNumericString, data, length, text, textLength);
}

Status EncodeAsn1NumericString(const uint8_t* text, uint32_t textLength, uint8_t* buffer, uint32_t* length) {
    return EncodeAsn1PrimitiveValue(Asn1KindNumericString, text, textLength, buffer, length);
}

// One function under several names.
TLVFORGE_ALIAS(GetAsn1AnyValue, GetAsn1Value);
TLVFORGE_ALIAS(DecodeAsn1Enumerated, DecodeAsn1Int32);
TLVFORGE_ALIAS(EncodeAsn1Enumerated, EncodeAsn1Int32);
