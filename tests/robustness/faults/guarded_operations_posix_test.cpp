// Calls of the host library with each of their file operations failing in turn: no exception, but
// an error of the file system where the library throws.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "robustness/faults/guarded_scenarios.h"
#include "robustness/faults/io_sweep_posix.h"
#include "robustness/faults/sweep_report.h"
#include "support/converter_control.h"

namespace rgen_test {
namespace {

[[maybe_unused]] const bool isRequired = requirePoints("file_operation_points", 200);

IoScenario guarded(FaultScenario base) {
    IoScenario scenario;
    scenario.base = std::move(base);
    scenario.mayThrow = false;
    return scenario;
}

IoScenario generation(const std::string& format) {
    IoScenario scenario = guarded(guardedReport(format, RGEN_OUTPUT_FILE, checkedFileSystem));
    scenario.base.take = takeFile("report");
    scenario.base.failures =
        std::move(scenario.base.failures) +
        std::vector<RgenStatus>{RGEN_E_TEMPLATE_NOT_FOUND, RGEN_E_OVERWRITE_OUTPUT,
                                RGEN_E_CREATE_OUTPUT,      RGEN_E_WRITE_OUTPUT,
                                RGEN_E_WRITE_ALL_OUTPUT,   RGEN_E_EXTERNAL_FAILED};
    scenario.base.productsOfFailure = {"missing"};
    // A full disk is not noticed in a report that is not converted.
    scenario.mayMake = [](const IoFault& fault, const std::string& whole,
                          const std::string& product) {
        return fault.call == IoCall::Write && whole.compare(0, product.size(), product) == 0;
    };
    return scenario;
}

class GuardedFileOperations : public testing::Test {
protected:
    GuardedFileOperations() {
        const std::string text = textTemplate("<xsl:value-of select=\"//property[@name='v']\"/>");
        for (const char* format : {"txt", "pdf"})
            files.putTemplate(text, format);
    }

    FaultFolder files;
};

TEST_F(GuardedFileOperations, OfAReport) {
    sweepFileOperations(files, generation("txt"));
}

TEST_F(GuardedFileOperations, OfAConvertedReport) {
    const ConverterControl converter(files.folder());
    converter.obey({{"write", files.file("report"), "%PDF-1.7 %%EOF"}});
    IoScenario scenario = generation("pdf");
    scenario.base.productsOfFailure = {"missing", "%PDF-1.7 %%EOF"};
    sweepFileOperations(files, scenario);
}

TEST_F(GuardedFileOperations, OfPersistentTexts) {
    sweepFileOperations(files, guarded(guardedReading(checkedFileSystem)));
}

TEST_F(GuardedFileOperations, OfStoringPersistentValues) {
    sweepFileOperations(files, guarded(guardedStoring(checkedFileSystem)));
}

TEST_F(GuardedFileOperations, OfADump) {
    IoScenario scenario = guarded({});
    scenario.base.name = "guarded dump";
    scenario.base.arrange = [](const FaultFolder& folder) {
        writeFile(folder.file("dump"), "old");
    };
    scenario.base.prepare = [](FaultSubject& subject) {
        subject.input.variants().addInt64("n", 1);
    };
    scenario.base.call = [](FaultSubject& subject) {
        RgenhError error = newError();
        const RgenStatus status = rgenh_dumpRawInputDataToFile(
            subject.generator(), subject.input.get(), subject.files.file("dump").c_str(), &error);
        return checkedFileSystem(status, error);
    };
    scenario.base.take = takeFile("dump");
    scenario.base.failures = {RGEN_E_UNKNOWN, RGEN_E_DELETE_DUMP, RGEN_E_CREATE_PERSIST};
    scenario.base.productsOfFailure = {"missing", "old"};
    sweepFileOperations(files, scenario);
}

TEST_F(GuardedFileOperations, OfSimulatedInput) {
    sweepFileOperations(files, guarded(guardedSimulation(checkedFileSystem)));
}

TEST_F(GuardedFileOperations, OfTheCheckOfAPdf) {
    const std::string path = files.file("report.pdf");
    writeFile(path, "%PDF-1.7 %%EOF");
    IoScenario scenario = guarded({});
    scenario.base.name = "check of a pdf";
    scenario.base.call = [path](FaultSubject& /*subject*/) {
        RgenhError error = newError();
        return checkedFileSystem(rgenh_verifyPdf(path.c_str(), &error), error);
    };
    scenario.base.failures = {RGEN_E_EXTERNAL_FAILED};
    sweepFileOperations(files, scenario);
}

}  // namespace
}  // namespace rgen_test
