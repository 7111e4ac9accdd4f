// Walks over messages, signed and enveloped, and over what lies in them.
#pragma once

#include "walk_values.h"

namespace walk {

// Attributes of a message, which may be absent, and their values.
inline void WalkMessageAttributes(RsaAttributes attributes) {
    if (!Get(EncodeRsaAttributes, attributes)) return;
    WalkAttributes(attributes);
    Each(GetRsaAttributesAttributesCount, attributes, [&](uint32_t i) {
        const auto count = [=](auto of, uint32_t* n) { return GetRsaAttributesAttributeValuesCount(of, i, n); };
        Each(count, attributes,
             [&](uint32_t j) { WalkAttributeValue(Sure(Get(GetRsaAttributesAttributeValue, attributes, i, j))[0]); });
    });
}

// What an identifier gives, set again, changes nothing; nor does its name, which is its own.
template <class T, class Encode>
void WalkIdentifier(T* of, auto get, auto setIssuer, auto setKeyId, Encode encode) {
    X509Name* issuer = nullptr;
    Bytes serial(1 << 16), keyId(1 << 16);
    uint32_t serialLength = serial.size(), keyIdLength = keyId.size();
    if (!Ok(get(of, &issuer, serial.data(), &serialLength, keyId.data(), &keyIdLength))) return;
    const auto before = encode(of);
    if (issuer != nullptr) WalkName(issuer);
    Require((issuer != nullptr ? keyIdLength : serialLength) == 0);
    Require(Ok(issuer != nullptr ? setIssuer(of, issuer, serial.data(), serialLength)
                                 : setKeyId(of, keyId.data(), keyIdLength)));
    Require(encode(of) == before);
}

// The certificates that a message carries are in it already.
template <class T>
void WalkCertificateSet(T* of, auto count, auto get, auto add) {
    uint32_t before = 0, after = 0;
    Require(Ok(count(of, &before)));
    Each(count, of, [&](uint32_t i) {
        uint8_t kind = 0;
        const auto certificate = Get(get, of, i, &kind);
        if (!certificate || kind == 0 || (*certificate)[0].Has(0xBF)) return;
        Require(Ok(add(of, kind, (*certificate)[0].data(), (*certificate)[0].size())));
    });
    Require(Ok(count(of, &after)) && after == before);
}

inline void WalkCrlSet(auto* of, auto count, auto get) {
    Each(count, of, [&](uint32_t i) {
        uint8_t kind = 9;
        Require(get(of, i, &kind, nullptr, nullptr) == StatusBadEncoding && kind == 9);
    });
}

// ---- Signed messages ----

inline void WalkSigner(CmsSignerInfo* signer) {
    int32_t version = 0;
    RsaAttributes attributes = nullptr;
    (void)GetCmsSignerInfoVersion(signer, &version);
    Sure(Get(GetCmsSignerInfoDigestAlgorithmOidAndParameters, signer, kOut, kOut));
    Sure(Get(GetCmsSignerInfoSignatureAlgorithmOidAndParameters, signer, kOut, kOut));
    Sure(Get(GetCmsSignerInfoSignature, signer));
    WalkIdentifier(signer, GetCmsSignerInfoSignerIdentifier, SetCmsSignerInfoSignerIdentifierIssuerAndSerialNumber,
                   SetCmsSignerInfoSignerSubjectKeyIdentifier, [](CmsSignerInfo* of) {
                       X509Name* issuer = nullptr;
                       return Sure(Get(GetCmsSignerInfoSignerIdentifier, of, &issuer, kOut, kOut));
                   });
    const auto [encoded] = Sure(Get(GetCmsSignerInfoEncodedSignedAttributes, signer));
    Require(Ok(GetCmsSignerInfoSignedAttributes(signer, &attributes)));
    Require(encoded.size() == 0 || encoded.data()[0] == 0x31);
    WalkMessageAttributes(attributes);
    Require(Ok(GetCmsSignerInfoUnsignedAttributes(signer, &attributes)));
    WalkMessageAttributes(attributes);
}

inline void WalkSignedData(CmsSignedData* message) {
    int32_t version = 0;
    CmsContentInfo* content = nullptr;
    (void)GetCmsSignedDataVersion(message, &version);
    Each(GetCmsSignedDataDigestAlgorithmsCount, message, [&](uint32_t i) {
        Require(Carry<Oid, Maybe>(Of(GetCmsSignedDataDigestAlgorithmOidAndParameters, message, i),
                                  Of(AddCmsSignedDataDigestAlgorithmOidAndParameters, message)));
    });
    Require(Ok(GetCmsSignedDataContentInfo(message, &content)));
    Require(Sure(Get(GetCmsSignedDataContentTypeOid, message)) == Sure(Get(GetCmsContentInfoTypeOid, content)));
    const auto signedContent = Sure(Get(GetCmsSignedDataContent, message));
    Require(signedContent == Sure(Get(GetCmsContentInfoContent, content)));
    WalkTimeStamp(signedContent[0]);
    WalkCertificateSet(message, GetCmsSignedDataCertificatesCount, GetCmsSignedDataEncodedCertificate,
                       AddCmsSignedDataEncodedCertificate);
    WalkCrlSet(message, GetCmsSignedDataCrlsCount, GetCmsSignedDataEncodedCrl);
    Each(GetCmsSignedDataSignerInfosCount, message, [&](uint32_t i) {
        CmsSignerInfo* signer = nullptr;
        Require(Ok(GetCmsSignedDataSignerInfo(message, i, &signer)));
        WalkSigner(signer);
    });
}

// And setters. A new signer can't be written until it is somebody, a CRL that was added never; without them the message
// is what it was.
inline void WalkAndChangeSignedData(CmsSignedData* original) {
    const auto owner = Make<FreeCmsSignedData>(CreateCmsSignedDataCopy, original);
    if (!owner) return;  // something in it can't be copied
    CmsSignedData* copy = owner.get();
    const auto encoded = Get(EncodeCmsSignedData, copy);
    Require(encoded.has_value());
    CmsSignerInfo* signer = nullptr;
    uint32_t signers = 0, length = 0;
    Require(Ok(GetCmsSignedDataSignerInfosCount(copy, &signers)) && Ok(AddCmsSignedDataSignerInfo(copy, &signer)));
    Require(EncodeCmsSignedData(copy, nullptr, &length) == StatusAbsent);
    Require(Ok(DeleteCmsSignedDataSignerInfo(copy, signers)) && Get(EncodeCmsSignedData, copy) == encoded);
    Require(Ok(AddCmsSignedDataEncodedCrl(copy, CmsCrlKindCertificateList, (*encoded)[0].data(), 1)));
    Require(EncodeCmsSignedData(copy, nullptr, &length) == StatusBadAlternative);
    WalkSignedData(copy);
    WalkSignedData(original);
    Require(Ok(RemoveCmsSignedDataCrls(copy)) && Ok(RemoveCmsSignedDataCertificates(copy)));
    Require(Ok(SetCmsSignedDataContent(copy, nullptr, 0)) && Ok(ClearCmsSignedDataSignerInfos(copy)));
    Require(Ok(ClearCmsSignedDataDigestAlgorithms(copy)));
    Sure(Get(EncodeCmsSignedData, copy));
}

// A file's bytes: what is left without a signer is a message, or plain content.
inline void WalkMessageFile(const Bytes& in) {
    for (const uint32_t number : {1u, 2u}) {
        uint8_t text[1100];
        uint32_t length = sizeof text;
        LibraryTime time{};
        (void)GetBufferCmsSignatureTimeAndCN(number, in.data(), in.size(), &time, text, &length);
        const auto left = Get(DeleteBufferCmsSignerInfo, number, in.data(), in.size());
        if (left && number == 2)
            Require(Make<FreeCmsContentInfo>(DecodeCmsContentInfo, (*left)[0].data(), (*left)[0].size()) != nullptr);
    }
}

// ---- Enveloped messages ----

inline void WalkGostTransport(GostR3410KeyTransport* transport) {
    for (const auto get : {GetGostR3410KeyTransportEncryptedKey, GetGostR3410KeyTransportMacKey,
                           GetGostR3410KeyTransportMaskKey, GetGostR3410KeyTransportUkm,
                           GetGostR3410KeyTransportEncryptionParamSetOid, GetGostR3410KeyTransportEphemeralPublicKey}) {
        (void)Get(get, transport);
    }
    (void)Get(GetGostR3410KeyTransportEphemeralPublicKeyAlgorithmOidAndParameters, transport, kOut, kOut);
    const uint8_t byte[] = {1, 42};
    Require(Ok(SetGostR3410KeyTransportMaskKey(transport, byte, 1)) &&
            Ok(SetGostR3410KeyTransportUkm(transport, byte, 1)));
    Require(Ok(SetGostR3410KeyTransportEphemeralPublicKey(transport, byte, 2)));
    Require(Ok(SetGostR3410KeyTransportEphemeralPublicKeyAlgorithmOidAndParameters(transport, byte, nullptr, 0)));
    Require(Ok(SetGostR3410KeyTransportEncryptionParamSetOid(transport, byte)));
    Sure(Get(EncodeGostR3410KeyTransport, transport));
    Require(Ok(SetGostR3410KeyTransportEphemeralPublicKey(transport, nullptr, 0)));
}

inline void WalkRecipient(KeyTrans* recipient) {
    int32_t version = 0;
    (void)GetKeyTransVersion(recipient, &version);
    Sure(Get(GetKeyTransKeyEncryptionAlgorithmOidAndParameters, recipient, kOut, kOut));
    const auto [key] = Sure(Get(GetKeyTransEncryptedKey, recipient));
    WalkIdentifier(recipient, GetKeyTransRecipientIdentifier, SetKeyTransRecipientIdentifierIssuerAndSerialNumber,
                   SetKeyTransRecipientIdentifierSubjectKeyIdentifier,
                   [](KeyTrans* of) { return Get(EncodeKeyTrans, of); });
    WalkObject<FreeGostR3410KeyTransport>(key, DecodeGostR3410KeyTransport, EncodeGostR3410KeyTransport,
                                          WalkGostTransport);
}

inline void WalkEnvelopedData(CmsEnvelopedData* message) {
    int32_t version = 0;
    RsaAttributes attributes = nullptr;
    (void)GetCmsEnvelopedDataVersion(message, &version);
    WalkCertificateSet(message, GetCmsEnvelopedDataCertificatesCount, GetCmsEnvelopedDataEncodedCertificate,
                       AddCmsEnvelopedDataEncodedCertificate);
    WalkCrlSet(message, GetCmsEnvelopedDataCrlsCount, GetCmsEnvelopedDataEncodedCrl);
    Each(GetCmsEnvelopedDataRecipientInfosCount, message, [&](uint32_t i) {
        void* recipient = nullptr;
        uint32_t kind = 0;
        Require(Ok(GetCmsEnvelopedDataRecipientInfo(message, i, &recipient, &kind)) && kind >= 1 && kind <= 5);
        if (kind == CmsRecipientKindKeyTransport) WalkRecipient(static_cast<KeyTrans*>(recipient));
    });
    Sure(Get(GetCmsEnvelopedDataEncryptedContentTypeOid, message));
    Sure(Get(GetCmsEnvelopedDataEncryptedContent, message));
    const auto [oid, parameters] =
        Sure(Get(GetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters, message, kOut, kOut));
    WalkParts<Octets, Oid>(parameters, Complete(DecodeGost2814789Parameters), EncodeGost2814789Parameters);
    Require(Ok(GetCmsEnvelopedDataUnprotectedAttributes(message, &attributes)));
    WalkMessageAttributes(attributes);
    Require(Ok(RemoveCmsEnvelopedDataCrls(message)) && Ok(RemoveCmsEnvelopedDataCertificates(message)));
    Require(Ok(RemoveCmsEnvelopedDataRecipientInfos(message)));
    Sure(Get(EncodeCmsEnvelopedData, message));
}

// ---- Whole messages ----

inline void WalkContent(const Bytes& in) {
    WalkObject<FreeCmsSignedData>(in, DecodeCmsSignedData, EncodeCmsSignedData, WalkAndChangeSignedData);
    WalkObject<FreeCmsEnvelopedData>(in, DecodeCmsEnvelopedData, EncodeCmsEnvelopedData, WalkEnvelopedData);
}

inline void WalkContentInfo(CmsContentInfo* info) {
    const auto copy = Make<FreeCmsContentInfo>(CreateCmsContentInfoCopy, info);
    const auto [oid] = Sure(Get(GetCmsContentInfoTypeOid, info));
    const auto [content] = Sure(Get(GetCmsContentInfoContent, info));
    WalkContent(content);
    (void)Get(DecodeCmsContentInfoContent, content.data(), content.size());
    Require(oid.size() > 256 || Ok(SetCmsContentInfoTypeOid(copy.get(), oid.data())));
    Require(Ok(SetCmsContentInfoContent(copy.get(), content.data(), content.size())));
    Require(Get(EncodeCmsContentInfo, copy.get()) == Get(EncodeCmsContentInfo, info));
}

inline void WalkSeveral(SeveralData* several) {
    uint32_t count = 0;
    Each(GetSeveralDataContentInfoCount, several, [&](uint32_t i) {
        CmsContentInfo* info = nullptr;
        Require(Ok(GetSeveralDataContentInfo(several, i, &info)));
        WalkContentInfo(info);
    });
    while (Ok(GetSeveralDataContentInfoCount(several, &count)) && count != 0) {
        Require(Ok(RemoveSeveralDataContentInfo(several, 0)));
    }
}

inline void WalkMessage(const Bytes& in) {
    WalkMessageFile(in);
    WalkContent(in);
    WalkObject<FreeCmsContentInfo>(in, DecodeCmsContentInfo, EncodeCmsContentInfo, WalkContentInfo);
    WalkObject<FreeSeveralData>(in, DecodeSeveralData, EncodeSeveralData, WalkSeveral);
    WalkObject<FreeKeyTrans>(in, DecodeKeyTrans, EncodeKeyTrans, WalkRecipient);
}

}  // namespace walk
