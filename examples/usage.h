// How every program answers --help, -h, and a command line that it can't take.
#pragma once

#include <cstdio>
#include <cstring>
#include <optional>

namespace examples {

// The exit status to end with: 0 after --help, 2 after an unknown option or when the arguments don't fit; nothing when
// the program has something to do. A file whose name begins with a hyphen is given as ./-name.
inline std::optional<int> AnswerUsage(const char* usage, int count, char** arguments, bool fits) {
    for (int i = 1; i < count; ++i) {
        if (strcmp(arguments[i], "--help") == 0 || strcmp(arguments[i], "-h") == 0) return fputs(usage, stdout), 0;
    }
    for (int i = 1; i < count; ++i) {
        if (arguments[i][0] != '-') continue;
        fprintf(stderr, "there is no option %s\n", arguments[i]);
        fits = false;
    }
    if (fits) return std::nullopt;
    fputs(usage, stderr);
    return 2;
}

}  // namespace examples
