// Certificates.
#pragma once

#include <string>
#include <vector>

#include "parts.h"

namespace examples {

inline constexpr uint32_t kNoPathLength = UINT32_MAX;

inline void AddBasicConstraints(X509Extensions extensions, bool isAuthority, uint32_t pathLength) {
    AddExtension(extensions, "2.5.29.19", true,
                 Get(EncodeExtensionBasicConstraints, static_cast<uint8_t>(isAuthority), pathLength));
}

inline void AddExtendedKeyUsage(X509Extensions extensions, const std::vector<const char*>& usages) {
    Owned<ExtensionExtendedKeyUsage, FreeExtensionExtendedKeyUsage> list;
    Require(CreateExtensionExtendedKeyUsage(list.Out()), "making a list of usages");
    for (const char* usage : usages) {
        Require(AddExtensionExtendedKeyUsage(list, Oid(usage).data()), "adding a usage");
    }
    AddExtension(extensions, "2.5.29.37", false, Get(EncodeExtensionExtendedKeyUsage, list));
}

// A certificate that lacks issuer, extensions and signature.
inline OwnedCertificate BeginCertificate(const X509Name* subject, EVP_PKEY* key, uint32_t days) {
    OwnedCertificate certificate;
    Require(CreateCertificate(certificate.Out()), "making a certificate");
    const Bytes serial = MakeSerialNumber();
    const LibraryTime notBefore = Now();
    const LibraryTime notAfter = DaysAfter(notBefore, days);
    Require(SetCertificateVersion(certificate, 2), "setting the version");  // version 3
    Require(SetCertificateSerialNumber(certificate, serial.data(), Size(serial)), "setting the serial number");
    Require(SetCertificateSubject(certificate, subject), "setting the subject");
    Require(SetCertificateValidNotBefore(certificate, &notBefore), "setting notBefore");
    Require(SetCertificateValidNotAfter(certificate, &notAfter), "setting notAfter");
    SetPublicKey(certificate, key, SetCertificatePublicKeyAlgorithmOidAndParameters, SetCertificatePublicKey);
    return certificate;
}

inline void SignCertificate(const Suite& suite, EVP_PKEY* issuerKey, Certificate* certificate) {
    SignDocument(suite, issuerKey, certificate, SetCertificateSignatureAlgorithmOidAndParameters,
                 GetCertificateToBeSignedPart, SetCertificateSignature);
}

inline OwnedCertificate IssueRoot(const Suite& suite, EVP_PKEY* key) {
    const OwnedName name = MakeExampleName("Example Root");
    OwnedCertificate root = BeginCertificate(name, key, 3650);
    Require(SetCertificateIssuer(root, name), "setting the issuer");
    const X509Extensions extensions = ExtensionsOf(GetCertificateExtensions, root);
    AddBasicConstraints(extensions, true, 0);
    AddKeyUsage(extensions, kKeyCertSign | kCrlSign);
    Require(SetCertificateSubjectKeyIdentifier(root), "setting the subject key identifier");
    SignCertificate(suite, key, root);
    return root;
}

inline OwnedCertificate IssueEnd(const Suite& suite, const std::string& host, EVP_PKEY* key, Certificate* root,
                                 EVP_PKEY* rootKey) {
    OwnedCertificate end = BeginCertificate(MakeExampleName(host), key, 365);
    Require(SetCertificateIssuer(end, SubjectOf(root)), "setting the issuer");
    const X509Extensions extensions = ExtensionsOf(GetCertificateExtensions, end);
    AddBasicConstraints(extensions, false, kNoPathLength);
    AddKeyUsage(extensions, kDigitalSignature);
    AddExtendedKeyUsage(extensions, {"1.3.6.1.5.5.7.3.1", "1.3.6.1.5.5.7.3.2"});  // serverAuth, clientAuth
    AddSubjectDnsName(extensions, host);
    Require(SetCertificateSubjectKeyIdentifier(end), "setting the subject key identifier");
    Require(SetCertificateAuthorityKeyIdentifier(end, root), "setting the authority key identifier");
    Require(SetCertificateExtensionCrlDistributionPoints(end, "http://crl.example.org/root.crl"),
            "setting the CRL distribution point");
    SignCertificate(suite, rootKey, end);
    return end;
}

}  // namespace examples
