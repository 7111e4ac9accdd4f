// Real documents: each decodes and encodes to the same bytes, a copy of it too, and none of its prefixes decodes. What
// is refused or written otherwise, and what becomes of malformed documents, is listed in exceptions.tsv with the
// reasons. The replays of the fuzz targets read the same files with every getter, and what they were written as.

#include <fstream>
#include <map>
#include <sstream>

#include "tlvforge/ocsp.h"
#include "tsp/arguments.h"

using namespace support;

namespace {

// Reads from a block of exactly the input's size, and writes what was read, and a copy if there are copies.
template <auto Free, auto Decode, auto Encode, auto Copy = nullptr>
Status Rewrite(const Bytes& in, Bytes* out) {
    const walk::Bytes exact(in.data(), in.size());
    typename walk::Owned<Free>::pointer object = nullptr;
    const Status status = Decode(exact.data(), exact.size(), &object);
    const walk::Owned<Free> owner(object);
    EXPECT_EQ(status == StatusOk, object != nullptr);
    *out = owner ? Fetch(Encode, object) : Bytes();
    if constexpr (!std::is_null_pointer_v<decltype(Copy)>) {
        EXPECT_TRUE(!owner || Fetch(Encode, Make<Free>(Copy, object).get()) == *out);
    }
    return status;
}

template <class Document>
Status RewriteArguments(const Bytes& in, Bytes* out) {
    Document document;
    const Status status = timestamps::Read(in, &document);
    if (status == StatusOk) *out = document.Write();
    return status;
}

// A text has no encoding of its own to compare with: reading it is enough.
Status ReadPem(const Bytes& in, Bytes* out) {
    const walk::Bytes exact(in.data(), in.size());
    uint32_t length = 0;
    *out = in;
    return DecodePem(reinterpret_cast<const char*>(exact.data()), exact.size(), nullptr, &length);
}

// What a message holds, and the basic response in a response; nothing without one.
Bytes ContentOf(const Bytes& in) {
    const auto info = walk::Make<FreeCmsContentInfo>(DecodeCmsContentInfo, in.data(), Size(in));
    return info ? Fetch(GetCmsContentInfoContent, info.get()) : Bytes();
}
Bytes BasicOf(const Bytes& in) {
    const auto response = walk::Make<FreeOcspResponse>(DecodeOcspResponse, in.data(), Size(in));
    if (!response) return {};
    const auto [type, basic] = walk::Sure(walk::Get(GetOcspResponseBytes, response.get(), walk::kOut, walk::kOut));
    return Bytes(basic.data(), basic.end());
}

struct Decoder {
    const char *name, *folder;
    uint32_t least;
    Status (*rewrite)(const Bytes&, Bytes*);
    Bytes (*inside)(const Bytes&) = nullptr;
};
#define CODEC(Name) Rewrite<Free##Name, Decode##Name, Encode##Name>
#define COPIED(Name) Rewrite<Free##Name, Decode##Name, Encode##Name, Create##Name##Copy>
const Decoder kDecoders[] = {
    {"certificate", "cert", 120, COPIED(Certificate)},
    {"crl", "crl", 38, COPIED(X509Crl)},
    {"request", "csr", 31, COPIED(PKCS10CertReq)},
    {"message", "cms-signed", 60, COPIED(CmsContentInfo)},
    {"message", "cms-enveloped", 36, COPIED(CmsContentInfo)},
    {"message", "cms-other", 17, COPIED(CmsContentInfo)},
    {"signed", "cms-signed", 60, COPIED(CmsSignedData), ContentOf},
    {"enveloped", "cms-enveloped", 36, CODEC(CmsEnvelopedData), ContentOf},
    {"ocsp-request", "ocsp-req", 17, CODEC(OcspRequest)},
    {"ocsp-response", "ocsp-resp", 42, CODEC(OcspResponse)},
    {"ocsp-basic", "ocsp-resp", 38, CODEC(OcspBasicResponse), BasicOf},
    {"time-stamp-request", "tsp-req", 12, RewriteArguments<timestamps::Request>},
    {"time-stamp-response", "tsp-resp", 25, RewriteArguments<timestamps::Response>},
    {"time-stamp-info", "tstinfo", 13, RewriteArguments<timestamps::TstInfo>},
    {"pem", "pem", 35, ReadPem},
};

// A status, "same" or "rewritten", for the bytes or what they hold; nothing if they hold nothing.
std::string OutcomeOf(const Decoder& decoder, const Bytes& in) {
    const Bytes document = decoder.inside != nullptr ? decoder.inside(in) : in;
    Bytes written;
    if (document.empty()) return "";
    const Status status = decoder.rewrite(document, &written);
    return status != StatusOk ? std::to_string(status) : written == document ? "same" : "rewritten";
}

auto Exceptions() {
    std::map<std::string, std::string> outcomes;
    std::ifstream in(TLVFORGE_SOURCE_DIR "/tests/corpus/exceptions.tsv");
    for (std::string line, file, decoder, outcome; std::getline(in, line);) {
        std::istringstream(line) >> file >> decoder >> outcome;
        if (line[0] != '#') outcomes[file + " " + decoder] = outcome;
    }
    return outcomes;
}

// A length far too large is put wherever one stands.
void CutAndLie(const Decoder& decoder, const Bytes& in) {
    const Bytes document = decoder.inside != nullptr ? decoder.inside(in) : in;
    Bytes written;
    for (size_t size = 0; size < document.size(); size += 1 + document.size() / 500) {
        const uint8_t *const at = document.data() + size, *const end = document.data() + document.size();
        const Bytes cut(document.data(), at), lying = cut + Hex("84FFFFFFFF") + Bytes(at + 1, end);
        EXPECT_NE(decoder.rewrite(cut, &written), StatusOk) << size;
        (void)decoder.rewrite(lying, &written);
    }
}

TEST(Corpus, DocumentsComeBackByteForByte) {
    SKIP_WITHOUT_CORPUS();
    auto exceptions = Exceptions();
    const auto expected = [&](const std::string& row, const char* otherwise) {
        const auto found = exceptions.extract(row);
        return found ? found.mapped() : otherwise;
    };
    for (const Decoder& decoder : kDecoders) {
        uint32_t documents = 0;
        for (const auto& [name, bytes] : Corpus(decoder.folder)) {
            SCOPED_TRACE(name);
            const std::string outcome = OutcomeOf(decoder, bytes);
            if (outcome.empty()) continue;
            ++documents;
            EXPECT_EQ(outcome, expected(name + " " + decoder.name, "same"));
            if (decoder.rewrite != ReadPem) CutAndLie(decoder, bytes);
        }
        EXPECT_GE(documents, decoder.least) << decoder.folder;
    }
    // Every decoder gets every malformed document. What isn't listed is refused.
    for (const auto& [name, bytes] : Corpus("malformed")) {
        std::map<std::string, std::string> outcomes;
        for (const Decoder& decoder : kDecoders) outcomes[name + " " + decoder.name] = OutcomeOf(decoder, bytes);
        for (const auto& [row, outcome] : outcomes) {
            const bool isRead = outcome == "same" || outcome == "rewritten";
            EXPECT_EQ(outcome, expected(row, isRead ? "refused" : outcome.c_str())) << row;
        }
    }
    for (const auto& [row, outcome] : exceptions) ADD_FAILURE() << "there is no " << row;
}

}  // namespace
