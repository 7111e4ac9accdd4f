// What OpenSSL says to the documents.
#pragma once

#include <cstdio>
#include <string>

#include "openssl.h"

namespace examples {

using OpenSslCertificate = OpenSsl<X509, X509_free>;
using OpenSslCrl = OpenSsl<X509_CRL, X509_CRL_free>;
using OpenSslRequest = OpenSsl<X509_REQ, X509_REQ_free>;

// Decode: the d2i function of the document.
template <class Pointer, auto Decode>
Pointer ReadByOpenSsl(const Bytes& der) {
    const uint8_t* at = der.data();
    Pointer document(Decode(nullptr, &at, static_cast<long>(der.size())));
    RequireOpenSsl(document != nullptr && at == der.data() + der.size(), "reading a document");
    return document;
}

// What a chain is verified with: a root, and the CRL that it signed.
struct Anchor {
    OpenSslCertificate root;
    OpenSslCrl crl;

    Anchor(const Bytes& rootDer, const Bytes& crlDer)
        : root(ReadByOpenSsl<OpenSslCertificate, d2i_X509>(rootDer)),
          crl(ReadByOpenSsl<OpenSslCrl, d2i_X509_CRL>(crlDer)) {}
};

inline bool Report(const char* title, bool passed, const char* result) {
    printf("  OpenSSL on %s: %s%s\n", title, result, passed ? "" : " (NOT AS IT SHOULD BE)");
    return passed;
}

inline bool ReportSignature(const char* title, bool verified) {
    return Report(title, verified, verified ? "signature ok" : "signature refused");
}

inline bool VerifyCrl(const Anchor& anchor) {
    return ReportSignature("the CRL", X509_CRL_verify(anchor.crl.get(), X509_get0_pubkey(anchor.root.get())) > 0);
}

// The signature proves that the requester has the key in the request.
inline bool VerifyRequest(const Bytes& der) {
    const OpenSslRequest request = ReadByOpenSsl<OpenSslRequest, d2i_X509_REQ>(der);
    return ReportSignature("the request", X509_REQ_verify(request.get(), X509_REQ_get0_pubkey(request.get())) > 0);
}

struct Expectation {
    const char* title;
    const char* host;  // null for a certificate that isn't a server's
    int result;        // X509_V_OK or an error
};

// With everything that OpenSSL can find fault with.
inline bool VerifyChain(const Bytes& der, const Anchor& anchor, const Expectation& expected) {
    const OpenSslCertificate certificate = ReadByOpenSsl<OpenSslCertificate, d2i_X509>(der);
    const OpenSsl<X509_STORE, X509_STORE_free> store(X509_STORE_new());
    const OpenSsl<X509_STORE_CTX, X509_STORE_CTX_free> context(X509_STORE_CTX_new());
    RequireOpenSsl(store != nullptr && context != nullptr && X509_STORE_add_cert(store.get(), anchor.root.get()) > 0 &&
                       X509_STORE_add_crl(store.get(), anchor.crl.get()) > 0 &&
                       X509_STORE_CTX_init(context.get(), store.get(), certificate.get(), nullptr) > 0,
                   "preparing the verification");
    X509_VERIFY_PARAM* parameters = X509_STORE_CTX_get0_param(context.get());
    X509_VERIFY_PARAM_set_flags(parameters,
                                X509_V_FLAG_X509_STRICT | X509_V_FLAG_CHECK_SS_SIGNATURE | X509_V_FLAG_CRL_CHECK);
    if (expected.host != nullptr) {
        RequireOpenSsl(X509_VERIFY_PARAM_set1_host(parameters, expected.host, 0) > 0 &&
                           X509_STORE_CTX_set_purpose(context.get(), X509_PURPOSE_SSL_SERVER) > 0,
                       "preparing the verification");
    }
    const bool verified = X509_verify_cert(context.get()) > 0;
    const int result = X509_STORE_CTX_get_error(context.get());
    const bool asExpected = result == expected.result && verified == (expected.result == X509_V_OK);
    std::string said = X509_verify_cert_error_string(result);
    if (asExpected && !verified) said = "refused, as it should be (" + said + ")";
    return Report(expected.title, asExpected, said.c_str());
}

}  // namespace examples
