// The soak's steps that fail, with the status that each has.
//
// SPDX-License-Identifier: MIT
#include <stdexcept>

#include "robustness/soak/soak_host.h"

namespace rgen_test {
namespace {

// A report that cannot be made. The path is one below the folder of outputs.
struct FailingReport {
    RgenStatus status;
    const char* type;
    const char* format;
    std::uint64_t mode;
    const char* path;
};

const FailingReport failingReports[] = {
    {RGEN_E_GUID_NOT_IN_CONFIG, unknownType, "html", 2, "x"},
    {RGEN_E_TEMPLATE_NOT_FOUND, templatelessType, "html", 2, "x"},
    {RGEN_E_TEMPLATE_NOT_FOUND, goodType, "", 2, "x"},
    {RGEN_E_UNKNOWN_FORMAT, goodType, "doc", 2, "x"},
    {RGEN_E_XSLT_PARSE, brokenType, "html", 2, "x"},
    {RGEN_E_XSLT_APPLY, failingType, "html", 2, "x"},
    {RGEN_E_XSLT_RESULT, silentType, "html", 2, "x"},
    {RGEN_E_OVERWRITE_OUTPUT, goodType, "html", 0, "folder"},
    {RGEN_E_CREATE_OUTPUT, goodType, "html", 0, "missing/report.html"},
    {RGEN_E_CREATE_OUTPUT, goodType, "pdf", 0, "missing/report.pdf"},
    {RGEN_E_CREATE_OUTPUT, goodType, "pdf", 0, "blocked.pdf"},
    {RGEN_E_CREATE_OUTPUT, goodType, "txt", 1, "missing/report.txt"},
    {RGEN_E_CREATE_OUTPUT, goodType, "txt", 1, "folder"},
    {RGEN_E_UNKNOWN_OUTPUT_MODE, goodType, "html", 3, "x"}};

}  // namespace

void SoakHost::failingReport() {
    const FailingReport& failing = failingReports[upTo(std::size(failingReports))];
    InputParams input;
    input.guid(guidFromText(failing.type)).format(failing.format);
    input.output(failing.mode, outputs_.file(failing.path)).variants().addString("v", "value");
    Result result;
    expectStatus(failing.status, generateOn(generator_, input, result), failing.path);
    EXPECT_EQ(std::uint64_t{RGEN_TYPE_EMPTY}, result.record().type);
}

void SoakHost::missingConverter() {
    const ScopedEnvironmentText path("PATH", outputs_.file("no programs"));
    InputParams input;
    input.guid(guidFromText(goodType)).format("pdf").variants().addString("v", "value");
    input.output(RGEN_OUTPUT_FILE, outputs_.file("unconverted.pdf"));
    Result result;
    expectStatus(RGEN_E_RUN_EXTERNAL, generateOn(generator_, input, result), "no converter");
    EXPECT_FALSE(exists(outputs_.file("unconverted.pdf")));
    EXPECT_FALSE(exists(outputs_.file("unconverted.pdf.html")));
}

void SoakHost::failingOperation() {
    const RgenGuid storeless = guidFromText(storelessType);
    const RgenGuid blocked = guidFromText(blockedStoreType);
    RgenReportGenerator* const generator = generator_.get();
    InputParams input;
    Result result;
    input.guid(storeless);
    expectStatus(RGEN_E_EMPTY_INPUT, generateOn(generator_, input, result), "no value");
    ++reports_;
    expectStatus(RGEN_E_BAD_PARAMETER, rgen_generateReport(generator, nullptr, result.get()),
                 "no input");
    expectStatus(RGEN_E_DIR_NOT_FOUND,
                 rgen_setDataDirPath(generator, outputs_.file("missing").c_str()), "directory");
    expectStatus(RGEN_E_OPEN_PERSIST, persistentData(generator_, storeless).status, "get");
    expectStatus(RGEN_E_DELETE_PERSIST, storePairs(generator_, blocked, {{"a", "b"}}), "set");
    expectStatus(
        RGEN_E_CREATE_PERSIST,
        rgen_dumpRawInputDataToFile(generator, input.get(), outputs_.file("missing/d").c_str()),
        "dump");
    expectStatus(RGEN_E_DELETE_DUMP,
                 rgen_dumpRawInputDataToFile(generator, input.get(), first_.folder.path().c_str()),
                 "dump onto a folder");
    EXPECT_EQ(0, simulatedData(generator_, outputs_.file("missing.xml")).result);
}

// Paths that are no UTF-8 and a generator without a data directory end by an exception.
void SoakHost::raisingOperation() {
    const Generator fresh;
    const RgenGuid guid = guidFromText(goodType);
    InputParams input;
    Result result;
    input.guid(guid).output(RGEN_OUTPUT_FILE, "\xFF").variants().addString("v", "value");
    EXPECT_THROW(generateOn(generator_, input, result), std::range_error);
    EXPECT_THROW(generateOn(fresh, input, result), std::runtime_error);
    EXPECT_THROW(rgen_setDataDirPath(fresh.get(), "\xC3"), std::range_error);
    EXPECT_THROW(persistentData(fresh, guid), std::runtime_error);
}

}  // namespace rgen_test
