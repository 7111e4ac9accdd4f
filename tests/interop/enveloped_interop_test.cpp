// OpenSSL as the writer and the reader of encrypted messages: one that it wrote is taken apart, and it opens what is
// put together of the parts.

#include <openssl/cms.h>
#include <openssl/rsa.h>
#include <openssl/x509v3.h>

#include "support.h"
#include "tlvforge/enveloped.h"

using support::Bytes;
using support::Check;
using support::Fetch;
using support::Size;

namespace {

template <auto Free, class T>
auto Peer(T* object) {
    EXPECT_NE(object, nullptr);
    return std::unique_ptr<T, walk::Deleter<Free>>(object);
}

template <class Value, class Write>
Bytes DerOf(Value* value, Write write) {
    uint8_t* out = nullptr;
    const int length = write(value, &out);
    Bytes der(out, out + (length > 0 ? length : 0));
    OPENSSL_free(out);
    return der;
}

void FreeStack(STACK_OF(X509) * stack) { sk_X509_pop_free(stack, X509_free); }

auto CertificateOf(EVP_PKEY* key) {
    auto certificate = Peer<X509_free>(X509_new());
    X509_NAME* name = X509_get_subject_name(certificate.get());
    const auto* text = reinterpret_cast<const uint8_t*>("Recipient");
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), 0x80FF01);
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8, text, -1, -1, 0);
    X509_set_issuer_name(certificate.get(), name);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), 0);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), 3600);
    X509_set_pubkey(certificate.get(), key);
    X509_set_version(certificate.get(), 2);
    X509V3_CTX context{};
    X509V3_set_ctx(&context, certificate.get(), certificate.get(), nullptr, nullptr, 0);
    const auto keyId = Peer<X509_EXTENSION_free>(X509V3_EXT_conf_nid(0, &context, NID_subject_key_identifier, "hash"));
    EXPECT_EQ(X509_add_ext(certificate.get(), keyId.get(), -1), 1);
    EXPECT_GT(X509_sign(certificate.get(), key, EVP_sha256()), 0);
    return certificate;
}

template <class Get, class Set, class From, class To>
void CarryAlgorithm(Get get, const From* from, Set set, To* to) {
    const auto [oid, parameters] = walk::Sure(walk::Get(get, from, walk::kOut, walk::kOut));
    EXPECT_EQ(set(to, oid.data(), parameters.data(), parameters.size()), 0u);
}

template <class Get, class Set, class From, class To>
void CarryBytes(Get get, const From* from, Set set, To* to) {
    const Bytes bytes = Fetch(get, from);
    EXPECT_EQ(set(to, bytes.data(), Size(bytes)), 0u);
}

template <class Get, class Set, class From, class To>
void CarryVersion(Get get, const From* from, Set set, To* to) {
    int32_t version = -1;
    Check({{get(from, &version), 0}, {set(to, static_cast<uint32_t>(version)), 0}});
}

void CarryIdentifier(KeyTrans* from, KeyTrans* to) {
    X509Name* issuer = nullptr;
    uint8_t serial[64], keyId[64];
    uint32_t serialLength = sizeof serial, keyIdLength = sizeof keyId;
    EXPECT_EQ(GetKeyTransRecipientIdentifier(from, &issuer, serial, &serialLength, keyId, &keyIdLength), 0u);
    EXPECT_EQ(issuer != nullptr ? SetKeyTransRecipientIdentifierIssuerAndSerialNumber(to, issuer, serial, serialLength)
                                : SetKeyTransRecipientIdentifierSubjectKeyIdentifier(to, keyId, keyIdLength),
              0u);
}

void CarryRecipient(const CmsEnvelopedData* from, CmsEnvelopedData* to) {
    auto recipient = support::Make<FreeKeyTrans>(CreateKeyTrans);
    void* found = nullptr;
    uint32_t kind = 0;
    ASSERT_EQ(GetCmsEnvelopedDataRecipientInfo(from, 0, &found, &kind), 0u);
    ASSERT_EQ(kind, CmsRecipientKindKeyTransport);
    auto* const source = static_cast<KeyTrans*>(found);
    CarryVersion(GetKeyTransVersion, source, SetKeyTransVersion, recipient.get());
    CarryIdentifier(source, recipient.get());
    CarryAlgorithm(GetKeyTransKeyEncryptionAlgorithmOidAndParameters, source,
                   SetKeyTransKeyEncryptionAlgorithmOidAndParameters, recipient.get());
    CarryBytes(GetKeyTransEncryptedKey, source, SetKeyTransEncryptedKey, recipient.get());
    EXPECT_EQ(AddCmsEnvelopedDataRecipientInfo(to, kind, recipient.get()), 0u);
    (void)recipient.release();
}

// The content of a ContentInfo, rebuilt field by field.
Bytes Rebuilt(const Bytes& content, const Bytes& certificate) {
    const auto from = support::Decoded<FreeCmsEnvelopedData>(DecodeCmsEnvelopedData, content);
    const auto to = support::Make<FreeCmsEnvelopedData>(CreateCmsEnvelopedData);
    CarryVersion(GetCmsEnvelopedDataVersion, from.get(), SetCmsEnvelopedDataVersion, to.get());
    CarryRecipient(from.get(), to.get());
    EXPECT_EQ(SetCmsEnvelopedDataEncryptedContentTypeOid(
                  to.get(), Fetch(GetCmsEnvelopedDataEncryptedContentTypeOid, from.get()).data()),
              0u);
    CarryAlgorithm(GetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters, from.get(),
                   SetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters, to.get());
    CarryBytes(GetCmsEnvelopedDataEncryptedContent, from.get(), SetCmsEnvelopedDataEncryptedContent, to.get());
    EXPECT_EQ(Fetch(EncodeCmsEnvelopedData, to.get()), content) << "nothing is lost";
    EXPECT_EQ(AddCmsEnvelopedDataEncodedCertificate(to.get(), 1, certificate.data(), Size(certificate)), 0u);
    return Fetch(EncodeCmsEnvelopedData, to.get());
}

TEST(Interop, OpenSslOpensEnvelopedDataThatWasPutTogetherAgain) {
    const auto key = Peer<EVP_PKEY_free>(EVP_RSA_gen(2048));
    const auto certificate = CertificateOf(key.get());
    const Bytes text(1000, 'x'), der = DerOf(certificate.get(), i2d_X509);
    const auto recipients = Peer<FreeStack>(sk_X509_new_null());
    ASSERT_EQ(X509_up_ref(certificate.get()) & sk_X509_push(recipients.get(), certificate.get()), 1);
    for (const unsigned flags : {CMS_BINARY, CMS_BINARY | CMS_USE_KEYID}) {
        SCOPED_TRACE(flags);
        const auto in = Peer<BIO_free>(BIO_new_mem_buf(text.data(), 1000)), out = Peer<BIO_free>(BIO_new(BIO_s_mem()));
        const auto written =
            Peer<CMS_ContentInfo_free>(CMS_encrypt(recipients.get(), in.get(), EVP_aes_256_cbc(), flags));
        const auto info =
            support::Decoded<FreeCmsContentInfo>(DecodeCmsContentInfo, DerOf(written.get(), i2d_CMS_ContentInfo));
        const auto again = support::Make<FreeCmsContentInfo>(CreateCmsContentInfo);
        const Bytes content = Rebuilt(Fetch(GetCmsContentInfoContent, info.get()), der);
        Check({{SetCmsContentInfoTypeOid(again.get(), Fetch(GetCmsContentInfoTypeOid, info.get()).data()), 0},
               {SetCmsContentInfoContent(again.get(), content.data(), Size(content)), 0}});

        const Bytes encoded = Fetch(EncodeCmsContentInfo, again.get());
        const uint8_t* at = encoded.data();
        const auto read =
            Peer<CMS_ContentInfo_free>(d2i_CMS_ContentInfo(nullptr, &at, static_cast<long>(encoded.size())));
        EXPECT_EQ(CMS_decrypt(read.get(), key.get(), certificate.get(), nullptr, out.get(), flags), 1);
        char* plain = nullptr;
        const long length = BIO_get_mem_data(out.get(), &plain);
        EXPECT_EQ(Bytes(plain, plain + length), text);
        const auto carried = Peer<FreeStack>(CMS_get1_certs(read.get()));
        ASSERT_EQ(sk_X509_num(carried.get()), 1);
        EXPECT_EQ(DerOf(sk_X509_value(carried.get(), 0), i2d_X509), der);
    }
}

}  // namespace
