// Blocks of SHA-1 by instructions for it.
#pragma once

#include <stdint.h>

namespace tlvforge {

inline constexpr uint32_t kSha1BlockSize = 64;
inline constexpr uint32_t kSha1Constants[] = {0x5A827999, 0x6ED9EBA1, 0x8F1BBCDC, 0xCA62C1D6};

// Adds the blocks of [data, end) to the hash. Only where HasSha1Instructions.
void AddSha1Blocks(uint32_t (&hash)[5], const uint8_t* data, const uint8_t* end);

}  // namespace tlvforge
