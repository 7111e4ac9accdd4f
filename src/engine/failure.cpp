#include "engine/failure.h"

#include <stdint.h>

namespace {
const char* lastFile = nullptr;
uint32_t lastLine = UINT32_MAX;
}  // namespace

namespace tlvforge {

Status Fail(Status status, Place place) {
    lastFile = place.file;
    lastLine = place.line;
    return status;
}

}  // namespace tlvforge

const char* GetLastFileErrorAsn(uint32_t* line) {
    if (line != nullptr) *line = lastLine;
    return lastFile;
}
