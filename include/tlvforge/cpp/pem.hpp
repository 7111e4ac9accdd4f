/* PEM armour (RFC 7468) as it is found in files, and the files. */
#ifndef TLVFORGE_CPP_PEM_HPP
#define TLVFORGE_CPP_PEM_HPP

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tlvforge/cpp/call.hpp"

namespace tlvforge {

namespace types {

/**
 * A block of a PEM text: "CERTIFICATE" or another label, header lines of RFC 1421 if there are any, and the content. A
 * header says more often than not that the content is encrypted.
 */
struct PemBlock {
    std::string label;
    std::string headers;
    Bytes bytes;
};

}  // namespace types

namespace detail {

constexpr std::string_view kBlank = " \t\r\n\v\f";

inline std::string_view Trimmed(std::string_view text) noexcept {
    const size_t first = text.find_first_not_of(kBlank);
    return first == text.npos ? std::string_view() : text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

// The label of a line such as "-----BEGIN CERTIFICATE-----"; nothing for any other line.
inline std::optional<std::string_view> LabelOf(std::string_view line, std::string_view keyword) noexcept {
    constexpr std::string_view kDashes = "-----";
    if (line.size() < 2 * kDashes.size() || line.substr(0, kDashes.size()) != kDashes) return std::nullopt;
    if (line.substr(line.size() - kDashes.size()) != kDashes) return std::nullopt;
    line = Trimmed(line.substr(kDashes.size(), line.size() - 2 * kDashes.size()));
    if (line.substr(0, keyword.size()) != keyword) return std::nullopt;
    line.remove_prefix(keyword.size());
    if (!line.empty() && kBlank.find(line[0]) == kBlank.npos) return std::nullopt;
    return Trimmed(line);
}

}  // namespace detail

namespace nothrow {

/**
 * PemBlocks reads all blocks of a text, in their order. White space is allowed everywhere within the lines, lines have
 * any length, and what stands between the blocks is passed over: a text without armour, or DER, has no blocks.
 * StatusBadPem for a block without its END line or with another label in it, and for content that isn't Base64; the
 * failure's call names the line where the block begins.
 */
inline Result<std::vector<PemBlock>> PemBlocks(ByteView pem) {
    std::string_view text = pem.text();
    std::vector<PemBlock> blocks;
    PemBlock block;
    std::string base64;
    size_t lineNumber = 0, begin = 0;
    const auto fail = [&] {
        return detail::OwnFailure(StatusBadPem, ("PemBlocks, line " + std::to_string(begin)).c_str());
    };
    while (!text.empty()) {
        const size_t end = text.find('\n');
        std::string_view line = detail::Trimmed(text.substr(0, end));
        text.remove_prefix(end == text.npos ? text.size() : end + 1);
        // A byte order mark at the very beginning.
        if (++lineNumber == 1 && line.substr(0, 3) == "\xEF\xBB\xBF") line.remove_prefix(3);
        if (const auto label = detail::LabelOf(line, "BEGIN")) {
            if (begin != 0) return fail();
            begin = lineNumber;
            block = {std::string(*label), {}, {}};
            base64.clear();
        } else if (begin == 0) {
            continue;
        } else if (const auto endLabel = detail::LabelOf(line, "END")) {
            if (*endLabel != block.label) return fail();
            Result<Bytes> bytes = nothrow::Get(DecodePem, base64);
            if (!bytes) return fail();
            block.bytes = *std::move(bytes);
            blocks.push_back(std::move(block));
            begin = 0;
        } else if (base64.empty() && line.find(':') != line.npos) {
            block.headers.append(line).append("\n");
        } else {
            for (const char c : line) {
                if (detail::kBlank.find(c) == detail::kBlank.npos) base64 += c;
            }
        }
    }
    if (begin != 0) return fail();
    return blocks;
}

/** ReadFile reads a whole file. StatusFileOpenFailed, StatusFileReadShort. */
inline Result<Bytes> ReadFile(const std::string& path) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(path.c_str(), "rb"), fclose);
    if (!file) return detail::OwnFailure(StatusFileOpenFailed, path.c_str());
    Bytes bytes;
    size_t size = 0;
    do {
        bytes.resize(size + (size < 65536 ? 65536 : size));
        size += fread(bytes.data() + size, 1, bytes.size() - size, file.get());
    } while (size == bytes.size());
    if (ferror(file.get()) != 0) return detail::OwnFailure(StatusFileReadShort, path.c_str());
    bytes.resize(size);
    return bytes;
}

/** WriteFile makes or replaces a file. StatusFileOpenFailed, StatusFileWriteShort. */
inline Result<void> WriteFile(const std::string& path, ByteView bytes) {
    FILE* const file = fopen(path.c_str(), "wb");
    if (file == nullptr) return detail::OwnFailure(StatusFileOpenFailed, path.c_str());
    const bool written = fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (fclose(file) != 0 || !written) return detail::OwnFailure(StatusFileWriteShort, path.c_str());
    return {};
}

}  // namespace nothrow

#if defined(__cpp_exceptions)
inline std::vector<PemBlock> PemBlocks(ByteView pem) { return nothrow::PemBlocks(pem).value(); }
inline Bytes ReadFile(const std::string& path) { return nothrow::ReadFile(path).value(); }
inline void WriteFile(const std::string& path, ByteView bytes) { nothrow::WriteFile(path, bytes).value(); }
#endif

}  // namespace tlvforge

#endif
