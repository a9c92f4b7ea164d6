// A callback that calls its own generator gets an error at once.
//
// SPDX-License-Identifier: MIT
#include <atomic>
#include <functional>
#include <thread>

#include "host_library/host_library_fixture.h"

namespace rgen_test {
namespace {

constexpr const char* markedTemplate = "QT_TRANSLATE_NOOP(\"QObject\", \"a\")";

class ReenteredCalls : public HostLibraryTest {
protected:
    ReenteredCalls() { putTemplate(textStylesheet(markedTemplate)); }

    // Runs an action inside the translate callback of a report of `host`.
    void inCallback(std::function<void()> action) {
        action_ = std::move(action);
        ASSERT_EQ(RGEN_OK, rgenh_setTranslateFunction(host, run, this, &error));
        EXPECT_EQ("a", bytesOf({rgenh_textValue("v", "x")}));
        EXPECT_EQ(1, runs_);
    }

    void expectReentered(RgenStatus status) {
        EXPECT_EQ(statusHex(RGEN_E_UNKNOWN), statusHex(status));
        EXPECT_EQ(RGENH_ERROR_REENTERED, inner.kind);
        EXPECT_STRNE("", inner.message);
    }

    RgenhError inner = {};

private:
    static const char* RGEN_CALL run(const char* text, void* context) {
        auto* const self = static_cast<ReenteredCalls*>(context);
        self->inner.size = sizeof self->inner;
        ++self->runs_;
        self->action_();
        return text;
    }

    std::function<void()> action_;
    int runs_ = 0;
};

TEST_F(ReenteredCalls, ThatNeedTheLockAreRefused) {
    const HostRequest request({rgenh_textValue("v", "x")});
    inCallback([&] {
        Result result;
        RgenCAnsiStringPairSet pairs = {};
        VariantSet values;
        expectReentered(rgenh_setDataDirPath(host, folder.path().c_str(), &inner));
        expectReentered(rgenh_setTranslateFunction(host, nullptr, nullptr, &inner));
        expectReentered(rgenh_setTranslator(host, nullptr, nullptr, RGENH_PLAIN, &inner));
        expectReentered(rgenh_cancel(host, nullptr, &inner));
        expectReentered(rgenh_generateReport(host, request.input(), result.get(), &inner));
        expectReentered(rgenh_getPersistentData(host, &guid, &pairs, &inner));
        expectReentered(rgenh_getPersistentTexts(host, &guid, &pairs, &inner));
        expectReentered(rgenh_setPersistentDataFromAnsiStringPairSet(host, &guid, &pairs, &inner));
        expectReentered(rgenh_setPersistentDataFromCVariantSet(host, &guid, values.get(), &inner));
        expectReentered(rgenh_setPersistentValues(host, &guid, nullptr, 0, &inner));
        expectReentered(rgenh_freeReportGenerator(host, &inner));
        EXPECT_EQ(nullptr, rgenh_startReport(host, request.get(), nullptr, nullptr, &inner));
        expectReentered(inner.status);
    });
}

TEST_F(ReenteredCalls, ThatNeedNoLockWork) {
    inCallback([&] {
        const std::string path = folder.file("dump.xml");
        EXPECT_EQ(RGEN_OK, rgenh_dumpRawInputDataToFile(host, input.get(), path.c_str(), &inner));
        RgenCVariantSet values = {};
        EXPECT_EQ(0, rgenh_getSimulatedRawDataFromFile(host, path.c_str(), &values, &inner));
        EXPECT_STREQ("RGEN_OK", rgenh_getStatusName(RGEN_OK));
    });
}

TEST_F(ReenteredCalls, OnAJobThatHasEndedWork) {
    const HostRequest request({rgenh_textValue("v", "x")});
    RgenhJob* const job = rgenh_startReport(host, request.get(), nullptr, nullptr, &error);
    ASSERT_EQ(1, rgenh_waitForJob(job, -1, &error));
    Result result;
    inCallback([&] {
        EXPECT_EQ(1, rgenh_waitForJob(job, -1, &inner));
        EXPECT_EQ(RGEN_OK, rgenh_takeJobResult(job, result.get(), &inner));
    });
    EXPECT_EQ("a", result.bytes());
    rgenh_freeJob(job);
}

TEST_F(ReenteredCalls, ForAnotherGeneratorWork) {
    RgenReportGenerator* other = rgenh_newReportGenerator(&error);
    ASSERT_EQ(RGEN_OK, rgenh_setDataDirPath(other, folder.path().c_str(), &error));
    const HostRequest request({rgenh_textValue("v", "x")});
    inCallback([&] {
        Result result;
        EXPECT_EQ(RGEN_OK, rgenh_generateReport(other, request.input(), result.get(), &inner));
        EXPECT_EQ("a", result.bytes());
    });
    rgenh_freeReportGenerator(other, nullptr);
}

TEST_F(ReenteredCalls, OfAnotherThreadWaitForTheCallback) {
    RgenStatus status = RGEN_E_UNKNOWN;
    std::thread thread;
    inCallback(
        [&] { thread = std::thread([&] { status = rgenh_cancel(host, nullptr, &inner); }); });
    thread.join();
    EXPECT_EQ(RGEN_OK, status) << inner.message;
}

TEST_F(ReenteredCalls, InTheTranslatorOfAJobAreRefused) {
    const HostRequest request({rgenh_textValue("v", "x")});
    RgenhJob* job = nullptr;
    std::atomic<bool> isStarted{false};
    struct Context {
        RgenReportGenerator* generator;
        RgenhJob** job;
        std::atomic<bool>* isStarted;
        RgenStatus cancel = 0;
        std::int32_t wait = 0;
        RgenStatus take = 0;
        RgenhErrorKind kind = RGENH_ERROR_NONE;
    } context = {host, &job, &isStarted};
    const auto translate = [](const char* text, void* pointer) RGEN_CALL -> const char* {
        auto& inside = *static_cast<Context*>(pointer);
        while (!*inside.isStarted)
            std::this_thread::yield();
        RgenhError record = {};
        record.size = sizeof record;
        inside.cancel = rgenh_cancel(inside.generator, nullptr, &record);
        inside.wait = rgenh_waitForJob(*inside.job, -1, &record);
        inside.take = rgenh_takeJobResult(*inside.job, nullptr, &record);
        inside.kind = static_cast<RgenhErrorKind>(record.kind);
        return text;
    };
    ASSERT_EQ(RGEN_OK, rgenh_setTranslateFunction(host, translate, &context, &error));
    job = rgenh_startReport(host, request.get(), nullptr, nullptr, &error);
    isStarted = true;
    Result result;
    EXPECT_EQ(RGEN_OK, rgenh_takeJobResult(job, result.get(), &error)) << error.message;
    EXPECT_EQ(RGEN_E_UNKNOWN, context.cancel);
    EXPECT_EQ(RGEN_E_UNKNOWN, context.wait);
    EXPECT_EQ(RGEN_E_UNKNOWN, context.take);
    EXPECT_EQ(RGENH_ERROR_REENTERED, context.kind);
    rgenh_freeJob(job);
}

}  // namespace
}  // namespace rgen_test
