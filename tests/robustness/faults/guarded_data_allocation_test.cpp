// Calls of the host library for data, texts and files with each allocation failing in turn.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "robustness/faults/allocation_sweep.h"
#include "robustness/faults/guarded_scenarios.h"

namespace rgen_test {
namespace {

FaultScenario storing(const std::string& name) {
    FaultScenario scenario = storingPersistentData(name);
    scenario.prepare = [](FaultSubject& subject) {
        subject.input.pairs().add("first", "a text that is long enough").add("second", "2");
        subject.input.variants().addInt64("size", 4096, RGEN_HINT_SIZE);
    };
    scenario.failures.push_back(RGEN_E_UNKNOWN);
    scenario.mayLoseLines = true;
    return scenario;
}

class GuardedDataAllocations : public testing::Test {
protected:
    FaultFolder files;
};

TEST_F(GuardedDataAllocations, OfReadingPersistentData) {
    files.putPersistentData();
    FaultScenario scenario;
    scenario.name = "reading persistent data, guarded";
    scenario.call = [](FaultSubject& subject) {
        RgenhError error = newError();
        return checkedMemory(
            rgenh_getPersistentData(subject.generator(), &subject.guid, &subject.pairs, &error),
            error);
    };
    scenario.take = [](FaultSubject& subject) {
        const std::string count = std::to_string(subject.pairs.count);
        rgen_freeRgenCAnsiStringSet(&subject.pairs);
        return count;
    };
    scenario.productsOfFailure = {"0"};
    scenario.failures =
        configurationFailures() + std::vector<RgenStatus>{RGEN_E_UNKNOWN, RGEN_E_OPEN_PERSIST,
                                                          RGEN_E_NO_PERSIST_VALUES,
                                                          RGEN_E_NO_VALID_PERSIST_VALUES};
    sweepAllocations(files, scenario);
}

TEST_F(GuardedDataAllocations, OfStoringPersistentData) {
    FaultScenario pairs = storing("storing pairs, guarded");
    pairs.call = [](FaultSubject& subject) {
        RgenhError error = newError();
        return checkedMemory(
            rgenh_setPersistentDataFromAnsiStringPairSet(subject.generator(), &subject.guid,
                                                         &subject.input.get()->pairs, &error),
            error);
    };
    sweepAllocations(files, pairs);
    FaultScenario values = storing("storing values, guarded");
    values.call = [](FaultSubject& subject) {
        RgenhError error = newError();
        return checkedMemory(
            rgenh_setPersistentDataFromCVariantSet(subject.generator(), &subject.guid,
                                                   &subject.input.get()->variants, &error),
            error);
    };
    sweepAllocations(files, values);
}

TEST_F(GuardedDataAllocations, OfDumps) {
    FaultScenario scenario = storing("dump, guarded");
    scenario.arrange = [](const FaultFolder& folder) { writeFile(folder.file("dump"), "old"); };
    scenario.call = [](FaultSubject& subject) {
        RgenhError error = newError();
        return checkedMemory(
            rgenh_dumpRawInputDataToFile(subject.generator(), subject.input.get(),
                                         subject.files.file("dump").c_str(), &error),
            error);
    };
    scenario.take = takeFile("dump");
    scenario.productsOfFailure = {"missing", "old"};
    scenario.failures = {RGEN_E_UNKNOWN, RGEN_E_DELETE_DUMP, RGEN_E_CREATE_PERSIST};
    sweepAllocations(files, scenario);
}

TEST_F(GuardedDataAllocations, OfSimulatedInput) {
    sweepAllocations(files, guardedSimulation(checkedMemory));
}

TEST_F(GuardedDataAllocations, OfSettingsAndCancelling) {
    FaultScenario scenario;
    scenario.name = "settings and cancelling, guarded";
    const std::string folder = files.file("main");
    scenario.call = [folder](FaultSubject& subject) {
        RgenhError error = newError();
        RgenStatus status = rgenh_setDataDirPath(subject.generator(), folder.c_str(), &error);
        if (status >= 0) status = rgenh_cancel(subject.generator(), nullptr, &error);
        return checkedMemory(status, error);
    };
    scenario.failures = {RGEN_E_UNKNOWN};
    sweepAllocations(files, scenario);
}

TEST_F(GuardedDataAllocations, OfGuidsTimesAndVersions) {
    FaultScenario scenario;
    scenario.name = "guids, times and versions";
    scenario.call = [](FaultSubject& /*subject*/) {
        RgenhError error = newError();
        RgenGuid guid = {};
        char letters[RGENH_GUID_TEXT_SIZE] = {};
        std::int64_t seconds = 0;
        RgenhVersions versions = {};
        versions.size = sizeof versions;
        RgenStatus status = rgenh_parseGuid(defaultGuidText, 36, &guid, &error);
        if (status >= 0) status = rgenh_formatGuid(&guid, letters, &error);
        if (status >= 0) status = rgenh_parseTime("2026-03-09T08:14:07Z", 20, &seconds, &error);
        if (status >= 0) status = rgenh_getVersions(&versions, &error);
        return checkedMemory(status, error);
    };
    scenario.failures = {RGEN_E_UNKNOWN};
    sweepAllocations(files, scenario);
}

TEST_F(GuardedDataAllocations, OfChecksOfPdfsAndTexts) {
    const std::string path = files.file("a report whose name is long enough.pdf");
    writeFile(path, "%PDF-1.7 %%EOF");
    FaultScenario scenario;
    scenario.name = "checks of pdfs and texts";
    scenario.call = [path](FaultSubject& /*subject*/) {
        RgenhError error = newError();
        RgenStatus status = rgenh_verifyPdf(path.c_str(), &error);
        if (status >= 0) {
            status =
                rgenh_isStorable("a text & more of it", RGENH_NULL_TERMINATED, RGENH_PLAIN, &error);
        }
        return status < 0 ? checkedMemory(status, error) : status;
    };
    scenario.failures = {RGEN_E_UNKNOWN};
    sweepAllocations(files, scenario);
}

}  // namespace
}  // namespace rgen_test
