#include "engine/tmalloc.h"

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
    void* block = MustFail() ? nullptr : malloc(size);
    if (block != nullptr) ++instruments.liveBlocks;
    return block;
}

void Release(void* block) {
    if (block != nullptr) --instruments.liveBlocks;
    free(block);
}

#endif

void* ReallocOrFree(void* block, int32_t size) {
    void* resized = nullptr;
#ifdef TLVFORGE_INSTRUMENT
    if (!MustFail())
#endif
        resized = size < 0 ? nullptr : realloc(block, size == 0 ? 1 : static_cast<size_t>(size));
    if (resized == nullptr) Release(block);
#ifdef TLVFORGE_INSTRUMENT
    if (resized != nullptr && block == nullptr) ++instruments.liveBlocks;
#endif
    return resized;
}

}  // namespace tlvforge
