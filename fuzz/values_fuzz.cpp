#include "walk_values.h"

// The bytes as a time-stamp, as the value of a private extension, and as that of an attribute.
void walk::WalkInput(const Bytes& in) {
    for (const auto walk : {WalkTimeStamp, WalkPrivateExtension, WalkAttributeValue}) walk(in);
}
