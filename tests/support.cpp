#include "support.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace support {

Bytes Hex(std::string_view text) {
    Bytes bytes;
    int high = -1;
    for (const char c : text) {
        if (!isxdigit(static_cast<unsigned char>(c))) continue;
        const int digit = isdigit(static_cast<unsigned char>(c)) ? c - '0' : tolower(c) - 'a' + 10;
        if (high < 0) {
            high = digit;
        } else {
            bytes.push_back(static_cast<uint8_t>(high << 4 | digit));
            high = -1;
        }
    }
    EXPECT_LT(high, 0) << "odd number of digits: " << text;
    return bytes;
}

std::string ToHex(const Bytes& bytes) {
    static const char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const uint8_t byte : bytes) text.append({digits[byte >> 4], digits[byte & 15]});
    return text;
}

Bytes Text(std::string_view text) { return Bytes(text.begin(), text.end()); }

Bytes OidOf(const char* dotted) {
    Bytes oid(256);
    uint32_t length = 256;
    EXPECT_EQ(ConvertStringToOid(dotted, oid.data(), &length), StatusOk) << dotted;
    oid.resize(length);
    return oid;
}

Bytes Tlv(uint8_t identifier, const Bytes& content) {
    Bytes out{identifier};
    const size_t length = content.size();
    if (length < 0x80) {
        out.push_back(static_cast<uint8_t>(length));
    } else {
        int octets = 1;
        while (length >> (8 * octets)) ++octets;
        out.push_back(static_cast<uint8_t>(0x80 | octets));
        for (int octet = octets; octet-- > 0;) out.push_back(static_cast<uint8_t>(length >> (8 * octet)));
    }
    return out + content;
}

Bytes operator+(const Bytes& left, const Bytes& right) {
    Bytes out(left);
    out.insert(out.end(), right.begin(), right.end());
    return out;
}

namespace {
const std::filesystem::path kCorpus = std::filesystem::path(TLVFORGE_SOURCE_DIR) / ".." / "shared" / "corpus";
}

bool HasCorpus() { return std::filesystem::is_directory(kCorpus); }

std::vector<NamedBytes> Corpus(const std::string& folder) {
    std::vector<NamedBytes> files;
    if (!HasCorpus()) return files;
    for (const auto& entry : std::filesystem::directory_iterator(kCorpus / folder)) {
        std::ifstream in(entry.path(), std::ios::binary);
        files.push_back({folder + "/" + entry.path().filename().string(),
                         Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>())});
    }
    std::sort(files.begin(), files.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    return files;
}

}  // namespace support
