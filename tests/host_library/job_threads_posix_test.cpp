// What the threads of jobs inherit: the signals that they block, and the current folder.
//
// SPDX-License-Identifier: MIT
#include <pthread.h>
#include <signal.h>

#include <filesystem>

#include "host_library/host_library_fixture.h"

namespace rgen_test {
namespace {

// Changes the current folder for its scope.
class CurrentFolder {
public:
    explicit CurrentFolder(const std::string& path) { std::filesystem::current_path(path); }
    ~CurrentFolder() { std::filesystem::current_path(previous_); }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

private:
    const std::filesystem::path previous_ = std::filesystem::current_path();
};

// A translator that notes which signals its thread blocks.
const char* RGEN_CALL noteSignals(const char* text, void* blocked) {
    pthread_sigmask(SIG_BLOCK, nullptr, static_cast<sigset_t*>(blocked));
    return text;
}

class JobThreads : public HostLibraryTest {
protected:
    JobThreads() { putTemplate(textStylesheet("QT_TRANSLATE_NOOP(\"QObject\", \"a\")")); }

    RgenStatus runJob() {
        RgenhJob* const job = rgenh_startReport(host, request.get(), nullptr, nullptr, &error);
        Result result;
        const RgenStatus status = rgenh_takeJobResult(job, result.get(), &error);
        rgenh_freeJob(job);
        return status;
    }

    const HostRequest request{{rgenh_textValue("v", "x")}};
};

TEST_F(JobThreads, BlockTheSignalsThatOtherProcessesSendAndNoOthers) {
    sigset_t blocked;
    sigemptyset(&blocked);
    ASSERT_EQ(RGEN_OK, rgenh_setTranslateFunction(host, noteSignals, &blocked, &error));
    ASSERT_EQ(RGEN_OK, runJob()) << error.message;
    for (const int number :
         {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGALRM, SIGCHLD, SIGTSTP, SIGWINCH, SIGIO, SIGUSR1}) {
        EXPECT_EQ(1, sigismember(&blocked, number)) << number;
    }
    for (const int number :
         {SIGUSR2, SIGPWR, SIGURG, SIGXCPU, SIGPROF, SIGSEGV, SIGPIPE, SIGRTMIN, SIGRTMAX}) {
        EXPECT_EQ(0, sigismember(&blocked, number)) << number;
    }
    sigset_t own;
    pthread_sigmask(SIG_BLOCK, nullptr, &own);
    EXPECT_EQ(0, sigismember(&own, SIGTERM)) << "the host's thread blocks what it blocked";
}

TEST_F(JobThreads, ReadRelativePathsAgainstTheFolderOfTheirTime) {
    const TempFolder elsewhere;
    {
        const CurrentFolder inside(folder.path());
        ASSERT_EQ(RGEN_OK, rgenh_setDataDirPath(host, ".", &error));
        EXPECT_EQ(RGEN_OK, runJob()) << error.message;
    }
    const CurrentFolder outside(elsewhere.path());
    EXPECT_EQ(RGEN_E_TEMPLATE_NOT_FOUND, runJob()) << error.message;
}

}  // namespace
}  // namespace rgen_test
