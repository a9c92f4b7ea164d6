// Converters that misbehave, and hosts in unusual states, on Linux.
//
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/conversion_fixture.h"
#include "support/process_figures.h"
#include "support/test_platform.h"
#include "support/working_folder.h"

namespace rgen_test {
namespace {

const std::vector<std::string> nullDeviceThrice = {"0\t/dev/null", "1\t/dev/null", "2\t/dev/null"};

// Closes the standard streams for one scope.
class WithoutStandardStreams {
public:
    WithoutStandardStreams() {
        for (int stream = 0; stream < 3; ++stream) {
            kept_[static_cast<std::size_t>(stream)] = fcntl(stream, F_DUPFD_CLOEXEC, 100);
            close(stream);
        }
    }
    ~WithoutStandardStreams() {
        for (int stream = 0; stream < 3; ++stream) {
            dup2(kept_[static_cast<std::size_t>(stream)], stream);
            close(kept_[static_cast<std::size_t>(stream)]);
        }
    }
    WithoutStandardStreams(const WithoutStandardStreams&) = delete;
    WithoutStandardStreams& operator=(const WithoutStandardStreams&) = delete;

private:
    std::array<int, 3> kept_{};
};

class ConverterFault : public ConversionTest {
protected:
    std::vector<std::string> descriptorsOfConverter() {
        return loggedFacts(folder.file("log"), "descriptor");
    }

    // The process numbers of the converters that have said "started".
    std::vector<pid_t> startedProcesses() {
        std::vector<pid_t> numbers;
        for (const std::string& name : namesIn(folder.file("started")))
            numbers.push_back(static_cast<pid_t>(std::stol(name)));
        return numbers;
    }

    // Lets the waiting converters end and waits until all have, without collecting any.
    void endConverters() {
        release();
        for (const pid_t number : startedProcesses()) {
            siginfo_t child = {};
            EXPECT_EQ(0, waitid(P_PID, static_cast<id_t>(number), &child, WEXITED | WNOWAIT));
        }
    }

    // A folder with a file "vellum" of that content and mode.
    std::string folderWithProgram(const std::string& content, mode_t mode) {
        const std::string program = folder.file("programs/vellum");
        writeFile(program, content);
        EXPECT_EQ(0, chmod(program.c_str(), mode));
        return folder.file("programs");
    }

    void expectNotRun() {
        EXPECT_EQ(statusHex(RGEN_E_RUN_EXTERNAL), generate(input));
        EXPECT_FALSE(exists(output));
        EXPECT_FALSE(exists(html));
        EXPECT_LE(allChildren(), childrenBefore_);
    }

    // Converters that other cases have abandoned may end, and are collected, at any time.
    const long childrenBefore_ = allChildren();
};

TEST_F(ConverterFault, BeingKilledCountsAsSuccess) {
    converter.obey(waiting({{"write", output, "partial"}}));
    RunningGeneration conversion(generator, input);
    ASSERT_TRUE(waitForStarted());
    EXPECT_EQ(0, kill(startedProcesses().at(0), SIGKILL));
    EXPECT_EQ(statusHex(RGEN_OK), conversion.status());
    EXPECT_EQ("partial", readFile(output));
    EXPECT_FALSE(exists(html));
    EXPECT_LE(allChildren(), childrenBefore_);
}

TEST_F(ConverterFault, HangingAndIgnoringSignalsIsLeftBehindByACancel) {
    converter.obey(waiting({{"ignore-signals"}}, {{"mark", folder.file("survived")}}));
    RunningGeneration conversion(generator, input);
    ASSERT_TRUE(waitForStarted());
    const pid_t process = startedProcesses().at(0);
    for (const int number : {SIGTERM, SIGINT, SIGHUP, SIGPIPE})
        EXPECT_EQ(0, kill(process, number));
    rgen_cancel(generator.get(), nullptr);
    EXPECT_EQ(statusHex(RGEN_CANCELED), conversion.status());
    EXPECT_FALSE(exists(html));
    endConverters();
    EXPECT_TRUE(exists(folder.file("survived")));
}

TEST_F(ConverterFault, BeingStoppedIsNoEnd) {
    converter.obey(waiting({}, {{"write", output, "converted"}}));
    RunningGeneration conversion(generator, input);
    ASSERT_TRUE(waitForStarted());
    const pid_t process = startedProcesses().at(0);
    EXPECT_EQ(0, kill(process, SIGSTOP));
    siginfo_t stopped = {};
    EXPECT_EQ(0, waitid(P_PID, static_cast<id_t>(process), &stopped, WSTOPPED | WNOWAIT));
    release();
    EXPECT_FALSE(exists(output));
    EXPECT_EQ(0, kill(process, SIGCONT));
    EXPECT_EQ(statusHex(RGEN_OK), conversion.status());
    EXPECT_EQ("converted", readFile(output));
}

// The descendant has only the null device open, whatever the host has open, and no process waits
// for it.
TEST_F(ConverterFault, ADescendantThatLivesOnHoldsNothingOfTheHost) {
    const std::string child = converter.writeCommands(
        "child.control", {{"await", folder.file("released")}, {"log", folder.file("log")}});
    converter.obey({{"background", child}});
    const int held = open("/dev/zero", O_RDONLY);
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    close(held);
    release();
    ASSERT_TRUE(waitForFile(folder.file("log")));
    EXPECT_EQ(nullDeviceThrice, descriptorsOfConverter());
}

TEST_F(ConverterFault, AScriptWithoutAnInterpreterLineCannotBeRun) {
    const ScopedEnvironmentText path(
        "PATH", folderWithProgram("touch '" + folder.file("ran") + "'\n", 0755));
    expectNotRun();
    EXPECT_FALSE(exists(folder.file("ran")));
}

TEST_F(ConverterFault, AScriptWithAMissingInterpreterCannotBeRun) {
    const ScopedEnvironmentText path("PATH",
                                     folderWithProgram("#!" + folder.file("missing") + "\n", 0755));
    expectNotRun();
}

TEST_F(ConverterFault, AScriptWithAnInterpreterRuns) {
    const ScopedEnvironmentText path(
        "PATH", folderWithProgram("#!/bin/sh\necho converted >\"$8\"\n", 0755));
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ("converted\n", readFile(output));
}

TEST_F(ConverterFault, WithoutASearchPathTheSystemsFoldersAreSearched) {
    const std::string previous = environmentText("PATH");
    setEnvironmentText("PATH", "");
    EXPECT_EQ(nullptr, std::getenv("PATH"));
    const WorkingFolder current(folderWithProgram("#!/bin/sh\n", 0755));
    expectNotRun();
    setEnvironmentText("PATH", previous);
}

TEST_F(ConverterFault, AnEmptySearchPathMeansTheCurrentFolder) {
    const ScopedEnvironmentText restored("PATH", environmentText("PATH"));
    setenv("PATH", "", 1);
    const std::string programs = folderWithProgram("#!/bin/sh\necho found >\"$8\"\n", 0755);
    expectNotRun();
    const WorkingFolder current(programs);
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ("found\n", readFile(output));
}

TEST_F(ConverterFault, ARelativeSearchPathStartsAtTheCurrentFolder) {
    folderWithProgram("#!/bin/sh\necho found >\"$8\"\n", 0755);
    const ScopedEnvironmentText path("PATH", "programs");
    expectNotRun();
    const WorkingFolder current(folder.path());
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ("found\n", readFile(output));
}

TEST_F(ConverterFault, OfAHundredAbandonedConvertersNoneStaysAfterTheNextCall) {
    constexpr std::size_t count = 100;
    const long descriptors = openHandles();
    converter.obey(waiting({}));
    std::vector<std::unique_ptr<InputParams>> inputs;
    std::vector<std::unique_ptr<RunningGeneration>> conversions;
    for (std::size_t number = 0; number < count; ++number) {
        inputs.push_back(std::make_unique<InputParams>());
        request(*inputs.back(), std::to_string(number) + ".pdf");
        conversions.push_back(std::make_unique<RunningGeneration>(generator, *inputs.back()));
    }
    ASSERT_TRUE(waitForStarted(count));
    rgen_cancel(generator.get(), nullptr);
    for (const auto& conversion : conversions)
        EXPECT_EQ(statusHex(RGEN_CANCELED), conversion->status());
    endConverters();
    EXPECT_LE(static_cast<long>(count), endedChildren());
    putTemplate(textStylesheet("done"), "html");
    EXPECT_EQ(reportOf("done"), reportOfValue("1"));
    EXPECT_LE(allChildren(), childrenBefore_);
    EXPECT_GE(descriptors, openHandles());
}

TEST_F(ConverterFault, ManyInheritableDescriptorsOfTheHostDoNotReachTheConverter) {
    std::vector<int> held;
    held.reserve(500);
    for (int number = 0; number < 500; ++number)
        held.push_back(open("/dev/zero", O_RDONLY));
    converter.obey({{"log", folder.file("log")}});
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    for (const int descriptor : held)
        close(descriptor);
    EXPECT_EQ(nullDeviceThrice, descriptorsOfConverter());
}

TEST_F(ConverterFault, DescriptorsThatOtherThreadsOpenMeanwhileDoNotReachTheConverter) {
    std::atomic<bool> stop{false};
    std::vector<std::thread> opening;
    opening.reserve(3);
    for (int thread = 0; thread < 3; ++thread) {
        opening.emplace_back([&stop] {
            while (!stop) {
                std::array<int, 20> descriptors{};
                for (int& descriptor : descriptors)
                    descriptor = open("/dev/zero", O_RDONLY);
                for (const int descriptor : descriptors)
                    close(descriptor);
            }
        });
    }
    for (int conversion = 0; conversion < 20; ++conversion) {
        converter.obey({{"log", folder.file("log")}});
        EXPECT_EQ(statusHex(RGEN_OK), generate(input));
        EXPECT_EQ(nullDeviceThrice, descriptorsOfConverter());
        removeAll(folder.file("log"));
    }
    stop = true;
    for (std::thread& thread : opening)
        thread.join();
}

TEST_F(ConverterFault, AHostWithoutStandardStreamsConverts) {
    converter.obey({{"log", folder.file("log")}, {"copy", html, output}});
    const long descriptors = openHandles();
    std::string status;
    {
        const WithoutStandardStreams closed;
        status = generate(input);
    }
    EXPECT_EQ(statusHex(RGEN_OK), status);
    EXPECT_EQ(bytes, readFile(output));
    EXPECT_EQ(nullDeviceThrice, descriptorsOfConverter());
    EXPECT_GE(descriptors, openHandles());
}

// The descriptor of the file is 0 there, and no null handle of a failure.
TEST_F(ConverterFault, AHostWithoutStandardStreamsGetsAnOpenFile) {
    RgenStatus status = RGEN_E_UNKNOWN;
    bool holds = false;
    std::uint64_t type = RGEN_TYPE_EMPTY;
    input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, output);
    {
        const WithoutStandardStreams closed;
        Result result;
        status = rgen_generateReport(generator.get(), input.get(), result.get());
        type = result.record().type;
        holds = closesOnBytes(result.record().value.handleValue, bytes);
    }
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(status));
    EXPECT_EQ(std::uint64_t{RGEN_TYPE_HANDLE}, type);
    EXPECT_TRUE(holds);
}

TEST_F(ConverterFault, ABlockedEndOfChildrenDoesNotHinderTheWait) {
    sigset_t all;
    sigset_t previous;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &previous);
    converter.obey({{"copy", html, output}});
    const std::string status = generate(input);
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    EXPECT_EQ(statusHex(RGEN_OK), status);
    EXPECT_EQ(bytes, readFile(output));
    EXPECT_LE(allChildren(), childrenBefore_);
}

// A thread of the host that waits for any child may be the first to collect the converter.
TEST_F(ConverterFault, AHostThatWaitsForAnyChildMayCollectTheConverter) {
    for (int repetition = 0; repetition < 5; ++repetition) {
        converter.obey(waiting({}, {{"write", output, "converted"}}));
        RunningGeneration conversion(generator, input);
        const bool started = waitForStarted();
        std::thread reaper([] {
            // ECHILD when the library was faster.
            EXPECT_TRUE(waitpid(-1, nullptr, 0) > 0 || errno == ECHILD);
        });
        release();
        EXPECT_EQ(statusHex(RGEN_OK), conversion.status());
        reaper.join();
        ASSERT_TRUE(started);
        EXPECT_EQ("converted", readFile(output));
        removeAll(folder.file("released"));
        removeAll(folder.file("started"));
        createFolder(folder.file("started"));
    }
}

}  // namespace
}  // namespace rgen_test
