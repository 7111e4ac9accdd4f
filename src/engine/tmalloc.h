// The one room that owns memory: every block of the library comes from and goes back through here.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>

namespace tlvforge {

#ifndef TLVFORGE_INSTRUMENT

// Null when out of memory. A size of 0 gives a valid block.
[[gnu::malloc]] inline void* Allocate(size_t size) { return malloc(size); }
inline void Release(void* block) { free(block); }

inline void CountDecoderVisit() {}
inline void CountEncoderVisit() {}

#else

// The build for tests counts, and fails the allocation that it is told to fail.
struct Instruments {
    uint64_t allocations;
    uint64_t liveBlocks;
    uint64_t failAt;         // number of the allocation that fails, from 1; 0: none
    bool failEverAfter;      // and all later ones
    uint64_t decoderVisits;  // items that the decoder tried
    uint64_t encoderVisits;  // nodes that the encoder looked at, in both passes
};
extern Instruments instruments;

[[gnu::malloc]] void* Allocate(size_t size);
void Release(void* block);

inline void CountDecoderVisit() { ++instruments.decoderVisits; }
inline void CountEncoderVisit() { ++instruments.encoderVisits; }

#endif

// Sole owner of a plain block.
class Block {
public:
    Block() = default;
    explicit Block(size_t size) : bytes_(static_cast<uint8_t*>(Allocate(size))) {}
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    ~Block() { Release(bytes_); }

    // For a block that has no bytes yet. False when out of memory.
    bool Reserve(size_t size) {
        bytes_ = static_cast<uint8_t*>(Allocate(size));
        return bytes_ != nullptr;
    }
    uint8_t* Bytes() const { return bytes_; }
    uint8_t** Slot() { return &bytes_; }
    explicit operator bool() const { return bytes_ != nullptr; }

private:
    uint8_t* bytes_ = nullptr;
};

}  // namespace tlvforge
