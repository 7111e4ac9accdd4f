// Decode, encode and build of certificates beside the peers and the floor, and a table of the ratios.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <functional>
#include <iterator>

#include "floor.h"
#include "peers.h"
#include "x509/certificate.schema.h"

namespace {

using namespace bench;

struct Document {
    std::string name;
    Bytes der;
};

const Sample& TheSample() {
    static const Sample sample;
    return sample;
}

// The sample, and real certificates where they lie beside the checkout.
std::vector<Document> Documents() {
    Certificate* certificate = Build(TheSample());
    std::vector<Document> documents = {{"sample", Encode(certificate)}};
    FreeCertificate(certificate);
    for (const char* name : {"ossl-embeddedscts3", "ruca-2025-07-03t09-34-16z-2039-07-03t09-34-16z"}) {
        const std::string path = std::string(TLVFORGE_SOURCE_DIR "/../shared/corpus/cert/") + name + ".der";
        std::ifstream in(path, std::ios::binary);
        if (in) documents.push_back({name, Bytes(std::istreambuf_iterator<char>(in), {})});
    }
    return documents;
}

// One piece of work that is timed again and again.
struct Work {
    std::string name;
    std::function<void()> run;
    double nanoseconds = 1e18;
};

// All work on one document.
class Bench {
public:
    explicit Bench(Document document) : document_(std::move(document)), buffer_(document_.der.size() + 1024) {
        Must(DecodeCertificate(document_.der.data(), Size(document_.der), &certificate_));
        Collect(tlvforge::schema::Certificate, certificate_, &nodes_);
        blocks_.resize(nodes_.size());
        Add("floor", [this] { AllocateAll(nodes_, &blocks_); });
        for (const auto& codec : codecs_) AddCodec(codec.get());
        if (document_.name == "sample") Add("build/tlvforge", [this] { BuildAndEncode(); });
    }
    ~Bench() { FreeCertificate(certificate_); }

    const Document& Its() const { return document_; }
    size_t Nodes() const { return nodes_.size(); }
    std::vector<Work>& Works() { return works_; }
    double Time(const std::string& name) const {
        for (const Work& work : works_) {
            if (work.name == name) return work.nanoseconds;
        }
        return 0;
    }

private:
    void Add(std::string name, std::function<void()> run) { works_.push_back({std::move(name), std::move(run)}); }

    void AddCodec(Codec* codec) {
        if (!codec->DecodeAndFree(document_.der)) return;
        Add(std::string("decode/") + codec->Name(), [this, codec] { codec->DecodeAndFree(document_.der); });
        if (!codec->Keep(document_.der)) return;
        if (codec->Encode(buffer_.data(), buffer_.size()) != document_.der.size() ||
            !std::equal(document_.der.begin(), document_.der.end(), buffer_.begin())) {
            fprintf(stderr, "%s: %s encodes other bytes\n", document_.name.c_str(), codec->Name());
            return;
        }
        Add(std::string("encode/") + codec->Name(), [this, codec] { codec->Encode(buffer_.data(), buffer_.size()); });
    }

    void BuildAndEncode() {
        Certificate* built = Build(TheSample());
        auto length = static_cast<uint32_t>(buffer_.size());
        Must(EncodeCertificate(built, buffer_.data(), &length));
        FreeCertificate(built);
    }

    Document document_;
    Bytes buffer_;
    Certificate* certificate_ = nullptr;
    std::vector<Node> nodes_;
    std::vector<void*> blocks_;
    std::vector<std::unique_ptr<Codec>> codecs_ = Codecs();
    std::vector<Work> works_;
};

double Seconds(const std::function<void()>& run, int times) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < times; ++i) run();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The least time of many short rounds, in each of which all take their turn: what disturbs the machine hits all alike.
void TimeInterleaved(std::vector<Work>* works) {
    constexpr int kRounds = 400;
    constexpr double kSlice = 200e-6;  // seconds
    std::vector<int> times;
    for (const Work& work : *works) times.push_back(1 + static_cast<int>(kSlice / (Seconds(work.run, 10) / 10)));
    for (int round = 0; round < kRounds; ++round) {
        for (size_t i = 0; i < works->size(); ++i) {
            Work& work = (*works)[i];
            work.nanoseconds = std::min(work.nanoseconds, Seconds(work.run, times[i]) / times[i] * 1e9);
        }
    }
}

void PrintRatios(const Bench& bench) {
    const double decode = bench.Time("decode/tlvforge"), encode = bench.Time("encode/tlvforge");
    printf("\n%s: %zu bytes, %zu nodes\n", bench.Its().name.c_str(), bench.Its().der.size(), bench.Nodes());
    printf("  %-40s %10.0f ns\n", "floor, a block for each node", bench.Time("floor"));
    printf("  %-40s %10.0f ns  %6.2f of the floor\n", "decode and free", decode, decode / bench.Time("floor"));
    printf("  %-40s %10.0f ns  %6.2f of decode and free\n", "encode", encode, encode / decode);
    if (const double build = bench.Time("build/tlvforge")) {
        printf("  %-40s %10.0f ns  %6.2f of decode and free\n", "build, encode and free", build, build / decode);
    }
    for (const auto& codec : Codecs()) {
        const std::string name = codec->Name();
        for (const auto& [what, own] : {std::pair("decode", decode), std::pair("encode", encode)}) {
            const double time = bench.Time(std::string(what) + "/" + name);
            if (name == "tlvforge" || time == 0) continue;
            printf("  %-40s %10.0f ns  %6.2f times ours\n", (name + ", " + what).c_str(), time, time / own);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::unique_ptr<Bench>> benches;
    for (Document& document : Documents()) benches.push_back(std::make_unique<Bench>(std::move(document)));
    for (const auto& bench : benches) {
        for (const Work& work : bench->Works()) {
            const auto loop = [&run = work.run](benchmark::State& state) {
                for (auto _ : state) run();
            };
            benchmark::RegisterBenchmark(("certificate/" + bench->Its().name + "/" + work.name).c_str(), loop);
        }
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    for (const auto& bench : benches) {
        TimeInterleaved(&bench->Works());
        PrintRatios(*bench);
    }
    return 0;
}
