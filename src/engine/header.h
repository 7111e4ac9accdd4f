// The header of an element: identifier and length octets (X.690, 8.1). The one place that reads them.
#pragma once

#include "engine/failure.h"
#include "tlvforge/asn1.h"

namespace tlvforge {

struct Header {
    uint32_t tagNumber;
    uint32_t headerLength;
    uint32_t contentLength;  // all that remains in the indefinite form
    uint8_t tagClass;
    uint8_t constructedBit;
    bool indefinite;
};

// Every form of a header. Non-minimal tags and lengths are accepted. Fields that were read before a failure stay
// stored. The declared content is not compared with the bytes that are there: that is for the reader of the content.
Status ReadLongHeader(const uint8_t* data, uint32_t length, Header* header);

// The header at the front of [at, end). Nearly all are two bytes, and read here.
inline Status ReadHeader(const uint8_t* at, const uint8_t* end, Header* header) {
    if (end - at >= 2 && (at[0] & 0x1F) != 0x1F && at[1] < 0x80) [[likely]] {
        header->tagClass = at[0] & 0xC0;
        header->constructedBit = at[0] & Asn1Constructed;
        header->tagNumber = at[0] & 0x1F;
        header->indefinite = false;
        header->headerLength = 2;
        header->contentLength = at[1];
        return StatusOk;
    }
    return ReadLongHeader(at, static_cast<uint32_t>(end - at), header);
}

// The length of an element in the definite form whose length has at most two octets after the first, and where its
// content begins. False, and no failure is recorded, for another form and where the octets are not there. The
// identifier is one octet for the caller to look at.
inline bool ReadUsualLength(const uint8_t* at, const uint8_t* end, const uint8_t** content, uint32_t* length) {
    if (end - at < 2) [[unlikely]]
        return false;
    *content = at + 2;
    *length = at[1];
    if (at[1] < 0x80) [[likely]]
        return true;
    if (at[1] == 0x82 && end - at >= 4) {
        *length = static_cast<uint32_t>(at[2] << 8 | at[3]);
        *content = at + 4;
        return true;
    }
    if (at[1] == 0x81 && end - at >= 3) {
        *length = at[2];
        *content = at + 3;
        return true;
    }
    return false;
}

// Only where two bytes are left can they be the end-of-contents octets.
inline bool AtEndOfContents(const uint8_t* at, const uint8_t* end) { return end - at >= 2 && at[0] == 0 && at[1] == 0; }

}  // namespace tlvforge
