// Readings of single values: times, addresses, timestamps of certificate transparency, SHA-256.
#ifdef _WIN32
#include <ws2tcpip.h>
#else
#include <arpa/inet.h>
#endif

#include <algorithm>
#include <cstdio>
#include <ctime>

#include "common/platform.h"
#include "common/times.h"
#include "walk.h"

namespace inspect {

// --- Times ---

namespace {

constexpr const char* kBeyond = "beyond the years that the library converts";

std::string ToText(const LibraryPreciseTime& time) {
    char text[80], fraction[24] = "";
    const uint32_t microseconds = time.millisecond * 1000 + time.microsecond;
    if (microseconds != 0) snprintf(fraction, sizeof fraction, ".%06u", microseconds);
    snprintf(text, sizeof text, "%04u-%02u-%02uT%02u:%02u:%02u%sZ", time.year, time.month, time.day, time.hour,
             time.minute, time.second, fraction);
    return text;
}

bool IsPlainTime(View content, size_t digits) {
    const auto isDigit = [](uint8_t byte) { return byte >= '0' && byte <= '9'; };
    return content.size() == digits + 1 && content.back() == 'Z' &&
           std::all_of(content.begin(), content.end() - 1, isDigit);
}

}  // namespace

std::optional<std::string> ReadTime(uint32_t kind, View content, std::string& why) {
    Asn1Value value = {kind, Size(content), const_cast<uint8_t*>(content.data())};
    LibraryPreciseTime precise = {};
    Status status = StatusOk;
    if (kind == Asn1KindGeneralizedTime) {
        status = tlvforge::GeneralizedTimeToPreciseTime(&value, &precise);
    } else {
        LibraryTime time = {};
        const Asn1Choice choice = {0, &value};
        status = tlvforge::Asn1TimeToLibraryTime(&choice, &time);
        precise = {time.year, time.month, time.day, time.hour, time.minute, time.second, 0, 0};
    }
    if (status == StatusOk) return ToText(precise);
    const bool plain = IsPlainTime(content, kind == Asn1KindGeneralizedTime ? 14 : 12);
    why = status == StatusBadTime && plain ? kBeyond : "in a form that the library doesn't convert";
    return std::nullopt;
}

// --- Addresses ---

std::optional<std::string> DescribeAddress(View bytes) {
    const auto describe = [](View address) -> std::string {
        char text[INET6_ADDRSTRLEN];
        return inet_ntop(address.size() == 4 ? AF_INET : AF_INET6, address.data(), text, sizeof text);
    };
    const size_t size = bytes.size();
    if (size == 4 || size == 16) return describe(bytes);
    if (size != 8 && size != 32) return std::nullopt;
    return describe(bytes.first(size / 2)) + "/" + describe(bytes.last(size / 2));
}

// --- Signed certificate timestamps (RFC 6962, 3.2 and 3.3) ---

namespace {

// Big-endian numbers and vectors with their length before them; nothing after the first that isn't there.
class Reader {
public:
    explicit Reader(View bytes) : rest_(bytes) {}

    bool IsGood() const { return good_; }
    View Rest() const { return rest_; }

    View Take(uint64_t size) {
        good_ = good_ && size <= rest_.size();
        if (!good_) return {};
        const View taken = rest_.first(static_cast<size_t>(size));
        rest_ = rest_.subspan(taken.size());
        return taken;
    }

    uint64_t Number(size_t size) {
        uint64_t number = 0;
        for (const uint8_t byte : Take(size)) number = number << 8 | byte;
        return number;
    }

    View Vector() { return Take(Number(2)); }

private:
    View rest_;
    bool good_ = true;
};

std::string DescribeMoment(uint64_t milliseconds) {
    const time_t seconds = static_cast<time_t>(milliseconds / 1000);
    struct tm parts = {};
    if (!tlvforge::SplitUtc(seconds, &parts) || parts.tm_year > 8099) return std::to_string(milliseconds) + " ms";
    char text[64], fraction[16];
    strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
    snprintf(fraction, sizeof fraction, ".%03uZ", static_cast<unsigned>(milliseconds % 1000));
    return std::string(text) + fraction;
}

void ShowTimestamp(Outline& outline, View timestamp) {
    static constexpr const char* kHashes[] = {"none", "md5", "sha1", "sha224", "sha256", "sha384", "sha512"};
    static constexpr const char* kSignatures[] = {"anonymous", "rsa", "dsa", "ecdsa"};
    Reader reader(timestamp);
    const uint64_t version = reader.Number(1);
    const View log = reader.Take(32);
    const uint64_t moment = reader.Number(8);
    const View extensions = reader.Vector();
    const uint64_t hash = reader.Number(1), algorithm = reader.Number(1);
    const View signature = reader.Vector();
    if (!reader.IsGood() || version != 0 || !reader.Rest().empty()) return outline.Hex("Timestamp", timestamp);
    const Outline::Section section = outline.Open("Timestamp");
    outline.Line("Version", "1");
    outline.Hex("Log", log);
    outline.Line("Time", DescribeMoment(moment));
    if (!extensions.empty()) outline.Hex("Extensions", extensions);
    outline.Line("Hash algorithm", DescribeNumber(static_cast<int64_t>(hash), kHashes));
    outline.Line("Signature algorithm", DescribeNumber(static_cast<int64_t>(algorithm), kSignatures));
    outline.Hex("Signature", signature);
}

}  // namespace

void ShowTimestamps(Outline& outline, View list, const std::string& label) {
    Reader outer(list);
    Reader timestamps(outer.Vector());
    if (!outer.IsGood() || !outer.Rest().empty()) return outline.Hex(label, list);
    const Outline::Section section = outline.Open(label);
    while (!timestamps.Rest().empty()) {
        const View before = timestamps.Rest(), timestamp = timestamps.Vector();
        if (!timestamps.IsGood()) return outline.Hex("no timestamp", before);
        ShowTimestamp(outline, timestamp);
    }
}

// --- SHA-256 (FIPS 180-4, 6.2) ---

namespace {

constexpr uint32_t kRounds[64] = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

uint32_t Rotate(uint32_t word, int count) { return word >> count | word << (32 - count); }

void HashBlock(const uint8_t* block, uint32_t (&state)[8]) {
    uint32_t words[64];
    for (int i = 0; i < 16; ++i) {
        const uint8_t* const at = block + 4 * i;
        words[i] = uint32_t{at[0]} << 24 | uint32_t{at[1]} << 16 | uint32_t{at[2]} << 8 | at[3];
    }
    for (int i = 16; i < 64; ++i) {
        const uint32_t early = words[i - 15], late = words[i - 2];
        words[i] = words[i - 16] + words[i - 7] + (Rotate(early, 7) ^ Rotate(early, 18) ^ early >> 3) +
                   (Rotate(late, 17) ^ Rotate(late, 19) ^ late >> 10);
    }
    uint32_t s[8];
    std::copy(std::begin(state), std::end(state), s);
    for (int i = 0; i < 64; ++i) {
        const uint32_t first = s[7] + (Rotate(s[4], 6) ^ Rotate(s[4], 11) ^ Rotate(s[4], 25)) +
                               ((s[4] & s[5]) ^ (~s[4] & s[6])) + kRounds[i] + words[i];
        const uint32_t second =
            (Rotate(s[0], 2) ^ Rotate(s[0], 13) ^ Rotate(s[0], 22)) + ((s[0] & s[1]) ^ (s[0] & s[2]) ^ (s[1] & s[2]));
        std::copy_backward(s, s + 7, s + 8);
        s[4] += first;
        s[0] = first + second;
    }
    for (int i = 0; i < 8; ++i) state[i] += s[i];
}

}  // namespace

void HashSha256(View bytes, uint8_t (&digest)[32]) {
    uint32_t state[8] = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                         0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    const uint64_t bits = uint64_t{bytes.size()} * 8;
    for (; bytes.size() >= 64; bytes = bytes.subspan(64)) HashBlock(bytes.data(), state);
    uint8_t last[128] = {};
    std::copy(bytes.begin(), bytes.end(), last);
    last[bytes.size()] = 0x80;
    const size_t size = bytes.size() < 56 ? 64 : 128;
    for (size_t i = 0; i < 8; ++i) last[size - 1 - i] = static_cast<uint8_t>(bits >> 8 * i);
    for (size_t at = 0; at < size; at += 64) HashBlock(last + at, state);
    for (size_t i = 0; i < 32; ++i) digest[i] = static_cast<uint8_t>(state[i / 4] >> (24 - 8 * (i % 4)));
}

}  // namespace inspect
