// Calls of the host library with each allocation failing in turn: an error of the kind memory, a
// documented status or the result, never an exception.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <future>
#include <string>

#include "robustness/faults/allocation_sweep.h"
#include "robustness/faults/guarded_scenarios.h"
#include "robustness/faults/sweep_report.h"
#include "support/allocation_faults.h"
#include "support/fault_injection.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

[[maybe_unused]] const bool isRequired = requirePoints("allocation_points", 500);

const char* RGEN_CALL translateTitle(const char* /*text*/, void* /*context*/) {
    return "a title &amp; more than fits into the inside of a string";
}

const char* RGEN_CALL translateWrongly(const char* /*text*/, void* /*context*/) {
    return "a translation with an &unknown; reference";
}

FaultScenario generation(std::uint64_t mode) {
    FaultScenario scenario = guardedReport("html", mode, checkedMemory);
    scenario.failures.push_back(RGEN_E_EMPTY_INPUT);
    return scenario;
}

// The parts of a request in mode 2.
RgenhRequestParts partsOf(const RgenhValue* values, std::uint64_t count) {
    RgenhRequestParts parts = {};
    parts.size = sizeof parts;
    parts.format = "html";
    parts.outputMode = RGEN_OUTPUT_BYTES;
    parts.values = values;
    parts.valueCount = count;
    return parts;
}

class GuardedAllocations : public testing::Test {
protected:
    GuardedAllocations() {
        files.putTemplate(
            textTemplate("<xsl:text>QT_TRANSLATE_NOOP(\"QObject\", \"Title\")</xsl:text>"
                         "<xsl:value-of select=\"//property\"/>"),
            "html");
    }

    // A report of a new generator with this translator, which returns markup.
    FaultScenario newGenerator(const std::string& name, RgenTranslateFunction translate) {
        FaultScenario scenario;
        scenario.name = name;
        scenario.prepare = [this](FaultSubject& subject) {
            subject.input.variants().addString("v", "value");
            prepared = subject.input.format("html").output(RGEN_OUTPUT_BYTES).get();
        };
        const std::string folder = files.file("main");
        scenario.call = [this, folder, translate](FaultSubject& subject) {
            RgenhError error = newError();
            RgenReportGenerator* const other = rgenh_newReportGenerator(&error);
            RgenStatus status = error.status;
            if (status >= 0) status = rgenh_setDataDirPath(other, folder.c_str(), &error);
            if (status >= 0)
                status = rgenh_setTranslator(other, translate, nullptr, RGENH_MARKUP, &error);
            if (status >= 0)
                status = rgenh_generateReport(other, prepared, &subject.result, &error);
            rgenh_freeReportGenerator(other, nullptr);
            const bool isRefused = error.kind == RGENH_ERROR_CALLBACK;
            return isRefused ? RGEN_E_UNKNOWN : checkedMemory(status, error);
        };
        scenario.failures = generation(RGEN_OUTPUT_BYTES).failures;
        return scenario;
    }

    FaultFolder files;
    const RgenCInputParams* prepared = nullptr;
};

TEST_F(GuardedAllocations, OfReportsInEveryMode) {
    FaultScenario bytes = generation(RGEN_OUTPUT_BYTES);
    bytes.take = takeBytes;
    sweepAllocations(files, bytes);
    FaultScenario open = generation(RGEN_OUTPUT_DELETE_ON_CLOSE);
    open.take = takeHandle;
    sweepAllocations(files, open);
    FaultScenario file = generation(RGEN_OUTPUT_FILE);
    file.take = takeFile("report");
    file.productsOfFailure = {"missing"};
    sweepAllocations(files, file);
}

TEST_F(GuardedAllocations, OfNewGeneratorsWithATranslator) {
    FaultScenario scenario = newGenerator("new generator with a translator", translateTitle);
    scenario.take = takeBytes;
    sweepAllocations(files, scenario);
}

// Without memory for the reason the report fails all the same.
TEST_F(GuardedAllocations, OfATranslationThatCannotBeUsed) {
    sweepAllocations(files, newGenerator("translation that cannot be used", translateWrongly));
}

TEST_F(GuardedAllocations, OfRequestsFromArrays) {
    FaultScenario scenario;
    scenario.name = "request from arrays";
    scenario.call = [](FaultSubject& /*subject*/) {
        const RgenhValue values[] = {rgenh_textValue("a name that is long enough", "a & b & c"),
                                     rgenh_integerValue("n", 1, RGEN_HINT_SIZE),
                                     rgenh_bytesValue("b", "bytes", 5)};
        RgenhRequestParts parts = partsOf(values, 3);
        parts.reportType = defaultGuidText;
        parts.pairs = values;
        parts.pairCount = 1;
        RgenhError error = newError();
        RgenhRequest* const request = rgenh_newRequest(&parts, &error);
        EXPECT_EQ(request == nullptr, error.status < 0);
        rgenh_freeRequest(request);
        return checkedMemory(error.status, error);
    };
    scenario.failures = {RGEN_E_UNKNOWN};
    sweepAllocations(files, scenario);
}

TEST_F(GuardedAllocations, OfPersistentValuesAndTexts) {
    sweepAllocations(files, guardedStoring(checkedMemory));
    sweepAllocations(files, guardedReading(checkedMemory));
}

// The job's own thread has its memory; the sweep would not count the blocks that it frees. Each
// generator is new, since a failed start may leave it a thread.
TEST_F(GuardedAllocations, OfStartingJobs) {
    RgenhError error = newError();
    const RgenhValue value = rgenh_textValue("v", "value");
    RgenhRequestParts parts = partsOf(&value, 1);
    parts.templateGuid = defaultGuid();
    RgenhRequest* const input = rgenh_newRequest(&parts, &error);
    bool isReached = true;
    for (std::size_t number = 1; isReached; ++number) {
        RgenReportGenerator* const host = rgenh_newReportGenerator(&error);
        ASSERT_EQ(RGEN_OK, rgenh_setDataDirPath(host, files.file("main").c_str(), &error));
        RgenhJob* job = nullptr;
        {
            const FailingAllocation failure(number);
            job = rgenh_startReport(host, input, nullptr, nullptr, &error);
            isReached = failure.count() >= number;
        }
        EXPECT_EQ(isReached, job == nullptr);
        EXPECT_EQ(isReached ? RGENH_ERROR_MEMORY : RGENH_ERROR_NONE, error.kind);
        RgenCVariant result = {};
        EXPECT_EQ(job == nullptr, rgenh_takeJobResult(job, &result, &error) < 0);
        rgen_freeRgenCVariant(&result);
        rgenh_freeJob(job);
        rgenh_freeReportGenerator(host, nullptr);
        countPoints("allocation_points", 1);
    }
    rgenh_freeRequest(input);
    EXPECT_FALSE(sanitizerFindsLeaks());
}

// A cancel without memory fails, and a later one does not.
TEST_F(GuardedAllocations, OfCancellingJobs) {
    RgenhError error = newError();
    std::promise<void> gate;
    std::shared_future<void> opened = gate.get_future();
    const auto waitForGate = [](const char* text, void* context) RGEN_CALL {
        static_cast<std::shared_future<void>*>(context)->wait();
        return text;
    };
    RgenReportGenerator* const host = rgenh_newReportGenerator(&error);
    ASSERT_EQ(RGEN_OK, rgenh_setDataDirPath(host, files.file("main").c_str(), &error));
    ASSERT_EQ(RGEN_OK, rgenh_setTranslator(host, waitForGate, &opened, RGENH_PLAIN, &error));
    const RgenhValue value = rgenh_textValue("v", "value");
    RgenhRequestParts parts = partsOf(&value, 1);
    parts.templateGuid = defaultGuid();
    RgenhRequest* const input = rgenh_newRequest(&parts, &error);
    RgenhJob* const job = rgenh_startReport(host, input, nullptr, nullptr, &error);
    bool isReached = true;
    for (std::size_t number = 1; isReached; ++number) {
        RgenStatus status = RGEN_OK;
        {
            const FailingAllocation failure(number);
            status = rgenh_cancelJob(job, &error);
            isReached = failure.count() >= number;
        }
        EXPECT_EQ(isReached, status < 0);
        EXPECT_EQ(isReached ? RGENH_ERROR_MEMORY : RGENH_ERROR_NONE, error.kind);
        countPoints("allocation_points", 1);
    }
    gate.set_value();
    EXPECT_EQ(1, rgenh_waitForJob(job, -1, &error));
    rgenh_freeJob(job);
    rgenh_freeRequest(input);
    rgenh_freeReportGenerator(host, nullptr);
}

TEST_F(GuardedAllocations, OfTexts) {
    FaultScenario scenario;
    scenario.name = "texts";
    scenario.call = [](FaultSubject& /*subject*/) {
        RgenhError error = newError();
        RgenAnsiString text = {};
        const std::uint64_t size = RGENH_NULL_TERMINATED;
        RgenStatus status = rgenh_escapeText("a text & another, both long", size, RGENH_PLAIN,
                                             RGENH_FOR_PERSISTENT_DATA, &text, &error);
        rgen_freeRgenAnsiString(&text);
        if (status >= 0) {
            status = rgenh_escapeTranslation("original", "<translation> & more, and long", size,
                                             RGENH_PLAIN, &text, &error);
            rgen_freeRgenAnsiString(&text);
        }
        if (status >= 0) {
            status = rgenh_unescapeText("a &lt; text that is long &amp; dull", size, &text, &error);
            rgen_freeRgenAnsiString(&text);
        }
        return checkedMemory(status, error);
    };
    scenario.failures = {RGEN_E_UNKNOWN};
    sweepAllocations(files, scenario);
}

}  // namespace
}  // namespace rgen_test
