// What is said about a document: a tree of entries. How they look is up to the class that is derived from Outline.
// Labels and texts are valid UTF-8 without control characters, whatever the document holds.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "bytes.h"
#include "tlvforge/status.h"

namespace inspect {

// A document of those that an outline is made of.
struct Origin {
    Origin() = default;
    explicit Origin(const std::string& path, bool isAlone = true) : file(path), name(path), alone(isAlone) {}

    std::string file;
    std::string name;     // "chain.pem, block 2"
    size_t block = 0;     // of PEM, counted from 1; 0 for DER and bare Base64
    std::string label;    // of the block
    size_t document = 0;  // of several without armour, one after the other, counted from 1
    bool alone = true;    // whether all files have no other document
};

struct Entry {
    std::string label;  // none: a member of a list, or a remark
    std::optional<std::string> text{};
    std::optional<View> bytes{};     // the value; where there is a text too, that is how it reads
    std::string remark{};            // what a reader should know of the value
    std::optional<Status> status{};  // in place of a value that the library refuses
    std::optional<size_t> count{};   // of the members of a list
    bool isLines = false;            // whether the text has line ends
};

class Outline {
public:
    // What is added while a section lives stands under the entry before it.
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

    virtual void Add(const Entry& entry) = 0;

    // How many members of a list are shown.
    virtual size_t MostMembers() const { return SIZE_MAX; }

    void Line(const std::string& label, const std::string& text) { Add({label, text}); }
    void Hex(const std::string& label, View bytes) { Add({.label = label, .bytes = bytes}); }
    Section Open(const std::string& title) {
        Add({title});
        return Section(*this);
    }

    // Documents nest inside of each other without an end, and what stands here is better not taken apart any more.
    bool IsDeep() const { return depth_ >= 48; }

protected:
    int Depth() const { return depth_; }

private:
    int depth_ = 0;
};

// Text on standard output, one line an entry: plain, indented by two blanks for each step, or for a terminal, in
// colours, with rules for the steps and the values in a column. At most `limit` bytes of a value and members of a list
// are shown.
std::unique_ptr<Outline> MakeTextOutline(bool coloured, size_t limit);

// JSON on standard output, one document a line and nothing left out:
//
//     {"file":"chain.pem","block":2,"label":"CERTIFICATE","kind":"certificate","outline":[ENTRY,...]}
//     {"file":"notes.txt","error":"neither DER nor PEM: ..."}
std::unique_ptr<Outline> MakeJsonOutline();

// "status 302, StatusBadEncoding: the bytes ...".
std::string DescribeStatus(Status status);

}  // namespace inspect
