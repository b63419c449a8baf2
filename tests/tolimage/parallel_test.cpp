// SPDX-License-Identifier: Apache-2.0
#include "tolimage/parallel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include "tolbase/progress.h"

namespace {

class Parallel : public ::testing::TestWithParam<int> {
protected:
    Parallel() { SetParallelThreads(GetParam()); }
    ~Parallel() override {
        SetParallelThreads(0);
        tcvClearAborted();
    }
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(ThreadCounts, Parallel, ::testing::Values(0, 1, 3, 1000));

TEST_P(Parallel, EachIndex_ComesOnce) {
    std::vector<std::atomic<int>> times(200);
    RunInParallel(200, [&](int index) { ++times[static_cast<size_t>(index)]; });
    for (auto const& count : times) EXPECT_EQ(1, count);
}

TEST_P(Parallel, NothingToDo_ReturnsAtOnce) {
    RunInParallel(0, [](int) { ADD_FAILURE(); });
    RunInParallel(-3, [](int) { ADD_FAILURE(); });
}

TEST_P(Parallel, Exception_ReachesTheCallerAndEndsTheWork) {
    std::atomic<int> begun{0};
    EXPECT_THROW(RunInParallel(100000,
                               [&](int index) {
                                   ++begun;
                                   if (index == 5) throw std::runtime_error("five");
                                   std::this_thread::yield();
                               }),
                 std::runtime_error);
    EXPECT_LT(begun, 100000);
}

TEST_P(Parallel, Abort_BeginsNoFurtherPart) {
    std::atomic<int> begun{0};
    RunInParallel(100000, [&](int) {
        ++begun;
        tcvAbortProgress();
    });
    EXPECT_GE(begun, 1);
    EXPECT_LE(begun, 16);
    RunInParallel(10, [](int) { ADD_FAILURE(); });
}
