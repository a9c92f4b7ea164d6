// How the converter is started and waited for on Linux.
//
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <string>
#include <thread>
#include <vector>

#include "support/conversion_fixture.h"

namespace rgen_test {
namespace {

// Sets what a signal does for one scope.
class ScopedSignalAction {
public:
    ScopedSignalAction(int signalNumber, void (*handler)(int)) : number_(signalNumber) {
        struct sigaction action = {};
        action.sa_handler = handler;
        sigaction(number_, &action, &previous_);
    }
    ~ScopedSignalAction() { sigaction(number_, &previous_, nullptr); }
    ScopedSignalAction(const ScopedSignalAction&) = delete;
    ScopedSignalAction& operator=(const ScopedSignalAction&) = delete;

private:
    int number_;
    struct sigaction previous_ = {};
};

// True when this process has no child that has ended, or none at all.
bool hasNoZombie() {
    siginfo_t child = {};
    const int result = waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT);
    return result != 0 || child.si_pid == 0;
}

class ConverterProcess : public ConversionTest {
protected:
    std::vector<std::string> logged(const std::string& word) {
        return loggedFacts(folder.file("log"), word);
    }

    // The signals that the logged converter ignored. The C library's own ones are among them.
    unsigned long long ignoredSignals() {
        return std::stoull(logged("SigIgn:").at(0), nullptr, 16);
    }

    static unsigned long long bitOf(int signalNumber) { return 1ULL << (signalNumber - 1); }

    void generateLogged() {
        converter.obey({{"log", folder.file("log")}});
        EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    }

    // Cancels a conversion and waits until its converter has ended, without reaping it.
    void abandonConverter() {
        converter.obey(waiting({}));
        RunningGeneration conversion(generator, input);
        ASSERT_TRUE(waitForStarted());
        rgen_cancel(generator.get(), nullptr);
        EXPECT_EQ(statusHex(RGEN_CANCELED), conversion.status());
        release();
        const auto process = static_cast<id_t>(std::stol(namesIn(folder.file("started")).at(0)));
        siginfo_t child = {};
        EXPECT_EQ(0, waitid(P_PID, process, &child, WEXITED | WNOWAIT));
    }
};

TEST_F(ConverterProcess, GetsItsArgumentsFromTheCommandLine) {
    input.converterBaseArg("http://host/a b?c=d&e=$HOME;'f'\\");
    generateLogged();
    EXPECT_EQ(
        (std::vector<std::string>{"vellum", "-i", html, "-b", "http://host/a b?c=d&e=$HOME;'f'\\",
                                  "-t", "html", "-o", output}),
        logged("argument"));
}

TEST_F(ConverterProcess, GetsAnEmptyBaseAsAnEmptyArgument) {
    generateLogged();
    EXPECT_EQ(
        (std::vector<std::string>{"vellum", "-i", html, "-b", "", "-t", "html", "-o", output}),
        logged("argument"));
}

TEST_F(ConverterProcess, TakesTheCommandLineApartAtBlanksOutsideOfQuotes) {
    input.converterBaseArg("a\" -x \"b c");
    generateLogged();
    EXPECT_EQ((std::vector<std::string>{"vellum", "-i", html, "-b", "a", "-x", "b c", "-t", "html",
                                        "-o", output}),
              logged("argument"));
}

TEST_F(ConverterProcess, InheritsNoDescriptorAndHasTheNullDeviceAsItsStreams) {
    const int low = open("/dev/zero", O_RDONLY);
    ASSERT_GE(low, 0);
    ASSERT_EQ(700, dup2(low, 700));
    generateLogged();
    EXPECT_EQ((std::vector<std::string>{"0\t/dev/null", "1\t/dev/null", "2\t/dev/null"}),
              logged("descriptor"));
    close(low);
    close(700);
}

TEST_F(ConverterProcess, StartsWithDefaultSignalsInASessionOfItsOwn) {
    const ScopedSignalAction ignored(SIGTERM, SIG_IGN);
    const ScopedSignalAction pipeIgnored(SIGPIPE, SIG_IGN);
    sigset_t blocked;
    sigset_t previous;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &blocked, &previous);
    generateLogged();
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    EXPECT_EQ(std::vector<std::string>{"0000000000000000"}, logged("SigBlk:"));
    EXPECT_EQ(0U, ignoredSignals() & (bitOf(SIGTERM) | bitOf(SIGPIPE)));
    EXPECT_EQ(std::vector<std::string>{"own"}, logged("session"));
}

TEST_F(ConverterProcess, AProgramFileThatIsNoProgramCannotBeRun) {
    const std::string program = folder.file("programs/vellum");
    writeFile(program, "no program");
    const ScopedEnvironmentText path("PATH", folder.file("programs"));
    for (const mode_t mode : {mode_t{0644}, mode_t{0000}}) {
        SCOPED_TRACE(mode);
        ASSERT_EQ(0, chmod(program.c_str(), mode));
        EXPECT_EQ(statusHex(RGEN_E_RUN_EXTERNAL), generate(input));
        EXPECT_FALSE(exists(output));
        EXPECT_FALSE(exists(html));
    }
    EXPECT_TRUE(hasNoZombie());
}

TEST_F(ConverterProcess, AFolderOfItsNameCannotBeRun) {
    createFolder(folder.file("programs/vellum"));
    const ScopedEnvironmentText path("PATH", folder.file("programs"));
    EXPECT_EQ(statusHex(RGEN_E_RUN_EXTERNAL), generate(input));
    EXPECT_FALSE(exists(html));
}

TEST_F(ConverterProcess, IsReapedWhenItHasEnded) {
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_TRUE(hasNoZombie());
    converter.obey({{"crash"}});
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_TRUE(hasNoZombie());
}

TEST_F(ConverterProcess, WhenAbandonedIsReapedByTheNextConversion) {
    abandonConverter();
    converter.obey({});
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_TRUE(hasNoZombie());
}

TEST_F(ConverterProcess, WhenAbandonedIsReapedByTheNextReportOfAnyKind) {
    abandonConverter();
    putTemplate(textStylesheet("done"), "html");
    EXPECT_EQ(reportOf("done"), reportOfValue("1"));
    EXPECT_TRUE(hasNoZombie());
}

TEST_F(ConverterProcess, WhenAbandonedIsReapedByTheEndOfAnyGenerator) {
    abandonConverter();
    { const Generator other; }
    EXPECT_TRUE(hasNoZombie());
}

TEST_F(ConverterProcess, OtherChildrenOfTheHostAreLeftToIt) {
    const pid_t child = fork();
    if (child == 0) _exit(7);
    ASSERT_GT(child, 0);
    siginfo_t ended = {};
    ASSERT_EQ(0, waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT));
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    int status = 0;
    EXPECT_EQ(child, waitpid(child, &status, 0));
    EXPECT_EQ(7, WEXITSTATUS(status));
}

TEST_F(ConverterProcess, EndsWellInAHostThatIgnoresTheEndOfChildren) {
    const ScopedSignalAction ignored(SIGCHLD, SIG_IGN);
    converter.obey({{"log", folder.file("log")}, {"copy", html, output}, {"exit", "1"}});
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ(bytes, readFile(output));
    EXPECT_FALSE(exists(html));
    EXPECT_EQ(0U, ignoredSignals() & bitOf(SIGCHLD));
}

TEST_F(ConverterProcess, EndsWellInAHostThatReapsEveryChild) {
    std::atomic<bool> stop{false};
    std::thread reaper([&stop] {
        while (!stop)
            waitpid(-1, nullptr, WNOHANG);
    });
    for (int repetition = 0; repetition < 5; ++repetition) {
        converter.obey({{"copy", html, output}});
        EXPECT_EQ(statusHex(RGEN_OK), generate(input));
        EXPECT_EQ(bytes, readFile(output));
    }
    stop = true;
    reaper.join();
}

TEST_F(ConverterProcess, IsWaitedForAlthoughSignalsArrive) {
    const ScopedSignalAction caught(SIGUSR1, [](int) {});
    converter.obey(waiting({}, {{"write", output, "converted"}}));
    std::string status;
    std::thread generating([&] { status = generate(input); });
    const bool started = waitForStarted();
    for (int repetition = 0; started && repetition < 100; ++repetition) {
        pthread_kill(generating.native_handle(), SIGUSR1);
    }
    release();
    generating.join();
    EXPECT_EQ(statusHex(RGEN_OK), status);
    EXPECT_EQ("converted", readFile(output));
}

}  // namespace
}  // namespace rgen_test
