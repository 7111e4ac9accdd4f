#include <sstream>

#include "support.h"

using namespace support;

namespace {

using Points = Owned<ExtensionCrlDistributionPoints, FreeExtensionCrlDistributionPoints>;

const uint8_t kBytes[] = {0x00, 0x05}, kOid[] = {3, 0x55, 0x1D, 0x20};
const LibraryTime kTime = {2024, 2, 29, 1, 2, 3}, kNullTime = {};
const std::string kTimeText = "32303234303232393031303230335A";  // 20240229010203Z
const std::string kFullName = "A005 A003 860175";                // the URI "u" in a DistributionPointName
const std::string kRelativeName = "A002 3000";

X509GeneralNames* NewUri() {
    const uint8_t uri = 'u';
    auto names = Make<FreeX509GeneralNames>(CreateX509GeneralNames);
    EXPECT_EQ(AddX509GeneralName(names.get(), X509GeneralNameUniformResourceIdentifier, &uri, 1), StatusOk);
    return names.release();
}

std::ostream& operator<<(std::ostream& out, const LibraryTime& time) { return out << time.year; }

// What a call answers, as words: the status, then the outputs.
template <class... Parts>
std::string Words(Status status, const Parts&... parts) {
    std::ostringstream words;
    words << status;
    ((words << " " << parts), ...);
    return words.str();
}

template <auto Decode, class Output>
std::string Say(const uint8_t* data, uint32_t length) {
    Output output = {};
    const Status status = Decode(data, length, &output);
    return Words(status, output);
}

// The key identifier has room for one byte.
std::string SayAuthority(const uint8_t* data, uint32_t length) {
    uint8_t keyId[1], serial[3] = {};
    uint32_t keyIdLength = 1, serialLength = 3;
    X509GeneralNames* issuer = nullptr;
    const Status status =
        DecodeExtensionAuthorityKeyIdentifier(data, length, keyId, &keyIdLength, &issuer, serial, &serialLength);
    const Owned<X509GeneralNames, FreeX509GeneralNames> owned(issuer);
    return Words(status, keyIdLength, issuer ? "issuer" : "-", ToHex({serial, serial + serialLength}));
}

// Names, reasons, the flags and whether they are there.
std::string SayIssuingPoint(const uint8_t* data, uint32_t length) {
    X509GeneralNames* full = nullptr;
    X509Name* relative = nullptr;
    Bytes flag(4, 7);
    uint32_t has[5] = {7, 7, 7, 7, 7}, reasons = 7;
    const Status status =
        DecodeExtensionIssuingDistributionPoint(data, length, &full, &relative, &flag[0], &has[0], &flag[1], &has[1],
                                                &reasons, &has[2], &flag[2], &has[3], &flag[3], &has[4]);
    return Words(status, full ? "full" : relative ? "relative" : "-", reasons, ToHex(flag), ToHex({has, has + 5}));
}

std::string SayPoint(const Points& points, uint32_t index) {
    X509GeneralNames *full = nullptr, *issuer = nullptr;
    X509Name* relative = nullptr;
    uint32_t reasons = 7;
    const Status status = GetExtensionCrlDistributionPoint(points.get(), index, &full, &relative, &reasons, &issuer);
    return Words(status, full ? "full" : relative ? "relative" : "-", reasons, issuer ? "issuer" : "-");
}

}  // namespace

TEST(StandardExtension, HasTheseBytesOnTheWire) {
    const Owned<X509GeneralNames, FreeX509GeneralNames> names(NewUri());
    const auto name = Make<FreeX509Name>(CreateX509Name);
    const auto point = EncodeExtensionIssuingDistributionPoint;
    const std::pair<Bytes, std::string> rows[] = {
        {Fetch(EncodeExtensionNetscapeCertificateType, 0x8000), "0303070080"},
        {Fetch(EncodeExtensionBasicConstraints, 9, 128), "30070101FF02020080"},
        {Fetch(EncodeExtensionReasonCode, 1), "0A0101"},
        {Fetch(EncodeExtensionPrivateKeyUsagePeriod, nullptr, &kTime), "3011810F" + kTimeText},
        {Fetch(EncodeExtensionDeltaCrlIndicator, kBytes, 2), "02020005"},
        // The full name wins, and what is false or not wanted is left out.
        {Fetch(point, names.get(), name.get(), 0, 1, 9, 0, 4, 0, 0, 1, 0, 1), "3007" + kFullName},
        // Reasons stand under the tag of the first flag.
        {Fetch(point, nullptr, name.get(), 1, 1, 2, 1, 64, 1, 3, 1, 4, 1),
         "3014" + kRelativeName + "8101FF 8201FF 81020640 8401FF 8501FF"}};
    for (const auto& [encoded, hex] : rows) EXPECT_EQ(ToHex(encoded), ToHex(Hex(hex)));
    uint32_t length = 0;
    Check({{EncodeExtensionInvalidityDate(&kNullTime, nullptr, &length), 1},
           {EncodeExtensionInvalidityDate(nullptr, nullptr, &length), 32}});
}

TEST(StandardExtension, ReadsWhatIsThereAndRefusesTheRest) {
    const auto usage = Say<DecodeExtensionKeyUsage, uint32_t>;
    const auto reason = Say<DecodeExtensionReasonCode, int32_t>;
    const auto date = Say<DecodeExtensionInvalidityDate, LibraryTime>;
    // clang-format off
    const struct { std::string (*say)(const uint8_t*, uint32_t); std::string hex, answer; } rows[] = {
        {usage, "03020106", "0 6"},     {usage, "0306000102030405", "0 67305985"},      {usage, "", "32 0"},
        {usage, "030207FF", "0 128"},   {reason, "0A050100000000", "49 0"},             {reason, "", "302 0"},
        {reason, "0A01FF", "0 -1"},     {date, "180F" + kTimeText, "0 2024"},           {date, "1800", "302 0"},
        {SayAuthority, "", "32 1 - 000000"},  {SayAuthority, "3003 820105", "0 0 - 05"},
        {SayAuthority, "300E 8002AABB A103860175 8203010203", "49 2 issuer 010203"},
        {date, "180E" + kTimeText, "307 0"},  {SayIssuingPoint, "3000", "0 - 7 00000000 0101000101"},
        {SayIssuingPoint, "3014" + kFullName + "8101FF 81020640 8401FF 8501FF", "0 full 64 FF00FFFF 0101010101"},
        {SayIssuingPoint, "3007" + kRelativeName + "8101FF", "0 - 7 00000000 0101000101"},
        {SayIssuingPoint, "3006 A004A1023000", "302 - 7 07070707 0000000000"},
        {SayIssuingPoint, "3004 81020640", "307 - 7 07070707 0000000000"},
        {SayIssuingPoint, "", "302 - 7 07070707 0000000000"}};
    // clang-format on
    for (const auto& row : rows) {
        const Bytes data = Hex(row.hex) + Bytes{0};  // what follows the element is left alone
        EXPECT_EQ(row.say(data.data(), Size(data) - 1), row.answer) << row.hex;
    }
}

TEST(CrlDistributionPoints, AdoptTheirPartsAndLendThemAgain) {
    const Points points = Make<FreeExtensionCrlDistributionPoints>(CreateExtensionCrlDistributionPoints);
    ExtensionCrlDistributionPoints* list = points.get();
    X509Name* name = Make<FreeX509Name>(CreateX509Name).release();
    X509GeneralNames* uri = NewUri();
    Check({{AddExtensionCrlDistributionPoint(list, uri, name, 0, nullptr), 32},
           {AddExtensionCrlDistributionPoint(list, uri, nullptr, 0, uri), 32},
           {AddExtensionCrlDistributionPoint(list, nullptr, nullptr, 0, nullptr), 32},
           {AddExtensionCrlDistributionPoint(list, uri, nullptr, 0x8040, NewUri()), 0},
           {AddExtensionCrlDistributionPoint(list, nullptr, name, 0x40, nullptr), 0},
           {AddExtensionCrlDistributionPoint(list, nullptr, nullptr, 0x40, nullptr), 0}});
    const Bytes der =
        Hex("3023 3011" + kFullName + "8103074080 A203860175 3008" + kRelativeName + "81020640 300481020640");
    EXPECT_EQ(Fetch(EncodeExtensionCrlDistributionPoints, list), der);
    const Points decoded = Decoded<FreeExtensionCrlDistributionPoints>(DecodeExtensionCrlDistributionPoints, der);
    EXPECT_EQ(SayPoint(points, 0), "0 full 32832 issuer");
    EXPECT_EQ(SayPoint(points, 1), "0 relative 64 -");
    EXPECT_EQ(SayPoint(decoded, 0), "0 full 32832 issuer");
    EXPECT_EQ(SayPoint(decoded, 1), "0 - 0 -") << "a relative name is lost on the way, and what follows it";
    EXPECT_EQ(SayPoint(decoded, 2), "0 - 64 -");
    EXPECT_EQ(SayPoint(decoded, 3), "32 - 7 -");
}

TEST(CrlDistributionPoints, OfACertificateAreReplacedUpToALimit) {
    const auto certificate = Make<FreeCertificate>(CreateCertificate);
    X509Extensions slot = nullptr;
    ASSERT_EQ(GetCertificateExtensions(certificate.get(), &slot), StatusOk);
    // The first takes 2048 bytes with its headers.
    for (const auto& [size, status] : {std::pair(2028, 0u), {1, 0u}, {2029, 49u}, {3000, 49u}}) {
        const std::string url(size, 'u');
        EXPECT_EQ(SetCertificateExtensionCrlDistributionPoints(certificate.get(), url.c_str()), status) << size;
    }
    EXPECT_EQ(Fetch(EncodeX509Extensions, slot), Hex("3014 3012 0603551D1F 040B 3009 3007" + kFullName));
}

TEST(AuthorityInformationAccess, LendsTheLocationWhateverHappensToTheMethod) {
    const auto access = Make<FreeExtensionAuthorityInformationAccess>(CreateExtensionAuthorityInformationAccess);
    X509GeneralName *location = nullptr, *lent = nullptr;
    ASSERT_EQ(AllocX509GeneralNameValue(&location, X509GeneralNameIPAddress, kBytes, 2), StatusOk);
    EXPECT_EQ(AddExtensionAuthorityInformationAccess(access.get(), kOid, location), StatusOk);
    uint8_t method[3];
    uint32_t length = 3;
    EXPECT_EQ(GetExtensionAuthorityInformationAccess(access.get(), 0, method, &length, &lent), 49u);
    EXPECT_EQ(lent, location);
}

TEST(CertificatePolicies, TakeThemselvesAsQualifiersAndStaySafe) {
    const Bytes der = Hex("3019 3010 0603551D20 3009 3007 0603551D25 0500 3005 0603551D21");
    const auto policies = Decoded<FreeExtensionCertificatePolicies>(DecodeExtensionCertificatePolicies, der);
    ExtensionCertificatePolicies* list = policies.get();
    const auto qualifier = [&](uint32_t policy, uint32_t index, uint32_t room = 2) {
        uint8_t oid[4] = {}, value[2] = {};
        uint32_t oidLength = 4, valueLength = room, count = 99;
        const Status status = GetExtensionPolicyQualifier(list, policy, index, oid, &oidLength, value, &valueLength);
        EXPECT_EQ(GetExtensionPolicyQualifiersCount(list, policy, &count), StatusOk);
        return Words(status, ToHex({oid, oid + 4}), ToHex({value, value + 2}), "of", count);
    };
    for (uint32_t i = 0; i < 24; ++i) {  // beyond the first table of a list
        EXPECT_EQ(AddExtensionPolicyQualifier(list, i % 2, kOid, der.data(), 27), StatusOk);
    }
    uint32_t index = 99;
    EXPECT_EQ(Fetch(EncodeExtensionCertificatePolicies, list), der);
    for (uint32_t i = 2; i < 30; ++i) EXPECT_EQ(AddExtensionPolicyInformation(list, kOid, &index), StatusOk);
    EXPECT_EQ(index, 29u);
    EXPECT_EQ(qualifier(0, 0), "0 03551D25 0500 of 13");
    EXPECT_EQ(qualifier(0, 0, 1), "49 03551D25 0000 of 13");
    EXPECT_EQ(qualifier(0, 12), "0 03551D20 0000 of 13");
    EXPECT_EQ(qualifier(1, 0), "0 03551D21 0000 of 12");
    EXPECT_EQ(qualifier(29, 0), "32 00000000 0000 of 0");
    EXPECT_EQ(RemoveExtensionPolicyQualifier(list, 1, 11) | RemoveExtensionPolicyInformation(list, 0), StatusOk);
    EXPECT_EQ(qualifier(0, 0), "0 03551D21 0000 of 11");
}
