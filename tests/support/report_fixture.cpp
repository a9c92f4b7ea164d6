// A generator with a data directory of its own, templates and generations for report tests.
//
// SPDX-License-Identifier: MIT
#include "support/report_fixture.h"

#include <ostream>

namespace rgen_test {
namespace {

std::string reportType(const std::string& guid, const std::string& dataFile,
                       const std::string& templateFile) {
    return "<type guid=\"" + guid + "\"><persistDataFile>" + dataFile +
           "</persistDataFile><reportTypeFile>" + templateFile + "</reportTypeFile></type>\n";
}

}  // namespace

const char* const secondGuidText = "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9";
const char* const sharingGuidText = "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8fa";

std::string stylesheet(const std::string& outputAttributes, const std::string& topLevel) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<xsl:stylesheet version=\"1.0\" "
           "xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
           "<xsl:output " +
           outputAttributes + "/>" + topLevel + "</xsl:stylesheet>";
}

std::string textStylesheet(const std::string& body) {
    return stylesheet("method=\"text\" encoding=\"UTF-8\"",
                      "<xsl:template match=\"/\">" + body + "</xsl:template>");
}

std::string valueOf(const std::string& propertyName) {
    return "<xsl:value-of select=\"/data/properties/property[@name='" + propertyName + "']\"/>";
}

bool operator==(const Report& left, const Report& right) {
    return left.status == right.status && left.bytes == right.bytes;
}

std::ostream& operator<<(std::ostream& out, const Report& report) {
    return out << report.status << ' ' << ::testing::PrintToString(report.bytes.substr(0, 2000));
}

Report reportOf(const std::string& bytes) {
    return {statusHex(RGEN_OK), bytes};
}

Report failure(RgenStatus status) {
    return {statusHex(status), std::string()};
}

const char* RGEN_CALL translateWithPrefix(const char* text, void* context) {
    thread_local std::string translation;
    translation = static_cast<const char*>(context);
    translation += text;
    return translation.c_str();
}

ReportTest::ReportTest() : generator(folder.path()) {
    putConfig(reportType(defaultGuidText, "persist_data.xml", "test_stylesheet.xsl") +
              reportType(secondGuidText, "second_data.xml", "second.xsl") +
              reportType(sharingGuidText, "persist_data.xml", "sharing.xsl"));
}

void ReportTest::putTemplate(const std::string& text, const std::string& format) {
    putTemplateFile("test_stylesheet.xsl", text, format);
}

void ReportTest::putTemplateFile(const std::string& fileName, const std::string& text,
                                 const std::string& format) {
    replaceFile(folder.dataFile("templates/" + format + "/" + fileName), text);
}

void ReportTest::putConfig(const std::string& reportTypes) {
    replaceFile(folder.dataFile("config.xml"),
                "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                "<config><reportTypes>" +
                    reportTypes + "</reportTypes></config>\n");
}

std::string ReportTest::generate(InputParams& input) {
    Result result;
    return statusHex(rgen_generateReport(generator.get(), input.get(), result.get()));
}

Report ReportTest::report(InputParams& input) {
    Result result;
    input.output(RGEN_OUTPUT_BYTES);
    const RgenStatus status = rgen_generateReport(generator.get(), input.get(), result.get());
    return {statusHex(status), result.bytes()};
}

Report ReportTest::reportOfValue(const std::string& text) {
    InputParams input;
    input.variants().addString("v", text);
    return report(input);
}

Report ReportTest::reportOfTemplate(const std::string& text) {
    putTemplate(text);
    return reportOfValue("value");
}

DeleteOnCloseTest::DeleteOnCloseTest() {
    for (const char* format : {"html", "txt", "pdf"}) {
        putTemplate(textStylesheet(valueOf("v")), format);
    }
    input.variants().addString("v", "value");
}

void* DeleteOnCloseTest::generateHandle() {
    Result result;
    EXPECT_EQ(statusHex(RGEN_OK),
              statusHex(rgen_generateReport(generator.get(), input.get(), result.get())));
    EXPECT_EQ("Return stub name", toText(result.record().name));
    EXPECT_EQ(std::uint64_t{RGEN_TYPE_HANDLE}, result.record().type);
    EXPECT_EQ(std::uint64_t{RGEN_HINT_GENERIC}, result.record().hint);
    return result.record().value.handleValue;
}

RunningGeneration::RunningGeneration(const Generator& generator, InputParams& input)
    : thread_([this, &generator, record = input.get()] {
          status_ = rgen_generateReport(generator.get(), record, result_.get());
      }) {}

RunningGeneration::~RunningGeneration() {
    if (thread_.joinable()) thread_.join();
}

std::string RunningGeneration::status() {
    if (thread_.joinable()) thread_.join();
    return statusHex(status_);
}

}  // namespace rgen_test
