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

namespace support {

using Bytes = std::vector<uint8_t>;

// "30 03 02 01 05"; anything but hex digits is skipped.
Bytes Hex(std::string_view text);
std::string ToHex(const Bytes& bytes);
Bytes Text(std::string_view text);

// Length-prefixed form of dotted text.
Bytes OidOf(const char* dotted);

// One element: identifier octets as given, minimal length, content.
Bytes Tlv(uint8_t identifier, const Bytes& content);
Bytes operator+(const Bytes& left, const Bytes& right);

template <class T, auto Free>
struct Deleter {
    void operator()(T* object) const { (void)Free(object); }
};

template <class T, auto Free>
using Owned = std::unique_ptr<T, Deleter<T, Free>>;

// Calls create(&object) and owns what it gives; null, with a test failure, if the call fails.
template <class T, auto Free, class Create>
Owned<T, Free> Make(Create&& create) {
    T* object = nullptr;
    EXPECT_EQ(create(&object), StatusOk);
    return Owned<T, Free>(object);
}

// Fetches the result of call(buffer, &length), and checks the output-buffer rule on the way: the size query, a buffer
// that is one byte short (49, length stored, buffer untouched) and one of the exact size give the same length.
template <class Call>
Bytes Fetch(Call&& call) {
    uint32_t needed = 0;
    const Status asked = call(static_cast<uint8_t*>(nullptr), &needed);
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
