// Threads that work on trees of their own don't get in each other's way. In a build with the thread sanitizer it is the
// one that judges. The zone of the C library has a lock that the sanitizer doesn't see: the preset sets TZ, so that the
// zone is read once.

#include <atomic>
#include <barrier>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "support.h"
#include "walk_cms.h"

using support::Bytes;

namespace {

std::vector<Bytes> Seeds() {
    std::vector<Bytes> seeds;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(TLVFORGE_SOURCE_DIR "/fuzz/seeds")) {
        if (!entry.is_regular_file() || entry.path().extension() == ".md") continue;
        std::ifstream file(entry.path(), std::ios::binary);
        seeds.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return seeds;
}

// Everything there is, over every seed, and what the shared cells remember. False when a walk found a fault.
bool WorkOn(const std::vector<Bytes>& seeds) try {
    for (const Bytes& seed : seeds) {
        const walk::Bytes in(seed.data(), seed.size());
        walk::WalkValue(in);
        walk::WalkEncodedCertificate(in);
        walk::WalkObject<FreeX509Crl>(in, DecodeX509Crl, EncodeX509Crl, walk::WalkAndChangeCrl);
        walk::WalkMessage(in);
        LibraryTime time{2024, 2, 27, 0, 0, 0};
        if (AddDaysToLibTime(&time, 4) != StatusOk) return false;
    }
    return true;
} catch (const std::exception&) {
    return false;
}

TEST(Threads, WorkOnTreesOfTheirOwn) {
    const std::vector<Bytes> seeds = Seeds();
    ASSERT_GE(seeds.size(), 20u);
    bool done[4] = {};
    std::vector<std::thread> threads;
    for (bool& each : done) threads.emplace_back([&] { each = WorkOn(seeds); });
    for (std::thread& thread : threads) thread.join();
    for (const bool each : done) EXPECT_TRUE(each);
}

Bytes CertificateOf(const char* subject) {
    using namespace support;
    const Bytes algorithm = Tlv(0x30, OidTlv("1.2.840.113549.1.1.11"));
    const Bytes validity = Tlv(0x30, Tlv(0x17, Text("260101000000Z")) + Tlv(0x17, Text("270101000000Z")));
    const Bytes key = Tlv(0x30, algorithm + Hex("03020001"));
    const Bytes tbs = Hex("020105") + algorithm + NameTlv("issuer") + validity + NameTlv(subject) + key;
    return Tlv(0x30, Tlv(0x30, tbs) + algorithm + Hex("03020002"));
}

// Trees whose nodes share blocks go from thread to thread, and one tree ends up with the nodes of another's: each is
// freed where it is last used.
TEST(Threads, ExchangeTheNodesOfTrees) {
    constexpr size_t kThreads = 4;
    const Bytes der = CertificateOf("holder"), renamed = CertificateOf("somebody else");
    const Bytes name = support::NameTlv("somebody else");
    Certificate* certificates[kThreads] = {};
    X509Name* names[kThreads] = {};
    std::atomic<int> faults = 0;
    std::barrier meeting(kThreads);
    const auto exchange = [&](size_t self) {
        for (int round = 0; round < 200; ++round) {
            faults += DecodeCertificate(der.data(), support::Size(der), &certificates[self]) != StatusOk;
            faults += DecodeX509Name(name.data(), support::Size(name), &names[self]) != StatusOk;
            meeting.arrive_and_wait();
            Certificate* certificate = certificates[(self + 1) % kThreads];
            X509Name* subject = names[(self + 2) % kThreads];
            meeting.arrive_and_wait();
            faults += SetCertificateSubject_i(certificate, subject, 0) != StatusOk;
            faults += support::Fetch(EncodeCertificate, certificate) != renamed;
            FreeCertificate(certificate);
        }
    };
    std::vector<std::thread> threads;
    for (size_t i = 0; i < kThreads; ++i) threads.emplace_back(exchange, i);
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(faults, 0);
}

}  // namespace
