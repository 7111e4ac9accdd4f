// Groups and lines of Base64, shared by the bare text and the armoured one.
#pragma once

#include <stdint.h>

namespace tlvforge {

inline constexpr uint32_t kBase64LineBytes = 48;
inline constexpr uint32_t kBase64LineCharacters = 64;
inline constexpr uint32_t kBase64LineAndEnd = 66;

inline constexpr char kBase64Alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// What each byte of a text stands for: 0 to 63, or one of the two marks. The same byte with its top bit set stands for
// the same, so that a text to which a parity bit was added decodes.
struct Base64Values {
    static constexpr uint8_t kNone = 0xFE;
    static constexpr uint8_t kPadding = 0xFF;

    uint8_t values[256];

    constexpr Base64Values() : values() {
        for (uint8_t& value : values) value = kNone;
        for (uint8_t value = 0; value < 64; ++value) Set(static_cast<uint8_t>(kBase64Alphabet[value]), value);
        Set('=', kPadding);
    }

    constexpr uint8_t operator[](char byte) const { return values[static_cast<uint8_t>(byte)]; }
    constexpr bool IsPadding(char byte) const { return (*this)[byte] == kPadding; }

private:
    constexpr void Set(uint8_t byte, uint8_t value) { values[byte] = values[byte | 0x80] = value; }
};
inline constexpr Base64Values kBase64Values;

// Decodes four characters into three bytes, which are stored whatever the characters are. Returns how many of the
// bytes count, 1 to 3, or -1 for characters that are no group.
inline int DecodeBase64Group(const char* group, uint8_t* out) {
    const uint8_t first = kBase64Values[group[0]];
    const uint8_t second = kBase64Values[group[1]];
    const uint8_t third = kBase64Values[group[2]];
    const uint8_t fourth = kBase64Values[group[3]];
    out[0] = static_cast<uint8_t>(first << 2 | second >> 4);
    out[1] = static_cast<uint8_t>(second << 4 | third >> 2);
    out[2] = static_cast<uint8_t>(third << 6 | fourth);
    if ((first | second | third | fourth) < 64) return 3;
    if ((first | second) >= 64 || fourth != Base64Values::kPadding) return -1;
    if (third < 64) return 2;
    return third == Base64Values::kPadding ? 1 : -1;
}

// Characters of the whole groups that hold the bytes.
constexpr uint64_t Base64Characters(uint32_t length) { return (uint64_t{length} + 2) / 3 * 4; }

// Size of that many characters with the line ends between them. The count of line ends is cut to 32 bits before
// it is divided, so that no characters at all have a huge size: callers know an empty input by it.
constexpr uint64_t Base64Size(uint64_t characters) {
    return characters + 2 * (static_cast<uint32_t>(characters - 1) / 64);
}

// Whole lines by vector instructions. Encodes them with their line ends, and returns how many, all or none.
uint32_t EncodeBase64Lines(const uint8_t* data, uint32_t lines, char* text);
// Decodes lines up to the first one with a foreign character, of which nothing is stored, and returns how many. Of a
// line end, two characters are passed over. It may be none without a foreign character. The text may be where the bytes
// go.
uint32_t DecodeBase64Lines(const char* text, uint32_t lines, uint8_t* data);

// Writes the lines, the last one without a line end, and returns the end of the text.
char* WriteBase64(const uint8_t* data, uint32_t length, char* text);

}  // namespace tlvforge
