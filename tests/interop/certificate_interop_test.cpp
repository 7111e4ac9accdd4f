// OpenSSL as the oracle: what it reads from a real certificate, this library reads as well.

#include <openssl/asn1.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include "support.h"

using support::Bytes;
using support::Fetch;

namespace {

using Peer = std::unique_ptr<X509, decltype(&X509_free)>;

template <class Value, class Write>
Bytes DerOf(Value* value, Write write) {
    uint8_t* out = nullptr;
    const int length = write(value, &out);
    Bytes der(out, out + (length > 0 ? length : 0));
    OPENSSL_free(out);
    return der;
}

Bytes ContentOf(const ASN1_STRING* text) {
    return Bytes(ASN1_STRING_get0_data(text), ASN1_STRING_get0_data(text) + ASN1_STRING_length(text));
}

void ExpectName(Status (*getter)(Certificate*, X509Name**), Certificate* certificate, X509_NAME* expected) {
    X509Name* name = nullptr;
    ASSERT_EQ(getter(certificate, &name), 0u);
    EXPECT_EQ(Fetch(EncodeX509Name, name), DerOf(expected, i2d_X509_NAME));
}

void ExpectTime(Status (*getter)(const Certificate*, LibraryTime*), const Certificate* certificate,
                const ASN1_TIME* expected) {
    tm fields = {};
    ASSERT_EQ(ASN1_TIME_to_tm(expected, &fields), 1);
    LibraryTime time = {};
    const Status status = getter(certificate, &time);
    if (fields.tm_year + 1900 > 2100) {
        EXPECT_EQ(status, StatusBadTime) << "years above 2100 are out of range";
        return;
    }
    EXPECT_EQ(status, 0u);
    EXPECT_EQ(std::vector<int>({fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour, fields.tm_min,
                                fields.tm_sec}),
              std::vector<int>(&time.year, &time.second + 1));
}

void ExpectExtensions(Certificate* certificate, const X509* peer) {
    X509Extensions extensions = nullptr;
    uint32_t count = 0;
    ASSERT_EQ(GetCertificateExtensions(certificate, &extensions), 0u);
    ASSERT_EQ(GetX509ExtensionsExtensionsCount(extensions, &count), 0u);
    ASSERT_EQ(count, static_cast<uint32_t>(X509_get_ext_count(peer)));
    for (uint32_t i = 0; i < count; ++i) {
        X509_EXTENSION* expected = X509_get_ext(peer, static_cast<int>(i));
        uint32_t critical = 9;
        const auto [oid, value] =
            walk::Sure(walk::Get(GetX509ExtensionsExtension, extensions, i, walk::kOut, &critical, walk::kOut));
        EXPECT_EQ(critical, static_cast<uint32_t>(X509_EXTENSION_get_critical(expected)));
        EXPECT_EQ(Bytes(value.data(), value.end()), ContentOf(X509_EXTENSION_get_data(expected)));
        EXPECT_EQ(Fetch(EncodeAsn1Oid, oid.data()), DerOf(X509_EXTENSION_get_object(expected), i2d_ASN1_OBJECT));
    }
}

TEST(Interop, ReadsRealCertificatesAsOpenSslDoes) {
    SKIP_WITHOUT_CORPUS();
    uint32_t compared = 0;
    for (const auto& [name, bytes] : support::Corpus("cert")) {
        SCOPED_TRACE(name);
        const uint8_t* at = bytes.data();
        const Peer peer(d2i_X509(nullptr, &at, static_cast<long>(bytes.size())), X509_free);
        const auto ours = support::Decoded<FreeCertificate>(DecodeCertificate, bytes);
        ASSERT_TRUE(ours);
        if (!peer) continue;  // OpenSSL refuses some that are well-formed
        ++compared;
        int32_t version = -1;
        EXPECT_EQ(GetCertificateVersion(ours.get(), &version), 0u);
        EXPECT_EQ(version, X509_get_version(peer.get()));
        ASN1_INTEGER* serial = X509_get_serialNumber(peer.get());
        EXPECT_EQ(support::Tlv(2, Fetch(GetCertificateSerialNumber, ours.get())), DerOf(serial, i2d_ASN1_INTEGER));
        ExpectName(GetCertificateIssuer, ours.get(), X509_get_issuer_name(peer.get()));
        ExpectName(GetCertificateSubject, ours.get(), X509_get_subject_name(peer.get()));
        ExpectTime(GetCertificateValidNotBefore, ours.get(), X509_get0_notBefore(peer.get()));
        ExpectTime(GetCertificateValidNotAfter, ours.get(), X509_get0_notAfter(peer.get()));
        EXPECT_EQ(Fetch(GetCertificatePublicKey, ours.get()), ContentOf(X509_get0_pubkey_bitstr(peer.get())));
        const ASN1_BIT_STRING* signature = nullptr;
        X509_get0_signature(&signature, nullptr, peer.get());
        EXPECT_EQ(Fetch(GetCertificateSignature, ours.get()), ContentOf(signature));
        EXPECT_EQ(Fetch(GetCertificateToBeSignedPart, ours.get()), DerOf(peer.get(), i2d_re_X509_tbs));
        ExpectExtensions(ours.get(), peer.get());
        const ASN1_OCTET_STRING* keyId = X509_get0_subject_key_id(peer.get());
        if (keyId == nullptr) continue;
        EXPECT_EQ(Fetch(GetCertificateSubjectKeyIdentifier, ours.get()), ContentOf(keyId));
    }
    EXPECT_GE(compared, 100u);
}

}  // namespace
