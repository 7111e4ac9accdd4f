// What the tests share: bytes from hex, owners of the library's objects, and the output-buffer rule checked on the way.
#pragma once

#include <gtest/gtest.h>

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

// "30 03 02 01 05"; anything but hex digits is skipped.
Bytes Hex(std::string_view text);
std::string ToHex(const Bytes& bytes);
Bytes Text(std::string_view text);

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

// Calls made one after the other, and values looked at between them, each with what it must give.
inline void Check(std::initializer_list<std::pair<uint32_t, uint32_t>> calls) {
    for (const auto& call : calls) EXPECT_EQ(call.first, call.second) << "call " << &call - calls.begin();
}

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

// Fetches the result of function(arguments..., buffer, &length), and checks the output-buffer rule on the way: the size
// query, a buffer that is one byte short (49, length stored, buffer untouched) and one of the exact size give the same
// length.
template <class Function, class... Arguments>
Bytes Fetch(Function&& function, Arguments... arguments) {
    const auto call = [&](uint8_t* buffer, uint32_t* length) { return function(arguments..., buffer, length); };
    uint32_t needed = 0;
    const Status asked = call(nullptr, &needed);
    EXPECT_EQ(asked, StatusOk) << "size query";
    if (asked != StatusOk) return {};
    if (needed > 0) {
        Bytes small(needed, 0xA5);
        uint32_t length = needed - 1;
        EXPECT_EQ(call(small.data(), &length), StatusBufferTooSmall) << "one byte short";
        EXPECT_EQ(length, needed) << "one byte short";
        EXPECT_EQ(small, Bytes(needed, 0xA5)) << "one byte short";
    }
    Bytes exact(needed + 1, 0xA5);
    uint32_t length = needed;
    EXPECT_EQ(call(exact.data(), &length), StatusOk) << "exact size";
    EXPECT_EQ(length, needed) << "exact size";
    EXPECT_EQ(exact.back(), 0xA5) << "written past the length";
    exact.resize(needed);
    return exact;
}

// All files of a folder of the corpus of real documents, sorted; empty when the corpus isn't there.
struct NamedBytes {
    std::string name;
    Bytes bytes;
};
std::vector<NamedBytes> Corpus(const std::string& folder);
bool HasCorpus();

// For tests that have nothing to do without the corpus: says so.
#define SKIP_WITHOUT_CORPUS() \
    if (!support::HasCorpus()) GTEST_SKIP() << "no corpus of real documents beside the project"

}  // namespace support
