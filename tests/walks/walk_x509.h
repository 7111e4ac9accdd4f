// Walks over names, values of extensions, certificates, revocation lists and requests.
#pragma once

#include <map>

#include "walk.h"

// The functions of a value, of a property, and of an object that a walk starts from.
#define CODEC(Name) Decode##Name, Encode##Name
#define PROPERTY(Name) Get##Name, Set##Name
#define WALK(Name, in, ...) walk::WalkObject<Free##Name>(in, CODEC(Name), __VA_ARGS__)

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
        Sure(GetExtensionCrlDistributionPoint(list, i, &fullName, &relativeName, &reasons, &issuer));
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
        Sure(AddExtensionPolicyQualifier(list, i, policy.data(), nullptr, 0));
        const auto read = [&](uint32_t j) { Sure(Get(GetExtensionPolicyQualifier, list, i, j, kOut, kOut)); };
        Each(Of(GetExtensionPolicyQualifiersCount, list), i, read);
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
    WalkCodecs<Octets>(in, CODEC(ExtensionSubjectKeyIdentifier), CODEC(ExtensionCrlNumber),
                       CODEC(ExtensionDeltaCrlIndicator), CODEC(ExtensionOcspNonce), CODEC(Asn1UTF8String),
                       CODEC(Asn1IA5String), CODEC(Asn1NumericString), DecodePublicKeyGostR34102001,
                       EncodeGostR34102001PublicKey);
    WalkCodecs<Oid>(in, CODEC(Asn1Oid));
    WalkCodecs<Number>(in, CODEC(Asn1Int32), CODEC(ExtensionReasonCode));
    WalkCodecs<Flag>(in, CODEC(ExtensionKeyUsage), CODEC(ExtensionNetscapeCertificateType));
    WalkCodecs<Octet, Flag>(in, CODEC(ExtensionBasicConstraints));
    WalkCodecs<Time>(in, CODEC(Time), CODEC(Asn1GeneralizedTime), CODEC(ExtensionInvalidityDate));
    WalkCodecs<Time, Time>(in, CODEC(ExtensionPrivateKeyUsagePeriod));
    WalkCodecs<Octet, Flag, Flag, Flag>(in, CODEC(AlgorithmGostR34102001Parameters));
    WalkCodecs<Octet, Oid, Oid, Oid>(
        in, DecodeAlgorithmGostR34102001ParameterOids, EncodeAlgorithmGostR34102001ParametersOid,
        DecodeAlgorithmGostR34102012ParameterOids, EncodeAlgorithmGostR34102012ParametersOid);
    for (const auto id : {AlgorithmGostR34102001, AlgorithmGostR34102012Key512})
        WalkCodecs<Octet, Oid, Oid, Oid>(in, Of(DecodeAlgorithmGostR3410ParameterOids, id),
                                         Of(EncodeAlgorithmGostR3410ParametersOid, id));
    WalkParts<Maybe, GeneralNames, Maybe>(in, stable, CODEC(ExtensionAuthorityKeyIdentifier));
    // What the names point to is gone. Reasons without onlyContainsUserCerts are taken for it by the next reader.
    const auto encodePoint = Of(EncodeExtensionIssuingDistributionPoint, nullptr, nullptr);
    WalkParts<Plain<X509GeneralNames*>, Plain<X509Name*>, Octet, Flag, Octet, Flag, Flag, Flag, Octet, Flag, Octet,
              Flag>(in, false, DecodeExtensionIssuingDistributionPoint,
                    [=](auto, auto, auto... others) { return encodePoint(others...); });
    WALK(X509Name, in, WalkName);
    WALK(X509GeneralNames, in, WalkGeneralNames, stable);
    WALK(PKIFreeText, in, members(GetPKIFreeTextStringCount, GetPKIFreeTextString));
    WALK(X509Extension, in, [](auto* from) { Require(PutBack<Oid, Flag, Octets>(from, PROPERTY(X509Extension))); });
    WALK(ExtensionExtendedKeyUsage, in, members(GetExtensionExtendedKeyUsageCount, GetExtensionExtendedKeyUsage));
    WALK(ExtensionCertificatePolicies, in, WalkPolicies);
    WALK(ExtensionCrlDistributionPoints, in, WalkPoints, stable);
    WALK(ExtensionAuthorityInformationAccess, in, WalkAccess, stable);
}

inline void WalkExtensions(X509Extensions extensions) {
    const auto rebuilt = Make<FreeX509Extensions>(CreateX509Extensions);
    Each(GetX509ExtensionsExtensionsCount, extensions, [&](uint32_t i) {
        uint32_t critical = 0;
        const auto [oid, value] = Sure(Get(GetX509ExtensionsExtension, extensions, i, kOut, &critical, kOut));
        WalkValue(value);
        Sure(AddX509ExtensionsExtension(rebuilt.get(), oid.data(), critical, value.data(), value.size()));
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
    WalkVersion(certificate, PROPERTY(CertificateVersion));
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
    Sure(SetCertificateIssuer(copy, Lent(GetCertificateIssuer, copy)));
    Sure(SetCertificateSubject(copy, Lent(GetCertificateSubject, copy)));
    Sure(SetCertificateExtensions(copy, extensions));
    PutBack<Octets, Octet>(copy, PROPERTY(CertificateIssuerUniqueId));
    PutBack<Octets, Octet>(copy, PROPERTY(CertificateSubjectUniqueId));
    Require(PutBack<Octets>(copy, PROPERTY(CertificateSerialNumber)));
    Require(PutBack<Oid, Maybe>(copy, PROPERTY(CertificatePublicKeyAlgorithmOidAndParameters)));
    Share<Time>(original, copy, PROPERTY(CertificateValidNotBefore), &kAnyTime);
    Share<Time>(original, copy, PROPERTY(CertificateValidNotAfter), &kAnyTime);
    Share<Octets>(original, copy, PROPERTY(CertificatePublicKey), kAnyBytes, 1);
    Share<Octets>(original, copy, PROPERTY(CertificateSignature), kAnyBytes, 1);
    Share<Oid, Maybe>(original, copy, PROPERTY(CertificateSignatureAlgorithmOidAndParameters), kAnyBytes, nullptr, 0);
    RequireSame(Get(EncodeCertificate, original), Get(EncodeCertificate, copy));

    (void)SetCertificateSubjectKeyIdentifier(copy);
    (void)SetCertificateAuthorityKeyIdentifier(copy, copy);
    Sure(SetCertificateExtensionCrlDistributionPoints(copy, "http://a/b.crl"));
    WalkCertificate(copy);
    const auto remove = [&](uint32_t) { Sure(RemoveX509ExtensionsExtension(extensions, 0)); };
    Each(GetX509ExtensionsExtensionsCount, extensions, remove);
    Sure(Get(EncodeCertificate, copy));
}

// The whole way: decoded, encoded, decoded again, read and changed.
inline void WalkEncodedCertificate(const Bytes& in) {
    WALK(Certificates, in, [](Certificates* list) {
        Each(GetCertificatesCount, list,
             [=](uint32_t i) { WalkCertificate(Lent(GetCertificatesCertificate, list, i)); });
    });
    WALK(Certificate, in, WalkAndChangeCertificate);
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
    WalkVersion(crl, PROPERTY(X509CrlVersion));
    Sure(Get(GetX509CrlToBeSignedPart, crl));
}

// And setters. The issuer that the list itself lends changes nothing; then it gets other fields, and loses them.
inline void WalkAndChangeCrl(X509Crl* original) {
    WalkCrl(original);
    const auto owner = Make<FreeX509Crl>(CreateX509CrlCopy, original);
    X509Crl* copy = owner.get();
    const LibraryTime time{2060, 1, 1, 0, 0, 0};
    Sure(SetX509CrlIssuer(copy, Lent(GetX509CrlIssuer, copy)));
    Share<Time>(original, copy, PROPERTY(X509CrlThisUpdate), &time);
    Share<Time>(original, copy, PROPERTY(X509CrlNextUpdate), &time);
    Share<Octets>(original, copy, PROPERTY(X509CrlSignature), kAnyBytes, 1);
    Share<Oid, Maybe>(original, copy, PROPERTY(X509CrlSignatureAlgorithmOidAndParameters), kAnyBytes, nullptr, 0);
    RequireSame(Get(EncodeX509Crl, original), Get(EncodeX509Crl, copy));
    Sure(SetX509CrlAuthorityKeyIdentifier2(copy, nullptr, 0, Lent(GetX509CrlIssuer, copy), kAnyBytes, 2));
    Sure(AddX509CrlRevokedCertificate(copy, kAnyBytes, 2, &time, nullptr));
    WalkCrl(copy);
    for (const auto remove : {RemoveX509CrlRevokedCertificates, RemoveX509CrlNextUpdate}) Sure(remove(copy));
    Sure(Get(EncodeX509Crl, copy));
}

inline void WalkCrls(X509Crls* list) {
    const auto copy = Make<FreeX509Crls>(CreateX509CrlsCopy, list);
    Require(Get(EncodeX509Crls, copy.get()) == Get(EncodeX509Crls, list));
    Each(GetX509CrlsCount, list, [&](uint32_t i) { WalkCrl(Lent(GetX509CrlsCrl, list, i)); });
}

// ---- Requests ----

// The attributes made again, in the order in memory.
void WalkAttributesAnd(RsaAttributes attributes, auto visitValue) {
    const auto rebuilt = Make<FreeRsaAttributes>(CreateRsaAttributes);
    for (const RsaAttributes each : {attributes, rebuilt.get()}) Sure(SetRsaAttributesSorted(each, 0));
    Each(GetRsaAttributesAttributesCount, attributes, [&](uint32_t i) {
        const auto [oid] = Sure(Get(GetRsaAttributesAttributeOid, attributes, i));
        Require(Lent(AddRsaAttributesAttribute, rebuilt.get(), oid.data()) == i);
        Require(oid.size() > 256 || Lent(FindRsaAttributesAttribute, attributes, oid.data()) <= i);
        Each(Of(GetRsaAttributesAttributeValuesCount, attributes), i, [&](uint32_t j) {
            const auto [value] = Sure(Get(GetRsaAttributesAttributeValue, attributes, i, j));
            visitValue(value);
            Sure(AddRsaAttributesAttributeValue(rebuilt.get(), i, value.data(), value.size()));
        });
    });
    RequireSame(Get(EncodeRsaAttributes, attributes), Get(EncodeRsaAttributes, rebuilt.get()));
}

inline void WalkAttributes(RsaAttributes attributes) {
    WalkAttributesAnd(attributes, [](const Bytes&) {});
}

inline void WalkRequest(PKCS10CertReq* request) {
    WalkName(Lent(GetPKCS10CertReqSubject, request));
    WalkAttributes(Lent(GetPKCS10CertReqAttributes, request));
    WalkVersion(request, PROPERTY(PKCS10CertReqVersion));
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
    Sure(SetPKCS10CertReqSubject(copy, Lent(GetPKCS10CertReqSubject, copy)));
    Sure(SetPKCS10CertReqAttributes(copy, attributes));
    Share<Octets>(other.get(), copy, PROPERTY(PKCS10CertReqPublicKey), kAnyBytes, 1);
    Share<Octets>(other.get(), copy, PROPERTY(PKCS10CertReqSignature), kAnyBytes, 1);
    Require(PutBack<Oid, Maybe>(copy, PROPERTY(PKCS10CertReqPublicKeyAlgorithmOidAndParameters)));
    Require(PutBack<Oid, Maybe>(copy, PROPERTY(PKCS10CertReqSignatureAlgorithmOidAndParameters)));
    RequireSame(Get(EncodePKCS10CertReq, other.get()), Get(EncodePKCS10CertReq, copy));
    const auto extensions = Make<FreeX509Extensions>(GetPKCS10CertReqExtensions, copy);
    if (extensions) (void)SetPKCS10CertReqExtensions(copy, extensions.get());  // not above 1024 bytes
    Sure(AppendRsaAttributes(attributes, attributes));
    WalkRequest(copy);
}

}  // namespace walk
