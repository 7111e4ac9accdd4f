// Walks over revocation lists and requests, as those of walk.h over certificates.
#pragma once

#include <map>

#include "walk.h"

namespace walk {

// ---- Revocation lists ----

// Each entry is found under the issuer that is in force there: that of the list, or the last directory name that an
// entry up to it carries. What is read later goes over that name.
inline void WalkEntries(X509Crl* crl, const X509Name* own) {
    constexpr uint8_t kCertificateIssuer[] = {3, 0x55, 0x1D, 0x1D};
    const auto text = [](const Bytes& bytes) { return std::string(bytes.data(), bytes.end()); };
    std::string carried(1500, 0), inForce = text(Sure(Get(EncodeX509Name, own))[0]);
    bool readable = inForce.size() <= carried.size(), replaced = false;
    std::map<std::pair<std::string, std::string>, uint32_t> first;
    Each(GetX509CrlRevokedCertificateCount, crl, [&](uint32_t i) {
        LibraryTime date{};
        X509Extensions extensions = nullptr;
        uint32_t kind = 0, found = 0;
        if (Ok(GetX509CrlRevokedCertificateRevokationDate(crl, i, &date))) Sure(Get(EncodeTime, &date));
        Require(Ok(GetX509CrlRevokedCertificateExtensions(crl, i, &extensions)));
        WalkExtensions(extensions);
        if (const auto value = Get(GetX509ExtensionsExtensionValue, extensions, kCertificateIssuer)) {
            const auto& [bytes] = *value;
            const auto names = Make<FreeX509GeneralNames>(DecodeX509GeneralNames, bytes.data(), bytes.size());
            const auto read = [&](uint32_t j) {
                const auto [name] = Sure(Get(GetX509GeneralName, names.get(), j, &kind, kOut));
                const bool directory = kind == X509GeneralNameDirectoryName;
                carried.replace(0, name.size(), text(name));
                replaced = replaced || directory;
                if (replaced) inForce = carried.substr(0, directory ? name.size() : inForce.size());
            };
            readable = readable && names && bytes.size() <= carried.size();
            if (readable) Each(GetX509GeneralNameCount, names.get(), read);
        }
        const auto [serial] = Sure(Get(GetX509CrlRevokedCertificateSerialNumber, crl, i));
        const Bytes der(inForce.data(), inForce.size());
        const auto name = Make<FreeX509Name>(DecodeX509Name, der.data(), der.size());
        readable = readable && serial.size() <= 150;
        if (!readable || !name || !(Sure(Get(EncodeX509Name, name.get()))[0] == der)) return;
        const uint32_t index = first.try_emplace({inForce, text(serial)}, i).first->second;
        Require(Ok(FindX509CrlFind(crl, name.get(), serial.data(), serial.size(), &found)) && found == index);
    });
}

inline void WalkCrl(X509Crl* crl) {
    int32_t version = 0;
    LibraryTime time{};
    X509Name* issuer = nullptr;
    X509Extensions extensions = nullptr;
    (void)GetX509CrlVersion(crl, &version);
    (void)Get(GetX509CrlSignature, crl);
    Sure(Get(GetX509CrlToBeSignedPart, crl));
    Sure(Get(GetX509CrlSignatureAlgorithmOidAndParameters, crl, kOut, kOut));
    for (const auto get : {GetX509CrlThisUpdate, GetX509CrlNextUpdate}) (void)get(crl, &time);
    Require(Ok(GetX509CrlIssuer(crl, &issuer)) && Ok(GetX509CrlExtensions(crl, &extensions)));
    WalkName(issuer);
    WalkExtensions(extensions);
    WalkEntries(crl, issuer);
}

// And setters. The issuer that the list itself lends changes nothing; then it gets other fields, and loses them.
inline void WalkAndChangeCrl(X509Crl* original) {
    WalkCrl(original);
    const auto owner = Make<FreeX509Crl>(CreateX509CrlCopy, original);
    X509Crl* copy = owner.get();
    X509Name* issuer = nullptr;
    const LibraryTime time{2060, 1, 1, 0, 0, 0};
    const auto [encoded] = Sure(Get(EncodeX509Crl, original));
    Require(Ok(GetX509CrlIssuer(copy, &issuer)) && Ok(SetX509CrlIssuer(copy, issuer)));
    Require(Sure(Get(EncodeX509Crl, copy))[0] == encoded);
    Require(Ok(GetX509CrlIssuer(copy, &issuer)) && Ok(SetX509CrlNextUpdate(copy, &time)));
    Require(Ok(SetX509CrlAuthorityKeyIdentifier2(copy, nullptr, 0, issuer, encoded.data(), 9)));
    Require(Ok(AddX509CrlRevokedCertificate(copy, encoded.data(), 9, &time, nullptr)));
    WalkCrl(copy);
    Require(Ok(RemoveX509CrlRevokedCertificates(copy)) && Ok(RemoveX509CrlNextUpdate(copy)) &&
            Get(EncodeX509Crl, copy));
}

// ---- Requests ----

// The attributes anew, in the order in memory.
inline void WalkAttributes(RsaAttributes attributes) {
    const auto rebuilt = Make<FreeRsaAttributes>(CreateRsaAttributes);
    for (const RsaAttributes each : {attributes, rebuilt.get()}) Require(Ok(SetRsaAttributesSorted(each, 0)));
    Each(GetRsaAttributesAttributesCount, attributes, [&](uint32_t i) {
        uint32_t index = 0;
        const auto [oid] = Sure(Get(GetRsaAttributesAttributeOid, attributes, i));
        const auto count = [=](auto of, uint32_t* n) { return GetRsaAttributesAttributeValuesCount(of, i, n); };
        Require(Ok(AddRsaAttributesAttribute(rebuilt.get(), oid.data(), &index)) && index == i);
        Require(oid.size() > 256 || (Ok(FindRsaAttributesAttribute(attributes, oid.data(), &index)) && index <= i));
        Each(count, attributes, [&](uint32_t j) {
            const auto [value] = Sure(Get(GetRsaAttributesAttributeValue, attributes, i, j));
            Require(Ok(AddRsaAttributesAttributeValue(rebuilt.get(), i, value.data(), value.size())));
        });
    });
    RequireSame(Get(EncodeRsaAttributes, attributes), Get(EncodeRsaAttributes, rebuilt.get()));
}

inline void WalkRequest(PKCS10CertReq* request) {
    int32_t version = 0;
    X509Name* subject = nullptr;
    RsaAttributes attributes = nullptr;
    (void)GetPKCS10CertReqVersion(request, &version);
    for (const auto get : {GetPKCS10CertReqPublicKey, GetPKCS10CertReqSignature}) (void)Get(get, request);
    (void)Get(GetPKCS10CertReqPublicKeyGostR3410, request);
    Sure(Get(GetPKCS10CertReqToBeSignedPart, request));
    Sure(Get(GetPKCS10CertReqPublicKeyAlgorithmOidAndParameters, request, kOut, kOut));
    Sure(Get(GetPKCS10CertReqSignatureAlgorithmOidAndParameters, request, kOut, kOut));
    Require(Ok(GetPKCS10CertReqSubject(request, &subject)) && Ok(GetPKCS10CertReqAttributes(request, &attributes)));
    WalkName(subject);
    WalkAttributes(attributes);
    if (const auto own = Make<FreeX509Extensions>(GetPKCS10CertReqExtensions, request)) WalkExtensions(own.get());
}

// And setters. What the copy itself lends changes nothing.
inline void WalkAndChangeRequest(PKCS10CertReq* original) {
    WalkRequest(original);
    const auto copy = Make<FreePKCS10CertReq>(CreatePKCS10CertReqCopy, original);
    X509Name* subject = nullptr;
    RsaAttributes attributes = nullptr;
    const auto encoded = Sure(Get(EncodePKCS10CertReq, copy.get()));
    Require(Ok(GetPKCS10CertReqSubject(copy.get(), &subject)) && Ok(SetPKCS10CertReqSubject(copy.get(), subject)));
    Require(Ok(GetPKCS10CertReqAttributes(copy.get(), &attributes)));
    Require(Ok(SetPKCS10CertReqAttributes(copy.get(), attributes)) && Get(EncodePKCS10CertReq, copy.get()) == encoded);
    const auto extensions = Make<FreeX509Extensions>(GetPKCS10CertReqExtensions, copy.get());
    if (extensions) (void)SetPKCS10CertReqExtensions(copy.get(), extensions.get());  // not above 1024 bytes
    Require(Ok(AppendRsaAttributes(attributes, attributes)));
    WalkRequest(copy.get());
}

}  // namespace walk
