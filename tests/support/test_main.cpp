// Entry point of the test programs. The last line that it prints is required by run_test_program,
// so that a program that vanished half-way does not count as passed.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdio>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    if (testing::GTEST_FLAG(list_tests)) return result;
    if (testing::UnitTest::GetInstance()->test_to_run_count() == 0) {
        std::puts("no test ran");
        return 1;
    }
    std::puts("all tests ran to the end");
    return result;
}
