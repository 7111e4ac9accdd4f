// What OpenSSL says to the messages.
#pragma once

#include "cades.h"

// Behind the headers above, which choose what OpenSSL declares.
#include <openssl/cms.h>

namespace examples {

using Store = OpenSsl<X509_STORE, X509_STORE_free>;

// The one certificate that is trusted.
inline Store MakeStore(const Bytes& root) {
    Store store(X509_STORE_new());
    const auto certificate = ReadByOpenSsl<OpenSslCertificate, d2i_X509>(root);
    RequireOpenSsl(store != nullptr && X509_STORE_add_cert(store.get(), certificate.get()) > 0, "preparing a store");
    return store;
}

struct MessageExpectation {
    bool attached;
    int signers;
    bool cades;
};

inline bool HoldsBytes(BIO* memory, const Bytes& bytes) {
    const uint8_t* data = nullptr;
    const long length = BIO_get_mem_data(memory, &data);
    return Bytes(data, data + length) == bytes;
}

// All signatures with their certificates, against the content, which an attached message has to contain.
inline bool VerifyMessage(const Bytes& message, const Bytes& content, const Store& store,
                          const MessageExpectation& expected) {
    const auto read = ReadByOpenSsl<OpenSsl<CMS_ContentInfo, CMS_ContentInfo_free>, d2i_CMS_ContentInfo>(message);
    const Bio detached = expected.attached ? nullptr : ReadFrom(content);
    const Bio verified(BIO_new(BIO_s_mem()));
    RequireOpenSsl(verified != nullptr, "preparing the verification");
    const unsigned flags = CMS_BINARY | (expected.cades ? CMS_CADES : 0);
    const bool accepted = CMS_verify(read.get(), nullptr, store.get(), detached.get(), verified.get(), flags) > 0;
    if (!accepted) ERR_print_errors_fp(stderr);
    const bool asExpected = accepted && HoldsBytes(verified.get(), content) &&
                            sk_CMS_SignerInfo_num(CMS_get0_SignerInfos(read.get())) == expected.signers &&
                            CMS_is_detached(read.get()) == (expected.attached ? 0 : 1);
    return Report("the message", asExpected, accepted ? "verified" : "refused");
}

inline bool VerifyTimeStamp(const TimeStamp& timeStamp, const Store& store) {
    const auto token = ReadByOpenSsl<OpenSsl<PKCS7, PKCS7_free>, d2i_PKCS7>(timeStamp.token);
    const OpenSsl<TS_VERIFY_CTX, TS_VERIFY_CTX_free> context(TS_VERIFY_CTX_new());
    RequireOpenSsl(context != nullptr && X509_STORE_up_ref(store.get()) > 0, "preparing the verification");
    // The context owns what it is given.
    TS_VERIFY_CTX_set_store(context.get(), store.get());
    TS_VERIFY_CTX_set_data(context.get(), ReadFrom(timeStamp.signature).release());
    TS_VERIFY_CTX_set_flags(context.get(), TS_VFY_SIGNATURE | TS_VFY_VERSION | TS_VFY_DATA);
    const bool accepted = TS_RESP_verify_token(context.get(), token.get()) > 0;
    if (!accepted) ERR_print_errors_fp(stderr);
    return Report("its time-stamp", accepted, accepted ? "verified" : "refused");
}

}  // namespace examples
