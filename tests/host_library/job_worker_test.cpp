// The threads on which jobs run: who uses them again, and when they end.
//
// SPDX-License-Identifier: MIT
#include <chrono>
#include <functional>
#include <future>
#include <set>
#include <thread>

#include "host_library/host_library_fixture.h"
#include "support/host_state.h"
#include "support/process_figures.h"

namespace rgen_test {
namespace {

using ThreadIds = std::vector<std::thread::id>;

// A translator that notes its thread.
const char* RGEN_CALL noteThread(const char* text, void* threads) {
    static_cast<ThreadIds*>(threads)->push_back(std::this_thread::get_id());
    return text;
}

// The number of threads once it is at most `limit` or a while has passed: the system still counts a
// thread for a moment after it has been joined.
long settledThreadCount(long limit) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (threadCount() > limit && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    return threadCount();
}

class JobWorkers : public HostLibraryTest {
protected:
    JobWorkers() {
        putTemplate(textStylesheet(valueOf("v") + "QT_TRANSLATE_NOOP(\"QObject\", \"a\")"));
        EXPECT_EQ(RGEN_OK, rgenh_setTranslateFunction(host, noteThread, &threads, &error));
    }

    std::vector<RgenhJob*> startWaitingPdfs(RgenReportGenerator* owner, std::size_t count) {
        converter.obey(waiting({}, {{"write", output, "%PDF-1.7 %%EOF"}}));
        const HostRequest pdf({rgenh_textValue("v", "x")}, "pdf", folder.file("report.pdf"));
        std::vector<RgenhJob*> jobs;
        for (std::size_t i = 0; i < count; ++i)
            jobs.push_back(start(owner, pdf));
        EXPECT_TRUE(waitForStarted(count));
        return jobs;
    }

    RgenReportGenerator* newGenerator() {
        RgenReportGenerator* const owner = rgenh_newReportGenerator(&error);
        EXPECT_EQ(RGEN_OK, rgenh_setDataDirPath(owner, folder.path().c_str(), &error));
        return owner;
    }

    ThreadIds threads;
    const HostRequest request{{rgenh_textValue("v", "x")}};
};

TEST_F(JobWorkers, RunJobsThatFollowOneAnother) {
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ("xa", finish(start(host, request)));
    EXPECT_EQ(1U, std::set<std::thread::id>(threads.begin(), threads.end()).size());
    EXPECT_NE(std::this_thread::get_id(), threads.front());
}

TEST_F(JobWorkers, RunJobsWithTheSettingsOfTheirStart) {
    EXPECT_EQ("xa", finish(start(host, request)));
    char prefix[] = "p";
    ASSERT_EQ(RGEN_OK, rgenh_setTranslateFunction(host, translateWithPrefix, prefix, &error));
    EXPECT_EQ("xpa", finish(start(host, request)));
    const TempFolder other;
    ASSERT_EQ(RGEN_OK, rgenh_setDataDirPath(host, other.path().c_str(), &error));
    EXPECT_NE("xpa", finish(start(host, request)));
    ASSERT_EQ(RGEN_OK, rgenh_setDataDirPath(host, folder.path().c_str(), &error));
    ASSERT_EQ(RGEN_OK, rgenh_setTranslateFunction(host, nullptr, nullptr, &error));
    EXPECT_EQ("xa", finish(start(host, request)));
}

// The cancel may arrive after the end of its job.
TEST_F(JobWorkers, OfACancelledJobRunNoOtherOne) {
    const int rounds = loopCount(200);
    for (int round = 0; round < rounds; ++round) {
        RgenhJob* const cancelled = start(host, request);
        EXPECT_EQ(RGEN_OK, rgenh_cancelJob(cancelled, &error));
        EXPECT_EQ("xa", finish(start(host, request)));
        rgenh_freeJob(cancelled);
        EXPECT_EQ("xa", finish(start(host, request)));
    }
}

TEST_F(JobWorkers, EndWithTheirGenerator) {
    const std::string before = hostState();
    RgenReportGenerator* const owner = newGenerator();
    EXPECT_EQ("xa", finish(start(owner, request)));
    EXPECT_EQ(RGEN_OK, rgenh_freeReportGenerator(owner, &error));
    EXPECT_EQ(before, settledHostState(before));
}

TEST_F(JobWorkers, EndWithTheirJobIfTheGeneratorIsFreed) {
    const std::string before = hostState();
    RgenReportGenerator* const owner = newGenerator();
    RgenhJob* const job = startWaitingPdfs(owner, 1).front();
    EXPECT_EQ(RGEN_OK, rgenh_freeReportGenerator(owner, &error));
    release();
    EXPECT_EQ("", finish(job));
    EXPECT_EQ(before, settledHostState(before));
}

TEST_F(JobWorkers, StayIdleUpToFour) {
    const long before = threadCount();
    RgenReportGenerator* const owner = newGenerator();
    const std::vector<RgenhJob*> jobs = startWaitingPdfs(owner, 6);
    release();
    // They write the same file, so that it may be damaged.
    for (RgenhJob* const job : jobs)
        finish(job);
    EXPECT_LE(settledThreadCount(before + 4), before + 4);
    rgenh_freeReportGenerator(owner, nullptr);
}

// The worker is not idle before the function has returned, so the second job has another one.
TEST_F(JobWorkers, AreNotUsedBeforeTheEndFunctionHasReturned) {
    struct Context {
        std::function<std::string()> makeReport;
        std::promise<std::string> second;
    } context = {[this] { return finish(start(host, request)); }, {}};
    const auto ended = [](RgenhJob* /*job*/, void* pointer) RGEN_CALL {
        auto& inside = *static_cast<Context*>(pointer);
        inside.second.set_value(inside.makeReport());
    };
    RgenhJob* const job = rgenh_startReport(host, request.get(), ended, &context, &error);
    ASSERT_NE(nullptr, job);
    EXPECT_EQ("xa", context.second.get_future().get());
    rgenh_freeJob(job);
}

TEST_F(JobWorkers, EndWhenTheEndFunctionFreesTheGenerator) {
    const std::string before = hostState();
    struct Context {
        RgenReportGenerator* generator;
        std::promise<RgenStatus> freed;
    } context = {newGenerator(), {}};
    const auto ended = [](RgenhJob* /*job*/, void* pointer) RGEN_CALL {
        auto& inside = *static_cast<Context*>(pointer);
        inside.freed.set_value(rgenh_freeReportGenerator(inside.generator, nullptr));
    };
    RgenhJob* const job =
        rgenh_startReport(context.generator, request.get(), ended, &context, &error);
    ASSERT_NE(nullptr, job);
    EXPECT_EQ(RGEN_OK, context.freed.get_future().get());
    EXPECT_EQ("xa", finish(job));
    EXPECT_EQ(before, settledHostState(before));
}

TEST_F(JobWorkers, OfACancelledJobEndWhenItsEndFunctionFreesIt) {
    const std::string before = hostState();
    converter.obey(waiting({}));
    RgenReportGenerator* const owner = newGenerator();
    const HostRequest pdf({rgenh_textValue("v", "x")}, "pdf", folder.file("report.pdf"));
    std::promise<void> freed;
    const auto ended = [](RgenhJob* job, void* promise) RGEN_CALL {
        rgenh_freeJob(job);
        static_cast<std::promise<void>*>(promise)->set_value();
    };
    RgenhJob* const job = rgenh_startReport(owner, pdf.get(), ended, &freed, &error);
    ASSERT_TRUE(waitForStarted());
    EXPECT_EQ(RGEN_OK, rgenh_cancelJob(job, &error));
    freed.get_future().get();
    rgenh_freeReportGenerator(owner, nullptr);
    release();
    EXPECT_EQ(before, settledHostState(before));
}

}  // namespace
}  // namespace rgen_test
