// Certificate revocation lists.
#pragma once

#include <algorithm>
#include <string>

#include "fields.h"

namespace examples {

inline void PrintRevokedCertificate(Outline& outline, const X509Crl* crl, uint32_t index) {
    outline.Hex("Serial number", Get(GetX509CrlRevokedCertificateSerialNumber, crl, index));
    const Outline::Section section(outline);
    PrintTimeField(outline, "revoked", GetX509CrlRevokedCertificateRevokationDate, crl, index);
    PrintExtensionsField(outline, GetX509CrlRevokedCertificateExtensions, crl, index);
}

// A list may have millions of entries, of which the first ones show what they are like.
inline void PrintRevokedCertificates(Outline& outline, const X509Crl* crl) {
    static constexpr uint32_t kShown = 20;
    uint32_t count = 0;
    const Status status = GetX509CrlRevokedCertificateCount(crl, &count);
    if (status != StatusOk) return outline.Failed("Revoked certificates", status);
    const Outline::Section section = outline.Open("Revoked certificates: " + std::to_string(count));
    for (uint32_t i = 0; i < std::min(count, kShown); ++i) PrintRevokedCertificate(outline, crl, i);
    if (count > kShown) outline.Line("and " + std::to_string(count - kShown) + " more");
}

inline void PrintCrl(Outline& outline, X509Crl* crl) {
    const Outline::Section section = outline.Open("Certificate revocation list");
    PrintVersion(outline, GetX509CrlVersion, crl);
    PrintAlgorithm(outline, "Signature algorithm", GetAlgorithm(GetX509CrlSignatureAlgorithmOidAndParameters, crl));
    PrintNameField(outline, "Issuer", GetX509CrlIssuer, crl);
    PrintTimeField(outline, "This update", GetX509CrlThisUpdate, crl);
    PrintTimeField(outline, "Next update", GetX509CrlNextUpdate, crl);
    PrintExtensionsField(outline, GetX509CrlExtensions, crl);
    PrintRevokedCertificates(outline, crl);
    outline.Start("Signature", Get(GetX509CrlSignature, crl));
}

// For the table of kinds: nothing is printed unless the bytes are a CRL.
inline Status InspectCrl(Outline& outline, const Bytes& bytes) {
    OwnedCrl crl;
    const Status status = DecodeX509Crl(bytes.data(), Size(bytes), crl.Out());
    if (status == StatusOk) PrintCrl(outline, crl);
    return status;
}

}  // namespace examples
