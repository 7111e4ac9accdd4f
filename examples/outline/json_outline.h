// Outlines as JSON on standard output, one document a line and nothing left out:
//
//     {"file":"chain.pem","block":2,"label":"CERTIFICATE","kind":"certificate","outline":[ENTRY,...]}
//     {"file":"notes.txt","error":"neither DER nor PEM: ..."}
//
// "block" and "label" are there for PEM. An entry is an object with some of "name", one of "value" (text), "hex"
// (bytes), "status" with "meaning" (what the library gave instead of the value) and "count" (of a list), and "members",
// its entries.
#pragma once

#include "outline.h"
#include "statuses.h"

namespace examples {

class JsonOutline : public Outline {
public:
    JsonOutline() : Outline(UINT32_MAX) {}

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

    void Failed(std::string_view label, Status status) override {
        Entry(label);
        printf("%s\"status\":%u", separator_, status);
        separator_ = ",";
        Field("meaning", FindStatusText(status).meaning);
    }

protected:
    void Title(std::string_view title) override { Entry(title); }

    void ListTitle(std::string_view title, uint32_t count) override {
        Entry(title);
        printf("%s\"count\":%u", separator_, count);
    }

    void Text(std::string_view label, std::string_view text) override {
        Entry(label);
        Field("value", text);
    }

    void Octets(std::string_view label, const Bytes& bytes) override {
        static constexpr size_t kStep = 4096;
        Entry(label);
        printf("%s\"hex\":\"", separator_);
        for (size_t at = 0; at < bytes.size(); at += kStep) Write(ToHex(bytes, at, kStep));
        Write("\"");
    }

    void LongOctets(std::string_view label, const Bytes& bytes) override { Octets(label, bytes); }

private:
    static void Write(std::string_view text) { fwrite(text.data(), 1, text.size(), stdout); }

    void Field(const char* name, std::string_view text) {
        printf("%s\"%s\":\"", separator_, name);
        while (!text.empty()) {
            const size_t plain = std::min(text.find_first_of("\"\\"), text.size());
            Write(text.substr(0, plain));
            if (plain < text.size()) Write(text[plain] == '"' ? "\\\"" : "\\\\");
            text.remove_prefix(std::min(plain + 1, text.size()));
        }
        Write("\"");
        separator_ = ",";
    }

    void Head(const Origin& origin) {
        Write("{");
        separator_ = "";
        Field("file", origin.file);
        if (origin.block == 0) return;
        printf(",\"block\":%zu", origin.block);
        Field("label", origin.label);
    }

    // Begins an entry, and ends those that it doesn't stand under. They have been left open until here, for whether
    // one has members isn't known before.
    void Entry(std::string_view label) {
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
        if (!label.empty()) Field("name", label);
    }

    Origin origin_;
    const char* kind_ = "";
    int open_ = 0;                // entries that aren't ended
    const char* separator_ = "";  // in front of the next field
};

}  // namespace examples
