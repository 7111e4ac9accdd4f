// What is said about a document: a tree of entries, each with a label, a value or both. How they look is up to the
// class that is derived from Outline. Labels and texts are valid UTF-8 without control characters, whatever the
// document holds.
#pragma once

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>

#include "../support.h"

namespace examples {

inline std::string ToHex(const Bytes& bytes, size_t from, size_t count) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (size_t i = from; i < bytes.size() && i - from < count; ++i) {
        text += kDigits[bytes[i] >> 4];
        text += kDigits[bytes[i] & 15];
    }
    return text;
}

inline std::string ToHex(const Bytes& bytes) { return ToHex(bytes, 0, bytes.size()); }

// A document of those that an outline is made of.
struct Origin {
    Origin() = default;
    explicit Origin(const std::string& path, bool isAlone = true) : file(path), name(path), alone(isAlone) {}

    std::string file;
    std::string name;   // "chain.pem, block 2"
    size_t block = 0;   // of PEM, counted from 1; 0 for DER and bare Base64
    std::string label;  // of the block
    bool alone = true;  // whether all files have no other document
};

class Outline {
public:
    // What is printed while a section lives stands under the entry in front of it.
    class [[nodiscard]] Section {
    public:
        explicit Section(Outline& outline) : outline_(outline) { ++outline_.depth_; }
        Section(const Section&) = delete;
        ~Section() { --outline_.depth_; }

    private:
        Outline& outline_;
    };

    virtual ~Outline() = default;

    // Around the entries of a document. If there are none, nothing is written.
    virtual void Begin(const Origin& origin, const char* kind) = 0;
    virtual void End() = 0;

    // In place of the entries.
    virtual void Refuse(const Origin& origin, const std::string& reason) = 0;

    Section Open(std::string_view title) {
        Title(title);
        return Section(*this);
    }

    // Documents nest inside of each other without an end, and what stands here is better not taken apart any more.
    bool IsDeep() const { return depth_ >= 48; }

    // Without a label: a member of a list, or a remark.
    void Line(std::string_view text) { Text({}, text); }

    void Line(std::string_view label, std::string_view text) { Text(label, text); }

    // In place of a value that the library refused to give.
    virtual void Failed(std::string_view label, Status status) = 0;

    void Failed(Status status) { Failed({}, status); }

    void Hex(std::string_view label, const Bytes& bytes) { Octets(label, bytes); }

    void Hex(std::string_view label, const Fetched& fetched) {
        if (fetched.status != StatusOk) return Failed(label, fetched.status);
        Octets(label, fetched.bytes);
    }

    // For values that nobody reads to their end.
    void Start(std::string_view label, const Bytes& bytes) { LongOctets(label, bytes); }

    void Start(std::string_view label, const Fetched& fetched) {
        if (fetched.status != StatusOk) return Failed(label, fetched.status);
        LongOctets(label, fetched.bytes);
    }

    // The members of a list, each of which `print` shows by its index.
    template <class Print>
    void Members(const std::string& title, uint32_t count, Print&& print) {
        ListTitle(title, count);
        const Section section(*this);
        const uint32_t shown = std::min(count, mostMembers_);
        for (uint32_t i = 0; i < shown; ++i) print(i);
        if (count > shown) Line("and " + std::to_string(count - shown) + " more");
    }

protected:
    // A list may have millions of members.
    explicit Outline(uint32_t mostMembers) : mostMembers_(mostMembers) {}

    int Depth() const { return depth_; }

    virtual void Title(std::string_view title) = 0;
    virtual void ListTitle(std::string_view title, uint32_t count) = 0;
    virtual void Text(std::string_view label, std::string_view text) = 0;
    virtual void Octets(std::string_view label, const Bytes& bytes) = 0;
    virtual void LongOctets(std::string_view label, const Bytes& bytes) = 0;

private:
    const uint32_t mostMembers_;
    int depth_ = 0;
};

}  // namespace examples
