// Threads that work on trees of their own don't get in each other's way. In a build with the thread sanitizer it is the
// one that judges. The zone of the C library has a lock that the sanitizer doesn't see: the preset sets TZ, so that the
// zone is read once.

#include <pthread.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "support.h"
#include "walk_cms.h"

using support::Bytes;

namespace {

constexpr size_t kThreads = 4;

void InThreads(auto work) {
    std::vector<std::thread> threads;
    for (size_t i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
    for (std::thread& thread : threads) thread.join();
}

walk::Bytes Read(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    return walk::Bytes(bytes.data(), bytes.size());
}
const std::string kSeeds = TLVFORGE_SOURCE_DIR "/fuzz/seeds";

// Everything there is, over every seed, and what the shared cells remember.
TEST(Threads, WorkOnTreesOfTheirOwn) {
    std::vector<walk::Bytes> seeds;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(kSeeds))
        if (entry.is_regular_file() && entry.path().extension() != ".md") seeds.push_back(Read(entry.path()));
    ASSERT_GE(seeds.size(), 20u);
    std::atomic<size_t> done = 0;
    InThreads([&](size_t) {
        try {
            for (const walk::Bytes& in : seeds) {
                walk::WalkValue(in);
                walk::WalkEncodedCertificate(in);
                WALK(X509Crl, in, walk::WalkAndChangeCrl);
                walk::WalkMessage(in);
                LibraryTime time{2024, 2, 27, 0, 0, 0};
                walk::Sure(AddDaysToLibTime(&time, 4));
            }
            ++done;
        } catch (const std::exception&) {
        }
    });
    EXPECT_EQ(done, kThreads);
}

// Trees whose nodes share blocks go from thread to thread, and one tree ends up with the nodes of another's: each is
// freed where it is last used.
TEST(Threads, ExchangeTheNodesOfTrees) {
    const walk::Bytes der = Read(kSeeds + "/certificate/plain");
    const Bytes name = support::NameTlv("somebody else");
    const auto alone = walk::Make<FreeCertificate>(DecodeCertificate, der.data(), der.size());
    EXPECT_EQ(SetCertificateSubject(alone.get(), support::NameOf("somebody else").get()), StatusOk);
    const Bytes renamed = support::Fetch(EncodeCertificate, alone.get());
    Certificate* certificates[kThreads] = {};
    X509Name* names[kThreads] = {};
    std::atomic<int> faults = 0;
    pthread_barrier_t meeting;  // in std::barrier of libstdc++ 12 a thread may sleep on
    ASSERT_EQ(pthread_barrier_init(&meeting, nullptr, kThreads), 0);
    InThreads([&](size_t self) {
        for (int round = 0; round < 200; ++round) {
            faults += DecodeCertificate(der.data(), der.size(), &certificates[self]) != StatusOk;
            faults += DecodeX509Name(name.data(), support::Size(name), &names[self]) != StatusOk;
            pthread_barrier_wait(&meeting);
            Certificate* certificate = certificates[(self + 1) % kThreads];
            X509Name* subject = names[(self + 2) % kThreads];
            pthread_barrier_wait(&meeting);
            faults += SetCertificateSubject_i(certificate, subject, 0) != StatusOk;
            faults += support::Fetch(EncodeCertificate, certificate) != renamed;
            FreeCertificate(certificate);
        }
    });
    pthread_barrier_destroy(&meeting);
    EXPECT_EQ(faults, 0);
}

}  // namespace
