// What isn't in the schemas of the library: what an object identifier stands for, and how a field is called and read.
#include <algorithm>
#include <cctype>

#include "cades/attribute_values.schema.h"
#include "cms/enveloped.schema.h"
#include "schemas.h"
#include "tsp/timestamp.schema.h"
#include "walk.h"
#include "x509/private_extensions.schema.h"

namespace inspect {

using namespace tlvforge;
using schema::BitString;
using schema::Enumerated;
using schema::OctetString;
using schema::SequenceOf;

namespace {

constexpr const char* kKeyUsages[] = {"digitalSignature", "nonRepudiation", "keyEncipherment",
                                      "dataEncipherment", "keyAgreement",   "keyCertSign",
                                      "cRLSign",          "encipherOnly",   "decipherOnly"};
constexpr const char* kNetscapeTypes[] = {"SSL client", "SSL server", "S/MIME",    "object signing",
                                          "reserved",   "SSL CA",     "S/MIME CA", "object signing CA"};
constexpr const char* kReasonCodes[] = {
    "unspecified",     "keyCompromise", "cACompromise",  "affiliationChanged", "superseded",  "cessationOfOperation",
    "certificateHold", nullptr,         "removeFromCRL", "privilegeWithdrawn", "aACompromise"};
constexpr const char* kReasonFlags[] = {"unused",      "keyCompromise",        "cACompromise",    "affiliationChanged",
                                        "superseded",  "cessationOfOperation", "certificateHold", "privilegeWithdrawn",
                                        "aACompromise"};
constexpr const char* kOcspStatuses[] = {"successful", "malformedRequest", "internalError", "tryLater",
                                         nullptr,      "sigRequired",      "unauthorized"};
constexpr const char* kStampStatuses[] = {"granted", "grantedWithMods",   "rejection",
                                          "waiting", "revocationWarning", "revocationNotification"};
// clang-format off
constexpr const char* kStampFailures[] = {
    "badAlg", nullptr, "badRequest", nullptr, nullptr, "badDataFormat", nullptr, nullptr, nullptr, nullptr, nullptr,
    nullptr, nullptr, nullptr, "timeNotAvailable", "unacceptedPolicy", "unacceptedExtension", "addInfoNotAvailable",
    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, "systemFailure"};

const Shape* const kNames = &shapeOf<X509GeneralNames>;
const Shape* const kToken = &shapeOf<CmsContentInfo>;

const Known kKnown[] = {
    // Extensions
    {"2.5.29.15", &shapeOf<BitString>, nullptr, nullptr, {"", "Usage", How::kNames, kKeyUsages}},
    {"2.5.29.16", &shapeOf<TimePair>},
    {"2.5.29.17", kNames},
    {"2.5.29.18", kNames},
    {"2.5.29.19", &shapeOf<BasicConstraints>},
    {"2.5.29.21", &shapeOf<Enumerated>, nullptr, nullptr, {"", "Reason", How::kNames, kReasonCodes}},
    {"2.5.29.28", &shapeOf<tlvforge::IssuingDistributionPoint>, nullptr, &shapeOf<IssuingDistributionPoint>},
    {"2.5.29.29", kNames},
    {"2.5.29.30", &shapeOf<NameConstraints>},
    {"2.5.29.31", &shapeOf<ExtensionCrlDistributionPoints>, nullptr, &shapeOf<DistributionPoints>},
    {"2.5.29.32", &shapeOf<ExtensionCertificatePolicies>},
    {"2.5.29.33", &shapeOf<PolicyMappings>},
    {"2.5.29.35", &shapeOf<AuthorityKeyIdentifier>},
    {"2.5.29.36", &shapeOf<PolicyConstraints>},
    {"2.5.29.37", &shapeOf<ExtensionExtendedKeyUsage>},
    {"2.5.29.46", &shapeOf<ExtensionCrlDistributionPoints>, nullptr, &shapeOf<DistributionPoints>},
    {"1.3.6.1.5.5.7.1.1", &shapeOf<ExtensionAuthorityInformationAccess>},
    {"1.3.6.1.5.5.7.1.11", &shapeOf<ExtensionAuthorityInformationAccess>},
    {"1.3.6.1.5.5.7.48.1.4", &shapeOf<ExtensionExtendedKeyUsage>},
    {"1.3.6.1.4.1.311.21.10", &shapeOf<ExtensionCertificatePolicies>},
    {"1.3.6.1.4.1.11129.2.4.2", &shapeOf<OctetString>, nullptr, nullptr, {"", "Timestamps", How::kScts}},
    {"1.3.6.1.4.1.11129.2.4.5", &shapeOf<OctetString>, nullptr, nullptr, {"", "Timestamps", How::kScts}},
    {"2.16.840.1.113730.1.1", &shapeOf<BitString>, nullptr, nullptr, {"", "Type", How::kNames, kNetscapeTypes}},
    {"1.2.643.100.112", &shapeOf<IssuerSignTool>},

    // Parameters of algorithms
    {"1.2.643.2.2.19", &shapeOf<GostR34102001Parameters>},
    {"1.2.643.7.1.1.1.1", &shapeOf<GostR34102012Parameters>},
    {"1.2.643.7.1.1.1.2", &shapeOf<GostR34102012Parameters>},
    {"1.2.643.2.2.21", &shapeOf<Gost2814789Parameters>},
    {"1.2.840.10040.4.1", &shapeOf<DsaParameters>},
    {"1.2.840.113549.1.1.7", &shapeOf<OaepParameters>},
    {"1.2.840.113549.1.1.8", &shapeOf<AlgorithmIdentifier>},
    {"1.2.840.113549.1.1.10", &shapeOf<PssParameters>},

    // Attributes
    {"1.2.840.113549.1.9.5", &shapeOf<Time>},
    {"1.2.840.113549.1.9.6", &shapeOf<CmsSignerInfo>},
    {"1.2.840.113549.1.9.14", &shapeOf<X509ExtensionList>},
    {"1.3.6.1.4.1.311.2.1.14", &shapeOf<X509ExtensionList>},
    {"1.2.840.113549.1.9.16.2.12", &shapeOf<SigningCertificate<ESSCertIDs>>},
    {"1.2.840.113549.1.9.16.2.47", &shapeOf<SigningCertificate<ESSCertIDsV2>>},
    {"1.2.840.113549.1.9.16.2.19", &shapeOf<SigningCertificate<OtherCertIDs>>},
    {"1.2.840.113549.1.9.16.2.21", &shapeOf<OtherCertIDs>},
    {"1.2.840.113549.1.9.16.2.44", &shapeOf<OtherCertIDs>},
    {"1.2.840.113549.1.9.16.2.22", &shapeOf<CrlOcspRefs>},
    {"1.2.840.113549.1.9.16.2.45", &shapeOf<CrlOcspRefs>},
    {"1.2.840.113549.1.9.16.2.23", &shapeOf<Certificates>},
    {"1.2.840.113549.1.9.16.2.24", &shapeOf<RevocationValues>},
    {"1.2.840.113549.1.9.16.2.14", kToken},
    {"1.2.840.113549.1.9.16.2.20", kToken},
    {"1.2.840.113549.1.9.16.2.25", kToken},
    {"1.2.840.113549.1.9.16.2.26", kToken},
    {"1.2.840.113549.1.9.16.2.27", kToken},
    {"1.2.840.113549.1.9.16.2.48", kToken},
    {"0.4.0.1733.2.4", kToken},
    {"1.3.6.1.4.1.311.3.3.1", kToken},
    {"1.3.6.1.4.1.311.2.4.1", kToken},
    {"0.4.0.1733.2.5", &shapeOf<AtsHashIndex>, &shapeOf<AtsHashIndexLists>},

    // Contents
    {"1.2.840.113549.1.7.1", &shapeOf<OctetString>},
    {"1.2.840.113549.1.7.2", &shapeOf<CmsSignedData>},
    {"1.2.840.113549.1.7.3", &shapeOf<CmsEnvelopedData>},
    {"1.2.840.113549.1.9.16.1.4", &shapeOf<TSTInfo>},
    {"1.3.6.1.5.5.7.48.1.1", &shapeOf<OcspBasicResponse>},
};

constexpr Style kStyles[] = {
    {"TBSCertificate::version", nullptr, How::kVersion},
    {"TBSCertList::version", nullptr, How::kVersion},
    {"CertificationRequestInfo::version", nullptr, How::kVersion},
    {"TBSRequest::version", nullptr, How::kVersion},
    {"ResponseData::version", nullptr, How::kVersion},
    {"::tbsCertificate", "", How::kInline},
    {"::tbsCertList", "", How::kInline},
    {"::certificationRequestInfo", "", How::kInline},
    {"::tbsRequest", "", How::kInline},
    {"::tbsResponseData", "", How::kInline},
    {"::validity", "", How::kInline},
    {"list", "", How::kInline},
    {"PKIStatusInfo::status", "Response status", How::kNames, kStampStatuses},
    {"PKIStatusInfo::failInfo", "Failures", How::kNames, kStampFailures},
    {"TimeStampResp::status", "", How::kInline},
    {"TimeStampResp::timeStampToken", "Token"},
    {"TBSCertificate::signature", "Signature algorithm"},
    {"TBSCertList::signature", "Signature algorithm"},
    {"TBSCertificate::subjectPublicKeyInfo", "Public key"},
    {"CertificationRequestInfo::subjectPKInfo", "Public key"},
    {"::serialNumber", nullptr, How::kHex},
    {"::authorityCertSerialNumber", "Serial number", How::kHex},
    {"::authorityCertIssuer", "Issuer"},
    {"::userCertificate", "Serial number", How::kHex},
    {"::nonce", nullptr, How::kHex},
    {"::modulus", nullptr, How::kHex},
    {"BasicConstraints::cA", "CA"},
    {"BasicConstraints::pathLenConstraint", "Path length"},
    {"TimePair::first", "Not before"},
    {"TimePair::second", "Not after"},
    {"::reasons", nullptr, How::kNames, kReasonFlags},
    {"::onlySomeReasons", "Only for the reasons", How::kNames, kReasonFlags},
    {"::revocationReason", nullptr, How::kNames, kReasonCodes},
    {"OcspResponse::responseStatus", nullptr, How::kNames, kOcspStatuses},
    {"::onlyContainsUserCerts", "Only user certificates"},
    {"::onlyContainsCACerts", "Only CA certificates"},
    {"::onlyContainsAttributeCerts", "Only attribute certificates"},
    {"::indirectCRL", "Indirect CRL"},
    {"::distributionPoint", "Names"},
    {"::cRLIssuer", "CRL issuer"},
    {"::encapContentInfo", "Signed content"},
    {"::sid", "Signer identifier"},
    {"::rid", "Recipient identifier"},
    {"::signedAttrs", "Signed attributes"},
    {"::unsignedAttrs", "Unsigned attributes"},
    {"::unprotectedAttrs", "Unprotected attributes"},
    {"::signerInfos", "Signers"},
    {"::recipientInfos", "Recipients"},
    {"::crls", "CRLs"},
    {"::certs", "Certificates"},
    {"certs", "Certificates"},
    {"::crlVals", "CRLs"},
    {"::ocspVals", "OCSP responses"},
    {"::crlids", "CRLs"},
    {"::ocspids", "OCSP responses"},
    {"::crlissuer", "Issuer"},
    {"::certID", "Certificate"},
    {"::reqCert", "Certificate"},
    {"::responderID", "Responder"},
    {"::ocspResponderID", "Responder"},
    {"::tsa", "Authority"},
    {"::ukm", "User keying material"},
    {"::iv", "Initialization vector"},
    {"PrivateKeyInfo::privateKey", nullptr, How::kSecret},
    {"EcPrivateKey::privateKey", nullptr, How::kSecret},
    {"RsaPrivateKey::privateExponent", nullptr, How::kSecret},
    {"RsaPrivateKey::prime1", nullptr, How::kSecret},
    {"RsaPrivateKey::prime2", nullptr, How::kSecret},
    {"RsaPrivateKey::exponent1", nullptr, How::kSecret},
    {"RsaPrivateKey::exponent2", nullptr, How::kSecret},
    {"RsaPrivateKey::coefficient", nullptr, How::kSecret},
};
// clang-format on

struct KeyShape {
    const char* oid;
    const Shape* shape;
};

const KeyShape kKeyShapes[] = {
    {"1.2.840.113549.1.1.1", &shapeOf<RsaPublicKey>},  {"1.2.840.113549.1.1.7", &shapeOf<RsaPublicKey>},
    {"1.2.840.113549.1.1.10", &shapeOf<RsaPublicKey>}, {"1.2.840.10040.4.1", &shapeOf<schema::Integer>},
    {"1.2.840.10046.2.1", &shapeOf<schema::Integer>},  {"1.2.643.2.2.19", &shapeOf<OctetString>},
    {"1.2.643.7.1.1.1.1", &shapeOf<OctetString>},      {"1.2.643.7.1.1.1.2", &shapeOf<OctetString>},
};

size_t CountBits(View number) {
    while (!number.empty() && number[0] == 0) number = number.subspan(1);
    size_t bits = 8 * number.size();
    for (uint8_t first = number.empty() ? 0x80 : number[0]; (first & 0x80) == 0;
         first = static_cast<uint8_t>(first << 1)) {
        --bits;
    }
    return bits;
}

// Of the first number inside of an element.
size_t CountBitsOfFirst(View sequence) {
    const std::optional<Element> element = ReadElement(sequence);
    const std::optional<Element> first = element ? ReadElement(element->content) : std::nullopt;
    return first && first->IsUniversal(Asn1KindInteger) ? CountBits(first->content) : 0;
}

// The number that stands in the name of a curve, such as P-521; otherwise half of a point.
size_t CountBitsOfCurve(View parameters, View point) {
    const std::optional<Element> oid = ReadElement(parameters);
    const std::string dotted = oid ? ToDotted(oid->content) : "", name = oid ? NameOfOid(oid->content) : "";
    const size_t digits = name == dotted ? std::string::npos : name.find_first_of("0123456789");
    if (digits != std::string::npos) return std::stoul(name.substr(digits));
    return !point.empty() && point[0] == 4 ? (point.size() - 1) / 2 * 8 : 0;
}

}  // namespace

const Known* FindKnown(View oid) {
    const std::string dotted = ToDotted(oid);
    const Known* const known =
        std::find_if(std::begin(kKnown), std::end(kKnown), [&](const Known& row) { return dotted == row.oid; });
    return known != std::end(kKnown) ? known : nullptr;
}

const Shape* FindKeyShape(View algorithm) {
    const std::string dotted = ToDotted(algorithm);
    for (const KeyShape& row : kKeyShapes) {
        if (dotted == row.oid) return row.shape;
    }
    return nullptr;
}

std::string DescribeKeySize(View algorithm, View parameters, View key) {
    const std::string dotted = ToDotted(algorithm);
    const Shape* const shape = FindKeyShape(algorithm);
    size_t bits = 0;
    if (dotted == "1.2.840.10045.2.1") {
        bits = CountBitsOfCurve(parameters, key);
    } else if (shape == &shapeOf<RsaPublicKey>) {
        bits = CountBitsOfFirst(key);
    } else if (shape == &shapeOf<schema::Integer>) {
        bits = CountBitsOfFirst(parameters);
    } else if (const std::optional<Element> point = ReadElement(key); shape != nullptr && point) {
        bits = point->content.size() / 2 * 8;
    }
    return bits != 0 ? Count(bits, "bit") : "";
}

Style FindStyle(std::string_view fieldName) {
    for (const Style& style : kStyles) {
        const bool ofAny = style.name.starts_with("::");
        if (ofAny ? fieldName.ends_with(style.name) : fieldName == style.name) return style;
    }
    return {};
}

namespace {

bool IsUpper(char letter) { return std::isupper(static_cast<unsigned char>(letter)) != 0; }
char ToLower(char letter) { return static_cast<char>(std::tolower(static_cast<unsigned char>(letter))); }
char ToUpper(char letter) { return static_cast<char>(std::toupper(static_cast<unsigned char>(letter))); }

}  // namespace

// Words begin with a capital letter; those of several are kept.
std::string InWords(std::string_view name) {
    if (const size_t scope = name.rfind("::"); scope != std::string_view::npos) name.remove_prefix(scope + 2);
    std::string words;
    for (size_t i = 0; i < name.size(); ++i) {
        const bool upper = IsUpper(name[i]), afterUpper = i > 0 && IsUpper(name[i - 1]);
        const bool beforeLower = i + 1 < name.size() && !IsUpper(name[i + 1]);
        const bool begins = upper && i > 0 && (!afterUpper || beforeLower);
        if (begins) words += ' ';
        const bool kept = upper && (i + 1 == name.size() ? afterUpper : !beforeLower);
        words += kept ? name[i] : ToLower(name[i]);
    }
    if (!words.empty()) words[0] = ToUpper(words[0]);
    return words;
}

std::string MemberLabel(const Shape& member) {
    static constexpr const char* kLabels[][2] = {
        {"X509RevokedCertificate", "Revoked certificate"},
        {"CmsSignerInfo", "Signer"},
        {"KeyTrans", "Recipient"},
        {"RecipientInfo", "Recipient"},
        {"OcspCertRequest", "Request"},
        {"OcspSingleResponse", "Response"},
        {"DistributionPoint", "Point"},
        {"PolicyInformation", "Policy"},
        {"PolicyQualifierInfo", "Qualifier"},
        {"AlgorithmIdentifier", "Algorithm"},
        {"X509Crl", "CRL"},
        {"OcspBasicResponse", "OCSP response"},
        {"CrlOcspRef", "References"},
        {"CrlValidatedID", "CRL"},
        {"OcspResponseId", "OCSP response"},
        {"CmsContentInfo", "Message"},
        {"RevocationInfoChoice", "CRL"},
    };
    for (const auto& [type, label] : kLabels) {
        if (member.type == type) return label;
    }
    if (member.children == nullptr) return {};  // values stand for themselves
    return InWords(member.type);
}

}  // namespace inspect
