// A certificate of about 2 KB as public authorities issue them: RSA with 2048 bits, two names, ten extensions. It is
// built through the interface; key, identifiers and signature are pseudo-random bytes.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tlvforge/cpp/messages.hpp"

namespace bench {

using tlvforge::Bytes;

inline uint32_t Size(const Bytes& bytes) { return static_cast<uint32_t>(bytes.size()); }

// For calls that cannot fail here.
inline void Must(Status status, int line = __builtin_LINE(), const char* file = __builtin_FILE()) {
    if (status == StatusOk) return;
    fprintf(stderr, "%s:%d: status %u\n", file, line, status);
    exit(1);
}

// The same numbers in every run.
inline Bytes Random(size_t size) {
    static std::mt19937 random(1);
    Bytes bytes(size);
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
    return bytes;
}

inline Bytes Text(const std::string& text) { return Bytes(text.begin(), text.end()); }

inline Bytes Joined(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

inline Bytes Tlv(uint8_t identifier, const Bytes& content) {
    const size_t size = content.size();
    const auto low = static_cast<uint8_t>(size), high = static_cast<uint8_t>(size >> 8);
    if (size < 0x80) return Joined({{identifier, low}, content});
    if (size < 0x100) return Joined({{identifier, 0x81, low}, content});
    if (size < 0x10000) return Joined({{identifier, 0x82, high, low}, content});
    return Joined({{identifier, 0x83, static_cast<uint8_t>(size >> 16), high, low}, content});
}

inline Bytes Tlv(uint8_t identifier, std::initializer_list<Bytes> parts) { return Tlv(identifier, Joined(parts)); }

// Length-prefixed, and as an element.
inline Bytes Oid(const char* dotted) { return tlvforge::Get(ConvertStringToOid, dotted); }
inline Bytes OidTlv(const char* dotted) { return tlvforge::Get(EncodeAsn1Oid, Oid(dotted)); }

struct Sample {
    struct Extension {
        Bytes oid;
        int32_t critical;
        Bytes value;
    };
    using Name = std::vector<std::pair<Bytes, Bytes>>;  // attribute types and texts

    Bytes serial{Joined({{0x04}, Random(15)})};
    Name issuer = NameOf({"US", "Arizona", "Scottsdale", "Example Trust Services LLC", "Certification Authorities",
                          "Example Issuing CA 3 G2"});
    Name subject = NameOf({"US", "California", "San Francisco", "Example Online Services Inc", "Web Hosting",
                           "www.services.example.com"});
    LibraryTime notBefore{2025, 3, 1, 0, 0, 0}, notAfter{2026, 3, 31, 23, 59, 59};
    Bytes rsa = Oid("1.2.840.113549.1.1.1"), sha256WithRsa = Oid("1.2.840.113549.1.1.11"), null{0x05, 0x00};
    Bytes key = Tlv(0x30, {Tlv(0x02, {{0x00, 0xC3}, Random(254), {0x8F}}), Tlv(0x02, {{0x01, 0x00, 0x01}})});
    Bytes signature = Random(256);
    std::vector<Extension> extensions = {
        {Oid("2.5.29.35"), 0, Tlv(0x30, Tlv(0x80, Random(20)))},
        {Oid("2.5.29.14"), 0, Tlv(0x04, Random(20))},
        {Oid("2.5.29.15"), 1, {0x03, 0x02, 0x05, 0xA0}},
        {Oid("2.5.29.19"), 1, {0x30, 0x00}},
        {Oid("2.5.29.37"), 0, Tlv(0x30, {OidTlv("1.3.6.1.5.5.7.3.1"), OidTlv("1.3.6.1.5.5.7.3.2")})},
        {Oid("2.5.29.32"), 0,
         Tlv(0x30, {Tlv(0x30, OidTlv("2.23.140.1.2.2")),
                    Tlv(0x30, {OidTlv("1.3.6.1.4.1.55555.1.1"),
                               Tlv(0x30, Tlv(0x30, {OidTlv("1.3.6.1.5.5.7.2.1"),
                                                    Tlv(0x16, Text("https://pki.example.com/practice"))}))})})},
        {Oid("2.5.29.31"), 0, Tlv(0x30, Tlv(0x30, Tlv(0xA0, Tlv(0xA0, Uri("http://crl.example.com/issuing3g2.crl")))))},
        {Oid("1.3.6.1.5.5.7.1.1"), 0,
         Tlv(0x30, {Tlv(0x30, {OidTlv("1.3.6.1.5.5.7.48.1"), Uri("http://ocsp.example.com")}),
                    Tlv(0x30, {OidTlv("1.3.6.1.5.5.7.48.2"), Uri("http://pki.example.com/issuing3g2.crt")})})},
        {Oid("2.5.29.17"), 0,
         Tlv(0x30,
             {Host("www"), Host("shop"), Host("mail"), Host("api"), Host("static"), Host("*.cdn"), Host("login")})},
        {Oid("1.3.6.1.4.1.11129.2.4.2"), 0, Tlv(0x04, Random(362))}};

    static Name NameOf(std::initializer_list<const char*> texts) {
        static const char* const kTypes[] = {"2.5.4.6", "2.5.4.8", "2.5.4.7", "2.5.4.10", "2.5.4.11", "2.5.4.3"};
        Name name;
        for (const char* text : texts) name.emplace_back(Oid(kTypes[name.size()]), Text(text));
        return name;
    }
    static Bytes Uri(const char* uri) { return Tlv(0x86, Text(uri)); }
    static Bytes Host(const std::string& host) { return Tlv(0x82, Text(host + ".services.example.com")); }
};

inline void FillName(X509Name* name, const Sample::Name& entries) {
    for (const auto& [type, value] : entries) {
        Must(AddX509NameEntry(name, value.data(), Size(value), Asn1KindPrintableString, type.data(), 1));
    }
}

// The whole way from nothing to a certificate; the caller owns it.
inline Certificate* Build(const Sample& sample) {
    Certificate* certificate = nullptr;
    X509Name *issuer = nullptr, *subject = nullptr;
    X509Extensions extensions = nullptr;
    Must(CreateCertificate(&certificate));
    Must(SetCertificateVersion(certificate, 2));
    Must(SetCertificateSerialNumber(certificate, sample.serial.data(), Size(sample.serial)));
    Must(SetCertificateSignatureAlgorithmOidAndParameters(certificate, sample.sha256WithRsa.data(), sample.null.data(),
                                                          Size(sample.null)));
    Must(GetCertificateIssuer(certificate, &issuer));
    FillName(issuer, sample.issuer);
    Must(SetCertificateValidNotBefore(certificate, &sample.notBefore));
    Must(SetCertificateValidNotAfter(certificate, &sample.notAfter));
    Must(GetCertificateSubject(certificate, &subject));
    FillName(subject, sample.subject);
    Must(SetCertificatePublicKeyAlgorithmOidAndParameters(certificate, sample.rsa.data(), sample.null.data(),
                                                          Size(sample.null)));
    Must(SetCertificatePublicKey(certificate, sample.key.data(), Size(sample.key)));
    Must(GetCertificateExtensions(certificate, &extensions));
    for (const Sample::Extension& extension : sample.extensions) {
        Must(AddX509ExtensionsExtension(extensions, extension.oid.data(), extension.critical, extension.value.data(),
                                        Size(extension.value)));
    }
    Must(SetCertificateSignature(certificate, sample.signature.data(), Size(sample.signature)));
    return certificate;
}

inline Bytes Encode(const Certificate* certificate) { return tlvforge::Encode(certificate); }

}  // namespace bench
