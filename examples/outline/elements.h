// Elements that no codec of the library takes apart, read one by one.
#pragma once

#include <optional>
#include <string>

#include "oids.h"
#include "text.h"

namespace examples {

struct Header {
    uint8_t tagClass = 0;
    uint8_t constructed = 0;
    uint32_t tag = 0;
    bool indefinite = false;
    uint32_t size = 0;
    uint32_t contentSize = 0;  // what it says; in the indefinite form all that remains

    bool IsUniversal(uint32_t kind) const { return tagClass == Asn1ClassUniversal && tag == kind; }
};

// The identifier and length octets at an offset, of bytes that end at another one.
inline std::optional<Header> ReadHeader(const Bytes& bytes, size_t at, size_t end) {
    if (at >= end) return std::nullopt;
    Header header;
    uint32_t indefinite = 0;
    const Status status =
        GetAsn1ObjectInfo(&bytes[at], static_cast<uint32_t>(end - at), &header.tagClass, &header.constructed,
                          &header.tag, &header.contentSize, &indefinite, &header.size);
    if (status != StatusOk) return std::nullopt;
    header.indefinite = indefinite != 0;
    return header;
}

struct Element : Header {
    Bytes whole;
    Bytes content;
};

// The element at an offset; nothing for malformed bytes and for the indefinite form.
inline std::optional<Element> ReadElement(const Bytes& bytes, size_t at = 0) {
    const std::optional<Header> header = ReadHeader(bytes, at, bytes.size());
    if (!header || header->indefinite || header->contentSize > bytes.size() - at - header->size) return std::nullopt;
    const auto whole = bytes.begin() + static_cast<ptrdiff_t>(at);
    const auto content = whole + header->size;
    const auto end = content + header->contentSize;
    return Element{*header, {whole, end}, {content, end}};
}

// The content of an INTEGER or ENUMERATED as a number; nothing for one of more than four bytes.
inline std::optional<int32_t> ToNumber(const Bytes& content) {
    if (content.empty() || content.size() > 4) return std::nullopt;
    uint32_t number = (content[0] & 0x80) != 0 ? UINT32_MAX : 0;
    for (const uint8_t byte : content) number = number << 8 | byte;
    return static_cast<int32_t>(number);
}

// The content of a BIT STRING as a flag word, whose lowest byte stands behind the number of unused bits.
inline uint32_t ReadFlags(const Bytes& content) {
    uint32_t flags = 0;
    for (size_t i = 1; i < content.size() && i <= 4; ++i) flags |= uint32_t{content[i]} << 8 * (i - 1);
    return flags;
}

// Primitive elements that have a reading of their own.
inline std::optional<std::string> Read(const Element& element) {
    if (element.tagClass != Asn1ClassUniversal || element.constructed != 0) return std::nullopt;
    switch (element.tag) {
        case Asn1KindNull:
            if (!element.content.empty()) return std::nullopt;
            return "NULL";
        case Asn1KindBoolean:
            if (element.content.size() != 1) return std::nullopt;
            return element.content[0] != 0 ? "true" : "false";
        case Asn1KindInteger:
        case Asn1KindEnumerated: {
            const std::optional<int32_t> number = ToNumber(element.content);
            return number ? std::optional(std::to_string(*number)) : std::nullopt;
        }
        case Asn1KindObjectIdentifier: {
            const Fetched oid = Get(DecodeAsn1Oid, element.whole.data(), Size(element.whole));
            return oid.status == StatusOk ? std::optional(DescribeOid(oid.bytes)) : std::nullopt;
        }
        default: return ToText(element.tag, element.content);
    }
}

// "SEQUENCE", "[0]", "[APPLICATION 3]".
inline std::string DescribeTag(const Header& element) {
    static constexpr struct {
        uint32_t tag;
        const char* name;
    } kTypes[] = {
        {Asn1KindBoolean, "BOOLEAN"},
        {Asn1KindInteger, "INTEGER"},
        {Asn1KindBitString, "BIT STRING"},
        {Asn1KindOctetString, "OCTET STRING"},
        {Asn1KindNull, "NULL"},
        {Asn1KindObjectIdentifier, "OBJECT IDENTIFIER"},
        {Asn1KindEnumerated, "ENUMERATED"},
        {Asn1KindUTF8String, "UTF8String"},
        {Asn1KindSequence, "SEQUENCE"},
        {Asn1KindSet, "SET"},
        {Asn1KindNumericString, "NumericString"},
        {Asn1KindPrintableString, "PrintableString"},
        {Asn1KindTeletexString, "TeletexString"},
        {Asn1KindIA5String, "IA5String"},
        {Asn1KindUTCTime, "UTCTime"},
        {Asn1KindGeneralizedTime, "GeneralizedTime"},
        {Asn1KindVisibleString, "VisibleString"},
        {Asn1KindUniversalString, "UniversalString"},
        {Asn1KindBMPString, "BMPString"},
    };
    for (const auto& type : kTypes) {
        if (element.IsUniversal(type.tag)) return type.name;
    }
    const bool universal = element.tagClass == Asn1ClassUniversal;
    const std::string name = universal                                  ? "UNIVERSAL "
                             : element.tagClass == Asn1ClassApplication ? "APPLICATION "
                             : element.tagClass == Asn1ClassPrivate     ? "PRIVATE "
                                                                        : "";
    return "[" + name + std::to_string(element.tag) + "]";
}

inline void PrintElement(Outline& outline, const std::string& label, const Bytes& bytes);

// The elements inside of a constructed one, each labelled with its tag.
inline void PrintContent(Outline& outline, const std::string& label, const Bytes& content) {
    const Outline::Section section = outline.Open(label);
    size_t at = 0;
    while (const std::optional<Element> element = ReadElement(content, at)) {
        PrintElement(outline, "", element->whole);
        at += element->whole.size();
    }
    // The indefinite form among others.
    const Bytes rest(content.begin() + static_cast<ptrdiff_t>(at), content.end());
    if (!rest.empty()) outline.Start("unread", rest);
}

// A whole element: a number, an OID, text, hex, or the elements inside. Of a large one the first bytes are shown, and
// bytes that are no element are hex. Inside of another one it is labelled with its tag alone.
inline void PrintElement(Outline& outline, const std::string& label, const Bytes& bytes) {
    static constexpr size_t kLargest = 4096;
    if (bytes.size() > kLargest) return outline.Start(label, bytes);
    const std::optional<Element> element = ReadElement(bytes);
    if (!element || element->whole.size() != bytes.size()) return outline.Hex(label, bytes);
    const bool inside = label.empty();
    const std::string tag = DescribeTag(*element);
    const std::optional<std::string> text = Read(*element);
    if (inside && text && element->IsUniversal(Asn1KindNull)) return outline.Line(tag);
    if (text) return outline.Line(inside ? tag : label, *text);
    if (element->constructed != 0 && !element->content.empty() && !outline.IsDeep()) {
        return PrintContent(outline, inside ? tag : label, element->content);
    }
    if (inside) return outline.Start(tag, element->content);
    outline.Hex(label + ", " + tag, element->content);
}

// Decodes an object and prints it; nothing is printed unless the decoder takes the bytes.
template <class Object, auto Free, auto Decode, auto Print>
Status PrintDecoded(Outline& outline, const Bytes& bytes) {
    Owned<Object, Free> object;
    const Status status = Decode(bytes.data(), Size(bytes), object.Out());
    if (status == StatusOk) Print(outline, object);
    return status;
}

// --- Values that are known by an object identifier: parameters, extensions, attributes ---

using Printer = Status (*)(Outline& outline, const Bytes& value);

struct ValueCodec {
    const char* oid;
    Printer print;
};

// The row of a table that belongs to an identifier, or null.
template <class Row, size_t Count>
const Row* FindByOid(const Row (&rows)[Count], const Bytes& oid) {
    const std::string dotted = ToDotted(oid);
    for (const Row& row : rows) {
        if (dotted == row.oid) return &row;
    }
    return nullptr;
}

// Whether the codec took the value; if not, its status stands in the outline.
inline bool TryPrint(Outline& outline, Printer print, const Bytes& value) {
    const Status status = print(outline, value);
    if (status != StatusOk) outline.Failed(status);
    return status == StatusOk;
}

// A value that no codec of the table belongs to is an element, and so, behind its status, is one that is refused.
template <size_t Count>
void PrintValue(Outline& outline, const std::string& label, const ValueCodec (&codecs)[Count], const Bytes& oid,
                const Bytes& value) {
    const ValueCodec* const codec = outline.IsDeep() ? nullptr : FindByOid(codecs, oid);
    if (codec == nullptr || !TryPrint(outline, codec->print, value)) PrintElement(outline, label, value);
}

}  // namespace examples
