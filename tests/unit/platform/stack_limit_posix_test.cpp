// The limit of the calling thread's stack on Linux, and the thread's pointer.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <pthread.h>

#include <csignal>
#include <cstddef>
#include <new>
#include <thread>
#include <vector>

#include "platform/platform.h"
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
    // The main thread's stack has higher addresses than those of all others.
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

// Setting a thread's pointer may fail: it needs memory when the thread's own record has no room.
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

}  // namespace
}  // namespace rgen_test
