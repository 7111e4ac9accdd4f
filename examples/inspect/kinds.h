// The kinds of documents, and the reasons why bytes are none of them.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "../outline/certificate.h"
#include "../outline/cms.h"
#include "../outline/crl.h"
#include "../outline/ocsp.h"
#include "../outline/request.h"
#include "../outline/timestamp.h"
#include "fault.h"
#include "fields.h"
#include "statuses.h"

namespace examples {

struct Kind {
    const char* name;
    // Prints nothing unless its decoder takes the bytes.
    Printer print;
    std::span<const Field> fields;
};

// No document of one kind is taken by the decoder of another.
inline constexpr Kind kKinds[] = {
    {"certificate", PrintDecoded<Certificate, FreeCertificate, DecodeCertificate, PrintCertificate>,
     kCertificateFields},
    {"crl", PrintDecoded<X509Crl, FreeX509Crl, DecodeX509Crl, PrintCrl>, kCrlFields},
    {"request", PrintDecoded<PKCS10CertReq, FreePKCS10CertReq, DecodePKCS10CertReq, PrintRequest>, kRequestFields},
    {"message", PrintDecoded<CmsContentInfo, FreeCmsContentInfo, DecodeCmsContentInfo, PrintMessage>, kMessageFields},
    {"ocsp-request", PrintDecoded<OcspRequest, FreeOcspRequest, DecodeOcspRequest, PrintOcspRequest>,
     kOcspRequestFields},
    {"ocsp-response", PrintDecoded<OcspResponse, FreeOcspResponse, DecodeOcspResponse, PrintOcspResponse>,
     kOcspResponseFields},
    {"timestamp-request", PrintTimeStampRequest, kTimeStampRequestFields},
    {"timestamp-response", PrintTimeStampResponse, kTimeStampResponseFields},
    {"timestamp-info", PrintTstInfo, kTstInfoFields},
};

inline const Kind* FindKind(std::string_view name) {
    for (const Kind& kind : kKinds) {
        if (name == kind.name) return &kind;
    }
    return nullptr;
}

inline std::string DescribeStatus(Status status) {
    const StatusText text = FindStatusText(status);
    return std::string("status ").append(std::to_string(status)) + ", " + text.name + " (" + text.meaning + ")";
}

// What the decoders answered, in words.
class Refusals {
public:
    explicit Refusals(const Bytes& bytes) : bytes_(bytes) {}

    void Add(const Kind& kind, Status status) {
        std::string& kinds = kinds_[status];
        kinds.append(kinds.empty() ? "" : ", ").append(kind.name);
        const std::optional<Difference> difference = FindDifference(bytes_, kind.fields);
        const size_t at = difference ? difference->at : bytes_.size();
        if (nearest_ != nullptr && at <= nearestAt_) return;
        nearest_ = &kind;
        nearestAt_ = at;
        difference_ = difference;
    }

    std::vector<std::string> Describe() const {
        std::vector<std::string> lines;
        for (const auto& [status, kinds] : kinds_) {
            const bool all = kinds_.size() == 1 && kinds.find(',') != std::string::npos;
            lines.push_back(DescribeStatus(status) + " for " + (all ? "every kind" : kinds));
        }
        if (const std::optional<std::string> fault = DescribeFault(bytes_)) lines.push_back(*fault);
        lines.push_back(DescribeNearest());
        return lines;
    }

private:
    std::string DescribeNearest() const {
        const std::string nearest = std::string("nearest to ").append(nearest_->name);
        if (!difference_) return nearest + ", with all its fields; what is refused lies inside of one";
        const std::string path = difference_->path.empty() ? "" : ", " + difference_->path;
        return nearest + ", but at byte " + std::to_string(difference_->at) + path + ": " + difference_->text;
    }

    const Bytes& bytes_;
    std::map<Status, std::string> kinds_;
    // The one with the most bytes as they should be.
    const Kind* nearest_ = nullptr;
    size_t nearestAt_ = 0;
    std::optional<Difference> difference_;
};

// Decoders read the element at the front and ignore what follows it.
inline void PrintTrailingBytes(Outline& outline, const Bytes& bytes) {
    const std::optional<Header> header = ReadHeader(bytes, 0, bytes.size());
    if (!header || header->indefinite) return;
    const size_t size = header->size + size_t{header->contentSize};
    if (size < bytes.size()) outline.Line("Behind the document", std::to_string(bytes.size() - size) + " bytes");
}

}  // namespace examples
