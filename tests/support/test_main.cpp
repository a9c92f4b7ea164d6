// Entry point of the test programs. The last line that it prints is required by run_test_program,
// so that a program that vanished half-way does not count as passed.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <thread>

#include "support/host_state.h"
#include "support/sized_thread.h"

namespace {

// Every case leaves the process as it found it.
class UnchangedHostState : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override { before_ = rgen_test::hostState(); }
    void OnTestEnd(const testing::TestInfo& test) override {
        EXPECT_EQ(before_, rgen_test::settledHostState(before_)) << test.name();
    }

    std::string before_;
};

// Runs all cases, with the option --small-stack on a thread with 1 MiB of stack.
int runAllTests(bool onSmallStack) {
    int result = 1;
    const auto run = [&result] {
        // What starts threads of its own: on Windows GoogleTest with a thread's first trace, and
        // the thread sanitizer with the first thread of the program.
        { SCOPED_TRACE("start"); }
        std::thread([] {}).join();
        result = RUN_ALL_TESTS();
    };
    if (onSmallStack) {
        rgen_test::runOnStack(rgen_test::mebibyte, run);
    } else {
        run();
    }
    return result;
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new UnchangedHostState);
    const bool onSmallStack = argc > 1 && std::strcmp(argv[1], "--small-stack") == 0;
    const int result = runAllTests(onSmallStack);
    if (testing::GTEST_FLAG(list_tests)) return result;
    if (testing::UnitTest::GetInstance()->test_to_run_count() == 0) {
        std::puts("no test ran");
        return 1;
    }
    std::puts("all tests ran to the end");
    return result;
}
