#include "tlvforge/oid.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "engine/codec.h"
#include "engine/nodes.h"
#include "engine/oids.h"
#include "engine/output.h"

using namespace tlvforge;

namespace tlvforge {
namespace {

constexpr uint32_t kMaxContent = 255;

// Sub-identifiers of an OID; 32 bits each, more shift out silently.
struct Numbers {
    uint32_t number[kMaxContent + 1] = {};
    uint32_t count = 0;

    // False for content that is cut off inside a number. One that has only zero bits so far passes.
    bool Split(const uint8_t* oid) {
        for (uint32_t i = 1; i <= oid[0]; ++i) {
            number[count] = number[count] << 7 | (oid[i] & 0x7F);
            if ((oid[i] & 0x80) == 0) ++count;
        }
        return number[count] == 0;
    }
};

// Prefix and content, the prefix being the low byte of the length.
Status CopyOutContent(const uint8_t* content, uint32_t contentLength, uint8_t* buffer, uint32_t* length) {
    if (contentLength == UINT32_MAX) return Fail(StatusLengthTooLong);
    bool write = false;
    const Status status = ReserveOutput(contentLength + 1, buffer, length, &write);
    if (write) {
        buffer[0] = static_cast<uint8_t>(contentLength);
        if (contentLength != 0) memcpy(buffer + 1, content, contentLength);
    }
    return status;
}

uint32_t WriteBase128(uint32_t number, uint8_t* out) {
    uint32_t groups = 1;
    for (uint32_t rest = number >> 7; rest != 0; rest >>= 7) ++groups;
    for (uint32_t i = 0; i < groups; ++i) {
        out[i] = static_cast<uint8_t>((number >> (7 * (groups - 1 - i)) & 0x7F) | (i + 1 < groups ? 0x80 : 0));
    }
    return groups;
}

constexpr uint32_t kMaxArcs = 28;

// Reads the arcs of dotted text; false for one that isn't a number, and for too many.
bool ReadArcs(const char* text, uint32_t* arcs, uint32_t* count) {
    for (const char* piece = text;;) {
        const char* end = strchr(piece, '.');
        const size_t length = end != nullptr ? static_cast<size_t>(end - piece) : strlen(piece);
        const uint32_t arc = static_cast<uint32_t>(strtoll(piece, nullptr, 10));
        if (arc == 0 && (length != 1 || *piece != '0')) return false;
        if (*count == kMaxArcs) return false;
        arcs[(*count)++] = arc;
        if (end == nullptr) return true;
        piece = end + 1;
    }
}

}  // namespace

Asn1Value* AllocAsn1OidFromOid(const uint8_t* oid) {
    return oid == nullptr ? nullptr : AllocAsn1Value(Asn1KindObjectIdentifier, oid + 1, oid[0]);
}

Status ReplaceOidField(Asn1Value** field, const uint8_t* oid) {
    Asn1Value* fresh = AllocAsn1OidFromOid(oid);
    ReleaseRecord(*field);
    *field = fresh;
    return fresh == nullptr ? Fail(StatusOutOfMemory) : StatusOk;
}

Status GetAsn1Oid(const Asn1Value* value, uint8_t* buffer, uint32_t* length) {
    if (AnyNull(value, length)) return Fail(StatusBadArgument);
    if (HasLostBytes(value)) return Fail(StatusAbsent);
    return CopyOutContent(value->data, value->length, buffer, length);
}

Status FindIdOfOid(const OidId* rows, uint32_t count, const uint8_t* oid, uint32_t* id, Place place) {
    for (uint32_t i = 0; i < count; ++i) {
        if (IsOidEquals(rows[i].oid, oid) == 0) continue;
        *id = rows[i].id;
        return StatusOk;
    }
    return Fail(StatusUnknownOid, place);
}

Status FindOidOfId(const OidId* rows, uint32_t count, uint32_t id, const uint8_t** oid, Place place) {
    for (uint32_t i = 0; i < count; ++i) {
        if (rows[i].id != id) continue;
        *oid = rows[i].oid;
        return StatusOk;
    }
    return Fail(StatusUnknownId, place);
}

}  // namespace tlvforge

Status DecodeAsn1Oid(const uint8_t* data, uint32_t length, uint8_t* buffer, uint32_t* bufferLength) {
    if (AnyNull(data, bufferLength) || length == 0) return Fail(StatusBadArgument);
    uint8_t tagClass = 0, constructedBit = 0;
    uint32_t tagNumber = 0, contentLength = 0, indefinite = 0, headerLength = 0;
    const Status status = GetAsn1ObjectInfo(data, length, &tagClass, &constructedBit, &tagNumber, &contentLength,
                                            &indefinite, &headerLength);
    if (status != StatusOk) return status;
    if (indefinite != 0) return Fail(StatusBadIndefinite);
    if (tagClass != Asn1ClassUniversal || tagNumber != Asn1KindObjectIdentifier) return Fail(StatusBadEncoding);
    if (contentLength > length - headerLength) return Fail(StatusBadEncoding);
    return CopyOutContent(data + headerLength, contentLength, buffer, bufferLength);
}

Status EncodeAsn1Oid(const uint8_t* oid, uint8_t* buffer, uint32_t* bufferLength) {
    if (AnyNull(oid, bufferLength)) return Fail(StatusBadArgument);
    bool write = false;
    const uint32_t size = static_cast<uint32_t>(TlvSize(oid[0], Asn1KindObjectIdentifier));
    const Status status = ReserveOutput(size, buffer, bufferLength, &write);
    if (write) {
        const uint32_t header = WriteHeader(Asn1ClassUniversal, 0, Asn1KindObjectIdentifier, oid[0], buffer);
        memcpy(buffer + header, oid + 1, oid[0]);
    }
    return status;
}

Status ConvertOidToString(const uint8_t* oid, char* text, uint32_t* length) {
    if (AnyNull(oid, length)) return Fail(StatusBadArgument);
    static const char kEmpty[] = "0.0";
    if (oid[0] == 0) {
        // The size query needs a length below 4 here: with room enough, null text is only measured.
        return CopyOut(kEmpty, sizeof(kEmpty), text, length);
    }
    Numbers numbers;
    if (!numbers.Split(oid)) return Fail(StatusBadArgument);
    // A number of k bytes has at most 2 * k + 1 digits, and a point.
    char written[9 * kMaxContent + 30];
    int at = sprintf(written, "%u", numbers.number[0] / 40);
    numbers.number[0] %= 40;
    for (uint32_t i = 0; i < numbers.count; ++i) at += sprintf(written + at, ".%u", numbers.number[i]);
    return CopyOut(written, static_cast<uint32_t>(at) + 1, text, length);
}

Status ConvertStringToOid(const char* text, uint8_t* oid, uint32_t* length) {
    if (AnyNull(text, length)) return Fail(StatusBadArgument);
    if (*text == 0) return CopyOutContent(nullptr, 0, oid, length);
    uint32_t arcs[kMaxArcs] = {};
    uint32_t count = 0;
    if (!ReadArcs(text, arcs, &count)) return Fail(StatusBadArgument);
    if (count == 1) count = 2;
    arcs[1] += arcs[0] * 40;
    uint8_t content[5 * kMaxArcs];
    uint32_t at = 0;
    for (uint32_t i = 1; i < count; ++i) at += WriteBase128(arcs[i], content + at);
    return CopyOutContent(content, at, oid, length);
}

uint32_t IsOidEquals(const uint8_t* left, const uint8_t* right) {
    if (AnyNull(left, right)) return 0;
    return left[0] == right[0] && memcmp(left + 1, right + 1, left[0]) == 0 ? 1 : 0;
}

uint32_t IsOidAndAsn1ObjectIdentifierEquals(const uint8_t* oid, const Asn1Value* value) {
    if (AnyNull(oid, value) || HasLostBytes(value)) return 0;
    return SameBytes(oid + 1, oid[0], value->data, value->length) ? 1 : 0;
}
