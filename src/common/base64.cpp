#include "common/base64.h"

#include <string.h>

#include <algorithm>

#include "engine/output.h"
#include "tlvforge/pem.h"

namespace tlvforge {
namespace {

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
    const uint32_t size = 3 * (length - 2 * (length / kBase64LineAndEnd)) / 4;
    uint32_t padding = 0;
    if (length >= 2 && kBase64Values.IsPadding(text[length - 2])) {
        padding = 2;
    } else if (length >= 1 && kBase64Values.IsPadding(text[length - 1])) {
        padding = 1;
    }
    return size > padding ? size - padding : 0;
}

void DecodeGroups(const char* text, const char* end, uint8_t* data) {
    for (; text != end; text += 4, data += 3) DecodeBase64Group(text, data);
}

// Lines that have more characters after them, and room. Foreign characters are for the table.
uint32_t DecodeFullLines(const char* text, uint32_t length, uint8_t* data, uint32_t size) {
    if (length <= kBase64LineCharacters) return 0;
    const uint32_t inText = (length - kBase64LineCharacters - 1) / kBase64LineAndEnd + 1;
    const uint32_t lines = std::min(inText, size / kBase64LineBytes);
    for (uint32_t line = 0; line < lines; ++line) {
        const char* at = text + size_t{line} * kBase64LineAndEnd;
        uint8_t* to = data + size_t{line} * kBase64LineBytes;
        const uint32_t fast = DecodeBase64Lines(at, lines - line, to);
        line += fast;
        if (line == lines) break;
        at += size_t{fast} * kBase64LineAndEnd;
        DecodeGroups(at, at + kBase64LineCharacters, to + size_t{fast} * kBase64LineBytes);
    }
    return lines;
}

}  // namespace

char* WriteBase64(const uint8_t* data, uint32_t length, char* text) {
    const uint32_t lines = length != 0 ? (length - 1) / kBase64LineBytes : 0;  // but for the last one
    const uint32_t fast = EncodeBase64Lines(data, lines, text);
    data += size_t{fast} * kBase64LineBytes;
    text += size_t{fast} * kBase64LineAndEnd;
    for (uint32_t line = fast; line < lines; ++line, data += kBase64LineBytes) {
        text = WriteGroups(data, data + kBase64LineBytes, text);
        *text++ = '\r';
        *text++ = '\n';
    }
    length -= lines * kBase64LineBytes;
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
    const Status status = ReserveOutput(static_cast<uint32_t>(size), text, textLength, &write);
    if (write) WriteBase64(data, length, text);
    return status;
}

Status DecodeFromBase64(const char* text, uint32_t length, uint8_t* data, uint32_t* dataLength) {
    if (AnyNull(text, dataLength)) return Fail(StatusBadArgument);
    const uint32_t size = DecodedSize(text, length);
    bool write = false;
    const Status status = ReserveOutput(size, data, dataLength, &write);
    if (!write) return status;

    const uint32_t lines = DecodeFullLines(text, length, data, size);
    uint64_t position = uint64_t{lines} * kBase64LineAndEnd;
    uint32_t stored = lines * kBase64LineBytes;
    uint64_t lastInLine = position + kBase64LineCharacters - 4;
    // All groups but the last; the text may hold more of them than its size says.
    while (position + 4 < length && size - stored >= 3) {
        DecodeBase64Group(text + position, data + stored);
        stored += 3;
        if (position == lastInLine) {
            lastInLine += kBase64LineAndEnd;
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
