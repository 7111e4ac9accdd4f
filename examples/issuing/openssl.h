// Keys and signatures, by OpenSSL.
#pragma once

// Engines are deprecated in OpenSSL 3, and still what GOST comes in.
#define OPENSSL_SUPPRESS_DEPRECATED

#include <openssl/ec.h>
#include <openssl/engine.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "../support.h"

namespace examples {

inline void RequireOpenSsl(bool done, const char* action) {
    if (done) return;
    const char* reason = ERR_reason_error_string(ERR_peek_last_error());
    throw std::runtime_error(std::string(action) + ": OpenSSL: " + (reason != nullptr ? reason : "failed"));
}

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

// What documents are signed with.
struct Suite {
    const char* title;
    const char* filePrefix;
    const char* signatureOid;
    const char* digest;
    Key (*generateKey)();
};

inline Key GenerateEcKey() {
    Key key(EVP_EC_gen("P-256"));
    RequireOpenSsl(key != nullptr, "making a key");
    return key;
}

inline Key GenerateGostKey() {
    const OpenSsl<EVP_PKEY_CTX, EVP_PKEY_CTX_free> context(EVP_PKEY_CTX_new_id(NID_id_GostR3410_2012_256, nullptr));
    EVP_PKEY* key = nullptr;
    RequireOpenSsl(context != nullptr && EVP_PKEY_keygen_init(context.get()) > 0 &&
                       EVP_PKEY_CTX_ctrl_str(context.get(), "paramset", "A") > 0 &&
                       EVP_PKEY_keygen(context.get(), &key) > 0,
                   "making a GOST key");
    return Key(key);
}

inline constexpr Suite kEc = {"EC P-256 with SHA-256", "", "1.2.840.10045.4.3.2", "SHA256", GenerateEcKey};
inline constexpr Suite kGost = {"GOST R 34.10-2012, 256 bits", "gost-", "1.2.643.7.1.1.3.2", "md_gost12_256",
                                GenerateGostKey};

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
inline Bytes Sign(const Suite& suite, EVP_PKEY* key, const Bytes& toBeSigned) {
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
inline Bytes EncodePublicKey(EVP_PKEY* key) {
    uint8_t* der = nullptr;
    const int length = i2d_PUBKEY(key, &der);
    RequireOpenSsl(length > 0, "encoding a public key");
    Bytes bytes(der, der + length);
    OPENSSL_free(der);
    return bytes;
}

// Big-endian, positive and in minimal form.
inline Bytes MakeSerialNumber() {
    Bytes serial(16);
    RequireOpenSsl(RAND_bytes(serial.data(), static_cast<int>(serial.size())) > 0, "making a serial number");
    serial[0] = (serial[0] & 0x7F) | 0x40;
    return serial;
}

}  // namespace examples
