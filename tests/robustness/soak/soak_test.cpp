// A long, mixed run of one host: every result is right, and nothing grows. RGEN_SOAK_GENERATIONS
// says how many reports it asks for.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdlib>

#include "robustness/soak/soak_host.h"
#include "support/process_figures.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

constexpr unsigned seed = 20240229;
// Half as many where a report takes much longer.
const int defaultReports = memoryIsMeasured ? 100000 : 50000;
constexpr long allowedGrowth = 256 * 1024;
constexpr int parts = 5;

long wantedReports() {
    const std::string wanted = environmentText("RGEN_SOAK_GENERATIONS");
    return wanted.empty() ? loopCount(defaultReports) : std::stol(wanted);
}

struct Figures {
    long resident;
    long handles;
    long threads;
};

Figures figuresOf(SoakHost& host) {
    const long resident = medianOfResidentBytes([&host] { host.makeReports(20); });
    host.collectConverters();
    return {resident, openHandles(), threadCount()};
}

TEST(Soak, NothingGrows) {
    const long wanted = wantedReports();
    SoakHost host(seed);
    const std::vector<std::string> files = host.files();
    host.abandonConverter();
    host.makeReports(wanted / 5);
    const Figures warm = figuresOf(host);
    Figures now = warm;
    for (int part = 1; part <= parts && !HasFailure(); ++part) {
        host.abandonConverter();
        host.makeReports(wanted * 4 / 5 / parts);
        now = figuresOf(host);
        printGrowth("resident bytes after " + std::to_string(host.reports()) + " reports",
                    warm.resident, now.resident);
    }
    for (const auto& [what, count] : host.counts())
        printFigure(what, count);
    printGrowth("soak: descriptors or handles", warm.handles, now.handles);
    printGrowth("soak: threads", warm.threads, now.threads);
    EXPECT_LE(now.handles, warm.handles + handlesOfLocks);
    EXPECT_EQ(warm.threads, now.threads);
    EXPECT_EQ(0, endedChildren());
    if (memoryIsMeasured) {
        EXPECT_LE(now.resident - warm.resident, allowedGrowth);
    }
    host.removeReports();
    EXPECT_EQ(files, host.files());
}

}  // namespace
}  // namespace rgen_test
