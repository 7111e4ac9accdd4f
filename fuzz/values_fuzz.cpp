#include "walk_values.h"

// The bytes as a time-stamp, as the value of a private extension, and as that of an attribute.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const walk::Bytes in(data, size);
    walk::WalkTimeStamp(in);
    walk::WalkPrivateExtension(in);
    walk::WalkAttributeValue(in);
    return 0;
}
