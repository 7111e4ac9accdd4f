// Certificates.
#pragma once

#include <string>

#include "algorithms.h"
#include "extensions.h"

namespace examples {

inline void PrintVersion(Outline& outline, const Certificate* certificate) {
    int32_t version = 0;
    const Status status = GetCertificateVersion(certificate, &version);
    if (status != StatusOk) return outline.Failed("Version", status);
    outline.Line("Version", std::to_string(int64_t{version} + 1));
}

inline void PrintValidity(Outline& outline, const Certificate* certificate) {
    LibraryTime time = {};
    Status status = GetCertificateValidNotBefore(certificate, &time);
    PrintTime(outline, "Not before", status, time);
    status = GetCertificateValidNotAfter(certificate, &time);
    PrintTime(outline, "Not after", status, time);
}

inline void PrintPublicKey(Outline& outline, const Certificate* certificate) {
    const Outline::Section section = outline.Open("Public key");
    const Algorithm algorithm = GetAlgorithm(GetCertificatePublicKeyAlgorithmOidAndParameters, certificate);
    PrintAlgorithm(outline, "algorithm", algorithm);
    outline.Start("key", Get(GetCertificatePublicKey, certificate));
    if (!GostKeyAlgorithmId(algorithm.oid)) return;
    outline.Start("unwrapped", Get(GetCertificatePublicKeyGostR3410, certificate));
}

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

// The name getters lend the name inside the certificate, and may create an empty one there.
template <class Function>
void PrintCertificateName(Outline& outline, const std::string& label, Function function, Certificate* certificate) {
    X509Name* name = nullptr;
    const Status status = function(certificate, &name);
    if (status != StatusOk) return outline.Failed(label, status);
    PrintName(outline, label, name);
}

inline void PrintCertificate(Outline& outline, Certificate* certificate) {
    const Outline::Section section = outline.Open("Certificate");
    PrintVersion(outline, certificate);
    outline.Hex("Serial number", Get(GetCertificateSerialNumber, certificate));
    PrintAlgorithm(outline, "Signature algorithm",
                   GetAlgorithm(GetCertificateSignatureAlgorithmOidAndParameters, certificate));
    PrintCertificateName(outline, "Issuer", GetCertificateIssuer, certificate);
    PrintValidity(outline, certificate);
    PrintCertificateName(outline, "Subject", GetCertificateSubject, certificate);
    PrintPublicKey(outline, certificate);
    PrintUniqueId(outline, "Issuer unique ID", GetCertificateIssuerUniqueId, certificate);
    PrintUniqueId(outline, "Subject unique ID", GetCertificateSubjectUniqueId, certificate);
    X509Extensions extensions = nullptr;
    const Status status = GetCertificateExtensions(certificate, &extensions);
    if (status == StatusOk) {
        PrintExtensions(outline, extensions);
    } else {
        outline.Failed("Extensions", status);
    }
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
