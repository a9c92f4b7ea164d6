// Child processes on Linux when a call of the system fails.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdint>
#include <filesystem>
#include <iterator>
#include <memory>
#include <new>

#include "platform/child_process.h"
#include "support/converter_control.h"
#include "support/fault_injection.h"
#include "support/temp_folder.h"

namespace rgen_test {
namespace {

namespace platform = rgen::platform;

constexpr std::uint32_t longWait = 60000;

std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

// Waits for all children of this process and reaps them.
void collectEveryChild() {
    siginfo_t info = {};
    while (waitid(P_ALL, 0, &info, WEXITED) == 0)
        platform::reapAbandonedProcesses();
    platform::reapAbandonedProcesses();
}

class ChildProcessFailures : public ::testing::Test {
protected:
    ChildProcessFailures() { collectEveryChild(); }

    const TempFolder folder;
    const ConverterControl control{folder};
};

TEST_F(ChildProcessFailures, SurroundingsThatCannotBePreparedStartNothing) {
    const std::ptrdiff_t before = openDescriptors();
    // Actions, attributes, three standard streams, all further descriptors.
    constexpr int calls = 6;
    for (int number = 1; number <= calls; ++number) {
        const FailingCall failure(Call::PrepareSpawn, number);
        EXPECT_THROW(platform::ChildProcess("vellum"), std::bad_alloc) << number;
        EXPECT_TRUE(failure.reached()) << number;
    }
    const FailingCall oneMore(Call::PrepareSpawn, calls + 1);
    platform::ChildProcess process("vellum");
    EXPECT_FALSE(oneMore.reached());
    EXPECT_FALSE(process.waitTimedOut(longWait));
    std::uint32_t exitCode = 0;
    EXPECT_TRUE(process.queryExitCode(exitCode));
    EXPECT_EQ(before, openDescriptors());
}

TEST_F(ChildProcessFailures, InterruptedQueryIsRepeated) {
    control.obey({{"exit", "7"}});
    platform::ChildProcess process("vellum");
    EXPECT_FALSE(process.waitTimedOut(longWait));
    const FailingCall interrupted(Call::QueryInterrupted);
    std::uint32_t exitCode = 0;
    EXPECT_TRUE(process.queryExitCode(exitCode));
    EXPECT_TRUE(interrupted.reached());
    EXPECT_EQ(7U, exitCode);
}

TEST_F(ChildProcessFailures, RefusedQueryIsNoEnd) {
    platform::ChildProcess process("vellum");
    EXPECT_FALSE(process.waitTimedOut(longWait));
    const FailingCall refused(Call::QueryExitCode);
    std::uint32_t exitCode = 7;
    EXPECT_FALSE(process.queryExitCode(exitCode));
    EXPECT_TRUE(refused.reached());
    EXPECT_EQ(0U, exitCode);
}

TEST_F(ChildProcessFailures, RefusedWaitIsNotRepeated) {
    platform::ChildProcess process("vellum");
    const FailingCall refused(Call::Wait);
    EXPECT_FALSE(process.waitTimedOut(longWait));
    EXPECT_TRUE(refused.reached());
}

TEST_F(ChildProcessFailures, RunningProgramThatCannotBeRememberedLeavesNoDescriptor) {
    control.obey({{"await", folder.file("go")}});
    const std::ptrdiff_t before = openDescriptors();
    // Without a failure the abandoned program is stored with its descriptor.
    for (const bool isRemembered : {true, false}) {
        auto process = std::make_unique<platform::ChildProcess>("vellum");
        ASSERT_TRUE(process->waitTimedOut(1));
        const FailingCall noMemory(Call::Malloc, isRemembered ? 2 : 1);
        process.reset();
        EXPECT_EQ(isRemembered, !noMemory.reached());
    }
    EXPECT_EQ(before + 1, openDescriptors());
    {
        const FailingCall withoutDescriptor(Call::OpenProcessDescriptor);
        auto process = std::make_unique<platform::ChildProcess>("vellum");
        EXPECT_TRUE(withoutDescriptor.reached());
        ASSERT_TRUE(process->waitTimedOut(1));
        const FailingCall noMemory(Call::Malloc);
        process.reset();
        EXPECT_TRUE(noMemory.reached());
    }
    EXPECT_EQ(before + 1, openDescriptors());
    writeFile(folder.file("go"), "");
    collectEveryChild();
    EXPECT_EQ(before, openDescriptors());
}

}  // namespace
}  // namespace rgen_test
