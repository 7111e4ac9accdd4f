#include "support.h"

using namespace support;

namespace {

const Bytes kNull = Hex("0500"), kOid = OidOf("1.2.3"), kOidTlv = OidTlv("1.2.3"), kValue = Hex("0402AABB");
const Bytes kSha1 = Tlv(0x30, OidTlv("1.3.14.3.2.26")), kSha256 = Tlv(0x30, OidTlv("2.16.840.1.101.3.4.2.1"));
const LibraryTime kUtc = {2049, 12, 31, 23, 59, 58}, kLater = {2050, 1, 2, 3, 4, 5}, kNoTime = {};
const Bytes kUtcTlv = Tlv(23, Text("491231235958Z")), kLaterTlv = Tlv(24, Text("20500102030405Z"));

TEST(AttributeValue, SimpleFormsStandUnderTheNamesOfAttributes) {
    for (const auto encode : {EncodeRsaAttributeMessageDigestValue, EncodeRsaAttributeCyksCertificateValue,
                              EncodeRsaAttributeTemplateDigestValue, EncodeRsaAttributeX509CertificateValue,
                              EncodeRsaAttributeZelcryptPubKeyValue}) {
        EXPECT_EQ(Fetch(encode, &kNull[0], 2), Tlv(4, kNull));
    }
    int32_t number = 0;
    EXPECT_EQ(Fetch(EncodeRsaAttributeTokenSerialNumberValue, &kNull[0], 2), Tlv(12, kNull));
    EXPECT_EQ(Fetch(EncodeRsaAttributeUsageValue, &kOid[0]), Fetch(EncodeRsaAttributeContentTypeValue, &kOid[0]));
    EXPECT_STATUS(StatusBadEncoding, DecodeRsaAttributeValidityPeriodValue(&Hex("0A0101")[0], 3, &number));
    EXPECT_EQ(Fetch(EncodeRsaAttributeSigningTimeValue, &kLater), kLaterTlv);
    EXPECT_EQ(Fetch(EncodeRsaAttributeExtSubjInfoValue, &kOid[0], &kValue[0], 4), Tlv(48, kOidTlv + kValue));
}

TEST(AttributeValue, ValidityWritesEachTimeByItsYear) {
    LibraryTime from = {}, to = {};
    uint32_t n = 0;
    const auto decode = [&](const Bytes& in) { return DecodeRsaAttributeValidityValue(&in[0], Size(in), &from, &to); };
    const auto encode = [&](auto first) { return EncodeRsaAttributeValidityValue(first, &kUtc, nullptr, &n); };
    EXPECT_EQ(Fetch(EncodeRsaAttributeValidityValue, &kUtc, &kLater), Tlv(48, kUtcTlv + kLaterTlv));
    CHECK({decode(Tlv(48, kUtcTlv + kLaterTlv))}, {CompareTime(&from, &kUtc), 0}, {CompareTime(&to, &kLater), 0});
    CHECK({decode(Tlv(48, Tlv(23, Text("501231235958Z")) + Tlv(23, kNull))), StatusBadValue}, {from.year, 1950});
    CHECK({encode(&kNoTime), StatusBadTime}, {encode(nullptr), StatusBadArgument},
          {EncodeRsaAttributeValidityValue(&kUtc, nullptr, nullptr, &n), StatusBadArgument});
}

TEST(AttributeValue, DocInfoIsReadInFullAndWrittenWithoutItsThirdText) {
    const Bytes time = Tlv(0x83, Text("20500102030405Z")), a = Text("a");
    const LibraryTime wide = {10000, 1, 1, 0, 0, 0};
    uint32_t n = 0;
    EXPECT_EQ(Fetch(EncodeDocInfo, ~0u, &a[0], 1, nullptr, 9, &a[0], 1, &kLater, &kNoTime, &a[0], 0),
              Tlv(48, Hex("0A01FF 800161") + time + Hex("8500")));
    EXPECT_STATUS(StatusOutOfMemory,
                  EncodeDocInfo(0, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, &wide, nullptr, 0, nullptr, &n));
    for (const auto& [status, year, fields] : {std::tuple(0u, 2050u, Hex("0A01FF 820161") + time),
                                               {49, 2050, Hex("0A050102030405 820161") + time},
                                               {307, 0, Hex("0A01FF 80026161 820161 830130")},
                                               {49, 0, Hex("0A01FF 820161 830130 85026161")}}) {
        const Bytes in = Tlv(48, fields);
        uint8_t text[4];
        uint32_t m[4] = {1, 1, 1, 1};
        int32_t type = -1;
        LibraryTime third = {}, fourth = kUtc;
        EXPECT_EQ(status, DecodeDocInfo(&in[0], Size(in), &type, text, m, text + 1, m + 1, text + 2, m + 2, &third,
                                        &fourth, text + 3, m + 3));
        CHECK({type, ~0u}, {m[1], 0}, {m[2], 1}, {text[2], 'a'}, {third.year, year}, {fourth.year, 0});
    }
}

// Takes the value apart and writes its lists again.
template <auto Decode, auto Encode, auto Free>
std::string Rewritten(const Bytes& in) {
    auto policies = reinterpret_cast<ExtensionCertificatePolicies*>(1);
    const auto certs = Make<Free>([&](auto out) { return Decode(in.data(), Size(in), out, &policies); });
    const Owned<ExtensionCertificatePolicies, FreeExtensionCertificatePolicies> owner(policies);
    return InFull(Encode, certs.get(), policies);
}
std::string (*const kRewritten[])(const Bytes&) = {
    Rewritten<DecodeRsaAttributeSigningCertificateValue, EncodeRsaAttributeSigningCertificateValue, FreeESSCertIDs>,
    Rewritten<DecodeRsaAttributeSigningCertificateV2Value, EncodeRsaAttributeSigningCertificateV2Value,
              FreeESSCertIDsV2>,
    Rewritten<DecodeRsaAttributeOtherSigningCertificateValue, EncodeRsaAttributeOtherSigningCertificateValue,
              FreeOtherCertIDs>};

TEST(SigningCertificate, EachFormComesBackAsItsBytes) {
    const Bytes bare = Tlv(48, kValue), issued = Tlv(48, kValue + Hex("3009 3003820161 02020080"));
    const Bytes hash = kSha1 + kValue, parameters = Tlv(48, OidTlv("2.16.840.1.101.3.4.2.1") + kNull);
    const Bytes certs[] = {bare + issued, issued + Tlv(48, hash) + Tlv(48, parameters + kValue),
                           issued + Tlv(48, Tlv(48, hash))};
    for (const Bytes& policies : {Bytes(), Hex("3000"), Tlv(48, Tlv(48, kOidTlv))}) {
        for (int form = 0; form < 3; ++form) {
            const Bytes value = Tlv(48, Tlv(48, certs[form]) + policies);
            EXPECT_EQ(kRewritten[form](value), ToHex(value)) << form;
        }
    }
    EXPECT_EQ(kRewritten[1](Tlv(48, Tlv(48, Tlv(48, kSha256 + kValue)))), ToHex(Tlv(48, Tlv(48, bare))));
    auto certs1 = reinterpret_cast<ESSCertIDs*>(1);
    auto policies = reinterpret_cast<ExtensionCertificatePolicies*>(1);
    CHECK({DecodeRsaAttributeSigningCertificateValue(&kNull[0], 2, &certs1, &policies), StatusBadEncoding},
          {certs1 || policies, 0});
}

TEST(SigningCertificate, PoliciesThatHoldThemselvesAreWrittenWithoutThat) {
    const auto policies = Make<FreeExtensionCertificatePolicies>(CreateExtensionCertificatePolicies);
    const auto certs = Make<FreeOtherCertIDs>(CreateOtherCertIDs);
    EXPECT_STATUS(StatusOk, AddExtensionPolicyInformation(policies.get(), &kOid[0], nullptr));
    EXPECT_STATUS(StatusOk, AddExtensionPolicyQualifier(policies.get(), 0, &kOid[0], &kNull[0], 2));
    EXPECT_EQ(InFull(EncodeRsaAttributeOtherSigningCertificateValue, certs.get(), policies.get()),
              ToHex(Tlv(48, Hex("3000") + Tlv(48, Tlv(48, kOidTlv)))));
}

// Attributes are found by their OID, wherever they stand.
TEST(SigningCertificate, RealOnesComeBackAsTheirBytes) {
    SKIP_WITHOUT_CORPUS();
    uint32_t found = 0;
    const Bytes oids[] = {OidTlv("1.2.840.113549.1.9.16.2.12"), OidTlv("1.2.840.113549.1.9.16.2.47")};
    for (const auto& [what, bytes] : Corpus("cms-signed")) {
        for (const Bytes& oid : oids) {
            auto at = bytes.begin();
            while ((at = std::search(at, bytes.end(), oid.begin(), oid.end())) != bytes.end()) {
                const auto attribute = Decoded<FreeRsaAttribute>(DecodeRsaAttribute, Tlv(48, Bytes(at, bytes.end())));
                const Bytes value = Fetch(GetRsaAttributeValue, attribute.get(), 0);
                EXPECT_EQ(kRewritten[&oid - oids](value), ToHex(value)) << what;
                ++at, ++found;
            }
        }
    }
    EXPECT_GE(found, 10u);
}

TEST(RevocationValues, GoOutWithTheirTagsAndComeBack) {
    walk::Owned<FreeX509Crls> crls;
    walk::Owned<FreeOcspBasicResponses> ocsps;
    uint32_t n = 0, m = 0;
    const auto decode = [&](const Bytes& in) {
        auto first = reinterpret_cast<X509Crls*>(1);
        auto second = reinterpret_cast<OcspBasicResponses*>(1);
        uint8_t oid = 0;
        const auto status =
            DecodeRsaAttributeRevocationValues(&in[0], Size(in), &first, &second, &oid, &n, nullptr, &m);
        crls.reset(first), ocsps.reset(second);
        return status;
    };
    const auto encode = [&](const uint8_t* oid, const uint8_t* value) {
        return InFull(EncodeRsaAttributeRevocationValues, crls.get(), ocsps.get(), oid, value, 4);
    };
    const Bytes rest = kSha1 + Hex("03020001"), crl = Tlv(48, Tlv(48, kSha1 + Hex("3000") + kUtcTlv) + rest);
    const Bytes response = Tlv(48, Tlv(48, Hex("A20404020102") + kLaterTlv + Hex("3000")) + rest);
    const Bytes lists = Tlv(0xA0, crl + crl) + Tlv(0xA1, response), other = Tlv(48, kOidTlv + kValue);
    for (const Bytes& in : {Bytes(), Tlv(0xA0, crl), Tlv(0xA1, response), lists, Hex("A000A100")}) {
        CHECK({decode(Tlv(48, in + Tlv(0xA2, other)))}, {n, 0}, {m, 0});
        EXPECT_EQ(encode(&kOid[0], nullptr), ToHex(Tlv(48, in))) << "an OID alone is no part";
        CHECK({decode(Tlv(48, in + Tlv(0x22, other))), StatusBufferTooSmall}, {n, 3}, {m, 4});
        EXPECT_EQ(encode(&kOid[0], &kValue[0]), ToHex(Tlv(48, in + Tlv(0x22, other)))) << "the lists are there";
    }
    CHECK({decode(Tlv(48, lists + Hex("2203300106"))), StatusBadEncoding}, {crls || ocsps, 0});
}

TEST(AtsHashIndex, LeavesOutTheDefaultAndSwallowsSmallBuffers) {
    const auto with = [](const Bytes& first) { return Tlv(48, first + Hex("30060402AABB0400 3000 30020400")); };
    for (const auto& [in, out] : {std::pair(Bytes(), Bytes()), {kSha256, {}}, {kSha1, kSha1}}) {
        OctetStrings* lists[3] = {};
        uint8_t oid[10] = {0xA5};
        uint32_t n = 1, m = 0;
        const auto decode = [&, l = lists](const Bytes& bytes) {
            for (OctetStrings* list : lists) (void)FreeOctetStrings(list);
            return DecodeRsaAttributeAtsHashIndex(&bytes[0], Size(bytes), oid, &n, nullptr, &m, l, l + 1, l + 2);
        };
        const auto encode = [&](const uint8_t* parameters) {
            return InFull(EncodeRsaAttributeAtsHashIndex, oid, parameters, 2, lists[0], lists[1], lists[2]);
        };
        CHECK({decode(with(in))}, {n, in == kSha1 ? 6 : 10}, {oid[0], 0xA5}, {decode(with(in))});
        EXPECT_EQ(encode(nullptr), ToHex(with(out)));
        EXPECT_EQ(encode(&kNull[0]), ToHex(with(Tlv(48, Bytes{6} + Bytes(oid, oid + n) + kNull))));
        CHECK({decode(Hex("300430003000")), StatusBadEncoding}, {lists[0] || lists[1] || lists[2], 0});
    }
}

}  // namespace
