// What takes several calls, or files, while every allocation fails once; and what needs no memory.

#include <stdio.h>

#include <fstream>
#include <functional>

#include "engine/tmalloc.h"
#include "support.h"

using namespace support;
using tlvforge::instruments;

#ifndef _WIN32
// In the place of the C library's: a file may be shorter by the time that it is read.
static bool shrinking = false;
extern "C" size_t fread(void* bytes, size_t size, size_t count, FILE* file) {
    return fread_unlocked(bytes, size, shrinking ? count / 2 : count, file);
}
#endif

namespace {

// Every allocation of a scenario fails once, and once from then on: the answer says so, and nothing leaks.
void FailEveryAllocation(const std::vector<std::pair<const char*, std::function<Status()>>>& scenarios) {
    for (const auto& [name, run] : scenarios) {
        SCOPED_TRACE(name);
        const uint64_t before = instruments.liveBlocks;
        for (const bool ever : {false, true}) {
            uint64_t fail = 1;
            for (bool failed = true; failed; ++fail) {
                instruments = {0, before, fail, ever, 0, 0};
                const Status status = run();
                failed = instruments.allocations >= fail;
                EXPECT_EQ(status, failed ? StatusOutOfMemory : StatusOk) << "allocation " << fail;
                EXPECT_EQ(instruments.liveBlocks, before) << "leak at allocation " << fail;
                EXPECT_GT(instruments.allocations, 0u) << "no allocation was tried";
            }
            instruments.failAt = 0;
        }
    }
}

const LibraryTime kTime = {2024, 2, 29, 12, 0, 0};
const Bytes kBytes(64, 4), kOidBytes = OidOf("1.2.3"), kAlgorithm = Tlv(0x30, OidTlv("1.2.3") + Hex("0500"));
const uint8_t kNull[] = {5, 0}, *const kKey = kBytes.data(), *const kOid = kOidBytes.data();
const Bytes kSigned = kAlgorithm + Hex("03020000"), kIssuer = kAlgorithm + NameTlv("a");
const Bytes kFields = Hex("020105") + kIssuer + Hex("3004 1700 1700 3000") + Tlv(0x30, kSigned);
const Bytes kCertificate = Tlv(0x30, Tlv(0x30, kFields) + kSigned);

TEST(Faults, RevocationLists) {
    const Bytes issuer = Tlv(0x30, ExtensionTlv("2.5.29.29", Tlv(0x30, Tlv(0xA4, NameTlv("a")))));
    Bytes entries;
    for (uint8_t i = 1; i <= 15; ++i)
        entries = entries + Tlv(0x30, Bytes{2, 1, i} + Hex("1700") + (i % 5 == 0 ? issuer : Bytes()));
    const Bytes encoded = Tlv(0x30, Tlv(0x30, kIssuer + Hex("1700") + Tlv(0x30, entries)) + kSigned);
    const auto crl = Decoded<FreeX509Crl>(DecodeX509Crl, encoded);
    const auto name = NameOf("a");
    const auto find = [&] {
        uint32_t index = 0;
        const Status status = FindX509CrlFind(crl.get(), name.get(), Bytes{15}.data(), 1, &index);
        EXPECT_EQ(index, status == StatusOk ? 14u : 0u);
        return status;
    };
    const uint64_t before = instruments.allocations;
    EXPECT_EQ(Fetch(EncodeX509Crl, crl.get()), encoded);
    EXPECT_EQ(instruments.allocations, before) << "encoding needs no memory";
    EXPECT_STATUS(StatusOk, find());
    EXPECT_EQ(instruments.allocations, before + 1) << "a lookup needs memory for the name alone";
    FailEveryAllocation({{"lookup", find}});
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
    LibraryTime time{};
    uint32_t n = 0;
    const auto remove = [&](const std::string& to) { return DeleteCmsSignerInfo(1, path.c_str(), to.c_str()); };
    FailEveryAllocation(
        {{"sign", [&] { return Sign(extra.get(), {}, &out); }},
         {"add a signer", [&] { return Sign(extra.get(), one, &out); }},
         {"delete a signer", [&] { return DeleteBufferCmsSignerInfo(1, &two[0], Size(two), &room[0], &(n = 2000)); }},
         {"delete a signer in a file", [&] { return remove(NullDevice()); }}});
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
