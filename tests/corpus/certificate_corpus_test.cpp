// Real certificates: each decodes and encodes to the same bytes; damaged ones give a status and nothing else.

#include "support.h"
#include "walk.h"

using support::Bytes;

namespace {

// Decodes from a block of exactly the input's size; a certificate that comes out is walked by every getter.
Status DecodeAndWalk(const Bytes& input) {
    const walk::Bytes exact(input.data(), input.size());
    Certificate* certificate = nullptr;
    const Status status = DecodeCertificate(exact.data(), exact.size(), &certificate);
    EXPECT_EQ(status == StatusOk, certificate != nullptr);
    if (certificate != nullptr) walk::WalkCertificate(certificate);
    FreeCertificate(certificate);
    return status;
}

TEST(Corpus, CertificatesComeBackByteForByte) {
    SKIP_WITHOUT_CORPUS();
    const auto files = support::Corpus("cert");
    EXPECT_GE(files.size(), 100u);
    for (const auto& [name, bytes] : files) {
        SCOPED_TRACE(name);
        EXPECT_EQ(DecodeAndWalk(bytes), 0u);
        const auto certificate = support::Decoded<FreeCertificate>(DecodeCertificate, bytes);
        EXPECT_EQ(support::Fetch(EncodeCertificate, certificate.get()), bytes);
    }
}

// Offsets of the length octets of every element down to the primitive ones.
void FindLengths(const Bytes& der, size_t at, size_t end, std::vector<size_t>* offsets) {
    while (at + 2 <= end) {
        offsets->push_back(at + 1);
        const size_t octets = der[at + 1] < 0x80 ? 0 : der[at + 1] & 0x7F;
        size_t length = octets == 0 ? der[at + 1] : 0;
        for (size_t i = 0; i < octets; ++i) length = length << 8 | der[at + 2 + i];
        const size_t content = at + 2 + octets;
        if ((der[at] & 0x20) != 0) FindLengths(der, content, content + length, offsets);
        at = content + length;
    }
}

TEST(Corpus, DamagedCertificatesGiveAStatus) {
    SKIP_WITHOUT_CORPUS();
    for (const char* name : {"cert/gen-user-g512.der", "cert/gen-name-rare.der", "cert/gen-ext-san.der"}) {
        SCOPED_TRACE(name);
        Bytes whole;
        for (const auto& file : support::Corpus("cert")) {
            if (file.name == name) whole = file.bytes;
        }
        ASSERT_FALSE(whole.empty());
        for (size_t length = 0; length < whole.size(); ++length) {
            EXPECT_NE(DecodeAndWalk(Bytes(whole.begin(), whole.begin() + static_cast<long>(length))), 0u) << length;
        }
        std::vector<size_t> offsets;
        FindLengths(whole, 0, whole.size(), &offsets);
        EXPECT_GT(offsets.size(), 50u);
        for (const size_t offset : offsets) {
            Bytes lying(whole.begin(), whole.begin() + static_cast<long>(offset));
            for (const uint8_t octet : {0x84, 0xFF, 0xFF, 0xFF, 0xFF}) lying.push_back(octet);
            lying.insert(lying.end(), whole.begin() + static_cast<long>(offset) + 1, whole.end());
            (void)DecodeAndWalk(lying);  // inside an ANY or behind the last field it is not looked at
            for (const uint8_t octet : {0x00, 0x7F, 0x80, 0xFF}) {
                Bytes changed(whole);
                changed[offset] = octet;
                (void)DecodeAndWalk(changed);
            }
        }
    }
}

}  // namespace
