// SPDX-License-Identifier: MIT
#include "robustness/faults/sweep_report.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <map>

namespace rgen_test {
namespace {

struct Points {
    std::size_t tried = 0;
    std::size_t least = 0;
};

std::map<std::string, Points>& pointsByKind() {
    static std::map<std::string, Points> points;
    return points;
}

class PointReport : public testing::Environment {
public:
    void TearDown() override {
        const auto& tests = *testing::UnitTest::GetInstance();
        const bool allRan = tests.test_to_run_count() == tests.total_test_count();
        for (const auto& [kind, points] : pointsByKind()) {
            std::printf("[  points  ] %s: %zu\n", kind.c_str(), points.tried);
            testing::Test::RecordProperty(kind, std::to_string(points.tried));
            if (allRan) {
                EXPECT_GE(points.tried, points.least) << kind;
            }
        }
    }
};

testing::Environment* const report = testing::AddGlobalTestEnvironment(new PointReport);

}  // namespace

void countPoints(const std::string& kind, std::size_t points) {
    testing::Test::RecordProperty(kind, std::to_string(points));
    pointsByKind()[kind].tried += points;
}

bool requirePoints(const std::string& kind, std::size_t least) {
    pointsByKind()[kind].least = least;
    return true;
}

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
