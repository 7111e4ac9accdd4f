#include "java/text.h"

#include <stddef.h>
#include <string.h>

namespace tlvforge::java {
namespace {

struct Sequence {
    char bytes[4];
    uint8_t cp1251;
};

constexpr Sequence kSequences[] = {
    {"\xD0\x84", 0xAA},      // U+0404
    {"\xD0\x87", 0xAF},      // U+0407
    {"\xD0\x8E", 0xA1},      // U+040E
    {"\xD1\x94", 0xBA},      // U+0454
    {"\xD1\x97", 0xBF},      // U+0457
    {"\xD1\x9E", 0xA2},      // U+045E
    {"\xC2\xA4", 0xA4},      // U+00A4
    {"\xC2\xB0", 0xB0},      // U+00B0
    {"\xC2\xB7", 0xB7},      // U+00B7
    {"\xE2\x80\xA2", 0x95},  // U+2022
    {"\xE2\x84\x96", 0xB9},  // U+2116
};

// The entry that the text begins with; a terminating zero ends the comparison by itself.
const Sequence* FindSequence(const uint8_t* text) {
    for (const Sequence& sequence : kSequences) {
        if (strncmp(reinterpret_cast<const char*>(text), sequence.bytes, strlen(sequence.bytes)) == 0) {
            return &sequence;
        }
    }
    return nullptr;
}

// The mask drops bit 3 of the lead byte on purpose: for D0 and D1 that gives the code point.
uint8_t ConvertPair(uint8_t lead, uint8_t continuation) {
    const uint32_t codePoint = ((lead & 0x17u) << 6) + (continuation & 0x3Fu);
    if (codePoint == 0x401) return 0xA8;
    if (codePoint == 0x451) return 0xB8;
    return static_cast<uint8_t>(codePoint - 0x350);
}

}  // namespace

uint32_t ConvertUtf8ToCp1251(const uint8_t* source, uint8_t* destination) {
    uint8_t* out = destination;
    uint8_t lead = 0;  // 0 while none is pending
    while (*source != 0) {
        const uint8_t byte = *source;
        size_t used = 1;
        if (byte <= 0x7F) {
            *out++ = byte;  // overtakes a pending lead
        } else if (lead != 0) {
            *out++ = ConvertPair(lead, byte);
            lead = 0;
        } else if (const Sequence* sequence = FindSequence(source)) {
            used = strlen(sequence->bytes);
            *out++ = sequence->cp1251;
        } else if ((byte & 0xE0) == 0xC0) {
            lead = byte;
        }
        source += used;
    }
    *out = 0;
    return static_cast<uint32_t>(out - destination);
}

}  // namespace tlvforge::java
