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

// The status, and what is written of what was read.
using Rewritten = std::pair<Status, Bytes>;

// Reads from a block of exactly the input's size, and writes what was read, and a copy if there are copies.
template <auto Free, auto Decode, auto Encode, auto Copy = nullptr>
Rewritten Rewrite(const Bytes& in) {
    const walk::Bytes exact(in.data(), in.size());
    typename walk::Owned<Free>::pointer object = nullptr;
    const Status status = Decode(exact.data(), exact.size(), &object);
    const walk::Owned<Free> owner(object);
    EXPECT_EQ(status == StatusOk, object != nullptr);
    if (!owner) return {status, {}};
    const Bytes written = Fetch(Encode, object);
    if constexpr (!std::is_null_pointer_v<decltype(Copy)>) {
        EXPECT_EQ(Fetch(Encode, Make<Free>(Copy, object).get()), written);
    }
    return {status, written};
}

template <class Document>
Rewritten RewriteArguments(const Bytes& in) {
    Document document;
    const Status status = timestamps::Read(in, &document);
    return {status, status == StatusOk ? document.Write() : Bytes()};
}

// A text has no encoding of its own to compare with: reading it is enough.
Rewritten ReadPem(const Bytes& in) {
    const walk::Bytes exact(in.data(), in.size());
    uint32_t length = 0;
    return {DecodePem(reinterpret_cast<const char*>(exact.data()), exact.size(), nullptr, &length), in};
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
    Rewritten (*rewrite)(const Bytes&);
    Bytes (*inside)(const Bytes&) = [](const Bytes& in) { return in; };
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

// No prefix is read, and a length far too large is put wherever one stands.
void CutAndLie(const Decoder& decoder, const Bytes& document) {
    for (size_t size = 0; size < document.size(); size += 1 + document.size() / 500) {
        const uint8_t *const at = document.data() + size, *const end = document.data() + document.size();
        const Bytes cut(document.data(), at);
        EXPECT_NE(decoder.rewrite(cut).first, StatusOk) << size;
        (void)decoder.rewrite(cut + Hex("84FFFFFFFF") + Bytes(at + 1, end));
    }
}

// Every decoder gets every malformed document as well. What isn't listed of them is refused.
TEST(Corpus, DocumentsComeBackByteForByte) {
    SKIP_WITHOUT_CORPUS();
    std::map<std::string, std::string> exceptions;
    std::ifstream in(TLVFORGE_SOURCE_DIR "/tests/corpus/exceptions.tsv");
    for (std::string line, file, decoder, outcome; std::getline(in, line);) {
        std::istringstream(line) >> file >> decoder >> outcome;
        if (line[0] != '#') exceptions[file + " " + decoder] = outcome;
    }
    auto unseen = exceptions;
    for (const Decoder& decoder : kDecoders) {
        uint32_t documents = 0;
        for (const bool malformed : {false, true}) {
            for (const auto& [name, bytes] : Corpus(malformed ? "malformed" : decoder.folder)) {
                SCOPED_TRACE(name);
                const Bytes document = decoder.inside(bytes);
                if (document.empty()) continue;
                const auto [status, written] = decoder.rewrite(document);
                const std::string row = name + " " + decoder.name, same = written == document ? "same" : "rewritten";
                const std::string outcome = status != StatusOk ? std::to_string(status) : same;
                const std::string usual = !malformed ? "same" : status != StatusOk ? outcome : "refused";
                const auto exception = exceptions.find(row);
                EXPECT_EQ(outcome, exception != exceptions.end() ? exception->second : usual) << row;
                unseen.erase(row);
                documents += !malformed;
                if (!malformed && decoder.rewrite != ReadPem) CutAndLie(decoder, document);
            }
        }
        EXPECT_GE(documents, decoder.least) << decoder.folder;
    }
    for (const auto& [row, outcome] : unseen) ADD_FAILURE() << "there is no " << row;
}

}  // namespace
