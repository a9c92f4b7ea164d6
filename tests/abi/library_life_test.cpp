// The library's way into a process and out of it, again and again, with threads that stay: some
// have used it and live on when it is gone.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "abi/library_functions.h"
#include "support/process_figures.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

constexpr int cycles = 2000;
constexpr int warmUp = 200;
constexpr long allowedGrowth = 64 * 1024;

// Two threads take turns: each waits for its number.
class Turns {
public:
    void waitFor(int turn) {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait(lock, [&] { return turn_ >= turn; });
    }
    void next(int turn) {
        const std::lock_guard<std::mutex> lock(mutex_);
        turn_ = turn;
        changed_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int turn_ = 0;
};

enum class Lives { WithTheLibrary, LongerThanTheLibrary };

// A thread that makes one report with the loaded library and lives as long as this object. libxml2
// loses its record of a thread that lives longer than the library.
class LivingUser {
public:
    LivingUser(const LoadedLibrary& library, const TempFolder& folder, Lives lives)
        : thread_([this, &library, &folder, lives] {
              {
                  std::optional<IgnoredLeaks> ignored;
                  if (lives == Lives::LongerThanTheLibrary) ignored.emplace();
                  EXPECT_EQ("[size] 0xff", reportThrough(Functions(library), folder));
              }
              turns_.next(1);
              turns_.waitFor(2);
          }) {
        turns_.waitFor(1);
    }
    ~LivingUser() {
        turns_.next(2);
        thread_.join();
    }
    LivingUser(const LivingUser&) = delete;
    LivingUser& operator=(const LivingUser&) = delete;

private:
    Turns turns_;
    std::thread thread_;
};

std::unique_ptr<LivingUser> newUser(const LoadedLibrary& library, const TempFolder& folder) {
    return std::make_unique<LivingUser>(library, folder, Lives::LongerThanTheLibrary);
}

// Runs the warm-up and the cycles. Memory may grow by 64 KiB, with threads that live on by three
// times as much, since their records lie between the blocks of the C heap; and by what the system
// and each of that many threads cost a cycle.
template <typename Cycle>
void expectNoGrowth(const std::string& what, const Cycle& cycle, long threadsOfCycle) {
    for (int number = 0; number < loopCount(warmUp); ++number)
        ASSERT_NO_FATAL_FAILURE(cycle());
    const long resident = medianOfResidentBytes(cycle);
    const long handles = openHandles();
    const long threads = threadCount();
    for (int number = 0; number < loopCount(cycles); ++number)
        ASSERT_NO_FATAL_FAILURE(cycle());
    const long handlesAfter = openHandles();
    EXPECT_EQ(threads, threadCount());
    const long residentAfter = medianOfResidentBytes(cycle);
    printGrowth(what + ": resident bytes", resident, residentAfter);
    printGrowth(what + ": descriptors or handles", handles, handlesAfter);
    const long done = loopCount(cycles);
    EXPECT_LE(handlesAfter, handles + handlesOfLocks + done * threadsOfCycle * handlesKeptOfThread);
    if (memoryIsMeasured) {
        const long kept = bytesKeptOfLoad + threadsOfCycle * bytesKeptOfThread;
        const long allowed = threadsOfCycle == 0 ? allowedGrowth : 3 * allowedGrowth;
        EXPECT_LE(residentAfter - resident, allowed + done * kept);
    }
}

// One load and unload, with a use on this thread and on one that ends before the unload.
void cycle(const TempFolder& folder) {
    const LoadedLibrary library;
    ASSERT_TRUE(library.isLoaded());
    ASSERT_EQ("[size] 0xff", reportThrough(Functions(library), folder));
    const LivingUser user(library, folder, Lives::WithTheLibrary);
}

TEST(LibraryLife, MayBeLoadedAndUnloadedOften) {
    const TempFolder folder;
    for (int round = 0; round < 25; ++round) {
        const LoadedLibrary library;
        ASSERT_TRUE(library.isLoaded());
        ASSERT_EQ("[size] 0xff", reportThrough(Functions(library), folder));
    }
    EXPECT_FALSE(libraryIsInMemory());
}

TEST(LibraryLife, MayBeUnloadedWhileAThreadThatUsedItLives) {
    const TempFolder folder;
    Turns turns;
    std::string report;
    {
        const LoadedLibrary library;
        ASSERT_TRUE(library.isLoaded());
        const Functions functions(library);
        std::thread([&] { EXPECT_EQ("[size] 0xff", reportThrough(functions, folder)); }).join();
    }
    std::thread user([&] {
        turns.waitFor(1);
        const LoadedLibrary library;
        report = reportThrough(Functions(library), folder);
        turns.next(2);
        turns.waitFor(3);
    });
    {
        const LoadedLibrary library;
        ASSERT_TRUE(library.isLoaded());
        turns.next(1);
        turns.waitFor(2);
    }
    EXPECT_EQ("[size] 0xff", report);
    // A system may keep the code in memory for the thread; the test is that the thread ends.
    turns.next(3);
    user.join();
}

// A process on Windows has 1,088 slots for thread-local pointers; no load may keep one.
TEST(LibraryLife, ManyLoadsUseUpNoThreadSlots) {
    constexpr int loads = 1200;
    for (int number = 0; number < loads; ++number) {
        const LoadedLibrary library;
        ASSERT_TRUE(library.isLoaded());
        const Functions functions(library);
        functions.freeGenerator(functions.newGenerator());
    }
    EXPECT_FALSE(libraryIsInMemory());
}

// Four threads that used the library before the cycles live through all of them.
TEST(LibraryLife, NothingGrowsOverManyLoadsWithThreadsThatStay) {
    const TempFolder folder;
    std::vector<std::unique_ptr<LivingUser>> users;
    {
        const LoadedLibrary library;
        for (int number = 0; number < 4; ++number)
            users.push_back(newUser(library, folder));
    }
    const auto cycleOnce = [&folder] { cycle(folder); };
    expectNoGrowth("loading", cycleOnce, 0);
    users.clear();
    EXPECT_FALSE(libraryIsInMemory());
}

// Each cycle has a thread that uses the library, lives through its unloading and ends in a later
// cycle. On Windows, the C++ runtime loses a record of it, too.
TEST(LibraryLife, AThreadThatLivesThroughTheUnloadingCostsNoMoreThanItsRecord) {
    const TempFolder folder;
    std::vector<std::unique_ptr<LivingUser>> users;
    const auto cycleOnce = [&] {
        {
            const LoadedLibrary library;
            ASSERT_TRUE(library.isLoaded());
            users.push_back(newUser(library, folder));
        }
        constexpr std::size_t livingUsers = 3;
        if (users.size() > livingUsers) users.erase(users.begin());
    };
    expectNoGrowth("unloading under a thread", cycleOnce, 1);
    users.clear();
    EXPECT_FALSE(libraryIsInMemory());
}

}  // namespace
}  // namespace rgen_test
