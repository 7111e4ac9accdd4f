// What the documents are put together from. A document brings its own setters.
#pragma once

#include <string>
#include <vector>

#include "openssl.h"
#include "require.h"

namespace examples {

inline Bytes Oid(const char* dotted) { return Require(Get(ConvertStringToOid, dotted), "converting an OID"); }

// --- Names ---

struct AttributeTypeAndValue {
    const char* oid;
    std::string text;  // UTF-8
};

// Each entry becomes a relative distinguished name of its own, of the narrowest string type that can hold it.
inline OwnedName MakeName(const std::vector<AttributeTypeAndValue>& entries) {
    OwnedName name;
    Require(CreateX509Name(name.Out()), "making a name");
    for (const AttributeTypeAndValue& entry : entries) {
        const auto* text = reinterpret_cast<const uint8_t*>(entry.text.data());
        const uint32_t length = static_cast<uint32_t>(entry.text.size());
        uint32_t type = 0;
        Require(DetermineSuitableStringType(text, length, &type), "choosing a string type");
        Require(AddX509NameEntry(name, text, length, static_cast<uint8_t>(type), Oid(entry.oid).data(), 1),
                "adding to a name");
    }
    return name;
}

inline OwnedName MakeExampleName(const std::string& commonName) {
    return MakeName({{"2.5.4.6", "DE"}, {"2.5.4.7", "Köln"}, {"2.5.4.10", "Example"}, {"2.5.4.3", commonName}});
}

inline X509Name* SubjectOf(Certificate* certificate) {
    X509Name* subject = nullptr;
    Require(GetCertificateSubject(certificate, &subject), "reaching a subject");
    return subject;
}

// --- Times ---

inline LibraryTime Now() {
    LibraryTime time = {};
    Require(GetCurrentLibTime(&time), "reading the clock");
    return time;
}

inline LibraryTime DaysAfter(LibraryTime time, uint32_t days) {
    Require(AddDaysToLibTime(&time, days), "adding days");
    return time;
}

// --- Keys and signatures ---

// Takes SubjectPublicKeyInfo apart, as a certification authority does that gets a key in a request.
template <class Document, class SetAlgorithm, class SetKey>
void SetPublicKey(const Document& document, EVP_PKEY* key, SetAlgorithm setAlgorithm, SetKey setKey) {
    const Bytes info = EncodePublicKey(key);
    Output oid, bits, parameters;
    const Status status = Fetch(
        [&] {
            return DecodeSubjectPublicKeyInfo(info.data(), Size(info), oid.data, &oid.length, bits.data, &bits.length,
                                              parameters.data, &parameters.length);
        },
        oid, bits, parameters);
    Require(status, "decoding a public key");
    const uint8_t* parametersOrNull = parameters.bytes.empty() ? nullptr : parameters.bytes.data();
    Require(setAlgorithm(document, oid.bytes.data(), parametersOrNull, Size(parameters.bytes)),
            "setting the public key's algorithm");
    Require(setKey(document, bits.bytes.data(), Size(bits.bytes)), "setting the public key");
}

// Certificates and CRLs name the algorithm of their signature in the signed part, so it is set first.
template <class Document, class SetAlgorithm, class GetToBeSigned, class SetSignature>
void SignDocument(const Suite& suite, EVP_PKEY* key, const Document& document, SetAlgorithm setAlgorithm,
                  GetToBeSigned getToBeSigned, SetSignature setSignature) {
    Require(setAlgorithm(document, Oid(suite.signatureOid).data(), nullptr, 0), "setting the signature algorithm");
    const Bytes signature = Sign(suite, key, Require(Get(getToBeSigned, document), "encoding the to-be-signed part"));
    Require(setSignature(document, signature.data(), Size(signature)), "setting the signature");
}

// --- Extensions ---

// The handle that a getter lends, for an entry of a document with its index.
template <class Function, class... Arguments>
X509Extensions ExtensionsOf(Function function, const Arguments&... arguments) {
    X509Extensions extensions = nullptr;
    Require(function(arguments..., &extensions), "reaching the extensions");
    return extensions;
}

inline void AddExtension(X509Extensions extensions, const char* oid, bool critical, Fetched value) {
    const Bytes bytes = Require(std::move(value), "encoding an extension");
    Require(AddX509ExtensionsExtension(extensions, Oid(oid).data(), critical, bytes.data(), Size(bytes)),
            "adding an extension");
}

// In flag words bit 0 is 0x80.
enum KeyUsage : uint32_t { kDigitalSignature = 0x80, kKeyCertSign = 0x04, kCrlSign = 0x02 };

inline void AddKeyUsage(X509Extensions extensions, uint32_t keyUsage) {
    AddExtension(extensions, "2.5.29.15", true, Get(EncodeExtensionKeyUsage, keyUsage));
}

inline void AddSubjectDnsName(X509Extensions extensions, const std::string& host) {
    OwnedGeneralNames names;
    Require(CreateX509GeneralNames(names.Out()), "making general names");
    Require(AddX509GeneralName(names, X509GeneralNameDNSName, reinterpret_cast<const uint8_t*>(host.data()),
                               static_cast<uint32_t>(host.size())),
            "adding a general name");
    AddExtension(extensions, "2.5.29.17", false, Get(EncodeX509GeneralNames, names));
}

}  // namespace examples
