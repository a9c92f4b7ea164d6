// The lock that cancellers get before all others.
//
// SPDX-License-Identifier: MIT
#include "lock/priority_mutex.h"

#include <gtest/gtest.h>

#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace rgen_test {
namespace {

using rgen::sync::CancellerLock;
using rgen::sync::PriorityMutex;

void awaitCancellers(const PriorityMutex& mutex, unsigned count) {
    while (mutex.cancellers() != count)
        std::this_thread::yield();
}

// Runs the function on that many threads.
void startThreads(std::vector<std::thread>& threads, int count,
                  const std::function<void()>& function) {
    for (int number = 0; number < count; ++number)
        threads.emplace_back(function);
}

void join(std::vector<std::thread>& threads) {
    for (std::thread& thread : threads)
        thread.join();
}

TEST(PriorityMutex, IsMadeWithoutAnException) {
    EXPECT_TRUE(std::is_nothrow_default_constructible_v<PriorityMutex>);
    EXPECT_FALSE(std::is_copy_constructible_v<PriorityMutex>);
}

TEST(PriorityMutex, ExcludesAllOthers) {
    PriorityMutex mutex;
    int count = 0;
    std::vector<std::thread> threads;
    startThreads(threads, 2, [&] {
        for (int round = 0; round < 5000; ++round) {
            const std::lock_guard lock(mutex);
            ++count;
        }
    });
    startThreads(threads, 2, [&] {
        for (int round = 0; round < 5000; ++round) {
            const CancellerLock lock(mutex);
            ++count;
        }
    });
    join(threads);
    EXPECT_EQ(20000, count);
    EXPECT_EQ(0U, mutex.cancellers());
}

TEST(PriorityMutex, IsTakenByOneAtATime) {
    PriorityMutex mutex;
    bool second = true;
    {
        const std::lock_guard lock(mutex);
        std::thread([&] { second = mutex.try_lock(); }).join();
        EXPECT_FALSE(second);
    }
    {
        const CancellerLock lock(mutex);
        EXPECT_EQ(1U, mutex.cancellers());
        std::thread([&] { second = mutex.try_lock(); }).join();
        EXPECT_FALSE(second);
    }
    EXPECT_EQ(0U, mutex.cancellers());
    ASSERT_TRUE(mutex.try_lock());
    mutex.unlock();
}

// Who got the lock, in that order, after its holder had seen all cancellers wait.
std::string orderOf(int others, int cancellers) {
    PriorityMutex mutex;
    std::string order;
    std::vector<std::thread> threads;
    std::unique_lock held(mutex);
    startThreads(threads, others, [&] {
        const std::lock_guard lock(mutex);
        order += 'o';
    });
    startThreads(threads, cancellers, [&] {
        const CancellerLock lock(mutex);
        order += 'C';
    });
    awaitCancellers(mutex, static_cast<unsigned>(cancellers));
    startThreads(threads, others, [&] {
        const std::lock_guard lock(mutex);
        order += 'o';
    });
    held.unlock();
    join(threads);
    return order;
}

TEST(PriorityMutex, ACancellerPrecedesWhoeverElseWaits) {
    for (int round = 0; round < 50; ++round)
        ASSERT_EQ("Coooo", orderOf(2, 1));
}

TEST(PriorityMutex, CancellersPrecedeWhoeverLetsThem) {
    PriorityMutex mutex;
    mutex.letCancellersPrecede();
    for (int round = 0; round < 200; ++round) {
        int cancelled = 0;
        std::vector<std::thread> cancellers;
        std::unique_lock held(mutex);
        startThreads(cancellers, 2, [&] {
            const CancellerLock lock(mutex);
            ++cancelled;
        });
        awaitCancellers(mutex, 2);
        held.unlock();
        mutex.letCancellersPrecede();
        const int before = cancelled;
        join(cancellers);
        ASSERT_EQ(2, before);
    }
    EXPECT_TRUE(mutex.try_lock());
    mutex.unlock();
}

TEST(PriorityMutex, SeveralCancellersPrecedeWhoeverElseWaits) {
    for (int round = 0; round < 50; ++round)
        ASSERT_EQ("CCCoooo", orderOf(2, 3));
}

TEST(PriorityMutex, ACancellerPrecedesItsHolderWhoComesBackAtOnce) {
    PriorityMutex mutex;
    for (int round = 0; round < 200; ++round) {
        bool cancelled = false;
        std::unique_lock held(mutex);
        std::thread canceller([&] {
            const CancellerLock lock(mutex);
            cancelled = true;
        });
        awaitCancellers(mutex, 1);
        held.unlock();
        held.lock();
        const bool wasFirst = cancelled;
        held.unlock();
        canceller.join();
        ASSERT_TRUE(wasFirst);
    }
}

}  // namespace
}  // namespace rgen_test
