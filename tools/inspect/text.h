// Text of documents as UTF-8 for the screen.
#pragma once

#include <optional>
#include <string>

#include "bytes.h"

namespace inspect {

// What can't be shown becomes \u{202E}, or \xFF where it isn't even a character.
std::string ShowUtf8(View bytes);
std::string ShowAscii(View bytes);

// A string type of a universal tag number. Nothing for types that aren't text, and for lengths that don't go with the
// type.
std::optional<std::string> ToText(uint32_t type, View bytes);

// Octets that are nothing but readable characters. Line ends stay.
std::optional<std::string> ReadOctetsAsText(View bytes);

// Names of bits or numbers from 0 on, null where there is none.
using Names = std::span<const char* const>;

// Of the bits of a BIT STRING. Those without a name are shown by their number.
std::string DescribeFlags(View bits, Names names);

// "1 revoked", or the number alone.
std::string DescribeNumber(int64_t number, Names names);

}  // namespace inspect
