// The one test for failure.
//
// SPDX-License-Identifier: MIT
#include "status.h"

#include <gtest/gtest.h>

#include <limits>

namespace rgen_test {
namespace {

TEST(Failed, ZeroAndPositiveStatusesAreSuccess) {
    EXPECT_FALSE(rgen::failed(RGEN_OK));
    EXPECT_FALSE(rgen::failed(1));
    EXPECT_FALSE(rgen::failed(std::numeric_limits<rgen::Status>::max()));
}

TEST(Failed, EveryNegativeStatusIsAFailure) {
    EXPECT_TRUE(rgen::failed(-1));
    EXPECT_TRUE(rgen::failed(RGEN_CANCELED));
    EXPECT_TRUE(rgen::failed(RGEN_E_UNKNOWN));
    EXPECT_TRUE(rgen::failed(std::numeric_limits<rgen::Status>::min()));
}

}  // namespace
}  // namespace rgen_test
