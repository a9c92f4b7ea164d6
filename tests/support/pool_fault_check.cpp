// The check, as a listener that every case reports to.
//
// SPDX-License-Identifier: MIT
#include "support/pool_fault_check.h"

#include <gtest/gtest.h>

namespace rgen_test {
namespace {

rgen::memory::PoolFaults acknowledged = {0, 0};

class PoolFaultCheck : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo& test) override {
        const rgen::memory::PoolFaults faults = acknowledgePoolFaults();
        EXPECT_EQ(0U, faults.poolsLeft) << test.name();
        EXPECT_EQ(0U, faults.wrongReleases) << test.name();
    }
};

const bool isListening = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new PoolFaultCheck);
    return true;
}();

}  // namespace

rgen::memory::PoolFaults acknowledgePoolFaults() {
    static_cast<void>(isListening);
    const rgen::memory::PoolFaults now = rgen::memory::poolFaults();
    const rgen::memory::PoolFaults since = {now.poolsLeft - acknowledged.poolsLeft,
                                            now.wrongReleases - acknowledged.wrongReleases};
    acknowledged = now;
    return since;
}

}  // namespace rgen_test
