// Walks over names, values of extensions, certificates, revocation lists and requests.
#pragma once

#include <map>

#include "walk.h"

namespace walk {

inline void WalkName(const X509Name* name) {
    const Status compared = CompareX509Names(name, Make<FreeX509Name>(CopyX509Name, name).get());
    Require(compared == StatusOk || compared == StatusAbsent);
    // A value in another than the shortest form of tag and length is in the shortest one from here on.
    const auto rebuilt = RebuildName(name), again = RebuildName(rebuilt.get());
    Require(Sure(Get(EncodeX509Name, rebuilt.get())) == Get(EncodeX509Name, again.get()));
}

inline void WalkGeneralNames(const X509GeneralNames* names) {
    if (names == nullptr) return;
    const auto rebuilt = RebuildList<FreeX509GeneralNames, Flag, Octets>(
        names, CreateX509GeneralNames, GetX509GeneralNameCount, GetX509GeneralName, AddX509GeneralName);
    RequireSame(Get(EncodeX509GeneralNames, names), Get(EncodeX509GeneralNames, rebuilt.get()));
    if (const auto name = Make<FreeX509Name>(GetX509NameFromGeneralNames, names)) WalkName(name.get());
}

using GeneralNames = Handed<FreeX509GeneralNames, WalkGeneralNames>;

inline void WalkPoints(ExtensionCrlDistributionPoints* list) {
    Each(GetExtensionCrlDistributionPointsCount, list, [&](uint32_t i) {
        X509GeneralNames *fullName = nullptr, *issuer = nullptr;
        X509Name* relativeName = nullptr;
        uint32_t reasons = 0;
        Require(Ok(GetExtensionCrlDistributionPoint(list, i, &fullName, &relativeName, &reasons, &issuer)));
        for (const X509GeneralNames* names : {fullName, issuer}) WalkGeneralNames(names);
    });
}

inline void WalkAccess(ExtensionAuthorityInformationAccess* list) {
    Each(GetExtensionAuthorityInformationAccessCount, list, [&](uint32_t i) {
        X509GeneralName* location = nullptr;
        uint32_t kind = 0;
        Sure(Get(GetExtensionAuthorityInformationAccess, list, i, kOut, &location));
        Sure(Get(GetX509GeneralNameValue, location, &kind));
    });
}

inline void WalkPolicies(ExtensionCertificatePolicies* list) {
    const uint32_t size = Sure(Get(EncodeExtensionCertificatePolicies, list))[0].size();
    Each(GetExtensionPolicyInformationCount, list, [&](uint32_t i) {
        const auto [policy] = Sure(Get(GetExtensionPolicyInformation, list, i));
        // The new member stands for the policy, and isn't written. Nor is a list that was empty before.
        Require(Ok(AddExtensionPolicyQualifier(list, i, policy.data(), nullptr, 0)));
        const uint32_t qualifiers = Lent(GetExtensionPolicyQualifiersCount, list, i);
        for (uint32_t j = 0; j < qualifiers; ++j) Sure(Get(GetExtensionPolicyQualifier, list, i, j, kOut, kOut));
    });
    Require(Sure(Get(EncodeExtensionCertificatePolicies, list))[0].size() <= size);
}

// An implicit tag breaks a captured element with a low tag number in the high form: only its first octet changes.
inline bool IsStable(const Bytes& in) { return !in.Has(0x9F) && !in.Has(0xBF); }

// Every codec of an extension value, and of the elements that documents hold, whatever the bytes are meant to be.
inline void WalkValue(const Bytes& in) {
    const bool stable = IsStable(in);
    const auto members = [](auto count, auto get) {
        return [=](auto* list) { Each(count, list, [&](uint32_t i) { Sure(Get(get, list, i)); }); };
    };
    (void)Get(DecodeSubjectPublicKeyInfo, in.data(), in.size(), kOut, kOut, kOut);
    WalkParts<Octets>(in, DecodeExtensionSubjectKeyIdentifier, EncodeExtensionSubjectKeyIdentifier);
    WalkParts<Octets>(in, DecodeExtensionCrlNumber, EncodeExtensionCrlNumber);
    WalkParts<Octets>(in, DecodeExtensionDeltaCrlIndicator, EncodeExtensionDeltaCrlIndicator);
    WalkParts<Octets>(in, DecodeExtensionOcspNonce, EncodeExtensionOcspNonce);
    WalkParts<Octets>(in, DecodePublicKeyGostR34102001, EncodeGostR34102001PublicKey);
    WalkParts<Octets>(in, DecodeAsn1UTF8String, EncodeAsn1UTF8String);
    WalkParts<Octets>(in, DecodeAsn1IA5String, EncodeAsn1IA5String);
    WalkParts<Octets>(in, DecodeAsn1NumericString, EncodeAsn1NumericString);
    WalkParts<Oid>(in, DecodeAsn1Oid, EncodeAsn1Oid);
    WalkParts<Number>(in, DecodeAsn1Int32, EncodeAsn1Int32);
    WalkParts<Number>(in, DecodeExtensionReasonCode, EncodeExtensionReasonCode);
    WalkParts<Flag>(in, DecodeExtensionKeyUsage, EncodeExtensionKeyUsage);
    WalkParts<Flag>(in, DecodeExtensionNetscapeCertificateType, EncodeExtensionNetscapeCertificateType);
    WalkParts<Octet, Flag>(in, DecodeExtensionBasicConstraints, EncodeExtensionBasicConstraints);
    WalkParts<Time>(in, DecodeTime, EncodeTime);
    WalkParts<Time>(in, DecodeAsn1GeneralizedTime, EncodeAsn1GeneralizedTime);
    WalkParts<Time>(in, DecodeExtensionInvalidityDate, EncodeExtensionInvalidityDate);
    WalkParts<Time, Time>(in, DecodeExtensionPrivateKeyUsagePeriod, EncodeExtensionPrivateKeyUsagePeriod);
    WalkParts<Octet, Flag, Flag, Flag>(in, DecodeAlgorithmGostR34102001Parameters,
                                       EncodeAlgorithmGostR34102001Parameters);
    WalkParts<Octet, Oid, Oid, Oid>(in, DecodeAlgorithmGostR34102001ParameterOids,
                                    EncodeAlgorithmGostR34102001ParametersOid);
    WalkParts<Octet, Oid, Oid, Oid>(in, DecodeAlgorithmGostR34102012ParameterOids,
                                    EncodeAlgorithmGostR34102012ParametersOid);
    for (const auto id : {AlgorithmGostR34102001, AlgorithmGostR34102012Key512})
        WalkParts<Octet, Oid, Oid, Oid>(in, Of(DecodeAlgorithmGostR3410ParameterOids, id),
                                        Of(EncodeAlgorithmGostR3410ParametersOid, id));
    WalkParts<Maybe, GeneralNames, Maybe>(in, DecodeExtensionAuthorityKeyIdentifier,
                                          EncodeExtensionAuthorityKeyIdentifier, stable);
    // What the names point to is gone. Reasons without onlyContainsUserCerts are taken for it by the next reader.
    const auto encodePoint = [](auto, auto, auto... others) {
        return EncodeExtensionIssuingDistributionPoint(nullptr, nullptr, others...);
    };
    WalkParts<Plain<X509GeneralNames*>, Plain<X509Name*>, Octet, Flag, Octet, Flag, Flag, Flag, Octet, Flag, Octet,
              Flag>(in, DecodeExtensionIssuingDistributionPoint, encodePoint, false);
    WalkObject<FreeX509Name>(in, DecodeX509Name, EncodeX509Name, WalkName);
    WalkObject<FreeX509GeneralNames>(in, DecodeX509GeneralNames, EncodeX509GeneralNames, WalkGeneralNames, stable);
    WalkObject<FreePKIFreeText>(in, DecodePKIFreeText, EncodePKIFreeText,
                                members(GetPKIFreeTextStringCount, GetPKIFreeTextString));
    WalkObject<FreeX509Extension>(in, DecodeX509Extension, EncodeX509Extension, [](X509Extension* from) {
        Require(Carry<Oid, Flag, Octets>(Of(GetX509Extension, from), Of(SetX509Extension, from)));
    });
    WalkObject<FreeExtensionExtendedKeyUsage>(in, DecodeExtensionExtendedKeyUsage, EncodeExtensionExtendedKeyUsage,
                                              members(GetExtensionExtendedKeyUsageCount, GetExtensionExtendedKeyUsage));
    WalkObject<FreeExtensionCertificatePolicies>(in, DecodeExtensionCertificatePolicies,
                                                 EncodeExtensionCertificatePolicies, WalkPolicies);
    WalkObject<FreeExtensionCrlDistributionPoints>(in, DecodeExtensionCrlDistributionPoints,
                                                   EncodeExtensionCrlDistributionPoints, WalkPoints, stable);
    WalkObject<FreeExtensionAuthorityInformationAccess>(in, DecodeExtensionAuthorityInformationAccess,
                                                        EncodeExtensionAuthorityInformationAccess, WalkAccess, stable);
}

inline void WalkExtensions(X509Extensions extensions) {
    const auto rebuilt = Make<FreeX509Extensions>(CreateX509Extensions);
    Each(GetX509ExtensionsExtensionsCount, extensions, [&](uint32_t i) {
        uint32_t critical = 0;
        const auto [oid, value] = Sure(Get(GetX509ExtensionsExtension, extensions, i, kOut, &critical, kOut));
        WalkValue(value);
        Require(Ok(AddX509ExtensionsExtension(rebuilt.get(), oid.data(), critical, value.data(), value.size())));
        if (oid.size() > 256) return;  // its length is cut
        const uint32_t first = Lent(FindX509Extension, extensions, oid.data());
        Require(first < i ||
                (first == i && Sure(Get(GetX509ExtensionsExtensionValue, extensions, oid.data()))[0] == value));
    });
    const auto encoded = Get(EncodeX509Extensions, extensions);  // nothing for a document without extensions
    if (encoded) RequireSame(encoded, Get(EncodeX509Extensions, rebuilt.get()));
}

// A line of text for people, which may refuse a name. Bytes may be written after the length that it asks for.
inline void WalkLine(auto get, auto* of) {
    for (uint32_t size = 0, room = 0; room < 2000; room = 2 * room + 1) {
        const Bytes text(size = room);
        if (Ok(get(of, text.data(), &size))) Require(size <= room + 1);
    }
}

constexpr uint8_t kUsages[] = {3, 0x55, 0x1D, 0x0F};

// Every getter of a certificate that was decoded.
inline void WalkCertificate(Certificate* certificate) {
    uint32_t length = 0, sets[3];
    const X509Name* issuer = Lent(GetCertificateIssuer, certificate);
    WalkName(issuer);
    WalkName(Lent(GetCertificateSubject, certificate));
    const X509Extensions extensions = Lent(GetCertificateExtensions, certificate);
    WalkExtensions(extensions);
    Require(Get(GetCertificateExtensionValue, certificate, kUsages) ==
            Get(GetX509ExtensionsExtensionValue, extensions, kUsages));
    WalkLine(GetCertificateCN, certificate);
    WalkLine(GetZelcryptIdentifierFromCertificate, certificate);
    WalkVersion(certificate, GetCertificateVersion, SetCertificateVersion);
    Sure(Get(GetCertificateToBeSignedPart, certificate));
    (void)Get(GetCertificatePublicKeyGostR3410, certificate);
    (void)Get(GetCertificateDecodedPublicKeyGostR34102012, certificate, kOut, &sets[0], &sets[1], &sets[2]);

    // It is the one that its own identifiers mean.
    const uint8_t* serial = ptr_GetCertificateSerialNumber(certificate, &length);
    Require(Sure(Get(GetCertificateSerialNumber, certificate))[0] == Bytes(serial, length));
    Require(IsCertificateCorrespondToAuthKeyIdent(certificate, nullptr, 0, issuer, serial, length) ==
            CompareX509Names(issuer, issuer));
    if (const auto own = Get(GetCertificateSubjectKeyIdentifier, certificate)) {
        const auto& [id] = *own;
        Require(Ok(IsCertificateCorrespondToAuthKeyIdent(certificate, id.data(), id.size(), nullptr, nullptr, 0)) ==
                (id.size() > 0 && id.size() <= 32));
    }
    const auto accept = [](auto...) { return StatusOk; };
    Carry<Octets, Handed<FreeX509Name>, Octets>(Of(GetCertificateAuthorityKeyIdentifier2, certificate), accept);
    Carry<Octets, GeneralNames, Octets>(Of(GetCertificateAuthorityKeyIdentifier, certificate), accept);
}

// And setters. What the certificate itself gives changes nothing; then it gets other extensions, and loses them.
inline void WalkAndChangeCertificate(Certificate* original) {
    WalkCertificate(original);
    const auto owner = Make<FreeCertificate>(CreateCertificateCopy, original);
    Certificate* copy = owner.get();
    const X509Extensions extensions = Lent(GetCertificateExtensions, copy);
    Require(Carry<Octets>(Of(GetCertificateSerialNumber, copy), Of(SetCertificateSerialNumber, copy)));
    Require(Ok(SetCertificateIssuer(copy, Lent(GetCertificateIssuer, copy))));
    Require(Ok(SetCertificateSubject(copy, Lent(GetCertificateSubject, copy))));
    Require(Ok(SetCertificateExtensions(copy, extensions)));
    Share<Time>(original, copy, GetCertificateValidNotBefore, SetCertificateValidNotBefore, &kAnyTime);
    Share<Time>(original, copy, GetCertificateValidNotAfter, SetCertificateValidNotAfter, &kAnyTime);
    Share<Octets>(original, copy, GetCertificatePublicKey, SetCertificatePublicKey, kAnyBytes, 1);
    Share<Octets>(original, copy, GetCertificateSignature, SetCertificateSignature, kAnyBytes, 1);
    Carry<Octets, Octet>(Of(GetCertificateIssuerUniqueId, copy), Of(SetCertificateIssuerUniqueId, copy));
    Carry<Octets, Octet>(Of(GetCertificateSubjectUniqueId, copy), Of(SetCertificateSubjectUniqueId, copy));
    Require(Carry<Oid, Maybe>(Of(GetCertificatePublicKeyAlgorithmOidAndParameters, copy),
                              Of(SetCertificatePublicKeyAlgorithmOidAndParameters, copy)));
    Share<Oid, Maybe>(original, copy, GetCertificateSignatureAlgorithmOidAndParameters,
                      SetCertificateSignatureAlgorithmOidAndParameters, kAnyBytes, nullptr, 0);
    RequireSame(Get(EncodeCertificate, original), Get(EncodeCertificate, copy));

    (void)SetCertificateSubjectKeyIdentifier(copy);
    (void)SetCertificateAuthorityKeyIdentifier(copy, copy);
    Require(Ok(SetCertificateExtensionCrlDistributionPoints(copy, "http://a/b.crl")));
    WalkCertificate(copy);
    Each(GetX509ExtensionsExtensionsCount, extensions,
         [&](uint32_t) { Require(Ok(RemoveX509ExtensionsExtension(extensions, 0))); });
    Sure(Get(EncodeCertificate, copy));
}

// The whole way: decoded, encoded, decoded again, read and changed.
inline void WalkEncodedCertificate(const Bytes& in) {
    WalkObject<FreeCertificates>(in, DecodeCertificates, EncodeCertificates, [](Certificates* list) {
        Each(GetCertificatesCount, list,
             [=](uint32_t i) { WalkCertificate(Lent(GetCertificatesCertificate, list, i)); });
    });
    WalkObject<FreeCertificate>(in, DecodeCertificate, EncodeCertificate, WalkAndChangeCertificate);
}

// ---- Revocation lists ----

// An entry is found by its serial number: the first of its kind, as long as no entry up to it names another issuer.
inline void WalkEntries(X509Crl* crl, const X509Name* issuer) {
    constexpr uint8_t kCertificateIssuer[] = {3, 0x55, 0x1D, 0x1D};
    std::map<std::string, uint32_t> first;
    bool direct = Ok(CompareX509Names(issuer, issuer));
    Each(GetX509CrlRevokedCertificateCount, crl, [&](uint32_t i) {
        LibraryTime date{};
        if (Ok(GetX509CrlRevokedCertificateRevokationDate(crl, i, &date))) Sure(Get(EncodeTime, &date));
        const X509Extensions extensions = Lent(GetX509CrlRevokedCertificateExtensions, crl, i);
        WalkExtensions(extensions);
        const auto [serial] = Sure(Get(GetX509CrlRevokedCertificateSerialNumber, crl, i));
        const uint32_t index = first.try_emplace(std::string(serial.data(), serial.end()), i).first->second;
        direct =
            direct && serial.size() <= 150 && !Get(GetX509ExtensionsExtensionValue, extensions, kCertificateIssuer);
        uint32_t found = 0;
        const bool known = Ok(FindX509CrlFind(crl, issuer, serial.data(), serial.size(), &found));
        Require(direct ? known && found == index : !known || found >= index);
    });
}

inline void WalkCrl(X509Crl* crl) {
    WalkName(Lent(GetX509CrlIssuer, crl));
    WalkExtensions(Lent(GetX509CrlExtensions, crl));
    WalkEntries(crl, Lent(GetX509CrlIssuer, crl));
    WalkLine(GetCrlCN, crl);
    WalkVersion(crl, GetX509CrlVersion, SetX509CrlVersion);
    Sure(Get(GetX509CrlToBeSignedPart, crl));
}

// And setters. The issuer that the list itself lends changes nothing; then it gets other fields, and loses them.
inline void WalkAndChangeCrl(X509Crl* original) {
    WalkCrl(original);
    const auto owner = Make<FreeX509Crl>(CreateX509CrlCopy, original);
    X509Crl* copy = owner.get();
    const LibraryTime time{2060, 1, 1, 0, 0, 0};
    Require(Ok(SetX509CrlIssuer(copy, Lent(GetX509CrlIssuer, copy))));
    Share<Time>(original, copy, GetX509CrlThisUpdate, SetX509CrlThisUpdate, &time);
    Share<Time>(original, copy, GetX509CrlNextUpdate, SetX509CrlNextUpdate, &time);
    Share<Octets>(original, copy, GetX509CrlSignature, SetX509CrlSignature, kAnyBytes, 1);
    Share<Oid, Maybe>(original, copy, GetX509CrlSignatureAlgorithmOidAndParameters,
                      SetX509CrlSignatureAlgorithmOidAndParameters, kAnyBytes, nullptr, 0);
    RequireSame(Get(EncodeX509Crl, original), Get(EncodeX509Crl, copy));
    Require(Ok(SetX509CrlAuthorityKeyIdentifier2(copy, nullptr, 0, Lent(GetX509CrlIssuer, copy), kAnyBytes, 2)));
    Require(Ok(AddX509CrlRevokedCertificate(copy, kAnyBytes, 2, &time, nullptr)));
    WalkCrl(copy);
    Require(Ok(RemoveX509CrlRevokedCertificates(copy)) && Ok(RemoveX509CrlNextUpdate(copy)) &&
            Get(EncodeX509Crl, copy));
}

inline void WalkCrls(X509Crls* list) {
    const auto copy = Make<FreeX509Crls>(CreateX509CrlsCopy, list);
    Require(Get(EncodeX509Crls, copy.get()) == Get(EncodeX509Crls, list));
    Each(GetX509CrlsCount, list, [&](uint32_t i) { WalkCrl(Lent(GetX509CrlsCrl, list, i)); });
}

// ---- Requests ----

// The attributes anew, in the order in memory.
inline void WalkAttributes(RsaAttributes attributes) {
    const auto rebuilt = Make<FreeRsaAttributes>(CreateRsaAttributes);
    for (const RsaAttributes each : {attributes, rebuilt.get()}) Require(Ok(SetRsaAttributesSorted(each, 0)));
    Each(GetRsaAttributesAttributesCount, attributes, [&](uint32_t i) {
        const auto [oid] = Sure(Get(GetRsaAttributesAttributeOid, attributes, i));
        Require(Lent(AddRsaAttributesAttribute, rebuilt.get(), oid.data()) == i);
        Require(oid.size() > 256 || Lent(FindRsaAttributesAttribute, attributes, oid.data()) <= i);
        const uint32_t values = Lent(GetRsaAttributesAttributeValuesCount, attributes, i);
        for (uint32_t j = 0; j < values; ++j) {
            Require(Carry<Octets>(Of(GetRsaAttributesAttributeValue, attributes, i, j),
                                  Of(AddRsaAttributesAttributeValue, rebuilt.get(), i)));
        }
    });
    RequireSame(Get(EncodeRsaAttributes, attributes), Get(EncodeRsaAttributes, rebuilt.get()));
}

inline void WalkRequest(PKCS10CertReq* request) {
    WalkName(Lent(GetPKCS10CertReqSubject, request));
    WalkAttributes(Lent(GetPKCS10CertReqAttributes, request));
    WalkVersion(request, GetPKCS10CertReqVersion, SetPKCS10CertReqVersion);
    Sure(Get(GetPKCS10CertReqToBeSignedPart, request));
    (void)Get(GetPKCS10CertReqPublicKeyGostR3410, request);
    if (const auto own = Make<FreeX509Extensions>(GetPKCS10CertReqExtensions, request)) WalkExtensions(own.get());
}

// And setters. What the request itself gives changes nothing.
inline void WalkAndChangeRequest(PKCS10CertReq* original) {
    WalkRequest(original);
    const auto owner = Make<FreePKCS10CertReq>(CreatePKCS10CertReqCopy, original);
    const auto other = Make<FreePKCS10CertReq>(CreatePKCS10CertReqCopy, original);
    PKCS10CertReq* copy = owner.get();
    const RsaAttributes attributes = Lent(GetPKCS10CertReqAttributes, copy);
    Require(Ok(SetPKCS10CertReqSubject(copy, Lent(GetPKCS10CertReqSubject, copy))));
    Require(Ok(SetPKCS10CertReqAttributes(copy, attributes)));
    Share<Octets>(other.get(), copy, GetPKCS10CertReqPublicKey, SetPKCS10CertReqPublicKey, kAnyBytes, 1);
    Share<Octets>(other.get(), copy, GetPKCS10CertReqSignature, SetPKCS10CertReqSignature, kAnyBytes, 1);
    Require(Carry<Oid, Maybe>(Of(GetPKCS10CertReqPublicKeyAlgorithmOidAndParameters, copy),
                              Of(SetPKCS10CertReqPublicKeyAlgorithmOidAndParameters, copy)));
    Require(Carry<Oid, Maybe>(Of(GetPKCS10CertReqSignatureAlgorithmOidAndParameters, copy),
                              Of(SetPKCS10CertReqSignatureAlgorithmOidAndParameters, copy)));
    RequireSame(Get(EncodePKCS10CertReq, other.get()), Get(EncodePKCS10CertReq, copy));
    const auto extensions = Make<FreeX509Extensions>(GetPKCS10CertReqExtensions, copy);
    if (extensions) (void)SetPKCS10CertReqExtensions(copy, extensions.get());  // not above 1024 bytes
    Require(Ok(AppendRsaAttributes(attributes, attributes)));
    WalkRequest(copy);
}

}  // namespace walk
