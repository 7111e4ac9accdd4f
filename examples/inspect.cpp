// inspect [--kind KIND] [FILE]: prints a readable outline of a document, DER or PEM.
//
// Without a kind every kind is tried, without a file a sample is shown. A PEM file may hold several documents.
// The exit code is 0 when every document in the file was outlined. Where the library refuses a part of one, the outline
// has a status. How each part of a document is read from the library and printed stands in outline/.

#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "outline/certificate.h"
#include "outline/cms.h"
#include "outline/crl.h"
#include "outline/ocsp.h"
#include "outline/request.h"
#include "outline/timestamp.h"
#include "sample_certificate.h"

using namespace examples;

namespace {

struct Kind {
    const char* name;
    // Prints nothing unless its decoder takes the bytes.
    Printer print;
};

// No document of one kind is taken by the decoder of another.
constexpr Kind kKinds[] = {
    {"certificate", PrintDecoded<Certificate, FreeCertificate, DecodeCertificate, PrintCertificate>},
    {"crl", PrintDecoded<X509Crl, FreeX509Crl, DecodeX509Crl, PrintCrl>},
    {"request", PrintDecoded<PKCS10CertReq, FreePKCS10CertReq, DecodePKCS10CertReq, PrintRequest>},
    {"message", PrintDecoded<CmsContentInfo, FreeCmsContentInfo, DecodeCmsContentInfo, PrintMessage>},
    {"ocsp-request", PrintDecoded<OcspRequest, FreeOcspRequest, DecodeOcspRequest, PrintOcspRequest>},
    {"ocsp-response", PrintDecoded<OcspResponse, FreeOcspResponse, DecodeOcspResponse, PrintOcspResponse>},
    {"timestamp-request", PrintTimeStampRequest},
    {"timestamp-response", PrintTimeStampResponse},
    {"timestamp-info", PrintTstInfo},
};

const Kind* FindKind(std::string_view name) {
    for (const Kind& kind : kKinds) {
        if (name == kind.name) return &kind;
    }
    return nullptr;
}

void PrintUsage() {
    fprintf(stderr, "usage: inspect [--kind KIND] [FILE]\nkinds:");
    for (const Kind& kind : kKinds) fprintf(stderr, " %s", kind.name);
    fprintf(stderr, "\n");
}

// --- Reading ---

std::optional<Bytes> ReadFile(const char* path) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(path, "rb"), fclose);
    if (file == nullptr) return std::nullopt;
    Bytes bytes;
    static uint8_t block[1 << 16];
    while (const size_t count = fread(block, 1, sizeof block, file.get())) {
        bytes.insert(bytes.end(), block, block + count);
        // Lengths are 32 bits wide at the interface.
        if (bytes.size() > UINT32_MAX) return std::nullopt;
    }
    if (ferror(file.get()) != 0) return std::nullopt;
    return bytes;
}

// Every kind of document is a SEQUENCE, and no PEM text begins with its identifier octet.
bool IsDer(const Bytes& bytes) {
    static constexpr uint8_t kSequence = 0x30;
    return !bytes.empty() && bytes[0] == kSequence;
}

// The blocks of a PEM file, each from its BEGIN line to the next one; text without such a line is one block.
std::vector<std::string_view> SplitPem(std::string_view text) {
    static constexpr std::string_view kBegin = "-----BEGIN";
    std::vector<std::string_view> blocks;
    size_t at = text.find(kBegin);
    if (at == std::string_view::npos) return {text};
    while (at != std::string_view::npos) {
        const size_t next = text.find(kBegin, at + kBegin.size());
        blocks.push_back(text.substr(at, next - at));
        at = next;
    }
    return blocks;
}

// --- Printing ---

// A document, and what messages call it.
struct Source {
    std::string name;
    Bytes bytes;
};

// Decoders read the element at the front and ignore what follows it.
void PrintTrailingBytes(Outline& outline, const Bytes& bytes) {
    const std::optional<Element> element = ReadElement(bytes);
    if (!element || element->whole.size() == bytes.size()) return;
    outline.Line("Behind the document", std::to_string(bytes.size() - element->whole.size()) + " bytes");
}

// With no kind given, the first one whose decoder takes the bytes.
bool Inspect(Outline& outline, const Kind* given, const Source& source) {
    std::string failures;
    for (const Kind& kind : kKinds) {
        if (given != nullptr && given != &kind) continue;
        const Status status = kind.print(outline, source.bytes);
        if (status == StatusOk) {
            PrintTrailingBytes(outline, source.bytes);
            return true;
        }
        failures += source.name + " is no " + kind.name + ": " + DescribeFailure(status) + "\n";
    }
    fputs(failures.c_str(), stderr);
    return false;
}

bool InspectPem(Outline& outline, const Kind* given, const std::string& name, std::string_view text) {
    bool complete = true;
    const std::vector<std::string_view> blocks = SplitPem(text);
    for (size_t i = 0; i < blocks.size(); ++i) {
        const std::string block = blocks.size() == 1 ? name : name + ", block " + std::to_string(i + 1) + ",";
        Fetched der = Get(DecodePem, blocks[i].data(), static_cast<uint32_t>(blocks[i].size()));
        if (der.status == StatusOk) {
            complete = Inspect(outline, given, {block, std::move(der.bytes)}) && complete;
        } else {
            fprintf(stderr, "%s is neither DER nor PEM: %s\n", block.c_str(), DescribeFailure(der.status).c_str());
            complete = false;
        }
    }
    return complete;
}

bool InspectFile(Outline& outline, const Kind* given, const char* path) {
    std::optional<Bytes> bytes = ReadFile(path);
    if (!bytes) {
        fprintf(stderr, "%s can't be read\n", path);
        return false;
    }
    if (IsDer(*bytes)) return Inspect(outline, given, {path, std::move(*bytes)});
    return InspectPem(outline, given, path, {reinterpret_cast<const char*>(bytes->data()), bytes->size()});
}

}  // namespace

int main(int count, char** arguments) {
    const Kind* kind = nullptr;
    int next = 1;
    if (next < count && strcmp(arguments[next], "--kind") == 0) {
        kind = next + 1 < count ? FindKind(arguments[next + 1]) : nullptr;
        if (kind == nullptr) return PrintUsage(), 1;
        next += 2;
    }
    if (count - next > 1) return PrintUsage(), 1;
    Outline outline;
    const bool complete = next < count ? InspectFile(outline, kind, arguments[next])
                                       : InspectPem(outline, kind, "the sample", kSampleCertificate);
    const bool written = fflush(stdout) == 0 && ferror(stdout) == 0;
    if (!written) fprintf(stderr, "the outline can't be written\n");
    return complete && written ? 0 : 1;
}
