// Real messages: what is decoded of them and encoded again has the same bytes where they are DER, and none of their
// prefixes decodes.

#include <map>
#include <set>

#include "support.h"
#include "walk_cms.h"

using support::Bytes;

namespace {

// An ordinary CertificateList beside the certificates is refused on purpose.
const std::map<std::string, Status> kRefused = {
    {"cms-signed/gen-certscrls.der", StatusBadEncoding},
    {"cms-signed/rpkirs-apnic-testbed-response.der", StatusBadEncoding},
    {"cms-signed/rpkirs-issue.der", StatusBadEncoding},
};

// Lengths or tags that aren't DER, and sets out of order.
const std::set<std::string> kNotDer = {
    "cms-enveloped/gen-env-stream-big.der",
    "cms-enveloped/ossl-ciphertext-from-1-1-1.der",
    "cms-enveloped/rustcrypto-kms-ciphertext-for-recipient-2.der",
    "cms-enveloped/rustcrypto-kms-ciphertext-for-recipient-4.der",
    "cms-signed/asn1crypto-smime-signature-generated-by-thunderbird.der",
    "cms-signed/forge-pkcs7-pem12.der",
    "cms-signed/gen-certsonly.der",
    "cms-signed/gen-stream-big.der",
    "cms-signed/gen-stream.der",
    "cms-signed/ossl-sectigo-all-zero-in.der",
    "cms-signed/phpseclib-fe-pdf.der",
    "cms-signed/rpkirs-example-ripe.der",
    "cms-signed/rpkirs-ta-mft.der",
    "cms-signed/rustcrypto-cms-ber.der",
    "cms-signed/smallstep-verify-test-b6412.der",
};

// The message with its content taken apart and put together again. Nothing for what doesn't decode.
template <auto Free>
Bytes Rewrite(auto decode, auto encode, const Bytes& input, Status* status) {
    const walk::Bytes exact(input.data(), input.size());
    const auto info = walk::Make<FreeCmsContentInfo>(DecodeCmsContentInfo, exact.data(), exact.size());
    *status = StatusBadEncoding;
    if (!info) return {};
    const Bytes content = support::Fetch(GetCmsContentInfoContent, info.get());
    walk::Owned<Free> message;
    typename walk::Owned<Free>::pointer decoded = nullptr;
    *status = decode(content.data(), support::Size(content), &decoded);
    message.reset(decoded);
    if (!message) return {};
    const Bytes written = support::Fetch(encode, message.get());
    EXPECT_EQ(SetCmsContentInfoContent(info.get(), written.data(), support::Size(written)), StatusOk);
    return support::Fetch(EncodeCmsContentInfo, info.get());
}

void CheckFolder(const std::string& folder, size_t least, auto rewrite) {
    const auto files = support::Corpus(folder);
    EXPECT_GE(files.size(), least);
    for (const auto& [name, bytes] : files) {
        SCOPED_TRACE(name);
        Status status = StatusOk;
        const auto refused = kRefused.find(name);
        const Bytes written = rewrite(bytes, &status);
        EXPECT_EQ(status, refused == kRefused.end() ? StatusOk : refused->second);
        if (status != StatusOk) continue;
        EXPECT_EQ(written != bytes, kNotDer.count(name) != 0) << "bytes " << bytes.size() << " to " << written.size();
        EXPECT_EQ(rewrite(written, &status), written);
        walk::WalkMessage(walk::Bytes(bytes.data(), bytes.size()));
        for (size_t size = 0; size < bytes.size(); size += 1 + bytes.size() / 2000) {
            EXPECT_EQ(rewrite({bytes.begin(), bytes.begin() + static_cast<long>(size)}, &status), Bytes()) << size;
        }
    }
}

TEST(Corpus, MessagesComeBackByteForByte) {
    SKIP_WITHOUT_CORPUS();
    CheckFolder("cms-signed", 60, [](const Bytes& in, Status* status) {
        return Rewrite<FreeCmsSignedData>(DecodeCmsSignedData, EncodeCmsSignedData, in, status);
    });
    CheckFolder("cms-enveloped", 36, [](const Bytes& in, Status* status) {
        return Rewrite<FreeCmsEnvelopedData>(DecodeCmsEnvelopedData, EncodeCmsEnvelopedData, in, status);
    });
}

}  // namespace
