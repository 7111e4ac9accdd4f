// The parts of documents that aren't shown field by field.
#include <algorithm>

#include "cades/attribute_values.schema.h"
#include "cms/enveloped.schema.h"
#include "tlvforge/sha1.h"
#include "tsp/timestamp.schema.h"
#include "walk.h"

namespace inspect {

// A tagged schema has the children of the one without a tag, and so they say what it is.
Walker::Handler Walker::FindHandler(const Asn1Item& item) {
    using namespace tlvforge;
    static constexpr struct {
        const Asn1Item& item;
        Handler handler;
    } kHandlers[] = {
        {itemOf<AlgorithmIdentifier>, &Walker::ShowAlgorithm},
        {itemOf<SubjectPublicKeyInfo>, &Walker::ShowPublicKey},
        {itemOf<X509Name>, &Walker::ShowName},
        {itemOf<RelativeDistinguishedName>, &Walker::ShowName},
        {itemOf<X509GeneralName>, &Walker::ShowGeneralName},
        {itemOf<X509Extension>, &Walker::ShowExtension},
        {itemOf<RsaAttribute>, &Walker::ShowAttribute},
        {itemOf<CmsContentInfo>, &Walker::ShowContent},
        {itemOf<EncapsulatedContentInfo>, &Walker::ShowContent},
        {itemOf<OcspResponseBytes>, &Walker::ShowContent},
        {itemOf<TypedValue>, &Walker::ShowTypedValue},
        {itemOf<OtherRevocationInfo>, &Walker::ShowTypedValue},
        {itemOf<OcspResponderID>, &Walker::ShowResponderId},
        {itemOf<OcspResponder>, &Walker::ShowResponderId},
        {itemOf<OcspCertStatus>, &Walker::ShowCertificateStatus},
        {itemOf<Certificate>, &Walker::ShowCertificate},
        {itemOf<CertificateSet>, &Walker::ShowCertificateSet},
    };
    for (const auto& row : kHandlers) {
        if (item.children != nullptr && item.children == row.item.children) return row.handler;
    }
    return nullptr;
}

// --- Algorithms and keys ---

void Walker::ShowAlgorithm(const Shape& shape, const Element& element, const std::string& label) {
    const Fields fields = Split(shape, element.content);
    if (!fields[0]) return ShowRaw(label, element.whole);
    outline_.Line(label, DescribeOid(fields[0]->content));
    const Outline::Section section(outline_);
    if (fields[1]) ShowKnown(fields[0]->content, fields[1]->whole, "Parameters");
    ShowRest(fields.rest);
}

void Walker::ShowPublicKey(const Shape& shape, const Element& element, const std::string& label) {
    const Fields fields = Split(shape, element.content);
    const std::optional<Element> algorithm =
        fields[0] ? Split(*shape.children[0], fields[0]->content)[0] : std::nullopt;
    if (!algorithm || !fields[1] || fields[1]->content.empty()) return ShowRaw(label, element.whole);
    const Outline::Section section = outline_.Open(label);
    ShowAlgorithm(*shape.children[0], *fields[0], "Algorithm");
    const std::optional<Element> parameters = Split(*shape.children[0], fields[0]->content)[1];
    const View key = fields[1]->content.subspan(1);
    const std::string size = DescribeKeySize(algorithm->content, parameters ? parameters->whole : View(), key);
    if (!size.empty()) outline_.Line("Size", size);
    const Shape* const keyShape = FindKeyShape(algorithm->content);
    const std::optional<Element> inside = ReadWholeElement(key);
    if (keyShape != nullptr && inside && AskDecoder(*keyShape, key) == StatusOk) {
        Show(*keyShape, *inside, "Key", {"", nullptr, How::kInline});
    } else {
        ShowBits(fields[1]->content, "Key", {});
    }
    ShowRest(fields.rest);
}

// --- Names ---

namespace {

// The value of an attribute of a name as text; nothing if it is none.
std::optional<std::string> ReadNameValue(const Element& value) {
    const bool plain = value.tagClass == Asn1ClassUniversal && value.constructed == 0;
    return plain ? ToText(value.tag, value.content) : std::nullopt;
}

// The entries of the sets of a name: print gets the type, the value and whether it joins the one before.
template <class Print>
void ForEachEntry(View sets, Print&& print) {
    while (const std::optional<Element> set = TakeElement(sets)) {
        View entries = set->content;
        for (bool joins = false; const std::optional<Element> entry = TakeElement(entries); joins = true) {
            View rest = entry->content;
            const std::optional<Element> type = TakeElement(rest), value = TakeElement(rest);
            if (type && value) print(*type, *value, joins);
        }
    }
}

}  // namespace

std::string DescribeName(const Element& name) {
    std::string line;
    ForEachEntry(name.content, [&](const Element& type, const Element& value, bool joins) {
        line += line.empty() ? "" : joins ? " + " : ", ";
        line += NameOfOid(type.content) + "=" + ReadNameValue(value).value_or("hex " + ToHex(value.content));
    });
    return line.empty() ? "empty" : line;
}

void Walker::ShowNameEntries(View sets) {
    ForEachEntry(sets, [&](const Element& type, const Element& value, bool joins) {
        const std::string label = (joins ? "+ " : "") + DescribeOid(type.content);
        if (const std::optional<std::string> text = ReadNameValue(value)) return outline_.Line(label, *text);
        ShowRaw(label + ", " + DescribeTag(value), value.whole);
    });
}

void Walker::ShowName(const Shape& shape, const Element& element, const std::string& label) {
    if (element.content.empty()) return outline_.Line(label, "empty");
    const Outline::Section section = outline_.Open(label);
    ShowNameEntries(shape.type == "RelativeDistinguishedName" ? element.whole : element.content);
}

// A type, and a value under the tag [0].
void Walker::ShowOtherName(const Element& element) {
    View rest = element.content;
    const std::optional<Element> type = TakeElement(rest), value = TakeElement(rest);
    const std::optional<Element> inside = value ? ReadWholeElement(value->content) : std::nullopt;
    if (!inside) return outline_.Hex("Other name", element.whole);
    const Outline::Section section = outline_.Open("Other name");
    outline_.Line("Type", DescribeOid(type->content));
    ShowRaw("Value", inside->whole);
    ShowRest(rest);
}

void Walker::ShowGeneralName(const Shape&, const Element& element, const std::string&) {
    static constexpr uint32_t kRfc822 = 1, kDns = 2, kUri = 6;
    switch (element.tag) {
        case 0: return ShowOtherName(element);
        case kRfc822: return outline_.Line("E-mail", ShowAscii(element.content));
        case kDns: return outline_.Line("DNS", ShowAscii(element.content));
        case 4: {
            const std::optional<Element> name = ReadWholeElement(element.content);
            if (!name) break;
            return ShowName(shapeOf<X509Name>, *name, "Directory name");
        }
        case kUri: return outline_.Line("URI", ShowAscii(element.content));
        case 7: {
            const std::optional<std::string> address = DescribeAddress(element.content);
            if (!address) break;
            return outline_.Line("IP address", *address);
        }
        case 8: return outline_.Line("Registered ID", DescribeOid(element.content));
        default: break;
    }
    ShowRaw(element.tag == 3 ? "X.400 address" : element.tag == 5 ? "EDI party name" : "General name", element.whole);
}

void Walker::ShowResponderId(const Shape& shape, const Element& element, const std::string& label) {
    View rest = element.whole;
    const std::optional<Element> name = Match(*shape.children[0], rest);
    const bool isName = name && AskDecoder(shapeOf<X509Name>, name->whole) == StatusOk;
    if (isName) return ShowName(shapeOf<X509Name>, *name, label);
    ShowChoice(shape, element, label, {});
}

// --- Values that are known by an object identifier ---

void Walker::ShowExtension(const Shape& shape, const Element& element, const std::string& label) {
    const Fields fields = Split(shape, element.content);
    if (!fields[0] || !fields[2]) return ShowRaw(label, element.whole);
    const bool critical = fields[1] && !fields[1]->content.empty() && fields[1]->content[0] != 0;
    const char* const mark = critical ? ", critical" : fields[1] ? ", critical: false" : "";
    const Outline::Section section = outline_.Open(DescribeOid(fields[0]->content) + mark);
    Bytes joined;
    ShowKnown(fields[0]->content, JoinSegments(*fields[2], joined), "Value", true);
    ShowRest(fields.rest);
}

void Walker::ShowAttribute(const Shape& shape, const Element& element, const std::string& label) {
    const Fields fields = Split(shape, element.content);
    if (!fields[0] || !fields[1]) return ShowRaw(label, element.whole);
    const Outline::Section section = outline_.Open(DescribeOid(fields[0]->content));
    View values = fields[1]->content;
    const std::optional<Element> first = ReadElement(values);
    const bool isAlone = first && first->whole.size() == values.size();
    if (values.empty()) outline_.Line({}, "no value");
    while (const std::optional<Element> value = TakeElement(values)) {
        ShowKnown(fields[0]->content, value->whole, "Value", isAlone);
    }
    if (!values.empty()) outline_.Hex("no element", values);
    ShowRest(fields.rest);
}

void Walker::ShowTypedValue(const Shape& shape, const Element& element, const std::string& label) {
    const Fields fields = Split(shape, element.content);
    if (!fields[0] || !fields[1]) return ShowRaw(label, element.whole);
    const Outline::Section section = outline_.Open(label);
    outline_.Line("Type", DescribeOid(fields[0]->content));
    ShowKnown(fields[0]->content, fields[1]->whole, "Value");
    ShowRest(fields.rest);
}

// A type, and the content as an element or in octets.
void Walker::ShowContent(const Shape& shape, const Element& element, const std::string& label) {
    const Fields fields = Split(shape, element.content);
    if (!fields[0]) return ShowRaw(label, element.whole);
    const Outline::Section section = outline_.Open(label);
    outline_.Line("Content type", DescribeOid(fields[0]->content));
    if (!fields[1]) {
        outline_.Line("Content", shape.type == "EncapsulatedContentInfo" ? "none, detached" : "none");
    } else if (shape.children[1]->item->kind == Asn1KindAny) {
        ShowKnown(fields[0]->content, fields[1]->whole, "Content", true);
    } else {
        Bytes joined;
        const View content = JoinSegments(*fields[1], joined);
        const Known* const known = FindKnown(fields[0]->content);
        const bool isOctets = known == nullptr || known->shape->item->kind == Asn1KindOctetString;
        if (isOctets) ShowOctets(content, "Content", {});
        if (!isOctets) ShowKnown(fields[0]->content, content, "Content");
    }
    ShowRest(fields.rest);
}

void Walker::ShowCertificateStatus(const Shape& shape, const Element& element, const std::string& label) {
    static constexpr const char* kStatuses[] = {"good", "revoked", "unknown"};
    static constexpr uint32_t kRevoked = 1;
    outline_.Line(label, DescribeNumber(element.tag, kStatuses));
    const Outline::Section section(outline_);
    if (element.tag == kRevoked) ShowFields(*shape.children[kRevoked], element.content);
}

// --- Certificates ---

void Walker::ShowFingerprints(View certificate) {
    uint8_t digest[32];
    const Outline::Section section = outline_.Open("Fingerprints");
    if (sha1(certificate.data(), Size(certificate), digest) == StatusOk) outline_.Hex("SHA-1", {digest, 20});
    HashSha256(certificate, digest);
    outline_.Hex("SHA-256", digest);
}

// Inside of other documents, what distinguishes it from others, unless all of it is wanted.
void Walker::ShowCertificate(const Shape& shape, const Element& element, const std::string& label) {
    static constexpr uint32_t kSerialNumber = 1, kIssuer = 3, kSubject = 5;
    const bool whole = whole_ || isCertificate_;
    isCertificate_ = false;
    const Fields fields = Split(shape, element.content);
    if (!fields[0]) return ShowRaw(label, element.whole);
    const Fields parts = Split(*shape.children[0], fields[0]->content);
    if (whole || !parts[kSerialNumber] || !parts[kIssuer] || !parts[kSubject]) {
        const Outline::Section section = outline_.Open(label);
        ShowFields(shape, element.content);
        return ShowFingerprints(element.whole);
    }
    const Outline::Section section = outline_.Open(DescribeName(*parts[kSubject]));
    outline_.Line("Issuer", DescribeName(*parts[kIssuer]));
    ShowNumber(parts[kSerialNumber]->content, "Serial number", {"", nullptr, How::kHex});
}

void Walker::ShowCertificateSet(const Shape&, const Element& element, const std::string& label) {
    static constexpr const char* kKinds[] = {"Extended certificate", "Attribute certificate, version 1",
                                             "Attribute certificate, version 2", "Other certificate"};
    std::vector<Element> members;
    View rest = element.content;
    while (const std::optional<Element> member = TakeElement(rest)) members.push_back(*member);
    outline_.Add({.label = label, .count = members.size()});
    const Outline::Section section(outline_);
    for (size_t i = 0; i < members.size(); ++i) {
        if (i >= outline_.MostMembers())
            return outline_.Line({}, "and " + std::to_string(members.size() - i) + " more");
        const Element& member = members[i];
        if (!member.IsUniversal(Asn1KindSequence)) {
            ShowRaw(member.tag < std::size(kKinds) ? kKinds[member.tag] : "Unknown kind", member.whole);
        } else if (const Status status = AskDecoder(shapeOf<Certificate>, member.whole); status != StatusOk) {
            ShowRefused(status, nullptr, member.whole, "Certificate");
        } else {
            ShowCertificate(shapeOf<Certificate>, member, "Certificate");
        }
    }
    if (!rest.empty()) outline_.Hex("no element", rest);
}

}  // namespace inspect
