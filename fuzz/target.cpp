// What every target is started with. The bytes get a block of exactly their size, so that a sanitizer sees one too far.
#include "walk.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    walk::WalkInput(walk::Bytes(data, size));
    return 0;
}
