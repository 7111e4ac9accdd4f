// The fields of documents, as far as they always stand in the same order, and the one where bytes begin to differ.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "../outline/elements.h"

namespace examples {

enum class Occurs { kOnce, kOptional, kMany };

struct Field {
    const char* name;
    std::string_view tag;  // as DescribeTag has it
    Occurs occurs = Occurs::kOnce;
    std::span<const Field> inside{};
};

// Tags of their own.
inline constexpr const char* kAny = "any";
inline constexpr const char* kTime = "UTCTime or GeneralizedTime";

inline constexpr Field kAlgorithm[] = {
    {"algorithm", "OBJECT IDENTIFIER"},
    {"parameters", kAny, Occurs::kOptional},
};
inline constexpr Field kAttribute[] = {
    {"type", "OBJECT IDENTIFIER"},
    {"value", kAny},
};
inline constexpr Field kRelativeName[] = {{"attribute", "SEQUENCE", Occurs::kMany, kAttribute}};
inline constexpr Field kName[] = {{"relativeName", "SET", Occurs::kMany, kRelativeName}};
inline constexpr Field kPublicKeyInfo[] = {
    {"algorithm", "SEQUENCE", Occurs::kOnce, kAlgorithm},
    {"subjectPublicKey", "BIT STRING"},
};
inline constexpr Field kExtension[] = {
    {"extnID", "OBJECT IDENTIFIER"},
    {"critical", "BOOLEAN", Occurs::kOptional},
    {"extnValue", "OCTET STRING"},
};
inline constexpr Field kExtensionList[] = {{"extension", "SEQUENCE", Occurs::kMany, kExtension}};
inline constexpr Field kTaggedExtensions[] = {{"extensions", "SEQUENCE", Occurs::kOnce, kExtensionList}};
inline constexpr Field kVersion[] = {{"version", "INTEGER"}};

inline constexpr Field kValidity[] = {
    {"notBefore", kTime},
    {"notAfter", kTime},
};
inline constexpr Field kTbsCertificate[] = {
    {"version", "[0]", Occurs::kOptional, kVersion},
    {"serialNumber", "INTEGER"},
    {"signature", "SEQUENCE", Occurs::kOnce, kAlgorithm},
    {"issuer", "SEQUENCE", Occurs::kOnce, kName},
    {"validity", "SEQUENCE", Occurs::kOnce, kValidity},
    {"subject", "SEQUENCE", Occurs::kOnce, kName},
    {"subjectPublicKeyInfo", "SEQUENCE", Occurs::kOnce, kPublicKeyInfo},
    {"issuerUniqueID", "[1]", Occurs::kOptional},
    {"subjectUniqueID", "[2]", Occurs::kOptional},
    {"extensions", "[3]", Occurs::kOptional, kTaggedExtensions},
};
inline constexpr Field kCertificateFields[] = {
    {"tbsCertificate", "SEQUENCE", Occurs::kOnce, kTbsCertificate},
    {"signatureAlgorithm", "SEQUENCE", Occurs::kOnce, kAlgorithm},
    {"signatureValue", "BIT STRING"},
};

inline constexpr Field kRevokedCertificate[] = {
    {"userCertificate", "INTEGER"},
    {"revocationDate", kTime},
    {"crlEntryExtensions", "SEQUENCE", Occurs::kOptional, kExtensionList},
};
inline constexpr Field kRevokedCertificates[] = {{"member", "SEQUENCE", Occurs::kMany, kRevokedCertificate}};
inline constexpr Field kTbsCertList[] = {
    {"version", "INTEGER", Occurs::kOptional},
    {"signature", "SEQUENCE", Occurs::kOnce, kAlgorithm},
    {"issuer", "SEQUENCE", Occurs::kOnce, kName},
    {"thisUpdate", kTime},
    {"nextUpdate", kTime, Occurs::kOptional},
    {"revokedCertificates", "SEQUENCE", Occurs::kOptional, kRevokedCertificates},
    {"crlExtensions", "[0]", Occurs::kOptional, kTaggedExtensions},
};
inline constexpr Field kCrlFields[] = {
    {"tbsCertList", "SEQUENCE", Occurs::kOnce, kTbsCertList},
    {"signatureAlgorithm", "SEQUENCE", Occurs::kOnce, kAlgorithm},
    {"signatureValue", "BIT STRING"},
};

inline constexpr Field kRequestInfo[] = {
    {"version", "INTEGER"},
    {"subject", "SEQUENCE", Occurs::kOnce, kName},
    {"subjectPKInfo", "SEQUENCE", Occurs::kOnce, kPublicKeyInfo},
    {"attributes", "[0]"},
};
inline constexpr Field kRequestFields[] = {
    {"certificationRequestInfo", "SEQUENCE", Occurs::kOnce, kRequestInfo},
    {"signatureAlgorithm", "SEQUENCE", Occurs::kOnce, kAlgorithm},
    {"signature", "BIT STRING"},
};

inline constexpr Field kMessageFields[] = {
    {"contentType", "OBJECT IDENTIFIER"},
    {"content", "[0]", Occurs::kOptional},
};

inline constexpr Field kCertId[] = {
    {"hashAlgorithm", "SEQUENCE", Occurs::kOnce, kAlgorithm},
    {"issuerNameHash", "OCTET STRING"},
    {"issuerKeyHash", "OCTET STRING"},
    {"serialNumber", "INTEGER"},
};
inline constexpr Field kSingleRequest[] = {
    {"reqCert", "SEQUENCE", Occurs::kOnce, kCertId},
    {"singleRequestExtensions", "[0]", Occurs::kOptional, kTaggedExtensions},
};
inline constexpr Field kRequestList[] = {{"request", "SEQUENCE", Occurs::kMany, kSingleRequest}};
inline constexpr Field kTbsRequest[] = {
    {"version", "[0]", Occurs::kOptional, kVersion},
    {"requestorName", "[1]", Occurs::kOptional},
    {"requestList", "SEQUENCE", Occurs::kOnce, kRequestList},
    {"requestExtensions", "[2]", Occurs::kOptional, kTaggedExtensions},
};
inline constexpr Field kOcspRequestFields[] = {
    {"tbsRequest", "SEQUENCE", Occurs::kOnce, kTbsRequest},
    {"optionalSignature", "[0]", Occurs::kOptional},
};

inline constexpr Field kResponseBytes[] = {
    {"responseType", "OBJECT IDENTIFIER"},
    {"response", "OCTET STRING"},
};
inline constexpr Field kTaggedResponseBytes[] = {{"responseBytes", "SEQUENCE", Occurs::kOnce, kResponseBytes}};
inline constexpr Field kOcspResponseFields[] = {
    {"responseStatus", "ENUMERATED"},
    {"responseBytes", "[0]", Occurs::kOptional, kTaggedResponseBytes},
};

inline constexpr Field kMessageImprint[] = {
    {"hashAlgorithm", "SEQUENCE", Occurs::kOnce, kAlgorithm},
    {"hashedMessage", "OCTET STRING"},
};
inline constexpr Field kTimeStampRequestFields[] = {
    {"version", "INTEGER"},
    {"messageImprint", "SEQUENCE", Occurs::kOnce, kMessageImprint},
    {"reqPolicy", "OBJECT IDENTIFIER", Occurs::kOptional},
    {"nonce", "INTEGER", Occurs::kOptional},
    {"certReq", "BOOLEAN", Occurs::kOptional},
    {"extensions", "[0]", Occurs::kOptional},
};
inline constexpr Field kStatusInfo[] = {
    {"status", "INTEGER"},
    {"statusString", "SEQUENCE", Occurs::kOptional},
    {"failInfo", "BIT STRING", Occurs::kOptional},
};
inline constexpr Field kTimeStampResponseFields[] = {
    {"status", "SEQUENCE", Occurs::kOnce, kStatusInfo},
    {"timeStampToken", "SEQUENCE", Occurs::kOptional, kMessageFields},
};
inline constexpr Field kTstInfoFields[] = {
    {"version", "INTEGER"},
    {"policy", "OBJECT IDENTIFIER"},
    {"messageImprint", "SEQUENCE", Occurs::kOnce, kMessageImprint},
    {"serialNumber", "INTEGER"},
    {"genTime", "GeneralizedTime"},
    {"accuracy", "SEQUENCE", Occurs::kOptional},
    {"ordering", "BOOLEAN", Occurs::kOptional},
    {"nonce", "INTEGER", Occurs::kOptional},
    {"tsa", "[0]", Occurs::kOptional},
    {"extensions", "[1]", Occurs::kOptional},
};

// --- Where bytes differ ---

struct Difference {
    size_t at = 0;
    std::string path;  // "tbsCertificate.validity.notBefore"
    std::string text;  // "INTEGER instead of SEQUENCE"
};

inline bool HasTag(const Field& field, const Header& header) {
    if (field.tag == kAny) return true;
    if (field.tag == kTime) return header.IsUniversal(Asn1KindUTCTime) || header.IsUniversal(Asn1KindGeneralizedTime);
    return field.tag == DescribeTag(header);
}

// Where the content of an element of indefinite length ends, with the two octets that end it. Nothing if it doesn't.
inline std::optional<size_t> FindEndOfContents(const Bytes& bytes, size_t at, size_t end) {
    size_t depth = 1;
    while (depth > 0) {
        const std::optional<Header> header = ReadHeader(bytes, at, end);
        if (!header) return std::nullopt;
        const bool isEnd = bytes[at] == 0 && bytes[at + 1] == 0;
        at += header->size;
        if (header->indefinite) {
            ++depth;
        } else if (isEnd) {
            --depth;
        } else if (header->contentSize <= end - at) {
            at += header->contentSize;
        } else {
            return std::nullopt;
        }
    }
    return at;
}

// Compares elements with the fields of their parent. One that says to be longer than it can be lasts as long as its
// parent, so that what is wrong comes out further inside.
class FieldWalk {
public:
    // marked: whether the two octets of the indefinite form end the elements.
    FieldWalk(const Bytes& bytes, size_t at, size_t end, bool marked)
        : bytes_(bytes), at_(at), end_(end), marked_(marked) {}

    std::optional<Difference> Compare(std::span<const Field> fields) {
        for (const Field& field : fields) {
            bool met = true;
            while (met) {
                if (std::optional<Difference> difference = CompareOne(field, met)) return difference;
                if (field.occurs != Occurs::kMany) break;
            }
        }
        if (IsAtEnd()) return std::nullopt;
        const std::optional<Header> rest = ReadHeader(bytes_, at_, end_);
        return Difference{at_, "", (rest ? DescribeTag(*rest) : kUnreadable) + " behind the last field"};
    }

    // met: out, whether there is an element of this field.
    std::optional<Difference> CompareOne(const Field& field, bool& met) {
        const std::optional<Header> header = ReadHeader(bytes_, at_, end_);
        const bool missing = IsAtEnd();
        const bool fits = header && (header->constructed != 0 || header->contentSize <= end_ - at_ - header->size);
        const bool readable = fits && !missing;
        met = readable && HasTag(field, *header);
        if (met) return CompareContent(field, *header);
        if (field.occurs != Occurs::kOnce && (missing || readable)) return std::nullopt;
        const std::string found = missing ? "nothing" : readable ? DescribeTag(*header) : kUnreadable;
        return Difference{at_, field.name, (found + " instead of ").append(field.tag)};
    }

private:
    static inline const std::string kUnreadable = "what can't be read";

    bool IsAtEnd() const {
        return at_ == end_ || (marked_ && end_ - at_ >= 2 && bytes_[at_] == 0 && bytes_[at_ + 1] == 0);
    }

    // And goes on behind it.
    std::optional<Difference> CompareContent(const Field& field, const Header& header) {
        const size_t content = at_ + header.size;
        const size_t contentEnd = content + std::min<size_t>(header.contentSize, end_ - content);
        at_ = contentEnd;
        if (field.inside.empty()) {
            if (header.indefinite) at_ = FindEndOfContents(bytes_, content, end_).value_or(end_);
            return std::nullopt;
        }
        FieldWalk inside(bytes_, content, contentEnd, header.indefinite);
        std::optional<Difference> difference = inside.Compare(field.inside);
        if (!difference) {
            if (header.indefinite) at_ = std::min(inside.at_ + 2, end_);
            return std::nullopt;
        }
        const char* const point = difference->path.empty() || *field.name == 0 ? "" : ".";
        difference->path.insert(0, std::string(field.name) + point);
        return difference;
    }

    const Bytes& bytes_;
    size_t at_, end_;
    bool marked_;
};

// Of a document, which is a SEQUENCE of fields. What follows it doesn't belong to it.
inline std::optional<Difference> FindDifference(const Bytes& bytes, std::span<const Field> fields) {
    bool met = false;
    return FieldWalk(bytes, 0, bytes.size(), false).CompareOne({"", "SEQUENCE", Occurs::kOnce, fields}, met);
}

}  // namespace examples
