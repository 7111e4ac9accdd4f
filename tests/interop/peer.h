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

// The elements inside of one, for fields that OpenSSL has no getter for.
inline void FreeElements(STACK_OF(ASN1_TYPE) * elements) { sk_ASN1_TYPE_pop_free(elements, ASN1_TYPE_free); }
inline std::vector<Bytes> Elements(Bytes outer) {
    std::vector<Bytes> elements;
    if (outer.empty()) return elements;
    outer[0] = 0x30;
    const auto owner = FromDer<FreeElements>(d2i_ASN1_SEQUENCE_ANY, outer);
    for (int i = 0; i < sk_ASN1_TYPE_num(owner.get()); ++i) {
        elements.push_back(DerOf(sk_ASN1_TYPE_value(owner.get(), i), i2d_ASN1_TYPE));
    }
    return elements;
}

// The one at an index, nothing behind the last one.
inline Bytes At(const std::vector<Bytes>& list, size_t index) { return index < list.size() ? list[index] : Bytes(); }

// Where two values differ first.
std::string Difference(const auto& ours, const auto& theirs) {
    return testing::PrintToString(ours) + "\nOpenSSL: " + testing::PrintToString(theirs);
}
inline std::string Difference(const Bytes& ours, const Bytes& theirs) {
    const auto at = std::mismatch(ours.begin(), ours.end(), theirs.begin(), theirs.end()).first - ours.begin();
    const auto rest = [at](const Bytes& bytes) {
        return ToHex(Bytes(bytes.begin() + at, std::min(bytes.begin() + at + 16, bytes.end())));
    };
    return "from byte " + std::to_string(at) + " of " + std::to_string(ours.size()) + " " + rest(ours) +
           "\nOpenSSL: of " + std::to_string(theirs.size()) + " " + rest(theirs);
}
inline std::string Difference(const std::vector<Bytes>& ours, const std::vector<Bytes>& theirs) {
    const auto at = std::mismatch(ours.begin(), ours.end(), theirs.begin(), theirs.end()).first - ours.begin();
    return "part " + std::to_string(at) + ", " + Difference(At(ours, size_t(at)), At(theirs, size_t(at)));
}

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
Bytes ExtensionsOf(auto get, auto* of) {
    X509Extensions list = nullptr;
    EXPECT_STATUS(StatusOk, get(of, &list));
    return ExtensionsOf(list);
}
// A signed part, its algorithm and signature.
Bytes SignedOf(auto getPart, auto getAlgorithm, auto getSignature, auto* of) {
    return Tlv(48, Fetch(getPart, of) + AlgorithmOf(getAlgorithm, of) + Tlv(3, Bytes{0} + Fetch(getSignature, of)));
}
Bytes AttributesOf(auto get, auto* of) {
    Bytes attributes;
    RsaAttributes list = nullptr;
    EXPECT_STATUS(StatusOk, get(of, &list));
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
        ADD_FAILURE() << document_ << " " << field << ": " << Difference(ours, theirs);
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

// All documents of a folder, as both have read them.
template <auto Free, auto FreeTheirs>
void CompareFolder(Comparison& both, const char* folder, auto decode, auto d2i, auto compare) {
    for (const auto& [name, bytes] : Corpus(folder)) {
        SCOPED_TRACE(name);
        both.Begin(name);
        const auto ours = walk::Make<Free>(decode, bytes.data(), Size(bytes));
        const auto theirs = FromDer<FreeTheirs>(d2i, bytes);
        both.Same("reading", ours != nullptr, theirs != nullptr);
        if (ours && theirs) compare(both, ours.get(), theirs.get());
    }
}

}  // namespace peer
