// Bytes in other forms: Base64 and PEM, key blocks, a code page, digests. Strings hold bytes here.
#include "support.h"

using namespace support;

namespace {

// What a function makes of an input that lies in a heap block of exactly its size, or its status.
template <class In, class Out>
std::string Answer(Status (*function)(const In*, uint32_t, Out*, uint32_t*), const std::string& input) {
    const std::unique_ptr<In[]> exact(new In[input.size()]);
    memcpy(exact.get(), input.data(), input.size());
    const auto call = [&](uint8_t* out, uint32_t* length) {
        return function(exact.get(), static_cast<uint32_t>(input.size()), reinterpret_cast<Out*>(out), length);
    };
    uint32_t length = 0;
    const Status status = call(nullptr, &length);
    if (status != StatusOk) return "status " + std::to_string(status);
    const Bytes result = Fetch(call);
    return std::string(result.begin(), result.end());
}

Status EncodeCrl(const uint8_t* data, uint32_t length, char* text, uint32_t* textLength) {
    return EncodePem(data, length, "X509 CRL", text, textLength);
}

TEST(Base64, LayoutSizesAndRoundTripOfEveryLength) {
    const std::string line(64, 'A'), zeros(49, '\0');
    EXPECT_EQ(Answer(EncodeToBase64, zeros.substr(1)), line);
    EXPECT_EQ(Answer(EncodeToBase64, "fooba\xFB\xEF\xFF"), "Zm9vYmH77/8=");
    EXPECT_EQ(Answer(DecodeFromBase64, "\xD1Q\xBD="), "A");
    EXPECT_EQ(Answer(EncodeCrl, zeros),
              "-----BEGIN X509 CRL-----\r\n" + line + "\r\nAA==\r\n-----END X509 CRL-----\r\n");
    for (std::string data = "x"; data.size() <= 200; data += static_cast<char>(data.size() * 37)) {
        EXPECT_EQ(Answer(DecodeFromBase64, Answer(EncodeToBase64, data)), data);
        EXPECT_EQ(Answer(DecodePem, Answer(EncodeCrl, data)), data);
    }
    const uint8_t none = 0;  // a size query reads no data
    uint32_t bare = 0, armoured = 0;
    CHECK({EncodeToBase64(&none, 0, nullptr, &bare)}, {bare, 134217726u}, {EncodeCrl(&none, 0, nullptr, &armoured)},
          {armoured, 1476395062u});
    EXPECT_STATUS(StatusBadArgument, EncodeToBase64(&none, 3123612577, nullptr, &bare));
    EXPECT_STATUS(StatusBadArgument, EncodeCrl(&none, 3123612576, nullptr, &armoured));
}

TEST(Base64, FastDecoderStaysInsideForeignText) {
    for (const std::string piece : {"A", "=", "AAA=", "QUJD\r\n", "\xBD\xFE"}) {
        for (std::string text; text.size() < 200; text += piece[text.size() % piece.size()])
            EXPECT_NE(Answer(DecodeFromBase64, text).substr(0, 6), "status") << text;
    }
}

TEST(Pem, ReadsWhatOthersWriteAndRefusesTheRest) {
    const std::string begin = "-----BEGIN X-----\n", end = "\n-----END X-----\n", refused = "status 319";
    EXPECT_EQ(Answer(DecodePem, "----- BEGIN X -----\nQUJD\n----- END X -----\n"), "ABC");
    EXPECT_EQ(Answer(DecodePem, "a - b\n" + begin + "\r\n QUJD QUI= \r\n" + end + "QUJD"), "ABCAB");
    EXPECT_EQ(Answer(DecodePem, begin + "QUJD\n----- EN."), "ABC");
    EXPECT_EQ(Answer(DecodePem, "QUJD\nQUJD\r\nQ\xD1==\r\n"), "ABCABCA");
    for (const std::string text : {"\nQUJD", "QUJD\n-----END X-----\n", "-----BEGIN X-----\nQUJD\n----- EN"})
        EXPECT_EQ(Answer(DecodePem, text), refused) << text;
    for (const std::string body : {"", "QUJ", "QUJDQUJ", "QUJ\nD", "QUJD\n\tQUJD", "Q*JD", "QU*=", "QUJ*", "QU=D",
                                   "QQ==xx", "QQ==QQ==", "A: 4\n\nQUJD"}) {
        EXPECT_EQ(Answer(DecodePem, body) + Answer(DecodePem, begin + body + end), refused + refused) << body;
    }
    const std::string data(100, 'Z'), whole = Answer(EncodeCrl, data);
    for (size_t size = 0; size < whole.size(); ++size) {
        const std::string cut = Answer(DecodePem, whole.substr(0, size));
        EXPECT_TRUE(cut == refused || (!cut.empty() && data.compare(0, cut.size(), cut) == 0)) << size;
    }
}

TEST(Pem, RealFiles) {
    SKIP_WITHOUT_CORPUS();
    size_t documents = 0;
    for (const auto& [name, bytes] : Corpus("pem"))
        documents += Answer(DecodePem, std::string(bytes.begin(), bytes.end())).substr(0, 2) == "\x30\x82";
    EXPECT_GE(documents, 24u);  // the others have tabs, header lines, lines of broken groups, or are short
}

TEST(Convert, KeyBlocksAndSignatures) {
    std::string block;
    while (block.size() < 256) block += static_cast<char>(block.size() + 1);
    const std::string first = block.substr(0, 32), second = block.substr(32, 32), large = block.substr(0, 128);
    const std::string gap(32, '\0'), tail = std::string(124, '\0') + "v5" + std::string(2, '\0');
    for (int marker = 0; marker < 256; ++marker) {
        block[254] = static_cast<char>(marker);
        const size_t form = std::string("123ABCDXYabcxy").find(block[254]);
        const std::string key = form < 3 ? large : first + block.substr(64, 32), refused = "status 317";
        EXPECT_EQ(Answer(ConvertZelcryptPublicKeyToX509, block), form < 14 ? key : refused) << marker;
    }
    EXPECT_EQ(Answer(ConvertZelcryptPublicKeyToX509, large), "status 32");
    EXPECT_EQ(Answer(ConvertX509PublicKeyToZelcrypt, first + second), first + gap + second + gap + tail);
    EXPECT_EQ(Answer(ConvertX509PublicKeyToZelcrypt, large), large + tail);
    EXPECT_EQ(Answer(ConvertX509SignatureToZelcrypt, large), std::string(large.rbegin(), large.rend()));
    EXPECT_EQ(Answer(ConvertZelcryptSignatureToX509, first), "status 32");
}

TEST(Convert, CodePageNeedsTenFreeBytesPerCharacter) {
    const std::string text = "x\x7F\xA4\xB0\xB7\x80\xA9\xA8\xB8\xAA\xBA\xAF\xBF\xA1\xA2\xC0\xFF\x95\xB9";
    const std::string utf8 = "x\x7F¤°·ϐϹЁёЄєЇїЎўАя•№";
    for (uint32_t size = 0; size < 60; ++size) {
        const std::unique_ptr<char[]> exact(new char[size]);
        uint32_t length = size;
        const bool fits = size >= utf8.size() - 3 + 10;
        const Status expected = fits ? StatusOk : StatusBufferTooSmall;
        ASSERT_EQ(ConvertAnsiToUTF8(text.c_str(), exact.get(), &length), expected) << size;
        EXPECT_EQ(length, fits ? utf8.size() : 2 * text.size() + 20) << size;
        EXPECT_EQ(fits ? exact.get() : utf8, utf8);
        if (size != 0) *exact.get() = 'x';
        CHECK({ConvertAnsiToUTF8("", exact.get(), &(length = size))}, {length, 0},
              {size != 0 && *exact.get() != 0, false});
        EXPECT_STATUS(StatusBufferTooSmall, ConvertAnsiToUTF8("x", exact.get(), &(length = 1u << 31)));
    }
}

TEST(Convert, ArraysAreEqualByLengthAndBytes) {
    const uint8_t bytes[] = {1, 2, 1, 3};
    CHECK({IsArrayEquals(nullptr, 5, nullptr, 7)}, {IsArrayEquals(bytes, 1, bytes + 2, 1)},
          {IsArrayEquals(bytes, -1, bytes + 2, -1)}, {IsArrayEquals(bytes, 0, nullptr, 0), StatusNotEqual},
          {IsArrayEquals(bytes, 2, bytes + 2, 2), StatusNotEqual}, {IsArrayEquals(bytes, 2, bytes, 1), StatusNotEqual});
}

TEST(Sha1, DigestOfAllDigestsOverThePaddingBoundaries) {
    const Bytes message(200, 'a');
    Bytes digest(21), digests;  // the digest lies at an odd address
    for (uint32_t size = 0; size < 200; ++size) {
        EXPECT_STATUS(StatusOk, sha1(message.data(), size, &digest[1]));
        digests.insert(digests.end(), digest.begin() + 1, digest.end());
    }
    EXPECT_STATUS(StatusOk, sha1(digests.data(), 4000, &digest[1]));
    EXPECT_EQ(ToHex(digest), "008A18F04BAC7C86CFCFFA6A93E5CB21AE0159DEAC");
    EXPECT_STATUS(StatusBadArgument, sha1(nullptr, 0, &digest[0]), sha1(&digest[0], 0, nullptr));
}

}  // namespace
