#include "tlvforge/cms_tools.h"

#include <stdio.h>

#include "cms/summary_text.h"
#include "engine/items.h"
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
    Status status = GetX509CrlVersion(crl, &version);
    if (status == StatusOk) status = GetX509CrlThisUpdate(crl, &time);
    if (status == StatusOk) status = from.Of(time);
    if (status != StatusOk) return status;

    // The failure record is written here whatever came out, also without a failure. That is intended.
    const Status next = Fail(GetX509CrlNextUpdate(crl, &time));
    if (next != StatusOk && next != StatusAbsent) return next;
    if (next == StatusOk) status = until.Of(time);
    if (status != StatusOk) return status;

    char* text = reinterpret_cast<char*>(summary->bytes);
    const int length = next == StatusOk
                           ? snprintf(text, sizeof summary->bytes, kCrlHeadWithEnd.text, version, from.day, from.month,
                                      from.year, from.hour, from.minute, from.second, until.day, until.month,
                                      until.year, until.hour, until.minute, until.second)
                           : snprintf(text, sizeof summary->bytes, kCrlHead.text, version, from.day, from.month,
                                      from.year, from.hour, from.minute, from.second);
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
    // A serial number that can't be had, or is longer, is left out like one that isn't text.
    Status status = GetCertificateSerialNumber(certificate, serial, &serialLength);
    status = status == StatusOk ? summary.AppendSerial(serial, serialLength) : StatusOk;
    if (status == StatusOk) status = GetCertificateSubject(certificate, &subject);
    if (status == StatusOk) status = summary.AppendCommonNames(subject);
    return status == StatusOk ? summary.Give(text, length) : status;
}

Status GetCrlCN(X509Crl* crl, uint8_t* text, uint32_t* length) {
    if (AnyNull(crl, length)) return Fail(StatusBadArgument);
    SummaryText summary;
    X509Name* issuer = nullptr;
    Status status = FormatHead(crl, &summary);
    if (status == StatusOk) status = GetX509CrlIssuer(crl, &issuer);
    if (status == StatusOk) status = summary.AppendCommonNames(issuer);
    return status == StatusOk ? summary.Give(text, length) : status;
}

Status GetZelcryptIdentifierFromCertificate(const Certificate* certificate, uint8_t* text, uint32_t* length) {
    if (AnyNull(certificate, length)) return Fail(StatusBadArgument);
    const uint8_t* oid = Oid<1, 2, 643, 3, 123, 3, 1>;
    uint32_t valueLength = 0;
    Status status = GetCertificateExtensionValue(certificate, oid, nullptr, &valueLength);
    if (status != StatusOk) return status;
    const Block value(valueLength);
    if (!value) return Fail(StatusOutOfMemory);
    status = GetCertificateExtensionValue(certificate, oid, value.Bytes(), &valueLength);
    Tree<schema::UTF8String> utf8;
    if (status == StatusOk) status = utf8.Decode(value.Bytes(), valueLength);
    if (status != StatusOk) return status;

    // Two limits, which is intended: the first is the length of the UTF-8 text and doesn't count the zero, the second
    // is that of the result with it.
    uint32_t capacity = *length;
    bool write = false;
    status = ReserveOutput(utf8->length, text, length, &write);
    if (!write) return status;
    status = Utf8ToCp1251(text, &capacity, utf8->data, utf8->length);
    *length = capacity;
    return status;
}
