// read_certificate FILE: prints what a certificate says. FILE is PEM or DER.

#include <cstdio>

#include "tlvforge/tlvforge.hpp"
#include "usage.h"

using namespace tlvforge;

namespace {

constexpr char kUsage[] = "usage: read_certificate FILE\n\nPrints what a certificate, PEM or DER, says.\n";

constexpr Oid kBasicConstraints("2.5.29.19"), kKeyUsage("2.5.29.15"), kSubjectAltName("2.5.29.17");
constexpr Oid kExtendedKeyUsage("2.5.29.37");

Handle<Certificate> ReadCertificate(const char* path) {
    const Bytes bytes = ReadFile(path);
    const auto blocks = PemBlocks(bytes);
    return Decode<Certificate>(blocks.empty() ? bytes : blocks[0].bytes);
}

// Extensions that most certificates have; any of them may be absent.
void PrintBasicConstraints(const Bytes& value) {
    const auto [authority, pathLength] = Get<bool, uint32_t>(DecodeExtensionBasicConstraints, value);
    std::printf("  an authority: %s", authority ? "yes" : "no");
    if (pathLength != UINT32_MAX) std::printf(", with %u more below it", pathLength);
    std::printf("\n");
}

void PrintKeyUsage(const Bytes& value) {
    static constexpr const char* kNames[] = {"digitalSignature", "nonRepudiation", "keyEncipherment",
                                             "dataEncipherment", "keyAgreement",   "keyCertSign",
                                             "cRLSign",          "encipherOnly"};
    const uint32_t flags = Get(DecodeExtensionKeyUsage, value);
    // Bit 0 of the standard is 0x80.
    for (uint32_t bit = 0; bit < 8; ++bit) {
        if ((flags & 0x80u >> bit) != 0) std::printf("  the key is for %s\n", kNames[bit]);
    }
}

void PrintPurposes(const Bytes& value) {
    const auto list = Decode<ExtensionExtendedKeyUsage>(value);
    for (const Oid& purpose : Members(list)) std::printf("  purpose %s\n", purpose.text().c_str());
}

void PrintAlternativeNames(const Bytes& value) {
    const auto list = Decode<X509GeneralNames>(value);
    for (const GeneralName& name : Members(list)) {
        const std::string text(name.value.begin(), name.value.end());
        switch (name.alternative) {
            case X509GeneralNameDNSName: std::printf("  host %s\n", text.c_str()); break;
            case X509GeneralNameRfc822Name: std::printf("  mail address %s\n", text.c_str()); break;
            case X509GeneralNameDirectoryName:
                std::printf("  also %s\n", ToText(Decode<X509Name>(name.value)).c_str());
                break;
            default: std::printf("  name of kind %u: %s\n", name.alternative, ToHex(name.value).c_str());
        }
    }
}

void Print(const Handle<Certificate>& certificate) {
    std::printf("subject: %s\n", ToText(Get(GetCertificateSubject, certificate)).c_str());
    std::printf("issuer: %s\n", ToText(Get(GetCertificateIssuer, certificate)).c_str());
    std::printf("serial number: %s\n", ToHex(Get(GetCertificateSerialNumber, certificate)).c_str());
    std::printf("valid: %s to %s\n", ToText(Get(GetCertificateValidNotBefore, certificate)).c_str(),
                ToText(Get(GetCertificateValidNotAfter, certificate)).c_str());
    const auto [key, keyParameters] = Get<Oid, Bytes>(GetCertificatePublicKeyAlgorithmOidAndParameters, certificate);
    std::printf("key: %s, %zu bytes\n", key.text().c_str(), Get(GetCertificatePublicKey, certificate).size());
    const auto [algorithm, parameters] = Get<Oid, Bytes>(GetCertificateSignatureAlgorithmOidAndParameters, certificate);
    std::printf("signed by: %s, %zu bytes\n", algorithm.text().c_str(),
                Get(GetCertificateSignature, certificate).size());
    for (auto& [oid, critical, value] : Extensions(certificate)) {
        std::printf("extension %s%s, %zu bytes\n", oid.text().c_str(), critical ? " (critical)" : "", value.size());
        if (oid == kBasicConstraints) PrintBasicConstraints(value);
        if (oid == kKeyUsage) PrintKeyUsage(value);
        if (oid == kExtendedKeyUsage) PrintPurposes(value);
        if (oid == kSubjectAltName) PrintAlternativeNames(value);
    }
}

}  // namespace

int main(int count, char** arguments) try {
    if (const auto status = examples::AnswerUsage(kUsage, count, arguments, count == 2)) return *status;
    Print(ReadCertificate(arguments[1]));
} catch (const std::exception& failure) {
    std::fprintf(stderr, "read_certificate: %s\n", failure.what());
    return 1;
}
