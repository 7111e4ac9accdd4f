#include "kinds.h"

#include <algorithm>

#include "ocsp/ocsp.schema.h"
#include "schemas.h"
#include "tsp/timestamp.schema.h"
#include "x509/crl.schema.h"
#include "x509/request.schema.h"

namespace inspect {

namespace {

const Kind kAll[] = {
    {"certificate", "Certificate", &shapeOf<Certificate>},
    {"crl", "Certificate revocation list", &shapeOf<X509Crl>},
    {"request", "Certification request", &shapeOf<PKCS10CertReq>},
    {"message", "CMS message", &shapeOf<CmsContentInfo>},
    {"ocsp-request", "OCSP request", &shapeOf<OcspRequest>},
    {"ocsp-response", "OCSP response", &shapeOf<OcspResponse>},
    {"timestamp-request", "Time-stamp request", &shapeOf<tlvforge::TimeStampReq>},
    {"timestamp-response", "Time-stamp response", &shapeOf<tlvforge::TimeStampResp>},
    {"timestamp-info", "Time-stamp information", &shapeOf<tlvforge::TSTInfo>},
    {"pkcs12", "PKCS#12 store of keys and certificates", &shapeOf<Pfx>, nullptr, false},
    {"private-key", "Private key, PKCS#8", &shapeOf<PrivateKeyInfo>, "PRIVATE KEY", false},
    {"encrypted-private-key", "Encrypted private key, PKCS#8", &shapeOf<EncryptedPrivateKeyInfo>,
     "ENCRYPTED PRIVATE KEY", false},
    {"rsa-private-key", "RSA private key, PKCS#1", &shapeOf<RsaPrivateKey>, "RSA PRIVATE KEY", false},
    {"ec-private-key", "EC private key, SEC 1", &shapeOf<EcPrivateKey>, "EC PRIVATE KEY", false},
    {"public-key", "Public key", &shapeOf<SubjectPublicKeyInfo>, "PUBLIC KEY", false},
    {"dsa-parameters", "DSA parameters, or Diffie-Hellman ones of X9.42", &shapeOf<DsaParameters>, "DSA PARAMETERS",
     false},
    {"dh-parameters", "Diffie-Hellman parameters", &shapeOf<DhParameters>, "DH PARAMETERS", false},
    {"rsa-public-key", "RSA public key, PKCS#1", &shapeOf<RsaPublicKey>, "RSA PUBLIC KEY", false},
    {"ec-parameters", "EC parameters", &shapeOf<EcParameters>, "EC PARAMETERS", false},
};

// --- Where bytes differ from a schema ---

struct Difference {
    size_t at = 0;
    std::string path;  // "tbsCertificate.validity.notBefore"
    std::string text;  // "INTEGER instead of SEQUENCE"
};

std::string Expected(const Shape& shape) {
    const Asn1Item& item = *shape.item;
    if (item.tagNumber < 0 && item.kind == Asn1KindAny) return "any element";
    if (item.tagNumber >= 0 || item.kind != Asn1KindChoice) {
        return DescribeTag({item.tagClass, 0, static_cast<uint32_t>(tlvforge::TagOf(item)), false, 0, 0});
    }
    std::string text;
    for (uint32_t i = 0; i < item.childCount; ++i) text += (i > 0 ? " or " : "") + Expected(*shape.children[i]);
    return text;
}

// Compares elements with a schema. One that says to be longer than it can be lasts as long as its parent, so that what
// is wrong shows further inside.
class Comparison {
public:
    explicit Comparison(View bytes) : bytes_(bytes) {}

    // At a place that moves on after an element.
    std::optional<Difference> Compare(const Shape& shape, std::string_view name, size_t& at, size_t end) {
        const std::optional<Header> header = ReadHeader(bytes_.subspan(at, end - at));
        const bool missing = at == end;
        const bool readable = header && (header->constructed != 0 || header->contentSize <= end - at - header->size);
        if (readable && Fits(shape, *header)) return CompareContent(shape, *header, name, at, end);
        if ((shape.item->itemFlags & Asn1FlagOptional) != 0 && (missing || readable)) return std::nullopt;
        const std::string found = missing ? "nothing" : readable ? DescribeTag(*header) : "what can't be read";
        return Difference{at, std::string(name), found + " instead of " + Expected(shape)};
    }

private:
    std::optional<Difference> CompareContent(const Shape& shape, const Header& header, std::string_view name,
                                             size_t& at, size_t end) {
        const size_t content = at + header.size;
        size_t contentEnd = content + std::min<size_t>(header.contentSize, end - content);
        if (header.indefinite) {
            const std::optional<Element> element = ReadElement(bytes_.subspan(at, end - at));
            if (element) contentEnd = content + element->content.size();
            at = element ? at + element->whole.size() : end;
        } else {
            at = contentEnd;
        }
        std::optional<Difference> difference = CompareInside(shape, content, contentEnd);
        if (difference && !name.empty())
            difference->path.insert(0, std::string(name) + (difference->path.empty() ? "" : "."));
        return difference;
    }

    std::optional<Difference> CompareInside(const Shape& shape, size_t at, size_t end) {
        const Asn1Item& item = *shape.item;
        std::optional<Difference> difference;
        if (IsList(item)) {
            while (at < end && !difference) difference = Compare(*shape.children[0], "", at, end);
            return difference;
        }
        // Below an explicit tag the schema's own comes once more, and the choices among alternatives are left alone.
        if (item.kind != Asn1KindSequence) return std::nullopt;
        if ((item.itemFlags & Asn1FlagExplicit) != 0) {
            const std::optional<Header> inner = ReadHeader(bytes_.subspan(at, end - at));
            if (!inner || !inner->IsUniversal(Asn1KindSequence)) {
                return Difference{
                    at, "", (inner ? DescribeTag(*inner) : "what can't be read") + std::string(" instead of SEQUENCE")};
            }
            at += inner->size;
            if (!inner->indefinite) end = at + std::min<size_t>(inner->contentSize, end - at);
        }
        for (uint32_t i = 0; i < item.childCount && !difference; ++i) {
            std::string_view name = shape.fieldNames[i];
            name.remove_prefix(name.find("::") == std::string_view::npos ? 0 : name.find("::") + 2);
            difference = Compare(*shape.children[i], name, at, end);
        }
        return difference;
    }

    static bool IsList(const Asn1Item& item) {
        return tlvforge::IsList(item) && (item.itemFlags & Asn1FlagExplicit) == 0;
    }

    View bytes_;
};

// Whether all fields of a document are ones of the schema.
bool HasOnlyFields(const Kind& kind, View bytes) {
    const std::optional<Element> element = ReadWholeElement(bytes);
    return element && (kind.shape->fieldNames == nullptr || Split(*kind.shape, element->content).rest.empty());
}

}  // namespace

const std::span<const Kind> kKinds = kAll;

const Kind* FindKind(std::string_view name) {
    for (const Kind& kind : kKinds) {
        if (name == kind.name) return &kind;
    }
    return nullptr;
}

const Kind* Recognise(const Kind* wanted, std::string_view label, View element, Refusals& refusals) {
    const auto takes = [&](const Kind& kind) {
        const Status status = AskDecoder(*kind.shape, element);
        if (status == StatusOk && (kind.isOfLibrary || HasOnlyFields(kind, element))) return true;
        refusals.Add(kind, status);
        return false;
    };
    if (wanted != nullptr) return takes(*wanted) ? wanted : nullptr;
    for (const Kind& kind : kKinds) {
        if (kind.label != nullptr && label == kind.label && takes(kind)) return &kind;
    }
    for (const Kind& kind : kKinds) {
        if (takes(kind)) return &kind;
    }
    return nullptr;
}

void ShowDocument(Outline& outline, const Kind& kind, const Element& element, bool whole) {
    std::string title = kind.title;
    if (kind.shape == &shapeOf<CmsContentInfo>) {
        const std::optional<Element> type = Split(*kind.shape, element.content)[0];
        const std::string name = type ? NameOfOid(type->content) : "";
        if (name == "signedData") title = "Signed message";
        if (name == "envelopedData") title = "Enveloped message";
    }
    Walker(outline, whole).ShowDocument(*kind.shape, element, title);
}

void Refusals::Add(const Kind& kind, Status status) {
    if (!kind.isOfLibrary) return;
    std::string& kinds = kinds_[status];
    kinds.append(kinds.empty() ? "" : ", ").append(kind.name);
    size_t at = 0;
    const std::optional<Difference> difference = Comparison(bytes_).Compare(*kind.shape, "", at, bytes_.size());
    if (difference) at = difference->at;
    if (nearest_ != nullptr && at <= nearestAt_) return;
    nearest_ = &kind;
    nearestAt_ = at;
    const std::string path = difference && !difference->path.empty() ? ", " + difference->path : "";
    difference_ = difference ? "at byte " + std::to_string(at) + path + ": " + difference->text : "";
}

std::vector<std::string> Refusals::Describe() const {
    std::vector<std::string> lines;
    for (const auto& [status, kinds] : kinds_) {
        const bool all = kinds_.size() == 1 && kinds.find(',') != std::string::npos;
        lines.push_back(DescribeStatus(status) + ", for " + (all ? "every kind" : kinds));
    }
    if (const std::optional<std::string> fault = DescribeFault(bytes_)) lines.push_back(*fault);
    if (nearest_ != nullptr) lines.push_back(DescribeNearest());
    return lines;
}

std::string Refusals::DescribeNearest() const {
    const std::string nearest = std::string("nearest to ").append(nearest_->name);
    return difference_.empty() ? nearest + ", with all its fields; what is refused lies inside of one"
                               : nearest + ", but " + difference_;
}

}  // namespace inspect
