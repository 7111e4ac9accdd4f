// request HOST DIRECTORY: makes a key and a certification request for a server, end.key and request.pem, and the same
// with the prefix gost- where libcrypto has GOST. The library makes the request, libcrypto the key and the signature.

#include <cstdio>
#include <filesystem>

#include "libcrypto.h"
#include "usage.h"

using namespace tlvforge;
using namespace examples;

namespace {

constexpr char kUsage[] =
    "usage: request HOST DIRECTORY\n\n"
    "Makes a key and a certification request for a server, end.key and request.pem in the directory.\n";

constexpr Oid kSubjectAltName("2.5.29.17"), kKeyUsage("2.5.29.15");
constexpr Oid kCountry("2.5.4.6"), kLocality("2.5.4.7"), kOrganization("2.5.4.10"), kCommonName("2.5.4.3");

// What the certificate is asked to say, which is up to the authority.
Handle<X509Extensions> MakeExtensions(const std::string& host) {
    auto extensions = Create<X509Extensions>();
    const auto names = Create<X509GeneralNames>();
    Call(AddX509GeneralName, names, X509GeneralNameDNSName, host);
    Call(AddX509ExtensionsExtension, extensions, kSubjectAltName, false, Encode(names));
    constexpr uint32_t kDigitalSignature = 0x80;  // bit 0 of the standard
    Call(AddX509ExtensionsExtension, extensions, kKeyUsage, true, Get(EncodeExtensionKeyUsage, kDigitalSignature));
    return extensions;
}

Handle<PKCS10CertReq> MakeRequest(const std::string& host, const Key& key) {
    auto request = Create<PKCS10CertReq>();
    Call(SetPKCS10CertReqVersion, request, 0);  // version 1

    // The name is lent by the request: what is added to it is added to the request.
    X509Name* const subject = Get(GetPKCS10CertReqSubject, request);
    AddEntry(subject, kCountry, "DE");
    AddEntry(subject, kLocality, "Köln");
    AddEntry(subject, kOrganization, "Example");
    AddEntry(subject, kCommonName, host);

    // A SubjectPublicKeyInfo is taken apart into algorithm, key and parameters.
    const auto [algorithm, bits, parameters] = Get<Oid, Bytes, Bytes>(DecodeSubjectPublicKeyInfo, EncodePublicKey(key));
    Call(SetPKCS10CertReqPublicKeyAlgorithmOidAndParameters, request, algorithm, parameters);
    Call(SetPKCS10CertReqPublicKey, request, bits);
    Call(SetPKCS10CertReqExtensions, request, MakeExtensions(host));

    const Algorithm& signature = SuiteOf(key).signatureAlgorithm;
    Call(SetPKCS10CertReqSignatureAlgorithmOidAndParameters, request, signature.oid, signature.parameters);
    Call(SetPKCS10CertReqSignature, request, Sign(key, Get(GetPKCS10CertReqToBeSignedPart, request)));
    return request;
}

}  // namespace

int main(int count, char** arguments) try {
    if (const auto status = AnswerUsage(kUsage, count, arguments, count == 3)) return *status;
    std::filesystem::create_directories(arguments[2]);
    for (const int type : {EVP_PKEY_EC, NID_id_GostR3410_2012_256}) {
        if (type == NID_id_GostR3410_2012_256 && !HasGost()) {
            std::printf("GOST is left out: OpenSSL has no engine \"gost\" here\n");
            continue;
        }
        const std::string path = std::string(arguments[2]) + "/" + SuiteOf(type).prefix;
        const Key key = GenerateKey(type);
        WriteKey(path + "end.key", key);
        WritePem(path + "request.pem", "CERTIFICATE REQUEST", Encode(MakeRequest(arguments[1], key)));
    }
} catch (const std::exception& failure) {
    std::fprintf(stderr, "request: %s\n", failure.what());
    return 1;
}
