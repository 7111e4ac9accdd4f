// Where the nodes of one tree come from while it is decoded, copied or created: slabs of the memory room.
#pragma once

#include <string.h>

#include "engine/tmalloc.h"

namespace tlvforge {

// Ends with its scope; the slabs live as long as their nodes. Nodes of more than 4 KiB are blocks of their own, so that
// the content of a message pins nothing.
class Arena {
public:
    // For a tree that is decoded. A small document fits the first slab, nearly always; a large one gets slabs that
    // double, up to its own size and to 4 MiB: a node that outlives its tree never keeps more than that alive.
    Arena(const uint8_t* input, uint64_t length) : lastWide_(length >= 32 ? input + length - 32 : nullptr) {
        const uint64_t few = 6 * length + 128, many = 4 * length + 2048, size = few < many ? few : many;
        next_ = size < kLargestFirst ? size : kLargestFirst;
        largest_ = length < kLargestSlab ? length : kLargestSlab;
    }
    // For a tree that isn't decoded; 0: blocks of their own.
    explicit Arena(size_t firstSlab) : next_(firstSlab) {}
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;
    ~Arena() { Close(); }

    // What nodes take of a slab, in units of 16 bytes, and a slab for so many.
    static constexpr size_t UnitsOf(size_t size) { return StepOf(size) / 16; }
    static constexpr size_t SizeFor(size_t units) { return sizeof(Slab) + 16 * units + kSlack; }

    // Null when out of memory.
    [[gnu::always_inline]] void* Allocate(size_t size) {
        const size_t step = StepOf(size);
        if (TLVFORGE_SLABS == 0 || step > static_cast<size_t>(end_ - at_)) [[unlikely]]
            return AllocateElsewhere(size);
        uint8_t* at = Advance(step);
        return at + kPrefix;
    }

    // A record of 16 bytes, which the caller fills, and a copy of the bytes beside it. Short values are copied as 16 or
    // 32 bytes at once, where the input has as many left; the slack after the last node takes what is too much.
    [[gnu::always_inline]] void* AllocateRecord(const uint8_t* bytes, uint32_t length) {
        const size_t step = StepOf(kRecord + length);
        if (TLVFORGE_SLABS != 0 && length <= 32 && bytes <= lastWide_ && step <= static_cast<size_t>(end_ - at_))
            [[likely]] {
            uint8_t* node = Advance(step) + kPrefix;
            memcpy(node + kRecord, bytes, 16);
            if (length > 16) memcpy(node + kRecord + 16, bytes + 16, 16);
            return node;
        }
        return AllocateAndCopy(kRecord, bytes, length);
    }

private:
    static constexpr size_t kLargestFirst = 64 * 1024 - 64;
    static constexpr size_t kLargestSlab = size_t{4} << 20;
    static constexpr size_t kLargestNode = 4 * 1024;
    static constexpr size_t kPrefix = 8;   // the pointer to the slab
    static constexpr size_t kRecord = 16;  // all records of values have this size
    static constexpr size_t kSlack = 16;
#if defined(TLVFORGE_INSTRUMENT) && !defined(TLVFORGE_WHOLE_SLABS)
    static constexpr bool kOneNodeEach = true;  // so that each node is an allocation that can fail
#else
    static constexpr bool kOneNodeEach = false;
#endif

    // The distance from node to node.
    static constexpr size_t StepOf(size_t size) { return (size + kPrefix + 15) & ~size_t{15}; }

    uint8_t* Advance(size_t step) {
        uint8_t* at = at_;
        at_ = at + step;
        *reinterpret_cast<Slab**>(at) = slab_;
        ++slab_->nodes;
        return at;
    }

    // A small document that didn't fit its first slab needs little more.
    size_t SizeAfter(size_t slabSize) const {
        if (lastWide_ != nullptr && slabSize < kLargestFirst - 16) return slabSize / 2;
        const size_t most = largest_ > kLargestFirst ? largest_ : kLargestFirst;
        return slabSize * 2 < most ? slabSize * 2 : most;
    }

    void Close() {
        if (slab_ != nullptr) LeaveSlab(slab_, 1);
        slab_ = nullptr;
        at_ = end_ = nullptr;
    }

    void* AllocateElsewhere(size_t size);
    void* AllocateAndCopy(size_t head, const uint8_t* bytes, uint32_t length);

    uint8_t* at_ = nullptr;  // a multiple of 16
    uint8_t* end_ = nullptr;
    Slab* slab_ = nullptr;
    size_t next_;                        // size of the next slab
    size_t largest_ = 0;                 // of the slabs of a large document
    const uint8_t* lastWide_ = nullptr;  // the last place of the input where 32 bytes can be read
};

// Ordinary blocks, in the place of an arena.
struct Heap {
    void* Allocate(size_t size) { return tlvforge::Allocate(size); }
};

}  // namespace tlvforge
