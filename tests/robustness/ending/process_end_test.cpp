// What a host may do with the library while its process ends: everything. The hosts are programs of
// their own, on both systems one that is linked with the library and one that loads it.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>

#include "robustness/ending/ending_moments.h"

namespace rgen_test {
namespace {

// The lines in the order of the alphabet: systems differ in what comes first at the end.
std::set<std::string> linesOf(const std::string& text) {
    std::istringstream stream(text);
    std::set<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.insert(line);
    return lines;
}

const std::set<std::string> momentsOfTheEnd = {"destructor: right", "end of the program: right",
                                               "exit function registered first: right",
                                               "exit function registered last: right"};

class ProcessEnd : public testing::TestWithParam<const char*> {
protected:
    void expectMoments(std::set<std::string> expected, const std::string& use) const {
        expected.insert(momentsOfTheEnd.begin(), momentsOfTheEnd.end());
        EXPECT_EQ(expected, linesOf(momentsOf(GetParam(), use, "-")));
    }
};

TEST_P(ProcessEnd, EverythingWorksAfterAllHandlesWereFreed) {
    expectMoments({"main: right"}, "freed");
}

TEST_P(ProcessEnd, EverythingWorksWithAGeneratorOfAGlobalObject) {
    expectMoments({"main: right", "held generator: right"}, "held");
}

TEST_P(ProcessEnd, EverythingWorksWhenTheEndIsTheFirstUse) {
    expectMoments({}, "unused");
}

INSTANTIATE_TEST_SUITE_P(Host, ProcessEnd, testing::Values("ending_host", "loading_host"),
                         [](const auto& tested) { return std::string(tested.param); });

}  // namespace
}  // namespace rgen_test
