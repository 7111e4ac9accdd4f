#include "cms/summary_text.h"

#include <string.h>

#include "engine/oids.h"
#include "tlvforge/oid.h"

namespace tlvforge {
namespace {

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
