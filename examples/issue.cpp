// issue DIRECTORY: builds a root certificate, end certificates, a request and a CRL from nothing, and has them
// verified.
//
// The library makes the documents, OpenSSL the keys, the signatures and the verification. root.pem, end.pem,
// revoked.pem (an end certificate that the CRL revokes), request.pem and crl.pem are written to the directory, and the
// same with the prefix gost- where OpenSSL has its GOST engine. The exit code is 0 when OpenSSL accepted everything but
// the revoked certificate. How each document is made stands in issuing/.

#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "issuing/certificate.h"
#include "issuing/crl.h"
#include "issuing/request.h"
#include "issuing/verification.h"
#include "usage.h"

using namespace examples;

namespace {

constexpr char kUsage[] =
    "usage: issue DIRECTORY\n\n"
    "Issues certificates, a request and a CRL, has OpenSSL verify them, and writes them to the directory.\n";

constexpr char kHost[] = "www.example.org";

void WritePem(const std::filesystem::path& path, const char* label, const Bytes& der) {
    const auto [status, text] = GetText(EncodePem, der.data(), Size(der), label);
    Require(status, "encoding PEM");
    const std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(path.c_str(), "wb"), fclose);
    const bool written =
        file != nullptr && fwrite(text.data(), 1, text.size(), file.get()) == text.size() && fflush(file.get()) == 0;
    if (!written) throw std::runtime_error(path.string() + " can't be written");
    printf("  wrote %s, %u bytes of DER\n", path.c_str(), Size(der));
}

// All documents of a suite, as DER.
struct Documents {
    Bytes root, end, revoked, request, crl;
};

template <class Function, class Document>
Bytes Encode(Function function, const Document& document) {
    return Require(Get(function, document), "encoding");
}

Documents MakeDocuments(const Suite& suite) {
    const Key rootKey = suite.generateKey();
    const Key endKey = suite.generateKey();
    const OwnedCertificate root = IssueRoot(suite, rootKey.get());
    const OwnedCertificate end = IssueEnd(suite, kHost, endKey.get(), root, rootKey.get());
    const OwnedCertificate revoked = IssueEnd(suite, kHost, suite.generateKey().get(), root, rootKey.get());
    const OwnedRequest request = MakeRequest(suite, kHost, endKey.get());
    const Revocation older = {MakeSerialNumber(), {2024, 2, 29, 12, 0, 0}, kSuperseded, {2024, 2, 28, 0, 0, 0}};
    const OwnedCrl crl = IssueCrl(suite, root, rootKey.get(), {1}, {older, RevokeForKeyCompromise(revoked)});
    return {Encode(EncodeCertificate, root), Encode(EncodeCertificate, end), Encode(EncodeCertificate, revoked),
            Encode(EncodePKCS10CertReq, request), Encode(EncodeX509Crl, crl)};
}

void WriteDocuments(const Suite& suite, const Documents& documents, const std::filesystem::path& directory) {
    const std::string prefix = suite.filePrefix;
    WritePem(directory / (prefix + "root.pem"), "CERTIFICATE", documents.root);
    WritePem(directory / (prefix + "end.pem"), "CERTIFICATE", documents.end);
    WritePem(directory / (prefix + "revoked.pem"), "CERTIFICATE", documents.revoked);
    WritePem(directory / (prefix + "request.pem"), "CERTIFICATE REQUEST", documents.request);
    WritePem(directory / (prefix + "crl.pem"), "X509 CRL", documents.crl);
}

bool VerifyDocuments(const Documents& documents) {
    const Anchor anchor(documents.root, documents.crl);
    const bool results[] = {
        VerifyRequest(documents.request),
        VerifyCrl(anchor),
        VerifyChain(documents.root, anchor, {"the root", nullptr, X509_V_OK}),
        VerifyChain(documents.end, anchor, {"the end certificate, as a server's", kHost, X509_V_OK}),
        VerifyChain(documents.revoked, anchor, {"the revoked one", kHost, X509_V_ERR_CERT_REVOKED}),
    };
    bool all = true;
    for (const bool result : results) all = all && result;
    return all;
}

bool IssueDocuments(const Suite& suite, const std::filesystem::path& directory) {
    printf("%s\n", suite.title);
    const Documents documents = MakeDocuments(suite);
    WriteDocuments(suite, documents, directory);
    return VerifyDocuments(documents);
}

bool Issue(const std::filesystem::path& directory) {
    std::filesystem::create_directories(directory);
    const bool verified = IssueDocuments(kEc, directory);
    const GostEngine engine;
    if (!engine.IsThere()) {
        printf("GOST is left out: OpenSSL has no engine \"gost\" here\n");
        return verified;
    }
    return IssueDocuments(kGost, directory) && verified;
}

}  // namespace

int main(int count, char** arguments) {
    if (const auto status = AnswerUsage(kUsage, count, arguments, count == 2)) return *status;
    try {
        return Issue(arguments[1]) ? 0 : 1;
    } catch (const std::exception& failure) {
        fprintf(stderr, "issue: %s\n", failure.what());
        return 1;
    }
}
