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
