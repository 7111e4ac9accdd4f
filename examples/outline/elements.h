// Elements that no codec of the library takes apart, read one by one.
#pragma once

#include <optional>
#include <string>

#include "oids.h"
#include "text.h"

namespace examples {

struct Element {
    uint8_t tagClass = 0;
    uint8_t constructed = 0;
    uint32_t tag = 0;
    Bytes whole;
    Bytes content;

    bool IsUniversal(uint32_t kind) const { return tagClass == Asn1ClassUniversal && tag == kind; }
};

// The element at an offset; nothing for malformed bytes and for the indefinite form.
inline std::optional<Element> ReadElement(const Bytes& bytes, size_t at = 0) {
    if (at >= bytes.size()) return std::nullopt;
    Element element;
    uint32_t contentLength = 0, headerLength = 0, indefinite = 0;
    const Status status =
        GetAsn1ObjectInfo(&bytes[at], static_cast<uint32_t>(bytes.size() - at), &element.tagClass, &element.constructed,
                          &element.tag, &contentLength, &indefinite, &headerLength);
    if (status != StatusOk || indefinite != 0) return std::nullopt;
    if (contentLength > bytes.size() - at - headerLength) return std::nullopt;
    const auto content = bytes.begin() + static_cast<ptrdiff_t>(at + headerLength);
    element.content.assign(content, content + contentLength);
    element.whole.assign(bytes.begin() + static_cast<ptrdiff_t>(at), content + contentLength);
    return element;
}

// One line for a whole element: an OID, text, or hex.
inline void PrintElement(Outline& outline, const std::string& label, const Bytes& whole) {
    const std::optional<Element> element = ReadElement(whole);
    if (!element || element->tagClass != Asn1ClassUniversal || element->constructed != 0) {
        return outline.Hex(label, whole);
    }
    if (element->tag == Asn1KindNull && element->content.empty()) return outline.Line(label, "NULL");
    if (element->tag == Asn1KindObjectIdentifier) {
        const Fetched oid = Get(DecodeAsn1Oid, whole.data(), Size(whole));
        if (oid.status == StatusOk) return outline.Line(label, DescribeOid(oid.bytes));
    }
    const std::optional<std::string> text = ToText(element->tag, element->content);
    if (text) return outline.Line(label, *text);
    outline.Hex(label, whole);
}

}  // namespace examples
