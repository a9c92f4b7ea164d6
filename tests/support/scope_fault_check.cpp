// SPDX-License-Identifier: MIT
#include "support/scope_fault_check.h"

#include <gtest/gtest.h>

namespace rgen_test {
namespace {

rgen::memory::ScopeFaults acknowledged = {0, 0};

class ScopeFaultCheck : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo& test) override {
        const rgen::memory::ScopeFaults faults = acknowledgeScopeFaults();
        EXPECT_EQ(0U, faults.poolsLeft) << test.name();
        EXPECT_EQ(0U, faults.wrongReleases) << test.name();
    }
};

const bool isListening = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new ScopeFaultCheck);
    return true;
}();

}  // namespace

rgen::memory::ScopeFaults acknowledgeScopeFaults() {
    static_cast<void>(isListening);
    const rgen::memory::ScopeFaults now = rgen::memory::scopeFaults();
    const rgen::memory::ScopeFaults since = {now.poolsLeft - acknowledged.poolsLeft,
                                             now.wrongReleases - acknowledged.wrongReleases};
    acknowledged = now;
    return since;
}

}  // namespace rgen_test
