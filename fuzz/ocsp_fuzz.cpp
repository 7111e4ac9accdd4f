#include "walk_ocsp.h"

// The bytes as a request, a response, and parts of one.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    walk::WalkOcsp(walk::Bytes(data, size));
    return 0;
}
