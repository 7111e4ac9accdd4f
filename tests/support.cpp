#include "support.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace support {

std::string StatusName(Status status) {
    static const auto names = [] {
        std::map<Status, std::string> found;
        std::ifstream header(TLVFORGE_SOURCE_DIR "/include/tlvforge/status.h");
        for (std::string word; std::getline(header, word, '(') && std::getline(header, word, ',');)
            if (Status number = 0; word.starts_with("Status") && header >> number) found[number] = word.substr(6);
        return found;
    }();
    const auto name = names.find(status);
    return name != names.end() ? name->second : std::to_string(status);
}

#ifdef _WIN32

void SetZone(const char* zone) {
    _putenv_s("TZ", zone != nullptr ? zone : "");
    _tzset();
}
std::string NullDevice() { return "NUL"; }
const void* Exported(const char* name) {
    return reinterpret_cast<const void*>(GetProcAddress(GetModuleHandleA("tlvforge_64.dll"), name));
}

#else

void SetZone(const char* zone) {
    if (zone != nullptr) {
        setenv("TZ", zone, 1);
    } else {
        unsetenv("TZ");
    }
    tzset();
}
std::string NullDevice() { return "/dev/null"; }
const void* Exported(const char* name) { return dlsym(RTLD_DEFAULT, name); }

#endif

namespace {

// The arguments of a macro: what stands between commas outside of brackets and of texts.
std::vector<std::string> Arguments(const std::string& text) {
    std::vector<std::string> arguments(1);
    int depth = 0;
    bool quoted = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '"' && (i == 0 || text[i - 1] != '\\')) quoted = !quoted;
        if (!quoted) depth += (strchr("([{", c) != nullptr) - (strchr(")]}", c) != nullptr);
        if (c == ',' && depth == 0 && !quoted)
            arguments.emplace_back();
        else if (c != ' ' || !arguments.back().empty())
            arguments.back() += c;
    }
    return arguments;
}

}  // namespace

void CheckRows(const char* file, int line, const char* text, std::initializer_list<Row> rows,
               std::optional<Status> ofAll) {
    for (const Row& row : rows) {
        const uint32_t expected = ofAll.value_or(row.expected);
        if (row.actual == expected) continue;
        const std::string written = Arguments(text)[size_t(&row - rows.begin())];
        const auto parts = ofAll ? std::vector{written} : Arguments(written.substr(1, written.size() - 2));
        const bool isStatus = parts.size() == 1 || parts.back().starts_with("Status");
        const auto name = [&](uint32_t value) { return isStatus ? StatusName(value) : std::to_string(value); };
        ADD_FAILURE_AT(file, line) << parts[0] << "\n  is " << name(row.actual) << " instead of " << name(expected);
    }
}

Bytes Hex(std::string_view text) {
    std::string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits), isxdigit);
    EXPECT_EQ(digits.size() % 2, 0u) << "odd number of digits: " << text;
    Bytes bytes(digits.size() / 2);
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = uint8_t(std::stoi(digits.substr(2 * i, 2), nullptr, 16));
    return bytes;
}

std::string ToHex(const Bytes& bytes) {
    static const char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const uint8_t byte : bytes) text.append({digits[byte >> 4], digits[byte & 15]});
    return text;
}

Bytes OidOf(const char* dotted) {
    Bytes oid(256);
    uint32_t length = 256;
    EXPECT_EQ(ConvertStringToOid(dotted, oid.data(), &length), StatusOk) << dotted;
    oid.resize(length);
    return oid;
}

Bytes Tlv(uint8_t identifier, const Bytes& content) {
    if (content.size() < 0x80) return Bytes{identifier, uint8_t(content.size())} + content;
    Bytes length;
    for (size_t rest = content.size(); rest > 0; rest >>= 8) length.insert(length.begin(), uint8_t(rest));
    return Bytes{identifier, uint8_t(0x80 | length.size())} + length + content;
}

Bytes operator+(const Bytes& left, const Bytes& right) {
    Bytes out(left);
    out.insert(out.end(), right.begin(), right.end());
    return out;
}

const char* const kCorpus = TLVFORGE_CORPUS;

bool HasCorpus() { return std::filesystem::is_directory(kCorpus); }

std::vector<NamedBytes> Corpus(const std::string& folder) {
    std::vector<NamedBytes> files;
    if (!HasCorpus()) return files;
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(kCorpus) / folder)) {
        std::ifstream in(entry.path(), std::ios::binary);
        files.push_back({folder + "/" + entry.path().filename().string(),
                         Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>())});
    }
    std::sort(files.begin(), files.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    return files;
}

}  // namespace support
