/* Distinguished names as text. */
#ifndef TLVFORGE_CPP_NAMES_HPP
#define TLVFORGE_CPP_NAMES_HPP

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tlvforge/cpp/call.hpp"

namespace tlvforge {

namespace types {

/** An entry of a name: its type, and its value as content bytes under a tag. */
struct NameEntry {
    Oid oid;
    uint8_t tagClass = 0;     // as in the identifier octet: 0x00, 0x40, 0x80 or 0xC0
    uint8_t constructed = 0;  // 0x20 or 0
    uint8_t tag = 0;          // Asn1KindUTF8String and the like, where the class is 0
    Bytes value;
    uint32_t rdn = 0;  // the index of its RDN: entries with the same one belong together

    // The value as UTF-8, whatever its string type is; nothing for other types and for text that is malformed.
    std::optional<std::string> text() const;
};

}  // namespace types

/**
 * ShortName returns the usual short name of an attribute type, such as CN or O; empty for others.
 * dotted: decimal text.
 */
inline std::string_view ShortName(std::string_view dotted) {
    static constexpr struct {
        std::string_view oid, name;
    } kNames[] = {
        {"2.5.4.3", "CN"},
        {"2.5.4.4", "SN"},
        {"2.5.4.5", "serialNumber"},
        {"2.5.4.6", "C"},
        {"2.5.4.7", "L"},
        {"2.5.4.8", "ST"},
        {"2.5.4.9", "STREET"},
        {"2.5.4.10", "O"},
        {"2.5.4.11", "OU"},
        {"2.5.4.12", "title"},
        {"2.5.4.13", "description"},
        {"2.5.4.15", "businessCategory"},
        {"2.5.4.16", "postalAddress"},
        {"2.5.4.17", "postalCode"},
        {"2.5.4.20", "telephoneNumber"},
        {"2.5.4.41", "name"},
        {"2.5.4.42", "GN"},
        {"2.5.4.43", "initials"},
        {"2.5.4.44", "generationQualifier"},
        {"2.5.4.46", "dnQualifier"},
        {"2.5.4.65", "pseudonym"},
        {"2.5.4.97", "organizationIdentifier"},
        {"0.9.2342.19200300.100.1.1", "UID"},
        {"0.9.2342.19200300.100.1.25", "DC"},
        {"1.2.840.113549.1.9.1", "emailAddress"},
        {"1.2.840.113549.1.9.2", "unstructuredName"},
        {"1.3.6.1.4.1.311.60.2.1.1", "jurisdictionL"},
        {"1.3.6.1.4.1.311.60.2.1.2", "jurisdictionST"},
        {"1.3.6.1.4.1.311.60.2.1.3", "jurisdictionC"},
        {"1.2.643.3.131.1.1", "INN"},
        {"1.2.643.100.1", "OGRN"},
        {"1.2.643.100.3", "SNILS"},
        {"1.2.643.100.4", "INNLE"},
        {"1.2.643.100.5", "OGRNIP"},
    };
    for (const auto& row : kNames) {
        if (row.oid == dotted) return row.name;
    }
    return {};
}
inline std::string_view ShortName(const Oid& oid) { return ShortName(oid.text()); }

namespace detail {

inline bool IsCharacter(uint32_t code) noexcept { return code < 0xD800 || (code > 0xDFFF && code < 0x110000); }

inline void AppendUtf8(std::string& text, uint32_t code) {
    const auto tail = [&](int shift) { text += static_cast<char>(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0 | code >> 6);
        tail(0);
    } else if (code < 0x10000) {
        text += static_cast<char>(0xE0 | code >> 12);
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0 | code >> 18);
        tail(12);
        tail(6);
        tail(0);
    }
}

inline bool IsUtf8(ByteView bytes) noexcept {
    for (size_t at = 0; at < bytes.size();) {
        const uint8_t lead = bytes[at++];
        if (lead < 0x80) continue;
        const size_t tail = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
        if (lead < 0xC2 || lead > 0xF4 || tail > bytes.size() - at) return false;
        uint32_t code = lead & (0x3Fu >> tail);
        for (size_t i = 0; i < tail; ++i, ++at) {
            if ((bytes[at] & 0xC0) != 0x80) return false;
            code = code << 6 | (bytes[at] & 0x3Fu);
        }
        if (!IsCharacter(code) || code < (tail == 3 ? 0x10000u : tail == 2 ? 0x800u : 0x80u)) return false;
    }
    return true;
}

// Characters of `width` bytes each, the highest first. Pairs of surrogates, which a BMPString shouldn't have, are read.
inline std::optional<std::string> FromUnits(ByteView bytes, size_t width) {
    if (bytes.size() % width != 0) return std::nullopt;
    std::string text;
    uint32_t high = 0;
    for (size_t at = 0; at < bytes.size(); at += width) {
        uint32_t code = 0;
        for (size_t i = 0; i < width; ++i) code = code << 8 | bytes[at + i];
        const bool isLow = code >= 0xDC00 && code < 0xE000;
        if (isLow != (high != 0)) return std::nullopt;
        if (width == 2 && code >= 0xD800 && code < 0xDC00) {
            high = code;
            continue;
        }
        if (isLow) code = 0x10000 + ((std::exchange(high, 0) - 0xD800) << 10) + (code - 0xDC00);
        if (!IsCharacter(code)) return std::nullopt;
        AppendUtf8(text, code);
    }
    if (high != 0) return std::nullopt;
    return text;
}

// Identifier and length octets of an entry's value, and the value, in hexadecimal digits.
inline std::string ElementInHex(const NameEntry& entry) {
    Bytes header{static_cast<uint8_t>(entry.tagClass | entry.constructed | (entry.tag < 31 ? entry.tag : 31))};
    if (entry.tag > 127) header.push_back(0x81);
    if (entry.tag >= 31) header.push_back(entry.tag & 0x7F);
    const size_t size = entry.value.size();
    int octets = 0;
    while (size >= 0x80 && octets < 8 && size >> 8 * octets != 0) ++octets;
    header.push_back(static_cast<uint8_t>(octets > 0 ? 0x80 | octets : static_cast<int>(size)));
    while (octets-- > 0) header.push_back(static_cast<uint8_t>(size >> 8 * octets));
    return ToHex(header) + ToHex(entry.value);
}

// A value as RFC 4514 writes it (2.4).
inline std::string Escaped(std::string_view text) {
    std::string line;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const auto byte = static_cast<uint8_t>(c);
        const bool atEdge = (c == ' ' && (i == 0 || i + 1 == text.size())) || (c == '#' && i == 0);
        if (byte < 0x20 || byte == 0x7F) {
            line += "\\" + ToHex(ByteView(&byte, 1));
        } else {
            if (atEdge || std::string_view("\"+,;<>\\").find(c) != std::string_view::npos) line += '\\';
            line += c;
        }
    }
    return line;
}

// What a value is on a line under the short name of its type; without a short name or a text it is "#" and the element.
inline std::string ToLine(const NameEntry& entry) {
    const std::string_view name = ShortName(entry.oid);
    const std::optional<std::string> text = name.empty() ? std::nullopt : entry.text();
    return (name.empty() ? entry.oid.text() : std::string(name)) + "=" +
           (text ? Escaped(*text) : "#" + ElementInHex(entry));
}

}  // namespace detail

inline std::optional<std::string> types::NameEntry::text() const {
    if (tagClass != 0 || constructed != 0) return std::nullopt;
    switch (tag) {
        case Asn1KindUTF8String:
            return detail::IsUtf8(value) ? std::optional(std::string(value.begin(), value.end())) : std::nullopt;
        // What is found in a TeletexString is Latin-1 nearly always, and so is what others have beyond ASCII.
        case Asn1KindPrintableString:
        case Asn1KindNumericString:
        case Asn1KindIA5String:
        case Asn1KindVisibleString:
        case Asn1KindTeletexString: return detail::FromUnits(value, 1);
        case Asn1KindBMPString: return detail::FromUnits(value, 2);
        case Asn1KindUniversalString: return detail::FromUnits(value, 4);
        default: return std::nullopt;
    }
}

namespace nothrow {

using tlvforge::ShortName;

/**
 * Entries reads all entries of a name, in the order of the encoding. name: a Handle or a pointer, as for those below.
 */
template <class Name>
Result<std::vector<NameEntry>> Entries(const Name& name) {
    const X509Name* const pointer = detail::PointerTo(name);
    std::vector<NameEntry> entries;
    const Result<uint32_t> rdns = nothrow::Get(GetX509NameRdnCount, pointer);
    if (!rdns) return rdns.failure();
    for (uint32_t rdn = 0; rdn < *rdns; ++rdn) {
        const Result<uint32_t> count = nothrow::Get(GetX509NameEntryCount, pointer, rdn);
        if (!count) return count.failure();
        for (uint32_t i = 0; i < *count; ++i) {
            NameEntry entry;
            entry.rdn = rdn;
            const Result<void> read = detail::Store(
                GetX509NameEntryExt, std::tie(entry.value, entry.tagClass, entry.constructed, entry.tag, entry.oid),
                pointer, rdn, i);
            if (!read) return read.failure();
            entries.push_back(std::move(entry));
        }
    }
    return entries;
}

/**
 * ToText writes a name on one line of UTF-8, as RFC 4514 says: the last RDN first, "CN=Anna,O=Example,C=DE". Types with
 * a short name have it, also those that the RFC doesn't list.
 */
template <class Name>
Result<std::string> ToText(const Name& name) {
    const Result<std::vector<NameEntry>> entries = nothrow::Entries(name);
    if (!entries) return entries.failure();
    std::string line;
    for (size_t begin = 0, end; begin < entries->size(); begin = end) {
        std::string rdn;
        for (end = begin; end < entries->size() && (*entries)[end].rdn == (*entries)[begin].rdn; ++end) {
            rdn += (rdn.empty() ? "" : "+") + detail::ToLine((*entries)[end]);
        }
        line.insert(0, begin == 0 ? rdn : rdn + ",");
    }
    return line;
}

/**
 * AddEntry appends an entry with an RDN of its own, under the narrowest string type for its text.
 * text: UTF-8. A country and a serial number have to be PrintableStrings, and become them if the text allows.
 */
template <class Name>
Result<void> AddEntry(const Name& name, const Oid& oid, std::string_view text) {
    const Result<uint32_t> type = nothrow::Get(DetermineSuitableStringType, text);
    if (!type) return type.failure();
    const uint32_t tag = *type == Asn1KindNumericString ? uint32_t{Asn1KindPrintableString} : *type;
    return nothrow::Call(AddX509NameEntry, detail::PointerTo(name), text, tag, oid, true);
}

}  // namespace nothrow

#if defined(__cpp_exceptions)
template <class Name>
std::vector<NameEntry> Entries(const Name& name) {
    return nothrow::Entries(name).value();
}
template <class Name>
std::string ToText(const Name& name) {
    return nothrow::ToText(name).value();
}
template <class Name>
void AddEntry(const Name& name, const Oid& oid, std::string_view text) {
    nothrow::AddEntry(name, oid, text).value();
}
#endif

}  // namespace tlvforge

#endif
