// Runs a fuzz target without a fuzzer: over every file of the named folders, and over mutations of each that are the
// same in every run. Exit status 1 if there was nothing to run.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

using Bytes = std::vector<uint8_t>;
namespace fs = std::filesystem;

constexpr int kMutations = 64;  // of each file

// One change of a kind that tends to upset a reader of lengths and tags.
void Mutate(Bytes& bytes, std::mt19937& random) {
    static constexpr uint8_t kTelling[] = {0x00, 0x01, 0x1F, 0x30, 0x7F, 0x80, 0x81, 0x84, 0xA0, 0xFF};
    if (bytes.empty()) bytes.push_back(0x30);
    const auto below = [&random](size_t limit) { return static_cast<size_t>(random() % limit); };
    const size_t at = below(bytes.size());
    const auto place = bytes.begin() + static_cast<ptrdiff_t>(at);
    switch (below(5)) {
        case 0: bytes[at] = static_cast<uint8_t>(bytes[at] ^ (1u << below(8))); break;
        case 1: bytes[at] = kTelling[below(std::size(kTelling))]; break;
        case 2: bytes.resize(at); break;
        case 3: bytes.insert(place, kTelling[below(std::size(kTelling))]); break;
        default: bytes.erase(place, place + static_cast<ptrdiff_t>(1 + below(std::min<size_t>(8, bytes.size() - at))));
    }
}

}  // namespace

int main(int count, char** folders) {
    std::set<fs::path> files;
    for (int i = 1; i < count; ++i) files.insert(fs::directory_iterator(folders[i]), fs::directory_iterator());
    for (const fs::path& file : files) {
        std::ifstream in(file, std::ios::binary);
        if (!in) return fprintf(stderr, "%s can't be read\n", file.c_str()), 1;
        const Bytes original{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        LLVMFuzzerTestOneInput(original.data(), original.size());
        std::mt19937 random(20);
        for (int mutation = 0; mutation < kMutations; ++mutation) {
            Bytes changed = original;
            for (int change = mutation % 4; change >= 0; --change) Mutate(changed, random);
            LLVMFuzzerTestOneInput(changed.data(), changed.size());
        }
    }
    printf("%zu inputs, each with %d mutations\n", files.size(), kMutations);
    return files.empty();
}
