#include "walk_cms.h"

// The bytes as a message, its content, and a list of messages.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    walk::WalkMessage(walk::Bytes(data, size));
    return 0;
}
