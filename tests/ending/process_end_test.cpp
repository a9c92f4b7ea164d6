// What a host may do with the library while its process ends: everything. The hosts are programs of
// their own, on both systems one that is linked with the library and one that loads it.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "ending/ending_moments.h"

namespace rgen_test {
namespace {

const std::string inMain = "main: right\n";
const std::string held = "held generator: right\n";
const std::string atEnd = "end of the program: right\n";
const std::string lastThenFirst =
    "exit function registered last: right\nexit function registered first: right\n";
const std::string inDestructor = "destructor: right\n";

class ProcessEnd : public testing::TestWithParam<const char*> {};

TEST_P(ProcessEnd, EverythingWorksAfterAllHandlesWereFreed) {
    EXPECT_EQ(inMain + lastThenFirst + inDestructor + atEnd, momentsOf(GetParam(), "freed", "-"));
}

TEST_P(ProcessEnd, EverythingWorksWithAGeneratorOfAGlobalObject) {
    EXPECT_EQ(inMain + lastThenFirst + held + inDestructor + atEnd,
              momentsOf(GetParam(), "held", "-"));
}

TEST_P(ProcessEnd, EverythingWorksWhenTheEndIsTheFirstUse) {
    EXPECT_EQ(lastThenFirst + inDestructor + atEnd, momentsOf(GetParam(), "unused", "-"));
}

INSTANTIATE_TEST_SUITE_P(Host, ProcessEnd, testing::Values("ending_host", "loading_host"),
                         [](const auto& tested) { return std::string(tested.param); });

}  // namespace
}  // namespace rgen_test
