#include "support.h"

using namespace support;
using walk::kOut;

namespace {

const Bytes kOid = OidOf("1.3.14.3.2.26"), kNull = Hex("0500"), kHash = Hex("AABB"), kSerial = Hex("0080");
const Bytes kHashTlv = Hex("0402AABB"), kNames = Hex("3003820161"), kIssuerSerial = Tlv(48, kNames + Tlv(2, kSerial));
const Bytes kFullHash = Tlv(48, OidTlv("1.3.14.3.2.26") + kNull) + kHashTlv;
const Bytes kName = NameTlv("Root");
const std::string kAlgorithm = ToHex(kOid) + "|0500|";
const LibraryTime kTime = {2049, 12, 31, 23, 59, 58}, kNoTime = {};

// Outputs of a getter in hex, after they have been measured and refused by buffers that are too small.
template <class... Arguments>
std::string Read(Arguments... arguments) {
    const auto outputs = walk::Get(arguments...);
    std::string text;
    for (size_t i = 0; outputs && i < outputs->size(); ++i)
        text += ToHex(Bytes((*outputs)[i].data(), (*outputs)[i].end())) + "|";
    return text;
}

struct CadesListTest : testing::Test {
    // One reference with its members inside a tag.
    static Bytes RefTlv(uint8_t tag, const Bytes& in) { return Tlv(48, Tlv(48, Tlv(tag, Tlv(48, Tlv(48, in))))); }
    void Decode(const Bytes& in) { refs = Decoded<FreeCrlOcspRefs>(DecodeRsaAttributeCompleteRevocationRefs, in); }
    std::string Encode() { return InFull(EncodeRsaAttributeCompleteRevocationRefs, refs.get()); }
    std::string ReadRef(uint32_t index) {
        return Read(GetCrlOcspRefInformation, refs.get(), index, &lentCrls, &lentOcsps, kOut, kOut);
    }
    const walk::Owned<FreeX509Name> name = NameOf("Root");
    walk::Owned<FreeCrlListIDs> crls = Make<FreeCrlListIDs>(CreateCrlListIDs);
    walk::Owned<FreeOcspListIDs> ocsps = Make<FreeOcspListIDs>(CreateOcspListIDs);
    walk::Owned<FreeCrlOcspRefs> refs = Make<FreeCrlOcspRefs>(CreateCrlOcspRefs);
    CrlListIDs* lentCrls = nullptr;
    OcspListIDs* lentOcsps = nullptr;
    LibraryTime time = kTime;
    uint32_t n = 9;
    const uint8_t *const oid = &kOid[0], *const null = &kNull[0], *const hash = &kHash[0], *const none = nullptr;
};

TEST_F(CadesListTest, CertificatesGoInAndComeOut) {
    const auto names = Decoded<FreeX509GeneralNames>(DecodeX509GeneralNames, kNames);
    const auto one = Make<FreeESSCertIDs>(CreateESSCertIDs);
    const auto two = Make<FreeESSCertIDsV2>(CreateESSCertIDsV2);
    const auto other = Make<FreeOtherCertIDs>(CreateOtherCertIDs);
    const Bytes sha256 = OidOf("2.16.840.1.101.3.4.2.1");
    X509GeneralNames* issuer = nullptr;
    // By an algorithm or the default, with parts of issuer and serial number.
    const auto add = [&](auto algorithm, bool by, bool serial) {
        const X509GeneralNames* from = by ? names.get() : nullptr;
        const uint8_t *const number = serial ? &kSerial[0] : nullptr, *const id = algorithm ? algorithm : &sha256[0];
        return Numbers{AddESSCertIDToList(one.get(), hash, 2, from, number, 2),
                       AddESSCertIDv2ToList(two.get(), id, null, algorithm ? 2 : 0, hash, 2, from, number, 2),
                       AddOtherCertIDToList(other.get(), algorithm, null, 2, hash, 2, from, number, 2)};
    };
    EXPECT_EQ(add(oid, true, true), Numbers(3, 0));
    EXPECT_EQ(add(none, false, false), Numbers(3, 0));
    EXPECT_EQ(add(oid, true, false), Numbers(3, 32));
    EXPECT_EQ(add(none, false, true), Numbers(3, 32));
    EXPECT_EQ(Read(GetESSCertIDInformation, one.get(), 0, kOut, nullptr, kOut), "AABB|0080|");
    EXPECT_EQ(Read(GetOtherCertIDInformation, other.get(), 0, kOut, kOut, kOut, nullptr, kOut),
              kAlgorithm + "AABB|0080|");
    EXPECT_EQ(Read(GetESSCertIDV2Information, two.get(), 0, kOut, kOut, kOut, &issuer, kOut),
              kAlgorithm + "AABB|0080|");
    EXPECT_EQ(Fetch(EncodeX509GeneralNames, issuer), kNames);
    void** const parts = static_cast<void**>(reinterpret_cast<Asn1List*>(two.get())->items[0]);
    for (const int part : {0, 1}) {  // the algorithm and the hash
        const Hole taken(parts + part);
        uint32_t m[4] = {9, 9, 9, 9};
        EXPECT_STATUS(StatusAbsent, GetESSCertIDV2Information(two.get(), 0, nullptr, m, nullptr, m + 1, nullptr, m + 2,
                                                              &issuer, nullptr, m + 3));
        EXPECT_EQ(Numbers(m, m + 4), Numbers(4, 9)) << part;
    }
    const auto both = [](const Bytes& first) { return Tlv(48, Tlv(48, first + kIssuerSerial) + Tlv(48, kHashTlv)); };
    EXPECT_EQ(InFull(EncodeRsaAttributeSigningCertificateValue, one.get(), nullptr), ToHex(Tlv(48, both(kHashTlv))));
    EXPECT_EQ(InFull(EncodeRsaAttributeSigningCertificateV2Value, two.get(), nullptr), ToHex(Tlv(48, both(kFullHash))));
    EXPECT_EQ(InFull(EncodeOtherCertIDs, other.get()), ToHex(both(Tlv(48, kFullHash))));
}

// The bytes of the lists below show in references that adopt them.

TEST_F(CadesListTest, CrlsComeOutExceptForTheirOrdinaryTime) {
    X509Name* by = nullptr;
    const auto add = [&](auto algorithm, X509Name* from, auto issued) {
        return AddCrlValidatedIdToList(crls.get(), hash, 2, algorithm, null, 2, from, issued, &kSerial[0], 2);
    };
    const auto read = [&](CrlListIDs* list, uint32_t index) {
        return Read(GetCrlValidatedIdInformation, list, index, kOut, kOut, kOut, &by, &time, kOut);
    };
    CHECK({add(none, nullptr, &kNoTime)}, {add(oid, name.get(), &kTime)}, {add(none, name.get(), &kNoTime)});
    CHECK({add(none, name.get(), nullptr)}, {GetCrlListIDsCount(crls.get(), &n)}, {n, 2});
    EXPECT_EQ(read(crls.get(), 0), "AABB||||");
    CHECK({by == nullptr, 1}, {IsLibraryTimeNull(&time), 1});
    uint32_t m[4] = {9, 9, 9, 9};
    EXPECT_STATUS(StatusBadValue, GetCrlValidatedIdInformation(crls.get(), 1, nullptr, m, nullptr, m + 1, nullptr,
                                                               m + 2, &by, &time, nullptr, m + 3));
    CHECK({m[0], 2}, {m[1], 6}, {m[2], 2}, {m[3], 9}, {CompareX509Names(by, name.get())});
    EXPECT_STATUS(StatusOk, AddCrlOcspRefToList(refs.get(), crls.release(), nullptr, nullptr, nullptr, 0));
    const auto issued = [](const char* at) {
        return Tlv(48, Tlv(48, kFullHash) + Tlv(48, kName + Tlv(23, Text(at)) + Tlv(2, kSerial)));
    };
    EXPECT_EQ(Encode(), ToHex(RefTlv(0xA0, Tlv(48, kHashTlv) + issued("491231235958Z"))));
    Decode(RefTlv(0xA0, issued("501231235958+0000")));
    EXPECT_EQ(ReadRef(0), "||");
    EXPECT_EQ(read(lentCrls, 0), "AABB|" + kAlgorithm + "0080|");
    EXPECT_EQ(time.year, 1950u);
}

TEST_F(CadesListTest, RespondersComeOutInTheFormTheyHave) {
    void* responder = nullptr;
    X509Name* const by = name.get();
    const auto add = [&](X509Name* from, auto key, auto at, auto digest, auto algorithm) {
        return AddOcspResponseIdToList(ocsps.get(), from, key, 2, at, digest, 2, algorithm, null, 2);
    };
    const auto read = [&](OcspListIDs* list, uint32_t index) {
        return Read(GetOcspResponseIdInformation, list, index, &responder, kOut, &time, kOut, kOut, kOut);
    };
    CHECK({add(by, hash, &kTime, hash, oid)}, {add(nullptr, null, &kTime, hash, none)});
    CHECK({add(nullptr, hash, &kTime, none, oid)}, {add(by, none, &kNoTime, hash, none)});
    CHECK({add(nullptr, none, &kTime, hash, oid), StatusBadArgument},
          {add(by, hash, nullptr, hash, oid), StatusBadArgument});
    CHECK({GetOcspListIDsCount(ocsps.get(), &n)}, {n, 3});
    EXPECT_EQ(read(ocsps.get(), 0), "|AABB|" + kAlgorithm);
    CHECK({CompareX509Names(static_cast<X509Name*>(responder), by)}, {CompareTime(&time, &kTime), 0});
    EXPECT_EQ(read(ocsps.get(), 1), "|AABB|||");
    EXPECT_EQ(Fetch(GetAsn1AnyValue, responder), kNull);
    EXPECT_EQ(read(ocsps.get(), 2), "||||");
    EXPECT_STATUS(StatusOk, AddCrlOcspRefToList(refs.get(), nullptr, ocsps.release(), nullptr, nullptr, 0));
    const auto entry = [](uint8_t tag, const Bytes& in, const Bytes& rest) {
        return Tlv(48, Tlv(48, Tlv(tag, in) + Tlv(24, Text("20491231235958Z"))) + rest);
    };
    const Bytes named = entry(0xA1, kName, Tlv(48, kFullHash)), byKey = entry(0xA2, kHashTlv, {});
    EXPECT_EQ(Encode(), ToHex(RefTlv(0xA1, named + entry(0xA1, kNull, kHashTlv) + entry(0xA1, kHash, {}))));
    Decode(RefTlv(0xA1, named + byKey));
    EXPECT_EQ(ReadRef(0), "||");
    EXPECT_EQ(read(lentOcsps, 0), "|AABB|" + kAlgorithm);
    EXPECT_EQ(Fetch(GetAsn1AnyValue, responder), kName) << "decoded as it stands";
    EXPECT_EQ(read(lentOcsps, 1), "AABB||||");
    EXPECT_EQ(responder, nullptr);
}

TEST_F(CadesListTest, ReferencesNeedOneOfTheirParts) {
    const Bytes other = Hex("220D 300B") + OidTlv("1.3.14.3.2.26") + kHashTlv, lists = Hex("A00430023000A10430023000");
    const auto add = [&](auto first, auto second, auto value) {
        return AddCrlOcspRefToList(refs.get(), first, second, oid, value, 4);
    };
    CHECK({add(nullptr, nullptr, nullptr), StatusBadArgument}, {add(nullptr, nullptr, &kHashTlv[0])});
    CHECK({add(crls.release(), ocsps.release(), &kHashTlv[0])}, {GetCrlOcspRefCount(refs.get(), &n)}, {n, 2});
    const Bytes two = Tlv(48, other) + Tlv(48, lists + other);
    EXPECT_EQ(Encode(), ToHex(Tlv(48, two)));
    Decode(Tlv(48, two + Hex("3000")));
    EXPECT_EQ(ReadRef(1), ToHex(kOid) + "|0402AABB|");
    CHECK({lentCrls && lentOcsps, 1}, {GetCrlListIDsCount(lentCrls, &n)}, {n, 0});
    EXPECT_EQ(ReadRef(0), ToHex(kOid) + "|0402AABB|");
    EXPECT_TRUE(lentCrls == nullptr && lentOcsps == nullptr);
    const auto status = [&](uint32_t index, uint32_t* length) {
        return GetCrlOcspRefInformation(refs.get(), index, nullptr, nullptr, nullptr, &n, nullptr, length);
    };
    CHECK({status(2, &n), StatusAbsent}, {status(3, &n), StatusBadArgument}, {status(0, nullptr), StatusBadArgument});
}

}  // namespace
