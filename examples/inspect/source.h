// Where documents come from: files, standard input, and the blocks of PEM in them.
#pragma once

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "../support.h"

namespace examples {

// Appends all that can be read. The result is what went wrong, or nothing.
inline std::string ReadToEnd(FILE* file, Bytes& bytes) {
    static constexpr size_t kMost = UINT32_MAX;  // lengths are 32 bits wide at the interface
    static uint8_t block[1 << 16];
    struct stat facts = {};
    if (fstat(fileno(file), &facts) == 0 && S_ISREG(facts.st_mode)) {
        bytes.reserve(std::min(static_cast<size_t>(facts.st_size), kMost));
    }
    while (const size_t count = fread(block, 1, sizeof block, file)) {
        if (count > kMost - bytes.size()) return "more than " + std::to_string(kMost) + " bytes";
        bytes.insert(bytes.end(), block, block + count);
    }
    return ferror(file) != 0 ? strerror(errno) : "";
}

inline std::string ReadPath(const char* path, Bytes& bytes) {
    FILE* const file = fopen(path, "rb");
    if (file == nullptr) return strerror(errno);
    const std::string wrong = ReadToEnd(file, bytes);
    fclose(file);
    return wrong;
}

// Every kind of document is a SEQUENCE, and no PEM text begins with its identifier octet.
inline bool IsDer(const Bytes& bytes) {
    static constexpr uint8_t kSequence = 0x30;
    return !bytes.empty() && bytes[0] == kSequence;
}

// A block of PEM, from its BEGIN line to the next one.
struct PemBlock {
    std::string_view text;
    std::string_view label;
    size_t line = 1;  // where it begins
};

inline constexpr std::string_view kPemBegin = "-----BEGIN";

// What stands between the BEGIN of a block and the hyphens at the end of the line; nothing if these are missing.
inline std::string_view ReadLabel(std::string_view block) {
    static constexpr size_t kLongest = 80;
    const std::string_view rest = block.substr(kPemBegin.size(), kLongest);
    const std::string_view line = rest.substr(0, rest.find_first_of("\r\n"));
    const size_t start = line.find_first_not_of(' ');
    const size_t end = line.find("-----");
    return start < end && end < line.size() ? line.substr(start, end - start) : "";
}

inline std::vector<PemBlock> SplitPem(std::string_view text) {
    std::vector<PemBlock> blocks;
    size_t at = text.find(kPemBegin);
    const std::string_view before = text.substr(0, at);
    auto line = 1 + std::count(before.begin(), before.end(), '\n');
    while (at != std::string_view::npos) {
        const size_t next = text.find(kPemBegin, at + kPemBegin.size());
        const std::string_view block = text.substr(at, next - at);
        blocks.push_back({block, ReadLabel(block), static_cast<size_t>(line)});
        line += std::count(block.begin(), block.end(), '\n');
        at = next;
    }
    return blocks;
}

}  // namespace examples
