// Extensions, each through the codec that goes with its OID.
#pragma once

#include <string>

#include "names.h"

namespace examples {

// --- Values of one field ---

inline Status PrintKeyUsage(Outline& outline, const Bytes& value) {
    static constexpr const char* kNames[] = {"digitalSignature", "nonRepudiation", "keyEncipherment",
                                             "dataEncipherment", "keyAgreement",   "keyCertSign",
                                             "cRLSign",          "encipherOnly",   "decipherOnly"};
    uint32_t flags = 0;
    const Status status = DecodeExtensionKeyUsage(value.data(), Size(value), &flags);
    if (status == StatusOk) outline.Line("usage", DescribeFlags(flags, kNames));
    return status;
}

inline Status PrintNetscapeCertificateType(Outline& outline, const Bytes& value) {
    static constexpr const char* kNames[] = {"SSL client", "SSL server", "S/MIME",    "object signing",
                                             "reserved",   "SSL CA",     "S/MIME CA", "object signing CA"};
    uint32_t flags = 0;
    const Status status = DecodeExtensionNetscapeCertificateType(value.data(), Size(value), &flags);
    if (status == StatusOk) outline.Line("type", DescribeFlags(flags, kNames));
    return status;
}

inline Status PrintBasicConstraints(Outline& outline, const Bytes& value) {
    uint8_t cA = 0;
    uint32_t pathLength = 0;
    const Status status = DecodeExtensionBasicConstraints(value.data(), Size(value), &cA, &pathLength);
    if (status != StatusOk) return status;
    outline.Line("CA", cA != 0 ? "yes" : "no");
    if (pathLength != UINT32_MAX) outline.Line("path length", std::to_string(pathLength));
    return StatusOk;
}

inline Status PrintPrivateKeyUsagePeriod(Outline& outline, const Bytes& value) {
    LibraryTime notBefore = {}, notAfter = {};
    const Status status = DecodeExtensionPrivateKeyUsagePeriod(value.data(), Size(value), &notBefore, &notAfter);
    if (status != StatusOk) return status;
    if (!IsLibraryTimeNull(&notBefore)) outline.Line("not before", ToText(notBefore));
    if (!IsLibraryTimeNull(&notAfter)) outline.Line("not after", ToText(notAfter));
    return StatusOk;
}

inline constexpr const char* kReasonCodes[] = {
    "unspecified",     "keyCompromise", "cACompromise",  "affiliationChanged", "superseded",  "cessationOfOperation",
    "certificateHold", nullptr,         "removeFromCRL", "privilegeWithdrawn", "aACompromise"};

inline Status PrintReasonCode(Outline& outline, const Bytes& value) {
    int32_t reason = 0;
    const Status status = DecodeExtensionReasonCode(value.data(), Size(value), &reason);
    if (status == StatusOk) outline.Line("reason", DescribeNumber(reason, kReasonCodes));
    return status;
}

inline Status PrintInvalidityDate(Outline& outline, const Bytes& value) {
    LibraryTime time = {};
    const Status status = DecodeExtensionInvalidityDate(value.data(), Size(value), &time);
    if (status == StatusOk) outline.Line("invalid since", ToText(time));
    return status;
}

// The codecs that give the bytes of one value.
template <auto Decode>
Status PrintBytes(Outline& outline, const Bytes& value) {
    const Fetched content = Get(Decode, value.data(), Size(value));
    if (content.status == StatusOk) outline.Hex("value", content.bytes);
    return content.status;
}

// The ones whose bytes are UTF-8.
template <auto Decode>
Status PrintUtf8(Outline& outline, const Bytes& value) {
    const Fetched content = Get(Decode, value.data(), Size(value));
    if (content.status == StatusOk) outline.Line("text", Escape(ReadUtf8(content.bytes)));
    return content.status;
}

// --- Values of several fields ---

inline Status PrintAuthorityKeyIdentifier(Outline& outline, const Bytes& value) {
    Output keyId, serial;
    OwnedGeneralNames issuer;
    const Status status = Fetch(
        [&] {
            return DecodeExtensionAuthorityKeyIdentifier(value.data(), Size(value), keyId.data, &keyId.length,
                                                         issuer.Out(), serial.data, &serial.length);
        },
        keyId, serial);
    if (status != StatusOk) return status;
    if (!keyId.bytes.empty()) outline.Hex("key", keyId.bytes);
    if (issuer) {
        const Outline::Section section = outline.Open("issuer");
        PrintGeneralNames(outline, issuer);
    }
    if (!serial.bytes.empty()) outline.Hex("serial number", serial.bytes);
    return StatusOk;
}

inline constexpr const char* kRevocationReasons[] = {
    "unused",          "keyCompromise",      "cACompromise", "affiliationChanged", "superseded", "cessationOfOperation",
    "certificateHold", "privilegeWithdrawn", "aACompromise"};

// In the standard the reasons have the tag [3], in front of which the library stops. They and what follows are read
// here.
inline void PrintStandardReasons(Outline& outline, const Bytes& value) {
    static constexpr uint32_t kReasons = 3, kIndirect = 4, kOnlyAttribute = 5;
    const std::optional<Element> point = ReadElement(value);
    if (!point) return;
    bool reached = false;
    size_t at = 0;
    while (const std::optional<Element> field = ReadElement(point->content, at)) {
        at += field->whole.size();
        if (field->tagClass != Asn1ClassContext) continue;
        const bool isTrue = !field->content.empty() && field->content[0] != 0;
        reached = reached || field->tag == kReasons;
        if (field->tag == kReasons) {
            outline.Line("only for the reasons", DescribeFlags(ReadFlags(field->content), kRevocationReasons));
        }
        if (reached && field->tag == kIndirect && isTrue) outline.Line("indirect CRL");
        if (reached && field->tag == kOnlyAttribute && isTrue) outline.Line("only attribute certificates");
    }
}

inline Status PrintIssuingDistributionPoint(Outline& outline, const Bytes& value) {
    X509GeneralNames* fullName = nullptr;
    X509Name* relativeName = nullptr;
    uint8_t onlyUser = 0, onlyCa = 0, indirect = 0, onlyAttribute = 0;
    uint32_t hasOnlyUser = 0, hasOnlyCa = 0, reasons = 0, hasReasons = 0, hasIndirect = 0, hasOnlyAttribute = 0;
    const Status status = DecodeExtensionIssuingDistributionPoint(
        value.data(), Size(value), &fullName, &relativeName, &onlyUser, &hasOnlyUser, &onlyCa, &hasOnlyCa, &reasons,
        &hasReasons, &indirect, &hasIndirect, &onlyAttribute, &hasOnlyAttribute);
    if (status != StatusOk) return status;
    // The two names only tell whether they are there.
    if (fullName != nullptr) outline.Line("has a full name");
    if (relativeName != nullptr) outline.Line("has a name relative to the issuer");
    if (onlyUser != 0) outline.Line("only user certificates");
    if (onlyCa != 0) outline.Line("only CA certificates");
    if (hasReasons != 0) outline.Line("only for the reasons", DescribeFlags(reasons, kRevocationReasons));
    if (indirect != 0) outline.Line("indirect CRL");
    if (onlyAttribute != 0) outline.Line("only attribute certificates");
    PrintStandardReasons(outline, value);
    return StatusOk;
}

// --- Lists. Each is decoded, counted, and printed member by member until one fails ---

template <class List, auto Free, auto Decode, auto Count, class Print>
Status PrintList(const Bytes& value, Print&& print) {
    Owned<List, Free> list;
    uint32_t count = 0;
    Status status = Decode(value.data(), Size(value), list.Out());
    if (status == StatusOk) status = Count(list, &count);
    for (uint32_t i = 0; i < count && status == StatusOk; ++i) status = print(list, i);
    return status;
}

inline Status PrintExtendedKeyUsage(Outline& outline, const Bytes& value) {
    return PrintList<ExtensionExtendedKeyUsage, FreeExtensionExtendedKeyUsage, DecodeExtensionExtendedKeyUsage,
                     GetExtensionExtendedKeyUsageCount>(
        value, [&](const ExtensionExtendedKeyUsage* list, uint32_t index) {
            const Fetched oid = Get(GetExtensionExtendedKeyUsage, list, index);
            if (oid.status == StatusOk) outline.Line(DescribeOid(oid.bytes));
            return oid.status;
        });
}

inline Status PrintInformationAccess(Outline& outline, const Bytes& value) {
    return PrintList<ExtensionAuthorityInformationAccess, FreeExtensionAuthorityInformationAccess,
                     DecodeExtensionAuthorityInformationAccess, GetExtensionAuthorityInformationAccessCount>(
        value, [&](const ExtensionAuthorityInformationAccess* list, uint32_t index) {
            Output method;
            X509GeneralName* location = nullptr;
            const Status status = Fetch(
                [&] {
                    return GetExtensionAuthorityInformationAccess(list, index, method.data, &method.length, &location);
                },
                method);
            if (status != StatusOk) return status;
            const Outline::Section section = outline.Open(DescribeOid(method.bytes));
            PrintGeneralName(outline, location);
            return StatusOk;
        });
}

inline Status PrintDistributionPoints(Outline& outline, const Bytes& value) {
    return PrintList<ExtensionCrlDistributionPoints, FreeExtensionCrlDistributionPoints,
                     DecodeExtensionCrlDistributionPoints, GetExtensionCrlDistributionPointsCount>(
        value, [&](const ExtensionCrlDistributionPoints* list, uint32_t index) {
            X509GeneralNames *fullName = nullptr, *crlIssuer = nullptr;
            X509Name* relativeName = nullptr;
            uint32_t reasons = 0;
            const Status status =
                GetExtensionCrlDistributionPoint(list, index, &fullName, &relativeName, &reasons, &crlIssuer);
            if (status != StatusOk) return status;
            const Outline::Section point = outline.Open("point");
            if (fullName != nullptr) PrintGeneralNames(outline, fullName);
            if (relativeName != nullptr) PrintName(outline, "relative to the issuer", relativeName);
            if (reasons != 0) outline.Line("reasons", DescribeFlags(reasons, kRevocationReasons));
            if (crlIssuer != nullptr) {
                const Outline::Section section = outline.Open("CRL issuer");
                PrintGeneralNames(outline, crlIssuer);
            }
            return StatusOk;
        });
}

// A notice to the user is a SEQUENCE of an optional reference and an optional text.
inline void PrintPolicyQualifier(Outline& outline, const Bytes& oid, const Bytes& value) {
    const std::optional<Element> element = ReadElement(value);
    if (!element || !element->IsUniversal(Asn1KindSequence)) return PrintElement(outline, DescribeOid(oid), value);
    const Outline::Section section = outline.Open(DescribeOid(oid));
    size_t at = 0;
    while (const std::optional<Element> part = ReadElement(element->content, at)) {
        PrintElement(outline, part->IsUniversal(Asn1KindSequence) ? "reference" : "text", part->whole);
        at += part->whole.size();
    }
}

inline Status PrintPolicyQualifiers(Outline& outline, const ExtensionCertificatePolicies* list, uint32_t policy) {
    uint32_t count = 0;
    Status status = GetExtensionPolicyQualifiersCount(list, policy, &count);
    for (uint32_t i = 0; i < count && status == StatusOk; ++i) {
        Output oid, value;
        status = Fetch(
            [&] {
                return GetExtensionPolicyQualifier(list, policy, i, oid.data, &oid.length, value.data, &value.length);
            },
            oid, value);
        if (status == StatusOk) PrintPolicyQualifier(outline, oid.bytes, value.bytes);
    }
    return status;
}

inline Status PrintPolicy(Outline& outline, const ExtensionCertificatePolicies* list, uint32_t index) {
    const Fetched oid = Get(GetExtensionPolicyInformation, list, index);
    if (oid.status != StatusOk) return oid.status;
    const Outline::Section section = outline.Open(DescribeOid(oid.bytes));
    return PrintPolicyQualifiers(outline, list, index);
}

inline Status PrintPolicies(Outline& outline, const Bytes& value) {
    return PrintList<ExtensionCertificatePolicies, FreeExtensionCertificatePolicies, DecodeExtensionCertificatePolicies,
                     GetExtensionPolicyInformationCount>(
        value,
        [&](const ExtensionCertificatePolicies* list, uint32_t index) { return PrintPolicy(outline, list, index); });
}

inline constexpr auto PrintAlternativeNames =
    PrintDecoded<X509GeneralNames, FreeX509GeneralNames, DecodeX509GeneralNames, PrintGeneralNames>;

// The tools of a qualified certificate and of its issuer, each with the document that says what they are good for.
inline Status PrintIssuerSignTool(Outline& outline, const Bytes& value) {
    Output signTool, cATool, cAToolCert;
    // The third text can't be asked for its size, but is no longer than all of them.
    Bytes signToolCert(value.size() + 1);
    uint32_t signToolCertLength = 0;
    const auto decode = [&] {
        signToolCertLength = Size(signToolCert);
        return DecodeExtensionIssuerSignTool(value.data(), Size(value), signTool.data, &signTool.length, cATool.data,
                                             &cATool.length, signToolCert.data(), &signToolCertLength, cAToolCert.data,
                                             &cAToolCert.length);
    };
    const Status status = Fetch(decode, signTool, cATool, cAToolCert);
    if (status != StatusOk) return status;
    signToolCert.resize(signToolCertLength);
    outline.Line("sign tool", Escape(ReadUtf8(signTool.bytes)));
    outline.Line("CA tool", Escape(ReadUtf8(cATool.bytes)));
    outline.Line("certificate of the sign tool", Escape(ReadUtf8(signToolCert)));
    outline.Line("certificate of the CA tool", Escape(ReadUtf8(cAToolCert.bytes)));
    return StatusOk;
}

// --- The extensions of a document ---

inline constexpr ValueCodec kExtensionCodecs[] = {
    {"2.5.29.14", PrintBytes<DecodeExtensionSubjectKeyIdentifier>},
    {"2.5.29.15", PrintKeyUsage},
    {"2.5.29.16", PrintPrivateKeyUsagePeriod},
    {"2.5.29.17", PrintAlternativeNames},  // of the subject
    {"2.5.29.18", PrintAlternativeNames},  // of the issuer
    {"2.5.29.19", PrintBasicConstraints},
    {"2.5.29.20", PrintBytes<DecodeExtensionCrlNumber>},
    {"2.5.29.21", PrintReasonCode},
    {"2.5.29.24", PrintInvalidityDate},
    {"2.5.29.27", PrintBytes<DecodeExtensionDeltaCrlIndicator>},
    {"2.5.29.28", PrintIssuingDistributionPoint},
    {"2.5.29.29", PrintAlternativeNames},  // of the issuer of a certificate in a CRL
    {"2.5.29.31", PrintDistributionPoints},
    {"2.5.29.32", PrintPolicies},
    {"2.5.29.35", PrintAuthorityKeyIdentifier},
    {"2.5.29.37", PrintExtendedKeyUsage},
    {"2.5.29.46", PrintDistributionPoints},  // of the freshest CRL
    {"1.3.6.1.5.5.7.1.1", PrintInformationAccess},
    {"1.3.6.1.5.5.7.1.11", PrintInformationAccess},  // of the subject
    {"1.3.6.1.5.5.7.48.1.2", PrintBytes<DecodeExtensionOcspNonce>},
    {"1.3.6.1.5.5.7.48.1.4", PrintExtendedKeyUsage},  // types of OCSP responses, a list of OIDs as well
    {"1.3.6.1.4.1.311.21.10", PrintPolicies},         // of applications
    {"2.16.840.1.113730.1.1", PrintNetscapeCertificateType},
    {"1.2.643.100.111", PrintUtf8<DecodeExtensionSubjectSignTool>},
    {"1.2.643.100.112", PrintIssuerSignTool},
    {"1.2.643.3.123.3.1", PrintUtf8<DecodeExtensionZelcryptKeyIdentifier>},
};

inline void PrintExtension(Outline& outline, X509Extensions extensions, uint32_t index) {
    Output oid, value;
    uint32_t critical = 0;
    const Status status = Fetch(
        [&] {
            return GetX509ExtensionsExtension(extensions, index, oid.data, &oid.length, &critical, value.data,
                                              &value.length);
        },
        oid, value);
    if (status != StatusOk) return outline.Failed("extension", status);
    const Outline::Section section = outline.Open(DescribeOid(oid.bytes) + (critical != 0 ? ", critical" : ""));
    PrintValue(outline, "value", kExtensionCodecs, oid.bytes, value.bytes);
}

inline void PrintExtensions(Outline& outline, X509Extensions extensions) {
    uint32_t count = 0;
    const Status status = GetX509ExtensionsExtensionsCount(extensions, &count);
    if (status != StatusOk) return outline.Failed("Extensions", status);
    if (count == 0) return;
    const Outline::Section section = outline.Open("Extensions");
    for (uint32_t i = 0; i < count; ++i) PrintExtension(outline, extensions, i);
}

}  // namespace examples
