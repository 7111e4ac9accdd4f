// Who takes part: an authority, the signers that it issues certificates to, and one that gives time-stamps.
#pragma once

#include <string>

#include "../issuing/certificate.h"

namespace examples {

// A key, and the certificate that says whose it is.
struct Identity {
    const Suite& suite;
    Key key;
    OwnedCertificate certificate;

    Bytes Der() const { return Require(Get(EncodeCertificate, certificate), "encoding a certificate"); }
};

// The root of issue, under a name that is a UTF8String: texts about signers show the letters of no narrower type.
inline Identity MakeAuthority(const Suite& suite) {
    Key key = suite.generateKey();
    OwnedCertificate certificate = IssueRoot(suite, key.get());
    const OwnedName name = MakeExampleName("Учебный УЦ");
    Require(SetCertificateSubject(certificate, name), "setting the subject");
    Require(SetCertificateIssuer(certificate, name), "setting the issuer");
    SignCertificate(suite, key.get(), certificate);
    return {suite, std::move(key), std::move(certificate)};
}

// The one thing that a certificate is for.
struct Purpose {
    const char* oid;
    bool critical;
};

inline constexpr Purpose kEmailProtection = {"1.3.6.1.5.5.7.3.4", false};
inline constexpr Purpose kTimeStamping = {"1.3.6.1.5.5.7.3.8", true};  // RFC 3161 wants it critical

inline void AddPurpose(X509Extensions extensions, const Purpose& purpose) {
    Owned<ExtensionExtendedKeyUsage, FreeExtensionExtendedKeyUsage> list;
    Require(CreateExtensionExtendedKeyUsage(list.Out()), "making a list of usages");
    Require(AddExtensionExtendedKeyUsage(list, Oid(purpose.oid).data()), "adding a usage");
    AddExtension(extensions, "2.5.29.37", purpose.critical, Get(EncodeExtensionExtendedKeyUsage, list));
}

inline Identity MakeIdentity(const Identity& authority, const std::string& name, const Purpose& purpose) {
    const Suite& suite = authority.suite;
    Key key = suite.generateKey();
    OwnedCertificate certificate = BeginCertificate(MakeExampleName(name), key.get(), 365);
    Require(SetCertificateIssuer(certificate, SubjectOf(authority.certificate)), "setting the issuer");
    const X509Extensions extensions = ExtensionsOf(GetCertificateExtensions, certificate);
    AddKeyUsage(extensions, kDigitalSignature);
    AddPurpose(extensions, purpose);
    Require(SetCertificateSubjectKeyIdentifier(certificate), "setting the subject key identifier");
    Require(SetCertificateAuthorityKeyIdentifier(certificate, authority.certificate),
            "setting the authority key identifier");
    SignCertificate(suite, authority.key.get(), certificate);
    return {suite, std::move(key), std::move(certificate)};
}

// --- Digests ---

inline const EVP_MD* DigestOf(const Suite& suite) {
    const EVP_MD* digest = EVP_get_digestbyname(suite.digest);
    RequireOpenSsl(digest != nullptr, "finding a digest");
    return digest;
}

inline Bytes DigestOid(const Suite& suite) {
    char dotted[80];
    const int length = OBJ_obj2txt(dotted, sizeof dotted, OBJ_nid2obj(EVP_MD_get_type(DigestOf(suite))), 1);
    RequireOpenSsl(length > 0 && length < static_cast<int>(sizeof dotted), "naming a digest");
    return Oid(dotted);
}

inline Bytes Digest(const Suite& suite, const Bytes& bytes) {
    Bytes digest(EVP_MAX_MD_SIZE);
    unsigned length = 0;
    RequireOpenSsl(EVP_Digest(bytes.data(), bytes.size(), digest.data(), &length, DigestOf(suite), nullptr) > 0,
                   "digesting");
    digest.resize(length);
    return digest;
}

}  // namespace examples
