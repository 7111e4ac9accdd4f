// The kinds of documents, and the reasons why bytes are none of them.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "walk.h"

namespace inspect {

struct Kind {
    const char* name;
    const char* title;
    const Shape* shape;
    const char* label = nullptr;  // that only this kind has in PEM
    bool isOfLibrary = true;      // otherwise it is of this program alone, and has to fit to the last field
};

extern const std::span<const Kind> kKinds;

// Null if there is none of the name.
const Kind* FindKind(std::string_view name);

// The first one that the decoder takes an element for, and whose schema has all of its fields; first of all the one
// that goes with a label of PEM. Null if there is none; what the decoders answered is added to refusals.
class Refusals;
const Kind* Recognise(const Kind* wanted, std::string_view label, View element, Refusals& refusals);

void ShowDocument(Outline& outline, const Kind& kind, const Element& element, bool whole);

// What the decoders answered, in words.
class Refusals {
public:
    explicit Refusals(View bytes) : bytes_(bytes) {}

    void Add(const Kind& kind, Status status);
    std::vector<std::string> Describe() const;

private:
    std::string DescribeNearest() const;

    View bytes_;
    std::map<Status, std::string> kinds_;
    // The one with the most bytes as they should be.
    const Kind* nearest_ = nullptr;
    size_t nearestAt_ = 0;
    std::string difference_;
};

}  // namespace inspect
