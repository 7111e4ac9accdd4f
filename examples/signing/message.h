// Signed messages (CMS, RFC 5652): signing, adding a signer, taking one out, and what can be told about them.
#pragma once

#include <cstdio>
#include <string>

#include "identity.h"

namespace examples {

using OwnedAttributes = Owned<RsaAttributesCell, FreeRsaAttributes>;
using OwnedContentInfo = Owned<CmsContentInfo, FreeCmsContentInfo>;
using OwnedSignedData = Owned<CmsSignedData, FreeCmsSignedData>;

// What is signed, and how.
struct Form {
    bool attached;    // the message contains the file, so that it is all that a recipient needs
    bool attributes;  // the signature covers attributes, among them the digest of the file and the time, not the file
};

// The message with one more signature; the first one, if the message is empty. The signer's certificate goes into it.
inline Bytes AddSignature(const Bytes& message, const Identity& signer, const Bytes& content, const Form& form,
                          RsaAttributes furtherAttributes = nullptr) {
    const Suite& suite = signer.suite;
    const Bytes digest = Digest(suite, content);
    const LibraryTime now = Now();
    const Bytes toBeSigned =
        form.attributes
            ? Require(Get(GetCmsSignedDataToBeSignedPart2, digest.data(), Size(digest), &now, furtherAttributes),
                      "encoding the attributes to be signed")
            : content;
    const Bytes signature = Sign(suite, signer.key.get(), toBeSigned);
    const Bytes certificate = signer.Der();
    const uint8_t* const certificates[] = {certificate.data()};
    const uint32_t certificateLengths[] = {Size(certificate)};
    const uint8_t* const contentOrNull = form.attached ? content.data() : nullptr;
    return Require(Get(CreateCmsFileSignature2, contentOrNull, Size(content), digest.data(), Size(digest), &now,
                       DigestOid(suite).data(), nullptr, 0, certificate.data(), Size(certificate), certificates,
                       certificateLengths, 1, Oid(suite.signatureOid).data(), nullptr, 0, form.attributes,
                       furtherAttributes, nullptr, signature.data(), Size(signature), message.data(), Size(message)),
                   "making a signed message");
}

// Signers are numbered from 1. The certificate of the one that goes stays in the message.
inline Bytes RemoveSigner(const Bytes& message, uint32_t number) {
    return Require(Get(DeleteBufferCmsSignerInfo, number, message.data(), Size(message)), "removing a signer");
}

// --- A message as an object, to change any of its fields ---

inline OwnedSignedData ReadMessage(const Bytes& message) {
    OwnedContentInfo info;
    Require(DecodeCmsContentInfo(message.data(), Size(message), info.Out()), "decoding a message");
    const Bytes content = Require(Get(GetCmsContentInfoContent, info), "reading a message");
    OwnedSignedData signedData;
    Require(DecodeCmsSignedData(content.data(), Size(content), signedData.Out()), "decoding signed data");
    return signedData;
}

inline Bytes WriteMessage(const OwnedSignedData& signedData) {
    const Bytes content = Require(Get(EncodeCmsSignedData, signedData), "encoding signed data");
    OwnedContentInfo info;
    Require(CreateCmsContentInfo(info.Out()), "making a message");
    Require(SetCmsContentInfoTypeOid(info, Oid("1.2.840.113549.1.7.2").data()), "setting the type");  // id-signedData
    Require(SetCmsContentInfoContent(info, content.data(), Size(content)), "setting the content");
    return Require(Get(EncodeCmsContentInfo, info), "encoding a message");
}

inline CmsSignerInfo* SignerOf(const OwnedSignedData& signedData, uint32_t index) {
    CmsSignerInfo* signer = nullptr;
    Require(GetCmsSignedDataSignerInfo(signedData, index, &signer), "reaching a signer");
    return signer;
}

// --- Texts ---

// Texts of the library for a person are in code page 1251. Russian letters are all that is taken over here.
inline std::string ToUtf8(const Bytes& cp1251) {
    std::string utf8;
    for (const uint8_t byte : cp1251) {
        const unsigned letter = 0x410u + byte - 0xC0u;
        if (byte >= 0xC0) {
            utf8 += {static_cast<char>(0xC0 | letter >> 6), static_cast<char>(0x80 | (letter & 0x3F))};
        } else {
            utf8 += byte < 0x80 ? static_cast<char>(byte) : '?';
        }
    }
    return utf8;
}

// The common name in the certificate that a signer refers to, if it is in the message.
inline std::string DescribeSigner(const OwnedSignedData& signedData, uint32_t index) {
    uint32_t count = 0;
    Require(GetCmsSignedDataCertificatesCount(signedData, &count), "counting certificates");
    for (uint32_t i = 0; i < count; ++i) {
        uint8_t kind = 0;
        const Bytes der =
            Require(Get(GetCmsSignedDataEncodedCertificate, signedData, i, &kind), "reaching a certificate");
        OwnedCertificate certificate;
        Require(DecodeCertificate(der.data(), Size(der), certificate.Out()), "decoding a certificate");
        if (CompareSignerInfoAndCertificate(SignerOf(signedData, index), certificate) == StatusOk) {
            return ToUtf8(Require(Get(GetCertificateCN, certificate), "reading a name"));
        }
    }
    return "somebody whose certificate isn't here";
}

// When a signature was made, by its own account, and who certified the signer. Its number counts from 1.
inline std::string DescribeSignature(const Bytes& message, uint32_t number) {
    LibraryTime time = {};
    Bytes issuer(1024);
    uint32_t length = Size(issuer);
    const Status status =
        GetBufferCmsSignatureTimeAndCN(number, message.data(), Size(message), &time, issuer.data(), &length);
    // A signature without attributes states no time. The text is there all the same.
    if (status != StatusNotFound) Require(status, "reading a signing time");
    issuer.resize(length);
    char when[80] = "";
    if (status == StatusOk) {
        snprintf(when, sizeof when, ", at %04u-%02u-%02u %02u:%02u:%02u UTC", time.year, time.month, time.day,
                 time.hour, time.minute, time.second);
    }
    return "certified by " + ToUtf8(issuer) + when;
}

inline void PrintSigners(const Bytes& message) {
    const OwnedSignedData signedData = ReadMessage(message);
    uint32_t count = 0;
    Require(GetCmsSignedDataSignerInfosCount(signedData, &count), "counting signers");
    for (uint32_t i = 0; i < count; ++i) {
        printf("    signed by %s, %s\n", DescribeSigner(signedData, i).c_str(),
               DescribeSignature(message, i + 1).c_str());
    }
}

}  // namespace examples
