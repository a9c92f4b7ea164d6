// What a caught exception of the DLL does to a host's own count of exceptions: the DLL holds a C++
// runtime of its own, so the count of the host's runtime goes down with the catch without having
// gone up with the throw.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <exception>
#include <stdexcept>

#include "support/host_records.h"

namespace rgen_test {
namespace {

TEST(CaughtException, LowersTheHostsCountOfUncaughtExceptions) {
    const Generator generator;
    for (int round = 0; round < 3; ++round) {
        const int before = std::uncaught_exceptions();
        EXPECT_THROW(rgen_setDataDirPath(generator.get(), "\xFF"), std::range_error);
        EXPECT_EQ(before - 1, std::uncaught_exceptions());
    }
}

}  // namespace
}  // namespace rgen_test
