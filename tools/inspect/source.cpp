#include "source.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>

namespace inspect {

std::string ReadToEnd(FILE* file, Bytes& bytes) {
    static constexpr size_t kMost = UINT32_MAX;  // lengths are 32 bits wide at the interface
    static uint8_t block[1 << 16];
    const std::string tooMany = "more than the " + std::to_string(kMost) + " bytes that the library reads";
    struct stat facts = {};
    if (fstat(fileno(file), &facts) == 0 && S_ISREG(facts.st_mode)) {
        const auto size = static_cast<size_t>(facts.st_size);
        if (size > kMost) return std::to_string(size) + " bytes, " + tooMany;
        bytes.reserve(size);
    }
    while (const size_t count = fread(block, 1, sizeof block, file)) {
        if (count > kMost - bytes.size()) return tooMany;
        bytes.insert(bytes.end(), block, block + count);
    }
    return ferror(file) != 0 ? strerror(errno) : "";
}

std::string ReadPath(const char* path, Bytes& bytes) {
    FILE* const file = fopen(path, "rb");
    if (file == nullptr) return strerror(errno);
    const std::string wrong = ReadToEnd(file, bytes);
    fclose(file);
    return wrong;
}

bool IsDer(View bytes) {
    static constexpr uint8_t kSequence = 0x30;
    return !bytes.empty() && bytes[0] == kSequence;
}

namespace {

constexpr std::string_view kHyphens = "-----";

bool IsBlank(char letter) { return letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n'; }

std::string_view Trim(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

// Where the line ends that a place stands in.
size_t EndOfLine(std::string_view text, size_t at) { return std::min(text.find('\n', at), text.size()); }

size_t CountLines(std::string_view text) { return static_cast<size_t>(std::count(text.begin(), text.end(), '\n')); }

// The label between the hyphens of BEGIN, and where what follows them begins.
std::string_view ReadLabel(std::string_view text, size_t begin, size_t& after) {
    const size_t end = EndOfLine(text, begin);
    const size_t hyphens = text.substr(0, end).find(kHyphens, begin);
    after = hyphens == std::string_view::npos ? end : hyphens + kHyphens.size();
    return Trim(text.substr(begin, (hyphens == std::string_view::npos ? end : hyphens) - begin));
}

// Header lines, such as Proc-Type, have a colon; those that begin with a blank go on with one.
size_t SkipHeaders(std::string_view text, bool& isEncrypted) {
    size_t at = 0;
    bool inHeader = false;
    while (at < text.size()) {
        const size_t end = EndOfLine(text, at);
        const std::string_view line = text.substr(at, end - at);
        const bool goesOn = inHeader && !line.empty() && (line[0] == ' ' || line[0] == '\t');
        const bool isHeader = line.find(':') != std::string_view::npos || goesOn;
        if (!isHeader && !Trim(line).empty()) break;
        isEncrypted = isEncrypted || line.find("ENCRYPTED") != std::string_view::npos;
        inHeader = isHeader;
        at = std::min(end + 1, text.size());
    }
    return at;
}

}  // namespace

std::vector<PemBlock> SplitPem(std::string_view text) {
    static constexpr std::string_view kBegin = "-----BEGIN";
    std::vector<PemBlock> blocks;
    size_t line = 1, counted = 0;
    for (size_t at = text.find(kBegin); at != std::string_view::npos;) {
        line += CountLines(text.substr(counted, at - counted));
        counted = at;
        size_t after = 0;
        PemBlock block;
        block.label = ReadLabel(text, at + kBegin.size(), after);
        block.line = line;
        const size_t end = std::min(text.find(kHyphens, after), text.size());
        block.text = text.substr(after, end - after);
        blocks.push_back(block);
        at = text.find(kBegin, end);
    }
    for (PemBlock& block : blocks) {
        const size_t headers = SkipHeaders(block.text, block.isEncrypted);
        block.textLine = block.line + CountLines(block.text.substr(0, headers));
        block.text.remove_prefix(headers);
    }
    return blocks;
}

namespace {

int ReadDigit(char letter) {
    if (letter >= 'A' && letter <= 'Z') return letter - 'A';
    if (letter >= 'a' && letter <= 'z') return letter - 'a' + 26;
    if (letter >= '0' && letter <= '9') return letter - '0' + 52;
    return letter == '+' ? 62 : letter == '/' ? 63 : -1;
}

std::string DescribeLetter(char letter) {
    if (letter > ' ' && letter < 0x7F) return std::string("'") + letter + "'";
    return "the byte " + ToHex(View(reinterpret_cast<const uint8_t*>(&letter), 1));
}

}  // namespace

std::string DecodeBase64(std::string_view text, size_t line, Bytes& bytes) {
    size_t column = 0, digits = 0, padding = 0;
    uint32_t group = 0;
    const auto place = [&] { return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": "; };
    for (const char letter : text) {
        ++column;
        if (letter == '\n') {
            ++line;
            column = 0;
        }
        if (IsBlank(letter)) continue;
        const int digit = ReadDigit(letter);
        if (letter == '=') {
            ++padding;
        } else if (digit < 0) {
            return place() + DescribeLetter(letter) + " is no character of Base64";
        } else if (padding > 0) {
            return place() + DescribeLetter(letter) + " after the end of the Base64";
        } else {
            group = group << 6 | static_cast<uint32_t>(digit);
            ++digits;
        }
        if (padding > 2 || (padding > 0 && digits % 4 < 2)) return place() + "'=' where nothing ends";
        if (digits % 4 == 0 && padding == 0) {
            for (const int shift : {16, 8, 0}) bytes.push_back(static_cast<uint8_t>(group >> shift));
        }
    }
    if (digits == 0) return "no Base64";
    const size_t left = digits % 4;
    if (left != 0 && (left + padding) != 4) return place() + "the Base64 ends inside of a group of four";
    for (size_t i = 1; i < left; ++i) bytes.push_back(static_cast<uint8_t>(group << (24 - 6 * left) >> (24 - 8 * i)));
    return {};
}

}  // namespace inspect
