// OpenSSL as the oracle of time-stamps: what it reads from a real one or a full one, this library reads as well.

#include <openssl/ts.h>

#include "interop/peer.h"
#include "tsp/arguments.h"

using namespace peer;
using namespace timestamps;

namespace {

// The DER of what this library gives in parts.
Bytes TlvOr(const Bytes& content, uint8_t identifier) { return content.empty() ? content : Tlv(identifier, content); }
Bytes OidOr(const Bytes& oid) { return oid.empty() ? oid : Bytes{6} + oid; }
Bytes ImprintOf(const Bytes* fields) { return Tlv(48, Tlv(48, OidOr(fields[0]) + fields[1]) + Tlv(4, fields[2])); }
Bytes ExtensionsOf(X509Extensions list) { return list == nullptr ? Bytes() : Fetch(EncodeX509Extensions, list); }
Bytes GeneralNameOf(const X509GeneralName* name) {
    uint32_t kind = 0;
    if (name == nullptr) return {};
    const Bytes value = Fetch(GetX509GeneralNameValue, name, &kind);
    return Tlv(kind == X509GeneralNameDirectoryName ? 0xA4 : uint8_t(0x80 + kind), value);
}

void ExpectSame(const Request& ours, const Bytes& der) {
    const auto owner = FromDer<TS_REQ_free>(d2i_TS_REQ, der);
    TS_REQ* const peer = owner.get();
    ASSERT_TRUE(peer != nullptr);
    EXPECT_EQ(ours.version, TS_REQ_get_version(peer));
    EXPECT_EQ(ImprintOf(ours.fields), DerOf(TS_REQ_get_msg_imprint(peer), i2d_TS_MSG_IMPRINT));
    EXPECT_EQ(OidOr(ours.fields[3]), DerOf(TS_REQ_get_policy_id(peer), i2d_ASN1_OBJECT));
    EXPECT_EQ(TlvOr(ours.fields[4], 2), DerOf(TS_REQ_get_nonce(peer), i2d_ASN1_INTEGER));
    EXPECT_EQ(ours.certReq != 0, TS_REQ_get_cert_req(peer) != 0);
    EXPECT_EQ(ExtensionsOf(ours.extensions.get()), DerOf(TS_REQ_get_exts(peer), i2d_X509_EXTENSIONS));
}

void ExpectSame(const TstInfo& ours, const Bytes& der) {
    const auto owner = FromDer<TS_TST_INFO_free>(d2i_TS_TST_INFO, der);
    TS_TST_INFO* const peer = owner.get();
    ASSERT_TRUE(peer != nullptr);
    const ASN1_GENERALIZEDTIME* time = TS_TST_INFO_get_time(peer);
    const std::string fraction(time->data + 14, time->data + time->length);
    const TS_ACCURACY* accuracy = TS_TST_INFO_get_accuracy(peer);
    const auto part = [&](auto get) { return accuracy == nullptr ? 0 : uint32_t(ASN1_INTEGER_get(get(accuracy))); };
    EXPECT_EQ(ours.version, TS_TST_INFO_get_version(peer));
    EXPECT_EQ(OidOr(ours.fields[0]), DerOf(TS_TST_INFO_get_policy_id(peer), i2d_ASN1_OBJECT));
    EXPECT_EQ(ImprintOf(ours.fields + 1), DerOf(TS_TST_INFO_get_msg_imprint(peer), i2d_TS_MSG_IMPRINT));
    EXPECT_EQ(TlvOr(ours.fields[4], 2), DerOf(TS_TST_INFO_get_serial(peer), i2d_ASN1_INTEGER));
    ExpectTime(0, ours.genTime, time);
    EXPECT_NEAR(atof(("0" + fraction).c_str()), ours.genTime.millisecond * 1e-3 + ours.genTime.microsecond * 1e-6,
                1e-9);
    EXPECT_EQ(Numbers(&ours.accuracy.seconds, &ours.accuracy.microseconds + 1),
              Numbers({part(TS_ACCURACY_get_seconds), part(TS_ACCURACY_get_millis), part(TS_ACCURACY_get_micros)}));
    EXPECT_EQ(ours.ordering != 0, TS_TST_INFO_get_ordering(peer) != 0);
    EXPECT_EQ(TlvOr(ours.fields[5], 2), DerOf(TS_TST_INFO_get_nonce(peer), i2d_ASN1_INTEGER));
    EXPECT_EQ(GeneralNameOf(ours.tsa.get()), DerOf(TS_TST_INFO_get_tsa(peer), i2d_GENERAL_NAME));
    EXPECT_EQ(ExtensionsOf(ours.extensions.get()), DerOf(TS_TST_INFO_get_exts(peer), i2d_X509_EXTENSIONS));
}

template <class Document>
void ReadOnBothSides(std::vector<NamedBytes> files, const Bytes& full) {
    files.push_back({"full", full});
    for (const auto& [name, bytes] : files) {
        SCOPED_TRACE(name);
        Document document;
        const Status status = Read(bytes, &document);
        if (status == StatusBadValue) continue;  // a time with a zone
        EXPECT_EQ(status, StatusOk);
        ExpectSame(document, bytes);
    }
}

TEST(Interop, ReadsTimeStampsAsOpenSslDoes) {
    ReadOnBothSides<Request>(Corpus("tsp-req"), kRequest);
    ReadOnBothSides<TstInfo>(Corpus("tstinfo"), kInfo);
}

}  // namespace
