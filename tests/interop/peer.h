// What the tests against OpenSSL share: its objects owned, read, written and
// compared.
#pragma once

#include <openssl/x509v3.h>

#include "support.h"

namespace peer {

using namespace support;

// Nothing for null.
Bytes DerOf(auto* value, auto write) {
    Bytes der(value == nullptr ? 0 : static_cast<size_t>(write(value, nullptr)));
    uint8_t* at = der.data();
    if (value != nullptr) write(value, &at);
    return der;
}
inline Bytes ContentOf(const ASN1_STRING* text) {
    if (text == nullptr) return {};
    return Bytes(ASN1_STRING_get0_data(text), ASN1_STRING_get0_data(text) + ASN1_STRING_length(text));
}

// Null for what OpenSSL refuses.
template <auto Free>
walk::Owned<Free> FromDer(auto decode, const Bytes& der) {
    const uint8_t* at = der.data();
    return walk::Owned<Free>(decode(nullptr, &at, static_cast<long>(der.size())));
}

// What a getter of this library gives for each walk::kOut.
auto Outputs(auto... arguments) {
    const auto given = walk::Sure(walk::Get(arguments...));
    std::array<Bytes, std::tuple_size_v<std::decay_t<decltype(given)>>> outputs;
    std::transform(given.begin(), given.end(), outputs.begin(),
                   [](const walk::Bytes& output) { return Bytes(output.data(), output.end()); });
    return outputs;
}

// A time to the second, with the status that its getter gave: 311 if the peer
// has none, 313 above the year 2100.
void ExpectTime(Status status, const auto& ours, const ASN1_TIME* peers) {
    tm time = {};
    ASSERT_TRUE(peers == nullptr || ASN1_TIME_to_tm(peers, &time) == 1);
    const int year = time.tm_year + 1900;
    EXPECT_EQ(status, peers == nullptr ? StatusAbsent : year > 2100 ? StatusBadTime : StatusOk);
    if (status != StatusOk) return;
    EXPECT_EQ(std::vector<int>(&ours.year, &ours.second + 1),
              std::vector<int>({year, time.tm_mon + 1, time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec}));
}

// Of a CA with a serial number, which issued itself.
inline auto CertificateOf(EVP_PKEY* key) {
    walk::Owned<X509_free> owner(X509_new());
    X509* const certificate = owner.get();
    X509_NAME* const name = X509_get_subject_name(certificate);
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const uint8_t*>("CA"), -1, -1, 0);
    X509_set_issuer_name(certificate, name);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), 0x1234);
    X509_gmtime_adj(X509_getm_notBefore(certificate), -60);
    X509_gmtime_adj(X509_getm_notAfter(certificate), 3600);
    X509_set_pubkey(certificate, key);
    X509_set_version(certificate, 2);
    X509V3_CTX context{};
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    const walk::Owned<X509_EXTENSION_free> keyId(
        X509V3_EXT_conf_nid(nullptr, &context, NID_subject_key_identifier, "hash"));
    EXPECT_EQ(X509_add_ext(certificate, keyId.get(), -1), 1);
    EXPECT_GT(X509_sign(certificate, key, EVP_sha256()), 0);
    return owner;
}

}  // namespace peer
