// verify ROOT CRL MESSAGE: verifies an attached message whose signers have certificates of one authority. The library
// supplies the bytes that were signed, libcrypto does the arithmetic.

#include <cstdio>

#include "libcrypto.h"
#include "usage.h"

using namespace tlvforge;
using namespace examples;

namespace {

constexpr char kUsage[] =
    "usage: verify ROOT CRL MESSAGE\n\n"
    "Verifies every signature of an attached message against a root and its list of revoked certificates, both PEM.\n";

constexpr Oid kKeyUsage("2.5.29.15"), kMessageDigest("1.2.840.113549.1.9.4");

void Require(bool fits, const std::string& reason) {
    if (!fits) throw std::runtime_error(reason);
}

struct Anchor {
    Handle<Certificate> root;
    Handle<X509Crl> crl;
    Key key;
};

bool IsNow(TimePoint from, TimePoint to) {
    const auto now = std::chrono::system_clock::now();
    return from <= now && now <= to;
}

// A critical extension that isn't known must not be passed over; these are looked at here, or say nothing about
// signers.
void RequireKnownExtensions(const Handle<Certificate>& certificate) {
    constexpr Oid kBasicConstraints("2.5.29.19"), kExtendedKeyUsage("2.5.29.37");
    for (auto& [oid, critical, value] : Extensions(certificate)) {
        const bool known = oid == kKeyUsage || oid == kBasicConstraints || oid == kExtendedKeyUsage;
        Require(known || !critical, "a critical extension " + oid.text());
    }
}

Anchor MakeAnchor(const Bytes& root, const Bytes& crl) {
    Anchor anchor{Decode<Certificate>(root), Decode<X509Crl>(crl), nullptr};
    anchor.key = PublicKeyOf(anchor.root);
    X509Name* const name = Get(GetCertificateSubject, anchor.root);
    Require(Same(CompareX509Names, Get(GetX509CrlIssuer, anchor.crl), name) &&
                Verifies(anchor.key, Get(GetX509CrlToBeSignedPart, anchor.crl), Get(GetX509CrlSignature, anchor.crl)),
            "the list isn't the root's");
    Require(IsNow(Get<TimePoint>(GetX509CrlThisUpdate, anchor.crl), Get<TimePoint>(GetX509CrlNextUpdate, anchor.crl)),
            "the list is out of date");
    return anchor;
}

void RequireTrusted(const Handle<Certificate>& certificate, const Anchor& anchor) {
    X509Name* const issuer = Get(GetCertificateIssuer, certificate);
    Require(Same(CompareX509Names, issuer, Get(GetCertificateSubject, anchor.root)) &&
                Verifies(anchor.key, Get(GetCertificateToBeSignedPart, certificate),
                         Get(GetCertificateSignature, certificate)),
            "a certificate that the root didn't issue");
    Require(IsNow(Get<TimePoint>(GetCertificateValidNotBefore, certificate),
                  Get<TimePoint>(GetCertificateValidNotAfter, certificate)),
            "a certificate that isn't valid now");
    RequireKnownExtensions(certificate);
    const auto usage = Find(GetCertificateExtensionValue, certificate, kKeyUsage);
    constexpr uint32_t kDigitalSignature = 0x80, kNonRepudiation = 0x40;
    Require(!usage || (Get(DecodeExtensionKeyUsage, *usage) & (kDigitalSignature | kNonRepudiation)) != 0,
            "a key that isn't for signatures");
    const Bytes serial = Get(GetCertificateSerialNumber, certificate);
    for (auto& entry : Revoked(anchor.crl)) {
        Require(entry.serialNumber != serial, "revoked at " + ToText(entry.revocationDate));
    }
}

// The signature covers the attributes, and these the digest of the content.
void RequireSigned(const CmsSignerInfo* signer, RsaAttributes attributes, const Key& key, const Bytes& content) {
    const Bytes covered = Get(GetCmsSignerInfoEncodedSignedAttributes, signer);
    const Bytes signature = Get(GetCmsSignerInfoSignature, signer);
    if (covered.empty()) return Require(Verifies(key, content, signature), "another content");
    Require(Verifies(key, covered, signature), "the attributes have been changed");
    const uint32_t index = Get(FindRsaAttributesAttribute, attributes, kMessageDigest);
    Require(Get(GetRsaAttributesAttributeValuesCount, attributes, index) == 1, "several digests");
    const Bytes value = Get(GetRsaAttributesAttributeValue, attributes, index, 0);
    Require(Get(DecodeRsaAttributeMessageDigestValue, value) == Digest(SuiteOf(key), content), "another content");
}

void Verify(const Anchor& anchor, const Bytes& message) {
    const auto signedData = Decode<CmsSignedData>(Get(GetCmsContentInfoContent, Decode<CmsContentInfo>(message)));
    const Bytes content = Get(GetCmsSignedDataContent, signedData);
    for (CmsSignerInfo* signer : Members(signedData)) {
        bool found = false;
        for (auto& [kind, der] :
             List(GetCmsSignedDataCertificatesCount, GetCmsSignedDataEncodedCertificate, signedData)) {
            if (kind != CmsCertificateKindCertificate) continue;
            const auto certificate = Decode<Certificate>(der);
            if (!Same(CompareSignerInfoAndCertificate, signer, certificate)) continue;
            RequireTrusted(certificate, anchor);
            RequireSigned(signer, Get(GetCmsSignerInfoSignedAttributes, signer), PublicKeyOf(certificate), content);
            std::printf("signed by %s\n", ToText(Get(GetCertificateSubject, certificate)).c_str());
            found = true;
            break;
        }
        Require(found, "a signer whose certificate isn't in the message");
    }
    Require(!Members(signedData).empty(), "nobody has signed");
}

}  // namespace

int main(int count, char** arguments) try {
    if (const auto status = AnswerUsage(kUsage, count, arguments, count == 4)) return *status;
    HasGost();
    Verify(MakeAnchor(ReadPem(arguments[1]), ReadPem(arguments[2])), ReadFile(arguments[3]));
} catch (const std::exception& failure) {
    std::fprintf(stderr, "NOT VERIFIED: %s\n", failure.what());
    return 1;
}
