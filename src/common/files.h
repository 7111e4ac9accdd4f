// Whole files, through the C library's streams.
#pragma once

#include "engine/tmalloc.h"
#include "tlvforge/status.h"

namespace tlvforge {

// Reads a file into an empty block. For a file above 300,000,000 bytes nothing is stored, and the status is 0: *length
// has to be 0 before, and callers refuse that length. Status 12, 3, 46, 1.
Status ReadWholeFile(const char* path, Block* bytes, uint32_t* length);

// Creates the file, or replaces what is in it. Status 12, 47.
Status WriteWholeFile(const char* path, const uint8_t* bytes, uint32_t length);

}  // namespace tlvforge
