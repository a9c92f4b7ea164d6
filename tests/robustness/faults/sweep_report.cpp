// SPDX-License-Identifier: MIT
#include "robustness/faults/sweep_report.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>

#include "robustness/faults/point_count.h"

namespace rgen_test {

long printedBytes() {
    std::fflush(stdout);
    return static_cast<long>(lseek(STDOUT_FILENO, 0, SEEK_CUR)) +
           static_cast<long>(lseek(STDERR_FILENO, 0, SEEK_CUR));
}

void reportSweep(const std::string& scenario, const std::string& summary,
                 const std::vector<std::string>& problems, const std::string& kind,
                 std::size_t points) {
    std::printf("[  points  ] %s\n", summary.c_str());
    for (const std::string& problem : problems)
        ADD_FAILURE() << scenario << ", " << problem;
    EXPECT_GT(points, 0U);
    countPoints(kind, points);
}

}  // namespace rgen_test
