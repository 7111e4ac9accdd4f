// Four rounds at a time. Of the five values, four lie in one register; the fifth for the next rounds is the first one
// from before these, rotated. The schedule is a ring of four registers of four words.
#include "common/sha1_blocks.h"

#include <utility>

#include "common/processor.h"

#if defined(__x86_64__)
#include <immintrin.h>
#elif defined(TLVFORGE_AARCH64_SHA1)
#include <arm_neon.h>
#endif

namespace tlvforge {

#if defined(__x86_64__)

namespace {

template <int Step>
[[gnu::target("sha,sse4.1"), gnu::always_inline]] inline void FourRounds(__m128i* values, __m128i* fifth,
                                                                         __m128i (&words)[4]) {
    const __m128i before = *values;
    __m128i& word = words[Step % 4];
    const __m128i sum = Step == 0 ? _mm_add_epi32(*fifth, word) : _mm_sha1nexte_epu32(*fifth, word);
    *values = _mm_sha1rnds4_epu32(*values, sum, Step / 5);
    *fifth = before;
    if constexpr (Step < 16) {
        const __m128i earlier = _mm_xor_si128(_mm_sha1msg1_epu32(word, words[(Step + 1) % 4]), words[(Step + 2) % 4]);
        word = _mm_sha1msg2_epu32(earlier, words[(Step + 3) % 4]);
    }
}

template <int... Steps>
[[gnu::target("sha,sse4.1"), gnu::always_inline]] inline void AllRounds(__m128i* values, __m128i* fifth,
                                                                        __m128i (&words)[4],
                                                                        std::integer_sequence<int, Steps...>) {
    (FourRounds<Steps>(values, fifth, words), ...);
}

}  // namespace

[[gnu::target("sha,sse4.1")]] void AddSha1Blocks(uint32_t (&hash)[5], const uint8_t* data, const uint8_t* end) {
    // The first value, and the first word of four, lie in the upper end of a register; words of a message are
    // big-endian.
    constexpr int kReverseWords = 0x1B;
    const __m128i reverseBytes = _mm_set_epi64x(0x0001020304050607, 0x08090A0B0C0D0E0F);
    __m128i* const memory = reinterpret_cast<__m128i*>(hash);
    __m128i values = _mm_shuffle_epi32(_mm_loadu_si128(memory), kReverseWords);
    __m128i fifth = _mm_set_epi32(static_cast<int>(hash[4]), 0, 0, 0);
    for (; data != end; data += kSha1BlockSize) {
        const __m128i valuesBefore = values, fifthBefore = fifth;
        __m128i words[4];
        for (int i = 0; i < 4; ++i) {
            words[i] = _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(data) + i), reverseBytes);
        }
        AllRounds(&values, &fifth, words, std::make_integer_sequence<int, 20>());
        values = _mm_add_epi32(values, valuesBefore);
        fifth = _mm_sha1nexte_epu32(fifth, fifthBefore);
    }
    _mm_storeu_si128(memory, _mm_shuffle_epi32(values, kReverseWords));
    hash[4] = static_cast<uint32_t>(_mm_extract_epi32(fifth, 3));
}

#elif defined(TLVFORGE_AARCH64_SHA1)

namespace {

template <int Step>
[[gnu::target("+crypto"), gnu::always_inline]] inline void FourRounds(uint32x4_t* values, uint32_t* fifth,
                                                                      uint32x4_t (&words)[4]) {
    const uint32_t nextFifth = vsha1h_u32(vgetq_lane_u32(*values, 0));
    uint32x4_t& word = words[Step % 4];
    const uint32x4_t sum = vaddq_u32(word, vdupq_n_u32(kSha1Constants[Step / 5]));
    if constexpr (Step < 5) {
        *values = vsha1cq_u32(*values, *fifth, sum);
    } else if constexpr (Step / 5 == 2) {
        *values = vsha1mq_u32(*values, *fifth, sum);
    } else {
        *values = vsha1pq_u32(*values, *fifth, sum);
    }
    *fifth = nextFifth;
    if constexpr (Step < 16) {
        const uint32x4_t earlier = vsha1su0q_u32(word, words[(Step + 1) % 4], words[(Step + 2) % 4]);
        word = vsha1su1q_u32(earlier, words[(Step + 3) % 4]);
    }
}

template <int... Steps>
[[gnu::target("+crypto"), gnu::always_inline]] inline void AllRounds(uint32x4_t* values, uint32_t* fifth,
                                                                     uint32x4_t (&words)[4],
                                                                     std::integer_sequence<int, Steps...>) {
    (FourRounds<Steps>(values, fifth, words), ...);
}

}  // namespace

[[gnu::target("+crypto")]] void AddSha1Blocks(uint32_t (&hash)[5], const uint8_t* data, const uint8_t* end) {
    uint32x4_t values = vld1q_u32(hash);
    uint32_t fifth = hash[4];
    for (; data != end; data += kSha1BlockSize) {
        const uint32x4_t valuesBefore = values;
        const uint32_t fifthBefore = fifth;
        uint32x4_t words[4];
        for (int i = 0; i < 4; ++i) words[i] = vreinterpretq_u32_u8(vrev32q_u8(vld1q_u8(data + 16 * i)));
        AllRounds(&values, &fifth, words, std::make_integer_sequence<int, 20>());
        values = vaddq_u32(values, valuesBefore);
        fifth += fifthBefore;
    }
    vst1q_u32(hash, values);
    hash[4] = fifth;
}

#else

void AddSha1Blocks(uint32_t (&)[5], const uint8_t*, const uint8_t*) {}

#endif

}  // namespace tlvforge
