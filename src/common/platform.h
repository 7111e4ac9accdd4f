// What the C libraries of the systems name differently.
#pragma once

#include <stdint.h>
#include <stdio.h>
#include <time.h>

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

#endif

}  // namespace tlvforge
