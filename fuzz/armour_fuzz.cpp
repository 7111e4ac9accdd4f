// Text in and out of its armour, and what else works on plain bytes.
#include "walk.h"

using namespace walk;

namespace {

const char* TextOf(const Bytes& bytes) { return reinterpret_cast<const char*>(bytes.data()); }

void WalkArmour(const Bytes& in) {
    (void)Get(DecodeFromBase64, TextOf(in), in.size());
    if (const auto content = Get(DecodePem, TextOf(in), in.size())) Require((*content)[0].size() != 0);
    if (in.size() == 0) return;  // has no text
    const auto [base64] = Sure(Get(EncodeToBase64, in.data(), in.size()));
    const auto [pem] = Sure(Get(EncodePem, in.data(), in.size(), "X"));
    Require(Sure(Get(DecodeFromBase64, TextOf(base64), base64.size()))[0] == in);
    for (const Bytes* text : {&base64, &pem}) Require(Sure(Get(DecodePem, TextOf(*text), text->size()))[0] == in);
}

void WalkText(const Bytes& in) {
    const std::string text = std::string(in.data(), in.end()).c_str();
    uint32_t type = 0, length = 0;
    Require(Ok(DetermineSuitableStringType(in.data(), in.size(), &type)));
    for (uint32_t size = 1;; size = std::max(2 * size, length)) {
        const Bytes utf8(length = size);
        if (Ok(ConvertAnsiToUTF8(text.c_str(), reinterpret_cast<char*>(utf8.data()), &length)))
            return Require(std::find(utf8.data(), utf8.end(), 0) - utf8.data() == length && length >= text.size());
        Require(length == 20 + 2 * text.size());
    }
}

// Blocks of another system, that say of themselves what they are.
void WalkBlocks(const Bytes& in) {
    for (const size_t size : {64, 128, 256}) {
        const Bytes block(size);
        std::copy_n(in.data(), std::min<size_t>(size, in.size()), block.data());
        for (const auto convert : {ConvertZelcryptSignatureToX509, ConvertX509SignatureToZelcrypt,
                                   ConvertZelcryptPublicKeyToX509, ConvertX509PublicKeyToZelcrypt})
            (void)Get(convert, block.data(), block.size());
    }
}

}  // namespace

void walk::WalkInput(const Bytes& in) {
    WalkArmour(in);
    WalkText(in);
    WalkBlocks(in);
    Sure(sha1(in.data(), in.size(), Bytes(20).data()));
}
