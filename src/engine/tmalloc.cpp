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

}  // namespace tlvforge
