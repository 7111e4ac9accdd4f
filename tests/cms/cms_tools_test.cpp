#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "support.h"

using namespace support;

namespace {

const Bytes kNull = Hex("0500"), kAlgorithm = Tlv(48, OidTlv("1.2.3") + kNull), kAbc = Text("abc"), kOne = Hex("31");
const LibraryTime kTime = {2024, 2, 29, 1, 2, 3}, kUnset = {}, *const kNone = nullptr;
const std::string kPkcs7 = "1.2.840.113549.1.7.", kPkcs9 = "1.2.840.113549.1.9.";

const Bytes kStated = AttributeTlv(kPkcs9 + "5", Tlv(23, Text("240229010203Z"))), kOther = AttributeTlv("1.2.3", kNull);
const Bytes kDigested = AttributeTlv(kPkcs9 + "4", Tlv(4, kAbc)),
            kTyped = AttributeTlv(kPkcs9 + "3", OidTlv(kPkcs7 + "1"));

Bytes BySerial(const Bytes& serial) { return Tlv(48, NameTlv("Bob") + Tlv(2, serial)); }
Bytes ByOnes(uint32_t size) { return Tlv(48, Tlv(48, {}) + Tlv(2, Bytes(size, '1'))); }
Bytes ByKey(uint32_t size) { return Tlv(0x80, Bytes(size, 7)); }
Bytes Signer(const Bytes& sid, const Bytes& attributes = Tlv(0xA0, kStated), const Bytes& unsignedAttributes = {}) {
    return Tlv(48, Hex("020101") + sid + kAlgorithm + attributes + kAlgorithm + Hex("040101") + unsignedAttributes);
}
Bytes Of(const Bytes& signers, const Bytes& content = Tlv(0xA0, Tlv(4, kAbc)), const char* type = "2") {
    const Bytes fields = Hex("020101") + Tlv(49, kAlgorithm) + Tlv(48, OidTlv(kPkcs7 + "1") + content);
    return Tlv(48, OidTlv(kPkcs7 + type) + Tlv(0xA0, Tlv(48, fields + Tlv(49, signers))));
}
const Bytes kFirst = Signer(BySerial(kOne)), kSecond = Signer(BySerial(kOne + kOne), {}), kBoth = Of(kSecond + kFirst);
const Bytes kEmpty = Tlv(48, OidTlv(kPkcs7 + "2")), kBare = Signer(ByKey(2), {});  // 28 bytes

TEST(SigningSteps, SignerAndBytesToSignHaveTheSameAttributes) {
    const auto signer = Make<FreeCmsSignerInfo>(CreateCmsSignerInfo);
    const auto extra = Decoded<FreeRsaAttributes>(DecodeRsaAttributes, Tlv(49, kOther));
    RsaAttributes own = nullptr;
    const auto fill = [&](auto... x) {
        return FillCmsSignerInfoWithSignedAttributes2(signer.get(), &kAbc[0], 3, x...);
    };
    const auto give = [&](auto... x) { return GetCmsSignedDataToBeSignedPart2(&kAbc[0], 3, x...); };
    const Bytes two = kDigested + kDigested, all = Tlv(49, kOther + kDigested + kTyped + kStated);
    EXPECT_EQ(Fetch(GetCmsSignedDataToBeSignedPart, &kAbc[0], 3, kNone), Tlv(49, kDigested + kTyped));
    EXPECT_EQ(Fetch(give, &kTime, extra.get()), all);
    // Neither a failure nor a second call takes away what is there; the further attributes may be the signer's own.
    EXPECT_STATUS(StatusOk, GetCmsSignerInfoSignedAttributes(signer.get(), &own));
    CHECK({fill(&kUnset, own), StatusAbsent}, {fill(kNone, own)});
    EXPECT_EQ(Fetch(EncodeRsaAttributes, own), Tlv(49, two + two + kTyped + kTyped + kTyped + kTyped));
    CHECK({RemoveRsaAttributes(own)}, {fill(&kTime, extra.get())}, {RemoveRsaAttributes(extra.get())});
    CHECK({SetRsaAttributesSorted(own, 0)}, {fill(kNone, extra.get()), StatusAbsent});
    EXPECT_EQ(Fetch(EncodeRsaAttributes, own), Tlv(49, kTyped + kDigested + kStated + kOther + kTyped + kDigested));
}

TEST(SigningSteps, SignersAreComparedWithCertificates) {
    const auto signer = Make<FreeCmsSignerInfo>(CreateCmsSignerInfo);
    const auto owner = Make<FreeCertificate>(CreateCertificate);
    const auto bob = NameOf("Bob"), eve = NameOf("Eve");
    const Bytes ones(65, 1);
    X509Extensions handle = nullptr;
    const auto compare = [&](Status set) {
        return set != 0 ? 1 : CompareSignerInfoAndCertificate(signer.get(), owner.get());
    };
    const auto serial = [&](const auto& name, uint32_t size) {
        return compare(SetCmsSignerInfoSignerIdentifierIssuerAndSerialNumber(signer.get(), name.get(), &ones[0], size));
    };
    const auto key = [&](uint32_t size) {
        return compare(SetCmsSignerInfoSignerSubjectKeyIdentifier(signer.get(), &ones[0], size));
    };
    CHECK({compare(0), StatusAbsent}, {serial(bob, 64), StatusBadValue}, {key(32), StatusNotFound},
          {key(33), StatusWorkBufferTooSmall});
    CHECK({SetCertificateSerialNumber(owner.get(), &ones[0], 64)}, {serial(bob, 64), StatusAbsent});
    CHECK({SetCertificateIssuer(owner.get(), bob.get())}, {GetCertificateExtensions(owner.get(), &handle)});
    CHECK({AddExtension(handle, "2.5.29.14", Tlv(4, Bytes(32, 1)))}, {serial(bob, 64)});
    CHECK({serial(eve, 64), StatusNotEqual}, {serial(bob, 63), StatusNotEqual},
          {serial(bob, 65), StatusWorkBufferTooSmall});
    CHECK({key(32)}, {key(31), StatusNotEqual}, {key(0), StatusNotEqual}, {ClearX509Extensions(handle)},
          {AddExtension(handle, "2.5.29.14", Tlv(4, Bytes(33, 1)))}, {key(32), StatusWorkBufferTooSmall});
}

// Signers that end in lists of indefinite length without an end: each is four bytes longer as DER.
Bytes Loose(uint32_t count, bool der) {
    const Bytes value = Tlv(4, Bytes(300)), inner = OidTlv("1.2.3") + (der ? Tlv(49, value) : Hex("3180") + value);
    const Bytes outer = der ? Tlv(0xA1, Tlv(48, inner)) : Hex("A180") + Tlv(48, inner);
    return count == 0 ? Bytes() : Signer(ByKey(0), {}, outer) + Loose(count - 1, der);
}

TEST(Removal, GivesTheRestOrTheContent) {
    // clang-format off
    const std::tuple<uint32_t, Bytes, Status, Bytes> rows[] = {
        {0, kBoth, StatusBadArgument, {}}, {3, kBoth, StatusBadArgument, {}}, {1, kBoth, StatusOk, Of(kFirst)},
        {2, kBoth, StatusOk, Of(kSecond)}, {2, Of(kFirst), StatusBadArgument, {}}, {1, Of(kFirst), StatusOk, kAbc},
        {1, Of({}), StatusOk, kAbc}, {1, Of(kFirst, {}), StatusNotFound, {}},
        {1, Of(kFirst, Tlv(0xA0, Tlv(4, {}))), StatusNotFound, {}},
        {1, Of(kSecond + kFirst, {}), StatusOk, Of(kFirst, {})},
        {1, Of(kBare + Loose(7, false)), StatusOk, Of(Loose(7, true))},
        {1, Of(kBare + Loose(8, false)), StatusBufferTooSmall, {}}};
    // clang-format on
    for (const auto& [number, data, status, result] : rows) {
        uint32_t n = 7777;
        EXPECT_EQ(DeleteBufferCmsSignerInfo(number, &data[0], Size(data), nullptr, &n), status) << ToHex(data);
        EXPECT_EQ(n, status == 0 ? Size(result) : 7777u) << ToHex(data);
        const Bytes left = status != 0 ? Bytes() : Fetch(DeleteBufferCmsSignerInfo, number, &data[0], Size(data));
        EXPECT_EQ(ToHex(left), ToHex(result));
    }
}

TEST(Files, AreReadFirstAndWrittenLast) {
    const std::string path = testing::TempDir() + "tlvforge" + std::to_string(getpid());
    const std::string none = path + "/none", empty = NullDevice();
    LibraryTime time = kUnset;
    const auto query = [&](uint32_t number, auto& from) { return GetCmsSignatureTime(number, from.c_str(), &time); };
    const auto remove = [](auto& from, auto& to) { return DeleteCmsSignerInfo(1, from.c_str(), to.c_str()); };
    const auto content = [&] {
        std::ifstream stream(path, std::ios::binary);
        return Bytes(std::istreambuf_iterator<char>(stream), {});
    };
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(&kBoth[0]), Size(kBoth));
    CHECK({query(0, none), StatusFileOpenFailed}, {query(0, path), StatusBadArgument},
          {query(1, empty), StatusBadArgument}, {remove(path, none), StatusFileOpenFailed}, {query(2, path)},
          {CompareTime(&time, &kTime), 0});
#ifndef _WIN32
    int ends[2] = {};
    EXPECT_EQ(pipe(ends), 0);
    const std::string full = "/dev/full", pipes = "/proc/self/fd/" + std::to_string(ends[0]);
    CHECK({query(1, pipes), StatusFileSeekFailed}, {remove(path, full), StatusFileWriteShort}, {close(ends[0]), 0},
          {close(ends[1]), 0});
#endif
    EXPECT_EQ(content(), kBoth);
    EXPECT_STATUS(StatusOk, remove(path, path));
    EXPECT_EQ(content(), Of(kFirst));
    EXPECT_STATUS(StatusOk, remove(path, path));
    EXPECT_EQ(content(), kAbc);
    std::filesystem::resize_file(path, 300000001);
    CHECK({query(1, path), StatusBadArgument}, {remove(path, path), StatusBadArgument});
    EXPECT_TRUE(std::filesystem::remove(path));
}

Bytes With(const Bytes& attributes) { return Of(Signer(BySerial(kOne), Tlv(0xA0, attributes))); }
Bytes WithOid(uint32_t size) { return With(Tlv(48, Tlv(6, Bytes(size, 1)) + Tlv(49, kNull)) + kStated); }
Bytes WithValue(uint32_t size) { return With(AttributeTlv("1.2.3", Tlv(4, Bytes(size - 4))) + kStated); }
Bytes WithSid(const Bytes& sid) { return Of(Signer(sid)); }

TEST(SigningTime, FollowsTheText) {
    const Bytes twice = AttributeTlv("1.2.3", kNull + kNull), text = Text("1, Bob"), unread(1, '?');
    const Bytes bad = AttributeTlv(kPkcs9 + "5", Tlv(23, kOne)),
                notFound = Hex("CFEEE4EFE8F1E0EDF220EDE520EDE0E9E4E5ED");
    // clang-format off
    const std::tuple<uint32_t, Bytes, Status, Bytes> rows[] = {
        {0, kBoth, StatusBadArgument, unread}, {1, Of(kFirst, {}, "1"), StatusWrongContentType, unread},
        {1, kEmpty, StatusBadEncoding, unread}, {1, Of({}), StatusNotFound, unread},
        {3, kBoth, StatusNotFound, unread}, {2, kBoth, StatusOk, text}, {1, kBoth, StatusNotFound, Text("11, Bob")},
        {1, With(kOther), StatusNotFound, text}, {1, With(kOther + kStated + bad), StatusOk, text},
        {1, With(bad + kStated), StatusBadValue, text},
        {1, With(AttributeTlv(kPkcs9 + "5", kNull + kNull)), StatusBadSignerData, text},
        {1, With(AttributeTlv("1.2", {}) + kStated), StatusBadSignerData, text},
        {1, With(twice + kStated), StatusBadSignerData, text}, {1, With(kStated + twice), StatusOk, text},
        {1, WithValue(8192), StatusOk, text}, {1, WithValue(8193), StatusBadSignerData, text},
        {1, WithOid(99), StatusOk, text}, {1, WithOid(100), StatusBadSignerData, text},
        {1, WithSid(ByKey(0)), StatusBadSignerData, unread}, {1, WithSid(ByKey(4)), StatusOk, notFound},
        {1, WithSid(ByKey(5)), StatusBufferTooSmall, unread},
        {1, WithSid(BySerial(Bytes(1024, 1))), StatusOk, Text("Bob")},
        {1, WithSid(BySerial(Bytes(1025, 1))), StatusBufferTooSmall, unread},
        {1, WithSid(ByOnes(1020)), StatusOk, Bytes(1020, '1') + Text(", ")},
        {1, WithSid(ByOnes(1021)), StatusBufferTooSmall, unread},
        {1, WithSid(ByOnes(1024)), StatusBufferTooSmall, unread}};
    // clang-format on
    for (const auto& [number, data, status, expected] : rows) {
        LibraryTime time = kUnset;
        Bytes given(2000, '?');
        uint32_t n = 2000;
        CHECK({GetBufferCmsSignatureTimeAndCN(number, &data[0], Size(data), &time, &given[0], &n), status});
        given.resize(n == 2000 ? 1 : n);
        EXPECT_EQ(ToHex(given), ToHex(expected)) << ToHex(data);
        EXPECT_EQ(CompareTime(&time, status == 0 ? &kTime : &kUnset), 0) << ToHex(data);
    }
    EXPECT_STATUS(StatusOk, GetBufferCmsSignatureTime(1, &kBoth[0], Size(kBoth), nullptr));
}

}  // namespace
