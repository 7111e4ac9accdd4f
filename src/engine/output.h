// The one way to hand out bytes: the output-buffer rule of docs/conventions.md.
#pragma once

#include <stdint.h>
#include <string.h>

#include "engine/failure.h"
#include "engine/tmalloc.h"

namespace tlvforge {

// Applies the rule to a result of `needed` bytes that is still to be made: stores the length, and sets *write when
// the caller's buffer is there and large enough.
inline Status ReserveOutput(uint32_t needed, const void* buffer, uint32_t* length, bool* write,
                            Place place = Place::Here()) {
    *write = false;
    if (length == nullptr) return Fail(StatusBadArgument, place);
    const uint32_t offered = *length;
    *length = needed;
    if (buffer == nullptr) return StatusOk;
    if (offered < needed) return Fail(StatusBufferTooSmall, place);
    *write = true;
    return StatusOk;
}

// Applies the rule to bytes that are there.
inline Status CopyOut(const void* bytes, uint32_t count, void* buffer, uint32_t* length, Place place = Place::Here()) {
    bool write = false;
    const Status status = ReserveOutput(count, buffer, length, &write, place);
    if (write && count != 0) memmove(buffer, bytes, count);
    return status;
}

// Measures, allocates and makes the bytes that make(buffer, length) hands out.
template <class Make>
Status MakeBytes(const Make& make, Block* block, uint32_t* length, Place place = Place::Here()) {
    *length = 0;
    if (const Status status = make(nullptr, length)) return status;
    if (!block->Reserve(*length)) return Fail(StatusOutOfMemory, place);
    return make(block->Bytes(), length);
}

// An inner result that did not fit a work buffer of fixed size is no fault of the caller's buffer.
inline Status FromWorkBuffer(Status status, Place place = Place::Here()) {
    return status == StatusBufferTooSmall ? Fail(StatusWorkBufferTooSmall, place) : status;
}

}  // namespace tlvforge
