// Every allocation fails once, for signed messages; and files fail.

#include <stdio.h>

#include <fstream>

#include "faults.h"

using namespace faults;
using namespace support;

#ifndef _WIN32
// In the place of the C library's: a file may be shorter by the time that it is read.
static bool shrinking = false;
extern "C" size_t fread(void* bytes, size_t size, size_t count, FILE* file) {
    return fread_unlocked(bytes, size, shrinking ? count / 2 : count, file);
}
#endif

namespace {

const LibraryTime kTime = {2024, 2, 29, 12, 0, 0};
const Bytes kBytes(64, 4), kOidBytes = OidOf("1.2.3"), kAlgorithm = Tlv(0x30, OidTlv("1.2.3") + Hex("0500"));
const uint8_t kNull[] = {5, 0}, *const kKey = kBytes.data(), *const kOid = kOidBytes.data();
const Bytes kSigned = kAlgorithm + Hex("03020000"), kIssuer = kAlgorithm + NameTlv("a");
const Bytes kFields = Hex("020105") + kIssuer + Hex("3004 1700 1700 3000") + Tlv(0x30, kSigned);
const Bytes kCertificate = Tlv(0x30, Tlv(0x30, kFields) + kSigned);

// Enough for the table of a list to grow.
Status TwelveTimes(auto call) {
    Status status = StatusOk;
    for (int i = 0; i < 12; ++i) status = FirstFailure({status, call()});
    return status;
}

Status Sign(RsaAttributes extra, const Bytes& existing, Bytes* out) {
    const uint8_t* const certificates[] = {kCertificate.data(), kNull};
    const uint32_t sizes[] = {Size(kCertificate), 2};
    uint32_t length = 2000;
    out->resize(length);
    const Status status = CreateCmsFileSignature2(kKey, 9, kKey, 20, &kTime, kOid, kNull, 2, certificates[0], sizes[0],
                                                  certificates, sizes, 2, kOid, nullptr, 0, 1, extra, nullptr, kKey, 64,
                                                  existing.data(), Size(existing), out->data(), &length);
    out->resize(length);
    return status;
}

TEST(Faults, SignedMessages) {
    const auto extra = Decoded<FreeRsaAttributes>(DecodeRsaAttributes, Tlv(0x31, AttributeTlv("1.2", Hex("0500"))));
    const std::string path = testing::TempDir() + "tlvforge-faults" + std::to_string(getpid());
    Bytes one, two, out, room(2000);
    EXPECT_STATUS(StatusOk, Sign(extra.get(), {}, &one), Sign(extra.get(), one, &two));
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(&two[0]), Size(two));
    const auto info = Decoded<FreeCmsContentInfo>(DecodeCmsContentInfo, two);
    const Bytes content = Fetch(GetCmsContentInfoContent, info.get());
    const auto message = Decoded<FreeCmsSignedData>(DecodeCmsSignedData, content);
    LibraryTime time{};
    uint32_t n = 0;
    CmsSignerInfo* signer = nullptr;
    const auto remove = [&](const std::string& to) { return DeleteCmsSignerInfo(1, path.c_str(), to.c_str()); };
    const auto fill = [&](CmsSignedData* d) {
        return FirstFailure({TwelveTimes([&] { return AddCmsSignedDataEncodedCrl(d, CmsCrlKindOther, kKey, 9); }),
                             TwelveTimes([&] { return AddCmsSignedDataSignerInfo(d, &signer); })});
    };
    FailEveryAllocation(
        {{"sign", [&] { return Sign(extra.get(), {}, &out); }},
         {"add a signer", [&] { return Sign(extra.get(), one, &out); }},
         {"delete a signer", [&] { return DeleteBufferCmsSignerInfo(1, &two[0], Size(two), &room[0], &(n = 2000)); }},
         {"delete a signer in a file", [&] { return remove(NullDevice()); }},
         {"text", [&] { return GetBufferCmsSignatureTimeAndCN(2, &two[0], Size(two), &time, &room[0], &(n = 2000)); }},
         {"to be signed", [&] { return GetCmsSignedDataToBeSignedPart2(kKey, 20, &kTime, extra.get(), nullptr, &n); }},
         {"build", [&] { return MakeFillAndFree<FreeCmsSignedData>(CreateCmsSignedData, fill); }},
         {"decode", [&] { return MakeAndFree<FreeCmsSignedData>(DecodeCmsSignedData, &content[0], Size(content)); }},
         {"copy", [&] { return MakeAndFree<FreeCmsSignedData>(CreateCmsSignedDataCopy, message.get()); }}});
    // Files that fail by themselves: below a file, with too long a name, a folder, and one that shrinks while it is
    // read.
    for (const std::string& bad : {path + "/under", std::string(5000, 'x'), std::string("/")})
        EXPECT_STATUS(StatusFileOpenFailed, remove(bad));
    const auto from = [&](const std::string& file) { return DeleteCmsSignerInfo(1, file.c_str(), path.c_str()); };
    CHECK({from(path + "/under"), StatusFileOpenFailed}, {from(std::string(5000, 'x')), StatusFileOpenFailed});
#ifndef _WIN32
    EXPECT_STATUS(StatusBadArgument, from("/"));  // a folder can be opened
    shrinking = true;
    EXPECT_STATUS(StatusFileReadShort, from(path));
    shrinking = false;
#endif
    CHECK({GetCmsSignatureTime(2, path.c_str(), &time)}, {unlink(path.c_str()), 0});
}

}  // namespace
