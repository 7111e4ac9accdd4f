// What every target is started with.
#include "walk.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    walk::WalkInput(walk::Bytes(data, size));
    return 0;
}
