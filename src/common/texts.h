// Texts for a person in code page 1251, from and to Unicode. The conversions know Russian text and a few signs, no
// more.
#pragma once

#include <stddef.h>

#include "engine/failure.h"

namespace tlvforge {

// What doesn't lie where the Russian letters do, which have one distance from their code points.
struct Cp1251Sign {
    uint8_t byte;
    uint16_t point;
};
inline constexpr Cp1251Sign kCp1251Signs[] = {
    {0x95, 0x2022}, {0xA1, 0x040E}, {0xA2, 0x045E}, {0xA4, 0x00A4}, {0xA8, 0x0401}, {0xAA, 0x0404}, {0xAF, 0x0407},
    {0xB0, 0x00B0}, {0xB7, 0x00B7}, {0xB8, 0x0451}, {0xB9, 0x2116}, {0xBA, 0x0454}, {0xBF, 0x0457},
};
inline constexpr uint32_t kCp1251Distance = 0x350;

// Code points of the bytes 0x80 to 0xFF. The distance that is right for the letters serves all the bytes that are no
// sign, quotation marks and dashes too, which become other characters: see docs/oddities.md.
struct Cp1251Points {
    uint16_t points[128];

    constexpr Cp1251Points() : points() {
        for (uint32_t index = 0; index < 128; ++index)
            points[index] = static_cast<uint16_t>(0x80 + index + kCp1251Distance);
        for (const Cp1251Sign& sign : kCp1251Signs) points[sign.byte - 0x80] = sign.point;
    }
};
inline constexpr Cp1251Points kCp1251Points;

// Writes the UTF-8 form of a byte of the code page, 1 to 3 bytes, and returns its end.
constexpr char* PutUtf8(uint8_t byte, char* out) {
    if (byte < 0x80) {
        *out++ = static_cast<char>(byte);
        return out;
    }
    const uint32_t point = kCp1251Points.points[byte - 0x80];
    if (point < 0x800) {
        *out++ = static_cast<char>(0xC0 | point >> 6);
    } else {
        *out++ = static_cast<char>(0xE0 | point >> 12);
        *out++ = static_cast<char>(0x80 | (point >> 6 & 0x3F));
    }
    *out++ = static_cast<char>(0x80 | (point & 0x3F));
    return out;
}

// Reads UTF-8 byte by byte, sequences of one and two bytes alone. Those of three and four leave nothing, and two
// bytes that stand for no Russian letter leave another character: see docs/oddities.md.
class Cp1251FromUtf8 {
public:
    // Whether the first byte of a sequence waits for the second.
    constexpr bool IsInSequence() const { return lead_ != 0; }

    // Whether the byte completes a character.
    constexpr bool Take(uint8_t byte, uint8_t* character) {
        *character = byte;
        if (byte < 0x80) return true;  // also between the two bytes of a sequence, which goes on after it
        if (lead_ == 0) {
            if ((byte & 0xE0) == 0xC0) lead_ = byte;
            return false;
        }
        // Bit 3 of the lead byte is not looked at, so that some pairs outside the Russian letters meet with them.
        const uint32_t point = (lead_ & 0x17u) << 6 | (byte & 0x3Fu);
        lead_ = 0;
        *character = static_cast<uint8_t>(point == 0x401 ? 0xA8 : point == 0x451 ? 0xB8 : point - kCp1251Distance);
        return true;
    }

private:
    uint8_t lead_ = 0;
};

// A literal, converted by the compiler.
template <size_t Size>
struct Cp1251Literal {
    char text[Size] = {};
    uint32_t length = 0;

    consteval Cp1251Literal(const char8_t (&utf8)[Size]) {
        Cp1251FromUtf8 reader;
        for (size_t i = 0; i + 1 < Size; ++i) {
            uint8_t character = 0;
            if (reader.Take(static_cast<uint8_t>(utf8[i]), &character)) text[length++] = static_cast<char>(character);
        }
    }
};

// Converts text and ends it with a zero. *capacity becomes the length without the zero. When the zero has no room it
// becomes the length with it, and the status is 49, after as many bytes as fit have been written.
Status Utf8ToCp1251(uint8_t* text, uint32_t* capacity, const uint8_t* utf8, uint32_t length,
                    Place place = Place::Here());

// Converts big-endian characters of two bytes; one that the code page hasn't becomes "?". Returns their count, or 0 for
// no output: they have no room, or there are none.
uint32_t BmpToCp1251(const uint8_t* bmp, uint32_t count, uint8_t* text, uint32_t room);

// Copies a text out by the output-buffer rule: what is needed counts the terminating zero, the length after success
// doesn't.
Status CopyOutText(const void* bytes, uint32_t count, uint8_t* text, uint32_t* length, Place place = Place::Here());

}  // namespace tlvforge
