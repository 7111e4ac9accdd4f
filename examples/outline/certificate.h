// Certificates, and those that other documents bring along.
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

// What tells a certificate from others, for documents that bring some along.
inline void PrintCertificateSummary(Outline& outline, Certificate* certificate) {
    X509Name *subject = nullptr, *issuer = nullptr;
    const Status ofSubject = GetCertificateSubject(certificate, &subject);
    const Status ofIssuer = GetCertificateIssuer(certificate, &issuer);
    if (ofSubject != StatusOk) return outline.Failed("subject", ofSubject);
    const Outline::Section section = outline.Open(DescribeName(subject));
    if (ofIssuer != StatusOk) return outline.Failed("issuer", ofIssuer);
    outline.Line("issuer", DescribeName(issuer));
    outline.Hex("serial number", Get(GetCertificateSerialNumber, certificate));
}

// --- Certificates and CRLs of messages, which give them as bytes with a kind ---

inline void PrintMessageCertificate(Outline& outline, uint8_t kind, const Bytes& bytes) {
    static constexpr const char* kKinds[] = {"unknown kind",
                                             "certificate",
                                             "extended certificate",
                                             "attribute certificate, version 1",
                                             "attribute certificate, version 2",
                                             "other certificate"};
    static constexpr Printer kPrint =
        PrintDecoded<Certificate, FreeCertificate, DecodeCertificate, PrintCertificateSummary>;
    if (kind == CmsCertificateKindCertificate && TryPrint(outline, kPrint, bytes)) return;
    outline.Start(kKinds[kind], bytes);
}

inline void PrintMessageCrl(Outline& outline, uint8_t, const Bytes& bytes) { outline.Start("CRL", bytes); }

template <class Document>
using GetEncoded = Status (*)(const Document*, uint32_t, uint8_t*, uint8_t*, uint32_t*);

// The certificates or CRLs of a message, which gives them as bytes with a kind; none aren't mentioned.
template <class Document, class Print>
void PrintEncodedMembers(Outline& outline, const std::string& title, Status (*getCount)(const Document*, uint32_t*),
                         GetEncoded<Document> get, Print print, const Document* document) {
    uint32_t count = 0;
    if (getCount(document, &count) == StatusOk && count == 0) return;
    PrintMembersField(outline, title, getCount, document, [&](uint32_t index) {
        uint8_t kind = 0;
        const Fetched member = Get(get, document, index, &kind);
        if (member.status != StatusOk) return outline.Failed("member", member.status);
        print(outline, kind, member.bytes);
    });
}

}  // namespace examples
