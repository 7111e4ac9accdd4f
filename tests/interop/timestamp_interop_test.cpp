// libcrypto as the oracle of time-stamps: what either writes, both read alike.

#include <openssl/ts.h>
#include <openssl/x509v3.h>

#include "tsp/arguments.h"

using namespace support;
using namespace timestamps;

namespace {

// Nothing for null.
template <class Value, class Write>
Bytes DerOf(Value* value, Write write) {
    uint8_t* out = nullptr;
    const int length = value == nullptr ? 0 : write(value, &out);
    Bytes der(out, out + (length > 0 ? length : 0));
    OPENSSL_free(out);
    return der;
}

template <class Peer>
auto FromDer(const Bytes& der, Peer* (*decode)(Peer**, const uint8_t**, long), void (*release)(Peer*)) {
    const uint8_t* at = der.data();
    return std::unique_ptr<Peer, void (*)(Peer*)>(decode(nullptr, &at, static_cast<long>(der.size())), release);
}
auto RequestFrom(const Bytes& der) { return FromDer(der, d2i_TS_REQ, TS_REQ_free); }
auto ResponseFrom(const Bytes& der) { return FromDer(der, d2i_TS_RESP, TS_RESP_free); }
auto InfoFrom(const Bytes& der) { return FromDer(der, d2i_TS_TST_INFO, TS_TST_INFO_free); }

// The DER of what this library gives in parts.
Bytes TlvOr(const Bytes& content, uint8_t identifier) { return content.empty() ? content : Tlv(identifier, content); }
Bytes OidTlv(const Bytes& oid) { return oid.empty() ? oid : Bytes{6} + oid; }
Bytes ImprintTlv(const Bytes* fields) { return Tlv(48, Tlv(48, OidTlv(fields[0]) + fields[1]) + Tlv(4, fields[2])); }
Bytes ExtensionsTlv(X509Extensions list) { return list == nullptr ? Bytes() : Fetch(EncodeX509Extensions, list); }
Bytes NameTlv(const X509GeneralName* name) {
    uint32_t kind = 0;
    if (name == nullptr) return {};
    const Bytes value = Fetch(GetX509GeneralNameValue, name, &kind);
    return Tlv(kind == X509GeneralNameDirectoryName ? 0xA4 : uint8_t(0x80 + kind), value);
}

// The fields as one number, and the fraction.
void ExpectTime(const LibraryPreciseTime& ours, const ASN1_GENERALIZEDTIME* peer) {
    const std::string text(peer->data, peer->data + peer->length);
    uint64_t whole = 0;
    for (const uint32_t* field = &ours.year; field <= &ours.second; ++field) whole = whole * 100 + *field;
    EXPECT_EQ(text.substr(0, 14), std::to_string(whole));
    EXPECT_NEAR(atof(("0" + text.substr(14)).c_str()), ours.millisecond * 1e-3 + ours.microsecond * 1e-6, 1e-9);
}

void ExpectSame(const Request& ours, TS_REQ* peer) {
    ASSERT_TRUE(peer != nullptr);
    EXPECT_EQ(ours.version, TS_REQ_get_version(peer));
    EXPECT_EQ(ImprintTlv(ours.fields), DerOf(TS_REQ_get_msg_imprint(peer), i2d_TS_MSG_IMPRINT));
    EXPECT_EQ(OidTlv(ours.fields[3]), DerOf(TS_REQ_get_policy_id(peer), i2d_ASN1_OBJECT));
    EXPECT_EQ(TlvOr(ours.fields[4], 2), DerOf(TS_REQ_get_nonce(peer), i2d_ASN1_INTEGER));
    EXPECT_EQ(ours.certReq != 0, TS_REQ_get_cert_req(peer) != 0);
    EXPECT_EQ(ExtensionsTlv(ours.extensions.get()), DerOf(TS_REQ_get_exts(peer), i2d_X509_EXTENSIONS));
    EXPECT_EQ(Rebuild<Request>(DerOf(peer, i2d_TS_REQ)), ours.Write()) << "read from what libcrypto writes";
}

void ExpectSame(const TstInfo& ours, TS_TST_INFO* peer) {
    ASSERT_TRUE(peer != nullptr);
    const TS_ACCURACY* accuracy = TS_TST_INFO_get_accuracy(peer);
    const auto part = [&](auto get) { return accuracy == nullptr ? 0 : uint32_t(ASN1_INTEGER_get(get(accuracy))); };
    EXPECT_EQ(ours.version, TS_TST_INFO_get_version(peer));
    EXPECT_EQ(OidTlv(ours.fields[0]), DerOf(TS_TST_INFO_get_policy_id(peer), i2d_ASN1_OBJECT));
    EXPECT_EQ(ImprintTlv(ours.fields + 1), DerOf(TS_TST_INFO_get_msg_imprint(peer), i2d_TS_MSG_IMPRINT));
    EXPECT_EQ(TlvOr(ours.fields[4], 2), DerOf(TS_TST_INFO_get_serial(peer), i2d_ASN1_INTEGER));
    ExpectTime(ours.genTime, TS_TST_INFO_get_time(peer));
    EXPECT_EQ(Numbers(&ours.accuracy.seconds, &ours.accuracy.microseconds + 1),
              Numbers({part(TS_ACCURACY_get_seconds), part(TS_ACCURACY_get_millis), part(TS_ACCURACY_get_micros)}));
    EXPECT_EQ(ours.ordering != 0, TS_TST_INFO_get_ordering(peer) != 0);
    EXPECT_EQ(TlvOr(ours.fields[5], 2), DerOf(TS_TST_INFO_get_nonce(peer), i2d_ASN1_INTEGER));
    EXPECT_EQ(NameTlv(ours.tsa.get()), DerOf(TS_TST_INFO_get_tsa(peer), i2d_GENERAL_NAME));
    EXPECT_EQ(ExtensionsTlv(ours.extensions.get()), DerOf(TS_TST_INFO_get_exts(peer), i2d_X509_EXTENSIONS));
    EXPECT_EQ(Rebuild<TstInfo>(DerOf(peer, i2d_TS_TST_INFO)), ours.Write()) << "read from what libcrypto writes";
}

auto SomeExtensions() {
    auto extensions = Make<FreeX509Extensions>(CreateX509Extensions);
    EXPECT_EQ(AddX509ExtensionsExtension(extensions.get(), OidOf("2.5.29.21").data(), 1, Hex("0A0101").data(), 3), 0u);
    return extensions;
}
const Bytes kSha = OidOf("2.16.840.1.101.3.4.2.1"), kPolicy = OidOf("1.2.643.7.1.99999"), kHash(32, 0xAB);
const Bytes kNull = Hex("0500"), kNonce = Hex("00E0EAFAC6C242325F");

TEST(Interop, TimeStampRequestsGoBothWays) {
    Request request;
    request.version = 0x12345678;
    request.certReq = 0;
    request.fields[0] = kSha;
    request.fields[2] = kHash;
    ExpectSame(request, RequestFrom(request.Write()).get());
    request.certReq = 1;
    request.fields[1] = kNull;
    request.fields[3] = kPolicy;
    request.fields[4] = kNonce;
    request.extensions = SomeExtensions();
    ExpectSame(request, RequestFrom(request.Write()).get());
}

TEST(Interop, TstInfosGoBothWays) {
    TstInfo info;
    info.version = 1;
    info.genTime = {2100, 12, 31, 23, 59, 59, 0, 10};
    info.ordering = 0;
    const Bytes fields[] = {kPolicy, kSha, {}, kHash, kNonce, {}};
    std::copy(fields, fields + 6, info.fields);
    ExpectSame(info, InfoFrom(info.Write()).get());
    info.genTime = {2026, 11, 21, 6, 25, 50, 991, 760};
    info.ordering = 1;
    info.fields[2] = kNull;
    info.fields[5] = kNonce;
    info.tsa = Make<FreeX509GeneralName>(
        [](X509GeneralName** out) { return AllocX509GeneralNameValue(out, X509GeneralNameDNSName, kHash.data(), 5); });
    info.extensions = SomeExtensions();
    for (const Accuracy& accuracy : {Accuracy{1024, 0, 0}, {0, 500, 0}, {0, 0, 1}, {1, 999, 999}}) {
        info.accuracy = accuracy;
        ExpectSame(info, InfoFrom(info.Write()).get());
    }
}

TEST(Interop, RejectionsAreUnderstood) {
    Response response;
    response.status = TS_STATUS_REJECTION;
    response.failInfo = 0x40000080;
    const auto peer = ResponseFrom(response.Write());
    ASSERT_TRUE(peer);
    const TS_STATUS_INFO* status = TS_RESP_get_status_info(peer.get());
    EXPECT_EQ(ASN1_INTEGER_get(TS_STATUS_INFO_get0_status(status)), TS_STATUS_REJECTION);
    for (int bit = 0; bit < 32; ++bit) {
        EXPECT_EQ(ASN1_BIT_STRING_get_bit(TS_STATUS_INFO_get0_failure_info(status), bit),
                  bit == TS_INFO_BAD_ALG || bit == TS_INFO_SYSTEM_FAILURE);
    }
}

TEST(Interop, ReadsRealTimeStampsAsOpenSslDoes) {
    SKIP_WITHOUT_CORPUS();
    for (const auto& [name, bytes] : Corpus("tsp-req")) {
        SCOPED_TRACE(name);
        Request request;
        EXPECT_EQ(Read(bytes, &request), StatusOk);
        ExpectSame(request, RequestFrom(bytes).get());
    }
    uint32_t tokens = 0;
    for (const auto& [name, bytes] : Corpus("tsp-resp")) {
        SCOPED_TRACE(name);
        Response response;
        TstInfo info;
        const auto peer = ResponseFrom(bytes);
        EXPECT_EQ(Read(bytes, &response), StatusOk);
        if (!peer || !response.token) continue;
        const Bytes content = Fetch(GetCmsContentInfoContent, response.token.get());
        const auto token = Decoded<FreeCmsSignedData>(DecodeCmsSignedData, content);
        if (Read(Fetch(GetCmsSignedDataContent, token.get()), &info) == StatusBadValue) continue;  // a time with a zone
        ExpectSame(info, TS_RESP_get_tst_info(peer.get()));
        ++tokens;
    }
    EXPECT_GE(tokens, 23u);
}

}  // namespace
