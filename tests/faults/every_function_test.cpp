// Every allocation of every function fails once, and once from then on. The status is that for it, and nothing leaks,
// but for what exceptions.tsv has.
#include <set>
#include <sstream>

#include "engine/tmalloc.h"
#include "guards/calls.h"

namespace {

using namespace calls;
using tlvforge::instruments;

// Blocks that are left of a call's arguments: lent objects have an owner that nothing frees.
uint64_t LeftOf(const std::string& function, State state) {
    const uint64_t before = instruments.liveBlocks;
    Call(function, state).FreeObjects();
    return instruments.liveBlocks - before;
}

void FailAll(const std::string& function, State state, const auto& write) {
    const uint64_t left = LeftOf(function, state);
    for (const bool ever : {false, true}) {
        for (uint64_t fail = 1;; ++fail) {
            const uint64_t before = instruments.liveBlocks;
            const Call call(function, state);
            instruments.failAt = instruments.allocations + fail;
            instruments.failEverAfter = ever;
            const Word result = call.Make();
            const bool failed = instruments.allocations >= instruments.failAt;
            instruments.failAt = 0;
            if (!failed) break;
            if (result != StatusOutOfMemory) write(NameOf(function, result) + '\n');
            // What has been handed over isn't known, or was freed by a function that couldn't append it.
            if (result == StatusOk || function == "AddExtensionOcspCheckFileExtResults") continue;
            call.FreeObjects();
            if (instruments.liveBlocks - before != left) write("leak\n");
        }
    }
}

TEST(Faults, EveryFunctionWithoutMemory) {
    CompareWithTable("faults/exceptions.tsv", [](const std::string& function) {
        std::istringstream found(InProcess([&](const auto& write) {
            for (const State state : {kFull, kNew, kMany}) FailAll(function, state, write);
            write("end\n");
        }));
        std::set<std::string> all;
        for (std::string line; std::getline(found, line);) all.insert(line);
        if (all.erase("end") == 0) all.insert("ends the process");
        std::string answer;
        for (const std::string& part : all) answer += (answer.empty() ? "" : ", ") + part;
        return answer;
    });
}

}  // namespace
