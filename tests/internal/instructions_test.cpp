// What the processor's own instructions make is what the plain code makes, on the same inputs.
#include <algorithm>
#include <random>

#include "common/processor.h"
#include "support.h"

using namespace support;

namespace {

std::mt19937 randomNumbers(20240229);

size_t Random(size_t end) { return randomNumbers() % end; }

Bytes RandomBytes(size_t size) {
    Bytes bytes(size);
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(randomNumbers());
    return bytes;
}

// Status and output of function(in, out, &length), by the plain code or not. Both buffers are heap blocks of exactly
// their sizes, and the output is filled before, so that bytes outside are seen.
template <class Function>
Bytes Answer(bool plain, Function function, const Bytes& in, size_t outSize) {
    tlvforge::plainInstructionsOnly = plain;
    const std::unique_ptr<uint8_t[]> exactIn(new uint8_t[in.size()]), exactOut(new uint8_t[outSize]);
    std::copy(in.begin(), in.end(), exactIn.get());
    memset(exactOut.get(), 0xA5, outSize);
    auto length = static_cast<uint32_t>(outSize);
    const Status status = function(exactIn.get(), Size(in), exactOut.get(), &length);
    tlvforge::plainInstructionsOnly = false;
    Bytes answer(exactOut.get(), exactOut.get() + outSize);
    for (const uint32_t number : {status, length}) answer.push_back(static_cast<uint8_t>(number & 0xFF));
    return answer;
}

template <class Function>
void ExpectSame(const char* what, Function function, const Bytes& in, size_t outSize) {
    EXPECT_EQ(ToHex(Answer(true, function, in, outSize)), ToHex(Answer(false, function, in, outSize))) << what;
}

Status Encode(const uint8_t* in, uint32_t size, uint8_t* out, uint32_t* length) {
    return EncodeToBase64(in, size, reinterpret_cast<char*>(out), length);
}
Status Armour(const uint8_t* in, uint32_t size, uint8_t* out, uint32_t* length) {
    return EncodePem(in, size, "X", reinterpret_cast<char*>(out), length);
}
Status Decode(const uint8_t* in, uint32_t size, uint8_t* out, uint32_t* length) {
    return DecodeFromBase64(reinterpret_cast<const char*>(in), size, out, length);
}
Status Unarmour(const uint8_t* in, uint32_t size, uint8_t* out, uint32_t* length) {
    return DecodePem(reinterpret_cast<const char*>(in), size, out, length);
}
Status DecodeInPlace(const uint8_t* in, uint32_t size, uint8_t* out, uint32_t* length) {
    std::copy(in, in + size, out);
    return Decode(out, size, out, length);
}

// Up to three bytes changed, put in or left out: any byte, those with a meaning, and the same with the top bit set.
void Spoil(Bytes* text) {
    constexpr char kMeanings[] = "=\r\n -+/AZaz09@[`{,.:\x80";
    for (size_t changes = Random(4); changes != 0 && !text->empty(); --changes) {
        const auto at = text->begin() + static_cast<ptrdiff_t>(Random(text->size()));
        const uint8_t meaning = static_cast<uint8_t>(kMeanings[Random(sizeof kMeanings)]);
        const uint8_t bytes[] = {static_cast<uint8_t>(randomNumbers()), meaning, static_cast<uint8_t>(*at ^ 0x80)};
        const uint8_t byte = bytes[Random(std::size(bytes))];
        switch (Random(4)) {
            case 0: text->insert(at, byte); break;
            case 1: text->erase(at); break;
            default: *at = byte;
        }
    }
}

}  // namespace

TEST(Instructions, Base64) {
    if (!tlvforge::HasVectors()) GTEST_SKIP() << "this processor has neither AVX2 nor NEON: all Base64 is plain code";
    for (size_t round = 0; round < 3000; ++round) {
        const Bytes data = RandomBytes(1 + Random(300));
        const size_t textSize = (data.size() + 2) / 3 * 4 + 10;
        ExpectSame("encode", Encode, data, textSize);
        for (const bool armoured : {false, true}) {
            Bytes text = Fetch(armoured ? Armour : Encode, data.data(), Size(data));
            Spoil(&text);
            ExpectSame("decode", Decode, text, text.size());
            ExpectSame("decode into the room that is needed", Decode, text, data.size());
            ExpectSame("decode in place", DecodeInPlace, text, text.size());
            ExpectSame("armoured", Unarmour, text, text.size());
        }
        if (HasFailure()) FAIL() << "round " << round;
    }
}

// Each byte in each place of a line.
TEST(Instructions, Base64OfEveryByteInALine) {
    if (!tlvforge::HasVectors()) GTEST_SKIP() << "this processor has neither AVX2 nor NEON: all Base64 is plain code";
    for (size_t at = 0; at < 64; ++at) {
        for (size_t byte = 0; byte < 256; ++byte) {
            Bytes text(70, 'Q');
            text[at] = static_cast<uint8_t>(byte);
            ASSERT_EQ(Answer(true, Decode, text, 60), Answer(false, Decode, text, 60)) << byte << " at " << at;
        }
    }
}

TEST(Instructions, Sha1) {
    if (!tlvforge::HasSha1Instructions()) GTEST_SKIP() << "this processor has no instructions for SHA-1";
    const auto digest = [](const uint8_t* in, uint32_t size, uint8_t* out, uint32_t*) { return sha1(in, size, out); };
    for (size_t size = 0; size < 1000; size += 1 + size / 20) ExpectSame("digest", digest, RandomBytes(size), 20);
    ExpectSame("digest", digest, RandomBytes(100000), 20);
}
