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

    // Documents nest inside of each other without an end, and what stands here is better not taken apart any more.
    bool IsDeep() const { return depth_ >= 48; }

    void Line(std::string_view text) {
        const std::string_view shown = text.substr(0, ShownSize(text));
        printf("%*s", 2 * depth_, "");
        fwrite(shown.data(), 1, shown.size(), stdout);
        if (shown.size() < text.size()) printf("... and %zu bytes more", text.size() - shown.size());
        putchar('\n');
    }

    void Line(std::string_view label, std::string_view text) { Line(std::string(label).append(": ").append(text)); }

    // In place of a value that the library refused to give.
    void Failed(std::string_view label, Status status) { Line(label, "status " + std::to_string(status)); }

    // All bytes, unless they fill a page: behind the label if they fit there, otherwise below it.
    void Hex(std::string_view label, const Bytes& bytes) {
        static constexpr size_t kBytesShown = 32 * kBytesOfLine;
        if (bytes.size() <= kBytesOfLine) return Line(label, bytes.empty() ? "empty" : ToHex(bytes));
        const Section section = Open(std::string(label) + ": " + std::to_string(bytes.size()) + " bytes");
        const size_t shown = std::min(bytes.size(), kBytesShown);
        for (size_t at = 0; at < shown; at += kBytesOfLine) Line(ToHex(bytes, at, kBytesOfLine));
        if (shown < bytes.size()) Line("and " + std::to_string(bytes.size() - shown) + " bytes more");
    }

    void Hex(std::string_view label, const Fetched& fetched) {
        if (fetched.status != StatusOk) return Failed(label, fetched.status);
        Hex(label, fetched.bytes);
    }

    // The length and the first bytes, for values that nobody reads to their end.
    void Start(std::string_view label, const Bytes& bytes) {
        if (bytes.empty()) return Line(label, "empty");
        Line(label, std::to_string(bytes.size()) + " bytes, " + ToHex(bytes, 0, kBytesOfLine) +
                        (bytes.size() > kBytesOfLine ? "..." : ""));
    }

    void Start(std::string_view label, const Fetched& fetched) {
        if (fetched.status != StatusOk) return Failed(label, fetched.status);
        Start(label, fetched.bytes);
    }

private:
    static constexpr size_t kBytesOfLine = 32;

    // Of a text that is too long for a line, as much as ends with a whole character of UTF-8.
    static size_t ShownSize(std::string_view text) {
        size_t size = 2000;
        if (text.size() <= size) return text.size();
        while ((text[size] & 0xC0) == 0x80) --size;
        return size;
    }

    int depth_ = 0;
};

// The members of a list, under a title with their number. It may have millions, of which the first ones show what they
// are like.
template <class Print>
void PrintMembers(Outline& outline, const std::string& title, uint32_t count, Print&& print) {
    static constexpr uint32_t kShown = 20;
    const Outline::Section section = outline.Open(title + ": " + std::to_string(count));
    for (uint32_t i = 0; i < std::min(count, kShown); ++i) print(i);
    if (count > kShown) outline.Line("and " + std::to_string(count - kShown) + " more");
}

}  // namespace examples
