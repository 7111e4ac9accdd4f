// Enveloped messages: for whom the key of the content is encrypted, and how.
#pragma once

#include <string>

#include "attributes.h"
#include "certificate.h"

namespace examples {

// --- Recipients ---

// A field that is absent isn't mentioned.
template <class Function>
void PrintTransportField(Outline& outline, const std::string& label, Function function,
                         const GostR3410KeyTransport* transport) {
    const Fetched field = Get(function, transport);
    if (field.status == StatusAbsent || (field.status == StatusOk && field.bytes.empty())) return;
    outline.Hex(label, field);
}

inline void PrintGostKeyTransport(Outline& outline, const GostR3410KeyTransport* transport) {
    const Outline::Section section = outline.Open("GOST key transport");
    PrintTransportField(outline, "encrypted key", GetGostR3410KeyTransportEncryptedKey, transport);
    PrintTransportField(outline, "mask key", GetGostR3410KeyTransportMaskKey, transport);
    PrintTransportField(outline, "MAC", GetGostR3410KeyTransportMacKey, transport);
    const Fetched set = Get(GetGostR3410KeyTransportEncryptionParamSetOid, transport);
    if (set.status == StatusAbsent) return;
    if (set.status != StatusOk) return outline.Failed("encryption set", set.status);
    outline.Line("encryption set", DescribeOid(set.bytes));
    PrintTransportField(outline, "user keying material", GetGostR3410KeyTransportUkm, transport);
    const Algorithm algorithm =
        GetAlgorithm(GetGostR3410KeyTransportEphemeralPublicKeyAlgorithmOidAndParameters, transport);
    if (algorithm.status == StatusAbsent) return;
    PrintAlgorithm(outline, "ephemeral key algorithm", algorithm);
    PrintTransportField(outline, "ephemeral key", GetGostR3410KeyTransportEphemeralPublicKey, transport);
}

inline void PrintEncryptedKey(Outline& outline, const Fetched& key) {
    outline.Start("encrypted key", key);
    const Outline::Section section(outline);
    // Whatever the algorithm: what another one makes doesn't look like this structure.
    (void)PrintDecoded<GostR3410KeyTransport, FreeGostR3410KeyTransport, DecodeGostR3410KeyTransport,
                       PrintGostKeyTransport>(outline, key.bytes);
}

// The serial number can't be asked for its size with a null buffer, and wants room for a byte more than it has.
inline Status GetRecipientIdentifier(KeyTrans* recipient, X509Name** issuer, Output& serial, Output& keyId) {
    uint8_t none = 0;
    const bool asks = serial.data == nullptr;
    const Status status = GetKeyTransRecipientIdentifier(recipient, issuer, asks ? &none : serial.data, &serial.length,
                                                         keyId.data, &keyId.length);
    if (!asks || status != StatusBufferTooSmall) return status;
    ++serial.length;
    return StatusOk;
}

inline void PrintKeyTransport(Outline& outline, KeyTrans* recipient) {
    const Outline::Section section = outline.Open("key transport");
    PrintNumberField(outline, "version", GetKeyTransVersion, recipient);
    PrintIdentifier(outline, [&](X509Name** issuer, Output& serial, Output& keyId) {
        return GetRecipientIdentifier(recipient, issuer, serial, keyId);
    });
    PrintAlgorithm(outline, "key encryption algorithm",
                   GetAlgorithm(GetKeyTransKeyEncryptionAlgorithmOidAndParameters, recipient));
    PrintEncryptedKey(outline, Get(GetKeyTransEncryptedKey, recipient));
}

inline void PrintRecipient(Outline& outline, const CmsEnvelopedData* enveloped, uint32_t index) {
    static constexpr const char* kKinds[] = {"unknown kind",       "key transport", "key agreement",
                                             "key encryption key", "password",      "other recipient"};
    void* recipient = nullptr;
    uint32_t kind = 0;
    const Status status = GetCmsEnvelopedDataRecipientInfo(enveloped, index, &recipient, &kind);
    if (status != StatusOk) return outline.Failed("recipient", status);
    if (kind == CmsRecipientKindKeyTransport) return PrintKeyTransport(outline, static_cast<KeyTrans*>(recipient));
    const Fetched element = Get(GetAsn1AnyValue, recipient);
    if (element.status != StatusOk) return outline.Failed(kKinds[kind], element.status);
    PrintElement(outline, kKinds[kind], element.bytes);
}

// --- The message ---

inline void PrintEncryptedContent(Outline& outline, const CmsEnvelopedData* enveloped) {
    const Outline::Section section = outline.Open("Encrypted content");
    const Fetched type = Get(GetCmsEnvelopedDataEncryptedContentTypeOid, enveloped);
    if (type.status != StatusOk) return outline.Failed("type", type.status);
    outline.Line("type", DescribeOid(type.bytes));
    PrintAlgorithm(outline, "algorithm",
                   GetAlgorithm(GetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters, enveloped));
    const Fetched content = Get(GetCmsEnvelopedDataEncryptedContent, enveloped);
    if (content.status == StatusOk && content.bytes.empty()) return outline.Line("content", "none, detached");
    outline.Start("content", content);
}

inline void PrintEnvelopedData(Outline& outline, CmsEnvelopedData* enveloped) {
    PrintNumberField(outline, "Version", GetCmsEnvelopedDataVersion, enveloped);
    PrintEncodedMembers(outline, "Certificates", GetCmsEnvelopedDataCertificatesCount,
                        GetCmsEnvelopedDataEncodedCertificate, PrintMessageCertificate, enveloped);
    PrintEncodedMembers(outline, "CRLs", GetCmsEnvelopedDataCrlsCount, GetCmsEnvelopedDataEncodedCrl, PrintMessageCrl,
                        enveloped);
    PrintMembersField(outline, "Recipients", GetCmsEnvelopedDataRecipientInfosCount, enveloped,
                      [&](uint32_t index) { PrintRecipient(outline, enveloped, index); });
    PrintEncryptedContent(outline, enveloped);
    PrintAttributesField(outline, "Unprotected attributes", GetCmsEnvelopedDataUnprotectedAttributes, enveloped);
}

}  // namespace examples
