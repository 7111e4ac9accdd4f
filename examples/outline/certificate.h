// Certificates.
#pragma once

#include <string>

#include "fields.h"

namespace examples {

// Absent in nearly every certificate, and not mentioned then.
template <class Function>
void PrintUniqueId(Outline& outline, const std::string& label, Function function, const Certificate* certificate) {
    Output id;
    uint8_t unusedBits = 0;
    const Status status = Fetch([&] { return function(certificate, id.data, &id.length, &unusedBits); }, id);
    if (status == StatusAbsent) return;
    outline.Hex(label + (unusedBits != 0 ? ", " + std::to_string(unusedBits) + " unused bits" : ""),
                Fetched{status, id.bytes});
}

inline void PrintCertificate(Outline& outline, Certificate* certificate) {
    const Outline::Section section = outline.Open("Certificate");
    PrintVersion(outline, GetCertificateVersion, certificate);
    outline.Hex("Serial number", Get(GetCertificateSerialNumber, certificate));
    PrintAlgorithm(outline, "Signature algorithm",
                   GetAlgorithm(GetCertificateSignatureAlgorithmOidAndParameters, certificate));
    PrintNameField(outline, "Issuer", GetCertificateIssuer, certificate);
    PrintTimeField(outline, "Not before", GetCertificateValidNotBefore, certificate);
    PrintTimeField(outline, "Not after", GetCertificateValidNotAfter, certificate);
    PrintNameField(outline, "Subject", GetCertificateSubject, certificate);
    PrintPublicKey(outline, GetCertificatePublicKeyAlgorithmOidAndParameters, GetCertificatePublicKey,
                   GetCertificatePublicKeyGostR3410, certificate);
    PrintUniqueId(outline, "Issuer unique ID", GetCertificateIssuerUniqueId, certificate);
    PrintUniqueId(outline, "Subject unique ID", GetCertificateSubjectUniqueId, certificate);
    PrintExtensionsField(outline, GetCertificateExtensions, certificate);
    outline.Start("Signature", Get(GetCertificateSignature, certificate));
}

// For the table of kinds: nothing is printed unless the bytes are a certificate.
inline Status InspectCertificate(Outline& outline, const Bytes& bytes) {
    OwnedCertificate certificate;
    const Status status = DecodeCertificate(bytes.data(), Size(bytes), certificate.Out());
    if (status == StatusOk) PrintCertificate(outline, certificate);
    return status;
}

}  // namespace examples
