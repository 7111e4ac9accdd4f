#include "common/processor.h"

#include <stdint.h>

#include <atomic>

#if defined(__x86_64__)
#include <cpuid.h>
#elif defined(TLVFORGE_AARCH64_SHA1)
#include <sys/auxv.h>
#endif

namespace tlvforge {
namespace {

bool AskForSha1Instructions() {
#if defined(__x86_64__)
    constexpr uint32_t kFeatures = 1, kSsse3 = 1u << 9, kSse41 = 1u << 19;  // leaf; bits of ecx
    constexpr uint32_t kMoreFeatures = 7, kSha = 1u << 29;                  // leaf; bit of ebx
    uint32_t eax = 0, ebx = 0, ecx = 0, edx = 0;
    if (__get_cpuid(kFeatures, &eax, &ebx, &ecx, &edx) == 0) return false;
    if ((ecx & kSsse3) == 0 || (ecx & kSse41) == 0) return false;
    return __get_cpuid_count(kMoreFeatures, 0, &eax, &ebx, &ecx, &edx) != 0 && (ebx & kSha) != 0;
#elif defined(TLVFORGE_AARCH64_SHA1)
    constexpr unsigned long kSha1 = 1u << 5;
    return (getauxval(AT_HWCAP) & kSha1) != 0;
#else
    return false;
#endif
}

}  // namespace

// The question takes long on a virtual machine, so that the answer is kept. Threads that ask at once get the same one.
bool HasSha1Instructions() {
    constexpr std::memory_order kRelaxed = std::memory_order_relaxed;
    constinit static std::atomic<int> answer = -1;
    if (answer.load(kRelaxed) < 0) answer.store(AskForSha1Instructions() ? 1 : 0, kRelaxed);
    return !plainInstructionsOnly && answer.load(kRelaxed) != 0;
}

}  // namespace tlvforge
