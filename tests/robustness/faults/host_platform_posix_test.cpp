// Threads of the host library that Linux refuses to start, and exceptions without memory for their
// text. Not on Windows, where the stack overflows in that case.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <system_error>

#include "error/exception_report.h"
#include "platform/host_platform.h"
#include "support/fault_injection.h"

namespace rgen_test {
namespace {

TEST(HostThread, DoesNotStartWithAStackThatIsTooSmallOrTooLarge) {
    const auto run = [](void* /*argument*/) {};
    for (const std::size_t size : {std::size_t{1}, std::size_t{1} << 60}) {
        rgenh::platform::Thread thread;
        EXPECT_FALSE(thread.start(run, nullptr, size));
        EXPECT_FALSE(thread.isJoinable());
    }
}

TEST(ExceptionText, WithoutMemoryIsAnErrorOfMemory) {
    RgenhError error = {};
    error.size = sizeof error;
    const auto fail = [](rgenh::ErrorRecord& /*record*/) -> RgenStatus {
        throw std::system_error(std::make_error_code(std::errc::permission_denied));
    };
    bool isReached = true;
    for (std::size_t number = 1; isReached; ++number) {
        SCOPED_TRACE(number);
        RgenStatus status = RGEN_OK;
        {
            const FailingAllocation failure(number, FailureForm::AllFrom);
            status = rgenh::guarded(&error, fail);
            isReached = failure.reached();
        }
        EXPECT_EQ(RGEN_E_UNKNOWN, status);
        EXPECT_EQ(isReached ? RGENH_ERROR_MEMORY : RGENH_ERROR_UNKNOWN, error.kind);
    }
}

}  // namespace
}  // namespace rgen_test
