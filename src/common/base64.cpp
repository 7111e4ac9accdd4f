#include "common/base64.h"

#include <string.h>

#include "engine/output.h"
#include "tlvforge/pem.h"

namespace tlvforge {
namespace {

constexpr uint32_t kLineBytes = 48;
constexpr uint32_t kLineAndEnd = 66;

char* WriteGroups(const uint8_t* data, const uint8_t* end, char* text) {
    for (; data != end; data += 3, text += 4) {
        const uint32_t bits = static_cast<uint32_t>(data[0] << 16 | data[1] << 8 | data[2]);
        text[0] = kBase64Alphabet[bits >> 18];
        text[1] = kBase64Alphabet[bits >> 12 & 63];
        text[2] = kBase64Alphabet[bits >> 6 & 63];
        text[3] = kBase64Alphabet[bits & 63];
    }
    return text;
}

// Size of what a text in the layout of the encoder decodes to; 3 * n is meant to be cut to 32 bits.
uint32_t DecodedSize(const char* text, uint32_t length) {
    const uint32_t size = 3 * (length - 2 * (length / kLineAndEnd)) / 4;
    uint32_t padding = 0;
    if (length >= 2 && kBase64Values.IsPadding(text[length - 2])) {
        padding = 2;
    } else if (length >= 1 && kBase64Values.IsPadding(text[length - 1])) {
        padding = 1;
    }
    return size > padding ? size - padding : 0;
}

}  // namespace

char* WriteBase64(const uint8_t* data, uint32_t length, char* text) {
    for (; length > kLineBytes; length -= kLineBytes) {
        text = WriteGroups(data, data + kLineBytes, text);
        *text++ = '\r';
        *text++ = '\n';
        data += kLineBytes;
    }
    const uint32_t rest = length % 3;
    text = WriteGroups(data, data + length - rest, text);
    if (rest == 0) return text;
    uint8_t padded[3] = {};
    memcpy(padded, data + length - rest, rest);
    text = WriteGroups(padded, padded + 3, text);
    memset(text - (3 - rest), '=', 3 - rest);
    return text;
}

}  // namespace tlvforge

using namespace tlvforge;

Status EncodeToBase64(const uint8_t* data, uint32_t length, char* text, uint32_t* textLength) {
    if (AnyNull(data, textLength)) return Fail(StatusBadArgument);
    const uint64_t size = Base64Size(Base64Characters(length));
    if (size > UINT32_MAX) return Fail(StatusBadArgument);
    bool write = false;
    const Status status = ClaimBuffer(static_cast<uint32_t>(size), text, textLength, &write);
    if (write) WriteBase64(data, length, text);
    return status;
}

Status DecodeFromBase64(const char* text, uint32_t length, uint8_t* data, uint32_t* dataLength) {
    if (AnyNull(text, dataLength)) return Fail(StatusBadArgument);
    const uint32_t size = DecodedSize(text, length);
    bool write = false;
    const Status status = ClaimBuffer(size, data, dataLength, &write);
    if (!write) return status;

    uint64_t position = 0;
    uint32_t stored = 0;
    uint64_t lastInLine = kLineAndEnd - 6;
    // All groups but the last; the text may hold more of them than its size says.
    while (position + 4 < length && size - stored >= 3) {
        DecodeBase64Group(text + position, data + stored);
        stored += 3;
        if (position == lastInLine) {
            lastInLine += kLineAndEnd;
            position += 2;
        }
        position += 4;
    }

    // One group remains. It may be cut off: characters that aren't there count as none. Padding needs no look,
    // the size has left it out.
    char group[4] = {};
    if (position < length) memcpy(group, text + position, length - position < 4 ? length - position : 4);
    uint8_t bytes[3];
    DecodeBase64Group(group, bytes);
    const uint32_t count = size - stored < 3 ? size - stored : 3;
    memcpy(data + stored, bytes, count);
    return StatusOk;
}
