// Messages (CMS): any content in a ContentInfo, and signed ones.
#pragma once

#include <string>

#include "enveloped.h"

namespace examples {

// --- Signers ---

inline void PrintSigner(Outline& outline, CmsSignerInfo* signer) {
    const Outline::Section section = outline.Open("Signer");
    PrintNumberField(outline, "version", GetCmsSignerInfoVersion, signer);
    PrintIdentifier(outline, [&](X509Name** issuer, Output& serial, Output& keyId) {
        return GetCmsSignerInfoSignerIdentifier(signer, issuer, serial.data, &serial.length, keyId.data, &keyId.length);
    });
    PrintAlgorithm(outline, "digest algorithm", GetAlgorithm(GetCmsSignerInfoDigestAlgorithmOidAndParameters, signer));
    PrintAttributesField(outline, "Signed attributes", GetCmsSignerInfoSignedAttributes, signer);
    PrintAlgorithm(outline, "signature algorithm",
                   GetAlgorithm(GetCmsSignerInfoSignatureAlgorithmOidAndParameters, signer));
    outline.Start("signature", Get(GetCmsSignerInfoSignature, signer));
    PrintAttributesField(outline, "Unsigned attributes", GetCmsSignerInfoUnsignedAttributes, signer);
}

inline void PrintSigners(Outline& outline, const CmsSignedData* signedData) {
    PrintLentMembers(outline, "Signers", GetCmsSignedDataSignerInfosCount, GetCmsSignedDataSignerInfo, signedData,
                     PrintSigner);
}

// Identifier, length and content octets.
inline Bytes Wrap(uint8_t identifier, const Bytes& content) {
    Bytes element = content;
    uint32_t octets = 0;
    for (uint32_t rest = Size(content); rest != 0; rest >>= 8, ++octets) {
        element.insert(element.begin(), static_cast<uint8_t>(rest));
    }
    if (content.empty()) element.push_back(0);
    if (content.size() >= 0x80) element.insert(element.begin(), static_cast<uint8_t>(0x80 | octets));
    element.insert(element.begin(), identifier);
    return element;
}

// A signer by itself: it is read as the only one of a message of its own.
inline Status PrintCounterSignature(Outline& outline, const Bytes& value) {
    // Version 1, no digest algorithms, content type data.
    Bytes message = {0x02, 0x01, 0x01, 0x31, 0x00, 0x30, 0x0B, 0x06, 0x09,
                     0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x07, 0x01};
    const Bytes signers = Wrap(0x31, value);
    message.insert(message.end(), signers.begin(), signers.end());
    message = Wrap(0x30, message);
    return PrintDecoded<CmsSignedData, FreeCmsSignedData, DecodeCmsSignedData, PrintSigners>(outline, message);
}

// --- Signed messages ---

inline constexpr ValueCodec kSignedContentCodecs[] = {
    {"1.2.840.113549.1.9.16.1.4", PrintTstInfo},
};

inline void PrintSignedContent(Outline& outline, const CmsSignedData* signedData) {
    const Fetched type = Get(GetCmsSignedDataContentTypeOid, signedData);
    if (type.status != StatusOk) return outline.Failed("Signed content", type.status);
    const Outline::Section section = outline.Open("Signed content");
    outline.Line("type", DescribeOid(type.bytes));
    const Fetched content = Get(GetCmsSignedDataContent, signedData);
    if (content.status != StatusOk) return outline.Failed("content", content.status);
    if (content.bytes.empty()) return outline.Line("content", "none, detached");
    const ValueCodec* const codec = FindByOid(kSignedContentCodecs, type.bytes);
    if (codec == nullptr || !TryPrint(outline, codec->print, content.bytes)) {
        outline.Start("content", content.bytes);
    }
}

inline void PrintSignedData(Outline& outline, const CmsSignedData* signedData) {
    PrintNumberField(outline, "Version", GetCmsSignedDataVersion, signedData);
    PrintMembersField(
        outline, "Digest algorithms", GetCmsSignedDataDigestAlgorithmsCount, signedData, [&](uint32_t index) {
            PrintAlgorithm(outline, "algorithm",
                           GetAlgorithm(GetCmsSignedDataDigestAlgorithmOidAndParameters, signedData, index));
        });
    PrintSignedContent(outline, signedData);
    PrintEncodedMembers(outline, "Certificates", GetCmsSignedDataCertificatesCount, GetCmsSignedDataEncodedCertificate,
                        PrintMessageCertificate, signedData);
    PrintEncodedMembers(outline, "CRLs", GetCmsSignedDataCrlsCount, GetCmsSignedDataEncodedCrl, PrintMessageCrl,
                        signedData);
    PrintSigners(outline, signedData);
}

// --- Any content ---

inline Status PrintData(Outline& outline, const Bytes& content) {
    const Fetched data = Get(DecodeCmsContentInfoContent, content.data(), Size(content));
    if (data.status == StatusOk) outline.Start("Content", data);
    return data.status;
}

inline constexpr char kOtherMessage[] = "CMS message";

struct MessageKind {
    const char* oid;
    const char* title;
    Printer print;
};

inline constexpr MessageKind kMessageKinds[] = {
    {"1.2.840.113549.1.7.1", kOtherMessage, PrintData},
    {"1.2.840.113549.1.7.2", "Signed message",
     PrintDecoded<CmsSignedData, FreeCmsSignedData, DecodeCmsSignedData, PrintSignedData>},
    {"1.2.840.113549.1.7.3", "Enveloped message",
     PrintDecoded<CmsEnvelopedData, FreeCmsEnvelopedData, DecodeCmsEnvelopedData, PrintEnvelopedData>},
};

// A content that is refused or of another type is shown as an element.
inline void PrintMessage(Outline& outline, const CmsContentInfo* message) {
    const Fetched type = Get(GetCmsContentInfoTypeOid, message);
    const Fetched content = Get(GetCmsContentInfoContent, message);
    const MessageKind* const kind = FindByOid(kMessageKinds, type.bytes);
    const Outline::Section section = outline.Open(kind != nullptr ? kind->title : kOtherMessage);
    outline.Line("Content type", DescribeOid(type.bytes));
    if (content.status != StatusOk) return outline.Failed("Content", content.status);
    if (content.bytes.empty()) return outline.Line("Content", "none");
    if (kind == nullptr || !TryPrint(outline, kind->print, content.bytes)) {
        PrintElement(outline, "Content", content.bytes);
    }
}

}  // namespace examples
