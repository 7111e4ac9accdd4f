#include "support.h"

using namespace support;

namespace {

const Bytes kAbc = Text("abc"), kXyz = Text("xyz"), kSha = OidOf("1.3.14.3.2.26"), kNull = Hex("0500");
const Bytes kData = OidTlv("1.2.840.113549.1.7.1"), kSignedData = OidTlv("1.2.840.113549.1.7.2");
const Bytes kName = Hex("300E310C300A06035504030C03616263"), kAlgorithm = Hex("3003060129"), kKey = Hex("03020000");
const Bytes kFields = Hex("02020539") + kAlgorithm + kName + Hex("3004 1700 1700 3000") + Tlv(0x30, kAlgorithm + kKey);
const Bytes kCertificate = Tlv(0x30, Tlv(0x30, kFields) + kAlgorithm + kKey), kNoCertificate(kCertificate.size(), 0x30);

Bytes Message(const Bytes& type, const Bytes& content) { return Tlv(0x30, type + Tlv(0xA0, content)); }

// The arguments of a plain signature with one certificate.
struct Arguments {
    const uint8_t *content = kAbc.data(), *digest = nullptr, *digestOid = kSha.data(), *signatureOid = kSha.data();
    const uint8_t *signature = kXyz.data(), *signer = kCertificate.data(), *certificate = signer;
    const uint8_t* const* certificates = &certificate;
    const LibraryTime* time = nullptr;
    uint32_t contentLength = 3, certificateLength = Size(kCertificate), count = 1, attributes = 0;
    Bytes existing;

    Status operator()(uint8_t* output, uint32_t* length) const {
        return CreateCmsFileSignature2(content, contentLength, digest, 3, time, digestOid, kNull.data(), 2, signer,
                                       Size(kCertificate), certificates, &certificateLength, count, signatureOid,
                                       nullptr, 0, attributes, nullptr, nullptr, signature, 3, existing.data(),
                                       Size(existing), output, length);
    }
};

TEST(FileSignature, HasItsBytes) {
    const Bytes digest = Tlv(0x30, Bytes{6} + kSha + kNull), identifier = Tlv(0x30, kName + Hex("02020539"));
    const Bytes signer = Hex("020101") + identifier + digest + Tlv(0x30, Bytes{6} + kSha) + Tlv(4, kXyz);
    const Bytes content = Tlv(0x30, kData + Hex("A005 0403616263")), certificates = Tlv(0xA0, kCertificate);
    const Bytes fields = Tlv(0x31, digest) + content + certificates + Tlv(0x31, Tlv(0x30, signer));
    EXPECT_EQ(ToHex(Fetch(Arguments())), ToHex(Message(kSignedData, Tlv(0x30, Hex("020101") + fields))));
}

TEST(FileSignature, NoContentIsADetachedSignature) {
    Arguments null, empty;
    null.content = nullptr;
    empty.contentLength = 0;
    EXPECT_EQ(Fetch(null), Fetch(empty));
    EXPECT_EQ(Fetch(null).size() + 7, Fetch(Arguments()).size());
}

TEST(FileSignature, RefusesWhatItCannotUse) {
    static const Bytes start = Hex("0201013100") + Tlv(0x30, kData), bare = Tlv(0x30, start + Hex("3100"));
    static const Bytes plainCrl = Tlv(0x30, start + Hex("A10230003100"));
    // clang-format off
    const std::pair<void (*)(Arguments&), Status> rows[] = {
        {[](auto& a) { a.certificate = nullptr; }, StatusBadArgument},
        {[](auto& a) { a.certificates = nullptr; }, StatusBadArgument},
        {[](auto& a) { a.certificateLength = 0; }, StatusBadArgument},
        {[](auto& a) { a.certificates = nullptr, a.count = 0; }, StatusOk},
        {[](auto& a) { a.attributes = 2; }, StatusBadArgument},
        {[](auto& a) { a.attributes = 2, a.digest = kAbc.data(); }, StatusBadArgument},
        {[](auto& a) { a.signer = kNoCertificate.data(); }, StatusBadEncoding},
        {[](auto& a) { a.existing = Hex("3003"); }, StatusBadEncoding},
        {[](auto& a) { a.existing = Tlv(0x30, kData); }, StatusWrongContentType},
        {[](auto& a) { a.existing = Message(kData, kNull); }, StatusWrongContentType},
        {[](auto& a) { a.existing = Message(kData, bare); }, StatusWrongContentType},
        {[](auto& a) { a.existing = Message(kSignedData, bare); }, StatusOk},
        {[](auto& a) { a.existing = Tlv(0x30, kSignedData); }, StatusBadEncoding},
        {[](auto& a) { a.existing = Message(kSignedData, kNull); }, StatusBadEncoding},
        {[](auto& a) { a.existing = Message(kSignedData, plainCrl); }, StatusBadEncoding}};
    // clang-format on
    for (const auto& row : rows) {
        Arguments arguments;
        uint32_t length = 0;
        row.first(arguments);
        EXPECT_EQ(arguments(nullptr, &length), row.second) << "row " << &row - rows;
    }
}

TEST(FileSignature, SecondSignerSharesTheDocument) {
    const uint8_t *abc = kAbc.data(), *xyz = kXyz.data(), *none = nullptr;
    const LibraryTime time = {2024, 5, 6, 7, 8, 9};
    CmsSignerInfo *first = nullptr, *second = nullptr;
    uint32_t n = 0;
    // clang-format off
    // Content of the first signer and of the second, length of the latter, status, length of the result's.
    const std::tuple<const uint8_t*, const uint8_t*, uint32_t, Status, uint32_t> rows[] = {
        {abc, abc, 3, StatusOk, 3}, {abc, none, 3, StatusOk, 0}, {none, abc, 3, StatusOk, 3},
        {none, none, 3, StatusOk, 0}, {none, xyz, 0, StatusOk, 0}, {abc, xyz, 3, StatusNotEqual, 0},
        {abc, abc, 0, StatusNotEqual, 0}, {abc, abc, 2, StatusNotEqual, 0}};
    // clang-format on
    for (const auto& [before, now, length, status, left] : rows) {
        Arguments a;
        a.content = before;
        a.existing = Fetch(a);
        a.content = now, a.contentLength = length, a.attributes = 2, a.digest = abc, a.time = &time;
        EXPECT_EQ(a(nullptr, &n), status) << before << " " << now << " " << length;
        if (status != StatusOk) continue;
        const auto info = Decoded<FreeCmsContentInfo>(DecodeCmsContentInfo, Fetch(a));
        const auto data = Decoded<FreeCmsSignedData>(DecodeCmsSignedData, Fetch(GetCmsContentInfoContent, info.get()));
        CmsSignedData* const d = data.get();
        CHECK({GetCmsSignedDataSignerInfosCount(d, &n)}, {n, 2}, {GetCmsSignedDataContent(d, nullptr, &n)}, {n, left},
              {GetCmsSignedDataCertificatesCount(d, &n)}, {n, 1}, {GetCmsSignedDataDigestAlgorithmsCount(d, &n)},
              {n, 1}, {GetCmsSignedDataSignerInfo(d, 0, &first)}, {GetCmsSignedDataSignerInfo(d, 1, &second)},
              {GetCmsSignerInfoEncodedSignedAttributes(first, nullptr, &n)}, {n, 0});
        EXPECT_EQ(Fetch(GetCmsSignerInfoEncodedSignedAttributes, second),
                  Fetch(GetCmsSignedDataToBeSignedPart, abc, 3u, &time));
    }
}

}  // namespace
