// Real documents: each decodes and encodes to the same bytes where they are DER, and none of their prefixes decodes.
// The replays of the fuzz targets read the same files with every getter, and what they were written as.

#include "tlvforge/ocsp.h"
#include "tsp/arguments.h"

using namespace support;

namespace {

// Reads from a block of exactly the input's size, and writes what was read.
template <auto Free, auto Decode, auto Encode>
Status Rewrite(const Bytes& in, Bytes* out) {
    const walk::Bytes exact(in.data(), in.size());
    typename walk::Owned<Free>::pointer object = nullptr;
    const Status status = Decode(exact.data(), exact.size(), &object);
    const walk::Owned<Free> owner(object);
    EXPECT_EQ(status == StatusOk, object != nullptr);
    if (object != nullptr) *out = Fetch(Encode, object);
    return status;
}

template <class Document>
Status RewriteArguments(const Bytes& in, Bytes* out) {
    Document document;
    const Status status = timestamps::Read(in, &document);
    if (status == StatusOk) *out = document.Write();
    return status;
}

// What a message holds, and the basic response in a response; nothing in an error status alone.
Bytes ContentOf(const Bytes& in) {
    return Fetch(GetCmsContentInfoContent, Decoded<FreeCmsContentInfo>(DecodeCmsContentInfo, in).get());
}
Bytes BasicOf(const Bytes& in) {
    const auto response = Decoded<FreeOcspResponse>(DecodeOcspResponse, in);
    const auto [type, basic] = walk::Sure(walk::Get(GetOcspResponseBytes, response.get(), walk::kOut, walk::kOut));
    return Bytes(basic.data(), basic.end());
}

TEST(Corpus, DocumentsComeBackByteForByte) {
    SKIP_WITHOUT_CORPUS();
    const struct {
        const char* folder;
        uint32_t least;
        Status (*rewrite)(const Bytes&, Bytes*);
        Bytes (*inside)(const Bytes&) = nullptr;
        uint32_t changed = 0, refused = 0;
        Status refusal = StatusOk;
    } rows[] = {
        // clang-format off
        {"cert", 100, Rewrite<FreeCertificate, DecodeCertificate, EncodeCertificate>},
        {"crl", 30, Rewrite<FreeX509Crl, DecodeX509Crl, EncodeX509Crl>},
        {"csr", 30, Rewrite<FreePKCS10CertReq, DecodePKCS10CertReq, EncodePKCS10CertReq>},
        // Lengths or tags that aren't DER, sets out of order; an ordinary CertificateList beside the certificates.
        {"cms-signed", 60, Rewrite<FreeCmsContentInfo, DecodeCmsContentInfo, EncodeCmsContentInfo>, nullptr, 9},
        {"cms-signed", 60, Rewrite<FreeCmsSignedData, DecodeCmsSignedData, EncodeCmsSignedData>, ContentOf, 11, 3, 302},
        {"cms-enveloped", 36, Rewrite<FreeCmsContentInfo, DecodeCmsContentInfo, EncodeCmsContentInfo>, nullptr, 4},
        {"cms-enveloped", 36, Rewrite<FreeCmsEnvelopedData, DecodeCmsEnvelopedData, EncodeCmsEnvelopedData>, ContentOf, 4},
        {"ocsp-req", 17, Rewrite<FreeOcspRequest, DecodeOcspRequest, EncodeOcspRequest>},
        {"ocsp-resp", 38, Rewrite<FreeOcspResponse, DecodeOcspResponse, EncodeOcspResponse>},
        // A default that is written.
        {"ocsp-resp", 38, Rewrite<FreeOcspBasicResponse, DecodeOcspBasicResponse, EncodeOcspBasicResponse>, BasicOf, 1},
        {"tsp-req", 12, RewriteArguments<timestamps::Request>},
        {"tsp-resp", 25, RewriteArguments<timestamps::Response>},
        // A time with a zone in place of Z.
        {"tstinfo", 13, RewriteArguments<timestamps::TstInfo>, nullptr, 0, 1, StatusBadValue},
        // clang-format on
    };
    for (const auto& row : rows) {
        uint32_t documents = 0, changed = 0, refused = 0;
        for (const auto& [name, bytes] : Corpus(row.folder)) {
            SCOPED_TRACE(name);
            const Bytes document = row.inside != nullptr ? row.inside(bytes) : bytes;
            if (document.empty()) continue;
            Bytes written;
            const Status status = row.rewrite(document, &written);
            EXPECT_TRUE(status == StatusOk || status == row.refusal) << status;
            ++documents;
            refused += status != StatusOk;
            changed += status == StatusOk && written != document;
            for (size_t size = 0; size < document.size(); size += 1 + document.size() / 500) {
                const uint8_t *const at = document.data() + size, *const end = document.data() + document.size();
                const Bytes cut(document.data(), at), lying = cut + Hex("84FFFFFFFF") + Bytes(at + 1, end);
                EXPECT_NE(row.rewrite(cut, &written), StatusOk) << size;
                (void)row.rewrite(lying, &written);  // a length far too large, wherever one stands
            }
        }
        EXPECT_GE(documents, row.least) << row.folder;
        EXPECT_EQ(std::pair(changed, refused), std::pair(row.changed, row.refused)) << row.folder;
    }
}

}  // namespace
