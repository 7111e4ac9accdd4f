#include "walk.h"

#include <algorithm>
#include <new>

#include "engine/nodes.h"

namespace inspect {

using tlvforge::IsList;

bool Fits(const Shape& shape, const Header& header) {
    const Asn1Item& item = *shape.item;
    if (item.tagNumber < 0 && item.kind == Asn1KindAny) return true;
    if (item.tagNumber < 0 && item.kind == Asn1KindChoice) {
        return std::any_of(shape.children, shape.children + item.childCount,
                           [&](const Shape* alternative) { return Fits(*alternative, header); });
    }
    return header.tagClass == item.tagClass && header.tag == static_cast<uint32_t>(tlvforge::TagOf(item));
}

std::optional<Element> Match(const Shape& shape, View& rest) {
    View after = rest;
    std::optional<Element> element = TakeElement(after);
    if (!element || !Fits(shape, *element)) return std::nullopt;
    if ((shape.item->itemFlags & Asn1FlagExplicit) != 0) element = ReadWholeElement(element->content);
    if (element) rest = after;
    return element;
}

Fields Split(const Shape& record, View content) {
    Fields result{{}, content};
    for (uint32_t i = 0; i < record.item->childCount; ++i) {
        result.fields.push_back(Match(*record.children[i], result.rest));
    }
    return result;
}

Status AskDecoder(const Shape& shape, View bytes) {
    void* node = nullptr;
    uint32_t consumed = 0;
    const Status status = Asn1DecodeItem(bytes.data(), Size(bytes), shape.item, &node, &consumed);
    (void)FreeAsn1Object(shape.item, node);
    if (status == StatusOutOfMemory) throw std::bad_alloc();
    return status == StatusOk && consumed != bytes.size() ? StatusBadEncoding : status;
}

void Walker::ShowDocument(const Shape& shape, const Element& element, const std::string& title) {
    isCertificate_ = shape.type == "Certificate";
    Show(shape, element, title, {});
}

void Walker::Show(const Shape& shape, const Element& element, const std::string& label, const Style& style) {
    const Asn1Item& item = *shape.item;
    if (outline_.IsDeep()) return outline_.Hex(label, element.whole);
    if (const Handler handler = FindHandler(item)) return (this->*handler)(shape, element, label);
    if (item.kind == Asn1KindChoice) return ShowChoice(shape, element, label, style);
    if (item.kind == Asn1KindAny) return ShowRaw(label, element.whole);
    if (IsList(item)) return ShowList(shape, element, label, style.how == How::kInline);
    if (item.kind != Asn1KindSequence) return ShowUniversal(item.kind, element, label, style);
    if (style.how == How::kInline) return ShowFields(shape, element.content);
    if (element.content.empty()) return outline_.Line(label, "empty");
    const Outline::Section section = outline_.Open(label);
    ShowFields(shape, element.content);
}

void Walker::ShowFields(const Shape& shape, View content) {
    const Fields fields = Split(shape, content);
    for (uint32_t i = 0; i < shape.item->childCount; ++i) {
        const Style style = FindStyle(shape.fieldNames[i]);
        const std::string label = style.label != nullptr ? style.label : InWords(shape.fieldNames[i]);
        const Asn1Item& item = *shape.children[i]->item;
        if (fields[i]) {
            Show(*shape.children[i], *fields[i], label, style);
        } else if (item.defaultValue != nullptr && item.kind == Asn1KindBoolean) {
            outline_.Add({.label = label, .text = "false", .remark = "by default"});
        }
    }
    ShowRest(fields.rest);
}

void Walker::ShowRest(View rest) {
    if (rest.empty()) return;
    const Outline::Section section = outline_.Open("Fields that the library passes over");
    ShowRawList(rest);
}

void Walker::ShowList(const Shape& shape, const Element& element, const std::string& label, bool isInline) {
    std::vector<Element> members;
    View rest = element.content;
    while (std::optional<Element> member = Match(*shape.children[0], rest)) members.push_back(*member);
    if (!isInline) outline_.Add({.label = label, .count = members.size()});
    const std::optional<Outline::Section> section =
        isInline ? std::nullopt : std::make_optional<Outline::Section>(outline_);
    const size_t shown = std::min(members.size(), outline_.MostMembers());
    const std::string memberLabel = MemberLabel(*shape.children[0]);
    for (size_t i = 0; i < shown; ++i) Show(*shape.children[0], members[i], memberLabel, {});
    if (shown < members.size()) outline_.Line({}, "and " + std::to_string(members.size() - shown) + " more");
    ShowRest(rest);
}

void Walker::ShowChoice(const Shape& shape, const Element& element, const std::string& label, const Style& style) {
    for (uint32_t i = 0; i < shape.item->childCount; ++i) {
        View rest = element.whole;
        const std::optional<Element> chosen = Match(*shape.children[i], rest);
        if (chosen) return Show(*shape.children[i], *chosen, label, style);
    }
    ShowRaw(label, element.whole);
}

void Walker::ShowRaw(const std::string& label, View bytes) {
    const std::optional<Element> element = ReadWholeElement(bytes);
    if (!element) return outline_.Hex(label, bytes);
    const std::string tag = DescribeTag(*element);
    if (element->constructed != 0) {
        if (outline_.IsDeep()) return outline_.Hex(label.empty() ? tag : label, bytes);
        const Outline::Section section = outline_.Open(label.empty() ? tag : label);
        return ShowRawList(element->content);
    }
    if (element->tagClass == Asn1ClassUniversal) {
        if (label.empty() && element->tag == Asn1KindNull) return outline_.Line({}, tag);
        const bool isPlain = element->tag == Asn1KindBitString || element->tag == Asn1KindOctetString;
        return ShowUniversal(element->tag, *element, label.empty() || isPlain ? tag : label, {});
    }
    ShowOctets(element->content, label.empty() ? tag : label + ", " + tag, {});
}

void Walker::ShowRawList(View bytes) {
    while (const std::optional<Element> element = TakeElement(bytes)) ShowRaw({}, element->whole);
    if (!bytes.empty()) outline_.Hex("no element", bytes);
}

// --- Values of the universal types ---

void Walker::ShowUniversal(uint32_t kind, const Element& element, const std::string& label, const Style& style) {
    if (style.how == How::kSecret) {
        return outline_.Line(label, Count(element.content.size(), "byte") + ", secret, not shown");
    }
    if (element.constructed != 0 && kind == Asn1KindBitString) return ShowRaw(label, element.whole);
    Bytes joined;
    const View content = JoinSegments(element, joined);
    switch (kind) {
        case Asn1KindInteger:
        case Asn1KindEnumerated: return ShowNumber(content, label, style);
        case Asn1KindBitString: return ShowBits(content, label, style);
        case Asn1KindOctetString: return ShowOctets(content, label, style);
        case Asn1KindObjectIdentifier: return outline_.Line(label, DescribeOid(content));
        case Asn1KindUTCTime:
        case Asn1KindGeneralizedTime: return ShowTime(kind, content, label);
        case Asn1KindNull:
            if (content.empty()) return outline_.Line(label, "NULL");
            break;
        case Asn1KindBoolean:
            if (content.size() == 1) return outline_.Line(label, content[0] != 0 ? "true" : "false");
            break;
        default:
            if (std::optional<std::string> text = ToText(kind, content)) return outline_.Line(label, *text);
    }
    outline_.Hex(label, content);
}

namespace {

// The content of an INTEGER as a number; nothing for one of more than eight bytes.
std::optional<int64_t> ToNumber(View content) {
    if (content.empty() || content.size() > 8) return std::nullopt;
    uint64_t number = (content[0] & 0x80) != 0 ? UINT64_MAX : 0;
    for (const uint8_t byte : content) number = number << 8 | byte;
    return static_cast<int64_t>(number);
}

// A negative number in hex: the sign and the magnitude.
std::string ToNegativeHex(View content) {
    Bytes magnitude(content.begin(), content.end());
    bool carry = true;
    for (size_t i = magnitude.size(); i-- > 0;) {
        magnitude[i] = static_cast<uint8_t>(~magnitude[i] + (carry ? 1 : 0));
        carry = carry && magnitude[i] == 0;
    }
    while (magnitude.size() > 1 && magnitude.front() == 0) magnitude.erase(magnitude.begin());
    return "-" + ToHex(magnitude);
}

}  // namespace

void Walker::ShowNumber(View content, const std::string& label, const Style& style) {
    const std::optional<int64_t> number = ToNumber(content);
    if (number && style.how == How::kVersion) {
        const bool fits = *number >= 0 && *number < INT64_MAX;
        return outline_.Line(label, std::to_string(*number + (fits ? 1 : 0)));
    }
    if (number && style.how != How::kHex) return outline_.Line(label, DescribeNumber(*number, style.names));
    if (content.empty() || (content[0] & 0x80) == 0) return outline_.Hex(label, content);
    outline_.Add({.label = label, .text = ToNegativeHex(content), .bytes = content});
}

void Walker::ShowBits(View content, const std::string& label, const Style& style) {
    if (content.empty()) return outline_.Hex(label, content);
    const View bits = content.subspan(1);
    if (style.how == How::kNames) return outline_.Line(label, DescribeFlags(bits, style.names));
    outline_.Add({.label = label, .bytes = bits, .remark = content[0] != 0 ? Count(content[0], "unused bit") : ""});
}

void Walker::ShowOctets(View content, const std::string& label, const Style& style) {
    if (style.how == How::kScts) return ShowTimestamps(outline_, content, label);
    outline_.Add({.label = label, .text = ReadOctetsAsText(content), .bytes = content, .isLines = true});
}

void Walker::ShowTime(uint32_t kind, View content, const std::string& label) {
    std::string why;
    std::optional<std::string> text = ReadTime(kind, content, why);
    outline_.Add({.label = label, .text = text ? text : ToText(kind, content), .remark = why});
}

// --- Values that are known by an object identifier ---

void Walker::ShowKnown(View oid, View value, const std::string& label, bool isInline) {
    const Known* const known = outline_.IsDeep() ? nullptr : FindKnown(oid);
    const std::optional<Element> element = ReadWholeElement(value);
    if (known == nullptr || (element && element->IsUniversal(Asn1KindNull))) return ShowRaw(label, value);
    const Shape* shape = known->shape;
    Status status = AskDecoder(*shape, value);
    if (status != StatusOk && known->also != nullptr && AskDecoder(*known->also, value) == StatusOk) {
        shape = known->also;
        status = StatusOk;
    }
    if (status != StatusOk || !element) return ShowRefused(status, known->standard, value, label);
    Style style = known->style;
    if (isInline && style.how == How::kPlain) style.how = How::kInline;
    if (known->standard != nullptr) shape = known->standard;
    Show(*shape, *element, style.label != nullptr ? style.label : label, style);
}

namespace {

// Whether the CRLs of a SignedData are ordinary ones.
bool HasCrls(View signedData) {
    static constexpr uint32_t kCrls = 1;
    const std::optional<Element> element = ReadElement(signedData);
    if (!element) return false;
    View rest = element->content;
    while (const std::optional<Element> field = TakeElement(rest)) {
        if (!field->IsContext(kCrls)) continue;
        const std::optional<Element> first = ReadElement(field->content);
        return first && first->IsUniversal(Asn1KindSequence);
    }
    return false;
}

}  // namespace

void Walker::ShowRefused(Status status, const Shape* standard, View value, const std::string& label) {
    const bool hasCrls = label == "Content" && HasCrls(value);
    outline_.Add(
        {.label = label, .remark = hasCrls ? "the library doesn't read messages with CRLs" : "", .status = status});
    const Outline::Section section(outline_);
    const std::optional<Element> element = ReadWholeElement(value);
    if (standard != nullptr && element && Fits(*standard, *element)) {
        return Show(*standard, *element, "by the standard", {});
    }
    ShowRaw({}, value);
}

}  // namespace inspect
