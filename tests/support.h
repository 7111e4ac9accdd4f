// What the tests share: bytes from hex, owners of the library's objects, and the output-buffer rule checked on the way.
#pragma once

#include <gtest/gtest.h>

#include <concepts>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tlvforge/tlvforge.h"
#include "walk.h"

namespace support {

using Bytes = std::vector<uint8_t>;
using Numbers = std::vector<uint32_t>;

// "BadArgument" for StatusBadArgument; the number of one that has no name.
std::string StatusName(Status status);

// "30 03 02 01 05"; anything but hex digits is skipped.
Bytes Hex(std::string_view text);
std::string ToHex(const Bytes& bytes);
inline Bytes Text(std::string_view text) { return Bytes(text.begin(), text.end()); }

// Length-prefixed form of dotted text.
Bytes OidOf(const char* dotted);

// One element: identifier octets as given, minimal length, content.
Bytes Tlv(uint8_t identifier, const Bytes& content);
Bytes operator+(const Bytes& left, const Bytes& right);

template <class Container>
uint32_t Size(const Container& container) {
    return static_cast<uint32_t>(container.size());
}
inline Bytes OidTlv(const std::string& dotted) { return Bytes{6} + OidOf(dotted.c_str()); }

// A Name of one UTF8String common name; an Extension; an Attribute with the elements of its SET.
inline Bytes NameTlv(const std::string& text) {
    return Tlv(0x30, Tlv(0x31, Tlv(0x30, OidTlv("2.5.4.3") + Tlv(0x0C, Text(text)))));
}
inline Bytes ExtensionTlv(const char* oid, const Bytes& value) { return Tlv(0x30, OidTlv(oid) + Tlv(4, value)); }
inline Bytes AttributeTlv(const std::string& oid, const Bytes& values) {
    return Tlv(0x30, OidTlv(oid) + Tlv(0x31, values));
}

// One call or value, and what it has to be: StatusOk if nothing is said.
struct Row {
    Row(auto value, auto wanted) : actual(static_cast<uint32_t>(value)), expected(static_cast<uint32_t>(wanted)) {}
    Row(std::integral auto status) : Row(status, StatusOk) {}
    uint32_t actual, expected;
};
void CheckRows(const char* file, int line, const char* text, std::initializer_list<Row> rows,
               std::optional<Status> ofAll = {});

// CHECK({call}, {value, 7}, {call, StatusAbsent}): calls and values, looked at one after the other.
#define CHECK(...) support::CheckRows(__FILE__, __LINE__, #__VA_ARGS__, {__VA_ARGS__})
// EXPECT_STATUS(StatusAbsent, call, call): calls, one after the other, that all give the same.
#define EXPECT_STATUS(status, ...) support::CheckRows(__FILE__, __LINE__, #__VA_ARGS__, {__VA_ARGS__}, status)

template <class T, auto Free>
using Owned = walk::Owned<Free>;

// Owns what function(arguments..., &object) gives; null, with a test failure, if the call fails.
template <auto Free, class Function, class... Arguments>
walk::Owned<Free> Make(Function function, Arguments... arguments) {
    typename walk::Owned<Free>::pointer object = nullptr;
    EXPECT_EQ(function(arguments..., &object), StatusOk);
    return walk::Owned<Free>(object);
}
template <auto Free, class Function>
walk::Owned<Free> Decoded(Function decode, const Bytes& in) {
    return Make<Free>(decode, in.data(), Size(in));
}
inline Status AddExtension(X509Extensions list, const char* oid, const Bytes& value) {
    return AddX509ExtensionsExtension(list, OidOf(oid).data(), 0, value.data(), Size(value));
}
inline auto NameOf(const std::string& text) { return Decoded<FreeX509Name>(DecodeX509Name, NameTlv(text)); }

// Fetches the result of function(arguments..., buffer, &length), and checks the output-buffer rule on the way: the size
// query, a buffer that is one byte short (refused, length stored, buffer untouched) and one of the exact size give the
// same length.
template <class Function, class... Arguments>
Bytes Fetch(Function&& function, Arguments... arguments) {
    const auto call = [&](uint8_t* buffer, uint32_t* length) { return function(arguments..., buffer, length); };
    uint32_t needed = 0;
    const Status asked = call(nullptr, &needed);
    EXPECT_EQ(asked, StatusOk) << "size query";
    if (asked != StatusOk) return {};
    Bytes bytes;
    for (const uint32_t missing : {std::min(needed, 1u), 0u}) {
        bytes.assign(needed + 1, 0xA5);
        uint32_t length = needed - missing;
        EXPECT_EQ(call(bytes.data(), &length), missing != 0 ? StatusBufferTooSmall : StatusOk) << missing << " short";
        EXPECT_EQ(length, needed) << missing << " short";
        EXPECT_TRUE(missing != 0 ? bytes == Bytes(needed + 1, 0xA5) : bytes.back() == 0xA5) << missing << " short";
    }
    bytes.pop_back();
    return bytes;
}

// Takes what a cell of a tree holds out of it while it lives.
struct Hole {
    Hole(void** cell) : at(cell), taken(std::exchange(*cell, nullptr)) {}
    Hole(const Hole&) = delete;
    ~Hole() { *at = taken; }
    void **const at, *const taken;
};

// Result of an encoder that knows no capacity, in hex: it is measured, then written with a length of 0 on entry.
template <class Function, class... Arguments>
std::string InFull(Function encode, Arguments... arguments) {
    uint32_t length = 0;
    EXPECT_EQ(encode(arguments..., nullptr, &length), StatusOk);
    Bytes out(length);
    length = 0;
    EXPECT_EQ(encode(arguments..., out.data(), &length) + encode(arguments..., out.data(), nullptr), StatusBadArgument);
    EXPECT_EQ(length, Size(out));
    return ToHex(out);
}

// What the systems name differently. A null zone stands for none; the name of a device that takes everything; an
// exported function by its name, null without one.
void SetZone(const char* zone);
std::string NullDevice();
const void* Exported(const char* name);

// All files of a folder of the corpus of real documents, sorted; empty when the corpus isn't there.
struct NamedBytes {
    std::string name;
    Bytes bytes;
};
std::vector<NamedBytes> Corpus(const std::string& folder);
extern const char* const kCorpus;  // the folder
bool HasCorpus();

// For tests that have nothing to do without the corpus: says so.
#define SKIP_WITHOUT_CORPUS()  \
    if (!support::HasCorpus()) \
    GTEST_SKIP() << "there are no real documents in " << support::kCorpus << " (TLVFORGE_CORPUS)"

}  // namespace support
