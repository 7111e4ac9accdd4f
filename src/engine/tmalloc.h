// The one room that owns memory: every block of the library comes from and goes back through here, and so do the slabs
// that the nodes of a tree lie in (engine/arena.h).
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>

namespace tlvforge {

#ifndef TLVFORGE_INSTRUMENT

// Null when out of memory. A size of 0 yields a valid block. Some allocators align the smallest blocks to 8 bytes,
// where a slab's node would be looked for: no block is that small.
[[gnu::malloc]] inline void* Allocate(size_t size) { return malloc(size < 16 ? 16 : size); }
// A block that is no slab's node: bytes, tables, buffers.
inline void ReleaseBlock(void* block) { free(block); }

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
    uint64_t encoderVisits;  // nodes that the encoder looked at, in all passes
};
extern Instruments instruments;

[[gnu::malloc]] void* Allocate(size_t size);
void ReleaseBlock(void* block);

inline void CountDecoderVisit() { ++instruments.decoderVisits; }
inline void CountEncoderVisit() { ++instruments.encoderVisits; }

#endif

// ---- Slabs ----------------------------------------------------------------------------------------------------------

// Off under the address sanitizer, which then sees each node as a block of its own, and where pointers have 4 bytes.
#if defined(__SANITIZE_ADDRESS__) || __SIZEOF_POINTER__ != 8
#define TLVFORGE_SLABS 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TLVFORGE_SLABS 0
#endif
#endif
#ifndef TLVFORGE_SLABS
#define TLVFORGE_SLABS 1
#endif

// A block that many nodes share: this head, then the nodes, each after 8 bytes that point to the head. It is freed with
// its last node.
struct alignas(16) Slab {
    uint64_t nodes;  // that live, and one while the arena is open
};

// Blocks of the allocator lie at multiples of 16, a slab's nodes halfway between.
inline bool InSlab(const void* node) { return TLVFORGE_SLABS != 0 && (reinterpret_cast<uintptr_t>(node) & 8) != 0; }

// The word before a node. By its number: as an index the compiler would take it for one before the block.
// NOLINTNEXTLINE(performance-no-int-to-ptr)
inline Slab* SlabOf(void* node) { return *reinterpret_cast<Slab**>(reinterpret_cast<uintptr_t>(node) - 8); }

// Takes nodes off a slab's count. Other threads may take off theirs. Who takes the last ones needs no locked
// instruction.
inline void LeaveSlab(Slab* slab, uint64_t nodes) {
    if (__atomic_load_n(&slab->nodes, __ATOMIC_ACQUIRE) == nodes ||
        __atomic_fetch_sub(&slab->nodes, nodes, __ATOMIC_ACQ_REL) == nodes) {
        ReleaseBlock(slab);
    }
}

// A node, wherever it lies, or a block.
inline void Release(void* node) {
    if (InSlab(node)) {
        LeaveSlab(SlabOf(node), 1);
    } else {
        ReleaseBlock(node);
    }
}

// Collects the releases of one walk over a tree, so that a slab is counted down once and not for each node.
class Releases {
public:
    Releases() = default;
    Releases(const Releases&) = delete;
    Releases& operator=(const Releases&) = delete;
    ~Releases() {
        if (count_ != 0) LeaveSlab(slab_, count_);
    }

    void Add(void* node) {
        if (!InSlab(node)) [[unlikely]] {
            ReleaseBlock(node);
            return;
        }
        Slab* slab = SlabOf(node);
        if (slab != slab_) [[unlikely]]
            Begin(slab);
        ++count_;
    }

private:
    [[gnu::noinline]] void Begin(Slab* slab) {
        if (count_ != 0) LeaveSlab(slab_, count_);
        slab_ = slab;
        count_ = 0;
    }

    Slab* slab_ = nullptr;
    uint64_t count_ = 0;
};

// ---- Owners ---------------------------------------------------------------------------------------------------------

// Sole owner of a plain block.
class Block {
public:
    Block() = default;
    explicit Block(size_t size) : bytes_(static_cast<uint8_t*>(Allocate(size))) {}
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    ~Block() { ReleaseBlock(bytes_); }

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
