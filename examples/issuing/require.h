// Failures of the library end the program through an exception.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include "../support.h"

namespace examples {

inline void Require(Status status, const char* action) {
    if (status != StatusOk) throw std::runtime_error(std::string(action) + ": " + DescribeFailure(status));
}

inline Bytes Require(Fetched fetched, const char* action) {
    Require(fetched.status, action);
    return std::move(fetched.bytes);
}

}  // namespace examples
