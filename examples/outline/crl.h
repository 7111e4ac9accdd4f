// Certificate revocation lists.
#pragma once

#include <string>

#include "fields.h"

namespace examples {

inline void PrintRevokedCertificate(Outline& outline, const X509Crl* crl, uint32_t index) {
    outline.Hex("Serial number", Get(GetX509CrlRevokedCertificateSerialNumber, crl, index));
    const Outline::Section section(outline);
    PrintTimeField(outline, "revoked", GetX509CrlRevokedCertificateRevokationDate, crl, index);
    PrintExtensionsField(outline, GetX509CrlRevokedCertificateExtensions, crl, index);
}

inline void PrintCrl(Outline& outline, X509Crl* crl) {
    const Outline::Section section = outline.Open("Certificate revocation list");
    PrintVersion(outline, GetX509CrlVersion, crl);
    PrintAlgorithm(outline, "Signature algorithm", GetAlgorithm(GetX509CrlSignatureAlgorithmOidAndParameters, crl));
    PrintNameField(outline, "Issuer", GetX509CrlIssuer, crl);
    PrintTimeField(outline, "This update", GetX509CrlThisUpdate, crl);
    PrintTimeField(outline, "Next update", GetX509CrlNextUpdate, crl);
    PrintExtensionsField(outline, GetX509CrlExtensions, crl);
    PrintMembersField(outline, "Revoked certificates", GetX509CrlRevokedCertificateCount, crl,
                      [&](uint32_t index) { PrintRevokedCertificate(outline, crl, index); });
    outline.Start("Signature", Get(GetX509CrlSignature, crl));
}

}  // namespace examples
