// RGEN_TEST_SLOWNESS says how many times longer a repetition takes in this build,
// RGEN_TEST_TRIES_ALL whether it tries every combination.
//
// SPDX-License-Identifier: MIT
#include "support/process_figures.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

namespace rgen_test {

const bool memoryIsMeasured = RGEN_TEST_MEMORY_IS_MEASURED;

long medianOfResidentBytes(const std::function<void()>& action) {
    std::array<long, 9> readings{};
    for (long& reading : readings) {
        action();
        reading = residentBytes();
    }
    std::sort(readings.begin(), readings.end());
    return readings[readings.size() / 2];
}

int loopCount(int plainCount) {
    const std::string factor = environmentText("RGEN_SOAK_FACTOR");
    const int count = std::max(1, plainCount / RGEN_TEST_SLOWNESS);
    return factor.empty() ? count : count * std::atoi(factor.c_str());
}

bool combinationIsTried(std::size_t row, std::size_t column) {
    return RGEN_TEST_TRIES_ALL || (row + column) % 3 == 0;
}

void printGrowth(const std::string& what, long before, long after) {
    std::printf("growth|%s|%ld|%ld|%ld\n", what.c_str(), before, after, after - before);
    std::fflush(stdout);
}

void printFigure(const std::string& what, long value) {
    std::printf("figure|%s|%ld\n", what.c_str(), value);
    std::fflush(stdout);
}

}  // namespace rgen_test
