// The one way to fail: `return Fail(StatusAbsent);` at the place that first decides on the status.
#pragma once

#include "tlvforge/status.h"

namespace tlvforge {

// Where a failure was detected: the bare file name of the unit, and the line.
struct Place {
    const char* file;
    uint32_t line;

    static constexpr Place Here(const char* path = __builtin_FILE(), uint32_t line = __builtin_LINE()) {
        const char* bare = path;
        for (const char* at = path; *at != 0; ++at) {
            if (*at == '/' || *at == '\\') bare = at + 1;
        }
        return {bare, line};
    }
};

// Records the place and returns the status. A status that came from below goes up without it.
[[gnu::cold, gnu::noinline]] Status Fail(Status status, Place place = Place::Here());

// True when one of the pointers is null.
template <class... Pointers>
constexpr bool AnyNull(const Pointers*... pointers) {
    return ((pointers == nullptr) || ...);
}

}  // namespace tlvforge
