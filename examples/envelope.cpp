// envelope seal|open|show ...: an enveloped message. The content is encrypted with AES, and the key of AES with the RSA
// key of each recipient. The library makes and reads the message, libcrypto encrypts and decrypts.

#include <climits>
#include <cstdio>

#include "libcrypto.h"
#include "usage.h"

using namespace tlvforge;
using namespace examples;

namespace {

constexpr char kUsage[] =
    "usage: envelope seal FILE MESSAGE CERTIFICATE...\n"
    "       envelope open KEY MESSAGE FILE\n"
    "       envelope show MESSAGE\n\n"
    "Encrypts a file for the holders of certificates, PEM, with RSA keys; decrypts such a message; or says how one is\n"
    "encrypted.\n";

constexpr Oid kEnvelopedData("1.2.840.113549.1.7.3"), kData("1.2.840.113549.1.7.1");
constexpr Oid kAes256Cbc("2.16.840.1.101.3.4.1.42"), kRsa("1.2.840.113549.1.1.1");

Bytes Cipher(bool encrypt, const Bytes& key, const Bytes& iv, const Bytes& in) {
    const std::unique_ptr<EVP_CIPHER_CTX, Deleter<EVP_CIPHER_CTX_free>> context(EVP_CIPHER_CTX_new());
    Bytes out(in.size() + 16);
    int length = 0, rest = 0;
    Require(key.size() == 32 && iv.size() == 16 && out.size() <= INT_MAX &&
                EVP_CipherInit_ex(context.get(), EVP_aes_256_cbc(), nullptr, key.data(), iv.data(), encrypt) > 0 &&
                EVP_CipherUpdate(context.get(), out.data(), &length, in.data(), static_cast<int>(in.size())) > 0 &&
                EVP_CipherFinal_ex(context.get(), out.data() + length, &rest) > 0,
            encrypt ? "encrypting" : "decrypting");
    out.resize(static_cast<size_t>(length + rest));
    return out;
}

// RSA in the form of PKCS #1 v1.5.
Bytes Transport(bool encrypt, const Key& key, const Bytes& in) {
    const std::unique_ptr<EVP_PKEY_CTX, Deleter<EVP_PKEY_CTX_free>> context(EVP_PKEY_CTX_new(key.get(), nullptr));
    Bytes out(static_cast<size_t>(EVP_PKEY_get_size(key.get())));
    size_t length = out.size();
    Require((encrypt ? EVP_PKEY_encrypt_init(context.get()) : EVP_PKEY_decrypt_init(context.get())) > 0 &&
                (encrypt ? EVP_PKEY_encrypt(context.get(), out.data(), &length, in.data(), in.size())
                         : EVP_PKEY_decrypt(context.get(), out.data(), &length, in.data(), in.size())) > 0,
            "RSA");
    out.resize(length);
    return out;
}

// The message adopts the recipient.
void AddRecipient(const Handle<CmsEnvelopedData>& message, const Handle<Certificate>& certificate, const Bytes& key) {
    auto recipient = Create<KeyTrans>();
    Call(SetKeyTransVersion, recipient, 0);  // named by issuer and serial number
    Call(SetKeyTransRecipientIdentifierIssuerAndSerialNumber, recipient, Get(GetCertificateIssuer, certificate),
         Get(GetCertificateSerialNumber, certificate));
    Call(SetKeyTransKeyEncryptionAlgorithmOidAndParameters, recipient, kRsa, Bytes{5, 0});
    Call(SetKeyTransEncryptedKey, recipient, Transport(true, PublicKeyOf(certificate), key));
    Call(AddCmsEnvelopedDataRecipientInfo, message, CmsRecipientKindKeyTransport, std::move(recipient));
}

Bytes Seal(const Bytes& content, char** certificates) {
    const Bytes key = RandomNumber(32), iv = RandomNumber(16);
    const auto message = Create<CmsEnvelopedData>();
    Call(SetCmsEnvelopedDataVersion, message, 0);
    for (; *certificates != nullptr; ++certificates) {
        AddRecipient(message, Decode<Certificate>(ReadPem(*certificates)), key);
    }
    Call(SetCmsEnvelopedDataEncryptedContentTypeOid, message, kData);
    Call(SetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters, message, kAes256Cbc,
         Get(EncodeAsn1PrimitiveValue, Asn1KindOctetString, iv));
    Call(SetCmsEnvelopedDataEncryptedContent, message, Cipher(true, key, iv, content));
    const auto info = Create<CmsContentInfo>();
    Call(SetCmsContentInfoTypeOid, info, kEnvelopedData);
    Call(SetCmsContentInfoContent, info, Encode(message));
    return Encode(info);
}

Handle<CmsEnvelopedData> ReadMessage(const char* path) {
    const auto info = Decode<CmsContentInfo>(ReadFile(path));
    if (Get<Oid>(GetCmsContentInfoTypeOid, info) != kEnvelopedData) throw std::runtime_error("not enveloped data");
    return Decode<CmsEnvelopedData>(Get(GetCmsContentInfoContent, info));
}

// The recipients whose kind is key transport; others have an Asn1Any instead of a KeyTrans.
template <class Use>
void ForEachRecipient(const Handle<CmsEnvelopedData>& message, Use&& use) {
    for (auto [recipient, kind] :
         List(GetCmsEnvelopedDataRecipientInfosCount, GetCmsEnvelopedDataRecipientInfo, message)) {
        if (kind == CmsRecipientKindKeyTransport) use(static_cast<KeyTrans*>(recipient));
    }
}

// A key fits or doesn't; a program that has the certificate would look for its recipient.
Bytes Open(const Key& key, const Handle<CmsEnvelopedData>& message) {
    const auto [algorithm, parameters] =
        Get<Oid, Bytes>(GetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters, message);
    if (algorithm != kAes256Cbc) throw std::runtime_error("encrypted by " + algorithm.text());
    const Bytes iv = Get(DecodeAsn1PrimitiveValue, Asn1KindOctetString, parameters);
    Bytes content;
    bool opened = false;
    ForEachRecipient(message, [&](const KeyTrans* recipient) {
        if (opened) return;
        try {
            const Bytes transported = Transport(false, key, Get(GetKeyTransEncryptedKey, recipient));
            content = Cipher(false, transported, iv, Get(GetCmsEnvelopedDataEncryptedContent, message));
            opened = true;
        } catch (const std::runtime_error&) {
            ERR_clear_error();
        }
    });
    if (!opened) throw std::runtime_error("the key is that of no recipient");
    return content;
}

void Show(const Handle<CmsEnvelopedData>& message) {
    const auto [algorithm, parameters] =
        Get<Oid, Bytes>(GetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters, message);
    std::printf("content encrypted by %s, %zu bytes\n", algorithm.text().c_str(),
                Get(GetCmsEnvelopedDataEncryptedContent, message).size());
    ForEachRecipient(message, [](const KeyTrans* recipient) {
        const auto [oid, none] = Get<Oid, Bytes>(GetKeyTransKeyEncryptionAlgorithmOidAndParameters, recipient);
        const Bytes key = Get(GetKeyTransEncryptedKey, recipient);
        std::printf("key transport by %s, %zu bytes\n", oid.text().c_str(), key.size());
        // Under a GOST key the encrypted key consists of parts itself (RFC 4490).
        if (const auto transport = nothrow::Decode<GostR3410KeyTransport>(key)) {
            std::printf("  parameter set %s, user keying material %s\n",
                        Get<Oid>(GetGostR3410KeyTransportEncryptionParamSetOid, *transport).text().c_str(),
                        ToHex(Get(GetGostR3410KeyTransportUkm, *transport)).c_str());
        }
    });
}

}  // namespace

int main(int count, char** arguments) try {
    const std::string what = count > 1 ? arguments[1] : "";
    const bool seal = what == "seal" && count > 4, open = what == "open" && count == 5;
    const bool show = what == "show" && count == 3;
    if (const auto status = AnswerUsage(kUsage, count, arguments, seal || open || show)) return *status;
    if (seal) WriteFile(arguments[3], Seal(ReadFile(arguments[2]), arguments + 4));
    if (open) WriteFile(arguments[4], Open(ReadKey(arguments[2]), ReadMessage(arguments[3])));
    if (show) Show(ReadMessage(arguments[2]));
} catch (const std::exception& failure) {
    std::fprintf(stderr, "envelope: %s\n", failure.what());
    return 1;
}
