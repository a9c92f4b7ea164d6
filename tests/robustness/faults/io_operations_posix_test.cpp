// Every operation with each of its file operations failing in turn.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include "robustness/faults/io_sweep_posix.h"
#include "robustness/faults/sweep_report.h"
#include "store/base/file_system.h"
#include "support/converter_control.h"

namespace rgen_test {
namespace {

[[maybe_unused]] const bool isRequired = requirePoints("file_operation_points", 500);

// One line for each property of the input and of the stored data.
constexpr const char* lineTemplate =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
    "<xsl:output method=\"text\"/><xsl:template match=\"/\">"
    "<xsl:for-each select=\"//property\"><xsl:sort select=\"@name\"/>"
    "<xsl:value-of select=\"concat(@name, '&#10;')\"/></xsl:for-each>"
    "</xsl:template></xsl:stylesheet>";

bool isCut(const IoFault& fault, const std::string& whole, const std::string& product) {
    return fault.call == IoCall::Write && whole.compare(0, product.size(), product) == 0;
}

// Stored values that cannot be read contribute nothing.
bool lacksStoredValues(const IoFault& fault, const std::string& whole, const std::string& product) {
    const bool isReading = fault.call == IoCall::Open || fault.call == IoCall::Read;
    return isReading && product == "v\n" && lacksLinesOnly(whole, product);
}

std::vector<RgenStatus> generationFailures() {
    return configurationFailures() +
           std::vector<RgenStatus>{RGEN_E_TEMPLATE_NOT_FOUND, RGEN_E_XSLT_PARSE,
                                   RGEN_E_XSLT_APPLY,         RGEN_E_XSLT_RESULT,
                                   RGEN_E_OVERWRITE_OUTPUT,   RGEN_E_CREATE_OUTPUT,
                                   RGEN_E_WRITE_OUTPUT,       RGEN_E_WRITE_ALL_OUTPUT};
}

IoScenario generation(std::uint64_t mode, const std::string& format = "txt") {
    IoScenario scenario;
    scenario.base.name = "report in mode " + std::to_string(mode) + ", " + format;
    scenario.base.prepare = [mode, format](FaultSubject& subject) {
        subject.input.variants().addString("v", "value");
        subject.input.format(format).output(mode, subject.files.file("report"));
    };
    scenario.base.call = [](FaultSubject& subject) {
        return rgen_generateReport(subject.generator(), subject.input.get(), &subject.result);
    };
    scenario.base.take = takeBytes;
    scenario.base.failures = generationFailures();
    scenario.mayMake = lacksStoredValues;
    return scenario;
}

IoScenario storing(const std::string& name) {
    IoScenario scenario;
    scenario.base = storingPersistentData(name);
    scenario.base.prepare = [](FaultSubject& subject) { subject.input.pairs().add("a", "1"); };
    scenario.base.call = [](FaultSubject& subject) {
        return rgen_setPersistentDataFromAnsiStringPairSet(subject.generator(), &subject.guid,
                                                           &subject.input.get()->pairs);
    };
    return scenario;
}

class FailingFileOperations : public testing::Test {
protected:
    FailingFileOperations() {
        for (const char* format : {"txt", "pdf"})
            files.putTemplate(lineTemplate, format);
        files.putPersistentData();
    }

    FaultFolder files;
};

TEST_F(FailingFileOperations, ReportAsFile) {
    IoScenario scenario = generation(RGEN_OUTPUT_FILE);
    scenario.base.arrange = [](const FaultFolder& folder) {
        writeFile(folder.file("report"), "old");
    };
    scenario.base.take = takeFile("report");
    scenario.base.productsOfFailure = {"missing", "old"};
    // A full disk is not noticed.
    scenario.mayMake = [](const IoFault& fault, const std::string& whole,
                          const std::string& product) {
        return isCut(fault, whole, product) || lacksStoredValues(fault, whole, product);
    };
    sweepFileOperations(files, scenario);
}

TEST_F(FailingFileOperations, ReportAsDeleteOnCloseFile) {
    IoScenario scenario = generation(RGEN_OUTPUT_DELETE_ON_CLOSE);
    scenario.base.take = takeHandle;
    sweepFileOperations(files, scenario);
}

TEST_F(FailingFileOperations, ReportAsBytes) {
    sweepFileOperations(files, generation(RGEN_OUTPUT_BYTES));
}

TEST_F(FailingFileOperations, ConvertedReport) {
    const ConverterControl converter(files.folder());
    IoScenario scenario = generation(RGEN_OUTPUT_FILE, "pdf");
    // The stand-in writes nothing; the temporary file must be gone.
    scenario.base.take = takeFile("report");
    scenario.base.productsOfFailure = {"missing"};
    sweepFileOperations(files, scenario);
}

TEST_F(FailingFileOperations, FreshDataDirectory) {
    IoScenario scenario = storing("fresh data directory");
    scenario.base.arrange = [](const FaultFolder& folder) { removeAll(folder.file("main/.rgen")); };
    sweepFileOperations(files, scenario);
}

TEST_F(FailingFileOperations, StoringPersistentData) {
    sweepFileOperations(files, storing("storing"));
}

TEST_F(FailingFileOperations, ReadingPersistentData) {
    IoScenario scenario;
    scenario.base.name = "reading persistent data";
    scenario.base.call = [](FaultSubject& subject) {
        return rgen_getPersistentData(subject.generator(), &subject.guid, &subject.pairs);
    };
    scenario.base.take = [](FaultSubject& subject) {
        const auto count = std::to_string(subject.pairs.count);
        rgen_freeRgenCAnsiStringSet(&subject.pairs);
        return count;
    };
    scenario.base.failures = configurationFailures() +
                             std::vector<RgenStatus>{RGEN_E_OPEN_PERSIST, RGEN_E_NO_PERSIST_VALUES,
                                                     RGEN_E_NO_VALID_PERSIST_VALUES};
    scenario.base.productsOfFailure = {"0"};
    sweepFileOperations(files, scenario);
}

TEST_F(FailingFileOperations, Dump) {
    IoScenario scenario;
    scenario.base.name = "dump";
    scenario.base.arrange = [](const FaultFolder& folder) {
        writeFile(folder.file("dump"), "old");
    };
    scenario.base.prepare = [](FaultSubject& subject) {
        subject.input.variants().addInt64("n", 1);
    };
    scenario.base.call = [](FaultSubject& subject) {
        return rgen_dumpRawInputDataToFile(subject.generator(), subject.input.get(),
                                           subject.files.file("dump").c_str());
    };
    scenario.base.take = takeFile("dump");
    scenario.base.failures = {RGEN_E_DELETE_DUMP, RGEN_E_CREATE_PERSIST};
    scenario.base.productsOfFailure = {"missing", "old"};
    sweepFileOperations(files, scenario);
}

TEST_F(FailingFileOperations, SimulatedInput) {
    writeFile(files.file("in.xml"),
              "<data><properties><property name=\"n\" type=\"int64\" hint=\"Size\">1</property>"
              "</properties></data>");
    IoScenario scenario;
    scenario.base.name = "simulated input";
    scenario.base.call = [](FaultSubject& subject) {
        return rgen_getSimulatedRawDataFromFile(
            subject.generator(), subject.files.file("in.xml").c_str(), &subject.values);
    };
    scenario.base.take = [](FaultSubject& subject) {
        const auto count = std::to_string(subject.values.count);
        rgen_freeRgenCVariantSet(&subject.values);
        return count;
    };
    scenario.base.failures = {0};
    scenario.base.productsOfFailure = {"0"};
    sweepFileOperations(files, scenario);
}

TEST_F(FailingFileOperations, SetDataDirPath) {
    IoScenario scenario;
    scenario.base.name = "data directory path";
    scenario.base.call = [](FaultSubject& subject) {
        return rgen_setDataDirPath(subject.generator(), subject.files.file("main").c_str());
    };
    scenario.base.failures = {RGEN_E_DIR_NOT_FOUND};
    sweepFileOperations(files, scenario);
}

TEST_F(FailingFileOperations, TextOfAFileThatCannotBeRead) {
    writeFile(files.file("page"), "text");
    const FailingIo failure(files.folder().path(), {IoCall::Read, 1, EIO, FailureForm::AllFrom});
    std::string text = "previous";
    EXPECT_TRUE(rgen::readFile(files.file("page"), text));
    EXPECT_TRUE(failure.reached());
    EXPECT_EQ("", text);
}

}  // namespace
}  // namespace rgen_test
