// Walks over messages, signed and enveloped, and over what lies in them.
#pragma once

#include "walk_values.h"

namespace walk {

// Attributes of a message, which may be absent, and their values.
inline void WalkMessageAttributes(RsaAttributes attributes) {
    if (Get(EncodeRsaAttributes, attributes)) WalkAttributesAnd(attributes, WalkAttributeValue);
}

// What an identifier gives, set again, changes nothing; nor does its name, which is its own.
void WalkIdentifier(auto* of, auto get, auto setIssuer, auto setKeyId) {
    X509Name* issuer = nullptr;
    const auto before = Get(get, of, &issuer, kOut, kOut);
    if (!before) return;
    const auto& [serial, keyId] = *before;
    if (issuer != nullptr) WalkName(issuer);
    Require((issuer != nullptr ? keyId : serial).size() == 0);
    Require(Ok(issuer != nullptr ? setIssuer(of, issuer, serial.data(), serial.size())
                                 : setKeyId(of, keyId.data(), keyId.size())));
    Require(Get(get, of, &issuer, kOut, kOut) == before);
}

// The certificates that a message carries are in it already, and its lists can't be read.
template <class T>
void WalkCertificatesAndCrls(T* of, auto count, auto get, auto add, auto countCrls, auto getCrl) {
    const uint32_t before = Lent(count, of);
    Each(count, of, [&](uint32_t i) {
        uint8_t kind = 0;
        const auto certificate = Get(get, of, i, &kind);
        if (!certificate || kind == 0 || (*certificate)[0].Has(0xBF)) return;
        Sure(add(of, kind, (*certificate)[0].data(), (*certificate)[0].size()));
    });
    Require(Lent(count, of) == before);
    Each(countCrls, of, [&](uint32_t i) {
        uint8_t kind = 9;
        Require(getCrl(of, i, &kind, nullptr, nullptr) == StatusBadEncoding && kind == 9);
    });
}
#define CERTIFICATES_AND_CRLS(Message)                                                                   \
    Get##Message##CertificatesCount, Get##Message##EncodedCertificate, Add##Message##EncodedCertificate, \
        Get##Message##CrlsCount, Get##Message##EncodedCrl

// ---- Signed messages ----

inline void WalkSigner(CmsSignerInfo* signer) {
    WalkIdentifier(signer, GetCmsSignerInfoSignerIdentifier, SetCmsSignerInfoSignerIdentifierIssuerAndSerialNumber,
                   SetCmsSignerInfoSignerSubjectKeyIdentifier);
    const auto [encoded] = Sure(Get(GetCmsSignerInfoEncodedSignedAttributes, signer));
    Require(encoded.size() == 0 || encoded.data()[0] == 0x31);
    WalkMessageAttributes(Lent(GetCmsSignerInfoSignedAttributes, signer));
    WalkMessageAttributes(Lent(GetCmsSignerInfoUnsignedAttributes, signer));
    WalkVersion(signer, PROPERTY(CmsSignerInfoVersion));
    Require(PutBack<Octets>(signer, PROPERTY(CmsSignerInfoSignature)));
    Require(PutBack<Oid, Maybe>(signer, PROPERTY(CmsSignerInfoDigestAlgorithmOidAndParameters)));
    Require(PutBack<Oid, Maybe>(signer, PROPERTY(CmsSignerInfoSignatureAlgorithmOidAndParameters)));
}

inline void WalkSignedData(CmsSignedData* message) {
    WalkVersion(message, PROPERTY(CmsSignedDataVersion));
    Each(GetCmsSignedDataDigestAlgorithmsCount, message, [&](uint32_t i) {
        Require(Carry<Oid, Maybe>(Of(GetCmsSignedDataDigestAlgorithmOidAndParameters, message, i),
                                  Of(AddCmsSignedDataDigestAlgorithmOidAndParameters, message)));
    });
    const CmsContentInfo* content = Lent(GetCmsSignedDataContentInfo, message);
    Require(Sure(Get(GetCmsSignedDataContentTypeOid, message)) == Sure(Get(GetCmsContentInfoTypeOid, content)));
    const auto signedContent = Sure(Get(GetCmsSignedDataContent, message));
    Require(signedContent == Sure(Get(GetCmsContentInfoContent, content)));
    WalkTimeStamp(signedContent[0]);
    WalkCertificatesAndCrls(message, CERTIFICATES_AND_CRLS(CmsSignedData));
    Each(GetCmsSignedDataSignerInfosCount, message,
         [&](uint32_t i) { WalkSigner(Lent(GetCmsSignedDataSignerInfo, message, i)); });
}

// And setters. A new signer can't be written until it is somebody, a CRL that was added never; without them the message
// is what it was.
inline void WalkAndChangeSignedData(CmsSignedData* original) {
    const auto owner = Make<FreeCmsSignedData>(CreateCmsSignedDataCopy, original);
    if (!owner) return;  // something in it can't be copied
    CmsSignedData* copy = owner.get();
    const MaybeBytes encoded = Sure(Get(EncodeCmsSignedData, copy));
    const uint32_t signers = Lent(GetCmsSignedDataSignerInfosCount, copy);
    uint32_t length = 0;
    Require(Lent(AddCmsSignedDataSignerInfo, copy) != nullptr);
    Require(EncodeCmsSignedData(copy, nullptr, &length) == StatusAbsent);
    Sure(DeleteCmsSignedDataSignerInfo(copy, signers));
    Require(Get(EncodeCmsSignedData, copy) == encoded);
    Sure(AddCmsSignedDataEncodedCrl(copy, CmsCrlKindCertificateList, (*encoded)[0].data(), 1));
    Require(EncodeCmsSignedData(copy, nullptr, &length) == StatusBadAlternative);
    WalkSignedData(copy);
    WalkSignedData(original);
    Sure(SetCmsSignedDataContent(copy, nullptr, 0));
    for (const auto remove : {RemoveCmsSignedDataCrls, RemoveCmsSignedDataCertificates, ClearCmsSignedDataSignerInfos,
                              ClearCmsSignedDataDigestAlgorithms})
        Sure(remove(copy));
    Sure(Get(EncodeCmsSignedData, copy));
}

// A file's bytes: what is left without a signer is a message, or plain content; a new signer is one more.
inline uint32_t CountSigners(const Bytes& in) {
    for (uint32_t signers = 0;; ++signers)
        if (!Ok(GetBufferCmsSignatureTime(signers + 1, in.data(), in.size(), nullptr))) return signers;
}

inline void WalkMessageFile(const Bytes& in) {
    // Serial number 5, issuer CN=A, nothing else of interest.
    const Bytes signer(
        "0\2000\200\002\001\0050\004\006\002*"
        "\0030\0141\0120\010\006\003U\004\003\014\001A0\036\027\015250101000000Z\027\015250101000000Z0\0000\0120\004"
        "\006\002*\003\003\002\000\001\000\0000\004\006\002*\003\003\002\000\001\000\000\000",
        88);
    for (const uint32_t number : {1u, 2u}) {
        uint8_t text[1100];
        uint32_t length = sizeof text;
        LibraryTime time{};
        (void)GetBufferCmsSignatureTimeAndCN(number, in.data(), in.size(), &time, text, &length);
        const auto left = Get(DeleteBufferCmsSignerInfo, number, in.data(), in.size());
        if (left && number == 2)
            Require(Make<FreeCmsContentInfo>(DecodeCmsContentInfo, (*left)[0].data(), (*left)[0].size()) != nullptr);
        const auto more = Get(CreateCmsFileSignature2, number == 1 ? nullptr : kAnyBytes, 2, kAnyBytes, 2, &kAnyTime,
                              kAnyBytes, nullptr, 0, signer.data(), signer.size(), nullptr, nullptr, 0, kAnyBytes,
                              nullptr, 0, number - 1, nullptr, nullptr, kAnyBytes, 2, in.data(), in.size());
        if (more) Require(CountSigners((*more)[0]) == CountSigners(in) + 1);
    }
}

// ---- Enveloped messages ----

inline void WalkGostTransport(GostR3410KeyTransport* from) {
    const auto rebuilt = Make<FreeGostR3410KeyTransport>(CreateGostR3410KeyTransport);
    GostR3410KeyTransport* const to = rebuilt.get();
    // A set that is there already would be emptied.
    if (!Carry<Oid>(Of(GetGostR3410KeyTransportEncryptionParamSetOid, from),
                    Of(SetGostR3410KeyTransportEncryptionParamSetOid, to)))
        for (auto* each : {from, to}) Sure(SetGostR3410KeyTransportEncryptionParamSetOid(each, kAnyBytes));
    Share<Octets>(from, to, PROPERTY(GostR3410KeyTransportEncryptedKey), kAnyBytes, 2);
    Share<Octets>(from, to, PROPERTY(GostR3410KeyTransportMacKey), kAnyBytes, 2);
    Share<Octets>(from, to, PROPERTY(GostR3410KeyTransportMaskKey), kAnyBytes, 2);
    Share<Octets>(from, to, PROPERTY(GostR3410KeyTransportUkm), kAnyBytes, 2);
    Share<Octets>(from, to, PROPERTY(GostR3410KeyTransportEphemeralPublicKey), kAnyBytes, 2);
    Share<Oid, Maybe>(from, to, PROPERTY(GostR3410KeyTransportEphemeralPublicKeyAlgorithmOidAndParameters), kAnyBytes,
                      nullptr, 0);
    RequireSame(Get(EncodeGostR3410KeyTransport, from), Get(EncodeGostR3410KeyTransport, to));
}

inline void WalkRecipient(KeyTrans* recipient) {
    WalkVersion(recipient, PROPERTY(KeyTransVersion));
    Require(PutBack<Oid, Maybe>(recipient, PROPERTY(KeyTransKeyEncryptionAlgorithmOidAndParameters)));
    const auto [key] = Sure(Get(GetKeyTransEncryptedKey, recipient));
    WalkIdentifier(recipient, GetKeyTransRecipientIdentifier, SetKeyTransRecipientIdentifierIssuerAndSerialNumber,
                   SetKeyTransRecipientIdentifierSubjectKeyIdentifier);
    WALK(GostR3410KeyTransport, key, WalkGostTransport);
}

inline void WalkEnvelopedData(CmsEnvelopedData* message) {
    WalkVersion(message, PROPERTY(CmsEnvelopedDataVersion));
    WalkCertificatesAndCrls(message, CERTIFICATES_AND_CRLS(CmsEnvelopedData));
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
    WalkCodecs<Octets, Oid>(parameters, Complete(DecodeGost2814789Parameters), EncodeGost2814789Parameters);
    WalkMessageAttributes(Lent(GetCmsEnvelopedDataUnprotectedAttributes, message));
    for (const auto remove :
         {RemoveCmsEnvelopedDataCrls, RemoveCmsEnvelopedDataCertificates, RemoveCmsEnvelopedDataRecipientInfos})
        Sure(remove(message));
    Sure(Get(EncodeCmsEnvelopedData, message));
}

// ---- Whole messages ----

inline void WalkContent(const Bytes& in) {
    WALK(CmsSignedData, in, WalkAndChangeSignedData);
    WALK(CmsEnvelopedData, in, WalkEnvelopedData);
}

inline void WalkContentInfo(CmsContentInfo* info) {
    const auto copy = Make<FreeCmsContentInfo>(CreateCmsContentInfoCopy, info);
    const auto [oid] = Sure(Get(GetCmsContentInfoTypeOid, info));
    const auto [content] = Sure(Get(GetCmsContentInfoContent, info));
    WalkContent(content);
    (void)Get(DecodeCmsContentInfoContent, content.data(), content.size());
    Require(oid.size() > 256 || Ok(SetCmsContentInfoTypeOid(copy.get(), oid.data())));
    Sure(SetCmsContentInfoContent(copy.get(), content.data(), content.size()));
    Require(Get(EncodeCmsContentInfo, copy.get()) == Get(EncodeCmsContentInfo, info));
}

inline void WalkSeveral(SeveralData* several) {
    const auto remove = [=](uint32_t) { Sure(RemoveSeveralDataContentInfo(several, 0)); };
    Each(GetSeveralDataContentInfoCount, several,
         [&](uint32_t i) { WalkContentInfo(Lent(GetSeveralDataContentInfo, several, i)); });
    Each(GetSeveralDataContentInfoCount, several, remove);
    Require(Lent(GetSeveralDataContentInfoCount, several) == 0);
}

inline void WalkMessage(const Bytes& in) {
    WalkMessageFile(in);
    WalkContent(in);
    WALK(CmsContentInfo, in, WalkContentInfo);
    WALK(SeveralData, in, WalkSeveral);
    WALK(KeyTrans, in, WalkRecipient);
}

}  // namespace walk
