// What a caught exception of the library does to a host that shares its C++ runtime: nothing.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <exception>
#include <stdexcept>

#include "support/host_records.h"

namespace rgen_test {
namespace {

TEST(CaughtException, LeavesTheCountOfUncaughtExceptionsOfASharedRuntimeAlone) {
    const Generator generator;
    EXPECT_THROW(rgen_setDataDirPath(generator.get(), "\xFF"), std::range_error);
    EXPECT_EQ(0, std::uncaught_exceptions());
}

}  // namespace
}  // namespace rgen_test
