// What the processor's own instructions make is what the plain code makes, on the same inputs.
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

// Status and output of function(in, size, out, &length), by the plain code or not. Both buffers are heap blocks of
// exactly their sizes, and the output is filled before, so that bytes outside are seen.
Bytes Answer(bool plain, auto function, const Bytes& in, size_t outSize) {
    tlvforge::plainInstructionsOnly = plain;
    const walk::Bytes exactIn(in.data(), in.size()), exactOut(Bytes(outSize, 0xA5).data(), outSize);
    uint32_t length = exactOut.size();
    const Status status = function(walk::Buffer{exactIn.data()}, Size(in), walk::Buffer{exactOut.data()}, &length);
    tlvforge::plainInstructionsOnly = false;
    return Bytes(exactOut.data(), exactOut.end()) + Bytes{uint8_t(status), uint8_t(length)};
}

void ExpectSame(const char* what, auto function, const Bytes& in, size_t outSize) {
    EXPECT_EQ(ToHex(Answer(true, function, in, outSize)), ToHex(Answer(false, function, in, outSize))) << what;
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
    const auto decodeInPlace = [](auto in, uint32_t size, auto out, uint32_t* length) {
        return std::copy_n(in.bytes, size, out.bytes), DecodeFromBase64(out, size, out, length);
    };
    for (size_t round = 0; round < 3000; ++round) {
        const Bytes data = RandomBytes(1 + Random(300));
        ExpectSame("encode", EncodeToBase64, data, (data.size() + 2) / 3 * 4 + 10);
        for (const auto& written :
             {walk::Get(EncodeToBase64, data.data(), Size(data)), walk::Get(EncodePem, data.data(), Size(data), "X")}) {
            Bytes text((*written)[0].data(), (*written)[0].end());
            Spoil(&text);
            ExpectSame("decode", DecodeFromBase64, text, text.size());
            ExpectSame("decode into the room that is needed", DecodeFromBase64, text, data.size());
            ExpectSame("decode in place", decodeInPlace, text, text.size());
            ExpectSame("armoured", DecodePem, text, text.size());
        }
        if (HasFailure()) FAIL() << "round " << round;
    }
    // Each byte in each place of a line.
    for (size_t i = 0; i < 64 * 256 && !HasFailure(); ++i) {
        Bytes text(70, 'Q');
        text[i / 256] = static_cast<uint8_t>(i);
        ExpectSame("any byte", DecodeFromBase64, text, 60);
    }
}

TEST(Instructions, Sha1) {
    if (!tlvforge::HasSha1Instructions()) GTEST_SKIP() << "this processor has no instructions for SHA-1";
    const auto digest = [](auto in, uint32_t size, auto out, uint32_t*) { return sha1(in, size, out); };
    for (size_t size = 0; size < 1000; size += 1 + size / 20) ExpectSame("digest", digest, RandomBytes(size), 20);
    ExpectSame("digest", digest, RandomBytes(100000), 20);
}
