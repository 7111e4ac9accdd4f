// Certificate revocation lists.
#pragma once

#include <vector>

#include "parts.h"

namespace examples {

// Numbers of CRLReason.
enum RevocationReason : uint32_t { kKeyCompromise = 1, kSuperseded = 4 };

struct Revocation {
    Bytes serial;
    LibraryTime date;
    RevocationReason reason;
    LibraryTime invalidSince;
};

// The key was known to others from the first day on.
inline Revocation RevokeForKeyCompromise(const Certificate* certificate) {
    LibraryTime notBefore = {};
    Require(GetCertificateValidNotBefore(certificate, &notBefore), "reading notBefore");
    return {Require(Get(GetCertificateSerialNumber, certificate), "reading the serial number"), Now(), kKeyCompromise,
            notBefore};
}

inline void AddRevocation(X509Crl* crl, const Revocation& revocation) {
    uint32_t index = 0;
    Require(
        AddX509CrlRevokedCertificate(crl, revocation.serial.data(), Size(revocation.serial), &revocation.date, &index),
        "revoking a certificate");
    const X509Extensions extensions = ExtensionsOf(GetX509CrlRevokedCertificateExtensions, crl, index);
    AddExtension(extensions, "2.5.29.21", false, Get(EncodeExtensionReasonCode, revocation.reason));
    AddExtension(extensions, "2.5.29.24", false, Get(EncodeExtensionInvalidityDate, &revocation.invalidSince));
}

// number: counts the issuer's CRLs, big-endian.
inline OwnedCrl IssueCrl(const Suite& suite, Certificate* issuer, EVP_PKEY* issuerKey, const Bytes& number,
                         const std::vector<Revocation>& revocations) {
    OwnedCrl crl;
    Require(CreateX509Crl(crl.Out()), "making a CRL");
    const LibraryTime thisUpdate = Now();
    const LibraryTime nextUpdate = DaysAfter(thisUpdate, 30);
    Require(SetX509CrlVersion(crl, 1), "setting the version");  // version 2
    Require(SetX509CrlIssuer(crl, SubjectOf(issuer)), "setting the issuer");
    Require(SetX509CrlThisUpdate(crl, &thisUpdate), "setting thisUpdate");
    Require(SetX509CrlNextUpdate(crl, &nextUpdate), "setting nextUpdate");
    for (const Revocation& revocation : revocations) AddRevocation(crl, revocation);
    AddExtension(ExtensionsOf(GetX509CrlExtensions, crl), "2.5.29.20", false,
                 Get(EncodeExtensionCrlNumber, number.data(), Size(number)));
    Require(SetX509CrlAuthorityKeyIdentifier(crl, issuer), "setting the authority key identifier");
    SignDocument(suite, issuerKey, crl, SetX509CrlSignatureAlgorithmOidAndParameters, GetX509CrlToBeSignedPart,
                 SetX509CrlSignature);
    return crl;
}

}  // namespace examples
