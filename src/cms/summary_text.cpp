#include "cms/summary_text.h"

#include <string.h>

#include "engine/oids.h"
#include "engine/output.h"
#include "tlvforge/oid.h"

namespace tlvforge {
namespace {

// Characters that don't lie where the Russian letters do.
constexpr struct {
    uint16_t code;
    uint8_t character;
} kSigns[] = {
    {0x0404, 0xAA}, {0x0454, 0xBA}, {0x0407, 0xAF}, {0x0457, 0xBF}, {0x040E, 0xA1},
    {0x045E, 0xA2}, {0x2022, 0x95}, {0x2116, 0xB9}, {0x0401, 0xA8}, {0x0451, 0xB8},
};

uint8_t Cp1251FromBmp(uint32_t code) {
    if (code < 0x100) return static_cast<uint8_t>(code);
    for (const auto& sign : kSigns) {
        if (sign.code == code) return sign.character;
    }
    // Letters of the first row that aren't above come out as other letters. That is intended.
    return code >= 0x400 && code < 0x450 ? static_cast<uint8_t>(code + 0xB0) : '?';
}

Status AppendUtf8(const uint8_t* value, uint32_t length, SummaryText* summary) {
    uint32_t written = summary->Room();
    const Status status = Utf8ToCp1251(summary->End(), &written, value, length);
    if (status == StatusOk) summary->length += written;
    return status;
}

Status AppendBmp(const uint8_t* value, uint32_t length, SummaryText* summary) {
    const uint32_t written = BmpToCp1251(value, length / 2, summary->End(), summary->Room() - 1);
    summary->length += written;
    return written != 0 ? StatusOk : Fail(StatusBufferTooSmall);
}

// Other string types aren't read, not even PrintableString: each byte is shown as "?". That is intended, and so is the
// limit, which is one below that of the types that are read.
Status AppendUnread(uint32_t length, SummaryText* summary) {
    if (length >= summary->Room() - 1) return Fail(StatusBufferTooSmall);
    memset(summary->End(), '?', length);
    summary->length += length;
    return StatusOk;
}

Status AppendValue(uint8_t tag, const uint8_t* value, uint32_t length, SummaryText* summary) {
    if (tag == Asn1KindUTF8String) return AppendUtf8(value, length, summary);
    if (tag == Asn1KindBMPString) return AppendBmp(value, length, summary);
    return AppendUnread(length, summary);
}

Status AppendFirstCommonName(const X509Name* name, uint32_t rdnIndex, SummaryText* summary) {
    uint32_t count = 0;
    Status status = GetX509NameEntryCount(name, rdnIndex, &count);
    for (uint32_t i = 0; status == StatusOk && i < count; ++i) {
        uint8_t value[1024], oid[100], tag = 0;
        uint32_t valueLength = sizeof value, oidLength = sizeof oid;
        status = GetX509NameEntry(name, rdnIndex, i, value, &valueLength, &tag, oid, &oidLength);
        if (status == StatusOk && IsOidEquals(oid, Oid<2, 5, 4, 3>) != 0) {
            return AppendValue(tag, value, valueLength, summary);
        }
    }
    return status;
}

bool IsReadable(const uint8_t* serial, uint32_t length) {
    for (uint32_t i = 0; i < length; ++i) {
        if (serial[i] < 32 || serial[i] > 122) return false;
    }
    return true;
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
    for (uint32_t i = 0; i < count; ++i)
        text[i] = Cp1251FromBmp(static_cast<uint32_t>(bmp[2 * i] << 8 | bmp[2 * i + 1]));
    return count;
}

Status GiveText(const void* bytes, uint32_t count, uint8_t* text, uint32_t* length, Place place) {
    bool write = false;
    const Status status = ClaimBuffer(count + 1, text, length, &write, place);
    if (!write) return status;
    memcpy(text, bytes, count);
    text[count] = 0;
    *length = count;
    return StatusOk;
}

Status SummaryText::AppendSerial(const uint8_t* serial, uint32_t serialLength, Place place) {
    if (!IsReadable(serial, serialLength)) return StatusOk;
    if (uint64_t{serialLength} + 2 >= Room()) return Fail(StatusBufferTooSmall, place);
    memcpy(End(), serial, serialLength);
    memcpy(End() + serialLength, ", ", 2);
    length += serialLength + 2;
    return StatusOk;
}

Status SummaryText::AppendCommonNames(const X509Name* name) {
    uint32_t count = 0;
    Status status = GetX509NameRdnCount(name, &count);
    for (uint32_t i = 0; status == StatusOk && i < count; ++i) status = AppendFirstCommonName(name, i, this);
    return status;
}

}  // namespace tlvforge
