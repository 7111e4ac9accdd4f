#include "cms/summary_text.h"

#include <string.h>

#include "engine/oids.h"
#include "engine/outputs.h"
#include "tlvforge/oid.h"

namespace tlvforge {
namespace {

Status AppendUtf8(Bytes value, SummaryText* summary) {
    uint32_t written = summary->Room();
    if (const Status status = Utf8ToCp1251(summary->End(), &written, value.data, value.length)) return status;
    summary->length += written;
    return StatusOk;
}

Status AppendBmp(Bytes value, SummaryText* summary) {
    const uint32_t written = BmpToCp1251(value.data, value.length / 2, summary->End(), summary->Room() - 1);
    summary->length += written;
    return written != 0 ? StatusOk : Fail(StatusBufferTooSmall);
}

// Other string types aren't read, not even PrintableString: each byte is shown as "?", see docs/oddities.md. The limit
// is one below that of the types that are read.
Status AppendUnread(Bytes value, SummaryText* summary) {
    if (value.length >= summary->Room() - 1) return Fail(StatusBufferTooSmall);
    memset(summary->End(), '?', value.length);
    summary->length += value.length;
    return StatusOk;
}

Status AppendValue(uint8_t tag, Bytes value, SummaryText* summary) {
    if (tag == Asn1KindUTF8String) return AppendUtf8(value, summary);
    if (tag == Asn1KindBMPString) return AppendBmp(value, summary);
    return AppendUnread(value, summary);
}

Status AppendFirstCommonName(const X509Name* name, uint32_t rdnIndex, SummaryText* summary) {
    uint32_t count = 0;
    if (const Status status = GetX509NameEntryCount(name, rdnIndex, &count)) return status;
    for (uint32_t i = 0; i < count; ++i) {
        uint8_t value[1024], oid[100], tag = 0;
        uint32_t length = sizeof value, oidLength = sizeof oid;
        const Status status = GetX509NameEntry(name, rdnIndex, i, value, &length, &tag, oid, &oidLength);
        if (status != StatusOk) return status;
        if (IsOidEquals(oid, Oid<2, 5, 4, 3>) != 0) return AppendValue(tag, {value, length}, summary);
    }
    return StatusOk;
}

bool IsReadable(const uint8_t* serial, uint32_t length) {
    for (uint32_t i = 0; i < length; ++i) {
        if (serial[i] < 32 || serial[i] > 122) return false;
    }
    return true;
}

}  // namespace

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
    if (const Status status = GetX509NameRdnCount(name, &count)) return status;
    for (uint32_t i = 0; i < count; ++i) {
        if (const Status status = AppendFirstCommonName(name, i, this)) return status;
    }
    return StatusOk;
}

}  // namespace tlvforge
