#include "tlvforge/pem.h"

#include <string.h>

#include "common/base64.h"
#include "engine/output.h"
#include "engine/tmalloc.h"

using namespace tlvforge;

namespace {

struct Literal {
    const char* text;
    uint32_t length;
};
// The first form is the one that is written. The second end marker lacks the last letter, so that a text decodes whose
// end line is damaged there.
constexpr Literal kStartMarkers[] = {{"-----BEGIN", 10}, {"----- BEGIN", 11}};
constexpr Literal kEndMarkers[] = {{"-----END", 8}, {"----- EN", 8}};
constexpr Literal kMarkerTail = {"-----\r\n", 7};

// Both markers, their blanks and tails, and the line end after the body.
constexpr uint32_t kArmourSize = 36;
// The size of an empty body is the wrapped result of 4 * ((0 - 1) / 3) + 4: callers know an empty input by it.
constexpr uint32_t kEmptyCharacters = UINT32_MAX / 3 * 4 + 4;

struct Span {
    const char* begin;
    const char* end;

    size_t Size() const { return static_cast<size_t>(end - begin); }
};

char* Put(char* text, const char* bytes, size_t count) {
    memcpy(text, bytes, count);
    return text + count;
}

char* PutMarker(char* text, const Literal& marker, const char* label, size_t labelLength) {
    text = Put(text, marker.text, marker.length);
    *text++ = ' ';
    text = Put(text, label, labelLength);
    return Put(text, kMarkerTail.text, kMarkerTail.length);
}

const char* FindByte(const Span& span, char byte) {
    return static_cast<const char*>(memchr(span.begin, byte, span.Size()));
}

// A marker counts only with at least one byte after it. Null without one.
const char* FindMarker(Span span, const Literal (&forms)[2]) {
    while ((span.begin = FindByte(span, '-')) != nullptr) {
        for (const Literal& form : forms) {
            if (span.Size() > form.length && memcmp(span.begin, form.text, form.length) == 0) return span.begin;
        }
        ++span.begin;
    }
    return nullptr;
}

// What may stand between groups; a tab may not.
const char* SkipBlanks(const Span& span) {
    const char* at = span.begin;
    while (at != span.end && (*at == '\r' || *at == '\n' || *at == ' ')) ++at;
    return at;
}

// Text without a start line is a body as a whole.
Span FindBody(const Span& text) {
    const char* start = FindMarker(text, kStartMarkers);
    if (start == nullptr) return text;
    const char* lineEnd = FindByte({start, text.end}, '\n');
    if (lineEnd == nullptr) return text;
    const Span rest = {SkipBlanks({lineEnd + 1, text.end}), text.end};
    const char* end = FindMarker(rest, kEndMarkers);
    return {rest.begin, end != nullptr ? end : rest.end};
}

Status DecodeBody(Span body, uint8_t* out, uint32_t* stored) {
    uint32_t size = 0;
    for (int count = 3; body.begin != body.end;) {
        if (count < 3 || body.Size() < 4) return Fail(StatusBadPem);
        if (body.Size() >= kBase64LineCharacters && DecodeBase64Lines(body.begin, 1, out + size) == 1) {
            size += kBase64LineBytes;
            body.begin = SkipBlanks({body.begin + kBase64LineCharacters, body.end});
            continue;
        }
        count = DecodeBase64Group(body.begin, out + size);
        if (count < 1) return Fail(StatusBadPem);
        size += static_cast<uint32_t>(count);
        body.begin = SkipBlanks({body.begin + 4, body.end});
    }
    *stored = size;
    return StatusOk;
}

}  // namespace

Status EncodePem(const uint8_t* data, uint32_t length, const char* label, char* text, uint32_t* textLength) {
    if (AnyNull(data, label, textLength)) return Fail(StatusBadArgument);
    const size_t labelLength = strlen(label);
    const uint64_t characters = length != 0 ? Base64Characters(length) : kEmptyCharacters;
    const uint64_t size = Base64Size(characters) + kArmourSize + 2 * labelLength;
    if (size > UINT32_MAX) return Fail(StatusBadArgument);
    bool write = false;
    const Status status = ReserveOutput(static_cast<uint32_t>(size), text, textLength, &write);
    if (!write) return status;
    char* end = PutMarker(text, kStartMarkers[0], label, labelLength);
    end = Put(WriteBase64(data, length, end), "\r\n", 2);
    end = PutMarker(end, kEndMarkers[0], label, labelLength);
    *textLength = static_cast<uint32_t>(end - text);
    return StatusOk;
}

Status DecodePem(const char* text, uint32_t length, uint8_t* data, uint32_t* dataLength) {
    if (AnyNull(text, dataLength)) return Fail(StatusBadArgument);
    const Span body = FindBody({text, text + length});
    if (body.Size() < 4) return Fail(StatusBadPem);
    const Block work(3 * (body.Size() / 4 + 10));
    if (!work) return Fail(StatusOutOfMemory);
    uint32_t stored = 0;
    const Status status = DecodeBody(body, work.Bytes(), &stored);
    if (status != StatusOk) return status;
    return CopyOut(work.Bytes(), stored, data, dataLength);
}
