#include "engine/nodes.h"
#include "engine/output.h"

using namespace tlvforge;

namespace tlvforge {
namespace {

// Clears the unused bits of the last byte and, on request, drops trailing zero bits, which DER wants of named bits.
void Normalise(Asn1BitString* bitString, bool trim) {
    if (bitString->length == 0) {
        bitString->unusedBits = 0;
        return;
    }
    uint8_t* last = &bitString->data[bitString->length - 1];
    *last &= static_cast<uint8_t>(0xFF << bitString->unusedBits);
    if (!trim) return;
    while (bitString->length != 0 && bitString->data[bitString->length - 1] == 0) --bitString->length;
    bitString->unusedBits = 0;
    if (bitString->length == 0) return;
    const uint8_t end = bitString->data[bitString->length - 1];
    while ((end >> bitString->unusedBits & 1) == 0) ++bitString->unusedBits;
}

}  // namespace

Asn1BitString* AllocAsn1BitString(const uint8_t* data, uint32_t length, uint8_t unusedBits, bool trim) {
    if (data == nullptr || unusedBits > 7) return NewRecord<Asn1BitString>();
    Asn1BitString* bitString = NewRecordWithBytes<Asn1BitString>(length);
    if (bitString == nullptr) return nullptr;
    CopyBytes(BytesBeside(bitString), data, length);
    bitString->unusedBits = unusedBits;
    Normalise(bitString, trim);
    return bitString;
}

Status SetAsn1BitString(Asn1BitString* bitString, const uint8_t* data, uint32_t length, uint8_t unusedBits, bool trim) {
    if (AnyNull(bitString, data) || unusedBits > 7) return Fail(StatusBadArgument);
    uint8_t* copy = CopyOfBytes(data, length);
    ReleaseBytes(bitString);
    *bitString = {unusedBits, length, copy};
    if (HasLostBytes(bitString)) return Fail(StatusOutOfMemory);
    Normalise(bitString, trim);
    return StatusOk;
}

Status SetAsn1BitStringField(Asn1BitString** field, const uint8_t* data, uint32_t length) {
    if (AnyNull(field, data)) return Fail(StatusBadArgument);
    if (*field != nullptr) return SetAsn1BitString(*field, data, length, 0);
    *field = AllocAsn1BitString(data, length, 0);
    return *field == nullptr ? Fail(StatusOutOfMemory) : StatusOk;
}

Asn1BitString* AllocAsn1BitStringFromFlags(uint32_t flags) {
    uint8_t bytes[4];
    for (int i = 0; i < 4; ++i) bytes[i] = static_cast<uint8_t>(flags >> (8 * i));
    return AllocAsn1BitString(bytes, sizeof(bytes), 0, true);
}

uint32_t FlagsOfAsn1BitString(const Asn1BitString* bitString) {
    uint32_t flags = 0;
    if (bitString->data == nullptr) return flags;
    for (uint32_t i = 0; i < 4 && i < bitString->length; ++i) flags |= uint32_t{bitString->data[i]} << (8 * i);
    return flags;
}

}  // namespace tlvforge

Status GetAsn1BitString(const Asn1BitString* bitString, uint8_t* unusedBits, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(bitString, length)) return Fail(StatusBadArgument);
    if (bitString->data == nullptr) return Fail(StatusAbsent);
    if (unusedBits != nullptr) *unusedBits = bitString->unusedBits;
    return CopyOut(bitString->data, bitString->length, buffer, length);
}
