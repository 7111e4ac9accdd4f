#include "common/texts.h"

#include <string.h>

#include "engine/output.h"

namespace tlvforge {
namespace {

uint8_t Cp1251FromPoint(uint32_t point) {
    if (point < 0x100) return static_cast<uint8_t>(point);
    for (const Cp1251Sign& sign : kCp1251Signs) {
        if (sign.point == point) return sign.byte;
    }
    // The letters before the Russian ones become other characters, at the same distance: see docs/oddities.md.
    return point >= 0x400 && point < 0x450 ? static_cast<uint8_t>(point - kCp1251Distance) : '?';
}

}  // namespace

Status Utf8ToCp1251(uint8_t* text, uint32_t* capacity, const uint8_t* utf8, uint32_t length, Place place) {
    const uint32_t room = *capacity;
    Cp1251FromUtf8 reader;
    uint32_t count = 0;
    for (uint32_t i = 0; i < length; ++i) {
        uint8_t character = 0;
        if (!reader.Take(utf8[i], &character)) continue;
        if (count < room) text[count] = character;
        ++count;
    }
    const bool fits = count < room;
    *capacity = fits ? count : count + 1;
    if (!fits) return Fail(StatusBufferTooSmall, place);
    text[count] = 0;
    return StatusOk;
}

uint32_t BmpToCp1251(const uint8_t* bmp, uint32_t count, uint8_t* text, uint32_t room) {
    if (room < count) return 0;
    for (uint32_t i = 0; i < count; ++i) {
        text[i] = Cp1251FromPoint(static_cast<uint32_t>(bmp[2 * i] << 8 | bmp[2 * i + 1]));
    }
    return count;
}

Status CopyOutText(const void* bytes, uint32_t count, uint8_t* text, uint32_t* length, Place place) {
    bool write = false;
    const Status status = ReserveOutput(count + 1, text, length, &write, place);
    if (!write) return status;
    memcpy(text, bytes, count);
    text[count] = 0;
    *length = count;
    return StatusOk;
}

}  // namespace tlvforge
