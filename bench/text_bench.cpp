// Base64 and SHA-1 of a MiB beside OpenSSL.
#ifdef HAVE_OPENSSL
#include <openssl/evp.h>
#endif

#include "rounds.h"
#include "sample.h"

namespace {

using namespace bench;

constexpr uint32_t kMebibyte = 1 << 20;

class TextContest : public Contest {
public:
    TextContest() : Contest("bytes/mebibyte", 40), data_(Random(kMebibyte)), bytes_(kMebibyte + 64) {
        uint32_t length = 0;
        Must(EncodeToBase64(data_.data(), kMebibyte, nullptr, &length));
        text_.resize(length);
        peersText_.resize(length);
        Add("to base64/tlvforge", [this] { Encode(); });
        Add("from base64/tlvforge", [this] { Decode(); });
        Add("sha1/tlvforge", [this] { Must(sha1(data_.data(), kMebibyte, digest_)); });
#ifdef HAVE_OPENSSL
        Add("to base64/OpenSSL", [this] { EncodeByOpenSsl(); });
        Add("from base64/OpenSSL", [this] { DecodeByOpenSsl(); });
        Add("sha1/OpenSSL", [this] { EVP_Digest(data_.data(), kMebibyte, digest_, nullptr, EVP_sha1(), nullptr); });
#endif
        Encode();
    }

    void PrintRatios() const override {
        printf("\n%s: %u bytes\n", Name().c_str(), kMebibyte);
        for (const std::string what : {"to base64", "from base64", "sha1"}) {
            printf("  %-40s %10.0f ns\n", what.c_str(), Time(what + "/tlvforge"));
            PrintRatio("OpenSSL, " + what, what + "/OpenSSL", what + "/tlvforge", "times ours");
        }
    }

private:
    void Encode() {
        textLength_ = Size(text_);
        Must(EncodeToBase64(data_.data(), kMebibyte, reinterpret_cast<char*>(text_.data()), &textLength_));
    }
    void Decode() {
        auto length = Size(bytes_);
        Must(DecodeFromBase64(reinterpret_cast<const char*>(text_.data()), textLength_, bytes_.data(), &length));
    }

#ifdef HAVE_OPENSSL
    // Lines of 64 characters too, with one byte as their end.
    void EncodeByOpenSsl() {
        EVP_ENCODE_CTX* context = EVP_ENCODE_CTX_new();
        int length = 0;
        EVP_EncodeInit(context);
        EVP_EncodeUpdate(context, peersText_.data(), &length, data_.data(), kMebibyte);
        EVP_EncodeFinal(context, peersText_.data() + length, &length);
        EVP_ENCODE_CTX_free(context);
    }
    void DecodeByOpenSsl() {
        EVP_ENCODE_CTX* context = EVP_ENCODE_CTX_new();
        int length = 0;
        EVP_DecodeInit(context);
        EVP_DecodeUpdate(context, bytes_.data(), &length, text_.data(), static_cast<int>(textLength_));
        EVP_ENCODE_CTX_free(context);
    }
#endif

    Bytes data_, bytes_, text_, peersText_;
    uint32_t textLength_ = 0;
    uint8_t digest_[20];
};

}  // namespace

void bench::AddTexts(Contests* contests) { contests->push_back(std::make_unique<TextContest>()); }
