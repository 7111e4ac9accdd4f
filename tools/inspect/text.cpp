#include "text.h"

#include <cstdio>

#include "tlvforge/asn1.h"

namespace inspect {
namespace {

// Beyond Unicode: a byte or unit that is no character, plus this.
constexpr char32_t kNoCharacter = 0x110000;

// Readers of the string types, one character an element.
using Reader = std::u32string (*)(View bytes);

std::u32string ReadAscii(View bytes) {
    std::u32string text;
    for (const uint8_t byte : bytes) text += byte < 0x80 ? byte : kNoCharacter + byte;
    return text;
}

// A TeletexString should be T.61, but what is found in certificates is Latin-1.
std::u32string ReadLatin1(View bytes) { return {bytes.begin(), bytes.end()}; }

// One number of big-endian bytes.
char32_t ReadUnit(View bytes, size_t at, size_t size) {
    char32_t unit = 0;
    for (size_t i = at; i < at + size; ++i) unit = unit << 8 | bytes[i];
    return unit;
}

bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

// A BMPString has no surrogates; pairs are found in it all the same, and mean what they mean in UTF-16.
std::u32string ReadBmp(View bytes) {
    std::u32string text;
    for (size_t at = 0; at + 2 <= bytes.size(); at += 2) {
        const char32_t low = ReadUnit(bytes, at, 2);
        if (!text.empty() && IsHighSurrogate(text.back()) && IsLowSurrogate(low)) {
            text.back() = 0x10000 + ((text.back() - 0xD800) << 10) + (low - 0xDC00);
        } else {
            text += low;
        }
    }
    return text;
}

std::u32string ReadUniversal(View bytes) {
    std::u32string text;
    for (size_t at = 0; at + 4 <= bytes.size(); at += 4) {
        const char32_t unit = ReadUnit(bytes, at, 4);
        text += unit < kNoCharacter ? unit : U'\uFFFD';
    }
    return text;
}

// The character at the front of UTF-8 and the number of its bytes; 1 and kNoCharacter for what is none.
char32_t ReadUtf8Character(View bytes, size_t at, size_t* size) {
    const uint8_t lead = bytes[at];
    const char32_t refused = kNoCharacter + lead;
    *size = 1;
    if (lead < 0x80) return lead;
    const size_t expected = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || expected > bytes.size() - at) return refused;
    char32_t character = lead & (0x7F >> expected);
    for (size_t i = 1; i < expected; ++i) {
        if ((bytes[at + i] & 0xC0) != 0x80) return refused;
        character = character << 6 | (bytes[at + i] & 0x3F);
    }
    static constexpr char32_t kLowest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = IsHighSurrogate(character) || IsLowSurrogate(character);
    if (character < kLowest[expected] || surrogate || character >= kNoCharacter) return refused;
    *size = expected;
    return character;
}

std::u32string ReadUtf8(View bytes) {
    std::u32string text;
    size_t size = 0;
    for (size_t at = 0; at < bytes.size(); at += size) text += ReadUtf8Character(bytes, at, &size);
    return text;
}

std::string ToUtf8(char32_t character) {
    const auto tail = [&](int shift) { return static_cast<char>(0x80 | (character >> shift & 0x3F)); };
    if (character < 0x80) return {static_cast<char>(character)};
    if (character < 0x800) return {static_cast<char>(0xC0 | character >> 6), tail(0)};
    if (character < 0x10000) return {static_cast<char>(0xE0 | character >> 12), tail(6), tail(0)};
    return {static_cast<char>(0xF0 | character >> 18), tail(12), tail(6), tail(0)};
}

// Characters that move the cursor, turn the direction of writing or can't be seen, and halves of pairs.
bool IsVisible(char32_t character) {
    static constexpr struct {
        char32_t first, last;
    } kInvisible[] = {{0, 0x1F},        {0x7F, 0x9F},     {0xAD, 0xAD},     {0x200B, 0x200F}, {0x2028, 0x202E},
                      {0x2060, 0x206F}, {0xD800, 0xDFFF}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}, {0xE0000, 0xE007F}};
    for (const auto& range : kInvisible) {
        if (character >= range.first && character <= range.last) return false;
    }
    return true;
}

// Line ends stay where lines are wanted.
std::string Escape(const std::u32string& text, bool lines = false) {
    std::string shown;
    for (const char32_t character : text) {
        char escape[16] = "\\\\";
        if (character >= kNoCharacter) {
            snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned>(character - kNoCharacter));
        } else if (!IsVisible(character) && !(lines && character == U'\n')) {
            snprintf(escape, sizeof escape, "\\u{%X}", static_cast<unsigned>(character));
        } else if (character != U'\\') {
            shown += ToUtf8(character);
            continue;
        }
        shown += escape;
    }
    return shown;
}

}  // namespace

std::string ShowUtf8(View bytes) { return Escape(ReadUtf8(bytes)); }

std::string ShowAscii(View bytes) { return Escape(ReadAscii(bytes)); }

// Fewer bytes are text too often by chance.
std::optional<std::string> ReadOctetsAsText(View bytes) {
    static constexpr size_t kFewest = 6;
    if (bytes.size() < kFewest) return std::nullopt;
    std::u32string text = ReadUtf8(bytes);
    for (const char32_t character : text) {
        const bool blank = character == U'\n' || character == U'\r' || character == U'\t';
        if (character >= kNoCharacter || (!IsVisible(character) && !blank)) return std::nullopt;
    }
    // Line ends of any system.
    std::erase(text, U'\r');
    return Escape(text, true);
}

// Nothing for types that aren't text, and for lengths that don't go with the type.
std::optional<std::string> ToText(uint32_t type, View bytes) {
    static constexpr struct {
        uint32_t type;
        size_t unit;
        Reader read;
    } kTypes[] = {
        {Asn1KindUTF8String, 1, ReadUtf8},       {Asn1KindNumericString, 1, ReadAscii},
        {Asn1KindPrintableString, 1, ReadAscii}, {Asn1KindTeletexString, 1, ReadLatin1},
        {Asn1KindIA5String, 1, ReadAscii},       {Asn1KindVisibleString, 1, ReadAscii},
        {Asn1KindUTCTime, 1, ReadAscii},         {Asn1KindGeneralizedTime, 1, ReadAscii},
        {Asn1KindBMPString, 2, ReadBmp},         {Asn1KindUniversalString, 4, ReadUniversal},
    };
    for (const auto& row : kTypes) {
        if (row.type == type && bytes.size() % row.unit == 0) return Escape(row.read(bytes));
    }
    return std::nullopt;
}

std::string DescribeFlags(View bits, Names names) {
    std::string text;
    for (size_t bit = 0; bit < 8 * bits.size(); ++bit) {
        if ((bits[bit / 8] & 0x80u >> bit % 8) == 0) continue;
        if (!text.empty()) text += ", ";
        text += bit < names.size() && names[bit] != nullptr ? names[bit] : "bit " + std::to_string(bit);
    }
    return text.empty() ? "none" : text;
}

std::string DescribeNumber(int64_t number, Names names) {
    const bool known =
        number >= 0 && number < static_cast<int64_t>(names.size()) && names[static_cast<size_t>(number)] != nullptr;
    return std::to_string(number) + (known ? std::string(" ") + names[static_cast<size_t>(number)] : "");
}

}  // namespace inspect
