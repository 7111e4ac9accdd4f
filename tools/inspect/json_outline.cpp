#include <algorithm>
#include <cstdio>

#include "outline.h"
#include "tlvforge/status_text.h"

namespace inspect {
namespace {

void Write(std::string_view text) { fwrite(text.data(), 1, text.size(), stdout); }

class JsonOutline : public Outline {
public:
    void Begin(const Origin& origin, const char* kind) override {
        origin_ = origin;
        kind_ = kind;
    }

    void End() override {
        if (open_ == 0) return;
        for (; open_ > 0; --open_) Write("}]");
        Write("}\n");
    }

    void Refuse(const Origin& origin, const std::string& reason) override {
        Head(origin);
        Field("error", reason);
        Write("}\n");
    }

    void Add(const Entry& entry) override {
        Begin();
        if (!entry.label.empty()) Field("name", entry.label);
        if (entry.text) Field("value", *entry.text);
        if (entry.bytes) Hex(*entry.bytes);
        if (!entry.remark.empty()) Field("remark", entry.remark);
        if (entry.count) Number("count", *entry.count);
        if (!entry.status) return;
        Number("status", *entry.status);
        Field("meaning", StatusText(*entry.status));
    }

private:
    void Number(const char* name, size_t number) {
        printf("%s\"%s\":%zu", separator_, name, number);
        separator_ = ",";
    }

    void Hex(View bytes) {
        static constexpr size_t kStep = 4096;
        printf("%s\"hex\":\"", separator_);
        for (size_t at = 0; at < bytes.size(); at += kStep) {
            Write(ToHex(bytes.subspan(at, std::min(kStep, bytes.size() - at))));
        }
        Write("\"");
        separator_ = ",";
    }

    void Field(const char* name, std::string_view text) {
        printf("%s\"%s\":\"", separator_, name);
        while (!text.empty()) {
            const size_t plain = std::min(text.find_first_of("\"\\\n"), text.size());
            Write(text.substr(0, plain));
            if (plain < text.size()) Write(text[plain] == '"' ? "\\\"" : text[plain] == '\n' ? "\\n" : "\\\\");
            text.remove_prefix(std::min(plain + 1, text.size()));
        }
        Write("\"");
        separator_ = ",";
    }

    void Head(const Origin& origin) {
        Write("{");
        separator_ = "";
        Field("file", origin.file);
        if (origin.block != 0) Number("block", origin.block);
        if (origin.block != 0) Field("label", origin.label);
        if (origin.document != 0) Number("document", origin.document);
    }

    // Begins an entry, and ends those that it doesn't stand under. They have been left open until here, for whether
    // one has members isn't known before.
    void Begin() {
        const int depth = std::min(Depth(), open_);
        if (open_ == 0) {
            Head(origin_);
            Field("kind", kind_);
            Write(",\"outline\":[{");
        } else if (open_ == depth) {
            Write(",\"members\":[{");
        } else {
            for (; open_ > depth + 1; --open_) Write("}]");
            Write("},{");
        }
        open_ = depth + 1;
        separator_ = "";
    }

    Origin origin_;
    const char* kind_ = "";
    int open_ = 0;                // entries that aren't ended
    const char* separator_ = "";  // before the next field
};

}  // namespace

std::unique_ptr<Outline> MakeJsonOutline() { return std::make_unique<JsonOutline>(); }

}  // namespace inspect
