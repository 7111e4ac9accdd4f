// Elements of BER one by one, whatever they stand for.
#pragma once

#include <optional>
#include <string>

#include "bytes.h"
#include "outline.h"
#include "tlvforge/asn1.h"

namespace inspect {

struct Header {
    uint8_t tagClass = 0;
    uint8_t constructed = 0;
    uint32_t tag = 0;
    bool indefinite = false;
    uint32_t size = 0;
    uint32_t contentSize = 0;  // what it says; in the indefinite form all that remains

    bool IsUniversal(uint32_t kind) const { return tagClass == Asn1ClassUniversal && tag == kind; }
    bool IsContext(uint32_t number) const { return tagClass == Asn1ClassContext && tag == number; }
};

struct Element : Header {
    View whole;
    View content;
};

// The identifier and length octets at the front.
std::optional<Header> ReadHeader(View bytes);

// The element at the front; nothing for one that is malformed or doesn't lie within the bytes. Of the indefinite form
// the content lacks the two octets that end it.
std::optional<Element> ReadElement(View bytes);

// The one element that the bytes are.
std::optional<Element> ReadWholeElement(View bytes);

// The first one, which is taken off the front; nothing at the end or when there is none that can be read.
std::optional<Element> TakeElement(View& bytes);

// "SEQUENCE", "[0]", "[APPLICATION 3]".
std::string DescribeTag(const Header& element);

// The first place where the element at the front isn't BER, in words; nothing if there is none, or one too deep inside.
std::optional<std::string> DescribeFault(View bytes);

// "CN (2.5.4.3)", or the numbers alone, of the content of an OBJECT IDENTIFIER.
std::string ToDotted(View oid);
std::string DescribeOid(View oid);
// The name, or the numbers where there is none.
std::string NameOfOid(View oid);

// The content octets of a string, in one piece also where it is sent in segments, which `joined` then holds.
View JoinSegments(const Element& element, Bytes& joined);

}  // namespace inspect
