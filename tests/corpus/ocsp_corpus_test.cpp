// Real requests and responses: each decodes and encodes to the same bytes, the response inside its message too, and
// none of their prefixes does.

#include "support.h"
#include "tlvforge/ocsp.h"

using support::Bytes;

namespace {

// Writes its default version, which DER leaves out: five bytes.
const std::string kNotDer = "ocsp-resp/gocrypto-ocsp-test-hex3.der";

template <auto Free>
void ExpectSame(auto decode, auto encode, const std::string& name, const Bytes& bytes, size_t lost = 0) {
    SCOPED_TRACE(name);
    const auto write = [&](const Bytes& in) {
        const walk::Bytes exact(in.data(), in.size());
        const auto object = walk::Make<Free>(decode, exact.data(), exact.size());
        return object ? support::Fetch(encode, object.get()) : Bytes();
    };
    const Bytes written = write(bytes);
    EXPECT_EQ(written.size() + lost, bytes.size());
    EXPECT_EQ(write(written), lost != 0 ? written : bytes);
    for (auto end = bytes.begin(); end != bytes.end(); ++end) EXPECT_EQ(write({bytes.begin(), end}), Bytes());
}

TEST(Corpus, OcspRequestsAndResponsesComeBackByteForByte) {
    SKIP_WITHOUT_CORPUS();
    size_t requests = 0, carried = 0;
    for (const auto& [name, bytes] : support::Corpus("ocsp-req")) {
        ExpectSame<FreeOcspRequest>(DecodeOcspRequest, EncodeOcspRequest, name, bytes);
        ++requests;
    }
    for (const auto& [name, bytes] : support::Corpus("ocsp-resp")) {
        ExpectSame<FreeOcspResponse>(DecodeOcspResponse, EncodeOcspResponse, name, bytes);
        const auto response = support::Decoded<FreeOcspResponse>(DecodeOcspResponse, bytes);
        const auto [type, basic] = walk::Sure(walk::Get(GetOcspResponseBytes, response.get(), walk::kOut, walk::kOut));
        if (basic.size() == 0) continue;  // an error status alone
        EXPECT_EQ(Bytes(type.data(), type.end()), support::OidOf("1.3.6.1.5.5.7.48.1.1"));
        ExpectSame<FreeOcspBasicResponse>(DecodeOcspBasicResponse, EncodeOcspBasicResponse, name,
                                          {basic.data(), basic.end()}, name == kNotDer ? 5 : 0);
        ++carried;
    }
    EXPECT_GE(requests, 17u);
    EXPECT_GE(carried, 38u);
}

}  // namespace
