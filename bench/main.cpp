// All benchmarks, and then a table of the ratios.
#include <benchmark/benchmark.h>

#include "rounds.h"

int main(int argc, char** argv) {
    bench::Contests contests;
    bench::AddCertificates(&contests);
    bench::AddCrls(&contests);
    for (const auto& contest : contests) {
        for (const bench::Work& work : contest->Works()) {
            const auto loop = [&run = work.run](benchmark::State& state) {
                for (auto _ : state) run();
            };
            benchmark::RegisterBenchmark((contest->Name() + "/" + work.name).c_str(), loop);
        }
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    for (const auto& contest : contests) {
        contest->TimeInterleaved();
        contest->PrintRatios();
    }
    bench::PrintMessagePeaks();
    return 0;
}
