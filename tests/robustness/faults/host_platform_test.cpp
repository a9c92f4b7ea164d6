// What the host library asks of the system: waits, and the files that programs are loaded from.
//
// SPDX-License-Identifier: MIT
#include "platform/host_platform.h"

#include <gtest/gtest.h>

#include <mutex>
#include <thread>

#include "support/temp_folder.h"

namespace rgen_test {
namespace {

namespace platform = rgenh::platform;

TEST(HostPlatform, WaitsForTheLongestTimeUntilItIsNotified) {
    platform::Monitor monitor;
    bool isNotified = false;
    std::unique_lock<platform::Monitor> lock(monitor);
    // The thread gets the lock when the wait releases it.
    std::thread thread([&] {
        const std::lock_guard<platform::Monitor> inThread(monitor);
        isNotified = true;
        monitor.notifyAll();
    });
    while (!isNotified)
        monitor.wait(INT64_MAX);
    lock.unlock();
    thread.join();
}

TEST(HostPlatform, KnowsTheFileOfAProgramWithoutAVersion) {
    static const char ofTheProgram = 0;
    const platform::LoadedFile file = platform::loadedFileOf(&ofTheProgram);
    EXPECT_TRUE(exists(file.path)) << file.path;
    EXPECT_EQ("unknown", file.version);
}

TEST(HostPlatform, KnowsNoFileOfOtherAddresses) {
    const int onTheStack = 0;
    const platform::LoadedFile file = platform::loadedFileOf(&onTheStack);
    EXPECT_EQ("", file.path);
    EXPECT_EQ("unknown", file.version);
}

}  // namespace
}  // namespace rgen_test
