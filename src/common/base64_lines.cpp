// Whole lines of Base64 at once, 48 bytes and 64 characters, by the vector instructions of the processor. The method
// for AVX2 is that of W. Mula and D. Lemire, "Faster Base64 Encoding and Decoding Using AVX2 Instructions", 2018.
#include <stddef.h>

#include "common/base64.h"
#include "common/processor.h"

#if defined(__x86_64__)
#include <immintrin.h>
#elif defined(__aarch64__)
#include <arm_neon.h>
#endif

namespace tlvforge {

#if defined(__x86_64__)

namespace {

constexpr uint32_t kRegister = 16;  // table look-ups take 16 entries

// Rows of the alphabet are ranges of numbers whose characters lie at one distance from them: A-Z, a-z, 0-9, + and /.
// Row 1 is the letters a-z, rows 2 to 11 are the digits, each one of its own, row 0 is the letters A-Z.
struct Distances {
    int8_t ofRow[kRegister] = {};

    constexpr Distances() {
        for (int row = 0; row < 14; ++row) {
            const int number = row == 0 ? 0 : row == 1 ? 26 : 50 + row;
            ofRow[row] = static_cast<int8_t>(kBase64Alphabet[number] - number);
        }
    }
};
constexpr Distances kDistances;

// For decoding, the upper four bits of a character are its row, 0 to 7. Each row has one distance, but for "/", which
// gets that of row 1, a row without characters.
struct Rows {
    uint8_t bit[kRegister] = {};          // one for each row
    uint8_t foreignBits[kRegister] = {};  // by the lower four bits: the rows in which these are a foreign character
    int8_t distances[kRegister] = {};

    constexpr Rows() {
        for (uint8_t row = 0; row < 8; ++row) {
            bit[row] = static_cast<uint8_t>(1 << row);
            for (uint8_t low = 0; low < kRegister; ++low) {
                const char character = static_cast<char>(row << 4 | low);
                const uint8_t value = kBase64Values[character];
                if (value >= 64) {
                    foreignBits[low] |= bit[row];
                } else {
                    distances[character == '/' ? 1 : row] = static_cast<int8_t>(value - character);
                }
            }
        }
    }
};
constexpr Rows kRows;

[[gnu::target("avx2"), gnu::always_inline]] inline __m256i Load(const void* low, const void* high) {
    const __m128i half = _mm_loadu_si128(static_cast<const __m128i*>(low));
    return _mm256_inserti128_si256(_mm256_castsi128_si256(half), _mm_loadu_si128(static_cast<const __m128i*>(high)), 1);
}

// Both halves of a register hold the same table.
[[gnu::target("avx2"), gnu::always_inline]] inline __m256i LoadTable(const void* table) { return Load(table, table); }

// 24 bytes to 32 characters. Each half has 12 bytes, of which the order spreads every three over four.
[[gnu::target("avx2"), gnu::always_inline]] inline __m256i ToCharacters(__m256i bytes, __m256i order,
                                                                        __m256i distances) {
    bytes = _mm256_shuffle_epi8(bytes, order);
    // A multiplication is a shift whose width differs from one number of six bits to the next.
    const __m256i even =
        _mm256_mulhi_epu16(_mm256_and_si256(bytes, _mm256_set1_epi32(0x0FC0FC00)), _mm256_set1_epi32(0x04000040));
    const __m256i odd =
        _mm256_mullo_epi16(_mm256_and_si256(bytes, _mm256_set1_epi32(0x003F03F0)), _mm256_set1_epi32(0x01000010));
    const __m256i numbers = _mm256_or_si256(even, odd);
    const __m256i digits = _mm256_subs_epu8(numbers, _mm256_set1_epi8(51));  // 0 for letters
    const __m256i rows = _mm256_sub_epi8(digits, _mm256_cmpgt_epi8(numbers, _mm256_set1_epi8(25)));
    return _mm256_add_epi8(numbers, _mm256_shuffle_epi8(distances, rows));
}

[[gnu::target("avx2")]] void EncodeLines(const uint8_t* data, const uint8_t* end, char* text) {
    constexpr int kFirst = 0x01020001;  // the order of the first three bytes: 1, 0, 2, 1
    const __m256i order = _mm256_setr_epi32(kFirst, kFirst + 0x03030303, kFirst + 0x06060606, kFirst + 0x09090909,
                                            kFirst, kFirst + 0x03030303, kFirst + 0x06060606, kFirst + 0x09090909);
    const __m256i laterOrder = _mm256_add_epi8(order, _mm256_set1_epi8(4));
    const __m256i distances = LoadTable(kDistances.ofRow);
    for (; data != end; data += kBase64LineBytes, text += kBase64LineAndEnd) {
        // No byte outside the line is read: the later half of it begins four bytes early.
        const __m256i first = ToCharacters(Load(data, data + 12), order, distances);
        const __m256i second = ToCharacters(Load(data + 20, data + 32), laterOrder, distances);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(text), first);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(text + 32), second);
        text[64] = '\r';
        text[65] = '\n';
    }
}

struct DecodeTables {
    __m256i bit, foreignBits, distances;
};

// 32 characters to numbers of six bits. The foreign ones among them leave bits in *foreign.
[[gnu::target("avx2"), gnu::always_inline]] inline __m256i ToNumbers(const char* text, const DecodeTables& tables,
                                                                     __m256i* foreign) {
    const __m256i characters = _mm256_and_si256(Load(text, text + 16), _mm256_set1_epi8(0x7F));
    const __m256i rows = _mm256_and_si256(_mm256_srli_epi32(characters, 4), _mm256_set1_epi8(0x0F));
    *foreign =
        _mm256_and_si256(_mm256_shuffle_epi8(tables.bit, rows), _mm256_shuffle_epi8(tables.foreignBits, characters));
    const __m256i slash = _mm256_cmpeq_epi8(characters, _mm256_set1_epi8('/'));  // -1 where it is one
    return _mm256_add_epi8(characters, _mm256_shuffle_epi8(tables.distances, _mm256_add_epi8(rows, slash)));
}

// 32 numbers to 24 bytes at the front of the register.
[[gnu::target("avx2"), gnu::always_inline]] inline __m256i ToBytes(__m256i numbers) {
    // Two multiplications with sums join pairs to 12 bits, and these to 24.
    const __m256i pairs = _mm256_maddubs_epi16(numbers, _mm256_set1_epi32(0x01400140));
    const __m256i triples = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
    const __m256i order = _mm256_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1,  //
                                           2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
    return _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(triples, order), _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
}

[[gnu::target("avx2")]] uint32_t DecodeLines(const char* text, uint32_t lines, uint8_t* data) {
    const DecodeTables tables = {LoadTable(kRows.bit), LoadTable(kRows.foreignBits), LoadTable(kRows.distances)};
    for (uint32_t line = 0; line < lines; ++line, text += kBase64LineAndEnd, data += kBase64LineBytes) {
        __m256i foreignInFirst, foreignInSecond;
        const __m256i firstNumbers = ToNumbers(text, tables, &foreignInFirst);
        const __m256i secondNumbers = ToNumbers(text + 32, tables, &foreignInSecond);
        const __m256i foreign = _mm256_or_si256(foreignInFirst, foreignInSecond);
        if (_mm256_testz_si256(foreign, foreign) == 0) return line;
        const __m256i first = ToBytes(firstNumbers), second = ToBytes(secondNumbers);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(data), first);  // eight bytes too many, of the second half
        _mm_storeu_si128(reinterpret_cast<__m128i*>(data + 24), _mm256_castsi256_si128(second));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(data + 40), _mm256_extracti128_si256(second, 1));
    }
    return lines;
}

}  // namespace

#elif defined(__aarch64__)

namespace {

uint8x16x4_t LoadTable(const uint8_t* table) {
    return {vld1q_u8(table), vld1q_u8(table + 16), vld1q_u8(table + 32), vld1q_u8(table + 48)};
}

// A load of every third byte to a register, and a store of every fourth character from one, do the spreading.
void EncodeLines(const uint8_t* data, const uint8_t* end, char* text) {
    const uint8x16x4_t alphabet = LoadTable(reinterpret_cast<const uint8_t*>(kBase64Alphabet));
    const uint8x16_t sixBits = vdupq_n_u8(63);
    for (; data != end; data += kBase64LineBytes, text += kBase64LineAndEnd) {
        const uint8x16x3_t in = vld3q_u8(data);
        uint8x16x4_t out;
        out.val[0] = vshrq_n_u8(in.val[0], 2);
        out.val[1] = vandq_u8(vsliq_n_u8(vshrq_n_u8(in.val[1], 4), in.val[0], 4), sixBits);
        out.val[2] = vandq_u8(vsliq_n_u8(vshrq_n_u8(in.val[2], 6), in.val[1], 2), sixBits);
        out.val[3] = vandq_u8(in.val[2], sixBits);
        for (uint8x16_t& numbers : out.val) numbers = vqtbl4q_u8(alphabet, numbers);
        vst4q_u8(reinterpret_cast<uint8_t*>(text), out);
        text[64] = '\r';
        text[65] = '\n';
    }
}

uint32_t DecodeLines(const char* text, uint32_t lines, uint8_t* data) {
    const uint8x16x4_t lower = LoadTable(kBase64Values.values), upper = LoadTable(kBase64Values.values + 64);
    for (uint32_t line = 0; line < lines; ++line, text += kBase64LineAndEnd, data += kBase64LineBytes) {
        uint8x16x4_t in = vld4q_u8(reinterpret_cast<const uint8_t*>(text));
        for (uint8x16_t& each : in.val) {
            const uint8x16_t characters = vandq_u8(each, vdupq_n_u8(0x7F));
            // An index past a table of 64 leaves what the other one had.
            each = vqtbx4q_u8(vqtbl4q_u8(lower, characters), upper, vsubq_u8(characters, vdupq_n_u8(64)));
        }
        const uint8x16_t bits = vorrq_u8(vorrq_u8(in.val[0], in.val[1]), vorrq_u8(in.val[2], in.val[3]));
        if (vmaxvq_u8(bits) >= 64) return line;
        const uint8x16x3_t out = {vsliq_n_u8(vshrq_n_u8(in.val[1], 4), in.val[0], 2),
                                  vsliq_n_u8(vshrq_n_u8(in.val[2], 2), in.val[1], 4),
                                  vsliq_n_u8(in.val[3], in.val[2], 6)};
        vst3q_u8(data, out);
    }
    return lines;
}

}  // namespace

#else

namespace {

void EncodeLines(const uint8_t*, const uint8_t*, char*) {}
uint32_t DecodeLines(const char*, uint32_t, uint8_t*) { return 0; }

}  // namespace

#endif

uint32_t EncodeBase64Lines(const uint8_t* data, uint32_t lines, char* text) {
    if (!HasVectors()) return 0;
    EncodeLines(data, data + size_t{lines} * kBase64LineBytes, text);
    return lines;
}

uint32_t DecodeBase64Lines(const char* text, uint32_t lines, uint8_t* data) {
    return HasVectors() ? DecodeLines(text, lines, data) : 0;
}

}  // namespace tlvforge
