// Algorithm numbers, GOST parameters in their three forms, and public keys.
#include <sstream>

#include "support.h"

using namespace support;

namespace {

// The SEQUENCE of the OIDs in a text, with blanks between.
Bytes Sets(const std::string& text) {
    Bytes content;
    std::istringstream words(text);
    for (std::string dotted; words >> dotted;) content = content + OidTlv(dotted.c_str());
    return Tlv(0x30, content);
}

// Status, form and numbers; 7 stands for what was not stored.
Numbers Decoded(const Bytes& bytes) {
    uint8_t form = 7;
    uint32_t key = 7, digest = 7, encryption = 7;
    const Status status =
        DecodeAlgorithmGostR34102001Parameters(bytes.data(), Size(bytes), &form, &key, &digest, &encryption);
    return {status, form, key, digest, encryption};
}

// The parameters in hex, or the status.
std::string Encoded(uint8_t form, const Numbers& sets) {
    const auto encode = EncodeAlgorithmGostR34102001Parameters;
    uint32_t length = 0;
    const Status status = encode(form, sets[0], sets[1], sets[2], nullptr, &length);
    return status == StatusOk ? ToHex(Fetch(encode, form, sets[0], sets[1], sets[2])) : std::to_string(status);
}

}  // namespace

TEST(Algorithm, NumbersStandForTheirOids) {
    // 0, 1, 2 for a key, digest or encryption set, 3 for an algorithm; number; arcs below 1.2.
    std::istringstream rows(
        "3 1 840.113549.1.1.1 3 2 840.113549.1.1.2 3 3 840.113549.1.1.4 3 4 840.113549.1.1.5 3 100 643.2.2.3 "
        "3 101 643.2.2.4 3 102 643.2.2.19 3 103 643.2.2.20 3 1000 643.2.2.21 3 2000 643.2.2.9 3 3000 643.7.1.1.1.1 "
        "3 3001 643.7.1.1.1.2 3 3002 643.7.1.1.3.2 3 3003 643.7.1.1.3.3 0 6 643.2.2.35.0 0 1 643.2.2.35.1 "
        "0 2 643.2.2.35.2 0 3 643.2.2.35.3 0 4 643.2.2.36.0 0 5 643.2.2.36.1 0 7 643.7.1.2.1.1.0 0 9 643.7.1.2.1.1.1 "
        "0 8 643.7.1.2.1.2.0 0 10 643.7.1.2.1.2.1 0 11 643.7.1.2.1.2.2 0 12 643.7.1.2.1.2.3 1 2 643.2.2.30.0 "
        "1 1 643.2.2.30.1 1 3 643.7.1.1.2.2 1 4 643.7.1.1.2.3 2 8 643.2.2.31.0 2 2 643.2.2.31.2 2 3 643.2.2.31.3 "
        "2 4 643.2.2.31.4 2 5 643.2.2.31.5 2 6 643.2.2.31.6 2 7 643.2.2.31.7 2 9 643.7.1.2.5.1.1");
    uint32_t kind = 0, id = 0, found = 0;
    for (std::string arcs; rows >> kind >> id >> arcs;) {
        const Bytes oid = OidOf(("1.2." + arcs).c_str());
        if (kind == 3) {
            EXPECT_EQ(FindAlgIdByOid(oid.data(), &found) + found, id);
            EXPECT_EQ(Fetch(GetPublicKeyAlgorithmOid, id), oid);
            continue;
        }
        std::string text[] = {"1.2.643.2.2.35.1", "1.2.643.2.2.30.1", ""};  // the third is the default
        Numbers numbers = {1, 1, 1};
        text[kind] = "1.2." + arcs;
        numbers[kind] = id;
        const Bytes bytes = Sets(text[0] + ' ' + text[1] + ' ' + text[2]);
        EXPECT_EQ(Encoded(1, numbers), ToHex(bytes)) << arcs;
        EXPECT_EQ(Decoded(bytes), (Numbers{0, 1, numbers[0], numbers[1], numbers[2]})) << arcs;
    }
    EXPECT_TRUE(rows.eof());
    EXPECT_STATUS(StatusUnknownOid, FindAlgIdByOid(OidOf("1.2.840.113549.1.1.11").data(), &found));
    EXPECT_STATUS(StatusUnknownId, GetPublicKeyAlgorithmOid(0, nullptr, &found));
    EXPECT_STATUS(StatusBadArgument, EncodeAlgorithmGostR34102001Parameters(1, 99, 1, 1, nullptr, nullptr));
}

TEST(GostParameters, FormIsStoredBeforeAnyFailureAndNumbersUpToIt) {
    const std::string sets = "1.2.643.2.2.35.1 1.2.643.2.2.30.1";
    EXPECT_EQ(Decoded({}), (Numbers{0, 255, 7, 7, 7}));
    EXPECT_EQ(Decoded(Hex("0500")), (Numbers{0, 0, 7, 7, 7}));
    EXPECT_EQ(Decoded(Hex("050000")), (Numbers{302, 1, 7, 7, 7}));
    EXPECT_EQ(Decoded(Hex("308500")), (Numbers{302, 1, 7, 7, 7}));
    EXPECT_EQ(Decoded(Tlv(0x30, Tlv(6, Bytes(300, 1)) + Tlv(6, {1}))), (Numbers{308, 1, 7, 7, 7}));
    EXPECT_EQ(Decoded(Sets("1.2.643.2.2.35.1 1.2.3")), (Numbers{308, 1, 1, 7, 7}));
    EXPECT_EQ(Decoded(Sets(sets + " 1.2.3")), (Numbers{308, 1, 1, 1, 7}));
}

TEST(GostParameters, DefaultOfTheEncryptionSetGoesByTheAlgorithm) {
    const Bytes key = OidOf("1.2.3"), digest = OidOf("1.2.643.4"), bytes = Sets("1.2.3 1.2.643.4");
    for (const uint32_t id : {102, 3000, 3001}) {
        const Bytes standing = OidOf(id == 102 ? "1.2.643.2.2.31.1" : "1.2.643.7.1.2.5.1.1");
        for (const uint8_t* set : {standing.data(), static_cast<const uint8_t*>(nullptr)})
            EXPECT_EQ(Fetch(EncodeAlgorithmGostR3410ParametersOid, id, 1, key.data(), digest.data(), set), bytes);
        uint8_t form = 7, out[16];
        uint32_t keyLength = 1, digestLength = 0, n = 0;
        const auto decode = [&](const Bytes& in, uint8_t* set, uint32_t* length) {
            return DecodeAlgorithmGostR3410ParameterOids(id, in.data(), Size(in), &form, out, &keyLength, nullptr,
                                                         &digestLength, set, length);
        };
        EXPECT_EQ((Numbers{decode(bytes, nullptr, &n), keyLength, digestLength, n}),
                  (Numbers{49, 3, 5, Size(standing)}));
        EXPECT_EQ(Fetch([&](uint8_t* set, uint32_t* length) { return decode(bytes, set, length); }), standing);
        EXPECT_EQ(Bytes(out, out + keyLength), key);
        EXPECT_EQ((Numbers{decode(Hex("0500"), nullptr, &n), form, keyLength, digestLength, n}), Numbers(5));
    }
}

TEST(GostParameters, OtherFormsIgnoreTheSets) {
    EXPECT_EQ(Encoded(0, {999, 0, 0}) + ' ' + Encoded(255, {999, 0, 0}), "0500 ");
    EXPECT_EQ(Encoded(2, {1, 1, 1}) + Encoded(1, {0, 1, 1}) + Encoded(1, {1, 5, 1}) + Encoded(1, {1, 1, 10}),
              "32309309309");
    uint32_t n = 0;
    EXPECT_STATUS(StatusBadArgument,
                  EncodeAlgorithmGostR3410ParametersOid(103, 0, nullptr, nullptr, nullptr, nullptr, &n));
}

TEST(Algorithm, UnknownNumberLeavesNoOidAndTheOldParameters) {
    const auto cert = Make<FreeCertificate>(CreateCertificate);
    uint32_t oid = 0, n = 0;
    const auto set = [&](uint32_t id, uint8_t form, uint32_t key) {
        return SetCertificateGostR34102001PublicKeyAlgorithmIdAndParameters(cert.get(), id, form, key, 1, 1);
    };
    const auto get = [&] {
        return GetCertificatePublicKeyAlgorithmOidAndParameters(cert.get(), nullptr, &oid, nullptr, &n);
    };
    EXPECT_EQ((Numbers{set(3001, 1, 2), set(1, 1, 99), get(), oid, n}), (Numbers{0, 309, 0, 9, 20}));
    EXPECT_EQ((Numbers{set(99, 255, 0), get(), n}), (Numbers{309, 49, 20}));
    EXPECT_EQ((Numbers{set(1, 255, 99), get(), oid, n}), (Numbers{0, 0, 10, 0}));
}

TEST(PublicKey, InfoGivesAllOutputsAndTheStatusOfTheKeyFirst) {
    const auto read = [](const char* parameters, const char* bits, uint32_t room) {
        const Bytes info = Tlv(0x30, Tlv(0x30, Hex("06032A0304") + Hex(parameters)) + Tlv(3, Hex(bits)));
        uint8_t oid[4], key[5], out[9];
        uint32_t oidLength = 4, keyLength = 5;
        const Status status =
            DecodeSubjectPublicKeyInfo(info.data(), Size(info), oid, &oidLength, key, &keyLength, out, &room);
        EXPECT_EQ(Bytes(oid, oid + 4), OidOf("1.2.3.4"));
        return Numbers{status, keyLength, room};
    };
    EXPECT_EQ(read("0500", "00ABCD", 2), (Numbers{0, 2, 2}));
    EXPECT_EQ(read("", "00ABCD", 9), (Numbers{0, 2, 0}));
    EXPECT_EQ(read("0500", "00ABCD", 1), (Numbers{49, 2, 2}));
    EXPECT_EQ(read("0500", "00", 1), (Numbers{311, 5, 2}));
}
