// A generator with a data directory of its own, templates and generations for report tests.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_REPORT_FIXTURE_H
#define RGEN_TESTS_SUPPORT_REPORT_FIXTURE_H

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <thread>

#include "strata_repgenlib/rgen.h"
#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"

namespace rgen_test {

// The GUIDs of the two further report types of ReportTest; the first one is the default's.
extern const char* const secondGuidText;
extern const char* const sharingGuidText;

// A whole stylesheet: the attributes of its xsl:output and its further top-level elements.
std::string stylesheet(const std::string& outputAttributes, const std::string& topLevel);

// A stylesheet with the output method text and that body of the root template.
std::string textStylesheet(const std::string& body);

// The xsl:value-of for the text of one property.
std::string valueOf(const std::string& propertyName);

// A mode 2 generation: its status as statusHex() writes it, and its bytes.
struct Report {
    std::string status;
    std::string bytes;
};

// Two reports are the same when both fields are.
bool operator==(const Report& left, const Report& right);
std::ostream& operator<<(std::ostream& out, const Report& report);

// The expected report of a successful mode 2 generation.
Report reportOf(const std::string& bytes);
// The expected report of a failed generation.
Report failure(RgenStatus status);

// A translate callback that returns "<context><text>"; the context is a null-terminated text.
const char* RGEN_CALL translateWithPrefix(const char* text, void* context);

// A data directory with three report types. The first has the default GUID, the files
// persist_data.xml and test_stylesheet.xsl; the second has second_data.xml and second.xsl; the
// third shares persist_data.xml with the first and has sharing.xsl.
class ReportTest : public ::testing::Test {
protected:
    ReportTest();

    // Writes the template of the first report type for that format.
    void putTemplate(const std::string& text, const std::string& format = "html");
    // Writes any template file of that format.
    void putTemplateFile(const std::string& fileName, const std::string& text,
                         const std::string& format = "html");
    // Writes config.xml with everything inside its reportTypes element.
    void putConfig(const std::string& reportTypes);

    // Generates with a status as statusHex() writes it; the result record is thrown away.
    std::string generate(InputParams& input);
    // Generates in mode 2.
    Report report(InputParams& input);
    // Generates in mode 2 with one text value "v".
    Report reportOfValue(const std::string& text);
    // Puts a template for the format html and generates with one value "v" of the text "value".
    Report reportOfTemplate(const std::string& text);

    TempFolder folder;
    Generator generator;
};

// Mode 1 generations: templates for all formats with the text of the value "v", and an input with
// that value.
class DeleteOnCloseTest : public ReportTest {
protected:
    DeleteOnCloseTest();

    // The handle of a successful generation; the caller closes it.
    void* generateHandle();

    InputParams input;
};

// A generation on a thread of its own; the input must outlive it.
class RunningGeneration {
public:
    RunningGeneration(const Generator& generator, InputParams& input);
    ~RunningGeneration();
    RunningGeneration(const RunningGeneration&) = delete;
    RunningGeneration& operator=(const RunningGeneration&) = delete;

    // Waits for the end and returns the status as statusHex() writes it.
    std::string status();

private:
    RgenStatus status_ = RGEN_E_UNKNOWN;
    Result result_;
    std::thread thread_;
};

}  // namespace rgen_test

#endif
