#include "tlvforge/convert.h"

#include <string.h>

#include "common/texts.h"
#include "engine/alias.h"
#include "engine/output.h"

using namespace tlvforge;

namespace {

// The public key block: a key of the long form fills its front, one of the short form lies in two halves.
constexpr uint32_t kBlockSize = 256;
constexpr uint32_t kLongKey = 128;
constexpr uint32_t kShortKey = 64;
constexpr uint32_t kHalf = kShortKey / 2;
constexpr uint32_t kSecondHalfAt = 64;
constexpr uint32_t kVersionAt = 252;
constexpr uint32_t kMarkerAt = 254;

constexpr char kVersion[] = {'v', '5'};
constexpr char kLongMarkers[] = {'1', '2', '3'};
constexpr char kShortMarkers[] = {'A', 'B', 'C', 'D', 'X', 'Y', 'a', 'b', 'c', 'x', 'y'};

template <size_t Count>
bool Contains(const char (&markers)[Count], uint8_t marker) {
    return memchr(markers, marker, Count) != nullptr;
}

// Suggests a size for the text.
Status RefuseBuffer(const char* text, uint32_t* length) {
    *length = static_cast<uint32_t>(2 * strlen(text) + 20);
    return Fail(StatusBufferTooSmall);
}

}  // namespace

Status ConvertZelcryptPublicKeyToX509(const uint8_t* key, uint32_t keyLength, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(key, length) || keyLength != kBlockSize) return Fail(StatusBadArgument);
    const uint8_t marker = key[kMarkerAt];
    if (Contains(kLongMarkers, marker)) return CopyOut(key, kLongKey, buffer, length);
    if (!Contains(kShortMarkers, marker)) return Fail(StatusBadKeyForm);
    uint8_t joined[kShortKey];
    memcpy(joined, key, kHalf);
    memcpy(joined + kHalf, key + kSecondHalfAt, kHalf);
    return CopyOut(joined, kShortKey, buffer, length);
}

Status ConvertX509PublicKeyToZelcrypt(const uint8_t* key, uint32_t keyLength, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(key, length) || (keyLength != kShortKey && keyLength != kLongKey)) return Fail(StatusBadArgument);
    // No marker is set, and the way back refuses the block: see docs/oddities.md.
    uint8_t block[kBlockSize] = {};
    if (keyLength == kLongKey) {
        memcpy(block, key, kLongKey);
    } else {
        memcpy(block, key, kHalf);
        memcpy(block + kSecondHalfAt, key + kHalf, kHalf);
    }
    memcpy(block + kVersionAt, kVersion, sizeof kVersion);
    return CopyOut(block, kBlockSize, buffer, length);
}

Status ConvertZelcryptSignatureToX509(const uint8_t* signature, uint32_t length, uint8_t* buffer,
                                      uint32_t* bufferLength) {
    if (AnyNull(signature, bufferLength) || (length != 64 && length != 128)) return Fail(StatusBadArgument);
    bool write = false;
    const Status status = ReserveOutput(length, buffer, bufferLength, &write);
    if (!write) return status;
    for (uint32_t index = 0; index < length; ++index) buffer[length - 1 - index] = signature[index];
    return StatusOk;
}

Status ConvertAnsiToUTF8(const char* text, char* buffer, uint32_t* length) {
    if (AnyNull(text, buffer, length)) return Fail(StatusBadArgument);
    // Sizes are signed here: from 2^31 on they are below every position.
    const int64_t lastStart = int64_t{static_cast<int32_t>(*length)} - 10;
    char* out = buffer;
    for (const char* in = text; *in != 0; ++in) {
        if (out - buffer > lastStart) return RefuseBuffer(text, length);
        out = PutUtf8(static_cast<uint8_t>(*in), out);
    }
    // An empty text needs no room, not even for its zero.
    if (*length != 0) *out = 0;
    *length = static_cast<uint32_t>(out - buffer);
    return StatusOk;
}

Status IsArrayEquals(const uint8_t* left, int32_t leftLength, const uint8_t* right, int32_t rightLength) {
    if (left == nullptr && right == nullptr) return StatusOk;
    if (AnyNull(left, right) || leftLength != rightLength) return Fail(StatusNotEqual);
    if (leftLength <= 0) return StatusOk;
    if (memcmp(left, right, static_cast<size_t>(leftLength)) != 0) return Fail(StatusNotEqual);
    return StatusOk;
}

TLVFORGE_ALIAS(ConvertX509SignatureToZelcrypt, ConvertZelcryptSignatureToX509);
