#include "engine/failure.h"

#include <stdint.h>

#include <atomic>

namespace {

// All threads share one record. Failures at the same time overwrite each other, so that a reader may see the file of
// one and the line of another; no order is kept between the two.
constexpr std::memory_order kRelaxed = std::memory_order_relaxed;
constinit std::atomic<const char*> lastFile = nullptr;
constinit std::atomic<uint32_t> lastLine = UINT32_MAX;

}  // namespace

namespace tlvforge {

Status Fail(Status status, Place place) {
    lastFile.store(place.file, kRelaxed);
    lastLine.store(place.line, kRelaxed);
    return status;
}

}  // namespace tlvforge

const char* GetLastFileErrorAsn(uint32_t* line) {
    if (line != nullptr) *line = lastLine.load(kRelaxed);
    return lastFile.load(kRelaxed);
}
