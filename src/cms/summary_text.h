// Summaries of one line for a person, in code page 1251.
#pragma once

#include "common/texts.h"
#include "tlvforge/names.h"

namespace tlvforge {

// A summary while it is being built. What doesn't fit is StatusBufferTooSmall, although no buffer of the caller is at
// fault: see docs/statuses.md.
struct SummaryText {
    static constexpr uint32_t kUsable = 1023;

    uint8_t bytes[kUsable + 1];
    uint32_t length = 0;

    uint8_t* End() { return bytes + length; }
    uint32_t Room() const { return kUsable - length; }  // never below 1

    // A serial number and ", ", where it can be read as text or is empty; otherwise nothing.
    Status AppendSerial(const uint8_t* serial, uint32_t serialLength, Place place = Place::Here());
    // The first common name of each RDN, without separators.
    Status AppendCommonNames(const X509Name* name);

    Status CopyOut(uint8_t* text, uint32_t* textLength, Place place = Place::Here()) const {
        return CopyOutText(bytes, length, text, textLength, place);
    }
};

}  // namespace tlvforge
