// issue [DIRECTORY]: builds a root certificate and an end certificate from nothing, and has them verified.
//
// The library makes the documents, OpenSSL the keys, the signatures and the verification. root.pem and end.pem are
// written to the directory, and gost-root.pem and gost-end.pem where OpenSSL has its GOST engine. The exit code is 0
// when everything was verified.

// Engines are deprecated in OpenSSL 3, and still what GOST comes in.
#define OPENSSL_SUPPRESS_DEPRECATED

#include <openssl/ec.h>
#include <openssl/engine.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "support.h"

using namespace examples;

namespace {

// --- Failures end the program through an exception ---

void Require(Status status, const char* action) {
    if (status != StatusOk) throw std::runtime_error(std::string(action) + ": " + DescribeFailure(status));
}

Bytes Require(Fetched fetched, const char* action) {
    Require(fetched.status, action);
    return std::move(fetched.bytes);
}

void RequireOpenSsl(bool done, const char* action) {
    if (done) return;
    const char* reason = ERR_reason_error_string(ERR_peek_last_error());
    throw std::runtime_error(std::string(action) + ": OpenSSL: " + (reason != nullptr ? reason : "failed"));
}

// --- Keys and signatures, by OpenSSL ---

template <auto Free>
struct OpenSslDeleter {
    template <class T>
    void operator()(T* object) const {
        Free(object);
    }
};

template <class T, auto Free>
using OpenSsl = std::unique_ptr<T, OpenSslDeleter<Free>>;

using Key = OpenSsl<EVP_PKEY, EVP_PKEY_free>;
using OpenSslCertificate = OpenSsl<X509, X509_free>;

// What a chain is signed with.
struct Suite {
    const char* title;
    const char* filePrefix;
    const char* signatureOid;
    const char* digest;
    Key (*generateKey)();
};

Key GenerateEcKey() {
    Key key(EVP_EC_gen("P-256"));
    RequireOpenSsl(key != nullptr, "making a key");
    return key;
}

Key GenerateGostKey() {
    const OpenSsl<EVP_PKEY_CTX, EVP_PKEY_CTX_free> context(EVP_PKEY_CTX_new_id(NID_id_GostR3410_2012_256, nullptr));
    EVP_PKEY* key = nullptr;
    RequireOpenSsl(context != nullptr && EVP_PKEY_keygen_init(context.get()) > 0 &&
                       EVP_PKEY_CTX_ctrl_str(context.get(), "paramset", "A") > 0 &&
                       EVP_PKEY_keygen(context.get(), &key) > 0,
                   "making a GOST key");
    return Key(key);
}

constexpr Suite kEc = {"EC P-256 with SHA-256", "", "1.2.840.10045.4.3.2", "SHA256", GenerateEcKey};
constexpr Suite kGost = {"GOST R 34.10-2012, 256 bits", "gost-", "1.2.643.7.1.1.3.2", "md_gost12_256", GenerateGostKey};

// The GOST engine serves the whole process while it is held.
class GostEngine {
public:
    GostEngine() : engine_(ENGINE_by_id("gost")) {
        initialized_ = engine_ != nullptr && ENGINE_init(engine_.get()) != 0;
        if (initialized_) RequireOpenSsl(ENGINE_set_default(engine_.get(), ENGINE_METHOD_ALL) != 0, "GOST engine");
        ERR_clear_error();
    }
    GostEngine(const GostEngine&) = delete;
    ~GostEngine() {
        if (initialized_) ENGINE_finish(engine_.get());
    }

    bool IsThere() const { return initialized_; }

private:
    OpenSsl<ENGINE, ENGINE_free> engine_;
    bool initialized_ = false;
};

// The signature of the to-be-signed bytes of a document.
Bytes Sign(const Suite& suite, EVP_PKEY* key, const Bytes& toBeSigned) {
    const OpenSsl<EVP_MD_CTX, EVP_MD_CTX_free> context(EVP_MD_CTX_new());
    const EVP_MD* digest = EVP_get_digestbyname(suite.digest);
    size_t length = 0;
    RequireOpenSsl(context != nullptr && digest != nullptr &&
                       EVP_DigestSignInit(context.get(), nullptr, digest, nullptr, key) > 0 &&
                       EVP_DigestSign(context.get(), nullptr, &length, toBeSigned.data(), toBeSigned.size()) > 0,
                   "signing");
    Bytes signature(length);
    RequireOpenSsl(EVP_DigestSign(context.get(), signature.data(), &length, toBeSigned.data(), toBeSigned.size()) > 0,
                   "signing");
    signature.resize(length);
    return signature;
}

// SubjectPublicKeyInfo of a key.
Bytes EncodePublicKey(EVP_PKEY* key) {
    uint8_t* der = nullptr;
    const int length = i2d_PUBKEY(key, &der);
    RequireOpenSsl(length > 0, "encoding a public key");
    Bytes bytes(der, der + length);
    OPENSSL_free(der);
    return bytes;
}

// --- Parts of documents ---

Bytes Oid(const char* dotted) { return Require(Get(ConvertStringToOid, dotted), "converting an OID"); }

struct NameEntry {
    const char* oid;
    std::string text;  // UTF-8
};

// Each entry becomes a relative distinguished name of its own, of the narrowest string type that can hold it.
OwnedName MakeName(const std::vector<NameEntry>& entries) {
    OwnedName name;
    Require(CreateX509Name(name.Out()), "making a name");
    for (const NameEntry& entry : entries) {
        const auto* text = reinterpret_cast<const uint8_t*>(entry.text.data());
        const uint32_t length = static_cast<uint32_t>(entry.text.size());
        uint32_t type = 0;
        Require(DetermineSuitableStringType(text, length, &type), "choosing a string type");
        Require(AddX509NameEntry(name, text, length, static_cast<uint8_t>(type), Oid(entry.oid).data(), 1),
                "adding to a name");
    }
    return name;
}

OwnedName MakeExampleName(const std::string& commonName) {
    return MakeName({{"2.5.4.6", "DE"}, {"2.5.4.7", "Köln"}, {"2.5.4.10", "Example"}, {"2.5.4.3", commonName}});
}

// Big-endian, positive and in minimal form.
Bytes MakeSerialNumber() {
    Bytes serial(16);
    RequireOpenSsl(RAND_bytes(serial.data(), static_cast<int>(serial.size())) > 0, "making a serial number");
    serial[0] = (serial[0] & 0x7F) | 0x40;
    return serial;
}

// --- Certificates ---

void SetValidity(Certificate* certificate, uint32_t days) {
    LibraryTime time = {};
    Require(GetCurrentLibTime(&time), "reading the clock");
    Require(SetCertificateValidNotBefore(certificate, &time), "setting notBefore");
    Require(AddDaysToLibTime(&time, days), "adding days");
    Require(SetCertificateValidNotAfter(certificate, &time), "setting notAfter");
}

// Takes SubjectPublicKeyInfo apart, as a certification authority does that gets a key in a request.
void SetPublicKey(Certificate* certificate, EVP_PKEY* key) {
    const Bytes info = EncodePublicKey(key);
    Output oid, bits, parameters;
    const Status status = Fetch(
        [&] {
            return DecodeSubjectPublicKeyInfo(info.data(), Size(info), oid.data, &oid.length, bits.data, &bits.length,
                                              parameters.data, &parameters.length);
        },
        oid, bits, parameters);
    Require(status, "decoding a public key");
    const uint8_t* parametersOrNull = parameters.bytes.empty() ? nullptr : parameters.bytes.data();
    Require(SetCertificatePublicKeyAlgorithmOidAndParameters(certificate, oid.bytes.data(), parametersOrNull,
                                                             Size(parameters.bytes)),
            "setting the public key's algorithm");
    Require(SetCertificatePublicKey(certificate, bits.bytes.data(), Size(bits.bytes)), "setting the public key");
}

void AddExtension(Certificate* certificate, const char* oid, bool critical, Fetched value) {
    const Bytes bytes = Require(std::move(value), "encoding an extension");
    X509Extensions extensions = nullptr;
    Require(GetCertificateExtensions(certificate, &extensions), "reaching the extensions");
    Require(AddX509ExtensionsExtension(extensions, Oid(oid).data(), critical, bytes.data(), Size(bytes)),
            "adding an extension");
}

// In flag words bit 0 is 0x80.
enum KeyUsage : uint32_t { kDigitalSignature = 0x80, kKeyCertSign = 0x04, kCrlSign = 0x02 };

constexpr uint32_t kNoPathLength = UINT32_MAX;

void AddUsage(Certificate* certificate, bool isAuthority, uint32_t pathLength, uint32_t keyUsage) {
    AddExtension(certificate, "2.5.29.19", true,
                 Get(EncodeExtensionBasicConstraints, static_cast<uint8_t>(isAuthority), pathLength));
    AddExtension(certificate, "2.5.29.15", true, Get(EncodeExtensionKeyUsage, keyUsage));
}

void AddExtendedKeyUsage(Certificate* certificate, const std::vector<const char*>& usages) {
    Owned<ExtensionExtendedKeyUsage, FreeExtensionExtendedKeyUsage> list;
    Require(CreateExtensionExtendedKeyUsage(list.Out()), "making a list of usages");
    for (const char* usage : usages) {
        Require(AddExtensionExtendedKeyUsage(list, Oid(usage).data()), "adding a usage");
    }
    AddExtension(certificate, "2.5.29.37", false, Get(EncodeExtensionExtendedKeyUsage, list));
}

void AddSubjectDnsName(Certificate* certificate, const std::string& host) {
    OwnedGeneralNames names;
    Require(CreateX509GeneralNames(names.Out()), "making general names");
    Require(AddX509GeneralName(names, X509GeneralNameDNSName, reinterpret_cast<const uint8_t*>(host.data()),
                               static_cast<uint32_t>(host.size())),
            "adding a general name");
    AddExtension(certificate, "2.5.29.17", false, Get(EncodeX509GeneralNames, names));
}

// A certificate that lacks issuer, extensions and signature.
OwnedCertificate BeginCertificate(const Suite& suite, const X509Name* subject, EVP_PKEY* key, uint32_t days) {
    OwnedCertificate certificate;
    Require(CreateCertificate(certificate.Out()), "making a certificate");
    const Bytes serial = MakeSerialNumber();
    Require(SetCertificateVersion(certificate, 2), "setting the version");  // version 3
    Require(SetCertificateSerialNumber(certificate, serial.data(), Size(serial)), "setting the serial number");
    Require(SetCertificateSignatureAlgorithmOidAndParameters(certificate, Oid(suite.signatureOid).data(), nullptr, 0),
            "setting the signature algorithm");
    Require(SetCertificateSubject(certificate, subject), "setting the subject");
    SetValidity(certificate, days);
    SetPublicKey(certificate, key);
    return certificate;
}

void SignCertificate(const Suite& suite, EVP_PKEY* issuerKey, Certificate* certificate) {
    const Bytes toBeSigned = Require(Get(GetCertificateToBeSignedPart, certificate), "encoding the to-be-signed part");
    const Bytes signature = Sign(suite, issuerKey, toBeSigned);
    Require(SetCertificateSignature(certificate, signature.data(), Size(signature)), "setting the signature");
}

OwnedCertificate IssueRoot(const Suite& suite, EVP_PKEY* key) {
    const OwnedName name = MakeExampleName("Example Root");
    OwnedCertificate root = BeginCertificate(suite, name, key, 3650);
    Require(SetCertificateIssuer(root, name), "setting the issuer");
    AddUsage(root, true, 0, kKeyCertSign | kCrlSign);
    Require(SetCertificateSubjectKeyIdentifier(root), "setting the subject key identifier");
    SignCertificate(suite, key, root);
    return root;
}

constexpr char kHost[] = "www.example.org";

OwnedCertificate IssueEnd(const Suite& suite, EVP_PKEY* key, Certificate* root, EVP_PKEY* rootKey) {
    const OwnedName subject = MakeExampleName(kHost);
    OwnedCertificate end = BeginCertificate(suite, subject, key, 365);
    X509Name* issuer = nullptr;
    Require(GetCertificateSubject(root, &issuer), "reaching the root's subject");
    Require(SetCertificateIssuer(end, issuer), "setting the issuer");
    AddUsage(end, false, kNoPathLength, kDigitalSignature);
    AddExtendedKeyUsage(end, {"1.3.6.1.5.5.7.3.1", "1.3.6.1.5.5.7.3.2"});  // serverAuth, clientAuth
    AddSubjectDnsName(end, kHost);
    Require(SetCertificateSubjectKeyIdentifier(end), "setting the subject key identifier");
    Require(SetCertificateAuthorityKeyIdentifier(end, root), "setting the authority key identifier");
    Require(SetCertificateExtensionCrlDistributionPoints(end, "http://crl.example.org/root.crl"),
            "setting the CRL distribution point");
    SignCertificate(suite, rootKey, end);
    return end;
}

Bytes Encode(const Certificate* certificate) { return Require(Get(EncodeCertificate, certificate), "encoding"); }

// --- Results ---

void WritePem(const std::filesystem::path& path, const char* label, const Bytes& der) {
    const auto [status, text] = GetText(EncodePem, der.data(), Size(der), label);
    Require(status, "encoding PEM");
    const std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(path.c_str(), "wb"), fclose);
    const bool written =
        file != nullptr && fwrite(text.data(), 1, text.size(), file.get()) == text.size() && fflush(file.get()) == 0;
    if (!written) throw std::runtime_error(path.string() + " can't be written");
    printf("  wrote %s, %u bytes of DER\n", path.c_str(), Size(der));
}

OpenSslCertificate ReadByOpenSsl(const Bytes& der) {
    const uint8_t* at = der.data();
    OpenSslCertificate certificate(d2i_X509(nullptr, &at, static_cast<long>(der.size())));
    RequireOpenSsl(certificate != nullptr, "reading a certificate");
    return certificate;
}

// With everything that OpenSSL can find fault with. host: null for a certificate that isn't a server's.
bool Verify(const char* title, const Bytes& der, const Bytes& rootDer, const char* host) {
    const OpenSslCertificate certificate = ReadByOpenSsl(der);
    const OpenSslCertificate root = ReadByOpenSsl(rootDer);
    const OpenSsl<X509_STORE, X509_STORE_free> store(X509_STORE_new());
    const OpenSsl<X509_STORE_CTX, X509_STORE_CTX_free> context(X509_STORE_CTX_new());
    RequireOpenSsl(store != nullptr && context != nullptr && X509_STORE_add_cert(store.get(), root.get()) > 0 &&
                       X509_STORE_CTX_init(context.get(), store.get(), certificate.get(), nullptr) > 0,
                   "preparing the verification");
    X509_VERIFY_PARAM* parameters = X509_STORE_CTX_get0_param(context.get());
    X509_VERIFY_PARAM_set_flags(parameters, X509_V_FLAG_X509_STRICT | X509_V_FLAG_CHECK_SS_SIGNATURE);
    if (host != nullptr) {
        RequireOpenSsl(X509_VERIFY_PARAM_set1_host(parameters, host, 0) > 0 &&
                           X509_STORE_CTX_set_purpose(context.get(), X509_PURPOSE_SSL_SERVER) > 0,
                       "preparing the verification");
    }
    const bool verified = X509_verify_cert(context.get()) > 0;
    printf("  %s: %s\n", title, X509_verify_cert_error_string(X509_STORE_CTX_get_error(context.get())));
    return verified;
}

bool IssueChain(const Suite& suite, const std::filesystem::path& directory) {
    printf("%s\n", suite.title);
    const Key rootKey = suite.generateKey();
    const Key endKey = suite.generateKey();
    const OwnedCertificate root = IssueRoot(suite, rootKey.get());
    const OwnedCertificate end = IssueEnd(suite, endKey.get(), root, rootKey.get());
    const Bytes rootDer = Encode(root);
    const Bytes endDer = Encode(end);
    const std::string prefix = suite.filePrefix;
    WritePem(directory / (prefix + "root.pem"), "CERTIFICATE", rootDer);
    WritePem(directory / (prefix + "end.pem"), "CERTIFICATE", endDer);
    const bool rootVerified = Verify("OpenSSL on the root", rootDer, rootDer, nullptr);
    return Verify("OpenSSL on the end certificate, as a server's", endDer, rootDer, kHost) && rootVerified;
}

bool Issue(const std::filesystem::path& directory) {
    std::filesystem::create_directories(directory);
    const bool verified = IssueChain(kEc, directory);
    const GostEngine engine;
    if (!engine.IsThere()) {
        printf("GOST is left out: OpenSSL has no engine \"gost\" here\n");
        return verified;
    }
    return IssueChain(kGost, directory) && verified;
}

}  // namespace

int main(int count, char** arguments) {
    if (count > 2) {
        fprintf(stderr, "usage: issue [DIRECTORY]\n");
        return 1;
    }
    try {
        return Issue(count == 2 ? arguments[1] : ".") ? 0 : 1;
    } catch (const std::exception& failure) {
        fprintf(stderr, "issue: %s\n", failure.what());
        return 1;
    }
}
