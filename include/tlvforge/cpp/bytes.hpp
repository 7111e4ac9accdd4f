/* Bytes, texts and object identifiers as arguments and results. */
#ifndef TLVFORGE_CPP_BYTES_HPP
#define TLVFORGE_CPP_BYTES_HPP

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iosfwd>
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "tlvforge/tlvforge.h"

namespace tlvforge {

/*
 * The types of these headers stand in a namespace of their own, so that a call of Get finds the function of tlvforge or
 * that of tlvforge::nothrow by what the program uses and never by its arguments. Both namespaces have them.
 */
namespace types {}
using namespace types;
namespace nothrow {
using namespace types;
}

/* What functions that write bytes are read into, unless the caller asks for another container. */
namespace types {
using Bytes = std::vector<uint8_t>;
}

namespace detail {

template <class T, class = void>
inline constexpr bool kIsByteRange = false;
template <class T>
inline constexpr bool kIsByteRange<
    T, std::void_t<decltype(std::data(std::declval<const T&>()) + 1), decltype(std::size(std::declval<const T&>()))>> =
    sizeof(*std::data(std::declval<const T&>())) == 1 && !std::is_convertible_v<const T&, const char*>;

inline constexpr uint8_t kNoBytes[1] = {};

}  // namespace detail

namespace types {

/**
 * ByteView is what a call takes for a pointer and a length: any container or array of one-byte elements, or a text
 * without its terminating zero. It lends the bytes. Null, which is left out of a document, is nullptr; an empty
 * container is a value of length 0.
 */
class ByteView {
public:
    constexpr ByteView(std::nullptr_t = nullptr) noexcept {}
    constexpr ByteView(const uint8_t* data, size_t size) noexcept : data_(data), size_(size) {}
    ByteView(const char* text) noexcept
        : data_(reinterpret_cast<const uint8_t*>(text)), size_(text ? strlen(text) : 0) {}
    template <class Range, std::enable_if_t<detail::kIsByteRange<Range>, int> = 0>
    ByteView(const Range& range) noexcept
        : data_(std::size(range) == 0 ? detail::kNoBytes : reinterpret_cast<const uint8_t*>(std::data(range))),
          size_(std::size(range)) {}

    constexpr const uint8_t* data() const noexcept { return data_; }
    constexpr size_t size() const noexcept { return size_; }
    constexpr bool empty() const noexcept { return size_ == 0; }
    constexpr const uint8_t* begin() const noexcept { return data_; }
    constexpr const uint8_t* end() const noexcept { return data_ + size_; }
    constexpr uint8_t operator[](size_t index) const noexcept { return data_[index]; }

    // Bytes of its own, and the bytes as characters.
    explicit operator Bytes() const { return Bytes(begin(), end()); }
    std::string_view text() const noexcept { return {reinterpret_cast<const char*>(data_), size_}; }

    friend bool operator==(ByteView left, ByteView right) noexcept { return left.text() == right.text(); }
    friend bool operator!=(ByteView left, ByteView right) noexcept { return left.text() != right.text(); }

private:
    const uint8_t* data_ = nullptr;
    size_t size_ = 0;
};

}  // namespace types

/** ToHex writes bytes as upper-case hexadecimal digits. */
inline std::string ToHex(ByteView bytes) {
    std::string text;
    text.reserve(2 * bytes.size());
    for (const uint8_t byte : bytes) {
        text += "0123456789ABCDEF"[byte >> 4];
        text += "0123456789ABCDEF"[byte & 15];
    }
    return text;
}

namespace nothrow {
using tlvforge::ToHex;
}

namespace types {

/**
 * An object identifier, held in the length-prefixed form of the interface.
 *
 *     constexpr Oid keyUsage("2.5.29.15");
 *
 * A text that is no object identifier doesn't compile: where the object is constexpr, and in C++20, if the compiler has
 * consteval, everywhere. Without that it ends the program, as a failed assertion does. Parsed reads texts that aren't
 * known before the program runs.
 */
class Oid {
public:
    // The empty identifier, one byte 0.
    constexpr Oid() noexcept = default;

#ifdef __cpp_consteval
    consteval
#else
    constexpr
#endif
        explicit Oid(const char* dotted)
        : Oid(Parsed(dotted)) {
        if (empty()) NotAnObjectIdentifier();
    }

    // Parsed reads dotted decimal text; the result is empty for a text that isn't an object identifier.
    static constexpr Oid Parsed(std::string_view dotted) noexcept;

    // Prefixed takes the length-prefixed form; the result is empty unless the prefix says how many bytes follow.
    static constexpr Oid Prefixed(const uint8_t* bytes, size_t size) noexcept {
        Oid oid;
        if (size == 0 || size != size_t{1} + bytes[0]) return oid;
        for (size_t i = 0; i < size; ++i) oid.bytes_[i] = bytes[i];
        return oid;
    }
    static constexpr Oid Prefixed(ByteView bytes) noexcept { return Prefixed(bytes.data(), bytes.size()); }

    // The length-prefixed form, as calls take it, and the content bytes of the DER encoding alone.
    constexpr const uint8_t* data() const noexcept { return bytes_; }
    constexpr size_t size() const noexcept { return size_t{1} + bytes_[0]; }
    constexpr ByteView content() const noexcept { return {bytes_ + 1, bytes_[0]}; }
    constexpr bool empty() const noexcept { return bytes_[0] == 0; }

    // Dotted decimal text, of arcs of any size; empty for the empty identifier.
    std::string text() const;

    friend constexpr bool operator==(const Oid& left, const Oid& right) noexcept { return left.Compare(right) == 0; }
    friend constexpr bool operator!=(const Oid& left, const Oid& right) noexcept { return left.Compare(right) != 0; }
    friend constexpr bool operator<(const Oid& left, const Oid& right) noexcept { return left.Compare(right) < 0; }

    template <class Traits>
    friend std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out, const Oid& oid) {
        return out << oid.text().c_str();
    }

private:
    // Not constexpr, so that a constant that comes here doesn't compile.
    [[noreturn]] static void NotAnObjectIdentifier() noexcept { std::abort(); }

    constexpr int Compare(const Oid& other) const noexcept {
        for (size_t i = 0; i < size(); ++i) {
            if (bytes_[i] != other.bytes_[i]) return bytes_[i] < other.bytes_[i] ? -1 : 1;
        }
        return 0;
    }

    constexpr bool Append(uint64_t arc) noexcept {
        size_t groups = 1;
        while (groups < 10 && arc >> 7 * groups != 0) ++groups;
        if (groups > size_t{255} - bytes_[0]) return false;
        for (size_t i = groups; i-- > 0;) {
            bytes_[++bytes_[0]] = static_cast<uint8_t>((arc >> 7 * i & 0x7F) | (i > 0 ? 0x80 : 0));
        }
        return true;
    }

    uint8_t bytes_[256] = {};
};

constexpr Oid Oid::Parsed(std::string_view dotted) noexcept {
    Oid oid;
    uint64_t first = 0;
    size_t at = 0;
    for (size_t index = 0;; ++index) {
        uint64_t arc = 0;
        const size_t begin = at;
        for (; at < dotted.size() && dotted[at] >= '0' && dotted[at] <= '9'; ++at) {
            if (arc > (UINT64_MAX - 89) / 10) return {};
            arc = arc * 10 + static_cast<uint64_t>(dotted[at] - '0');
        }
        if (at == begin || (at > begin + 1 && dotted[begin] == '0')) return {};
        const bool last = at == dotted.size();
        if (!last && dotted[at++] != '.') return {};
        if (index == 0) {
            first = arc;
            if (first > 2 || last) return {};
            continue;
        }
        if (index == 1 && first < 2 && arc > 39) return {};
        if (!oid.Append(index == 1 ? 40 * first + arc : arc)) return {};
        if (last) return oid;
    }
}

inline std::string Oid::text() const {
    std::string text;
    std::string digits;  // decimal ones of an arc, the lowest first: arcs can be larger than any integer
    for (const uint8_t byte : content()) {
        const bool last = (byte & 0x80) == 0;
        int carry = byte & 0x7F;
        if (last && text.empty()) {
            // The first number on the wire is that of two arcs: 40 times the first, which is at most 2, and the second.
            const int first = digits.empty() && carry < 80 ? carry / 40 : 2;
            text = std::to_string(first);
            carry -= 40 * first;
        }
        for (char& digit : digits) {
            carry += (digit - '0') * 128;
            const int low = (carry % 10 + 10) % 10;
            digit = static_cast<char>('0' + low);
            carry = (carry - low) / 10;
        }
        for (; carry != 0; carry /= 10) digits += static_cast<char>('0' + carry % 10);
        if (!last) continue;
        text += '.';
        text.append(digits.empty() ? "0" : std::string(digits.rbegin(), digits.rend()));
        digits.clear();
    }
    return text;
}

}  // namespace types
}  // namespace tlvforge

#endif
