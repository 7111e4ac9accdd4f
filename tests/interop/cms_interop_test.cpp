// OpenSSL as the oracle: real messages, in any encoding, hold the content and the signers that it
// finds in them.

#include <openssl/cms.h>
#include <openssl/x509.h>

#include "support.h"

using support::Bytes;
using support::Fetch;

namespace {

using Peer = std::unique_ptr<CMS_ContentInfo, decltype(&CMS_ContentInfo_free)>;

Bytes BytesOf(const ASN1_STRING* text) {
    if (text == nullptr) return {};
    return Bytes(ASN1_STRING_get0_data(text), ASN1_STRING_get0_data(text) + ASN1_STRING_length(text));
}

void ExpectSigner(CmsSignerInfo* signer, CMS_SignerInfo* expected) {
    ASN1_OCTET_STRING* keyId = nullptr;
    X509_NAME* issuer = nullptr;
    ASN1_INTEGER* serial = nullptr;
    ASSERT_EQ(CMS_SignerInfo_get0_signer_id(expected, &keyId, &issuer, &serial), 1);
    X509Name* name = nullptr;
    Bytes number(100), id(100);
    uint32_t numberLength = 100, idLength = 100;
    ASSERT_EQ(GetCmsSignerInfoSignerIdentifier(signer, &name, number.data(), &numberLength, id.data(), &idLength), 0u);
    number.resize(numberLength);
    id.resize(idLength);
    EXPECT_EQ(id, BytesOf(keyId));
    EXPECT_EQ(name == nullptr, issuer == nullptr);
    if (issuer != nullptr && name != nullptr) {
        uint8_t* der = nullptr;
        const int length = i2d_X509_NAME(issuer, &der);
        EXPECT_EQ(Fetch(EncodeX509Name, name), Bytes(der, der + length));
        OPENSSL_free(der);
        if (number[0] == 0) number.erase(number.begin());  // OpenSSL gives the magnitude
        EXPECT_EQ(number, BytesOf(serial));
    }
    EXPECT_EQ(Fetch(GetCmsSignerInfoSignature, signer), BytesOf(CMS_SignerInfo_get0_signature(expected)));
    RsaAttributes attributes = nullptr;
    uint32_t count = 0;
    EXPECT_EQ(GetCmsSignerInfoSignedAttributes(signer, &attributes), 0u);
    EXPECT_EQ(GetRsaAttributesAttributesCount(attributes, &count), 0u);
    EXPECT_EQ(static_cast<int>(count), std::max(CMS_signed_get_attr_count(expected), 0));
}

TEST(Interop, ReadsRealMessagesAsOpenSslDoes) {
    SKIP_WITHOUT_CORPUS();
    int compared = 0, signers = 0;
    for (const auto& [name, bytes] : support::Corpus("cms-signed")) {
        SCOPED_TRACE(name);
        const uint8_t* at = bytes.data();
        const Peer peer(d2i_CMS_ContentInfo(nullptr, &at, static_cast<long>(bytes.size())), CMS_ContentInfo_free);
        const auto info = support::Decoded<FreeCmsContentInfo>(DecodeCmsContentInfo, bytes);
        const Bytes content = Fetch(GetCmsContentInfoContent, info.get());
        CmsSignedData* decoded = nullptr;
        const Status status = DecodeCmsSignedData(content.data(), support::Size(content), &decoded);
        const walk::Owned<FreeCmsSignedData> message(decoded);
        if (peer == nullptr || status != StatusOk) continue;  // refused by one of the two
        const ASN1_OCTET_STRING* const* expected = CMS_get0_content(peer.get());
        EXPECT_EQ(Fetch(GetCmsSignedDataContent, message.get()), BytesOf(expected != nullptr ? *expected : nullptr));
        const STACK_OF(CMS_SignerInfo)* infos = CMS_get0_SignerInfos(peer.get());
        uint32_t count = 0;
        ASSERT_EQ(GetCmsSignedDataSignerInfosCount(message.get(), &count), 0u);
        ASSERT_EQ(static_cast<int>(count), std::max(sk_CMS_SignerInfo_num(infos), 0));
        for (uint32_t i = 0; i < count; ++i, ++signers) {
            CmsSignerInfo* signer = nullptr;
            ASSERT_EQ(GetCmsSignedDataSignerInfo(message.get(), i, &signer), 0u);
            ExpectSigner(signer, sk_CMS_SignerInfo_value(infos, static_cast<int>(i)));
        }
        ++compared;
    }
    EXPECT_GE(compared, 45);
    EXPECT_GE(signers, 40);
}

}  // namespace
