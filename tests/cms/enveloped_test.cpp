#include "support.h"

using namespace support;

namespace {

const Bytes kNull = Hex("0500"), kNone, kKey = Hex("0A0B0C"), kSerial = Hex("0081"), kOid = OidOf("1.2.643.2.2.21");
const Bytes kOidTlv = Bytes{6} + kOid, kAlgorithm = Tlv(0x30, kOidTlv + kNull), kCert = Hex("3003020107");
const Bytes kName = NameTlv("CA");
Bytes RecipientTlv(const Bytes& rid) { return Tlv(0x30, Hex("020102") + rid + kAlgorithm + Tlv(4, kKey)); }
const Bytes kByIssuer = RecipientTlv(Tlv(0x30, kName + Tlv(2, kSerial))), kByKeyId = RecipientTlv(Tlv(0x80, kKey));

Bytes With(const Bytes& originatorInfo, const Bytes& recipients, const Bytes& content = Tlv(0x80, kSerial)) {
    return Tlv(0x30, Hex("0201FE") + originatorInfo + Tlv(0x31, recipients) +
                         Tlv(0x30, kOidTlv + kAlgorithm + content) + Tlv(0xA1, Tlv(0x30, kOidTlv + Tlv(0x31, kNull))));
}
auto DocumentOf(const Bytes& bytes) { return Decoded<FreeCmsEnvelopedData>(DecodeCmsEnvelopedData, bytes); }

struct EnvelopedTest : testing::Test {
    const walk::Owned<FreeCmsEnvelopedData> made = Make<FreeCmsEnvelopedData>(CreateCmsEnvelopedData);
    const walk::Owned<FreeCmsEnvelopedData> decoded = DocumentOf(With(kNone, kByKeyId));
    const walk::Owned<FreeX509Name> name = NameOf("CA");
    walk::Owned<FreeKeyTrans> recipient = Make<FreeKeyTrans>(CreateKeyTrans);
    KeyTrans* const key = recipient.get();
    CmsEnvelopedData *const fresh = made.get(), *const d = decoded.get(), *none = nullptr;
    X509Name* issuer = nullptr;
    uint8_t kind = 9, out[8] = {};
    uint32_t n = 9, m = 9;

    Status AddCert(uint8_t as, const Bytes& in) { return AddCmsEnvelopedDataEncodedCertificate(d, as, &in[0], 5); }
    Status AddCrl(uint8_t as) { return AddCmsEnvelopedDataEncodedCrl(d, as, kCert.data(), 5); }
    Status Identify(uint32_t room) { return GetKeyTransRecipientIdentifier(key, &issuer, out, &(n = room), 0, &m); }
    Bytes Encoded() { return Fetch(EncodeCmsEnvelopedData, d); }
};

TEST_F(EnvelopedTest, BuiltFromNothingHasItsBytesAndReadsBack) {
    RsaAttributes attributes = nullptr;
    CHECK({SetCmsEnvelopedDataVersion(fresh, 0xFFFFFFFE)}, {SetKeyTransVersion(key, 2)},
          {SetKeyTransRecipientIdentifierIssuerAndSerialNumber(key, name.get(), kSerial.data(), 2)},
          {SetKeyTransKeyEncryptionAlgorithmOidAndParameters(key, &kOid[0], &kNull[0], 2)},
          {SetKeyTransEncryptedKey(key, &kKey[0], 3)},
          {AddCmsEnvelopedDataRecipientInfo(fresh, CmsRecipientKindKeyTransport, recipient.release())},
          {SetCmsEnvelopedDataContentEncryptionAlgorithmOidAndParameters(fresh, &kOid[0], &kNull[0], 2)},
          {SetCmsEnvelopedDataEncryptedContentTypeOid(fresh, &kOid[0])},
          {SetCmsEnvelopedDataEncryptedContent(fresh, &kKey[0], 3)},
          {SetCmsEnvelopedDataEncryptedContent(fresh, &kSerial[0], 2)},
          {GetCmsEnvelopedDataUnprotectedAttributes(fresh, &attributes)},
          {AddRsaAttributesAttributeWithValue(attributes, &kOid[0], &n, &kNull[0], 2)});
    EXPECT_EQ(ToHex(Fetch(EncodeCmsEnvelopedData, fresh)), ToHex(With(kNone, kByIssuer)));
    EXPECT_STATUS(StatusOk, SetCmsEnvelopedDataEncryptedContent(fresh, nullptr, 7));
    EXPECT_EQ(Fetch(EncodeCmsEnvelopedData, fresh), With(kNone, kByIssuer, kNone));
}

TEST_F(EnvelopedTest, OriginatorInfoComesWithTheFirstMemberAndGoesWithTheLastSet) {
    const Bytes bare = With(kNone, kByKeyId), other = Hex("A303020105");
    const auto kindOf = [&](uint32_t i) { return GetCmsEnvelopedDataEncodedCertificate(d, i, &kind, 0, 0); };
    CHECK({kindOf(0), StatusAbsent}, {kind, 9}, {AddCert(0, kCert), StatusBadAlternative});
    EXPECT_EQ(Encoded(), With(Hex("A002A000"), kByKeyId)) << "an empty set stays";
    CHECK({AddCert(6, kCert), StatusBadAlternative}, {AddCert(1, kCert)}, {AddCert(1, Hex("A103020107"))},
          {AddCmsEnvelopedDataEncodedCertificate(d, 1, out, 0), StatusBadArgument}, {AddCert(5, Hex("3003020105"))},
          {kindOf(0)}, {kind, CmsCertificateKindCertificate}, {kindOf(1)}, {kind, CmsCertificateKindOther});
    EXPECT_EQ(Fetch(GetCmsEnvelopedDataEncodedCertificate, d, 1, &kind), other);
    EXPECT_EQ(Encoded(), With(Tlv(0xA0, Tlv(0xA0, kCert + other)), kByKeyId));
    CHECK({AddCrl(3), StatusBadAlternative}, {AddCrl(2)}, {AddCrl(1)},
          {EncodeCmsEnvelopedData(d, nullptr, &n), StatusBadAlternative},
          {GetCmsEnvelopedDataEncodedCrl(d, 1, &kind, out, &n), StatusBadEncoding},
          {RemoveCmsEnvelopedDataCertificates(d)}, {GetCmsEnvelopedDataCrlsCount(d, &n)}, {n, 2},
          {AddCert(0, kCert), StatusBadAlternative}, {RemoveCmsEnvelopedDataCrls(d)},
          {GetCmsEnvelopedDataCrlsCount(d, &n)}, {n, 0});
    EXPECT_EQ(Encoded(), bare) << "an empty set of certificates doesn't hold it";
    CHECK({AddCrl(1)}, {AddCert(1, kCert)}, {RemoveCmsEnvelopedDataCrls(d)},
          {GetCmsEnvelopedDataCertificatesCount(d, &n)}, {n, 1}, {RemoveCmsEnvelopedDataCertificates(d)});
    EXPECT_EQ(Encoded(), bare);
}

TEST_F(EnvelopedTest, RecipientsHaveTheirKindsAndAreAdopted) {
    const Bytes all = kByKeyId + Hex("A1020500 A2020500 A3020500 A4020500"), primitive = With(kNone, Hex("82020500"));
    const auto document = DocumentOf(With(kNone, all));
    void* lent = nullptr;
    for (uint32_t i = 0; i < 5; ++i) {
        CHECK({GetCmsEnvelopedDataRecipientInfo(document.get(), i, &lent, &n)}, {n, i + 1});
        EXPECT_TRUE(i == 0 || Fetch(GetAsn1AnyValue, lent) == Bytes({uint8_t(0xA0 + i), 2, 5, 0})) << i;
    }
    CHECK({DecodeCmsEnvelopedData(primitive.data(), Size(primitive), &none), StatusBadEncoding},
          {GetCmsEnvelopedDataRecipientInfo(d, 0x80000000, &lent, &n), StatusBadArgument},
          {AddCmsEnvelopedDataRecipientInfo(d, 0, key), StatusBadArgument},
          {AddCmsEnvelopedDataRecipientInfo(d, 6, key), StatusBadArgument},
          {AddCmsEnvelopedDataRecipientInfo(d, 1, recipient.release())},
          {GetCmsEnvelopedDataRecipientInfo(d, 1, &lent, &n)}, {lent == key, true},
          {EncodeCmsEnvelopedData(d, nullptr, &n), StatusAbsent}, {RemoveCmsEnvelopedDataRecipientInfos(d)});
    EXPECT_EQ(Encoded(), With(kNone, kNone));
}

TEST_F(EnvelopedTest, RecipientIsNamedInOneOfTwoForms) {
    CHECK({SetKeyTransRecipientIdentifierIssuerAndSerialNumber(key, name.get(), kSerial.data(), 2)},
          {Identify(2), StatusBufferTooSmall}, {Identify(3)}, {out[1], 0x81},
          {SetKeyTransRecipientIdentifierIssuerAndSerialNumber(key, issuer, kSerial.data(), 2)}, {Identify(8)},
          {CompareX509Names(issuer, name.get())});
    {
        const Hole serial(static_cast<void**>(reinterpret_cast<Asn1Choice**>(key)[1]->value) + 1);
        CHECK({m = 9, 9}, {Identify(8), StatusAbsent}, {m, 0});
    }
    CHECK({SetKeyTransRecipientIdentifierSubjectKeyIdentifier(key, kKey.data(), 3)}, {Identify(8)},
          {issuer == nullptr, true}, {n, 0}, {m, 3});
    EXPECT_EQ(Fetch(GetKeyTransRecipientIdentifier, key, nullptr, nullptr, nullptr), kKey);
}

TEST(GostTransport, ParametersTakeAVectorOfAnyLength) {
    EXPECT_EQ(Fetch(EncodeGost2814789Parameters, &kKey[0], 1, &kOid[0]), Tlv(0x30, Hex("04010A") + kOidTlv));
}

// One object, changed from line to line.
TEST(GostTransport, SettersBuildWhatTheyNeedAndReplaceWhatIsThere) {
    const auto owner = Make<FreeGostR3410KeyTransport>(CreateGostR3410KeyTransport);
    GostR3410KeyTransport* t = owner.get();
    const Bytes ukm(33, 1), session = Hex("3006 04010A 04010B"), bits = Tlv(3, Bytes{0} + kKey);
    const auto parameters = [&](const Bytes& fields) { return session + Tlv(0xA0, fields + Tlv(4, ukm)); };
    const auto expect = [&](Status status, const Bytes& fields) {
        EXPECT_EQ(Fetch(EncodeGostR3410KeyTransport, t), Tlv(0x30, fields)) << ToHex(fields);
        EXPECT_EQ(status, 0u);
    };
    const auto key = SetGostR3410KeyTransportEphemeralPublicKey;
    const auto paramSet = SetGostR3410KeyTransportEncryptionParamSetOid;
    const auto algorithm = SetGostR3410KeyTransportEphemeralPublicKeyAlgorithmOidAndParameters;
    uint32_t n = 9, m = 9;
    const auto algorithmOf = [&] {
        return GetGostR3410KeyTransportEphemeralPublicKeyAlgorithmOidAndParameters(t, nullptr, &n, nullptr, &m);
    };
    EXPECT_EQ(key(t, nullptr, 5), StatusOk);
    expect(algorithm(t, nullptr, &kNull[0], 2), Hex("3004 0400 0400"));
    EXPECT_STATUS(StatusOk, SetGostR3410KeyTransportEncryptedKey(t, &kKey[0], 1));
    expect(SetGostR3410KeyTransportMacKey(t, &kKey[1], 1), session);
    expect(SetGostR3410KeyTransportMaskKey(t, &kNull[0], 1), Hex("3009 04010A 800105 04010B"));
    EXPECT_EQ(Fetch(GetGostR3410KeyTransportMaskKey, t) + Fetch(GetGostR3410KeyTransportMacKey, t), Hex("050B"));
    expect(SetGostR3410KeyTransportMaskKey(t, &kNull[0], 0), session);
    expect(SetGostR3410KeyTransportUkm(t, &ukm[0], 33), parameters(Hex("0600")));
    EXPECT_EQ(Fetch(GetGostR3410KeyTransportEncryptionParamSetOid, t), Bytes{0});
    for (const Bytes& oid : {kOidTlv, Hex("0600"), kOidTlv}) expect(paramSet(t, &kOid[0]), parameters(oid));
    expect(key(t, &kKey[0], 3), parameters(kOidTlv + Tlv(0xA0, Hex("30020600") + bits)));
    CHECK({algorithmOf()}, {n, 1}, {m, 0}, {key(t, nullptr, 3)}, {algorithm(t, &kOid[0], &kNull[0], 2)});
    // A key that has lost its algorithm gets a new one.
    void** const fields = reinterpret_cast<void****>(t)[1][1];
    const Asn1Item oid = {0, 0, 0, 6, -1, 16, nullptr, 0, nullptr}, any = {0, 0, 0, 129, -1, 16, nullptr, 0, nullptr};
    const Asn1Item *const children[] = {&oid, &any}, sequence = {0, 0x20, 0, 16, -1, 16, children, 2, nullptr};
    CHECK({FreeAsn1Object(&sequence, std::exchange(fields[0], nullptr))}, {algorithm(t, &kOid[0], &kNull[0], 2)});
    EXPECT_EQ(GetGostR3410KeyTransportEphemeralPublicKey(t, nullptr, &n), StatusAbsent) << "never set";
    const Bytes whole = parameters(kOidTlv + Tlv(0xA0, kAlgorithm + bits));
    expect(key(t, &kKey[0], 3), whole);
    EXPECT_EQ(Fetch(GetGostR3410KeyTransportEphemeralPublicKey, t) + Fetch(GetGostR3410KeyTransportUkm, t), kKey + ukm);
    const auto again = Decoded<FreeGostR3410KeyTransport>(DecodeGostR3410KeyTransport, Tlv(0x30, whole));
    expect(algorithm(t = again.get(), nullptr, nullptr, 0), parameters(kOidTlv));
}

}  // namespace
