#include "elements.h"

#include <algorithm>

#include "oid_names.h"
#include "tlvforge/cpp/names.hpp"

namespace inspect {
namespace {

// Where the content of an element of indefinite length ends. Nothing if it doesn't.
std::optional<size_t> FindEndOfContents(View bytes) {
    size_t at = 0;
    for (size_t depth = 1; depth > 0;) {
        const std::optional<Header> header = ReadHeader(bytes.subspan(at));
        if (!header) return std::nullopt;
        const bool isEnd = bytes[at] == 0 && bytes[at + 1] == 0;
        at += header->size;
        if (header->indefinite) {
            ++depth;
        } else if (isEnd) {
            --depth;
        } else if (header->contentSize <= bytes.size() - at) {
            at += header->contentSize;
        } else {
            return std::nullopt;
        }
    }
    return at - 2;
}

// By tag number.
constexpr const char* kTypes[] = {nullptr,
                                  "BOOLEAN",
                                  "INTEGER",
                                  "BIT STRING",
                                  "OCTET STRING",
                                  "NULL",
                                  "OBJECT IDENTIFIER",
                                  nullptr,
                                  nullptr,
                                  "REAL",
                                  "ENUMERATED",
                                  nullptr,
                                  "UTF8String",
                                  nullptr,
                                  nullptr,
                                  nullptr,
                                  "SEQUENCE",
                                  "SET",
                                  "NumericString",
                                  "PrintableString",
                                  "TeletexString",
                                  "VideotexString",
                                  "IA5String",
                                  "UTCTime",
                                  "GeneralizedTime",
                                  "GraphicString",
                                  "VisibleString",
                                  "GeneralString",
                                  "UniversalString",
                                  nullptr,
                                  "BMPString"};

}  // namespace

std::optional<Header> ReadHeader(View bytes) {
    if (bytes.empty()) return std::nullopt;
    Header header;
    uint32_t indefinite = 0;
    const Status status = GetAsn1ObjectInfo(bytes.data(), Size(bytes), &header.tagClass, &header.constructed,
                                            &header.tag, &header.contentSize, &indefinite, &header.size);
    if (status != StatusOk) return std::nullopt;
    header.indefinite = indefinite != 0;
    return header;
}

std::optional<Element> ReadElement(View bytes) {
    const std::optional<Header> header = ReadHeader(bytes);
    if (!header) return std::nullopt;
    const View rest = bytes.subspan(header->size);
    if (header->indefinite) {
        const std::optional<size_t> end = header->constructed != 0 ? FindEndOfContents(rest) : std::nullopt;
        if (!end) return std::nullopt;
        return Element{*header, bytes.first(header->size + *end + 2), rest.first(*end)};
    }
    if (header->contentSize > rest.size()) return std::nullopt;
    return Element{*header, bytes.first(header->size + header->contentSize), rest.first(header->contentSize)};
}

std::optional<Element> ReadWholeElement(View bytes) {
    std::optional<Element> element = ReadElement(bytes);
    return element && element->whole.size() == bytes.size() ? element : std::nullopt;
}

std::optional<Element> TakeElement(View& bytes) {
    std::optional<Element> element = ReadElement(bytes);
    if (element) bytes = bytes.subspan(element->whole.size());
    return element;
}

std::string DescribeTag(const Header& element) {
    const bool universal = element.tagClass == Asn1ClassUniversal;
    if (universal && element.tag < std::size(kTypes) && kTypes[element.tag] != nullptr) return kTypes[element.tag];
    const char* const name = universal                                  ? "UNIVERSAL "
                             : element.tagClass == Asn1ClassApplication ? "APPLICATION "
                             : element.tagClass == Asn1ClassPrivate     ? "PRIVATE "
                                                                        : "";
    return std::string("[").append(name).append(std::to_string(element.tag)) + "]";
}

namespace {

// The elements around a place, as a walk through BER meets them.
class Path {
public:
    bool IsEmpty() const { return levels_.empty(); }
    bool IsTooDeep() const { return levels_.size() == kDeepest; }
    bool IsIndefinite() const { return !levels_.empty() && levels_.back().header.indefinite; }

    // Where the innermost one ends; in the indefinite form, where it ends at the latest.
    size_t End() const { return levels_.back().end; }

    void Enter(const Header& header, size_t end) { levels_.push_back({header, end}); }
    void Leave() { levels_.pop_back(); }

    // "SEQUENCE > [0] > SET"; of many the innermost ones.
    std::string Describe() const {
        static constexpr size_t kShown = 8;
        std::string text = levels_.size() > kShown ? "... > " : "";
        for (size_t i = levels_.size() - std::min(levels_.size(), kShown); i < levels_.size(); ++i) {
            text += DescribeTag(levels_[i].header);
            if (i + 1 < levels_.size()) text += " > ";
        }
        return text;
    }

private:
    static constexpr size_t kDeepest = 1000;

    struct Level {
        Header header;
        size_t end;
    };
    std::vector<Level> levels_;
};

// What is wrong with a header, where `left` bytes are left for it and its content; nothing if it can be taken.
std::string DescribeHeaderFault(const std::optional<Header>& header, size_t left) {
    if (!header) return "no identifier and length that can be read";
    const std::string tag = DescribeTag(*header);
    if (header->contentSize > left - header->size) {
        return tag + " of " + Count(header->contentSize, "byte") + ", where " + std::to_string(left - header->size) +
               (left - header->size == 1 ? " is left" : " are left");
    }
    return header->indefinite && header->constructed == 0 ? tag + " of indefinite length that isn't constructed" : "";
}

}  // namespace

std::optional<std::string> DescribeFault(View bytes) {
    Path path;
    size_t at = 0;
    const auto fault = [&](const std::string& text) {
        const std::string place = path.IsEmpty() ? "" : ", inside of " + path.Describe();
        return "at byte " + std::to_string(at) + place + ": " + text;
    };
    do {
        const size_t end = path.IsEmpty() ? bytes.size() : path.End();
        if (at == end && path.IsIndefinite()) return fault("the end of the contents is missing");
        if (path.IsIndefinite() && end - at >= 2 && bytes[at] == 0 && bytes[at + 1] == 0) {
            at += 2;
            path.Leave();
        } else {
            const std::optional<Header> header = ReadHeader(bytes.subspan(at, end - at));
            const std::string wrong = DescribeHeaderFault(header, end - at);
            if (!wrong.empty()) return fault(wrong);
            if (path.IsTooDeep()) return std::nullopt;
            at += header->size;
            if (header->constructed != 0) path.Enter(*header, at + header->contentSize);
            if (header->constructed == 0) at += header->contentSize;
        }
        while (!path.IsEmpty() && !path.IsIndefinite() && at == path.End()) path.Leave();
    } while (!path.IsEmpty());
    return std::nullopt;
}

std::string ToDotted(View oid) {
    std::string text;
    uint64_t arc = 0;
    for (const uint8_t byte : oid) {
        if (arc > UINT64_MAX >> 7) return "hex " + ToHex(oid);
        arc = arc << 7 | (byte & 0x7F);
        if ((byte & 0x80) != 0) continue;
        const uint64_t first = std::min<uint64_t>(arc / 40, 2);
        text +=
            text.empty() ? std::to_string(first) + "." + std::to_string(arc - 40 * first) : "." + std::to_string(arc);
        arc = 0;
    }
    return oid.empty() || (oid.back() & 0x80) != 0 ? "hex " + ToHex(oid) : text;
}

std::string NameOfOid(View oid) {
    const std::string dotted = ToDotted(oid);
    for (const WellKnownOid& row : kWellKnownOids) {
        if (dotted == row.oid) return row.name;
    }
    const std::string_view shortName = tlvforge::ShortName(dotted);
    return shortName.empty() ? dotted : std::string(shortName);
}

std::string DescribeOid(View oid) {
    const std::string dotted = ToDotted(oid), name = NameOfOid(oid);
    return name == dotted ? dotted : name + " (" + dotted + ")";
}

namespace {

// Segments may lie inside of others. Those that lie deeper are left as they stand.
void AppendSegments(View content, int depth, Bytes& joined) {
    while (const std::optional<Element> segment = TakeElement(content)) {
        if (segment->constructed != 0 && depth > 0) {
            AppendSegments(segment->content, depth - 1, joined);
        } else {
            joined.insert(joined.end(), segment->content.begin(), segment->content.end());
        }
    }
}

}  // namespace

View JoinSegments(const Element& element, Bytes& joined) {
    static constexpr int kDeepest = 8;
    if (element.constructed == 0) return element.content;
    AppendSegments(element.content, kDeepest, joined);
    return joined;
}

}  // namespace inspect
