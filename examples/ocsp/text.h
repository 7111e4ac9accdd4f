// Lines about what was read, for a person.
#pragma once

#include <cstdio>
#include <string>

#include "../outline/names.h"

namespace examples {

inline std::string DescribeTime(const LibraryTime& time) {
    char text[80];
    snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u UTC", time.year, time.month, time.day, time.hour,
             time.minute, time.second);
    return text;
}

// "C=DE, O=Example, CN=Example CA"
inline std::string DescribeEncodedName(const Bytes& der) {
    OwnedName name;
    Require(DecodeX509Name(der.data(), Size(der), name.Out()), "decoding a name");
    return DescribeName(name);
}

}  // namespace examples
