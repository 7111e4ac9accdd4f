// Results of the encoders that know no capacity.
#pragma once

#include "support.h"
#include "tlvforge/attribute_values.h"

namespace support {

// Measures, then writes with a length of 0 on entry, which such an encoder must not look at. In hex.
template <class Function, class... Arguments>
std::string InFull(Function encode, Arguments... arguments) {
    uint32_t length = 0;
    EXPECT_STATUS(StatusOk, encode(arguments..., nullptr, &length));
    Bytes out(length);
    length = 0;
    EXPECT_EQ(encode(arguments..., out.data(), &length) + encode(arguments..., out.data(), nullptr), StatusBadArgument);
    EXPECT_EQ(length, Size(out));
    return ToHex(out);
}

}  // namespace support
