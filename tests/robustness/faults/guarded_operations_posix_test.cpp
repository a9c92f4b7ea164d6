// Calls of the host library with each of their file operations failing in turn: no exception, but
// an error of the file system where the library throws.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "robustness/faults/guarded_errors.h"
#include "robustness/faults/io_sweep_posix.h"
#include "robustness/faults/sweep_report.h"
#include "strata_repgenlib/rgen_host.h"
#include "support/converter_control.h"

namespace rgen_test {
namespace {

[[maybe_unused]] const bool isRequired = requirePoints("file_operation_points", 200);

constexpr const char* smallTemplate =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
    "<xsl:output method=\"text\"/><xsl:template match=\"/\">"
    "<xsl:value-of select=\"//property[@name='v']\"/></xsl:template></xsl:stylesheet>";

std::vector<RgenStatus> generationFailures() {
    return configurationFailures() +
           std::vector<RgenStatus>{RGEN_E_UNKNOWN,          RGEN_E_TEMPLATE_NOT_FOUND,
                                   RGEN_E_XSLT_PARSE,       RGEN_E_XSLT_APPLY,
                                   RGEN_E_XSLT_RESULT,      RGEN_E_OVERWRITE_OUTPUT,
                                   RGEN_E_CREATE_OUTPUT,    RGEN_E_WRITE_OUTPUT,
                                   RGEN_E_WRITE_ALL_OUTPUT, RGEN_E_EXTERNAL_FAILED};
}

IoScenario generation(const std::string& format) {
    IoScenario scenario;
    scenario.mayThrow = false;
    scenario.base.name = "guarded report as " + format;
    scenario.base.prepare = [format](FaultSubject& subject) {
        subject.input.variants().addString("v", "value");
        subject.input.format(format).output(RGEN_OUTPUT_FILE, subject.files.file("report"));
    };
    scenario.base.call = [](FaultSubject& subject) {
        RgenhError error = {};
        error.size = sizeof error;
        const RgenStatus status =
            rgenh_generateReport(subject.generator(), subject.input.get(), &subject.result, &error);
        return checkedFileSystem(status, error);
    };
    scenario.base.take = takeFile("report");
    scenario.base.failures = generationFailures();
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
        for (const char* format : {"txt", "pdf"})
            files.putTemplate(smallTemplate, format);
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
    IoScenario scenario;
    scenario.mayThrow = false;
    scenario.base.name = "guarded reading of persistent data";
    scenario.base.arrange = [](const FaultFolder& folder) { folder.putPersistentData(); };
    scenario.base.call = [](FaultSubject& subject) {
        RgenhError error = {};
        error.size = sizeof error;
        const RgenStatus status =
            rgenh_getPersistentTexts(subject.generator(), &subject.guid, &subject.pairs, &error);
        return checkedFileSystem(status, error);
    };
    scenario.base.take = [](FaultSubject& subject) {
        const std::string count = std::to_string(subject.pairs.count);
        rgen_freeRgenCAnsiStringSet(&subject.pairs);
        subject.pairs = {};
        return count;
    };
    scenario.base.failures =
        configurationFailures() +
        std::vector<RgenStatus>{RGEN_E_UNKNOWN, RGEN_E_OPEN_PERSIST, RGEN_E_NO_PERSIST_VALUES};
    scenario.base.productsOfFailure = {"0"};
    sweepFileOperations(files, scenario);
}

TEST_F(GuardedFileOperations, OfStoringPersistentValues) {
    IoScenario scenario;
    scenario.mayThrow = false;
    scenario.base.name = "guarded storing of persistent values";
    scenario.base.arrange = [](const FaultFolder& folder) { folder.putPersistentData(); };
    scenario.base.call = [](FaultSubject& subject) {
        RgenhError error = newError();
        const RgenhValue value = rgenh_textValue("a", "1 & 2");
        const RgenStatus status =
            rgenh_setPersistentValues(subject.generator(), &subject.guid, &value, 1, &error);
        return checkedFileSystem(status, error);
    };
    scenario.base.take = takeFile("main/.rgen/persist_data.xml");
    scenario.base.failures =
        configurationFailures() +
        std::vector<RgenStatus>{RGEN_E_UNKNOWN, RGEN_E_DELETE_PERSIST, RGEN_E_CREATE_PERSIST};
    scenario.base.productsOfFailure = {"missing", FaultFolder::persistentData};
    sweepFileOperations(files, scenario);
}

TEST_F(GuardedFileOperations, OfADump) {
    IoScenario scenario;
    scenario.mayThrow = false;
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
    writeFile(files.file("in.xml"),
              "<data><properties><property name=\"n\" type=\"int64\" hint=\"Size\">1</property>"
              "</properties></data>");
    IoScenario scenario;
    scenario.mayThrow = false;
    scenario.base.name = "guarded simulated input";
    scenario.base.call = [](FaultSubject& subject) {
        RgenhError error = newError();
        const std::int32_t count = rgenh_getSimulatedRawDataFromFile(
            subject.generator(), subject.files.file("in.xml").c_str(), &subject.values, &error);
        return count < 0 ? checkedFileSystem(count, error) : count;
    };
    scenario.base.take = [](FaultSubject& subject) {
        const std::string count = std::to_string(subject.values.count);
        rgen_freeRgenCVariantSet(&subject.values);
        return count;
    };
    scenario.base.failures = {0, RGEN_E_UNKNOWN};
    scenario.base.productsOfFailure = {"0"};
    sweepFileOperations(files, scenario);
}

TEST_F(GuardedFileOperations, OfTheCheckOfAPdf) {
    const std::string path = files.file("report.pdf");
    writeFile(path, "%PDF-1.7 %%EOF");
    IoScenario scenario;
    scenario.mayThrow = false;
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
