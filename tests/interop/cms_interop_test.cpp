// OpenSSL as the oracle: real messages, in any encoding, hold the content and
// the signers that it finds in them.

#include <openssl/cms.h>

#include "interop/peer.h"

using namespace peer;

namespace {

void ExpectSigner(CmsSignerInfo* ours, CMS_SignerInfo* peer) {
    ASN1_OCTET_STRING* peerKeyId = nullptr;
    X509_NAME* peerIssuer = nullptr;
    ASN1_INTEGER* peerSerial = nullptr;
    EXPECT_EQ(CMS_SignerInfo_get0_signer_id(peer, &peerKeyId, &peerIssuer, &peerSerial), 1);
    X509Name* issuer = nullptr;
    const auto [serial, keyId] = Outputs(GetCmsSignerInfoSignerIdentifier, ours, &issuer, walk::kOut, walk::kOut);
    EXPECT_EQ(issuer == nullptr ? serial : Fetch(EncodeX509Name, issuer) + Tlv(2, serial),
              DerOf(peerIssuer, i2d_X509_NAME) + DerOf(peerSerial, i2d_ASN1_INTEGER));
    EXPECT_EQ(keyId, ContentOf(peerKeyId));
    EXPECT_EQ(Fetch(GetCmsSignerInfoSignature, ours), ContentOf(CMS_SignerInfo_get0_signature(peer)));
    RsaAttributes attributes = nullptr;
    uint32_t count = 0;
    EXPECT_EQ(GetCmsSignerInfoSignedAttributes(ours, &attributes), 0u);
    EXPECT_EQ(GetRsaAttributesAttributesCount(attributes, &count), 0u);
    EXPECT_EQ(static_cast<int>(count), std::max(CMS_signed_get_attr_count(peer), 0));
}

TEST(Interop, ReadsRealMessagesAsOpenSslDoes) {
    SKIP_WITHOUT_CORPUS();
    int compared = 0, signers = 0;
    for (const auto& [name, bytes] : Corpus("cms-signed")) {
        SCOPED_TRACE(name);
        const auto peer = FromDer<CMS_ContentInfo_free>(d2i_CMS_ContentInfo, bytes);
        const auto info = Decoded<FreeCmsContentInfo>(DecodeCmsContentInfo, bytes);
        const Bytes content = Fetch(GetCmsContentInfoContent, info.get());
        const auto ours = walk::Make<FreeCmsSignedData>(DecodeCmsSignedData, content.data(), Size(content));
        if (!peer || !ours) continue;  // refused by one of the two
        ++compared;
        const ASN1_OCTET_STRING* const* expected = CMS_get0_content(peer.get());
        EXPECT_EQ(Fetch(GetCmsSignedDataContent, ours.get()), ContentOf(expected != nullptr ? *expected : nullptr));
        const STACK_OF(CMS_SignerInfo)* infos = CMS_get0_SignerInfos(peer.get());
        int next = 0;
        walk::Each(GetCmsSignedDataSignerInfosCount, ours.get(), [&](uint32_t i) {
            CmsSignerInfo* signer = nullptr;
            ASSERT_EQ(GetCmsSignedDataSignerInfo(ours.get(), i, &signer), 0u);
            ASSERT_LT(next, sk_CMS_SignerInfo_num(infos));
            ExpectSigner(signer, sk_CMS_SignerInfo_value(infos, next++));
        });
        EXPECT_EQ(next, std::max(sk_CMS_SignerInfo_num(infos), 0));
        signers += next;
    }
    EXPECT_GE(compared, 45);
    EXPECT_GE(signers, 40);
}

}  // namespace
