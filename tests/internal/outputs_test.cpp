#include "engine/outputs.h"

#include "support.h"

using namespace tlvforge;

namespace {

// The statuses of the outputs, how many of them are read, and the result.
TEST(Outputs, EachRuleEndsWhereItSays) {
    using Row = std::tuple<OutputRule, std::vector<Status>, size_t, Status>;
    const Row rows[] = {
        {OutputRule::kUntilFailure, {0, 49, 311}, 2, 49},
        {OutputRule::kPastSmallBuffers, {49, 0, 49, 0}, 4, 49},
        {OutputRule::kPastSmallBuffers, {49, 311, 0}, 2, 311},
        {OutputRule::kPastSmallUntilFit, {0, 49, 49, 0, 49}, 4, 49},
        {OutputRule::kPastSmallUntilFit, {49, 311, 0}, 2, 49},
        {OutputRule::kPastSmallUntilFit, {0, 311, 49}, 2, 311},
        {OutputRule::kAllFirst, {0, 49, 311}, 3, 49},
        {OutputRule::kAllLast, {49, 311, 0}, 3, 311},
        {OutputRule::kAllSmallLast, {49, 311, 302}, 3, 311},
        {OutputRule::kAllSmallLast, {49, 0, 49}, 3, 49},
    };
    for (const Row& row : rows) {
        const auto& [rule, statuses, reads, result] = row;
        OutputReader reader(rule);
        size_t read = 0;
        for (const Status status : statuses) reader.Then([&] { return ++read, status; });
        EXPECT_EQ(std::pair(read, reader.Result()), std::pair(reads, result)) << "row " << &row - rows;
    }
}

}  // namespace
