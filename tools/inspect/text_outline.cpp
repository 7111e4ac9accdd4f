#include <algorithm>
#include <cstdio>

#include "outline.h"
#include "tlvforge/status_text.h"

namespace inspect {

std::string DescribeStatus(Status status) { return "status " + std::to_string(status) + ", " + StatusText(status); }

namespace {

// Parameters of the escape sequence that sets what follows.
constexpr const char* kPlain = "";
constexpr const char* kBold = "1";
constexpr const char* kFaint = "2";
constexpr const char* kRed = "31";
constexpr const char* kYellow = "33";
constexpr const char* kCyan = "36";

size_t CountCharacters(std::string_view text) {
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

void Paint(const char* colour, std::string_view text) {
    const bool painted = colour[0] != 0 && !text.empty();
    if (painted) printf("\033[%sm", colour);
    fwrite(text.data(), 1, text.size(), stdout);
    if (painted) printf("\033[0m");
}

class TextOutline : public Outline {
public:
    TextOutline(bool coloured, size_t limit) : coloured_(coloured), limit_(limit) {}

    void Begin(const Origin& origin, const char*) override { heading_ = origin.alone ? "" : origin.name; }

    void End() override { heading_.clear(); }

    // The message on standard error says it all.
    void Refuse(const Origin&, const std::string&) override {}

    size_t MostMembers() const override { return limit_; }

    void Add(const Entry& entry) override {
        const std::string remark = entry.remark.empty() ? "" : " (" + entry.remark + ")";
        if (entry.status) return Write(entry.label, DescribeStatus(*entry.status) + remark, kRed);
        if (entry.isLines && entry.text->find('\n') != std::string::npos) return WriteLines(entry, remark);
        if (entry.text) return Write(entry.label, (entry.bytes ? Shorten(*entry.text) : *entry.text) + remark, kPlain);
        if (entry.bytes) return WriteBytes(entry.label, *entry.bytes, remark);
        if (entry.count) return Write(entry.label, std::to_string(*entry.count) + remark, kPlain, kBold);
        Write(entry.label + remark, std::nullopt, kPlain, kBold);
    }

private:
    static constexpr size_t kBytesOfLine = 32;
    // Where values begin on a terminal, unless there is no room before them.
    static constexpr size_t kColumn = 40;

    std::string Shorten(const std::string& text) const {
        if (text.size() <= limit_) return text;
        size_t size = limit_;
        while (size > 0 && (text[size] & 0xC0) == 0x80) --size;  // a whole character of UTF-8
        return text.substr(0, size) + "... and " + Count(text.size() - size, "byte") + " more";
    }

    // After the label if they fit there, otherwise below it.
    void WriteBytes(const std::string& label, View bytes, const std::string& remark) {
        const View shown = bytes.first(std::min(bytes.size(), limit_));
        if (bytes.size() <= kBytesOfLine && shown.size() == bytes.size()) {
            return Write(label, (bytes.empty() ? "empty" : ToHex(bytes)) + remark, kYellow);
        }
        Write(label, Count(bytes.size(), "byte") + remark, kPlain);
        const Section section(*this);
        for (size_t at = 0; at < shown.size(); at += kBytesOfLine) {
            Write({}, ToHex(shown.subspan(at, std::min(kBytesOfLine, shown.size() - at))), kYellow);
        }
        if (shown.size() < bytes.size())
            Write({}, "and " + Count(bytes.size() - shown.size(), "byte") + " more", kPlain);
    }

    void WriteLines(const Entry& entry, const std::string& remark) {
        const size_t size = entry.bytes ? entry.bytes->size() : entry.text->size();
        Write(entry.label, Count(size, "byte") + remark, kPlain);
        const Section section(*this);
        const std::string text = Shorten(*entry.text);
        for (size_t at = 0; at < text.size();) {
            const size_t end = std::min(text.find('\n', at), text.size());
            Write({}, text.substr(at, end - at), kPlain);
            at = end + 1;
        }
    }

    void Heading() {
        if (heading_.empty()) return;
        if (!first_) putchar('\n');
        Paint(coloured_ ? kBold : kPlain, "# " + heading_);
        putchar('\n');
        heading_.clear();
    }

    void Write(const std::string& label, const std::optional<std::string>& text, const char* colour,
               const char* labelColour = kCyan) {
        Heading();
        first_ = false;
        if (coloured_) {
            WriteInColumns(label, text, colour, labelColour);
        } else {
            printf("%*s", 2 * Depth(), "");
            Paint(kPlain, label + (label.empty() || !text ? "" : ": ") + text.value_or(""));
        }
        putchar('\n');
    }

    void WriteInColumns(const std::string& label, const std::optional<std::string>& text, const char* colour,
                        const char* labelColour) {
        for (int i = 0; i < Depth(); ++i) Paint(kFaint, "│ ");
        if (label.empty()) return Paint(colour, text.value_or(""));
        Paint(labelColour, label);
        if (!text) return;
        const size_t width = 2 * static_cast<size_t>(Depth()) + CountCharacters(label);
        printf("%*s", static_cast<int>(width + 2 <= kColumn ? kColumn - width : 2), "");
        Paint(colour, *text);
    }

    const bool coloured_;
    const size_t limit_;
    bool first_ = true;
    std::string heading_;  // of the document, until something of it is written
};

}  // namespace

std::unique_ptr<Outline> MakeTextOutline(bool coloured, size_t limit) {
    return std::make_unique<TextOutline>(coloured, limit);
}

}  // namespace inspect
