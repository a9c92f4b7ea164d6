// Reports on threads of the host library.
//
// SPDX-License-Identifier: MIT
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "host_library/host_library_fixture.h"
#include "support/host_state.h"
#include "support/process_figures.h"

namespace rgen_test {
namespace {

// Lets a case wait until a job's end function has been called.
class EndSignal {
public:
    static void RGEN_CALL ended(RgenhJob* job, void* context) {
        auto& self = *static_cast<EndSignal*>(context);
        if (self.freesJob) rgenh_freeJob(job);
        const std::lock_guard lock(self.mutex_);
        self.jobs_.push_back(job);
        self.changed_.notify_all();
    }

    std::vector<RgenhJob*> waitFor(std::size_t count) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return jobs_.size() >= count; });
        return jobs_;
    }

    bool freesJob = false;

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<RgenhJob*> jobs_;
};

class Jobs : public HostLibraryTest {
protected:
    Jobs() { putTemplate(textStylesheet(valueOf("v"))); }

    HostRequest pdfRequest(const std::string& name) {
        return HostRequest({rgenh_textValue("v", "x")}, "pdf", folder.file(name));
    }
};

TEST_F(Jobs, ReturnWhatTheCallReturns) {
    EXPECT_EQ("a & b", finish(start(host, HostRequest({rgenh_textValue("v", "a & b")}))));
    const HostRequest missing({rgenh_textValue("v", "x")}, "txt");
    RgenhJob* const job = start(host, missing);
    EXPECT_EQ(RGEN_E_TEMPLATE_NOT_FOUND, rgenh_takeJobResult(job, nullptr, &error));
    EXPECT_EQ(RGENH_ERROR_STATUS, error.kind);
    EXPECT_EQ(RGEN_E_TEMPLATE_NOT_FOUND, error.status);
    rgenh_freeJob(job);
}

TEST_F(Jobs, ReturnErrorsWithoutAStatus) {
    const HostRequest request({rgenh_textValue("v", "x")}, "html", folder.file("a\xFF"));
    RgenhJob* const job = start(host, request);
    EXPECT_EQ(RGEN_E_UNKNOWN, rgenh_takeJobResult(job, nullptr, &error));
    EXPECT_EQ(RGENH_ERROR_ENCODING, error.kind);
    EXPECT_STREQ("the output path is not valid UTF-8", error.message);
    rgenh_freeJob(job);
}

TEST_F(Jobs, GiveTheirResultToTheFirstThatTakesIt) {
    const HostRequest request({rgenh_textValue("v", "x")});
    RgenhJob* const job = start(host, request);
    Result first;
    Result second;
    EXPECT_EQ(RGEN_OK, rgenh_takeJobResult(job, nullptr, nullptr));
    EXPECT_EQ(RGEN_OK, rgenh_takeJobResult(job, first.get(), &error));
    EXPECT_EQ(RGEN_OK, rgenh_takeJobResult(job, second.get(), &error));
    EXPECT_EQ("x", first.bytes());
    EXPECT_EQ(std::uint64_t{RGEN_TYPE_EMPTY}, second.record().type);
    rgenh_freeJob(job);
}

TEST_F(Jobs, OutliveTheirRequestAndGenerator) {
    converter.obey(waiting({}, {{"write", output, "%PDF-1.7 %%EOF"}}));
    RgenReportGenerator* other = rgenh_newReportGenerator(&error);
    ASSERT_EQ(RGEN_OK, rgenh_setDataDirPath(other, folder.path().c_str(), &error));
    RgenhJob* job = nullptr;
    {
        const HostRequest request = pdfRequest("report.pdf");
        job = rgenh_startReport(other, request.get(), nullptr, nullptr, &error);
    }
    ASSERT_NE(nullptr, job) << error.message;
    ASSERT_TRUE(waitForStarted());
    EXPECT_EQ(RGEN_OK, rgenh_freeReportGenerator(other, &error));
    release();
    EXPECT_EQ("", finish(job));
    EXPECT_TRUE(exists(output));
}

TEST_F(Jobs, UseTheSettingsOfTheirStart) {
    putTemplate(textStylesheet("QT_TRANSLATE_NOOP(\"QObject\", \"a\")"));
    char prefix[] = "p";
    ASSERT_EQ(RGEN_OK, rgenh_setTranslateFunction(host, translateWithPrefix, prefix, &error));
    RgenhJob* const job = start(host, HostRequest({rgenh_textValue("v", "x")}));
    ASSERT_EQ(RGEN_OK, rgenh_setTranslateFunction(host, nullptr, nullptr, &error));
    EXPECT_EQ("pa", finish(job));
}

// The setting waits for the transformation, in whose callback the job starts on another thread.
TEST_F(Jobs, StartWhileASettingWaits) {
    putTemplate(textStylesheet("QT_TRANSLATE_NOOP(\"QObject\", \"a\")"));
    const HostRequest request({rgenh_textValue("v", "x")});
    struct Context {
        RgenReportGenerator* generator;
        const RgenhRequest* request;
        std::thread setting;
        RgenhJob* job = nullptr;
    } context = {host, request.get(), {}, nullptr};
    const auto translate = [](const char* text, void* pointer) RGEN_CALL -> const char* {
        auto& inside = *static_cast<Context*>(pointer);
        if (inside.job != nullptr) return text;
        inside.setting = std::thread([&inside] {
            EXPECT_EQ(RGEN_OK, rgenh_setTranslator(inside.generator, nullptr, nullptr, RGENH_PLAIN,
                                                   nullptr));
        });
        std::thread([&inside] {
            inside.job =
                rgenh_startReport(inside.generator, inside.request, nullptr, nullptr, nullptr);
        }).join();
        return text;
    };
    ASSERT_EQ(RGEN_OK, rgenh_setTranslateFunction(host, translate, &context, &error));
    EXPECT_EQ("a", bytesOf(request.get()));
    context.setting.join();
    ASSERT_NE(nullptr, context.job);
    EXPECT_EQ("a", finish(context.job));
}

TEST_F(Jobs, NeedADataDirectory) {
    RgenReportGenerator* fresh = rgenh_newReportGenerator(&error);
    const HostRequest request({rgenh_textValue("v", "x")});
    EXPECT_EQ(nullptr, rgenh_startReport(fresh, request.get(), nullptr, nullptr, &error));
    EXPECT_EQ(RGENH_ERROR_ARGUMENT, error.kind);
    rgenh_freeReportGenerator(fresh, nullptr);
}

TEST_F(Jobs, ReportADataDirectoryThatHasVanished) {
    const std::string parent = folder.file("vanishing");
    createFolder(parent);
    RgenReportGenerator* other = rgenh_newReportGenerator(&error);
    ASSERT_EQ(RGEN_OK, rgenh_setDataDirPath(other, parent.c_str(), &error));
    removeAll(parent);
    const HostRequest request({rgenh_textValue("v", "x")});
    RgenhJob* const job = rgenh_startReport(other, request.get(), nullptr, nullptr, &error);
    EXPECT_EQ(RGEN_E_DIR_NOT_FOUND, rgenh_takeJobResult(job, nullptr, &error));
    EXPECT_EQ(parent, error.path);
    rgenh_freeJob(job);
    rgenh_freeReportGenerator(other, nullptr);
}

TEST_F(Jobs, AreCancelledOneByOne) {
    // The first converter goes on after its job, and must not write the file of the second one.
    converter.obey(waiting({}));
    RgenhJob* const first = start(host, pdfRequest("first.pdf"));
    ASSERT_TRUE(waitForStarted());
    converter.obey(waiting({}, {{"write", folder.file("second.pdf"), "%PDF-1.7 %%EOF"}}));
    RgenhJob* const second = start(host, pdfRequest("second.pdf"));
    ASSERT_TRUE(waitForStarted(2));
    EXPECT_EQ(0, rgenh_waitForJob(first, 0, &error));
    EXPECT_EQ(RGEN_OK, rgenh_cancelJob(first, &error));
    EXPECT_EQ(RGEN_OK, rgenh_cancelJob(first, &error));
    EXPECT_EQ(1, rgenh_waitForJob(first, -1, &error));
    EXPECT_EQ(RGEN_CANCELED, rgenh_takeJobResult(first, nullptr, &error));
    EXPECT_EQ(RGEN_CANCELED, error.status);
    EXPECT_EQ(0, rgenh_waitForJob(second, 0, &error));
    release();
    EXPECT_EQ("", finish(second));
    rgenh_freeJob(first);
}

TEST_F(Jobs, AreNotCancelledWithTheReportsOfTheirGenerator) {
    converter.obey(waiting({}, {{"write", output, "%PDF-1.7 %%EOF"}}));
    RgenhJob* const job = start(host, pdfRequest("report.pdf"));
    ASSERT_TRUE(waitForStarted());
    EXPECT_EQ(RGEN_OK, rgenh_cancel(host, nullptr, &error));
    release();
    EXPECT_EQ("", finish(job));
}

// The cancel may come before the job has begun, while it transforms, or after its end.
TEST_F(Jobs, CancelledAtAnyMomentEndAsCancelledOrAsTheyAre) {
    const HostRequest request({rgenh_textValue("v", "x")});
    const int rounds = loopCount(200);
    for (int round = 0; round < rounds; ++round) {
        RgenhJob* const job = start(host, request);
        EXPECT_EQ(RGEN_OK, rgenh_cancelJob(job, &error));
        Result result;
        const RgenStatus status = rgenh_takeJobResult(job, result.get(), &error);
        EXPECT_TRUE(status == RGEN_CANCELED || (status == RGEN_OK && result.bytes() == "x"));
        rgenh_freeJob(job);
    }
}

TEST_F(Jobs, ThatEndedStayAsTheyAreWhenCancelled) {
    RgenhJob* const job = start(host, HostRequest({rgenh_textValue("v", "x")}));
    ASSERT_EQ(1, rgenh_waitForJob(job, -1, &error));
    EXPECT_EQ(RGEN_OK, rgenh_cancelJob(job, &error));
    EXPECT_EQ("x", finish(job));
}

TEST_F(Jobs, AreWaitedForWithALimit) {
    converter.obey(waiting({}));
    RgenhJob* const job = start(host, pdfRequest("report.pdf"));
    ASSERT_TRUE(waitForStarted());
    EXPECT_EQ(0, rgenh_waitForJob(job, 5, &error));
    EXPECT_EQ(RGENH_ERROR_NONE, error.kind);
    release();
    EXPECT_EQ(1, rgenh_waitForJob(job, 600000, &error));
    rgenh_freeJob(job);
}

TEST_F(Jobs, ThatRunAreCancelledWhenTheyAreFreed) {
    converter.obey(waiting({}));
    RgenhJob* const job = start(host, pdfRequest("report.pdf"));
    ASSERT_TRUE(waitForStarted());
    rgenh_freeJob(job);
    EXPECT_FALSE(exists(html));
}

TEST_F(Jobs, CallTheirEndFunctionOnce) {
    EndSignal signal;
    const HostRequest request({rgenh_textValue("v", "x")});
    RgenhJob* const job = rgenh_startReport(host, request.get(), EndSignal::ended, &signal, &error);
    ASSERT_NE(nullptr, job);
    EXPECT_EQ(std::vector<RgenhJob*>{job}, signal.waitFor(1));
    EXPECT_EQ(1, rgenh_waitForJob(job, 0, &error));
    EXPECT_EQ("x", finish(job));
    EXPECT_EQ(1U, signal.waitFor(1).size());
}

TEST_F(Jobs, MayBeFreedByTheirEndFunction) {
    EndSignal signal;
    signal.freesJob = true;
    const HostRequest request({rgenh_textValue("v", "x")});
    const std::size_t count = 20;
    for (std::size_t i = 0; i < count; ++i)
        ASSERT_NE(nullptr,
                  rgenh_startReport(host, request.get(), EndSignal::ended, &signal, &error));
    signal.waitFor(count);
}

TEST_F(Jobs, CloseAResultThatNobodyTakes) {
    RgenhRequestParts parts = {};
    parts.size = sizeof parts;
    parts.templateGuid = guid;
    parts.format = "html";
    const std::string path = folder.file("open.html");
    parts.outputPath = path.c_str();
    parts.outputMode = RGEN_OUTPUT_DELETE_ON_CLOSE;
    const RgenhValue value = rgenh_textValue("v", "x");
    parts.values = &value;
    parts.valueCount = 1;
    RgenhRequest* request = rgenh_newRequest(&parts, &error);
    const auto run = [&] {
        RgenhJob* job = rgenh_startReport(host, request, nullptr, nullptr, &error);
        rgenh_waitForJob(job, -1, nullptr);
        rgenh_freeJob(job);
    };
    run();
    const long before = openHandles();
    for (int i = 0; i < 50; ++i)
        run();
    EXPECT_LE(openHandles(), before + handlesOfLocks);
    EXPECT_FALSE(exists(path));
    rgenh_freeRequest(request);
}

TEST_F(Jobs, HaveStackForDeepTemplates) {
    putTemplate(textStylesheet("<xsl:call-template name=\"deep\"><xsl:with-param name=\"n\" "
                               "select=\"2900\"/></xsl:call-template>")
                    .insert(textStylesheet("").find("<xsl:template"),
                            "<xsl:template name=\"deep\"><xsl:param name=\"n\"/>"
                            "<xsl:choose><xsl:when test=\"$n &gt; 1400\">"
                            "<xsl:call-template name=\"deep\"><xsl:with-param name=\"n\" "
                            "select=\"$n - 1400\"/></xsl:call-template></xsl:when>"
                            "<xsl:when test=\"$n &gt; 0\"><xsl:call-template name=\"deep\">"
                            "<xsl:with-param name=\"n\" select=\"$n - 1\"/></xsl:call-template>"
                            "</xsl:when><xsl:otherwise>deep</xsl:otherwise></xsl:choose>"
                            "</xsl:template>"));
    EXPECT_EQ("deep", finish(start(host, HostRequest({rgenh_textValue("v", "x")}))));
}

TEST_F(Jobs, LeaveTheProcessAsItWas) {
    const HostRequest request({rgenh_textValue("v", "x")});
    const auto round = [&] {
        for (int i = 0; i < 20; ++i)
            EXPECT_EQ("x", finish(start(host, request)));
    };
    round();
    const std::string before = hostState();
    const long handles = openHandles();
    for (int i = 0; i < loopCount(20); ++i)
        round();
    EXPECT_EQ(before, settledHostState(before));
    EXPECT_LE(openHandles(), handles + handlesOfLocks);
}

}  // namespace
}  // namespace rgen_test
