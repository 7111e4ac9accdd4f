// Bytes that lie elsewhere, and what is written about them everywhere.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace inspect {

using Bytes = std::vector<uint8_t>;
using View = std::span<const uint8_t>;

inline uint32_t Size(View bytes) { return static_cast<uint32_t>(bytes.size()); }

inline std::string ToHex(View bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(2 * bytes.size());
    for (const uint8_t byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

// "1 byte", "2 bytes".
inline std::string Count(size_t count, const char* thing) {
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

}  // namespace inspect
