#include "engine/tmalloc.h"

#include "engine/arena.h"

#if defined(__linux__) && !defined(TLVFORGE_INSTRUMENT)
#include <sys/mman.h>
#endif

namespace tlvforge {

#ifdef TLVFORGE_INSTRUMENT

Instruments instruments;

namespace {
bool MustFail() {
    ++instruments.allocations;
    if (instruments.failAt == 0) return false;
    return instruments.failEverAfter ? instruments.allocations >= instruments.failAt
                                     : instruments.allocations == instruments.failAt;
}
}  // namespace

void* Allocate(size_t size) {
    void* block = MustFail() ? nullptr : malloc(size < 16 ? 16 : size);
    if (block != nullptr) ++instruments.liveBlocks;
    return block;
}

void ReleaseBlock(void* block) {
    if (block != nullptr) --instruments.liveBlocks;
    free(block);
}

#endif

namespace {

// Large slabs lie on huge pages where the system has them: a third less time for a large CRL. Updates the size.
Slab* NewSlab(size_t* size) {
#if defined(__linux__) && !defined(TLVFORGE_INSTRUMENT)
    constexpr size_t kHugePage = size_t{2} << 20;
    if (*size >= kHugePage) {
        *size = (*size + kHugePage - 1) & ~(kHugePage - 1);
        void* block = aligned_alloc(kHugePage, *size);
        if (block != nullptr) madvise(block, *size, MADV_HUGEPAGE);
        return static_cast<Slab*>(block);
    }
#endif
    return static_cast<Slab*>(Allocate(*size));
}

}  // namespace

// The rest of the last slab is lost, so large nodes get blocks of their own.
[[gnu::noinline, gnu::cold]] void* Arena::AllocateElsewhere(size_t size) {
    const size_t step = StepOf(size);
    if (TLVFORGE_SLABS == 0 || step > kLargestNode || next_ == 0) return tlvforge::Allocate(size);
    const size_t least = sizeof(Slab) + step + kSlack;
    size_t slabSize = (kOneNodeEach || next_ < least ? least : next_) & ~size_t{15};
    Slab* slab = NewSlab(&slabSize);
    if (slab == nullptr) return nullptr;
    if (slab_ != nullptr) LeaveSlab(slab_, 1);
    slab->nodes = 1;
    slab_ = slab;
    at_ = reinterpret_cast<uint8_t*>(slab + 1);
    end_ = reinterpret_cast<uint8_t*>(slab) + slabSize - kSlack;
    next_ = SizeAfter(slabSize);
    void* node = Allocate(size);
    if (kOneNodeEach) Close();
    return node;
}

[[gnu::noinline]] void* Arena::AllocateAndCopy(size_t head, const uint8_t* bytes, uint32_t length) {
    uint8_t* node = static_cast<uint8_t*>(Allocate(head + (length != 0 ? length : 1)));
    if (node != nullptr && length != 0) memcpy(node + head, bytes, length);
    return node;
}

}  // namespace tlvforge
