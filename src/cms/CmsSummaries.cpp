#include "tlvforge/cms_tools.h"

#include <stdio.h>

#include "cms/summary_text.h"
#include "engine/nodes.h"
#include "engine/oids.h"
#include "engine/output.h"

using namespace tlvforge;

namespace {

// One form says GMT and the other doesn't, although both have the same local times. They stay as they are: programs
// compare them.
constexpr Cp1251Literal kCrlHead(u8"Версия=%d, Действителен с %02u.%02u.%04u %02u:%02u:%02u, Поставщик: ");
constexpr Cp1251Literal kCrlHeadWithEnd(
    u8"Версия=%d, Действителен с %02u.%02u.%04u %02u:%02u:%02u GMT, "
    u8"по %02u.%02u.%04u %02u:%02u:%02u GMT, Поставщик: ");

struct LocalTime {
    uint32_t day = 0, month = 0, year = 0, hour = 0, minute = 0, second = 0;

    Status Of(const LibraryTime& time) {
        return GetLibraryLocalTime(&time, &day, &month, &year, &hour, &minute, &second);
    }
};

// The head of a CRL's text.
Status FormatHead(const X509Crl* crl, SummaryText* summary) {
    int32_t version = 0;
    LibraryTime time{};
    LocalTime from, until;
    if (const Status status = GetX509CrlVersion(crl, &version)) return status;
    if (const Status status = GetX509CrlThisUpdate(crl, &time)) return status;
    if (const Status status = from.Of(time)) return status;

    // The failure record is written here without a failure too: see docs/oddities.md.
    const Status next = Fail(GetX509CrlNextUpdate(crl, &time));
    if (next != StatusOk && next != StatusAbsent) return next;
    char* text = reinterpret_cast<char*>(summary->bytes);
    int length = 0;
    if (next == StatusAbsent) {
        length = snprintf(text, sizeof summary->bytes, kCrlHead.text, version, from.day, from.month, from.year,
                          from.hour, from.minute, from.second);
    } else {
        if (const Status status = until.Of(time)) return status;
        length = snprintf(text, sizeof summary->bytes, kCrlHeadWithEnd.text, version, from.day, from.month, from.year,
                          from.hour, from.minute, from.second, until.day, until.month, until.year, until.hour,
                          until.minute, until.second);
    }
    summary->length = static_cast<uint32_t>(length);
    return StatusOk;
}

}  // namespace

Status GetCertificateCN(Certificate* certificate, uint8_t* text, uint32_t* length) {
    if (AnyNull(certificate, length)) return Fail(StatusBadArgument);
    uint8_t serial[100];
    uint32_t serialLength = sizeof serial;
    SummaryText summary;
    X509Name* subject = nullptr;
    // A serial number that can't be read, or is longer, is left out like one that isn't text.
    if (GetCertificateSerialNumber(certificate, serial, &serialLength) == StatusOk) {
        if (const Status status = summary.AppendSerial(serial, serialLength)) return status;
    }
    if (const Status status = GetCertificateSubject(certificate, &subject)) return status;
    if (const Status status = summary.AppendCommonNames(subject)) return status;
    return summary.CopyOut(text, length);
}

Status GetCrlCN(X509Crl* crl, uint8_t* text, uint32_t* length) {
    if (AnyNull(crl, length)) return Fail(StatusBadArgument);
    SummaryText summary;
    X509Name* issuer = nullptr;
    if (const Status status = FormatHead(crl, &summary)) return status;
    if (const Status status = GetX509CrlIssuer(crl, &issuer)) return status;
    if (const Status status = summary.AppendCommonNames(issuer)) return status;
    return summary.CopyOut(text, length);
}

Status GetZelcryptIdentifierFromCertificate(const Certificate* certificate, uint8_t* text, uint32_t* length) {
    if (AnyNull(certificate, length)) return Fail(StatusBadArgument);
    const auto read = [=](uint8_t* buffer, uint32_t* size) {
        return GetCertificateExtensionValue(certificate, Oid<1, 2, 643, 3, 123, 3, 1>, buffer, size);
    };
    Block value;
    uint32_t valueLength = 0;
    Tree<schema::UTF8String> utf8;
    if (const Status status = MakeBytes(read, &value, &valueLength)) return status;
    if (const Status status = utf8.Decode(value.Bytes(), valueLength)) return status;

    // Two limits: the first is the length of the UTF-8 text and doesn't count the zero, the second is that of the
    // result with it. See docs/oddities.md.
    uint32_t capacity = *length;
    bool write = false;
    const Status status = ReserveOutput(utf8->length, text, length, &write);
    if (!write) return status;
    const Status converted = Utf8ToCp1251(text, &capacity, utf8->data, utf8->length);
    *length = capacity;
    return converted;
}
