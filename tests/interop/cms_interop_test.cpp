// OpenSSL as the oracle: real messages, in any encoding, hold what it finds in them. It reads all of a message and has
// getters for a part of it: what it writes then is DER, and is taken apart for the rest.

#include <openssl/cms.h>

#include <numeric>

#include "interop/peer.h"
#include "tlvforge/enveloped.h"

using namespace peer;
using Fields = std::vector<Bytes>;

namespace {

Bytes VersionOf(auto get, auto* of) {
    int32_t version = -1;
    EXPECT_STATUS(StatusOk, get(of, &version));
    return {2, 1, uint8_t(version)};
}
// In the order of DER.
Bytes SetOf(Fields members, uint8_t identifier = 49) {
    std::sort(members.begin(), members.end());
    return Tlv(identifier, std::accumulate(members.begin(), members.end(), Bytes(), support::operator+));
}
Bytes SignerOf(CmsSignerInfo* of) {
    X509Name* issuer = nullptr;
    const auto [serial, keyId] = Outputs(GetCmsSignerInfoSignerIdentifier, of, &issuer, kOut, kOut);
    const Bytes id = issuer != nullptr ? Tlv(48, NameOf(issuer) + Tlv(2, serial)) : Tlv(0x80, keyId);
    return Tlv(48, VersionOf(GetCmsSignerInfoVersion, of) + id +
                       AlgorithmOf(GetCmsSignerInfoDigestAlgorithmOidAndParameters, of) +
                       TlvOr(AttributesOf(GetCmsSignerInfoSignedAttributes, of), 0xA0) +
                       AlgorithmOf(GetCmsSignerInfoSignatureAlgorithmOidAndParameters, of) +
                       Tlv(4, Fetch(GetCmsSignerInfoSignature, of)) +
                       TlvOr(AttributesOf(GetCmsSignerInfoUnsignedAttributes, of), 0xA1));
}

Fields FieldsOf(CmsSignedData* of) {
    Fields digests, certificates, signers;
    walk::Each(GetCmsSignedDataDigestAlgorithmsCount, of, [&](uint32_t i) {
        digests.push_back(AlgorithmOf(GetCmsSignedDataDigestAlgorithmOidAndParameters, of, i));
    });
    walk::Each(GetCmsSignedDataCertificatesCount, of, [&](uint32_t i) {
        uint8_t kind = 0;
        certificates.push_back(Fetch(GetCmsSignedDataEncodedCertificate, of, i, &kind));
    });
    walk::Each(GetCmsSignedDataSignerInfosCount, of, [&](uint32_t i) {
        CmsSignerInfo* signer = nullptr;
        EXPECT_STATUS(StatusOk, GetCmsSignedDataSignerInfo(of, i, &signer));
        signers.push_back(SignerOf(signer));
    });
    const Bytes content = TlvOr(TlvOr(Fetch(GetCmsSignedDataContent, of), 4), 0xA0);
    Fields fields = {VersionOf(GetCmsSignedDataVersion, of), SetOf(digests),
                     Tlv(48, OidTlvOf(GetCmsSignedDataContentTypeOid, of) + content), SetOf(signers)};
    if (!certificates.empty()) fields.insert(fields.end() - 1, SetOf(certificates, 0xA0));
    return fields;
}

void CompareSigned(Comparison& both, const Bytes& content, const Bytes& theirs) {
    const auto ours = walk::Make<FreeCmsSignedData>(DecodeCmsSignedData, content.data(), Size(content));
    if (!both.Same("reading", ours != nullptr, true)) return;
    both.Same("fields", FieldsOf(ours.get()), Elements(theirs));
    both.Same("encoding", Fetch(EncodeCmsSignedData, ours.get()), theirs);
}
void CompareEnveloped(Comparison& both, const Bytes& content, const Bytes& theirs) {
    const auto ours = walk::Make<FreeCmsEnvelopedData>(DecodeCmsEnvelopedData, content.data(), Size(content));
    if (!both.Same("reading", ours != nullptr, true)) return;
    const Fields parts = Elements(theirs);
    const auto info = std::find_if(parts.begin(), parts.end(), [](const Bytes& part) { return part[0] == 0x30; });
    const Fields encrypted = info != parts.end() ? Elements(*info) : Fields();
    both.Same("algorithm", AlgorithmOf(GetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters, ours.get()),
              At(encrypted, 1));
    both.Same("content", TlvOr(Fetch(GetCmsEnvelopedDataEncryptedContent, ours.get()), 0x80), At(encrypted, 2));
    both.Same("encoding", Fetch(EncodeCmsEnvelopedData, ours.get()), theirs);
}

// What is written after the content was taken apart, too.
void CompareMessage(Comparison& both, CmsContentInfo* ours, CMS_ContentInfo* theirs) {
    const ASN1_OBJECT* const type = CMS_get0_type(theirs);
    const Bytes content = Fetch(GetCmsContentInfoContent, ours);
    const Bytes expected = At(Elements(At(Elements(DerOf(theirs, i2d_CMS_ContentInfo)), 1)), 0);
    both.Same("type", OidTlvOf(GetCmsContentInfoTypeOid, ours), DerOf(type, i2d_ASN1_OBJECT));
    if (OBJ_obj2nid(type) == NID_pkcs7_signed) return CompareSigned(both, content, expected);
    if (OBJ_obj2nid(type) == NID_pkcs7_enveloped) return CompareEnveloped(both, content, expected);
    both.Same("content", content, expected);
}

TEST(Interop, MessagesAreReadAsOpenSslReadsThem) {
    SKIP_WITHOUT_CORPUS();
    Comparison both(113,
                    {
                        {"cms-signed/gen-certscrls.der", "reading", "ordinary CRLs are refused"},
                        {"cms-signed/rpkirs-apnic-testbed-response.der", "reading", "ordinary CRLs are refused"},
                        {"cms-signed/rpkirs-issue.der", "reading", "ordinary CRLs are refused"},
                        {"cms-signed/pkits-pkits-ee.der", "fields", "an empty set of CRLs looks like none"},
                        {"cms-other/gen-data-stream.der", "content", "what isn't taken apart stays as it stands"},
                        {"cms-other/gen-digest-stream.der", "content", "what isn't taken apart stays as it stands"},
                        {"cms-other/gen-encdata-stream.der", "content", "what isn't taken apart stays as it stands"},
                    });
    for (const char* folder : {"cms-signed", "cms-enveloped", "cms-other"}) {
        CompareFolder<FreeCmsContentInfo, CMS_ContentInfo_free>(both, folder, DecodeCmsContentInfo, d2i_CMS_ContentInfo,
                                                                CompareMessage);
    }
}

}  // namespace
