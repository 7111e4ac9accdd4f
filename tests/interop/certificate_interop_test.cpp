// OpenSSL as the oracle: what it reads from a real certificate, this library
// reads as well.

#include "interop/peer.h"

using namespace peer;

namespace {

void ExpectExtensions(Certificate* certificate, const X509* peer) {
    X509Extensions extensions = nullptr;
    uint32_t count = 0;
    EXPECT_EQ(GetCertificateExtensions(certificate, &extensions), 0u);
    EXPECT_EQ(GetX509ExtensionsExtensionsCount(extensions, &count), 0u);
    ASSERT_EQ(count, static_cast<uint32_t>(X509_get_ext_count(peer)));
    for (uint32_t i = 0; i < count; ++i) {
        X509_EXTENSION* expected = X509_get_ext(peer, static_cast<int>(i));
        uint32_t critical = 9;
        const auto [oid, value] = Outputs(GetX509ExtensionsExtension, extensions, i, walk::kOut, &critical, walk::kOut);
        EXPECT_EQ(critical, static_cast<uint32_t>(X509_EXTENSION_get_critical(expected)));
        EXPECT_EQ(value, ContentOf(X509_EXTENSION_get_data(expected)));
        EXPECT_EQ(Bytes{6} + oid, DerOf(X509_EXTENSION_get_object(expected), i2d_ASN1_OBJECT));
    }
}

TEST(Interop, ReadsRealCertificatesAsOpenSslDoes) {
    SKIP_WITHOUT_CORPUS();
    uint32_t compared = 0;
    for (const auto& [name, bytes] : Corpus("cert")) {
        SCOPED_TRACE(name);
        const auto owner = FromDer<X509_free>(d2i_X509, bytes);
        const auto decoded = Decoded<FreeCertificate>(DecodeCertificate, bytes);
        X509* const peer = owner.get();
        Certificate* const ours = decoded.get();
        ASSERT_TRUE(ours);
        if (peer == nullptr) continue;  // OpenSSL refuses some that are well-formed
        ++compared;
        int32_t version = -1;
        LibraryTime time = {};
        X509Name *issuer = nullptr, *subject = nullptr;
        const ASN1_BIT_STRING* signature = nullptr;
        X509_get0_signature(&signature, nullptr, peer);
        Expect(0, {GetCertificateVersion(ours, &version), GetCertificateIssuer(ours, &issuer),
                   GetCertificateSubject(ours, &subject)});
        EXPECT_EQ(version, X509_get_version(peer));
        EXPECT_EQ(Fetch(EncodeX509Name, issuer), DerOf(X509_get_issuer_name(peer), i2d_X509_NAME));
        EXPECT_EQ(Fetch(EncodeX509Name, subject), DerOf(X509_get_subject_name(peer), i2d_X509_NAME));
        ExpectTime(GetCertificateValidNotBefore(ours, &time), time, X509_get0_notBefore(peer));
        ExpectTime(GetCertificateValidNotAfter(ours, &time), time, X509_get0_notAfter(peer));
        EXPECT_EQ(Tlv(2, Fetch(GetCertificateSerialNumber, ours)),
                  DerOf(X509_get_serialNumber(peer), i2d_ASN1_INTEGER));
        EXPECT_EQ(Fetch(GetCertificatePublicKey, ours), ContentOf(X509_get0_pubkey_bitstr(peer)));
        EXPECT_EQ(Fetch(GetCertificateSignature, ours), ContentOf(signature));
        EXPECT_EQ(Fetch(GetCertificateToBeSignedPart, ours), DerOf(peer, i2d_re_X509_tbs));
        ExpectExtensions(ours, peer);
        const ASN1_OCTET_STRING* keyId = X509_get0_subject_key_id(peer);
        if (keyId == nullptr) continue;
        EXPECT_EQ(Fetch(GetCertificateSubjectKeyIdentifier, ours), ContentOf(keyId));
    }
    EXPECT_GE(compared, 100u);
}

}  // namespace
