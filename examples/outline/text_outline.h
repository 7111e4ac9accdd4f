// Outlines as text on standard output, one line an entry: plain, indented by two blanks for each step, or for a
// terminal, in colours, with rules for the steps and the values in a column.
#pragma once

#include <optional>

#include "outline.h"
#include "statuses.h"

namespace examples {

class TextOutline : public Outline {
public:
    explicit TextOutline(bool coloured) : Outline(kMembersShown), coloured_(coloured) {}

    void Begin(const Origin& origin, const char*) override { heading_ = origin.alone ? "" : origin.name; }

    void End() override { heading_.clear(); }

    // The message on standard error says it all.
    void Refuse(const Origin&, const std::string&) override {}

    void Failed(std::string_view label, Status status) override {
        std::string text = "status " + std::to_string(status);
        if (coloured_) text.append(", ").append(FindStatusText(status).meaning);
        Entry(label, text, kRed);
    }

protected:
    void Title(std::string_view title) override { Entry(title, std::nullopt, kPlain, kBold); }

    void ListTitle(std::string_view title, uint32_t count) override {
        Entry(title, std::to_string(count), kPlain, kBold);
    }

    void Text(std::string_view label, std::string_view text) override { Entry(label, text, kPlain); }

    // All bytes, unless they fill a page: behind the label if they fit there, otherwise below it.
    void Octets(std::string_view label, const Bytes& bytes) override {
        static constexpr size_t kBytesShown = 32 * kBytesOfLine;
        if (bytes.size() <= kBytesOfLine) return Entry(label, bytes.empty() ? "empty" : ToHex(bytes), kYellow);
        Entry(label, std::to_string(bytes.size()) + " bytes", kPlain);
        const Section section(*this);
        const size_t shown = std::min(bytes.size(), kBytesShown);
        for (size_t at = 0; at < shown; at += kBytesOfLine) Entry({}, ToHex(bytes, at, kBytesOfLine), kYellow);
        if (shown < bytes.size()) Line("and " + std::to_string(bytes.size() - shown) + " bytes more");
    }

    // The length and the first bytes.
    void LongOctets(std::string_view label, const Bytes& bytes) override {
        if (bytes.empty()) return Entry(label, "empty", kYellow);
        const char* const more = bytes.size() > kBytesOfLine ? "..." : "";
        Entry(label, std::to_string(bytes.size()) + " bytes, " + ToHex(bytes, 0, kBytesOfLine) + more, kYellow);
    }

private:
    static constexpr uint32_t kMembersShown = 20;
    static constexpr size_t kBytesOfLine = 32;
    // Where values begin on a terminal, unless there is no room in front of them.
    static constexpr size_t kColumn = 40;
    // Parameters of the escape sequence that sets what follows.
    static constexpr const char* kPlain = "";
    static constexpr const char* kBold = "1";
    static constexpr const char* kFaint = "2";
    static constexpr const char* kRed = "31";
    static constexpr const char* kYellow = "33";
    static constexpr const char* kCyan = "36";

    // Of a text that is too long for a line, as much as ends with a whole character of UTF-8.
    static size_t ShownSize(std::string_view text) {
        size_t size = 2000;
        if (text.size() <= size) return text.size();
        while ((text[size] & 0xC0) == 0x80) --size;
        return size;
    }

    static size_t CountCharacters(std::string_view text) {
        return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
    }

    static void Paint(const char* colour, std::string_view text) {
        const bool painted = colour[0] != 0 && !text.empty();
        if (painted) printf("\033[%sm", colour);
        fwrite(text.data(), 1, text.size(), stdout);
        if (painted) printf("\033[0m");
    }

    void Heading() {
        if (heading_.empty()) return;
        if (!first_) putchar('\n');
        Paint(coloured_ ? kBold : kPlain, "# " + heading_);
        putchar('\n');
        heading_.clear();
    }

    void Entry(std::string_view label, std::optional<std::string_view> text, const char* colour,
               const char* labelColour = kCyan) {
        Heading();
        first_ = false;
        if (coloured_) {
            EntryInColumns(label, text, colour, labelColour);
        } else {
            printf("%*s", 2 * Depth(), "");
            std::string line(label);
            if (!label.empty() && text) line += ": ";
            Shorten(line.append(text.value_or("")), kPlain);
        }
        putchar('\n');
    }

    void EntryInColumns(std::string_view label, std::optional<std::string_view> text, const char* colour,
                        const char* labelColour) {
        for (int i = 0; i < Depth(); ++i) Paint(kFaint, "│ ");
        if (label.empty()) return Shorten(text.value_or(""), colour);
        Shorten(label, labelColour);
        if (!text) return;
        const size_t width = 2 * static_cast<size_t>(Depth()) + CountCharacters(label);
        printf("%*s", static_cast<int>(width + 2 <= kColumn ? kColumn - width : 2), "");
        Shorten(*text, colour);
    }

    static void Shorten(std::string_view text, const char* colour) {
        const size_t shown = ShownSize(text);
        Paint(colour, text.substr(0, shown));
        if (shown < text.size()) printf("... and %zu bytes more", text.size() - shown);
    }

    const bool coloured_;
    bool first_ = true;
    std::string heading_;  // of the document, until something of it is written
};

}  // namespace examples
