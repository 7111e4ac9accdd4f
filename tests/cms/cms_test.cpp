#include "support.h"

using namespace support;

namespace {

const Bytes kNone, kNull = Hex("0500"), kData = OidOf("1.2.840.113549.1.7.1"), kAbc = Text("abc"), kA = OidOf("1.2.3");
const Bytes kB = OidOf("1.2.4"), kName = Hex("300E310C300A06035504030C03616263"), kCertificate = Hex("3003020105");

Bytes OidAnd(const Bytes& oid, const Bytes& rest) { return Tlv(0x30, Bytes{6} + oid + rest); }
// A SignedData of version 1 without digest algorithms, by its content and the fields after it.
Bytes SignedTlv(const Bytes& content, const Bytes& fields) {
    return Tlv(0x30, Hex("0201013100") + OidAnd(kData, content) + fields);
}
const Bytes kAttributes = OidAnd(kA, Tlv(0x31, kNull)) + OidAnd(kB, Tlv(0x31, kNull));
Bytes SignedBy(const Bytes& identifier) {
    const Bytes signer = OidAnd(kA, kNull) + Tlv(0xA0, kAttributes) + OidAnd(kB, kNone) + Tlv(4, kAbc);
    return SignedTlv(Tlv(0xA0, Tlv(4, kAbc)), Tlv(0x31, Tlv(0x30, Hex("020103") + identifier + signer)));
}
auto DecodedData(const Bytes& bytes) { return Decoded<FreeCmsSignedData>(DecodeCmsSignedData, bytes); }

struct CmsTest : testing::Test {
    const Owned<CmsSignedData, FreeCmsSignedData> made = Make<FreeCmsSignedData>(CreateCmsSignedData);
    CmsSignedData *const data = made.get(), *none = nullptr;
    CmsSignerInfo* signer = nullptr;
    CmsContentInfo* info = nullptr;
    X509Name* name = nullptr;
    RsaAttributes attributes = nullptr;
    int32_t version = 0;
    uint32_t n = 0, m = 0;
    uint8_t kind = 0, bytes[8] = {};

    Status Add(uint32_t certificateKind, const Bytes& element) {
        return AddCmsSignedDataEncodedCertificate(data, uint8_t(certificateKind), element.data(), Size(element));
    }
};

TEST_F(CmsTest, ContainerOwnsContentInfosInTheirOrder) {
    const Bytes content = Fetch(EncodeCmsContentInfoContent, kAbc.data(), 3u), full = OidAnd(kData, Tlv(0xA0, content));
    const Bytes empty = OidAnd(kData, kNone);
    EXPECT_EQ(Fetch(DecodeCmsContentInfoContent, content.data(), 5u), kAbc);
    const auto decoded = Decoded<FreeSeveralData>(DecodeSeveralData, Tlv(0x30, full + empty));
    SeveralData* const several = decoded.get();
    EXPECT_STATUS(StatusOk, GetSeveralDataContentInfo(several, 0, &info));
    EXPECT_EQ(Fetch(GetCmsContentInfoTypeOid, info) + Fetch(GetCmsContentInfoContent, info), kData + content);
    const auto copy = Make<FreeCmsContentInfo>(CreateCmsContentInfoCopy, info);
    auto fresh = Make<FreeCmsContentInfo>(CreateCmsContentInfo);
    EXPECT_EQ(Fetch(GetCmsContentInfoTypeOid, fresh.get()) + Fetch(GetCmsContentInfoContent, fresh.get()), Hex("00"));
    CHECK({RemoveSeveralDataContentInfo(several, 2), StatusBadArgument},
          {GetSeveralDataContentInfo(several, 0x80000000, &info), StatusBadArgument},
          {RemoveSeveralDataContentInfo(several, 0)}, {AddSeveralDataContentInfo(several, fresh.release())},
          {SetCmsContentInfoContent(copy.get(), nullptr, 3)}, {GetSeveralDataContentInfo(several, 1, &info)},
          {SetCmsContentInfoTypeOid(info, kData.data())}, {SetCmsContentInfoContent(info, content.data(), 5)});
    EXPECT_EQ(Fetch(EncodeSeveralData, several), Tlv(0x30, Fetch(EncodeCmsContentInfo, copy.get()) + full));
}

TEST_F(CmsTest, ContentIsJoinedFromSegmentsOfIndefiniteLengthOnly) {
    for (const char* content : {"", "A003040155", "A080 2480 0400 040155 0000 0000", "A007 2405 0403AABBCC"}) {
        const Bytes expected = strstr(content, "0155") != nullptr ? Hex("55") : kNone;
        const auto decoded = DecodedData(SignedTlv(Hex(content), Hex("3100")));
        EXPECT_EQ(Fetch(GetCmsSignedDataContent, decoded.get()), expected) << content;
    }
}

TEST_F(CmsTest, DigestAlgorithmsAreASetAndSignersAreNot) {
    const auto get = GetCmsSignedDataDigestAlgorithmOidAndParameters;
    for (const uint32_t length : {0, 2, 0, 2}) {
        EXPECT_STATUS(StatusOk, AddCmsSignedDataDigestAlgorithmOidAndParameters(data, kA.data(), kNull.data(), length));
        CHECK({AddCmsSignedDataSignerInfo(data, &signer)}, {SetCmsSignerInfoVersion(signer, n++)});
    }
    EXPECT_EQ(Fetch([&](auto out, auto length) { return get(data, 1, nullptr, &m, out, length); }), kNull);
    CHECK({m, Size(kA)}, {GetCmsSignedDataDigestAlgorithmsCount(data, &n)}, {n, 2},
          {ClearCmsSignedDataDigestAlgorithms(data)}, {GetCmsSignedDataDigestAlgorithmsCount(data, &n)}, {n, 0},
          {DeleteCmsSignedDataSignerInfo(data, 4), StatusBadArgument},
          {DeleteCmsSignedDataSignerInfo(data, 0x80000000), StatusBadArgument},
          {DeleteCmsSignedDataSignerInfo(data, 0)}, {GetCmsSignedDataSignerInfo(data, 1, &signer)},
          {GetCmsSignerInfoVersion(signer, &version)}, {uint32_t(version), 2}, {ClearCmsSignedDataSignerInfos(data)},
          {GetCmsSignedDataSignerInfosCount(data, &n)}, {n, 0},
          {DeleteCmsSignedDataSignerInfo(data, 0), StatusBadArgument});
}

TEST_F(CmsTest, CertificatesAreBytesUnderTheTagOfTheirKind) {
    const auto get = GetCmsSignedDataEncodedCertificate;
    const uint8_t octets[] = {0x30, 0xA0, 0xA1, 0xA2, 0xA3};
    CHECK({Add(0, kCertificate), StatusBadArgument}, {Add(6, kCertificate), StatusBadArgument});
    EXPECT_STATUS(StatusBadArgument, AddCmsSignedDataEncodedCertificate(data, 1, bytes, 0));
    EXPECT_EQ(Fetch(EncodeCmsSignedData, data), Hex("300C 0200 3100 30020600 A000 3100")) << "an empty set is left";
    for (uint32_t i = 0; i < 5; ++i) {
        CHECK({Add(i + 1, Hex("FF03020105"))}, {Add(i + 1, kCertificate)});
        const Bytes element = Fetch([&](auto out, auto length) { return get(data, i, &kind, out, length); });
        EXPECT_EQ(Bytes{kind} + element, Bytes{uint8_t(i + 1)} + Tlv(octets[i], Hex("020105")));
    }
    CHECK({Add(1, Hex("30050201"))}, {GetCmsSignedDataCertificatesCount(data, &n)}, {n, 6},
          {get(data, 0, &kind, nullptr, nullptr)}, {kind, 1}, {get(data, 5, &kind, nullptr, &n), StatusBadEncoding},
          {kind, 1}, {get(data, 6, &kind, nullptr, &n), StatusBadArgument}, {RemoveCmsSignedDataCertificates(data)},
          {get(data, 0, &kind, nullptr, &n), StatusAbsent});
    // A SET, a primitive [0], and a tag number of two octets with the value of 0x30.
    const auto other = DecodedData(SignedTlv(kNone, Hex("A007 3100 8000 1F3000 3100")));
    for (uint32_t i = 0; i < 3; ++i) CHECK({get(other.get(), i, &(kind = 9), nullptr, &n)}, {kind, 0});
}

TEST_F(CmsTest, CrlsCanBeThereButNeitherReadNorMade) {
    const auto get = GetCmsSignedDataEncodedCrl;
    const Bytes other = SignedTlv(kNone, Hex("A107 A105 060129 0500 3100")), plain = Hex("A1023000 3100");
    const auto decoded = DecodedData(other);
    EXPECT_EQ(Fetch(EncodeCmsSignedData, decoded.get()), other);
    EXPECT_STATUS(StatusBadEncoding,
                  DecodeCmsSignedData(SignedTlv(kNone, plain).data(), Size(SignedTlv(kNone, plain)), &none));
    CHECK({get(decoded.get(), 0, &kind, bytes, &(n = 7)), StatusBadEncoding}, {kind, 0}, {n, 7},
          {get(decoded.get(), 1, &kind, bytes, &n), StatusBadArgument},
          {AddCmsSignedDataEncodedCrl(data, 3, bytes, 8), StatusBadArgument}, {EncodeCmsSignedData(data, nullptr, &n)},
          {n, 14},  // Bytes that could be taken for the index of an alternative, and fewer than any record has.
          {AddCmsSignedDataEncodedCrl(data, 1, bytes, 8)}, {AddCmsSignedDataEncodedCrl(data, 2, bytes, 1)},
          {GetCmsSignedDataCrlsCount(data, &n)}, {n, 2}, {get(data, 1, &kind, nullptr, &n), StatusBadEncoding},
          {EncodeCmsSignedData(data, nullptr, &n), StatusBadAlternative},
          {CreateCmsSignedDataCopy(data, &none), StatusBadAlternative}, {RemoveCmsSignedDataCrls(data)},
          {EncodeCmsSignedData(data, nullptr, &n)}, {n, 12},
          {AddCmsSignedDataEncodedCrl(data, 2, bytes, 0)});  // freed with its message
}

TEST_F(CmsTest, SignerReadsBackInBothFormsOfItsIdentifier) {
    const Bytes whole = SignedBy(Tlv(0x30, kName + Tlv(2, kAbc)));
    const auto copy = Make<FreeCmsSignedData>(CreateCmsSignedDataCopy, DecodedData(whole).get());
    CmsSignedData* const c = copy.get();
    const auto get = GetCmsSignerInfoSignerIdentifier;
    const auto setIssuer = SetCmsSignerInfoSignerIdentifierIssuerAndSerialNumber;
    const auto digest = GetCmsSignerInfoDigestAlgorithmOidAndParameters;
    const auto signature = GetCmsSignerInfoSignatureAlgorithmOidAndParameters;
    CHECK({GetCmsSignedDataSignerInfo(c, 0, &signer)}, {GetCmsSignerInfoVersion(signer, &version)},
          {uint32_t(version), 3}, {GetCmsSignedDataVersion(c, &version)}, {uint32_t(version), 1},
          {GetCmsSignedDataContentInfo(c, &info)});
    EXPECT_EQ(Fetch(GetCmsContentInfoTypeOid, info) + Fetch(GetCmsContentInfoContent, info), kData + kAbc) << "lent";
    EXPECT_EQ(Fetch(GetCmsSignerInfoEncodedSignedAttributes, signer), Tlv(0x31, kAttributes));
    EXPECT_EQ(Fetch([&](auto out, auto length) { return digest(signer, out, length, nullptr, nullptr); }), kA);
    EXPECT_EQ(Fetch([&](auto out, auto length) { return signature(signer, out, length, nullptr, nullptr); }), kB);
    EXPECT_EQ(Fetch([&](auto out, auto length) { return get(signer, &name, out, length, nullptr, &(m = 9)); }), kAbc);
    EXPECT_EQ(Fetch(EncodeX509Name, name), kName);
    const auto issuer = Make<FreeX509Name>(CopyX509Name, name);
    CHECK({m, 0}, {setIssuer(signer, name, bytes, 1)});
    EXPECT_EQ(Fetch(EncodeCmsSignedData, c), SignedBy(Tlv(0x30, kName + Hex("020100")))) << "its own name";
    EXPECT_STATUS(StatusOk, SetCmsSignerInfoSignerSubjectKeyIdentifier(signer, kAbc.data(), 3));
    EXPECT_EQ(Fetch(EncodeCmsSignedData, c), SignedBy(Tlv(0x80, kAbc)));
    EXPECT_EQ(Fetch([&](auto out, auto length) { return get(signer, &name, nullptr, &(n = 9), out, length); }), kAbc);
    CHECK({n, 0}, {name == nullptr, 1}, {get(signer, nullptr, nullptr, nullptr, nullptr, &m)},
          {get(signer, &name, nullptr, &n, nullptr, nullptr), StatusBadArgument},
          {setIssuer(signer, issuer.get(), kAbc.data(), 3)});
    EXPECT_EQ(Fetch(EncodeCmsSignedData, c), whole);
    {
        const Hole serial(static_cast<void**>(reinterpret_cast<Asn1Choice**>(signer)[1]->value) + 1);
        CHECK({get(signer, &name, nullptr, &n, nullptr, &(m = 9)), StatusAbsent}, {m, 0});
    }
    CHECK({GetCmsSignerInfoUnsignedAttributes(signer, &attributes)}, {ClearRsaAttributes(attributes)},
          {AddRsaAttributesAttribute(attributes, kA.data(), &n)}, {EncodeCmsSignedData(c, nullptr, &n)},
          {n, Size(whole) + 10});
}

}  // namespace
