// The limit of the calling thread's stack on Linux, and what follows where it is not known.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <libxslt/transform.h>
#include <libxslt/xsltInternals.h>
#include <libxslt/xsltutils.h>
#include <pthread.h>

#include <csignal>
#include <cstddef>
#include <thread>
#include <vector>

#include "memory/pool_scope.h"
#include "platform/platform.h"
#include "store/xml/handles.h"
#include "store/xml/stack_guard.h"
#include "support/fault_injection.h"
#include "support/sized_thread.h"

namespace rgen_test {
namespace {

namespace platform = rgen::platform;

TEST(StackLimit, IsUnknownOnAStackThatIsNotTheThreads) {
    static const char* limit;
    limit = platform::stackLimit();
    ASSERT_NE(nullptr, limit);
    std::vector<char> memory(std::size_t{256} * 1024);
    stack_t alternative = {};
    alternative.ss_sp = memory.data();
    alternative.ss_size = memory.size();
    stack_t previous = {};
    ASSERT_EQ(0, sigaltstack(&alternative, &previous));
    struct sigaction action = {};
    struct sigaction previousAction = {};
    action.sa_handler = [](int) { limit = platform::stackLimit(); };
    action.sa_flags = SA_ONSTACK;
    sigaction(SIGUSR1, &action, &previousAction);
    raise(SIGUSR1);
    sigaction(SIGUSR1, &previousAction, nullptr);
    sigaltstack(&previous, nullptr);
    EXPECT_EQ(nullptr, limit);
}

TEST(StackLimit, IsUnknownOnAStackAboveTheThreads) {
    // The main thread's stack lies above those of all others.
    char memory[64 * 1024];
    static const char* limit;
    std::thread([&memory] {
        limit = platform::stackLimit();
        EXPECT_NE(nullptr, limit);
        stack_t alternative = {};
        alternative.ss_sp = memory;
        alternative.ss_size = sizeof memory;
        ASSERT_EQ(0, sigaltstack(&alternative, nullptr));
        struct sigaction action = {};
        struct sigaction previousAction = {};
        action.sa_handler = [](int) { limit = platform::stackLimit(); };
        action.sa_flags = SA_ONSTACK;
        sigaction(SIGUSR1, &action, &previousAction);
        pthread_kill(pthread_self(), SIGUSR1);
        sigaction(SIGUSR1, &previousAction, nullptr);
        alternative.ss_flags = SS_DISABLE;
        sigaltstack(&alternative, nullptr);
    }).join();
    EXPECT_EQ(nullptr, limit);
}

TEST(StackLimit, IsUnknownWhenTheSystemDoesNotTellIt) {
    const char* limit = "";
    std::thread([&limit] {
        const FailingCall failure(Call::ReadThreadStack);
        limit = platform::stackLimit();
        EXPECT_TRUE(failure.reached());
    }).join();
    EXPECT_EQ(nullptr, limit);
}

TEST(StackLimit, IsAskedForAgainAfterMemoryWasShort) {
    std::thread([] {
        {
            const FailingCall failure(Call::ReadThreadAttributes);
            EXPECT_THROW(platform::stackLimit(), std::bad_alloc);
            EXPECT_TRUE(failure.reached());
        }
        EXPECT_NE(nullptr, platform::stackLimit());
    }).join();
}

// The C library has room for the pointers of a thread in its record; where it has none left, memory
// may be short.
TEST(StackLimit, IsReadAgainWhereItCannotBeKept) {
    std::thread([] {
        const char* first = nullptr;
        {
            const FailingCall lowest(Call::SetThreadPointer);
            const FailingCall highest(Call::SetThreadPointer);
            first = platform::stackLimit();
            EXPECT_TRUE(lowest.reached());
        }
        EXPECT_NE(nullptr, first);
        const InterceptedCall reading(Call::ReadThreadAttributes, [] {});
        EXPECT_EQ(first, platform::stackLimit());
        EXPECT_TRUE(reading.reached());
        const InterceptedCall readingAgain(Call::ReadThreadAttributes, [] {});
        EXPECT_EQ(first, platform::stackLimit());
        EXPECT_FALSE(readingAgain.reached());
    }).join();
}

TEST(ThreadPointer, SaysThatItCannotBeSet) {
    std::thread([] {
        int target = 0;
        {
            const FailingCall failure(Call::SetThreadPointer);
            EXPECT_FALSE(platform::setThreadPointer(&target));
        }
        EXPECT_EQ(nullptr, platform::threadPointer());
        EXPECT_TRUE(platform::setThreadPointer(&target));
        EXPECT_EQ(&target, platform::threadPointer());
    }).join();
}

TEST(PoolScope, WorksOnWithoutAPoolWhereThePointerCannotBeSet) {
    if (!rgen::memory::poolsAreUsed)
        GTEST_SKIP() << "the build for the address sanitizer has no pools";
    rgen::memory::PoolSlot slot;
    std::thread([&slot] {
        const FailingCall failure(Call::SetThreadPointer);
        const rgen::memory::PoolScope scope(slot);
        EXPECT_TRUE(failure.reached());
        EXPECT_EQ(nullptr, rgen::memory::poolInUse());
    }).join();
}

TEST(GuardStack, CountsOnTheSmallestStackWhereTheLimitIsUnknown) {
    std::thread([] {
        const rgen::XmlPtr<xmlDoc> data(xmlNewDoc(rgen::xmlText("1.0")));
        const rgen::XmlPtr<xsltStylesheet> stylesheet(xsltNewStylesheet());
        const rgen::XmlPtr<xsltTransformContext> context(
            xsltNewTransformContext(stylesheet.get(), data.get()));
        const FailingCall failure(Call::ReadThreadStack);
        rgen::TemplateBounds bounds;
        rgen::guardStack(*context, bounds);
        EXPECT_TRUE(failure.reached());
        const std::ptrdiff_t room =
            static_cast<const char*>(__builtin_frame_address(0)) - bounds.lowestAllowed;
        const std::size_t expected = platform::assumedStack - platform::unknownStackRule.reserve;
        EXPECT_LE(96 * kibibyte, expected);
        EXPECT_NEAR(static_cast<double>(expected), static_cast<double>(room), 1024.0);
        EXPECT_EQ(platform::unknownStackRule.withheldXPathLevels, context->xpathCtxt->depth);
        EXPECT_EQ(XSLT_DEBUG_RUN, context->debugStatus);
    }).join();
}

}  // namespace
}  // namespace rgen_test
