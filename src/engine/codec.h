// What the encoder and decoder share with those that build elements from bytes and check values: header octets, and the
// rules for the content of BOOLEAN and INTEGER.
#pragma once

#include <stdint.h>

namespace tlvforge {

// Size of a whole element.
uint64_t TlvSize(uint64_t contentLength, uint32_t tagNumber);

// Writes identifier and minimal definite length, and returns their size.
uint32_t WriteHeader(uint8_t tagClass, uint8_t constructedBit, uint32_t tagNumber, uint32_t contentLength,
                     uint8_t* out);

inline bool IsDerBoolean(const uint8_t* content, uint32_t length) {
    return length == 1 && (content[0] == 0 || content[0] == 0xFF);
}

// Minimal two's complement: not all of the first nine bits are equal.
inline bool IsMinimalInteger(const uint8_t* content, uint32_t length) {
    if (length < 2) return length == 1;
    return content[0] != (content[1] & 0x80 ? 0xFF : 0x00);
}

}  // namespace tlvforge
