// Distinguished names, general names and times.
#pragma once

#include <string>

#include "elements.h"

namespace examples {

inline std::string ToText(const LibraryTime& time) {
    char text[80];
    snprintf(text, sizeof text, "%04u-%02u-%02uT%02u:%02u:%02uZ", time.year, time.month, time.day, time.hour,
             time.minute, time.second);
    return text;
}

// An entry of a name: what it is, and its value as text if it is one.
struct NameEntry {
    Status status = StatusOk;
    Bytes oid, value;
    uint8_t tagClass = 0, constructed = 0, tag = 0;

    std::optional<std::string> Text() const {
        const bool plain = tagClass == Asn1ClassUniversal && constructed == 0;
        return plain ? ToText(tag, value) : std::nullopt;
    }
};

inline NameEntry GetNameEntry(const X509Name* name, uint32_t rdn, uint32_t entry) {
    NameEntry result;
    Output value, oid;
    result.status = Fetch(
        [&] {
            return GetX509NameEntryExt(name, rdn, entry, value.data, &value.length, &result.tagClass,
                                       &result.constructed, &result.tag, oid.data, &oid.length);
        },
        value, oid);
    result.oid = std::move(oid.bytes);
    result.value = std::move(value.bytes);
    return result;
}

// Calls print for every entry with the number of the entry in its set; the status of the first failure.
template <class Print>
Status ForEachEntry(const X509Name* name, Print&& print) {
    uint32_t rdns = 0;
    Status status = GetX509NameRdnCount(name, &rdns);
    for (uint32_t rdn = 0; rdn < rdns && status == StatusOk; ++rdn) {
        uint32_t entries = 0;
        status = GetX509NameEntryCount(name, rdn, &entries);
        for (uint32_t i = 0; i < entries; ++i) print(GetNameEntry(name, rdn, i), i);
    }
    return status;
}

// An entry that joins the one before it in a set of several is marked with a plus sign.
inline void PrintNameEntry(Outline& outline, const NameEntry& entry, uint32_t index) {
    if (entry.status != StatusOk) return outline.Failed("entry", entry.status);
    const std::string label = (index > 0 ? "+ " : "") + DescribeOid(entry.oid);
    if (const std::optional<std::string> text = entry.Text()) return outline.Line(label, *text);
    char identifier[40];
    snprintf(identifier, sizeof identifier, ", class %02X tag %u", entry.tagClass | entry.constructed, entry.tag);
    outline.Hex(label + identifier, entry.value);
}

inline void PrintName(Outline& outline, const std::string& label, const X509Name* name) {
    uint32_t rdns = 0;
    const Status counted = GetX509NameRdnCount(name, &rdns);
    if (counted == StatusOk && rdns == 0) return outline.Line(label, "empty");
    const Outline::Section section = outline.Open(label);
    const Status status =
        ForEachEntry(name, [&](const NameEntry& entry, uint32_t index) { PrintNameEntry(outline, entry, index); });
    if (status != StatusOk) outline.Failed("entries", status);
}

// A name as one line: "C=DE, O=Example Trust, CN=Example CA".
inline std::string DescribeName(const X509Name* name) {
    std::string line;
    const Status status = ForEachEntry(name, [&](const NameEntry& entry, uint32_t index) {
        const std::string dotted = ToDotted(entry.oid);
        const std::string_view type = WellKnownName(dotted);
        line += line.empty() ? "" : index > 0 ? " + " : ", ";
        line += std::string(type.empty() ? dotted : type) + "=" + entry.Text().value_or("hex " + ToHex(entry.value));
    });
    if (status != StatusOk) return "status " + std::to_string(status);
    return line.empty() ? "empty" : line;
}

inline void PrintEncodedName(Outline& outline, const std::string& label, const Bytes& value) {
    OwnedName name;
    const Status status = DecodeX509Name(value.data(), Size(value), name.Out());
    if (status == StatusOk) return PrintName(outline, label, name);
    outline.Failed(label, status);
    PrintElement(outline, "value", value);
}

// OtherName is a type and a value under the tag [0], which are shown where they can be told apart.
inline void PrintOtherName(Outline& outline, const Bytes& value) {
    const std::optional<Element> outer = ReadElement(value);
    const std::optional<Element> type = outer ? ReadElement(outer->content) : std::nullopt;
    const std::optional<Element> tagged = type ? ReadElement(outer->content, type->whole.size()) : std::nullopt;
    if (!tagged) return outline.Hex("other name", value);
    const Outline::Section section = outline.Open("other name");
    PrintElement(outline, "type", type->whole);
    PrintElement(outline, "value", tagged->content);
}

inline void PrintAddress(Outline& outline, const Bytes& value) {
    std::string text;
    char part[8];
    if (value.size() == 4) {
        for (const uint8_t byte : value) text += (text.empty() ? "" : ".") + std::to_string(byte);
    } else if (value.size() == 16) {
        for (size_t at = 0; at < value.size(); at += 2) {
            snprintf(part, sizeof part, at == 0 ? "%x" : ":%x", value[at] << 8 | value[at + 1]);
            text += part;
        }
    } else {
        return outline.Hex("IP address", value);
    }
    outline.Line("IP address", text);
}

inline void PrintGeneralName(Outline& outline, uint32_t alternative, const Fetched& name) {
    if (name.status != StatusOk) return outline.Failed("general name", name.status);
    const Bytes& value = name.bytes;
    switch (alternative) {
        case X509GeneralNameOtherName: return PrintOtherName(outline, value);
        case X509GeneralNameRfc822Name: return outline.Line("e-mail", Escape(ReadAscii(value)));
        case X509GeneralNameDNSName: return outline.Line("DNS", Escape(ReadAscii(value)));
        case X509GeneralNameX400Address: return outline.Hex("X.400 address", value);
        case X509GeneralNameDirectoryName: return PrintEncodedName(outline, "directory name", value);
        case X509GeneralNameEdiPartyName: return outline.Hex("EDI party name", value);
        case X509GeneralNameUniformResourceIdentifier: return outline.Line("URI", Escape(ReadAscii(value)));
        case X509GeneralNameIPAddress: return PrintAddress(outline, value);
        case X509GeneralNameRegisteredID: return outline.Line("registered ID", DescribeOid(value));
        default: return outline.Hex("alternative " + std::to_string(alternative), value);
    }
}

inline void PrintGeneralName(Outline& outline, const X509GeneralName* name) {
    uint32_t alternative = 0;
    const Fetched value = Get(GetX509GeneralNameValue, name, &alternative);
    PrintGeneralName(outline, alternative, value);
}

inline void PrintGeneralNames(Outline& outline, const X509GeneralNames* names) {
    uint32_t count = 0;
    const Status status = GetX509GeneralNameCount(names, &count);
    if (status != StatusOk) return outline.Failed("names", status);
    if (count == 0) outline.Line("no names");
    for (uint32_t i = 0; i < count; ++i) {
        uint32_t alternative = 0;
        const Fetched name = Get(GetX509GeneralName, names, i, &alternative);
        PrintGeneralName(outline, alternative, name);
    }
}

}  // namespace examples
