// The Linux half of the platform: the command line, the child's surroundings, the reaping of
// abandoned processes, writes that are cut short.
//
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "support/converter_control.h"
#include "support/fault_injection.h"
#include "support/temp_folder.h"

namespace rgen_test {
namespace {

namespace platform = rgen::platform;

using Texts = std::vector<std::string>;

// A wait that only a program that never ends exhausts.
constexpr std::uint32_t longWait = 60000;

int asDescriptor(platform::FileHandle file) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(file));
}

std::size_t openDescriptors() {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        static_cast<void>(entry);
        ++count;
    }
    return count;
}

// True when this process has a child, ended or not.
bool hasChildren() {
    siginfo_t info = {};
    return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

// Waits for the programs that earlier cases left running and has them collected.
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
    // The C library ignores two signals of its own behind the 31 standard ones.
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

class WriteToFileTest : public ::testing::Test {
protected:
    WriteToFileTest() { EXPECT_TRUE(platform::createDeleteOnCloseFile(folder.file("out"), file)); }
    ~WriteToFileTest() override { platform::closeFile(file); }

    std::string content() const {
        char buffer[64] = {};
        const ssize_t size = pread(asDescriptor(file), buffer, sizeof buffer, 0);
        return {buffer, static_cast<std::size_t>(size < 0 ? 0 : size)};
    }

    const TempFolder folder;
    platform::FileHandle file = nullptr;
    std::size_t written = 99;
};

TEST_F(WriteToFileTest, ShortWritesGoOnWithTheRest) {
    const FailingCall first(Call::WriteFileShort, 1);
    const FailingCall second(Call::WriteFileShort, 2);
    EXPECT_TRUE(platform::writeToFile(file, "abcdefgh", 8, written));
    EXPECT_EQ(8U, written);
    EXPECT_EQ("abcdefgh", content());
    EXPECT_TRUE(second.reached());
}

TEST_F(WriteToFileTest, InterruptedWritesAreRepeated) {
    const FailingCall interrupted(Call::WriteFileInterrupted);
    EXPECT_TRUE(platform::writeToFile(file, "abcd", 4, written));
    EXPECT_TRUE(interrupted.reached());
    EXPECT_EQ(4U, written);
    EXPECT_EQ("abcd", content());
}

TEST_F(WriteToFileTest, FailureBehindAShortWriteIsAShortCount) {
    const FailingCall failure(Call::WriteFile);
    const FailingCall first(Call::WriteFileShort);
    EXPECT_TRUE(platform::writeToFile(file, "abcd", 4, written));
    EXPECT_EQ(2U, written);
    EXPECT_EQ("ab", content());
}

TEST(DeleteOnCloseDescriptor, NameIsGoneAtOnceAndRightsAreTheOwners) {
    const TempFolder folder;
    platform::FileHandle file = nullptr;
    ASSERT_TRUE(platform::createDeleteOnCloseFile(folder.file("out"), file));
    EXPECT_TRUE(namesIn(folder.path()).empty());
    struct stat information = {};
    EXPECT_EQ(0, fstat(asDescriptor(file), &information));
    EXPECT_EQ(0600U, information.st_mode & 0777U);
    EXPECT_EQ(O_RDWR, fcntl(asDescriptor(file), F_GETFL) & O_ACCMODE);
    EXPECT_EQ(FD_CLOEXEC, fcntl(asDescriptor(file), F_GETFD));
    platform::closeFile(file);
}

TEST(DeleteOnCloseDescriptor, NameThatCannotBeDeletedIsAFailure) {
    const TempFolder folder;
    const std::size_t before = openDescriptors();
    platform::FileHandle file = nullptr;
    const FailingCall failure(Call::DeleteName);
    EXPECT_FALSE(platform::createDeleteOnCloseFile(folder.file("out"), file));
    EXPECT_TRUE(failure.reached());
    EXPECT_EQ(before, openDescriptors());
}

TEST(DeleteOnCloseDescriptor, FileThatTheSystemDoesNotDescribeIsAFailure) {
    const TempFolder folder;
    const std::size_t before = openDescriptors();
    platform::FileHandle file = nullptr;
    const FailingCall failure(Call::DescribeFile);
    EXPECT_FALSE(platform::createDeleteOnCloseFile(folder.file("out"), file));
    EXPECT_TRUE(failure.reached());
    EXPECT_EQ(before, openDescriptors());
}

TEST(DeleteOnCloseDescriptor, FileWithoutAKnownNumberOfNamesKeepsItsRights) {
    const TempFolder folder;
    writeFile(folder.file("out"), "previous");
    ASSERT_EQ(0, chmod(folder.file("out").c_str(), 0640));
    platform::FileHandle file = nullptr;
    {
        const FailingCall failure(Call::DescribeFile, 2);
        ASSERT_TRUE(platform::createDeleteOnCloseFile(folder.file("out"), file));
        EXPECT_TRUE(failure.reached());
    }
    struct stat information = {};
    EXPECT_EQ(0, fstat(asDescriptor(file), &information));
    EXPECT_EQ(0640U, information.st_mode & 0777U);
    platform::closeFile(file);
}

TEST(DeleteOnCloseDescriptor, DevicesKeepTheirNames) {
    platform::FileHandle file = nullptr;
    ASSERT_TRUE(platform::createDeleteOnCloseFile("/dev/null", file));
    EXPECT_TRUE(exists("/dev/null"));
    platform::closeFile(file);
}

TEST(DeleteOnCloseDescriptor, WaitsForNoReaderOfAPipeAndForEveryDisk) {
    const TempFolder folder;
    ASSERT_EQ(0, mkfifo(folder.file("pipe").c_str(), S_IRUSR | S_IWUSR));
    platform::FileHandle file = nullptr;
    ASSERT_TRUE(platform::createDeleteOnCloseFile(folder.file("pipe"), file));
    EXPECT_NE(0, fcntl(asDescriptor(file), F_GETFL) & O_NONBLOCK);
    platform::closeFile(file);
    ASSERT_TRUE(platform::createDeleteOnCloseFile(folder.file("file"), file));
    EXPECT_EQ(0, fcntl(asDescriptor(file), F_GETFL) & O_NONBLOCK);
    platform::closeFile(file);
}

TEST(NamesSpecialFile, PipesSocketsAndDevicesAlsoThroughLinks) {
    const TempFolder folder;
    ASSERT_EQ(0, mkfifo(folder.file("pipe").c_str(), S_IRUSR | S_IWUSR));
    ASSERT_EQ(0, symlink("/dev/null", folder.file("link").c_str()));
    ASSERT_EQ(0, symlink("nowhere", folder.file("loose").c_str()));
    EXPECT_TRUE(platform::namesSpecialFile(folder.file("pipe")));
    EXPECT_TRUE(platform::namesSpecialFile("/dev/null"));
    EXPECT_TRUE(platform::namesSpecialFile(folder.file("link")));
    EXPECT_FALSE(platform::namesSpecialFile(folder.file("loose")));
}

TEST(DeleteOnCloseDescriptor, InvalidUtf8Raises) {
    const TempFolder folder;
    platform::FileHandle file = nullptr;
    EXPECT_THROW(platform::createDeleteOnCloseFile(folder.file("a\xC3"), file), std::range_error);
    EXPECT_TRUE(namesIn(folder.path()).empty());
}

TEST(ToWidePath, KeepsTheBytes) {
    EXPECT_EQ("/", std::string(1, platform::pathSeparator));
    EXPECT_EQ("a\\b/\xD0\xBE", platform::toWidePath("a\\b/\xD0\xBE"));
}

}  // namespace
}  // namespace rgen_test
