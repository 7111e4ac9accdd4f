// Header octets, shared by the encoder and by those that build elements from bytes.
#pragma once

#include <stdint.h>

namespace tlvforge {

// Room for the longest header: five identifier octets in the high form after the first, five of length.
inline constexpr uint32_t kMaxHeader = 11;

// Size of a whole element.
uint64_t TlvSize(uint64_t contentLength, uint32_t tagNumber);

// Writes identifier and minimal definite length, and gives their size.
uint32_t WriteHeader(uint8_t tagClass, uint8_t constructedBit, uint32_t tagNumber, uint32_t contentLength,
                     uint8_t* out);

}  // namespace tlvforge
