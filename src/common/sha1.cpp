#include "tlvforge/sha1.h"

#include <string.h>
#include <bit>
#include <utility>

#include "common/processor.h"
#include "common/sha1_blocks.h"
#include "engine/failure.h"

using namespace tlvforge;

namespace {

constexpr uint32_t kLengthSize = 8;

uint32_t Load(const uint8_t* bytes) {
    return static_cast<uint32_t>(bytes[0]) << 24 | static_cast<uint32_t>(bytes[1] << 16 | bytes[2] << 8 | bytes[3]);
}

void Store(uint8_t* bytes, uint32_t word) {
    for (int index = 0; index < 4; ++index) bytes[index] = static_cast<uint8_t>(word >> (24 - 8 * index));
}

// One round. Instead of the five values their roles move on from round to round, and are back where they were after
// five; the schedule is a ring of sixteen words. Every index is a constant, so that no value is ever moved.
template <size_t Index>
[[gnu::always_inline]] inline void Round(uint32_t (&values)[5], uint32_t (&words)[16]) {
    const uint32_t first = values[(80 - Index) % 5];
    uint32_t& second = values[(81 - Index) % 5];
    const uint32_t third = values[(82 - Index) % 5];
    const uint32_t fourth = values[(83 - Index) % 5];
    uint32_t& fifth = values[(84 - Index) % 5];
    uint32_t& word = words[Index % 16];
    if constexpr (Index >= 16) {
        word = std::rotl(words[(Index + 13) % 16] ^ words[(Index + 8) % 16] ^ words[(Index + 2) % 16] ^ word, 1);
    }
    fifth += std::rotl(first, 5) + word;
    if constexpr (Index < 20) {
        fifth += (fourth ^ (second & (third ^ fourth))) + kSha1Constants[0];
    } else if constexpr (Index < 40) {
        fifth += (second ^ third ^ fourth) + kSha1Constants[1];
    } else if constexpr (Index < 60) {
        fifth += (second & third) + (fourth & (second ^ third)) + kSha1Constants[2];
    } else {
        fifth += (second ^ third ^ fourth) + kSha1Constants[3];
    }
    second = std::rotl(second, 30);
}

template <size_t... Indices>
inline void Rounds(uint32_t (&values)[5], uint32_t (&words)[16], std::index_sequence<Indices...>) {
    (Round<Indices>(values, words), ...);
}

void AddBlock(uint32_t (&hash)[5], const uint8_t* block) {
    uint32_t words[16];
    for (uint32_t index = 0; index < 16; ++index) words[index] = Load(block + 4 * index);
    uint32_t values[5];
    memcpy(values, hash, sizeof values);
    Rounds(values, words, std::make_index_sequence<80>());
    for (uint32_t index = 0; index < 5; ++index) hash[index] += values[index];
}

void AddBlocks(uint32_t (&hash)[5], const uint8_t* data, const uint8_t* end) {
    if (HasSha1Instructions()) return AddSha1Blocks(hash, data, end);
    for (; data != end; data += kSha1BlockSize) AddBlock(hash, data);
}

}  // namespace

Status sha1(const uint8_t* data, uint32_t length, uint8_t* digest) {
    if (AnyNull(data, digest)) return Fail(StatusBadArgument);
    uint32_t hash[] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
    const uint32_t rest = length % kSha1BlockSize;
    const uint8_t* tail = data + (length - rest);
    AddBlocks(hash, data, tail);

    uint8_t padded[2 * kSha1BlockSize] = {};
    memcpy(padded, tail, rest);
    padded[rest] = 0x80;
    uint8_t* lengthAt = padded + (rest < kSha1BlockSize - kLengthSize ? 1 : 2) * kSha1BlockSize - kLengthSize;
    // The count is a signed number, and the digest of a message of 2^31 bytes or more another than SHA-1 has: see
    // docs/oddities.md.
    Store(lengthAt, static_cast<uint32_t>(static_cast<int32_t>(length) >> 29));
    Store(lengthAt + 4, length << 3);
    AddBlocks(hash, padded, lengthAt + kLengthSize);

    for (uint32_t index = 0; index < 5; ++index) Store(digest + 4 * index, hash[index]);
    return StatusOk;
}
