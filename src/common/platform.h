// What the C libraries of the systems name differently.
#pragma once

#include <stdint.h>
#include <stdio.h>
#include <time.h>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
extern "C" __declspec(dllimport) int __stdcall SetConsoleOutputCP(unsigned int page);
#else
#include <unistd.h>
#endif

namespace tlvforge {

#ifdef _WIN32

inline bool SplitUtc(time_t seconds, tm* fields) { return gmtime_s(fields, &seconds) == 0; }
// In the zone of the environment, as it is now.
inline bool SplitLocal(time_t seconds, tm* fields) {
    _tzset();
    return localtime_s(fields, &seconds) == 0;
}
inline time_t JoinUtc(tm* fields) { return _mkgmtime64(fields); }

inline bool SeekFile(FILE* file, int64_t offset, int origin) { return _fseeki64(file, offset, origin) == 0; }
inline int64_t TellFile(FILE* file) { return _ftelli64(file); }

inline bool IsTerminal(FILE* file) { return _isatty(_fileno(file)) != 0; }
// Input is bytes, and output to a terminal UTF-8.
inline void PrepareStreams() {
    _setmode(_fileno(stdin), _O_BINARY);
    SetConsoleOutputCP(65001);
}
// Not every console of Windows knows the sequences.
inline constexpr bool kTerminalsHaveColours = false;

#else

inline bool SplitUtc(time_t seconds, tm* fields) { return gmtime_r(&seconds, fields) != nullptr; }
// In the zone of the environment, as it is now: localtime_r alone need not see a changed one.
inline bool SplitLocal(time_t seconds, tm* fields) {
    tzset();
    return localtime_r(&seconds, fields) != nullptr;
}
inline time_t JoinUtc(tm* fields) { return timegm(fields); }

inline bool SeekFile(FILE* file, int64_t offset, int origin) { return fseeko(file, offset, origin) == 0; }
inline int64_t TellFile(FILE* file) { return ftello(file); }

inline bool IsTerminal(FILE* file) { return isatty(fileno(file)) != 0; }
inline void PrepareStreams() {}
inline constexpr bool kTerminalsHaveColours = true;

#endif

}  // namespace tlvforge
