// What the examples take from OpenSSL's libcrypto: keys, digests, signatures and random bytes.
#pragma once

// Engines are deprecated in OpenSSL 3, and still what GOST comes in.
#define OPENSSL_SUPPRESS_DEPRECATED

#include <openssl/ec.h>
#include <openssl/engine.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "tlvforge/tlvforge.hpp"

namespace examples {

using tlvforge::Algorithm;
using tlvforge::Bytes;
using tlvforge::ByteView;
using tlvforge::Oid;

inline void Require(bool done, const char* action) {
    if (done) return;
    const char* const reason = ERR_reason_error_string(ERR_peek_last_error());
    throw std::runtime_error(std::string(action) + ": " + (reason != nullptr ? reason : "libcrypto can't do this"));
}

template <auto FreeObject>
struct Deleter {
    template <class T>
    void operator()(T* object) const {
        FreeObject(object);
    }
};
using Key = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY_free>>;

// What a kind of key signs with.
struct Suite {
    int type;
    const char* prefix;  // of the names of files
    const char* digest;
    Algorithm digestAlgorithm, signatureAlgorithm;
};

inline const Suite& SuiteOf(int type) {
    static const Suite kSuites[] = {
        {EVP_PKEY_EC, "", "SHA256", {Oid("2.16.840.1.101.3.4.2.1")}, {Oid("1.2.840.10045.4.3.2")}},
        {EVP_PKEY_RSA, "", "SHA256", {Oid("2.16.840.1.101.3.4.2.1")}, {Oid("1.2.840.113549.1.1.11"), {5, 0}}},
        {NID_id_GostR3410_2012_256, "gost-", "md_gost12_256", {Oid("1.2.643.7.1.1.2.2")}, {Oid("1.2.643.7.1.1.3.2")}}};
    for (const Suite& suite : kSuites) {
        if (suite.type == type) return suite;
    }
    throw std::runtime_error("keys of this type aren't known here");
}
inline const Suite& SuiteOf(const Key& key) { return SuiteOf(EVP_PKEY_get_base_id(key.get())); }

// Whether libcrypto has GOST; it serves the whole process from then on.
inline bool HasGost() {
    static ENGINE* const engine = ENGINE_by_id("gost");
    static const bool ready =
        engine != nullptr && ENGINE_init(engine) != 0 && ENGINE_set_default(engine, ENGINE_METHOD_ALL) != 0;
    ERR_clear_error();
    return ready;
}

inline Key GenerateKey(int type) {
    if (type == EVP_PKEY_EC) return Key(EVP_EC_gen("P-256"));
    const std::unique_ptr<EVP_PKEY_CTX, Deleter<EVP_PKEY_CTX_free>> context(EVP_PKEY_CTX_new_id(type, nullptr));
    EVP_PKEY* key = nullptr;
    Require(context && EVP_PKEY_keygen_init(context.get()) > 0 &&
                EVP_PKEY_CTX_ctrl_str(context.get(), "paramset", "A") > 0 && EVP_PKEY_keygen(context.get(), &key) > 0,
            "making a key");
    return Key(key);
}

using File = std::unique_ptr<BIO, Deleter<BIO_free>>;

inline void WriteKey(const std::string& path, const Key& key) {
    const File file(BIO_new_file(path.c_str(), "w"));
    Require(file && PEM_write_bio_PKCS8PrivateKey(file.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) == 1,
            path.c_str());
}

inline Key ReadKey(const std::string& path) {
    HasGost();
    const File file(BIO_new_file(path.c_str(), "r"));
    Key key(file ? PEM_read_bio_PrivateKey(file.get(), nullptr, nullptr, nullptr) : nullptr);
    Require(key != nullptr, path.c_str());
    return key;
}

// SubjectPublicKeyInfo of a key, and the reverse.
inline Bytes EncodePublicKey(const Key& key) {
    uint8_t* der = nullptr;
    const int length = i2d_PUBKEY(key.get(), &der);
    Require(length > 0, "encoding a key");
    const std::unique_ptr<uint8_t, Deleter<[](uint8_t* bytes) { OPENSSL_free(bytes); }>> owner(der);
    return Bytes(der, der + length);
}

inline Key PublicKeyOf(const tlvforge::Handle<Certificate>& certificate) {
    const Bytes der = tlvforge::Encode(certificate);
    const uint8_t* at = der.data();
    const std::unique_ptr<X509, Deleter<X509_free>> read(d2i_X509(nullptr, &at, static_cast<long>(der.size())));
    Key key(read ? X509_get_pubkey(read.get()) : nullptr);
    Require(key != nullptr, "reading a key");
    return key;
}

inline Bytes Digest(const Suite& suite, ByteView bytes) {
    Bytes digest(EVP_MAX_MD_SIZE);
    unsigned size = 0;
    Require(
        EVP_Digest(bytes.data(), bytes.size(), digest.data(), &size, EVP_get_digestbyname(suite.digest), nullptr) > 0,
        "making a digest");
    digest.resize(size);
    return digest;
}

inline Bytes Sign(const Key& key, const Bytes& bytes) {
    const std::unique_ptr<EVP_MD_CTX, Deleter<EVP_MD_CTX_free>> context(EVP_MD_CTX_new());
    const EVP_MD* const digest = EVP_get_digestbyname(SuiteOf(key).digest);
    size_t length = 0;
    Require(EVP_DigestSignInit(context.get(), nullptr, digest, nullptr, key.get()) > 0 &&
                EVP_DigestSign(context.get(), nullptr, &length, bytes.data(), bytes.size()) > 0,
            "signing");
    Bytes signature(length);
    Require(EVP_DigestSign(context.get(), signature.data(), &length, bytes.data(), bytes.size()) > 0, "signing");
    signature.resize(length);
    return signature;
}

inline bool Verifies(const Key& key, const Bytes& bytes, const Bytes& signature) {
    const std::unique_ptr<EVP_MD_CTX, Deleter<EVP_MD_CTX_free>> context(EVP_MD_CTX_new());
    const EVP_MD* const digest = EVP_get_digestbyname(SuiteOf(key).digest);
    return EVP_DigestVerifyInit(context.get(), nullptr, digest, nullptr, key.get()) > 0 &&
           EVP_DigestVerify(context.get(), signature.data(), signature.size(), bytes.data(), bytes.size()) == 1;
}

// A positive INTEGER in minimal form, for serial numbers and nonces.
inline Bytes RandomNumber(size_t size) {
    Bytes number(size);
    Require(RAND_bytes(number.data(), static_cast<int>(size)) > 0, "making a random number");
    number[0] = static_cast<uint8_t>((number[0] & 0x7F) | 0x40);
    return number;
}

// The content of the first block of a PEM file.
inline Bytes ReadPem(const std::string& path) {
    const auto blocks = tlvforge::PemBlocks(tlvforge::ReadFile(path));
    if (blocks.empty()) throw std::runtime_error(path + " isn't PEM");
    return blocks[0].bytes;
}

inline void WritePem(const std::string& path, const char* label, const Bytes& der) {
    tlvforge::WriteFile(path, tlvforge::Get(EncodePem, der, label));
    std::printf("  wrote %s, %zu bytes of DER\n", path.c_str(), der.size());
}

}  // namespace examples
