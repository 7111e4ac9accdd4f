// An outline on standard output: labelled lines, indented under their sections. Whatever a document holds comes out as
// one line of valid UTF-8 without control characters.
#pragma once

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>

#include "../support.h"

namespace examples {

inline std::string ToHex(const Bytes& bytes, size_t from, size_t count) {
    std::string text;
    for (size_t i = from; i < std::min(bytes.size(), from + count); ++i) {
        char digits[3];
        snprintf(digits, sizeof digits, "%02X", bytes[i]);
        text += digits;
    }
    return text;
}

inline std::string ToHex(const Bytes& bytes) { return ToHex(bytes, 0, bytes.size()); }

class Outline {
public:
    // What is printed while a section lives stands one step further to the right.
    class [[nodiscard]] Section {
    public:
        explicit Section(Outline& outline) : outline_(outline) { ++outline_.depth_; }
        Section(const Section&) = delete;
        ~Section() { --outline_.depth_; }

    private:
        Outline& outline_;
    };

    Section Open(std::string_view title) {
        Line(title);
        return Section(*this);
    }

    void Line(std::string_view text) {
        printf("%*s", 2 * depth_, "");
        fwrite(text.data(), 1, text.size(), stdout);
        putchar('\n');
    }

    void Line(std::string_view label, std::string_view text) { Line(std::string(label).append(": ").append(text)); }

    // In place of a value that the library refused to give.
    void Failed(std::string_view label, Status status) { Line(label, "status " + std::to_string(status)); }

    // All bytes: behind the label if they fit there, otherwise below it.
    void Hex(std::string_view label, const Bytes& bytes) {
        if (bytes.size() <= kBytesOfLine) return Line(label, bytes.empty() ? "empty" : ToHex(bytes));
        const Section section = Open(std::string(label) + ": " + std::to_string(bytes.size()) + " bytes");
        for (size_t at = 0; at < bytes.size(); at += kBytesOfLine) Line(ToHex(bytes, at, kBytesOfLine));
    }

    void Hex(std::string_view label, const Fetched& fetched) {
        if (fetched.status != StatusOk) return Failed(label, fetched.status);
        Hex(label, fetched.bytes);
    }

    // The length and the first bytes, for values that nobody reads to their end.
    void Start(std::string_view label, const Fetched& fetched) {
        if (fetched.status != StatusOk) return Failed(label, fetched.status);
        const Bytes& bytes = fetched.bytes;
        Line(label, std::to_string(bytes.size()) + " bytes, " + ToHex(bytes, 0, kBytesOfLine) +
                        (bytes.size() > kBytesOfLine ? "..." : ""));
    }

private:
    static constexpr size_t kBytesOfLine = 32;

    int depth_ = 0;
};

}  // namespace examples
