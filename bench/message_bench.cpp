// Signed messages with a large content: what a byte costs should be the same at every size, and the content should lie
// in memory as few times as possible.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <fstream>

#include "rounds.h"
#include "sample.h"

namespace {

using namespace bench;

constexpr size_t kMegabyte = 1 << 20;

// A signature over the content, or one more beside those of another message.
Bytes Signed(const Bytes& content, const Bytes& existing = {}) {
    static const Sample sample;
    static const Bytes certificate = Encode(Build(sample)), digest(32, 0xD1);
    return tlvforge::Encode(tlvforge::FileSignature{
        .content = content,
        .digest = digest,
        .signingTime = sample.notBefore,
        .digestAlgorithm = {tlvforge::Oid("2.16.840.1.101.3.4.2.1")},
        .signerCertificate = certificate,
        .certificates = {certificate},
        .signatureAlgorithm = {tlvforge::Oid::Prefixed(sample.rsa), sample.null},
        .signature = sample.signature,
        .existingSignature = existing,
    });
}

Bytes SignedTwice(size_t size) {
    const Bytes content(size, 'x');
    return Signed(content, Signed(content));
}

// ---- Time ----

void Over(benchmark::State& state, void (*run)(const Bytes& message, Bytes* out)) {
    mallopt(M_MMAP_THRESHOLD, 1 << 16);  // small and large messages alike take fresh pages from the system
    const size_t size = static_cast<size_t>(state.range(0)) * kMegabyte;
    const Bytes message = SignedTwice(size);
    Bytes out(message.size() + 10000);
    for (auto _ : state) run(message, &out);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(size));
}

void AddSigner(const Bytes& message, Bytes* out) {
    static Bytes content;
    if (content.size() / kMegabyte != message.size() / kMegabyte)
        content.assign(message.size() & ~(kMegabyte - 1), 'x');
    *out = Signed(content, message);
}

void DeleteSigner(const Bytes& message, Bytes* out) {
    uint32_t length = Size(*out);
    Must(DeleteBufferCmsSignerInfo(1, message.data(), Size(message), out->data(), &length));
}

void SignatureTime(const Bytes& message, Bytes*) {
    LibraryTime time{};
    Must(GetBufferCmsSignatureTime(2, message.data(), Size(message), &time));
}

void DecodeAndEncode(const Bytes& message, Bytes* out) {
    CmsContentInfo* info = nullptr;
    uint32_t length = Size(*out);
    Must(DecodeCmsContentInfo(message.data(), Size(message), &info));
    Must(EncodeCmsContentInfo(info, out->data(), &length));
    FreeCmsContentInfo(info);
}

void Megabytes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(Over, message_add_signer, AddSigner)->Apply(Megabytes);
BENCHMARK_CAPTURE(Over, message_delete_signer, DeleteSigner)->Apply(Megabytes);
BENCHMARK_CAPTURE(Over, message_signature_time, SignatureTime)->Apply(Megabytes);
BENCHMARK_CAPTURE(Over, message_decode_encode, DecodeAndEncode)->Apply(Megabytes);

// ---- Memory ----

// A line of /proc/self/status, in bytes.
double StatusLine(const std::string& label) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(label + ":", 0) == 0) return std::stod(line.substr(label.size() + 1)) * 1024;
    }
    return 0;
}

template <class Run>
double PeakOf(Run run) {
    std::ofstream("/proc/self/clear_refs") << 5;  // the peak is reset
    const double before = StatusLine("VmRSS");
    run();
    return StatusLine("VmHWM") - before;
}

}  // namespace

void bench::PrintMessagePeaks() {
    constexpr size_t kSize = 250 * kMegabyte;
    const std::string path = "/tmp/tlvforge_bench." + std::to_string(getpid());
    {
        const Bytes message = SignedTwice(kSize);
        std::ofstream file(path, std::ios::binary);
        file.write(reinterpret_cast<const char*>(message.data()), static_cast<std::streamsize>(message.size()));
    }
    LibraryTime time{};
    const double deletion = PeakOf([&] { Must(DeleteCmsSignerInfo(1, path.c_str(), path.c_str())); });
    const double reading = PeakOf([&] { Must(GetCmsSignatureTime(1, path.c_str(), &time)); });
    std::remove(path.c_str());
    printf("\nmessage of %zu MB in a file\n", kSize / kMegabyte);
    printf("  %-40s %10.2f times the file\n", "peak of memory, delete a signer", deletion / kSize);
    printf("  %-40s %10.2f times the file\n", "peak of memory, read the signing time", reading / kSize);
}
