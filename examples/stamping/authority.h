// The authority: gives time-stamps.
#pragma once

#include <chrono>
#include <string_view>

#include "../ocsp/hash.h"
#include "../signing/cades.h"
#include "messages.h"

namespace examples {

// --- What a time-stamp says ---

inline OwnedGeneralName NameOf(const Identity& authority) {
    const Bytes der = Require(Get(EncodeX509Name, SubjectOf(authority.certificate)), "encoding a name");
    OwnedGeneralName name;
    Require(AllocX509GeneralNameValue(name.Out(), X509GeneralNameDirectoryName, der.data(), Size(der)),
            "making a general name");
    return name;
}

// To the microsecond: the clock of the library has whole seconds.
inline LibraryPreciseTime PreciseNow() {
    using namespace std::chrono;
    const auto now = floor<microseconds>(system_clock::now());
    const auto midnight = floor<days>(now);
    const year_month_day date(midnight);
    const hh_mm_ss time(now - midnight);
    const auto fraction = static_cast<uint32_t>(time.subseconds().count());
    LibraryPreciseTime result = {};
    Require(SetLibraryPreciseTime(&result, static_cast<unsigned>(date.day()),
                                  static_cast<int32_t>(static_cast<unsigned>(date.month())),
                                  static_cast<int>(date.year()), static_cast<uint32_t>(time.hours().count()),
                                  static_cast<uint32_t>(time.minutes().count()),
                                  static_cast<uint32_t>(time.seconds().count()), fraction / 1000, fraction % 1000),
            "setting a time");
    return result;
}

inline Bytes MakeTstInfo(const Identity& authority, const TimeStampRequest& request) {
    static constexpr Accuracy kAccuracy = {1, 500, 0};
    static constexpr uint32_t kOrdering = 1;  // of two time-stamps the one with the greater time is the later one
    static constexpr std::string_view kText = "an example, worth nothing";
    const LibraryPreciseTime now = PreciseNow();
    OwnedExtensions extensions;
    Require(CreateX509Extensions(extensions.Out()), "making extensions");
    AddExtension(
        extensions, kWorth, false,
        Get(EncodeAsn1UTF8String, reinterpret_cast<const uint8_t*>(kText.data()), static_cast<uint32_t>(kText.size())));
    const Imprint& imprint = request.imprint;
    const Bytes serial = MakeSerialNumber();
    return Require(
        Get(EncodeTSTInfo, 1, Oid(kPolicy).data(), imprint.hashOid.data(), OrNull(imprint.parameters),
            Size(imprint.parameters), imprint.hash.data(), Size(imprint.hash), serial.data(), Size(serial), &now,
            &kAccuracy, kOrdering, OrNull(request.nonce), Size(request.nonce), NameOf(authority), extensions),
        "encoding a TSTInfo");
}

// --- The token: signed data around it ---

inline void AddSignedAttributes(const Identity& authority, const Bytes& content, RsaAttributes attributes) {
    const Bytes digest = Digest(authority.suite, content);
    AddAttribute(attributes, "1.2.840.113549.1.9.3",  // id-contentType
                 Require(Get(EncodeRsaAttributeContentTypeValue, Oid(kTstInfo).data()), "encoding an attribute"));
    AddAttribute(
        attributes, "1.2.840.113549.1.9.4",  // id-messageDigest
        Require(Get(EncodeRsaAttributeMessageDigestValue, digest.data(), Size(digest)), "encoding an attribute"));
    Require(AppendRsaAttributes(attributes, MakeSigningCertificateAttribute(authority)), "adding an attribute");
}

inline void FillSigner(const Identity& authority, const Bytes& content, CmsSignerInfo* signer) {
    const Bytes serial = Require(Get(GetCertificateSerialNumber, authority.certificate), "reading a serial number");
    X509Name* issuer = nullptr;
    Require(GetCertificateIssuer(authority.certificate, &issuer), "reaching the issuer");
    Require(SetCmsSignerInfoVersion(signer, 1), "setting the version");  // as the signer is named by the two
    Require(SetCmsSignerInfoSignerIdentifierIssuerAndSerialNumber(signer, issuer, serial.data(), Size(serial)),
            "naming the signer");
    Require(SetCmsSignerInfoDigestAlgorithmOidAndParameters(signer, DigestOid(authority.suite).data(), nullptr, 0),
            "setting the digest algorithm");
    Require(SetCmsSignerInfoSignatureAlgorithmOidAndParameters(signer, Oid(authority.suite.signatureOid).data(),
                                                               nullptr, 0),
            "setting the signature algorithm");
    RsaAttributes attributes = nullptr;
    Require(GetCmsSignerInfoSignedAttributes(signer, &attributes), "reaching the signed attributes");
    AddSignedAttributes(authority, content, attributes);
    const Bytes signature =
        Sign(authority.suite, authority.key.get(),
             Require(Get(GetCmsSignerInfoEncodedSignedAttributes, signer), "encoding the signed attributes"));
    Require(SetCmsSignerInfoSignature(signer, signature.data(), Size(signature)), "setting the signature");
}

inline Bytes MakeToken(const Identity& authority, const TimeStampRequest& request) {
    const Bytes content = MakeTstInfo(authority, request);
    OwnedSignedData token;
    Require(CreateCmsSignedData(token.Out()), "making signed data");
    Require(SetCmsSignedDataVersion(token, 3), "setting the version");  // as the content isn't plain data
    Require(AddCmsSignedDataDigestAlgorithmOidAndParameters(token, DigestOid(authority.suite).data(), nullptr, 0),
            "adding the digest algorithm");
    Require(SetCmsSignedDataContentTypeOid(token, Oid(kTstInfo).data()), "setting the content type");
    Require(SetCmsSignedDataContent(token, content.data(), Size(content)), "setting the content");
    if (request.certificateWanted) {
        const Bytes certificate = authority.Der();
        Require(AddCmsSignedDataEncodedCertificate(token, CmsCertificateKindCertificate, certificate.data(),
                                                   Size(certificate)),
                "adding a certificate");
    }
    CmsSignerInfo* signer = nullptr;
    Require(AddCmsSignedDataSignerInfo(token, &signer), "adding a signer");
    FillSigner(authority, content, signer);
    return WriteMessage(token);
}

// --- The response ---

inline Bytes Grant(const Bytes& token) {
    OwnedContentInfo info;
    Require(DecodeCmsContentInfo(token.data(), Size(token), info.Out()), "decoding a token");
    return Require(Get(EncodeTimeStampResp, kGranted, nullptr, kNoFailure, info), "encoding a response");
}

inline Bytes Reject(TimeStampFailure failure, std::string_view reason) {
    OwnedFreeText text;
    Require(CreatePKIFreeText(text.Out()), "making a text");
    Require(AddPKIFreeTextString(text, reinterpret_cast<const uint8_t*>(reason.data()),
                                 static_cast<uint32_t>(reason.size())),
            "adding a text");
    return Require(Get(EncodeTimeStampResp, kRejection, text, failure, nullptr), "encoding a response");
}

inline bool IsHash(const Imprint& imprint) {
    const EVP_MD* const digest = FindDigest(imprint.hashOid);
    return digest != nullptr && imprint.hash.size() == static_cast<size_t>(EVP_MD_get_size(digest));
}

inline Bytes AnswerRequest(const Identity& authority, const Bytes& bytes) {
    TimeStampRequest request;
    if (DecodeRequest(bytes, request) != StatusOk) return Reject(kBadDataFormat, "this is no request");
    if (!IsHash(request.imprint)) return Reject(kBadAlgorithm, "this is no hash of a known algorithm");
    const bool anyPolicy = request.policy.empty();
    if (!anyPolicy && request.policy != Oid(kPolicy)) return Reject(kUnacceptedPolicy, "there is another policy here");
    if (request.hasExtensions) return Reject(kUnacceptedExtension, "no extensions are understood here");
    return Grant(MakeToken(authority, request));
}

}  // namespace examples
