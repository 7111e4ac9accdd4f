// Certification requests and sets of attributes.
#include "support.h"

using namespace support;

namespace {

const Bytes kNull = Hex("0500"), kNone, kRsa = OidOf("1.2.840.113549.1.1.1"), kAbc = Text("abc");
const Bytes kFields = Hex("020105 300E310C300A06035504030C03616263 3013300B") + Bytes{6} + kRsa + Hex("030400616263");

const Bytes kTail = Tlv(0x30, Bytes{6} + kRsa + kNull) + Hex("0303000102");

Bytes WithAttributes(const Bytes& attributes) { return Tlv(0x30, Tlv(0x30, kFields + Tlv(0xA0, attributes)) + kTail); }
Bytes Pkcs9(const Bytes& values) { return AttributeTlv("1.2.840.113549.1.9.14", values); }
Bytes ExtensionsTlv(uint32_t size) { return Tlv(0x30, ExtensionTlv("2.5.29.15", Bytes(size))); }
auto ExtensionsOf(uint32_t size) { return Decoded<FreeX509Extensions>(DecodeX509Extensions, ExtensionsTlv(size)); }
auto RequestOf(const Bytes& attributes) {
    return Decoded<FreePKCS10CertReq>(DecodePKCS10CertReq, WithAttributes(attributes));
}

struct RequestTest : testing::Test {
    const walk::Owned<FreePKCS10CertReq> made = Make<FreePKCS10CertReq>(CreatePKCS10CertReq);
    PKCS10CertReq *const fresh = made.get(), *none = nullptr;
    RsaAttributes attributes = nullptr;
    X509Name* name = nullptr;
    uint32_t n = 0;
};

TEST_F(RequestTest, BuiltFromNothingHasItsBytes) {
    Bytes bare = Tlv(0x30, Tlv(0x30, kFields) + kTail), signature = Hex("0102"), commonName = OidOf("2.5.4.3");
    CHECK({DecodePKCS10CertReq(bare.data(), Size(bare), &none), StatusBadEncoding},
          {SetPKCS10CertReqPublicKeyAlgorithmOidAndParameters(fresh, kRsa.data(), nullptr, 0)},
          {SetPKCS10CertReqSignatureAlgorithmOidAndParameters(fresh, kRsa.data(), kNull.data(), 2)},
          {SetPKCS10CertReqPublicKey(fresh, kAbc.data(), 3)}, {SetPKCS10CertReqVersion(fresh, 5)},
          {SetPKCS10CertReqSignature(fresh, signature.data(), 2)}, {GetPKCS10CertReqSubject(fresh, &name)},
          {AddX509NameEntry(name, kAbc.data(), 3, 12, commonName.data(), 1)}, {SetPKCS10CertReqSubject(fresh, name)});
    EXPECT_EQ(ToHex(Fetch(EncodePKCS10CertReq, fresh)), ToHex(WithAttributes(kNone)));
}

TEST_F(RequestTest, KeepsTheOrderOfAttributesOnlyWhileTheyAreThoseThatWereDecoded) {
    const Bytes a = AttributeTlv("1.2.3", kNull), b = AttributeTlv("1.2.4", kNull), sorted = WithAttributes(a + b);
    const auto request = RequestOf(b + a);
    PKCS10CertReq* const r = request.get();
    EXPECT_EQ(Fetch(EncodePKCS10CertReq, r), WithAttributes(b + a));
    EXPECT_EQ(Fetch(EncodePKCS10CertReq, Make<FreePKCS10CertReq>(CreatePKCS10CertReqCopy, r).get()), sorted);
    CHECK({GetPKCS10CertReqAttributes(r, &attributes)}, {SetPKCS10CertReqAttributes(r, attributes)});
    EXPECT_EQ(Fetch(EncodePKCS10CertReq, r), sorted) << "set to its own";
    CHECK({GetPKCS10CertReqAttributes(fresh, &attributes)}, {RemoveRsaAttributes(attributes)},
          {SetPKCS10CertReqAttributes(r, attributes), StatusBadArgument},
          {EncodePKCS10CertReq(r, nullptr, &n), StatusAbsent},
          {SetPKCS10CertReqAttributes(r, attributes), StatusAbsent});
}

TEST_F(RequestTest, ExtensionsAreReadFromBothAttributesAndWrittenToOne) {
    const Bytes one = ExtensionsTlv(1), microsoft = AttributeTlv("1.3.6.1.4.1.311.2.1.14", ExtensionsTlv(2));
    const Bytes both = Pkcs9(one) + microsoft + Pkcs9(one), longest = ExtensionsTlv(1007);
    // clang-format off
    const std::tuple<Bytes, Status, Bytes> rows[] = {
        {AttributeTlv("1.2.3", one), StatusNotFound, kNone}, {Pkcs9(kNone), StatusBadArgument, kNone},
        {Pkcs9(kNull), StatusBadEncoding, kNone}, {microsoft, StatusOk, ExtensionsTlv(2)},
        {microsoft + Pkcs9(one), StatusOk, one}};
    // clang-format on
    for (const auto& [content, status, expected] : rows) {
        X509Extensions out = nullptr;
        EXPECT_EQ(GetPKCS10CertReqExtensions(RequestOf(content).get(), &out), status) << ToHex(content);
        const walk::Owned<FreeX509Extensions> owner(out);
        EXPECT_EQ(out == nullptr ? kNone : Fetch(EncodeX509Extensions, out), expected);
    }
    const auto request = RequestOf(both);
    const auto empty = ExtensionsOf(1), largest = ExtensionsOf(1007);
    const auto set = [&](const auto& source) { return SetPKCS10CertReqExtensions(request.get(), source.get()); };
    CHECK({RemoveX509Extensions(empty.get())}, {set(empty), StatusBadArgument},
          {set(ExtensionsOf(1008)), StatusBufferTooSmall});
    EXPECT_EQ(Fetch(EncodePKCS10CertReq, request.get()), WithAttributes(both)) << "unchanged";
    CHECK({set(largest)}, {Size(longest), 1024}, {GetPKCS10CertReqAttributes(fresh, &attributes)},
          {RemoveRsaAttributes(attributes)}, {SetPKCS10CertReqExtensions(fresh, nullptr), StatusAbsent});
    EXPECT_EQ(Fetch(EncodePKCS10CertReq, request.get()), WithAttributes(microsoft + Pkcs9(longest)));
}

TEST_F(RequestTest, GostSettersKeepTheirForms) {
    const Bytes key(253, 0x5A);
    const auto sign = SetPKCS10CertReqGostR34102001SignatureAlgorithmID;
    const auto parameters = [&](auto out, auto size) {
        return GetPKCS10CertReqSignatureAlgorithmOidAndParameters(fresh, nullptr, &n, out, size);
    };
    EXPECT_STATUS(StatusOk, SetPKCS10CertReqGostR34102001SignatureAlgorithmIdAndParameters(fresh, 102, 1, 2, 1, 3));
    EXPECT_EQ(Fetch(parameters), Fetch(EncodeAlgorithmGostR34102001Parameters, 1, 2, 1, 3));
    CHECK({sign(fresh, 3002, 1), StatusBadArgument}, {sign(fresh, 3002, 0x100)});
    EXPECT_EQ(Fetch(parameters), kNull) << "the low byte of the form";
    EXPECT_STATUS(StatusOk, SetPKCS10CertReqGostR34102012PublicKey(fresh, key.data(), 253));
    EXPECT_EQ(Fetch(GetPKCS10CertReqPublicKeyGostR3410, fresh), key);
}

// A letter stands for an attribute: it is the last arc of the OID and the content of the one value.
Bytes LetterOid(char letter) { return {3, 0x55, 4, static_cast<uint8_t>(letter)}; }
Bytes ValueOf(char letter) { return Tlv(22, {static_cast<uint8_t>(letter)}); }
Bytes LetterTlv(char letter, const Bytes& values) {
    return Tlv(0x30, Bytes{6} + LetterOid(letter) + Tlv(0x31, values));
}
Bytes SetTlv(std::string_view letters) {
    Bytes content;
    for (const char letter : letters) content = content + LetterTlv(letter, ValueOf(letter));
    return Tlv(0x31, content);
}

TEST(AttributeSet, KeepsItsOrderAndIsWrittenSortedUnlessToldOtherwise) {
    const Bytes in = SetTlv("caab"), a = LetterOid('a');
    const auto owner = Decoded<FreeRsaAttributes>(DecodeRsaAttributes, in);
    RsaAttributes set = owner.get();
    uint32_t i = 99, n = 0;
    const auto add = [&](char letter) {
        return AddRsaAttributesAttributeWithValue(set, LetterOid(letter).data(), &i, ValueOf(letter).data(), 3);
    };
    EXPECT_EQ(Fetch(EncodeRsaAttributes, set), SetTlv("aabc"));
    const auto append = [&] { return AppendRsaAttributes(set, set); };
    CHECK({SetRsaAttributesSorted(set, 0)}, {append()}, {append()});
    EXPECT_EQ(Fetch(EncodeRsaAttributes, set), SetTlv("caabcaabcaabcaab"));
    const auto find = [&] { return FindRsaAttributesAttribute(set, a.data(), &i); };
    CHECK({find()}, {i, 1}, {RemoveRsaAttributesAttribute2(set, a.data())}, {find(), StatusNotFound});
    EXPECT_EQ(Fetch(EncodeRsaAttributes, set), SetTlv("cbcbcbcb"));
    CHECK({add('a')}, {i, 8}, {GetRsaAttributesAttributesCount(set, &n)}, {n, 9});
    EXPECT_EQ(Fetch(GetRsaAttributesAttributeOid, set, 8), a);
    CHECK({ClearRsaAttributes(set)}, {add('b')}, {add('a')});
    EXPECT_EQ(Fetch(EncodeRsaAttributes, set), SetTlv("ba"));
    CHECK({RemoveRsaAttributes(set)}, {add('b')}, {add('a')});
    EXPECT_EQ(Fetch(EncodeRsaAttributes, set), SetTlv("ab")) << "the flag goes with the list";
    const auto none = Make<FreeRsaAttributes>(CreateRsaAttributes), cell = Make<FreeRsaAttributes>(CreateRsaAttributes);
    CHECK({RemoveRsaAttributes(cell.get())}, {AppendRsaAttributes(cell.get(), none.get())},
          {AppendRsaAttributes(none.get(), cell.get()), StatusAbsent},
          {DecodeRsaAttributes(in.data(), Size(in) - 1, &set), StatusBadEncoding}, {set == owner.get(), 1});
}

TEST(Attribute, KeepsItsValuesInOrderAndWritesThemSorted) {
    const Bytes a = LetterOid('a'), b = ValueOf('b'), c = ValueOf('c');
    const auto one = Make<FreeRsaAttribute>([&](auto out) { return CreateRsaAttribute(out, a.data(), c.data(), 3); });
    CHECK({AddRsaAttributeValue(one.get(), b.data(), 3)}, {AddRsaAttributeValue(one.get(), b.data(), 0)});
    const auto value = [&](uint32_t i) { return Fetch(GetRsaAttributeValue, one.get(), i); };
    EXPECT_EQ(value(0) + value(1) + value(2), c + b) << "the last one has no bytes";
    EXPECT_EQ(Fetch(EncodeRsaAttribute, one.get()), LetterTlv('a', b + c));
}

}  // namespace
