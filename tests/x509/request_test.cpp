#include "support.h"

using namespace support;

namespace {

const Bytes kNull = Hex("0500"), kNone, kRsa = OidOf("1.2.840.113549.1.1.1"), kAbc = Text("abc");
const Bytes kFields = Hex("020105 300E310C300A06035504030C03616263 3013300B") + Bytes{6} + kRsa + Hex("030400616263");

Bytes With(const Bytes& field) {
    return Tlv(0x30, Tlv(0x30, kFields + field) + Tlv(0x30, Bytes{6} + kRsa + kNull) + Hex("0303000102"));
}
Bytes WithAttributes(const Bytes& attributes) { return With(Tlv(0xA0, attributes)); }
Bytes AttributeTlv(const char* oid, const Bytes& values) { return Tlv(0x30, OidTlv(oid) + Tlv(0x31, values)); }
Bytes Pkcs9(const Bytes& values) { return AttributeTlv("1.2.840.113549.1.9.14", values); }
Bytes ExtensionsTlv(uint32_t size) { return Tlv(0x30, Tlv(0x30, Hex("0603551D0F") + Tlv(4, Bytes(size)))); }
auto ExtensionsOf(uint32_t size) { return Decoded<FreeX509Extensions>(DecodeX509Extensions, ExtensionsTlv(size)); }
auto RequestOf(const Bytes& attributes) {
    return Decoded<FreePKCS10CertReq>(DecodePKCS10CertReq, WithAttributes(attributes));
}

struct RequestTest : testing::Test {
    const Owned<PKCS10CertReq, FreePKCS10CertReq> made = Make<FreePKCS10CertReq>(CreatePKCS10CertReq);
    PKCS10CertReq *const fresh = made.get(), *none = nullptr;
    RsaAttributes attributes = nullptr;
    X509Name* name = nullptr;
    int32_t version = 0;
    uint32_t n = 0;
};

TEST_F(RequestTest, BuiltFromNothingHasItsBytes) {
    Bytes bare = With(kNone), signature = Hex("0102"), commonName = OidOf("2.5.4.3");
    // clang-format off
    Check({{GetPKCS10CertReqVersion(fresh, &version), 311}, {EncodePKCS10CertReq(fresh, nullptr, &n), 311},
           {GetPKCS10CertReqSignature(fresh, nullptr, &n), 311}, {CreatePKCS10CertReqCopy(fresh, &none), 32},
           {GetPKCS10CertReqPublicKeyGostR3410(fresh, nullptr, &n), 302}, {SetPKCS10CertReqVersion(fresh, -1), 32},
           {DecodePKCS10CertReq(bare.data(), Size(bare), &none), 302},

           {SetPKCS10CertReqPublicKeyAlgorithmOidAndParameters(fresh, kRsa.data(), nullptr, 0), 0},
           {SetPKCS10CertReqSignatureAlgorithmOidAndParameters(fresh, kRsa.data(), kNull.data(), 2), 0},
           {SetPKCS10CertReqPublicKey(fresh, kAbc.data(), 3), 0}, {SetPKCS10CertReqVersion(fresh, 5), 0},
           {SetPKCS10CertReqSignature(fresh, signature.data(), 2), 0}, {GetPKCS10CertReqSubject(fresh, &name), 0},
           {AddX509NameEntry(name, kAbc.data(), 3, 12, commonName.data(), 1), 0},
           {SetPKCS10CertReqSubject(fresh, name), 0}});
    // clang-format on
    EXPECT_EQ(ToHex(Fetch(EncodePKCS10CertReq, fresh)), ToHex(WithAttributes(kNone)));
    EXPECT_EQ(Fetch(GetPKCS10CertReqToBeSignedPart, fresh), Tlv(0x30, kFields + Hex("A000")));
    EXPECT_EQ(Fetch(GetPKCS10CertReqPublicKey, fresh) + Fetch(GetPKCS10CertReqSignature, fresh), kAbc + signature);
}

TEST_F(RequestTest, KeepsTheOrderOfAttributesOnlyWhileTheyAreThoseThatWereDecoded) {
    const Bytes a = AttributeTlv("1.2.3", kNull), b = AttributeTlv("1.2.4", kNull), sorted = WithAttributes(a + b);
    const auto request = RequestOf(b + a);
    PKCS10CertReq* const r = request.get();
    EXPECT_EQ(Fetch(EncodePKCS10CertReq, r), WithAttributes(b + a));
    EXPECT_EQ(Fetch(EncodePKCS10CertReq, Make<FreePKCS10CertReq>(CreatePKCS10CertReqCopy, r).get()), sorted);
    Check({{GetPKCS10CertReqAttributes(r, &attributes), 0}, {SetPKCS10CertReqAttributes(r, attributes), 0}});
    EXPECT_EQ(Fetch(EncodePKCS10CertReq, r), sorted) << "set to its own";
    // clang-format off
    Check({{GetPKCS10CertReqAttributes(fresh, &attributes), 0}, {RemoveRsaAttributes(attributes), 0},
           {SetPKCS10CertReqAttributes(r, attributes), 32}, {EncodePKCS10CertReq(r, nullptr, &n), 311},
           {SetPKCS10CertReqAttributes(r, attributes), 311}});
    // clang-format on
}

TEST_F(RequestTest, ExtensionsAreReadFromBothAttributesAndWrittenToOne) {
    const Bytes one = ExtensionsTlv(1), microsoft = AttributeTlv("1.3.6.1.4.1.311.2.1.14", ExtensionsTlv(2));
    const Bytes both = Pkcs9(one) + microsoft + Pkcs9(one), longest = ExtensionsTlv(1007);
    // clang-format off
    const std::tuple<Bytes, Status, Bytes> rows[] = {
        {AttributeTlv("1.2.3", one), 322, kNone}, {Pkcs9(kNone), 32, kNone}, {Pkcs9(kNull), 302, kNone},
        {microsoft, 0, ExtensionsTlv(2)}, {microsoft + Pkcs9(one), 0, one}};
    // clang-format on
    for (const auto& [content, status, expected] : rows) {
        X509Extensions out = nullptr;
        EXPECT_EQ(GetPKCS10CertReqExtensions(RequestOf(content).get(), &out), status) << ToHex(content);
        const Owned<X509ExtensionsCell, FreeX509Extensions> owner(out);
        EXPECT_EQ(out == nullptr ? kNone : Fetch(EncodeX509Extensions, out), expected);
    }
    const auto request = RequestOf(both);
    const auto empty = ExtensionsOf(1);
    const auto set = [&](const auto& source) { return SetPKCS10CertReqExtensions(request.get(), source.get()); };
    Check({{RemoveX509Extensions(empty.get()), 0}, {set(empty), 32}, {set(ExtensionsOf(1008)), 49}});
    EXPECT_EQ(Fetch(EncodePKCS10CertReq, request.get()), WithAttributes(both)) << "unchanged";
    Check({{set(ExtensionsOf(1007)), 0}, {Size(longest), 1024}});
    EXPECT_EQ(Fetch(EncodePKCS10CertReq, request.get()), WithAttributes(microsoft + Pkcs9(longest)));
}

TEST_F(RequestTest, GostSettersKeepTheirForms) {
    const Bytes key(253, 0x5A);
    const auto sign = SetPKCS10CertReqGostR34102001SignatureAlgorithmID;
    const auto parameters = [&](auto out, auto size) {
        return GetPKCS10CertReqSignatureAlgorithmOidAndParameters(fresh, nullptr, &n, out, size);
    };
    EXPECT_EQ(SetPKCS10CertReqGostR34102001SignatureAlgorithmIdAndParameters(fresh, 102, 1, 2, 1, 3), 0u);
    EXPECT_EQ(Fetch(parameters), Fetch(EncodeAlgorithmGostR34102001Parameters, 1, 2, 1, 3));
    Check({{sign(fresh, 3002, 1), 32}, {sign(fresh, 3002, 0x100), 0}});
    EXPECT_EQ(Fetch(parameters), kNull) << "the low byte of the form";
    EXPECT_EQ(SetPKCS10CertReqGostR34102012PublicKey(fresh, key.data(), 253), 0u);
    EXPECT_EQ(Fetch(GetPKCS10CertReqPublicKeyGostR3410, fresh), key);
}

}  // namespace
