// Threads that work on trees of their own don't get in each other's way. In a build with the thread sanitizer it is the
// one that judges. The zone of the C library has a lock that the sanitizer doesn't see: the preset sets TZ, so that the
// zone is read once.

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

}  // namespace
