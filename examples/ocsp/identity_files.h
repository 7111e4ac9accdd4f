// Documents, keys and identities in files.
#pragma once

#include <filesystem>
#include <string>

#include "../signing/files.h"
#include "../signing/identity.h"

namespace examples {

inline void WriteKey(const std::filesystem::path& path, EVP_PKEY* key) {
    uint8_t* der = nullptr;
    const int length = i2d_PrivateKey(key, &der);
    RequireOpenSsl(length > 0, "encoding a key");
    const Bytes bytes(der, der + length);
    OPENSSL_free(der);
    WriteFile(path, bytes);
}

inline Key ReadKey(const std::filesystem::path& path) {
    const Bytes der = ReadFile(path);
    const uint8_t* at = der.data();
    Key key(d2i_AutoPrivateKey(nullptr, &at, static_cast<long>(der.size())));
    RequireOpenSsl(key != nullptr, "reading a key");
    return key;
}

template <class Function, class Document>
void WriteDocument(const std::filesystem::path& path, Function encode, const Document& document) {
    WriteFile(path, Require(Get(encode, document), "encoding a document"));
}

template <class Document, class Function>
Document ReadDocument(const std::filesystem::path& path, Function decode) {
    const Bytes der = ReadFile(path);
    Document document;
    Require(decode(der.data(), Size(der), document.Out()), "decoding a document");
    return document;
}

// NAME.key and NAME.cer
inline void WriteIdentity(const Identity& identity, const std::filesystem::path& directory, const std::string& name) {
    WriteKey(directory / (name + ".key"), identity.key.get());
    WriteDocument(directory / (name + ".cer"), EncodeCertificate, identity.certificate);
}

inline Identity ReadIdentity(const std::filesystem::path& directory, const std::string& name) {
    Key key = ReadKey(directory / (name + ".key"));
    const Suite& suite = EVP_PKEY_is_a(key.get(), "EC") ? kEc : kGost;
    return {suite, std::move(key), ReadDocument<OwnedCertificate>(directory / (name + ".cer"), DecodeCertificate)};
}

}  // namespace examples
