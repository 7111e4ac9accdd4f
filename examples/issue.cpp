// issue DIRECTORY: an authority. Makes a root certificate, takes request.pem from the directory and issues end.pem for
// it, issues certificates for two people, for an authority of time-stamps and one that it revokes, and a CRL; all with
// the prefix gost- for gost-request.pem. The library makes the documents, libcrypto keys and signatures.

#include <cstdio>
#include <filesystem>

#include "libcrypto.h"
#include "usage.h"

using namespace tlvforge;
using namespace examples;

namespace {

constexpr char kUsage[] =
    "usage: issue DIRECTORY\n\n"
    "Issues certificates, one of them for request.pem in the directory, and a CRL, and writes them there.\n";

constexpr Oid kBasicConstraints("2.5.29.19"), kKeyUsage("2.5.29.15"), kExtendedKeyUsage("2.5.29.37");
constexpr Oid kSubjectAltName("2.5.29.17"), kCommonName("2.5.4.3"), kOrganization("2.5.4.10");
constexpr Oid kServer("1.3.6.1.5.5.7.3.1"), kMail("1.3.6.1.5.5.7.3.4"), kTimeStamping("1.3.6.1.5.5.7.3.8");
constexpr uint32_t kDigitalSignature = 0x80, kKeyCertSign = 0x04, kCrlSign = 0x02;  // bit 0 of the standard is 0x80
constexpr auto kDay = std::chrono::hours(24);

struct Authority {
    Key key;
    Handle<Certificate> certificate;
};

// Certificates and CRLs name the algorithm in the signed part, so it is set first.
template <class Document, class SetAlgorithm, class GetToBeSigned, class SetSignature>
void SignDocument(const Key& key, const Document& document, SetAlgorithm setAlgorithm, GetToBeSigned getToBeSigned,
                  SetSignature setSignature) {
    const Algorithm& algorithm = SuiteOf(key).signatureAlgorithm;
    Call(setAlgorithm, document, algorithm.oid, algorithm.parameters);
    Call(setSignature, document, Sign(key, Get(getToBeSigned, document)));
}

void SignCertificate(const Key& key, const Handle<Certificate>& certificate) {
    SignDocument(key, certificate, SetCertificateSignatureAlgorithmOidAndParameters, GetCertificateToBeSignedPart,
                 SetCertificateSignature);
}

// All but issuer and signature. publicKey: a SubjectPublicKeyInfo.
Handle<Certificate> BeginCertificate(const X509Name* subject, const Bytes& publicKey, int days, uint32_t keyUsage) {
    auto certificate = Create<Certificate>();
    const auto now = std::chrono::system_clock::now();
    Call(SetCertificateVersion, certificate, 2);  // version 3
    Call(SetCertificateSerialNumber, certificate, RandomNumber(16));
    Call(SetCertificateSubject, certificate, subject);
    Call(SetCertificateValidNotBefore, certificate, now);
    Call(SetCertificateValidNotAfter, certificate, now + days * kDay);
    const auto [algorithm, bits, parameters] = Get<Oid, Bytes, Bytes>(DecodeSubjectPublicKeyInfo, publicKey);
    Call(SetCertificatePublicKeyAlgorithmOidAndParameters, certificate, algorithm, parameters);
    Call(SetCertificatePublicKey, certificate, bits);

    const X509Extensions extensions = Get(GetCertificateExtensions, certificate);
    const bool authority = (keyUsage & kKeyCertSign) != 0;
    Call(AddX509ExtensionsExtension, extensions, kBasicConstraints, true,
         Get(EncodeExtensionBasicConstraints, authority, authority ? 0 : UINT32_MAX));
    Call(AddX509ExtensionsExtension, extensions, kKeyUsage, true, Get(EncodeExtensionKeyUsage, keyUsage));
    Call(SetCertificateSubjectKeyIdentifier, certificate);
    return certificate;
}

Authority MakeAuthority(const Suite& suite) {
    Key key = GenerateKey(suite.type);
    const auto name = Create<X509Name>();
    AddEntry(name, kOrganization, "Example");
    AddEntry(name, kCommonName, "Учебный УЦ");
    auto certificate = BeginCertificate(name.get(), EncodePublicKey(key), 3650, kKeyCertSign | kCrlSign);
    Call(SetCertificateIssuer, certificate, name);
    SignCertificate(key, certificate);
    return {std::move(key), std::move(certificate)};
}

// alternativeNames: the value of the extension, or empty.
Handle<Certificate> Issue(const Authority& authority, const X509Name* subject, const Bytes& publicKey,
                          const Oid& purpose, const Bytes& alternativeNames = {}) {
    auto certificate = BeginCertificate(subject, publicKey, 365, kDigitalSignature);
    const X509Extensions extensions = Get(GetCertificateExtensions, certificate);
    const auto purposes = Create<ExtensionExtendedKeyUsage>();
    Call(AddExtensionExtendedKeyUsage, purposes, purpose);
    // Authorities of time-stamps must have no other purpose.
    Call(AddX509ExtensionsExtension, extensions, kExtendedKeyUsage, purpose == kTimeStamping, Encode(purposes));
    if (!alternativeNames.empty()) {
        Call(AddX509ExtensionsExtension, extensions, kSubjectAltName, false, alternativeNames);
    }
    Call(SetCertificateIssuer, certificate, Get(GetCertificateSubject, authority.certificate));
    Call(SetCertificateAuthorityKeyIdentifier, certificate, authority.certificate);
    Call(SetCertificateExtensionCrlDistributionPoints, certificate, "http://crl.example.org/root.crl");
    SignCertificate(authority.key, certificate);
    return certificate;
}

// Subject, key and names of the hosts are taken from the request, and nothing else.
Handle<Certificate> IssueForRequest(const Authority& authority, const Bytes& der) {
    const auto request = Decode<PKCS10CertReq>(der);
    Bytes names;
    for (auto& [oid, critical, value] : Extensions(request)) {
        if (oid == kSubjectAltName) names = value;
    }
    const std::unique_ptr<X509_REQ, Deleter<X509_REQ_free>> read([&] {
        const uint8_t* at = der.data();
        return d2i_X509_REQ(nullptr, &at, static_cast<long>(der.size()));
    }());
    const Key key(read ? X509_REQ_get_pubkey(read.get()) : nullptr);
    Require(key && Verifies(key, Get(GetPKCS10CertReqToBeSignedPart, request), Get(GetPKCS10CertReqSignature, request)),
            "the requester doesn't have the key");
    return Issue(authority, Get(GetPKCS10CertReqSubject, request), EncodePublicKey(key), kServer, names);
}

Handle<X509Crl> MakeCrl(const Authority& authority, const Handle<Certificate>& revoked) {
    constexpr Oid kCrlNumber("2.5.29.20"), kReasonCode("2.5.29.21");
    constexpr uint32_t kKeyCompromise = 1;
    auto crl = Create<X509Crl>();
    const auto now = std::chrono::system_clock::now();
    Call(SetX509CrlVersion, crl, 1);  // version 2
    Call(SetX509CrlIssuer, crl, Get(GetCertificateSubject, authority.certificate));
    Call(SetX509CrlThisUpdate, crl, now);
    Call(SetX509CrlNextUpdate, crl, now + 30 * kDay);
    const uint32_t index = Call(AddX509CrlRevokedCertificate, crl, Get(GetCertificateSerialNumber, revoked), now);
    Call(AddX509ExtensionsExtension, Get(GetX509CrlRevokedCertificateExtensions, crl, index), kReasonCode, false,
         Get(EncodeExtensionReasonCode, kKeyCompromise));
    Call(AddX509ExtensionsExtension, Get(GetX509CrlExtensions, crl), kCrlNumber, false,
         Get(EncodeExtensionCrlNumber, Bytes{1}));
    Call(SetX509CrlAuthorityKeyIdentifier, crl, authority.certificate);
    SignDocument(authority.key, crl, SetX509CrlSignatureAlgorithmOidAndParameters, GetX509CrlToBeSignedPart,
                 SetX509CrlSignature);
    return crl;
}

void IssueAll(const Suite& suite, const std::string& path) {
    const Authority authority = MakeAuthority(suite);
    WriteKey(path + "root.key", authority.key);
    WritePem(path + "root.pem", "CERTIFICATE", Encode(authority.certificate));
    WritePem(path + "end.pem", "CERTIFICATE", Encode(IssueForRequest(authority, ReadPem(path + "request.pem"))));
    const struct {
        const char *file, *name;
        Oid purpose;
    } rows[] = {{"anna", "Анна", kMail},
                {"boris", "Борис", kMail},
                {"stamps", "Time-Stamps", kTimeStamping},
                {"revoked", "Revoked", kServer}};
    for (const auto& row : rows) {
        const Key key = GenerateKey(suite.type);
        const auto name = Create<X509Name>();
        AddEntry(name, kCommonName, row.name);
        const auto certificate = Issue(authority, name.get(), EncodePublicKey(key), row.purpose);
        WriteKey(path + row.file + ".key", key);
        WritePem(path + row.file + ".pem", "CERTIFICATE", Encode(certificate));
        if (row.file == std::string("revoked")) {
            WritePem(path + "crl.pem", "X509 CRL", Encode(MakeCrl(authority, certificate)));
        }
    }
}

}  // namespace

int main(int count, char** arguments) try {
    if (const auto status = AnswerUsage(kUsage, count, arguments, count == 2)) return *status;
    for (const int type : {EVP_PKEY_EC, NID_id_GostR3410_2012_256}) {
        const std::string path = std::string(arguments[1]) + "/" + SuiteOf(type).prefix;
        if (type == EVP_PKEY_EC || (HasGost() && std::filesystem::exists(path + "request.pem"))) {
            IssueAll(SuiteOf(type), path);
        }
    }
} catch (const std::exception& failure) {
    std::fprintf(stderr, "issue: %s\n", failure.what());
    return 1;
}
