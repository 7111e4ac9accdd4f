// What the processor has beyond the base of its architecture. It is found out at run time, so that one library runs on
// all of them.
#pragma once

namespace tlvforge {

#ifdef TLVFORGE_INSTRUMENT
// The build for tests can do without, to compare the results.
inline bool plainInstructionsOnly = false;
#else
inline constexpr bool plainInstructionsOnly = false;
#endif

// AVX2 or NEON.
inline bool HasVectors() {
#if defined(__x86_64__)
    return !plainInstructionsOnly && __builtin_cpu_supports("avx2") != 0;
#elif defined(__aarch64__)
    return !plainInstructionsOnly;
#else
    return false;
#endif
}

// For SHA-1, clang has its intrinsics for AArch64 only where the whole build may use them.
#if defined(__aarch64__) && defined(__linux__) && (!defined(__clang__) || defined(__ARM_FEATURE_SHA2))
#define TLVFORGE_AARCH64_SHA1
#endif

// Instructions for the rounds and the schedule of SHA-1.
bool HasSha1Instructions();

}  // namespace tlvforge
