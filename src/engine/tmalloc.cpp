#include "engine/tmalloc.h"

#include <sys/mman.h>

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

// The address sanitizer and the counters see tables as blocks like all others.
#if defined(TLVFORGE_INSTRUMENT) || defined(__SANITIZE_ADDRESS__)

void* AllocateTable(size_t size) { return Allocate(size); }
void ReleaseTable(void* table, size_t) { Release(table); }

#else

namespace {
constexpr size_t kMappedTable = 64 * 1024;
}  // namespace

void* AllocateTable(size_t size) {
    if (size < kMappedTable) return Allocate(size);
    void* table = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return table == MAP_FAILED ? nullptr : table;
}

void ReleaseTable(void* table, size_t size) {
    if (size < kMappedTable) {
        Release(table);
    } else if (table != nullptr) {
        munmap(table, size);
    }
}

#endif

}  // namespace tlvforge
