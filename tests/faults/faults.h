// Every allocation of a scenario fails once, and once from then on.
#pragma once

#include <functional>

#include "engine/tmalloc.h"
#include "support.h"

namespace faults {

using tlvforge::instruments;

// What was made until a failure is freed in any case.
using Scenarios = std::vector<std::pair<const char*, std::function<Status()>>>;

// Of calls made one after the other, whatever became of those before.
inline Status FirstFailure(std::initializer_list<Status> calls) {
    const auto found = std::find_if(calls.begin(), calls.end(), [](Status status) { return status != StatusOk; });
    return found == calls.end() ? StatusOk : *found;
}

template <auto Free, class Function, class... Arguments>
Status MakeAndFree(Function function, Arguments... arguments) {
    typename walk::Owned<Free>::pointer made = nullptr;
    const Status status = function(arguments..., &made);
    EXPECT_EQ(status == StatusOk, made != nullptr);
    return status + Free(made);
}

// Makes an object, and calls more on it.
template <auto Free>
Status MakeFillAndFree(auto create, auto fill) {
    typename walk::Owned<Free>::pointer made = nullptr;
    const Status status = create(&made);
    return (status == StatusOk ? fill(made) : status) + Free(made);
}

// The answer is the out-of-memory status, or another one that a scenario may turn it into, and nothing leaks.
inline void FailEveryAllocation(const Scenarios& scenarios, Status other = StatusOutOfMemory) {
    for (const auto& [name, run] : scenarios) {
        SCOPED_TRACE(name);
        const uint64_t before = instruments.liveBlocks;
        for (const bool ever : {false, true}) {
            uint64_t fail = 0;
            Status status = StatusOk;
            do {
                instruments = {0, before, ++fail, ever, 0, 0};
                status = run();
                EXPECT_EQ(instruments.liveBlocks, before) << "leak at allocation " << fail;
                if (instruments.allocations < fail) break;
                EXPECT_TRUE(status == StatusOutOfMemory || status == other) << fail << ": " << status;
            } while (true);
            instruments.failAt = 0;
            EXPECT_EQ(status, StatusOk);
            EXPECT_GT(fail, 1u) << "no allocation was tried";
        }
    }
}

}  // namespace faults
