// sign_file KEY CERTIFICATE FILE DIRECTORY: signs a file in four forms and writes the messages to the directory:
//
//   attached.p7m   the file with a signature        detached.p7s   the signature alone, to lie beside the file
//   bare.p7m       a signature without attributes   cades.p7m      an advanced signature (CAdES-BES)
//
// The library makes the messages, libcrypto digests and signatures. The names begin with gost- for a GOST key.

#include <cstdio>
#include <filesystem>

#include "libcrypto.h"
#include "usage.h"

using namespace tlvforge;
using namespace examples;

namespace {

constexpr char kUsage[] =
    "usage: sign_file KEY CERTIFICATE FILE DIRECTORY\n\n"
    "Signs the file with a key, PEM, in four forms, and writes the messages to the directory.\n";

struct Signer {
    Key key;
    Bytes certificate;  // DER
};

// The certificates that belong to the signer are put into the message, here his own.
Bytes SignContent(const Signer& signer, FileSignature parts, const Bytes& content) {
    const Suite& suite = SuiteOf(signer.key);
    const Bytes digest = Digest(suite, content);
    parts.digest = digest;
    parts.digestAlgorithm = suite.digestAlgorithm;
    parts.signingTime = ToLibraryTime(std::chrono::system_clock::now());
    parts.signerCertificate = signer.certificate;
    parts.certificates = {signer.certificate};
    parts.signatureAlgorithm = suite.signatureAlgorithm;
    // Without attributes the content is signed, which isn't among the parts of a detached signature.
    const Bytes signature = Sign(signer.key, parts.useSignedAttributes ? ToBeSigned(parts) : content);
    parts.signature = signature;
    return Encode(parts);
}

// CAdES-BES: a signed attribute with the digest of the signer's certificate, so that no other one can take its place.
Handle<RsaAttributes> MakeSigningCertificate(const Signer& signer) {
    constexpr Oid kSigningCertificateV2("1.2.840.113549.1.9.16.2.47");
    const Suite& suite = SuiteOf(signer.key);
    const auto certificate = Decode<Certificate>(signer.certificate);
    const auto issuer = Create<X509GeneralNames>();
    Call(AddX509GeneralName, issuer, X509GeneralNameDirectoryName, Encode(Get(GetCertificateIssuer, certificate)));
    const auto list = Create<ESSCertIDsV2>();
    Call(AddESSCertIDv2ToList, list, suite.digestAlgorithm.oid, nullptr, Digest(suite, signer.certificate), issuer,
         Get(GetCertificateSerialNumber, certificate));
    auto attributes = Create<RsaAttributes>();
    Call(AddRsaAttributesAttributeWithValue, attributes, kSigningCertificateV2,
         Get(EncodeRsaAttributeSigningCertificateV2Value, list, nullptr));
    return attributes;
}

void SignInAllForms(const Signer& signer, const Bytes& content, const std::string& path) {
    const auto signingCertificate = MakeSigningCertificate(signer);
    const struct {
        const char* name;
        FileSignature parts;
    } rows[] = {{"attached.p7m", {.content = content}},
                {"detached.p7s", {}},
                {"bare.p7m", {.content = content, .useSignedAttributes = false}},
                {"cades.p7m", {.content = content, .extraAttributes = signingCertificate.get()}}};
    for (const auto& row : rows) {
        const Bytes message = SignContent(signer, row.parts, content);
        WriteFile(path + row.name, message);
        std::printf("  wrote %s%s, %zu bytes\n", path.c_str(), row.name, message.size());
    }
}

}  // namespace

int main(int count, char** arguments) try {
    if (const auto status = AnswerUsage(kUsage, count, arguments, count == 5)) return *status;
    const Signer signer = {ReadKey(arguments[1]), ReadPem(arguments[2])};
    const Bytes content = ReadFile(arguments[3]);
    if (content.empty()) throw std::runtime_error("an empty file can't be attached to a signature");
    std::filesystem::create_directories(arguments[4]);
    SignInAllForms(signer, content, std::string(arguments[4]) + "/" + SuiteOf(signer.key).prefix);
} catch (const std::exception& failure) {
    std::fprintf(stderr, "sign_file: %s\n", failure.what());
    return 1;
}
