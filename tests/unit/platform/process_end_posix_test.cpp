// Process exit while an abandoned program runs. Each case ends a child of this process.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>

#include "platform/child_process.h"
#include "support/converter_control.h"
#include "support/fault_injection.h"
#include "support/temp_folder.h"

namespace rgen_test {
namespace {

int openProcessDescriptors() {
    constexpr int mostDescriptors = 256;
    int count = 0;
    for (int descriptor = 0; descriptor < mostDescriptors; ++descriptor) {
        char target[64] = {};
        const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
        const ssize_t size = readlink(link.c_str(), target, sizeof target - 1);
        if (size > 0 && std::string_view(target).find("pidfd") != std::string_view::npos) ++count;
    }
    return count;
}

bool isEndWatched = false;

// Runs after the library's own destructor functions, which have no priority.
[[gnu::destructor(101)]] void tellOpenDescriptors() {
    if (isEndWatched) _exit(openProcessDescriptors());
}

// Starts a thread that blocks for ever while it reaps the abandoned programs.
void startToCollect() {
    std::atomic<bool> isInside{false};
    std::thread([&isInside] {
        const InterceptedCall looking(Call::QueryExitCode, [&isInside] {
            isInside = true;
            while (true)
                pause();
        });
        rgen::platform::reapAbandonedProcesses();
    }).detach();
    while (!isInside)
        std::this_thread::yield();
}

// The number of process descriptors that are open after the library's clean-up.
int openAfterTheEnd(bool isBeingCollected) {
    const TempFolder folder;
    const ConverterControl control{folder};
    control.obey({{"await", folder.file("go")}});
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        {
            rgen::platform::ChildProcess process("vellum");
            if (!process.waitTimedOut(1)) _exit(99);
        }
        if (isBeingCollected) startToCollect();
        isEndWatched = true;
        std::exit(98);
    }
    int status = 0;
    EXPECT_EQ(child, waitpid(child, &status, 0));
    EXPECT_TRUE(WIFEXITED(status)) << status;
    writeFile(folder.file("go"), "");
    return WEXITSTATUS(status);
}

TEST(ProcessEnd, ForgetsTheProgramsThatStillRun) {
    EXPECT_EQ(0, openAfterTheEnd(false));
}

TEST(ProcessEnd, LeavesThemToAThreadThatCollectsThem) {
    EXPECT_EQ(1, openAfterTheEnd(true));
}

}  // namespace
}  // namespace rgen_test
