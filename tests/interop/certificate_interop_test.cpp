// OpenSSL as the oracle: what it reads from real certificates, CRLs and requests, this library reads as well.

#include "interop/peer.h"

using namespace peer;

namespace {

Bytes KeyOf(const Bytes& algorithm, const Bytes& key) { return Tlv(48, algorithm + Tlv(3, Bytes{0} + key)); }

void CompareCertificate(Comparison& both, Certificate* ours, X509* theirs) {
    int32_t version = -1;
    LibraryTime time = {};
    X509Name *issuer = nullptr, *subject = nullptr;
    EXPECT_STATUS(StatusOk, GetCertificateVersion(ours, &version), GetCertificateIssuer(ours, &issuer),
                  GetCertificateSubject(ours, &subject));
    const Bytes algorithm = AlgorithmOf(GetCertificatePublicKeyAlgorithmOidAndParameters, ours);
    both.Same("version", version, X509_get_version(theirs));
    both.Same("serial number", Tlv(2, Fetch(GetCertificateSerialNumber, ours)),
              DerOf(X509_get_serialNumber(theirs), i2d_ASN1_INTEGER));
    both.Same("issuer", NameOf(issuer), DerOf(X509_get_issuer_name(theirs), i2d_X509_NAME));
    both.Same("subject", NameOf(subject), DerOf(X509_get_subject_name(theirs), i2d_X509_NAME));
    both.Time("notBefore", GetCertificateValidNotBefore(ours, &time), time, X509_get0_notBefore(theirs));
    both.Time("notAfter", GetCertificateValidNotAfter(ours, &time), time, X509_get0_notAfter(theirs));
    both.Same("key", KeyOf(algorithm, Fetch(GetCertificatePublicKey, ours)),
              DerOf(X509_get_X509_PUBKEY(theirs), i2d_X509_PUBKEY));
    both.Same("extensions", ExtensionsOf(GetCertificateExtensions, ours),
              Joined(X509_get0_extensions(theirs), i2d_X509_EXTENSION));
    both.Same("signed",
              SignedOf(GetCertificateToBeSignedPart, GetCertificateSignatureAlgorithmOidAndParameters,
                       GetCertificateSignature, ours),
              DerOf(theirs, i2d_X509));
    if (const auto* keyId = X509_get0_subject_key_id(theirs))
        both.Same("subject key", Fetch(GetCertificateSubjectKeyIdentifier, ours), ContentOf(keyId));
}

void CompareCrl(Comparison& both, X509Crl* ours, X509_CRL* theirs) {
    int32_t version = 0;  // without the field it is version 1, written as 0
    LibraryTime time = {};
    X509Name* issuer = nullptr;
    EXPECT_STATUS(StatusOk, GetX509CrlIssuer(ours, &issuer));
    (void)GetX509CrlVersion(ours, &version);
    both.Same("version", version, X509_CRL_get_version(theirs));
    both.Same("issuer", NameOf(issuer), DerOf(X509_CRL_get_issuer(theirs), i2d_X509_NAME));
    both.Time("thisUpdate", GetX509CrlThisUpdate(ours, &time), time, X509_CRL_get0_lastUpdate(theirs));
    both.Time("nextUpdate", GetX509CrlNextUpdate(ours, &time), time, X509_CRL_get0_nextUpdate(theirs));
    both.Same("extensions", ExtensionsOf(GetX509CrlExtensions, ours),
              Joined(X509_CRL_get0_extensions(theirs), i2d_X509_EXTENSION));
    both.Same(
        "signed",
        SignedOf(GetX509CrlToBeSignedPart, GetX509CrlSignatureAlgorithmOidAndParameters, GetX509CrlSignature, ours),
        DerOf(theirs, i2d_X509_CRL));
    const STACK_OF(X509_REVOKED)* const list = X509_CRL_get_REVOKED(theirs);
    int entries = 0;
    const uint32_t count = walk::Lent(GetX509CrlRevokedCertificateCount, ours);
    if (!both.Same("entries", int(count), std::max(sk_X509_REVOKED_num(list), 0))) return;
    walk::Each(GetX509CrlRevokedCertificateCount, ours, [&](uint32_t i) {
        const X509_REVOKED* const entry = sk_X509_REVOKED_value(list, entries++);
        const auto get = [=](auto* of, auto* out) { return GetX509CrlRevokedCertificateExtensions(of, i, out); };
        both.Same("entry serial", Tlv(2, Fetch(GetX509CrlRevokedCertificateSerialNumber, ours, i)),
                  DerOf(X509_REVOKED_get0_serialNumber(entry), i2d_ASN1_INTEGER));
        both.Time("entry date", GetX509CrlRevokedCertificateRevokationDate(ours, i, &time), time,
                  X509_REVOKED_get0_revocationDate(entry));
        both.Same("entry extensions", ExtensionsOf(get, ours),
                  Joined(X509_REVOKED_get0_extensions(entry), i2d_X509_EXTENSION));
    });
}

void FreeStack(STACK_OF(X509_EXTENSION) * stack) { sk_X509_EXTENSION_pop_free(stack, X509_EXTENSION_free); }

void CompareRequest(Comparison& both, PKCS10CertReq* ours, X509_REQ* theirs) {
    int32_t version = -1;
    X509Name* subject = nullptr;
    EXPECT_STATUS(StatusOk, GetPKCS10CertReqVersion(ours, &version), GetPKCS10CertReqSubject(ours, &subject));
    const Bytes algorithm = AlgorithmOf(GetPKCS10CertReqPublicKeyAlgorithmOidAndParameters, ours);
    const auto extensions = walk::Make<FreeX509Extensions>(GetPKCS10CertReqExtensions, ours);
    const walk::Owned<FreeStack> requested(X509_REQ_get_extensions(theirs));
    both.Same("version", version, X509_REQ_get_version(theirs));
    both.Same("subject", NameOf(subject), DerOf(X509_REQ_get_subject_name(theirs), i2d_X509_NAME));
    both.Same("key", KeyOf(algorithm, Fetch(GetPKCS10CertReqPublicKey, ours)),
              DerOf(X509_REQ_get_X509_PUBKEY(theirs), i2d_X509_PUBKEY));
    both.Same("attributes", AttributesOf(GetPKCS10CertReqAttributes, ours),
              Joined(theirs, X509_REQ_get_attr_count, X509_REQ_get_attr, i2d_X509_ATTRIBUTE));
    both.Same("extensions", ExtensionsOf(extensions.get()), Joined(requested.get(), i2d_X509_EXTENSION));
    both.Same("signed",
              SignedOf(GetPKCS10CertReqToBeSignedPart, GetPKCS10CertReqSignatureAlgorithmOidAndParameters,
                       GetPKCS10CertReqSignature, ours),
              DerOf(theirs, i2d_X509_REQ));
}

TEST(Interop, CertificatesCrlsAndRequestsAreReadAsOpenSslReadsThem) {
    SKIP_WITHOUT_CORPUS();
    Comparison crls(38), requests(31);
    Comparison certificates(120, {{"cert/pkits-invaliddsasignaturetest6ee.der", "signed", "unused bits are dropped"}});
    CompareFolder<FreeCertificate, X509_free>(certificates, "cert", DecodeCertificate, d2i_X509, CompareCertificate);
    CompareFolder<FreeX509Crl, X509_CRL_free>(crls, "crl", DecodeX509Crl, d2i_X509_CRL, CompareCrl);
    CompareFolder<FreePKCS10CertReq, X509_REQ_free>(requests, "csr", DecodePKCS10CertReq, d2i_X509_REQ, CompareRequest);
}

}  // namespace
