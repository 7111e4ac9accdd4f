// The same work on one certificate by this library and by the peers that are installed.
#pragma once

#include <memory>

#ifdef HAVE_OPENSSL
#include <openssl/x509.h>
#endif
#ifdef HAVE_TASN1
#include <libtasn1.h>
#endif
#ifdef HAVE_MBEDTLS
#include <mbedtls/x509_crt.h>
#endif

#include "sample.h"

namespace bench {

class Codec {
public:
    virtual ~Codec() = default;
    virtual const char* Name() const = 0;
    // False for a document that the peer can't read.
    virtual bool DecodeAndFree(const Bytes& der) = 0;
    // Keeps a decoded document for Encode. False for a peer that can't write it.
    virtual bool Keep(const Bytes&) { return false; }
    // Writes the kept document into a buffer, and returns the length.
    virtual size_t Encode(uint8_t*, size_t) { return 0; }
};

class OwnCodec : public Codec {
public:
    ~OwnCodec() override { FreeCertificate(kept_); }
    const char* Name() const override { return "tlvforge"; }
    bool DecodeAndFree(const Bytes& der) override {
        Certificate* certificate = nullptr;
        const bool decoded = DecodeCertificate(der.data(), Size(der), &certificate) == StatusOk;
        FreeCertificate(certificate);
        return decoded;
    }
    bool Keep(const Bytes& der) override { return DecodeCertificate(der.data(), Size(der), &kept_) == StatusOk; }
    size_t Encode(uint8_t* buffer, size_t size) override {
        auto length = static_cast<uint32_t>(size);
        Must(EncodeCertificate(kept_, buffer, &length));
        return length;
    }

private:
    Certificate* kept_ = nullptr;
};

#ifdef HAVE_OPENSSL
class OpenSslCodec : public Codec {
public:
    ~OpenSslCodec() override { X509_free(kept_); }
    const char* Name() const override { return "OpenSSL"; }
    bool DecodeAndFree(const Bytes& der) override {
        X509* certificate = Decode(der);
        X509_free(certificate);
        return certificate != nullptr;
    }
    bool Keep(const Bytes& der) override { return (kept_ = Decode(der)) != nullptr; }
    // i2d_X509 copies the bytes that a certificate was decoded from. i2d_re_X509_tbs drops those of tbsCertificate and
    // encodes it once; from then on i2d_X509 encodes it too. The names still come from their own copies.
    size_t Encode(uint8_t* buffer, size_t) override {
        if (!dropped_) {
            uint8_t* tbs = nullptr;
            dropped_ = i2d_re_X509_tbs(kept_, &tbs) > 0;
            OPENSSL_free(tbs);
        }
        return static_cast<size_t>(i2d_X509(kept_, &buffer));
    }

private:
    static X509* Decode(const Bytes& der) {
        const uint8_t* at = der.data();
        return d2i_X509(nullptr, &at, static_cast<long>(der.size()));
    }

    X509* kept_ = nullptr;
    bool dropped_ = false;
};
#endif

#ifdef HAVE_TASN1
class TasnCodec : public Codec {
public:
    TasnCodec() {
        char error[ASN1_MAX_ERROR_DESCRIPTION_SIZE] = {};
        if (asn1_parser2tree(TLVFORGE_SOURCE_DIR "/bench/certificate.asn", &definitions_, error) != ASN1_SUCCESS) {
            fprintf(stderr, "libtasn1: %s\n", error);
        }
    }
    ~TasnCodec() override {
        asn1_delete_structure(&kept_);
        asn1_delete_structure(&definitions_);
    }
    const char* Name() const override { return "libtasn1"; }
    bool DecodeAndFree(const Bytes& der) override {
        asn1_node certificate = Decode(der);
        const bool decoded = certificate != nullptr;
        asn1_delete_structure(&certificate);
        return decoded;
    }
    bool Keep(const Bytes& der) override { return (kept_ = Decode(der)) != nullptr; }
    size_t Encode(uint8_t* buffer, size_t size) override {
        int length = static_cast<int>(size);
        return asn1_der_coding(kept_, "", buffer, &length, nullptr) == ASN1_SUCCESS ? static_cast<size_t>(length) : 0;
    }

private:
    // Null for a document that can't be read.
    asn1_node Decode(const Bytes& der) {
        asn1_node certificate = nullptr;
        if (asn1_create_element(definitions_, "CERTIFICATE.Certificate", &certificate) != ASN1_SUCCESS ||
            asn1_der_decoding(&certificate, der.data(), static_cast<int>(der.size()), nullptr) != ASN1_SUCCESS) {
            asn1_delete_structure(&certificate);
        }
        return certificate;
    }

    asn1_node definitions_ = nullptr, kept_ = nullptr;
};
#endif

#ifdef HAVE_MBEDTLS
// Keeps a copy of the bytes and points into it, so it has no encoder and builds less of a tree.
class MbedTlsCodec : public Codec {
public:
    const char* Name() const override { return "mbedTLS"; }
    bool DecodeAndFree(const Bytes& der) override {
        mbedtls_x509_crt certificate;
        mbedtls_x509_crt_init(&certificate);
        const bool decoded = mbedtls_x509_crt_parse_der(&certificate, der.data(), der.size()) == 0;
        mbedtls_x509_crt_free(&certificate);
        return decoded;
    }
};
#endif

// This library first.
inline std::vector<std::unique_ptr<Codec>> Codecs() {
    std::vector<std::unique_ptr<Codec>> codecs;
    codecs.push_back(std::make_unique<OwnCodec>());
#ifdef HAVE_OPENSSL
    codecs.push_back(std::make_unique<OpenSslCodec>());
#endif
#ifdef HAVE_TASN1
    codecs.push_back(std::make_unique<TasnCodec>());
#endif
#ifdef HAVE_MBEDTLS
    codecs.push_back(std::make_unique<MbedTlsCodec>());
#endif
    return codecs;
}

}  // namespace bench
