// Lines about what was read, for a person.
#pragma once

#include <cstdio>
#include <string>

#include "../issuing/parts.h"
#include "../outline/oids.h"
#include "../outline/text.h"

namespace examples {

inline std::string DescribeTime(const LibraryTime& time) {
    char text[80];
    snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u UTC", time.year, time.month, time.day, time.hour,
             time.minute, time.second);
    return text;
}

// "CN=Example CA"
inline std::string DescribeNameEntry(const X509Name* name, uint32_t rdn, uint32_t entry) {
    Output value, oid;
    uint8_t tag = 0;
    const Status status = Fetch(
        [&] { return GetX509NameEntry(name, rdn, entry, value.data, &value.length, &tag, oid.data, &oid.length); },
        value, oid);
    Require(status, "reading an entry of a name");
    const std::string dotted = ToDotted(oid.bytes);
    const std::string_view type = WellKnownName(dotted);
    return std::string(type.empty() ? dotted : type) + "=" + ToText(tag, value.bytes).value_or(ToHex(value.bytes));
}

// "C=DE, O=Example, CN=Example CA"
inline std::string DescribeEncodedName(const Bytes& der) {
    OwnedName name;
    Require(DecodeX509Name(der.data(), Size(der), name.Out()), "decoding a name");
    uint32_t rdns = 0;
    Require(GetX509NameRdnCount(name, &rdns), "reading a name");
    std::string text;
    for (uint32_t rdn = 0; rdn < rdns; ++rdn) {
        uint32_t entries = 0;
        Require(GetX509NameEntryCount(name, rdn, &entries), "reading a name");
        for (uint32_t entry = 0; entry < entries; ++entry) {
            text += (text.empty() ? "" : ", ") + DescribeNameEntry(name, rdn, entry);
        }
    }
    return text;
}

}  // namespace examples
