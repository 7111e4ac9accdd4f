// OpenSSL as the writer and the reader of encrypted messages: one that it wrote
// is taken apart, and it opens what is put together of the parts.

#include "tlvforge/enveloped.h"

#include <openssl/cms.h>
#include <openssl/rsa.h>

#include "interop/peer.h"

using namespace peer;
using walk::kOut;

namespace {

void FreeStack(STACK_OF(X509) * stack) { sk_X509_pop_free(stack, X509_free); }

void CarryAlgorithm(auto get, auto* from, auto set, auto* to) {
    const auto [oid, parameters] = Outputs(get, from, kOut, kOut);
    EXPECT_EQ(set(to, oid.data(), parameters.data(), Size(parameters)), 0u);
}
void CarryBytes(auto get, auto* from, auto set, auto* to) {
    const Bytes bytes = Fetch(get, from);
    EXPECT_EQ(set(to, bytes.data(), Size(bytes)), 0u);
}

// The content of a ContentInfo, rebuilt field by field.
Bytes Rebuilt(const Bytes& content, const Bytes& certificate) {
    const auto decoded = Decoded<FreeCmsEnvelopedData>(DecodeCmsEnvelopedData, content);
    const auto made = Make<FreeCmsEnvelopedData>(CreateCmsEnvelopedData);
    CmsEnvelopedData *const from = decoded.get(), *const to = made.get();
    KeyTrans* const recipient = Make<FreeKeyTrans>(CreateKeyTrans).release();
    void* lent = nullptr;
    X509Name* issuer = nullptr;
    int32_t version = -1, recipientVersion = -1;
    uint32_t kind = 0;
    EXPECT_EQ(GetCmsEnvelopedDataRecipientInfo(from, 0, &lent, &kind), 0u);
    auto* const source = static_cast<KeyTrans*>(lent);
    uint8_t serial[64], keyId[64];
    uint32_t serialLength = sizeof serial, keyIdLength = sizeof keyId;
    EXPECT_EQ(GetKeyTransRecipientIdentifier(source, &issuer, serial, &serialLength, keyId, &keyIdLength), 0u);
    const Bytes type = Fetch(GetCmsEnvelopedDataEncryptedContentTypeOid, from);
    Expect(0, {GetCmsEnvelopedDataVersion(from, &version), SetCmsEnvelopedDataVersion(to, uint32_t(version)),
               GetKeyTransVersion(source, &recipientVersion), SetKeyTransVersion(recipient, uint32_t(recipientVersion)),
               issuer != nullptr
                   ? SetKeyTransRecipientIdentifierIssuerAndSerialNumber(recipient, issuer, serial, serialLength)
                   : SetKeyTransRecipientIdentifierSubjectKeyIdentifier(recipient, keyId, keyIdLength),
               AddCmsEnvelopedDataRecipientInfo(to, kind, recipient),
               SetCmsEnvelopedDataEncryptedContentTypeOid(to, type.data())});
    CarryAlgorithm(GetKeyTransKeyEncryptionAlgorithmOidAndParameters, source,
                   SetKeyTransKeyEncryptionAlgorithmOidAndParameters, recipient);
    CarryBytes(GetKeyTransEncryptedKey, source, SetKeyTransEncryptedKey, recipient);
    CarryAlgorithm(GetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters, from,
                   SetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters, to);
    CarryBytes(GetCmsEnvelopedDataEncryptedContent, from, SetCmsEnvelopedDataEncryptedContent, to);
    EXPECT_EQ(Fetch(EncodeCmsEnvelopedData, to), content) << "nothing is lost";
    EXPECT_EQ(AddCmsEnvelopedDataEncodedCertificate(to, 1, certificate.data(), Size(certificate)), 0u);
    return Fetch(EncodeCmsEnvelopedData, to);
}

TEST(Interop, OpenSslOpensEnvelopedDataThatWasPutTogetherAgain) {
    const walk::Owned<EVP_PKEY_free> key(EVP_RSA_gen(2048));
    const auto certificate = CertificateOf(key.get());
    const Bytes text(1000, 'x'), der = DerOf(certificate.get(), i2d_X509);
    const walk::Owned<FreeStack> recipients(sk_X509_new_null());
    ASSERT_EQ(X509_up_ref(certificate.get()) & sk_X509_push(recipients.get(), certificate.get()), 1);
    for (const unsigned flags : {CMS_BINARY, CMS_BINARY | CMS_USE_KEYID}) {
        SCOPED_TRACE(flags);
        const walk::Owned<BIO_free> in(BIO_new_mem_buf(text.data(), 1000)), out(BIO_new(BIO_s_mem()));
        const walk::Owned<CMS_ContentInfo_free> written(
            CMS_encrypt(recipients.get(), in.get(), EVP_aes_256_cbc(), flags));
        const auto info = Decoded<FreeCmsContentInfo>(DecodeCmsContentInfo, DerOf(written.get(), i2d_CMS_ContentInfo));
        const Bytes content = Rebuilt(Fetch(GetCmsContentInfoContent, info.get()), der);
        EXPECT_EQ(SetCmsContentInfoContent(info.get(), content.data(), Size(content)), 0u);
        const auto read = FromDer<CMS_ContentInfo_free>(d2i_CMS_ContentInfo, Fetch(EncodeCmsContentInfo, info.get()));
        EXPECT_EQ(CMS_decrypt(read.get(), key.get(), certificate.get(), nullptr, out.get(), flags), 1);
        char* plain = nullptr;
        const long length = BIO_get_mem_data(out.get(), &plain);
        EXPECT_EQ(Bytes(plain, plain + length), text);
        const walk::Owned<FreeStack> carried(CMS_get1_certs(read.get()));
        ASSERT_EQ(sk_X509_num(carried.get()), 1);
        EXPECT_EQ(DerOf(sk_X509_value(carried.get(), 0), i2d_X509), der);
    }
}

}  // namespace
