// All benchmarks, and then a table of the ratios. Under callgrind, each piece of work once, with its instructions.
#include <benchmark/benchmark.h>

#include <deque>

#include "rounds.h"

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>

namespace {

// True when callgrind has counted.
bool CountInstructions(const bench::Contests& contests) {
    if (!RUNNING_ON_VALGRIND) return false;
    static std::deque<std::string> names;  // callgrind reads a name some time after the request
    for (const auto& contest : contests) {
        for (const bench::Work& work : contest->Works()) {
            work.run();
            CALLGRIND_START_INSTRUMENTATION;
            work.run();
            CALLGRIND_STOP_INSTRUMENTATION;
            names.push_back(contest->Name() + "/" + work.name);
            CALLGRIND_DUMP_STATS_AT(names.back().c_str());
        }
    }
    return true;
}

}  // namespace
#else
static bool CountInstructions(const bench::Contests&) { return false; }
#endif

int main(int argc, char** argv) {
    bench::Contests contests;
    bench::AddCertificates(&contests);
    bench::AddCrls(&contests);
    bench::AddTexts(&contests);
    if (CountInstructions(contests)) return 0;
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
