// What the tests against OpenSSL share: its objects owned and read, what both sides read in one form, and the
// comparison.
#pragma once

#include <openssl/x509v3.h>

#include "support.h"

namespace peer {

using namespace support;
using walk::kOut;

// Nothing for null.
Bytes DerOf(auto* value, auto write) {
    Bytes der(value == nullptr ? 0 : static_cast<size_t>(write(value, nullptr)));
    uint8_t* at = der.data();
    if (value != nullptr) write(value, &at);
    return der;
}
inline Bytes ContentOf(const ASN1_STRING* of) { return of ? Bytes(of->data, of->data + of->length) : Bytes(); }
// Null for what OpenSSL refuses.
template <auto Free>
walk::Owned<Free> FromDer(auto decode, const Bytes& der) {
    const uint8_t* at = der.data();
    return walk::Owned<Free>(decode(nullptr, &at, static_cast<long>(der.size())));
}

// The members of a list one after the other, as two functions or a stack return them.
Bytes Joined(auto* of, auto count, auto get, auto write) {
    Bytes der;
    for (int i = 0; i < count(of); ++i) der = der + DerOf(get(of, i), write);
    return der;
}
template <class T>
Bytes Joined(const void* stack, int (*write)(const T*, uint8_t**)) {
    const auto get = [](auto* of, int i) { return static_cast<const T*>(OPENSSL_sk_value(of, i)); };
    return Joined(static_cast<const OPENSSL_STACK*>(stack), OPENSSL_sk_num, get, write);
}

std::string Shown(const auto& value) { return testing::PrintToString(value); }
inline std::string Shown(const Bytes& bytes) { return ToHex(bytes); }

// What a getter of this library returns for each walk::kOut.
auto Outputs(auto... arguments) {
    const auto given = walk::Sure(walk::Get(arguments...));
    std::array<Bytes, std::tuple_size_v<std::decay_t<decltype(given)>>> outputs;
    std::transform(given.begin(), given.end(), outputs.begin(),
                   [](const walk::Bytes& output) { return Bytes(output.data(), output.end()); });
    return outputs;
}

// The DER of what getters return in parts.
inline Bytes TlvOr(const Bytes& content, uint8_t tag) { return content.empty() ? content : Tlv(tag, content); }
Bytes OidTlvOf(auto... arguments) { return Bytes{6} + Fetch(arguments...); }
Bytes AlgorithmOf(auto... arguments) {
    const auto [oid, parameters] = Outputs(arguments..., kOut, kOut);
    return Tlv(48, Bytes{6} + oid + parameters);
}
inline Bytes GeneralNameOf(const X509GeneralName* name) {
    uint32_t kind = 0;
    if (name == nullptr) return {};
    const Bytes value = Fetch(GetX509GeneralNameValue, name, &kind);
    return Tlv(kind == X509GeneralNameDirectoryName ? 0xA4 : uint8_t(0x80 + kind), value);
}
inline Bytes NameOf(const X509Name* name) { return Fetch(EncodeX509Name, walk::RebuildName(name).get()); }
inline Bytes ExtensionsOf(X509Extensions list) {
    Bytes extensions;
    if (list == nullptr) return extensions;
    walk::Each(GetX509ExtensionsExtensionsCount, list, [&](uint32_t i) {
        uint32_t critical = 9;
        const auto [oid, value] = Outputs(GetX509ExtensionsExtension, list, i, kOut, &critical, kOut);
        const Bytes flag = critical == 0 ? Bytes() : Bytes{1, 1, 0xFF};
        extensions = extensions + Tlv(48, Bytes{6} + oid + flag + Tlv(4, value));
    });
    return extensions;
}
Bytes ExtensionsOf(auto get, auto... of) { return ExtensionsOf(walk::Lent(get, of...)); }
// Maybe a signed part, then an algorithm and the bits that belong to it.
Bytes WithBits(auto getAlgorithm, auto getBits, auto* of, const Bytes& part = {}) {
    return Tlv(48, part + AlgorithmOf(getAlgorithm, of) + Tlv(3, Bytes{0} + Fetch(getBits, of)));
}
Bytes AttributesOf(auto get, auto* of) {
    Bytes attributes;
    const RsaAttributes list = walk::Lent(get, of);
    walk::Each(GetRsaAttributesAttributesCount, list, [&](uint32_t i) {
        Bytes values;
        walk::Each([=](auto in, uint32_t* n) { return GetRsaAttributesAttributeValuesCount(in, i, n); }, list,
                   [&](uint32_t j) { values = values + Fetch(GetRsaAttributesAttributeValue, list, i, j); });
        attributes = attributes + Tlv(48, OidTlvOf(GetRsaAttributesAttributeOid, list, i) + Tlv(49, values));
    });
    return attributes;
}

// Field against field of documents that both sides have read.
class Comparison {
public:
    // A field that is read differently on purpose.
    struct Intended {
        std::string document, field, reason;
        bool found = false;
    };
    explicit Comparison(int documents, std::vector<Intended> rows = {})
        : left_(documents), intended_(std::move(rows)) {}
    ~Comparison() {
        EXPECT_LE(left_, 0) << "documents are missing";
        for (const Intended& row : intended_) EXPECT_TRUE(row.found) << row.document << " " << row.field;
    }
    void Begin(const std::string& document) { --left_, document_ = document; }
    bool Same(const std::string& field, const auto& ours, const auto& theirs) {
        if (ours == theirs) return true;
        for (Intended& row : intended_)
            if (row.document == document_ && row.field == field) return !(row.found = true);
        ADD_FAILURE() << document_ << " " << field << ": " << Shown(ours) << "\nOpenSSL: " << Shown(theirs);
        return false;
    }

    // With the status of the getter, which takes no years above 2100.
    void Time(const std::string& field, Status status, const auto& ours, const ASN1_TIME* theirs) {
        tm time = {};
        if (theirs != nullptr) ASN1_TIME_to_tm(theirs, &time);
        const int year = time.tm_year + 1900;
        Same(field, status, theirs == nullptr ? StatusAbsent : year > 2100 ? StatusBadTime : StatusOk);
        if (status == StatusOk)
            Same(field, std::vector<int>(&ours.year, &ours.second + 1),
                 std::vector<int>{year, time.tm_mon + 1, time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec});
    }

private:
    int left_;
    std::vector<Intended> intended_;
    std::string document_;
};

// Null for what this library refuses.
template <auto Free>
auto Reader(auto decode) {
    return [=](const Bytes& der) { return walk::Make<Free>(decode, der.data(), Size(der)); };
}

}  // namespace peer
