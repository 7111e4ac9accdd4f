// Shows elements by the schemas of the library, field by field and in the order in which they stand.
//
// The library's decoder is asked for its verdict on a document, and on every value inside that is known by an object
// identifier; what it refuses is shown as raw elements after the status. The bytes are then walked along the same
// schema that the decoder went by, so that what it passes over, such as fields after the last one it knows, is shown.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "elements.h"
#include "outline.h"
#include "shape.h"
#include "text.h"

namespace inspect {

// How the value of a field reads, where that doesn't follow from its type.
enum class How {
    kPlain,
    kInline,   // its fields or members stand among those of the structure around it
    kHex,      // a number
    kVersion,  // a number that is one less than the version
    kNames,    // a number or bits that have names
    kScts,     // octets with a list of signed certificate timestamps
    kSecret,   // octets or a number that only the owner of a key should see
};

struct Style {
    std::string_view name{};      // "TBSCertificate::version", or "::version" in any structure
    const char* label = nullptr;  // null for the name in words
    How how = How::kPlain;
    Names names{};
};

// Whether an element begins as the schema has it.
bool Fits(const Shape& shape, const Header& header);

// The element at the front if it fits, without the outer one of an explicit tag; it is taken off.
std::optional<Element> Match(const Shape& shape, View& rest);

// The fields of a record, null where there is none, and the bytes after the last one that is known.
struct Fields {
    std::vector<std::optional<Element>> fields;
    View rest;

    const std::optional<Element>& operator[](size_t index) const { return fields[index]; }
};
Fields Split(const Shape& record, View content);

// What the library's decoder says of bytes that should be one element.
Status AskDecoder(const Shape& shape, View bytes);

// "C=DE, O=Example Trust, CN=Example CA", of the element of a name.
std::string DescribeName(const Element& name);

// The reading of a time in the library, or nothing and why.
std::optional<std::string> ReadTime(uint32_t kind, View content, std::string& why);

class Walker {
public:
    // whole: whether certificates inside of other documents are shown whole.
    Walker(Outline& outline, bool whole) : outline_(outline), whole_(whole) {}

    // A document that the decoder takes.
    void ShowDocument(const Shape& shape, const Element& element, const std::string& title);

    void Show(const Shape& shape, const Element& element, const std::string& label, const Style& style);

    // What is known by an object identifier: an extension, an attribute, parameters, a content.
    // isInline: whether its fields or members stand in the section that is open.
    void ShowKnown(View oid, View value, const std::string& label, bool isInline = false);

    // Any element, by its tag alone, or the bytes if they are none.
    void ShowRaw(const std::string& label, View bytes);

    // Raw elements one after the other.
    void ShowRawList(View bytes);

private:
    using Handler = void (Walker::*)(const Shape& shape, const Element& element, const std::string& label);
    static Handler FindHandler(const Asn1Item& item);

    void ShowFields(const Shape& shape, View content);
    void ShowRest(View rest);
    void ShowList(const Shape& shape, const Element& element, const std::string& label, bool isInline);
    void ShowChoice(const Shape& shape, const Element& element, const std::string& label, const Style& style);
    void ShowUniversal(uint32_t kind, const Element& element, const std::string& label, const Style& style);
    void ShowNumber(View content, const std::string& label, const Style& style);
    void ShowBits(View content, const std::string& label, const Style& style);
    void ShowOctets(View content, const std::string& label, const Style& style);
    void ShowTime(uint32_t kind, View content, const std::string& label);

    void ShowAlgorithm(const Shape& shape, const Element& element, const std::string& label);
    void ShowPublicKey(const Shape& shape, const Element& element, const std::string& label);
    void ShowName(const Shape& shape, const Element& element, const std::string& label);
    void ShowGeneralName(const Shape& shape, const Element& element, const std::string& label);
    void ShowExtension(const Shape& shape, const Element& element, const std::string& label);
    void ShowAttribute(const Shape& shape, const Element& element, const std::string& label);
    void ShowContent(const Shape& shape, const Element& element, const std::string& label);
    void ShowResponderId(const Shape& shape, const Element& element, const std::string& label);
    void ShowCertificate(const Shape& shape, const Element& element, const std::string& label);
    void ShowCertificateSet(const Shape& shape, const Element& element, const std::string& label);
    void ShowCertificateStatus(const Shape& shape, const Element& element, const std::string& label);
    void ShowTypedValue(const Shape& shape, const Element& element, const std::string& label);

    void ShowNameEntries(View sets);
    void ShowOtherName(const Element& element);
    void ShowFingerprints(View certificate);
    void ShowRefused(Status status, const Shape* standard, View value, const std::string& label);

    Outline& outline_;
    const bool whole_;
    bool isCertificate_ = false;  // whether the document itself is one, which is whole in any case
};

// --- What isn't schemas ---

// A value that is known by an object identifier.
struct Known {
    const char* oid;
    const Shape* shape;               // as the library reads it
    const Shape* also = nullptr;      // another form that it reads
    const Shape* standard = nullptr;  // of the standard, where the library's form differs, to show it by
    Style style{};
};
const Known* FindKnown(View oid);

// How the bits of a key of an algorithm are laid out, or null.
const Shape* FindKeyShape(View algorithm);

// "2048 bits", or nothing where that can't be said.
std::string DescribeKeySize(View algorithm, View parameters, View key);

Style FindStyle(std::string_view fieldName);

// "serialNumber" as "Serial number".
std::string InWords(std::string_view name);

// What a member of a list is called, after the type of its schema.
std::string MemberLabel(const Shape& member);

// "192.0.2.1", an IPv6 address as RFC 5952 has it, or either with a mask; nothing for other lengths.
std::optional<std::string> DescribeAddress(View bytes);

void ShowTimestamps(Outline& outline, View list, const std::string& label);

void HashSha256(View bytes, uint8_t (&digest)[32]);

}  // namespace inspect
