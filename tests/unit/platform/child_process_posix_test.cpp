// Child processes on Linux: the command line, what the program inherits, the reaping of abandoned
// programs.
//
// SPDX-License-Identifier: MIT
#include "platform/child_process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "support/converter_control.h"
#include "support/fault_injection.h"
#include "support/temp_folder.h"

namespace rgen_test {
namespace {

namespace platform = rgen::platform;

using Texts = std::vector<std::string>;

// Longer than any program of these tests runs.
constexpr std::uint32_t longWait = 60000;

std::size_t openDescriptors() {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        static_cast<void>(entry);
        ++count;
    }
    return count;
}

// True when this process has a child, running or not reaped.
bool hasChildren() {
    siginfo_t info = {};
    return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

// Waits for the programs that earlier cases left running, and reaps them.
void collectAbandoned() {
    siginfo_t info = {};
    while (waitid(P_ALL, 0, &info, WEXITED | WNOWAIT) == 0)
        platform::reapAbandonedProcesses();
}

class ChildProcessTest : public ::testing::Test {
protected:
    ChildProcessTest() {
        collectAbandoned();
        control.obey({{"log", logPath}});
    }

    Texts argumentsFor(const std::string& commandLine) {
        removeAll(logPath);
        platform::ChildProcess process(commandLine);
        EXPECT_TRUE(process.started());
        EXPECT_FALSE(process.waitTimedOut(longWait));
        return loggedFacts(logPath, "argument");
    }

    const TempFolder folder;
    const std::string logPath = folder.file("log");
    const ConverterControl control{folder};
};

TEST(EmptyCommandLine, StartsNothing) {
    for (const std::string commandLine : {"", "   "}) {
        EXPECT_FALSE(platform::ChildProcess(commandLine).started());
    }
}

TEST_F(ChildProcessTest, CommandLineIsSplitAtBlanksOutsideQuotes) {
    const struct {
        const char* commandLine;
        Texts arguments;
    } rows[] = {
        {"vellum", {"vellum"}},
        {"vellum a b", {"vellum", "a", "b"}},
        {"  vellum   a  ", {"vellum", "a"}},
        {"vellum \"a b\" c", {"vellum", "a b", "c"}},
        {"vellum \"\" \"\"", {"vellum", "", ""}},
        {"vellum a\"b c\"d", {"vellum", "ab cd"}},
        {"vellum \"a\"\"b\"", {"vellum", "ab"}},
        {"vellum \"a  b", {"vellum", "a  b"}},
        {"\"vellum\" a", {"vellum", "a"}},
        {"vellum a\tb", {"vellum", "a\tb"}},
        {"vellum $HOME *.c 'a b' \\\" ;&|>x `x` ~ %X%",
         {"vellum", "$HOME", "*.c", "'a", "b'", "\\ ;&|>x `x` ~ %X%"}},
        {"vellum \"\xD0\xBE \\n\"", {"vellum", "\xD0\xBE \\n"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.arguments, argumentsFor(row.commandLine)) << row.commandLine;
    }
}

TEST_F(ChildProcessTest, ChildHasThreeDescriptorsItsOwnSessionAndDefaultSignals) {
    const int inherited = open("/dev/zero", O_RDONLY);
    sigset_t blocked;
    sigset_t previous;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &blocked, &previous);
    const auto previousHandler = std::signal(SIGUSR1, SIG_IGN);
    argumentsFor("vellum");
    std::signal(SIGUSR1, previousHandler);
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    close(inherited);
    EXPECT_EQ((Texts{"0\t/dev/null", "1\t/dev/null", "2\t/dev/null"}),
              loggedFacts(logPath, "descriptor"));
    EXPECT_EQ(Texts{"own"}, loggedFacts(logPath, "session"));
    EXPECT_EQ(Texts{"0000000000000000"}, loggedFacts(logPath, "SigBlk:"));
    // The C library ignores two signals of its own after the 31 standard ones.
    const Texts ignored = loggedFacts(logPath, "SigIgn:");
    ASSERT_EQ(1U, ignored.size());
    EXPECT_EQ(0U, std::stoull(ignored[0], nullptr, 16) & 0x7FFFFFFFU);
}

TEST_F(ChildProcessTest, ExitCodeIsKnownAndNothingRemains) {
    const std::size_t before = openDescriptors();
    {
        control.obey({{"exit", "7"}});
        platform::ChildProcess process("vellum");
        EXPECT_FALSE(process.waitTimedOut(longWait));
        std::uint32_t exitCode = 0;
        EXPECT_TRUE(process.queryExitCode(exitCode));
        EXPECT_EQ(7U, exitCode);
    }
    EXPECT_FALSE(hasChildren());
    EXPECT_EQ(before, openDescriptors());
}

TEST_F(ChildProcessTest, MissingProgramIsNotStartedAndLeavesNothing) {
    const std::size_t before = openDescriptors();
    {
        const platform::ChildProcess process("no-such-program-here");
        EXPECT_FALSE(process.started());
    }
    EXPECT_FALSE(hasChildren());
    EXPECT_EQ(before, openDescriptors());
}

TEST_F(ChildProcessTest, RunningProgramTimesOutAndIsReapedAfterItsEnd) {
    const std::size_t before = openDescriptors();
    control.obey({{"await", folder.file("go")}});
    {
        platform::ChildProcess process("vellum");
        EXPECT_TRUE(process.waitTimedOut(1));
        std::uint32_t exitCode = 77;
        EXPECT_FALSE(process.queryExitCode(exitCode));
        EXPECT_EQ(0U, exitCode);
    }
    platform::reapAbandonedProcesses();
    EXPECT_TRUE(hasChildren());
    writeFile(folder.file("go"), "");
    siginfo_t info = {};
    EXPECT_EQ(0, waitid(P_ALL, 0, &info, WEXITED | WNOWAIT));
    platform::reapAbandonedProcesses();
    EXPECT_FALSE(hasChildren());
    EXPECT_EQ(before, openDescriptors());
    platform::reapAbandonedProcesses();
}

TEST_F(ChildProcessTest, ProgramThatSomebodyElseCollectedHasEnded) {
    platform::ChildProcess process("vellum");
    siginfo_t info = {};
    EXPECT_EQ(0, waitid(P_ALL, 0, &info, WEXITED));
    EXPECT_FALSE(process.waitTimedOut(longWait));
    std::uint32_t exitCode = 77;
    EXPECT_TRUE(process.queryExitCode(exitCode));
    EXPECT_EQ(0U, exitCode);
}

TEST_F(ChildProcessTest, HostThatIgnoresItsChildrenSeesTheEnd) {
    const auto previousHandler = std::signal(SIGCHLD, SIG_IGN);
    {
        platform::ChildProcess process("vellum");
        EXPECT_FALSE(process.waitTimedOut(longWait));
        std::uint32_t exitCode = 77;
        EXPECT_TRUE(process.queryExitCode(exitCode));
        EXPECT_EQ(0U, exitCode);
    }
    std::signal(SIGCHLD, previousHandler);
    EXPECT_FALSE(hasChildren());
}

TEST_F(ChildProcessTest, WaitThatASignalCutsShortIsLikeOneThatTimedOut) {
    platform::ChildProcess process("vellum");
    {
        const FailingCall interrupted(Call::WaitInterrupted);
        EXPECT_TRUE(process.waitTimedOut(longWait));
        EXPECT_TRUE(interrupted.reached());
    }
    EXPECT_FALSE(process.waitTimedOut(longWait));
}

TEST_F(ChildProcessTest, WithoutAProcessDescriptorTheNumberServes) {
    {
        control.obey({{"exit", "7"}});
        const FailingCall refused(Call::OpenProcessDescriptor);
        platform::ChildProcess process("vellum");
        EXPECT_TRUE(refused.reached());
        EXPECT_FALSE(process.waitTimedOut(longWait));
        std::uint32_t exitCode = 0;
        EXPECT_TRUE(process.queryExitCode(exitCode));
        EXPECT_EQ(7U, exitCode);
    }
    EXPECT_FALSE(hasChildren());
}

TEST_F(ChildProcessTest, WithoutAProcessDescriptorARunningProgramIsReapedLater) {
    control.obey({{"await", folder.file("go")}});
    {
        const FailingCall refused(Call::OpenProcessDescriptor);
        platform::ChildProcess process("vellum");
        EXPECT_TRUE(process.waitTimedOut(1));
    }
    writeFile(folder.file("go"), "");
    siginfo_t info = {};
    EXPECT_EQ(0, waitid(P_ALL, 0, &info, WEXITED | WNOWAIT));
    platform::reapAbandonedProcesses();
    EXPECT_FALSE(hasChildren());
}

}  // namespace
}  // namespace rgen_test
