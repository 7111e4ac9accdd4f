// The interface for C++: what its templates make of the C functions, and what stands in the headers alone.
#include "tlvforge/tlvforge.hpp"

#include <ctime>
#include <fstream>
#include <set>
#include <sstream>

#include "tsp/arguments.h"

namespace {

using namespace tlvforge;
using std::chrono::seconds;
using support::Hex;
using support::operator+;

constexpr Oid kCommonName("2.5.4.3"), kKeyUsage("2.5.29.15"), kSha256("2.16.840.1.101.3.4.2.1");

// --- What a call becomes ---

// Which outputs are owned, and what they are, where no other use would refuse to compile.
template <class Expected, class Actual>
constexpr bool Is = std::is_same_v<Expected, Actual>;
constexpr Certificate* kCertificate = nullptr;
static_assert(Is<Handle<Certificate>, decltype(Get(CreateCertificateCopy, kCertificate))>);
static_assert(Is<Handle<X509Extension>, decltype(Get(CreateX509Extension, kKeyUsage, 1, Bytes()))>);
static_assert(Is<Handle<X509Name>, decltype(Get(GetX509NameFromGeneralNames, nullptr))>);
static_assert(Is<CmsSignerInfo*, decltype(Get(AddCmsSignedDataSignerInfo, nullptr))>);
static_assert(Is<std::tuple<Bytes, Handle<X509GeneralNames>, Bytes>,
                 decltype(Get(GetCertificateAuthorityKeyIdentifier, kCertificate))>);
static_assert(Is<std::pair<Handle<ESSCertIDs>, Handle<ExtensionCertificatePolicies>>,
                 decltype(Get(DecodeRsaAttributeSigningCertificateValue, Bytes()))>);
static_assert(Is<std::tuple<Bytes, uint32_t, Bytes>, decltype(Get(GetX509ExtensionsExtension, X509Extensions(), 0))>);
static_assert(Is<std::tuple<Bytes, uint8_t, Bytes>, decltype(Get(GetX509NameEntry, nullptr, 0, 0))>);
static_assert(sizeof(Handle<Certificate>) == sizeof(void*));

Handle<X509Name> NameOf(std::initializer_list<std::pair<const char*, std::string>> entries) {
    auto name = Create<X509Name>();
    for (const auto& [oid, text] : entries) AddEntry(name, Oid::Parsed(oid), text);
    return name;
}

// A certificate that encodes, with two extensions.
Handle<Certificate> Sample() {
    auto certificate = Create<Certificate>();
    const auto name = NameOf({{"2.5.4.6", "DE"}, {"2.5.4.3", "Anna"}});
    Call(SetCertificateSerialNumber, certificate, Bytes{0x1F, 0x2E});
    Call(SetCertificateIssuer, certificate, name);
    Call(SetCertificateSubject, certificate, name);
    Call(SetCertificateValidNotBefore, certificate, LibraryTime{2026, 3, 1, 0, 0, 0});
    Call(SetCertificateValidNotAfter, certificate, TimePoint(seconds(1774999999)));
    const Oid rsa = Oid::Parsed("1.2.840.113549.1.1.1");
    Call(SetCertificatePublicKeyAlgorithmOidAndParameters, certificate, rsa, Bytes{5, 0});
    Call(SetCertificateSignatureAlgorithmOidAndParameters, certificate, rsa, Bytes{5, 0});
    Call(SetCertificatePublicKey, certificate, Bytes(20, 7));
    Call(SetCertificateSignature, certificate, Bytes(20, 9));
    const X509Extensions extensions = Get(GetCertificateExtensions, certificate);
    Call(AddX509ExtensionsExtension, extensions, kKeyUsage, true, Get(EncodeExtensionKeyUsage, 0x80));
    Call(SetCertificateAuthorityKeyIdentifier, certificate, certificate);
    return certificate;
}

TEST(Face, CallsFetchWhatAFunctionStores) {
    const auto certificate = Decode<Certificate>(Encode(Sample()));
    EXPECT_EQ(Get(GetCertificateSerialNumber, certificate), (Bytes{0x1F, 0x2E}));
    EXPECT_EQ(Get<std::string>(GetCertificateSerialNumber, certificate.get()), "\x1F.");
    EXPECT_EQ((Get<Oid, Bytes>(GetCertificateSignatureAlgorithmOidAndParameters, certificate)),
              std::pair(Oid("1.2.840.113549.1.1.1"), (Bytes{5, 0})));
    EXPECT_EQ(Get<TimePoint>(GetCertificateValidNotAfter, certificate), TimePoint(seconds(1774999999)));
    EXPECT_EQ(Get(ConvertOidToString, kKeyUsage), "2.5.29.15");
    EXPECT_EQ(Get(ConvertStringToOid, std::string("2.5.29.15")), Bytes(kKeyUsage.data(), kKeyUsage.data() + 4));
    EXPECT_EQ(Get(DecodePem, Get(EncodePem, "content", "X")), support::Text("content"));
    EXPECT_EQ(GetText(GetCertificateExtensionValue, certificate, kKeyUsage), "\3\2\7\x80");
    EXPECT_EQ((Get<bool, uint32_t>(DecodeExtensionBasicConstraints, Hex("30 06 01 01 FF 02 01 05"))),
              std::pair(true, 5u));
    const auto [keyId, issuer, serial] = Get(GetCertificateAuthorityKeyIdentifier, certificate);
    EXPECT_TRUE(keyId.empty());
    EXPECT_EQ(ToText(Get(GetX509NameFromGeneralNames, issuer)), "CN=Anna,C=DE");
    EXPECT_EQ(serial, (Bytes{0x1F, 0x2E}));
    Bytes reused(100);
    const uint8_t* const before = reused.data();
    GetInto(reused, GetCertificateSerialNumber, certificate);
    EXPECT_TRUE(reused.size() == 2 && reused.data() == before);
    // Functors stand for functions, and nothing is passed on as null.
    uint32_t given = 0;
    const auto count = [&](const uint8_t* data, uint32_t length, uint32_t* sum) {
        *sum = data == nullptr ? 100 : length;
        ++given;
        return StatusOk;
    };
    const char* const none = nullptr;
    EXPECT_EQ(Get(count, nullptr) + Get(count, none) + Get(count, Bytes()) + Get(count, "ab"), 202u);
    EXPECT_EQ(given, 4u);
}

TEST(Face, FailuresSayWhatFailed) {
    const auto certificate = Sample();
    const auto refused = nothrow::Decode<Certificate>(Hex("30 03 02 01"));
    EXPECT_STATUS(StatusBadEncoding, refused.status());
#if __has_include(<dlfcn.h>)
    EXPECT_EQ(refused.failure().call, "DecodeCertificate");
    EXPECT_EQ(refused.failure().text().find("DecodeCertificate: the bytes aren't well-formed BER"), 0u);
#endif
    try {
        static_cast<void>(*refused);
        FAIL();
    } catch (const Error& error) {
        EXPECT_STATUS(StatusBadEncoding, error.status());
        EXPECT_STREQ(error.text(), StatusText(StatusBadEncoding));
        EXPECT_STREQ(error.what(), refused.failure().text().c_str());
    }
    EXPECT_EQ(Find(GetCertificateExtensionValue, certificate, Oid("2.5.29.19")), std::nullopt);
    EXPECT_EQ(Find(GetCertificateExtensionValue, certificate, kKeyUsage), Hex("03 02 07 80"));
    EXPECT_THROW(Find(GetCertificateExtensionValue, nullptr, kKeyUsage), Error);
    EXPECT_TRUE(Same(CompareX509Names, NameOf({{"2.5.4.3", "A"}}), NameOf({{"2.5.4.3", "A"}})));
    EXPECT_FALSE(Same(CompareX509Names, NameOf({{"2.5.4.3", "A"}}), NameOf({{"2.5.4.3", "B"}})));
    EXPECT_THROW(Same(CompareX509Names, Create<X509Name>(), nullptr), Error);
    // What can't be said in the form of the C function isn't passed on.
    const Bytes cutOid{3, 0x55};
    EXPECT_EQ(nothrow::Get(GetCertificateExtensionValue, certificate, cutOid).failure().file, nullptr);
    EXPECT_EQ(nothrow::Get(GetCertificateExtensionValue, certificate, cutOid).status(), StatusBadArgument);
    EXPECT_STATUS(StatusBadArgument, nothrow::Get(SetCertificateVersion, certificate, uint64_t{1} << 32).status(),
                  nothrow::Get(SetCertificateVersion, certificate, UINT32_MAX).status(),
                  nothrow::Get(EncodeExtensionKeyUsage, -1).status());
    EXPECT_STATUS(StatusBadTime,
                  nothrow::Get(SetCertificateValidNotAfter, certificate, TimePoint(seconds(5'000'000'000))).status());
    // An identifier that is too long for an Oid can still be read as bytes.
    const auto decoded = Decode<X509Extensions>(
        support::Tlv(0x30, support::Tlv(0x30, support::Tlv(6, Bytes(300, 1)) + Hex("04 01 00"))));
    auto range = nothrow::Extensions(decoded);
    for (auto& extension : range) ADD_FAILURE() << extension.oid;
    EXPECT_STATUS(StatusBufferTooSmall, range.status());
    EXPECT_THROW(Extensions(decoded).begin(), Error);
    EXPECT_EQ(std::get<0>(Get(GetX509ExtensionsExtension, decoded, 0)).size(), 301u);
}

TEST(Face, AdoptedObjectsAreLeftOnSuccessAlone) {
    const auto list = Create<Certificates>();
    auto certificate = Sample();
    EXPECT_EQ(nothrow::Call(AddCertificateToCertificates, nullptr, std::move(certificate)).status(), StatusBadArgument);
    ASSERT_TRUE(certificate);
    Call(AddCertificateToCertificates, list, std::move(certificate));
    EXPECT_FALSE(certificate);
    Call(AddCertificateToCertificates, list, Sample());
    // A flag says whether the name is adopted.
    auto copied = NameOf({{"2.5.4.3", "A"}}), adopted = NameOf({{"2.5.4.3", "B"}});
    Certificate* const lent = Get(GetCertificatesCertificate, list, 1);
    Call(SetCertificateIssuer_i, lent, std::move(copied), 1);
    EXPECT_TRUE(copied);
    Call(SetCertificateIssuer_i, lent, std::move(adopted), 0);
    EXPECT_FALSE(adopted);
    EXPECT_EQ(ToText(Get(GetCertificateIssuer, lent)), "CN=B");
    // Each of several arguments is adopted or stays.
    const auto points = Create<ExtensionCrlDistributionPoints>();
    auto full = Create<X509GeneralNames>(), issuer = Create<X509GeneralNames>();
    auto relative = NameOf({{"2.5.4.3", "A"}});
    EXPECT_FALSE(nothrow::Call(AddExtensionCrlDistributionPoint, points, std::move(full), std::move(relative), 0,
                               std::move(issuer)));
    EXPECT_TRUE(full && relative && issuer);
    Call(AddExtensionCrlDistributionPoint, points, std::move(full), nullptr, 0x40, std::move(issuer));
    EXPECT_FALSE(full || issuer);
    EXPECT_EQ((*Members(points).begin()).reasons, 0x40u);
}

// --- Lists ---

TEST(Face, ListsAreRanges) {
    const auto certificate = Sample();
    std::string text;
    for (auto& [oid, critical, value] : Extensions(certificate))
        text += oid.text() + (critical ? "! " : " ") + std::to_string(value.size()) + "; ";
    EXPECT_EQ(text, "2.5.29.15! 4; 2.5.29.35 40; ");

    const auto request = Create<PKCS10CertReq>();
    EXPECT_TRUE(Extensions(request).empty());
    Call(SetPKCS10CertReqExtensions, request, Get(GetCertificateExtensions, certificate));
    auto requested = Extensions(request);
    EXPECT_EQ(std::distance(requested.begin(), requested.end()), 2);
    for (auto& [oid, values, index] : Attributes(Get(GetPKCS10CertReqAttributes, request)))
        EXPECT_TRUE(oid == Oid("1.2.840.113549.1.9.14") && values.size() == 1 && index == 0);

    const auto crl = Create<X509Crl>();
    for (uint8_t i = 1; i < 4; ++i) Call(AddX509CrlRevokedCertificate, crl, Bytes{i}, TimePoint(seconds(i)));
    uint8_t expected = 0;
    for (auto& entry : Revoked(crl)) {
        EXPECT_EQ(entry.serialNumber, Bytes{++expected});
        EXPECT_EQ(ToChrono(entry.revocationDate), TimePoint(seconds(expected)));
        EXPECT_TRUE(entry.extensions != nullptr);
    }
    EXPECT_EQ(expected, 3);

    const auto names = Create<X509GeneralNames>();
    Call(AddX509GeneralName, names, X509GeneralNameDNSName, "a.example");
    Call(AddX509GeneralName, names, X509GeneralNameIPAddress, Bytes{127, 0, 0, 1});
    EXPECT_EQ(Members(names).begin()->value, support::Text("a.example"));
    for (const auto& [alternative, value] : List(GetX509GeneralNameCount, GetX509GeneralName, names))
        EXPECT_EQ(value.size(), alternative == 7 ? 4u : 9u);
    const auto purposes = Create<ExtensionExtendedKeyUsage>();
    Call(AddExtensionExtendedKeyUsage, purposes, kKeyUsage);
    for (const Oid& purpose : Members(purposes)) EXPECT_EQ(purpose, kKeyUsage);
    EXPECT_EQ(Members(purposes).size(), 1u);
}

// --- Object identifiers, times, names, PEM ---

static_assert(kKeyUsage.size() == 4 && kKeyUsage.data()[0] == 3 && kKeyUsage != kCommonName && kCommonName < kKeyUsage);
static_assert(Oid::Parsed("1.2.3").content().size() == 2 && Oid::Parsed("1.2.").empty());

TEST(Face, ObjectIdentifiersFromAndToText) {
    for (const std::string row : {"0.0=01 00", "0.39=01 27", "1.0=01 28", "1.39=01 4F", "2.0=01 50", "2.47=01 7F",
                                  "2.48=02 81 00", "2.999.1=03 88 37 01", "1.2.643.2.2.31.1=07 2A 85 03 02 02 1F 01",
                                  "2.5.18446744073709551526=0B 55 81 FF FF FF FF FF FF FF FF 26"}) {
        const std::string text = row.substr(0, row.find('='));
        const Bytes prefixed = Hex(row.substr(text.size() + 1));
        EXPECT_EQ(ByteView(Oid::Parsed(text)), ByteView(prefixed)) << text;
        EXPECT_EQ(Oid::Prefixed(prefixed).text(), text);
    }
    EXPECT_EQ(Oid::Prefixed(Hex("0B 55 87 FF FF FF FF FF FF FF FF 7F")).text(), "2.5.73786976294838206463");
    for (const char* text :
         {"", "1", "3.1", "1.40", "1..2", "1.2.", ".1.2", "01.2", "1.02", "1.2 ", "1.2.18446744073709551616"}) {
        EXPECT_TRUE(Oid::Parsed(text).empty()) << text;
    }
    for (const char* bytes : {"", "02 2A", "01 2A 03"}) EXPECT_TRUE(Oid::Prefixed(Hex(bytes)).empty()) << bytes;
    EXPECT_EQ((std::ostringstream() << kKeyUsage).str(), "2.5.29.15");
}

TEST(Face, TimesFromAndToChrono) {
    for (int64_t day = -25567; day < 47847; ++day) {
        const time_t last = day * 86400 + 86399;
        const tm* expected = std::gmtime(&last);
        if (expected == nullptr) continue;  // Windows knows none before 1970
        const LibraryTime time = ToLibraryTime(TimePoint(seconds(last)));
        ASSERT_TRUE(time.year == expected->tm_year + 1900u && time.month == expected->tm_mon + 1u &&
                    time.day == static_cast<uint32_t>(expected->tm_mday) && time.hour == 23 && time.second == 59)
            << day;
        ASSERT_EQ(ToChrono(time), TimePoint(seconds(last))) << day;
    }
    EXPECT_EQ(nothrow::ToLibraryTime(TimePoint(seconds(-25567 * int64_t{86400} - 1))).status(), StatusBadTime);
    EXPECT_EQ(nothrow::ToLibraryTime(TimePoint(seconds(47847 * int64_t{86400}))).status(), StatusBadTime);
    const LibraryPreciseTime precise = ToLibraryPreciseTime(PreciseTimePoint(std::chrono::microseconds(-1)));
    EXPECT_TRUE(precise.year == 1969 && precise.second == 59 && precise.millisecond == 999 &&
                precise.microsecond == 999);
    EXPECT_EQ(ToChrono(precise), PreciseTimePoint(std::chrono::microseconds(-1)));
    const auto null = [](LibraryTime* time) noexcept { return *time = {}, StatusOk; };
    EXPECT_LT(Get<std::chrono::system_clock::time_point>(null), TimePoint(seconds(-25567 * int64_t{86400})));
    EXPECT_EQ(ToText(LibraryTime{2026, 3, 1, 9, 8, 7}), "2026-03-01T09:08:07Z");
}

TEST(Face, NamesAreLinesOfUtf8) {
    const std::tuple<uint8_t, const char*, const char*> rows[] = {
        {Asn1KindUTF8String, "D0 90 C3 A4", "CN=Аä"},
        {Asn1KindBMPString, "04 10 00 E4 D8 3D DE 00", "CN=Аä😀"},
        {Asn1KindUniversalString, "00 00 04 10 00 01 F6 00", "CN=А😀"},
        {Asn1KindTeletexString, "E4 41", "CN=äA"},
        {Asn1KindPrintableString, "41 2C 42", "CN=A\\,B"},
        {Asn1KindIA5String, "20 23 41 20", "CN=\\ #A\\ "},
        {Asn1KindUTF8String, "23 22 2B 3B 3C 3D 3E 5C 0A", "CN=\\#\\\"\\+\\;\\<=\\>\\\\\\0A"},
        {Asn1KindUTF8String, "", "CN="},
        {Asn1KindUTF8String, "C3", "CN=#0C01C3"},                // cut off
        {Asn1KindUTF8String, "C0 80", "CN=#0C02C080"},           // longer than needed
        {Asn1KindUTF8String, "ED A0 80", "CN=#0C03EDA080"},      // half of a pair
        {Asn1KindBMPString, "D8 3D 00 41", "CN=#1E04D83D0041"},  // likewise
        {Asn1KindBMPString, "41", "CN=#1E0141"},
        {Asn1KindOctetString, "41", "CN=#040141"},
    };
    for (const auto& [tag, value, line] : rows) {
        const auto name = Create<X509Name>();
        Call(AddX509NameEntry, name, Hex(value), tag, kCommonName, 1);
        EXPECT_EQ(ToText(name), line) << value;
    }
    auto name = NameOf({{"2.5.4.6", "DE"}, {"2.5.4.10", "Example, Inc."}, {"2.5.4.5", "12"}});
    Call(AddX509NameEntry, name, "x", Asn1KindUTF8String, Oid("1.2.3"), 1);
    Call(AddX509NameEntry, name, "y", Asn1KindUTF8String, kCommonName, 0);
    EXPECT_EQ(ToText(name), "1.2.3=#0C0178+CN=y,serialNumber=12,O=Example\\, Inc.,C=DE");
    EXPECT_EQ(Entries(name)[2].tag, Asn1KindPrintableString);
    EXPECT_EQ(ToText(Create<X509Name>()), "");
}

TEST(Face, PemBlocksOfManyShapes) {
    const std::pair<const char*, const char*> rows[] = {
        // A text, and the labels and contents of its blocks; null for one that is refused.
        {"-----BEGIN A-----\nYWJj\n-----END A-----\n", "A=abc;"},
        {"\xEF\xBB\xBF-----BEGIN A B-----\r\n\r\nYW\tJj  \r\n \r\n  -----END A B-----", "A B=abc;"},
        {"subject=x\n-----BEGIN A-----\nYQ==\n-----END A-----\nnoise\n-----BEGIN B-----\nYg=\n=\n-----END B-----\n",
         "A=a;B=b;"},
        {"-----BEGIN A-----\nProc-Type: 4,ENCRYPTED\nDEK-Info: X\n\nYWJj\n-----END A-----\n", "A=abc;"},
        {"-----BEGIN A-----\nYW\nJj\n----- END A -----\n", "A=abc;"},
        {"----BEGIN A----\nYWJj\n", ""},
        {"\x30\x03\x02\x01\x05", ""},
        {"", ""},
        {"-----BEGIN A-----\nYWJj\n", nullptr},
        {"-----BEGIN A-----\nYWJj\n-----END B-----\n", nullptr},
        {"-----BEGIN A-----\nYW*j\n-----END A-----\n", nullptr},
        {"-----BEGIN A-----\nYWJ\n-----END A-----\n", nullptr},
        {"-----BEGIN A-----\n-----END A-----\n", nullptr},
        {"-----BEGIN A-----\nYWJj\n-----BEGIN B-----\nYWJj\n-----END B-----\n", nullptr},
    };
    for (const auto& [pem, expected] : rows) {
        const auto blocks = nothrow::PemBlocks(pem);
        EXPECT_EQ(blocks.status(), expected == nullptr ? StatusBadPem : StatusOk) << pem;
        if (!blocks || expected == nullptr) continue;
        std::string text;
        for (const auto& [label, headers, bytes] : *blocks)
            text += label + "=" + std::string(ByteView(bytes).text()) + ";";
        EXPECT_EQ(text, expected);
    }
    EXPECT_EQ(PemBlocks(rows[3].first)[0].headers, "Proc-Type: 4,ENCRYPTED\nDEK-Info: X\n");
    EXPECT_EQ(nothrow::PemBlocks("\n\n-----BEGIN A-----\n").failure().call, "PemBlocks, line 3");
    EXPECT_EQ(nothrow::ReadFile("/nowhere").status(), StatusFileOpenFailed);
#ifndef _WIN32
    EXPECT_EQ(nothrow::ReadFile("/").status(), StatusFileReadShort);  // a folder can be opened
#endif
    const Bytes large(200'000, 0xA5);
    const std::string path = testing::TempDir() + "/face.bin";
    WriteFile(path, large);
    EXPECT_EQ(ReadFile(path), large);
    EXPECT_EQ(nothrow::WriteFile("/dev/full", large).status(), StatusFileWriteShort);
}

// --- Messages, statuses ---

TEST(Face, StructsStandForManyArguments) {
    const Bytes signer = Encode(Sample());
    const Bytes digest(32, 1), value(256, 2);
    FileSignature parts{.content = "text",
                        .digest = digest,
                        .signingTime = LibraryTime{2026, 3, 1, 0, 0, 0},
                        .digestAlgorithm = {kSha256},
                        .signerCertificate = signer,
                        .certificates = {signer},
                        .signatureAlgorithm = {Oid("1.2.840.113549.1.1.1"), {5, 0}},
                        .signature = value};
    const auto info = Decode<CmsContentInfo>(Encode(parts));
    const auto signedData = Decode<CmsSignedData>(Get(GetCmsContentInfoContent, info));
    EXPECT_EQ(GetText(GetCmsSignedDataContent, signedData), "text");
    CHECK({Get(GetCmsSignedDataCertificatesCount, signedData), 1});
    CmsSignerInfo* const only = *Members(signedData).begin();
    EXPECT_EQ(Get(GetCmsSignerInfoEncodedSignedAttributes, only), ToBeSigned(parts));
    EXPECT_EQ(Get(GetCmsSignerInfoSignature, only), value);
    parts.useSignedAttributes = false;
    EXPECT_EQ(ToBeSigned(parts), support::Text("text"));
}

TEST(Face, TimeStampsAreStructs) {
    using namespace timestamps;
    const auto request = DecodeTimeStampRequest(kRequest);
    EXPECT_TRUE(request.version == 1 && request.hashAlgorithm.oid == kSha256 && request.hash == kHash);
    EXPECT_TRUE(request.policy == Oid::Prefixed(kPolicy) && request.nonce == kNonce && request.certificateWanted);
    EXPECT_EQ(Encode(request), kRequest);
    EXPECT_EQ(Encode(TimeStampRequest{.hashAlgorithm = {kSha256}, .hash = kHash}),
              Tlv(48, kStart + Tlv(48, Tlv(48, Tlv(6, Bytes(kSha256.content()))) + Tlv(4, kHash))));
    const auto info = DecodeTimeStampInfo(kInfo);
    EXPECT_TRUE(info.policy == request.policy && info.hash == kHash && info.serialNumber == kSerial &&
                info.nonce == kNonce && info.accuracy.microseconds == 7 && info.genTime.millisecond == 120);
    EXPECT_EQ(Encode(info), kInfo);

    TimeStampResponse response{.status = 2, .failInfo = 0x80};
    response.statusString = Create<PKIFreeText>();
    Call(AddPKIFreeTextString, response.statusString, "no");
    const auto answer = DecodeTimeStampResponse(Encode(response));
    EXPECT_TRUE(answer.status == 2 && answer.failInfo == 0x80 && !answer.token);
    EXPECT_EQ(*Members(answer.statusString).begin(), "no");
}

TEST(Face, EveryStatusHasASentence) {
    std::ifstream header(TLVFORGE_SOURCE_DIR "/include/tlvforge/status.h");
    std::set<std::string> sentences{StatusText(2)};
    for (std::string line; std::getline(header, line);) {
        if (!line.starts_with("TLVFORGE_NUMBER(")) continue;
        const auto status = static_cast<Status>(std::stoul(line.substr(line.find(", ") + 2)));
        EXPECT_TRUE(sentences.insert(StatusText(status)).second) << line;
    }
    EXPECT_EQ(sentences.size(), 29u);
}

}  // namespace
