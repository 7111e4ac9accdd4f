// Object identifiers as text.
#pragma once

#include <cstdlib>
#include <string>
#include <string_view>

#include "../well_known_oids.h"
#include "outline.h"

namespace examples {

// ConvertOidToString works on arcs of 32 bits, and on a length that fits its prefix.
inline bool IsConvertible(const Bytes& oid) {
    if (oid.empty() || oid[0] != oid.size() - 1) return false;
    uint64_t arc = 0;
    for (size_t i = 1; i < oid.size(); ++i) {
        arc = arc << 7 | (oid[i] & 0x7F);
        if (arc > UINT32_MAX) return false;
        if ((oid[i] & 0x80) == 0) arc = 0;
    }
    return true;
}

// Dotted text of a length-prefixed OID; hex where there is none.
inline std::string ToDotted(const Bytes& oid) {
    if (!IsConvertible(oid)) return "hex " + ToHex(oid);
    auto [status, text] = GetText(ConvertOidToString, oid.data());
    if (status != StatusOk) return "hex " + ToHex(oid);
    text.pop_back();  // the terminating zero
    // The library splits the first number into its quotient and remainder by 40. In X.660 no first arc is above 2.
    char* rest = nullptr;
    const unsigned long first = strtoul(text.c_str(), &rest, 10);
    if (first <= 2) return text;
    const unsigned long second = strtoul(rest + 1, &rest, 10);
    return "2." + std::to_string(first * 40 + second - 80) + rest;
}

inline std::string_view WellKnownName(std::string_view dotted) {
    for (const WellKnownOid& row : kWellKnownOids) {
        if (dotted == row.oid) return row.name;
    }
    return {};
}

// "commonName (2.5.4.3)", or the numbers alone.
inline std::string DescribeOid(const Bytes& oid) {
    const std::string dotted = ToDotted(oid);
    const std::string_view name = WellKnownName(dotted);
    return name.empty() ? dotted : std::string(name) + " (" + dotted + ")";
}

}  // namespace examples
