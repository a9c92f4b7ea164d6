// Generations with each allocation failing in turn: all output modes and formats.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "memory/pool_slot.h"
#include "robustness/faults/allocation_sweep.h"
#include "robustness/faults/sweep_report.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

// Where the XML libraries allocate from a pool, fewer calls can fail.
[[maybe_unused]] const bool isRequired =
    requirePoints("allocation_points", rgen::memory::poolsAreUsed ? 1000 : 3000);

// One line for each property, in the order of their names.
constexpr const char* richTemplate =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
    "<xsl:output method=\"text\" encoding=\"UTF-8\"/>"
    "<xsl:key name=\"byName\" match=\"property\" use=\"@name\"/>"
    "<xsl:variable name=\"line\" select=\"'&#10;'\"/>"
    "<xsl:template match=\"/\">"
    "<xsl:text>QT_TRANSLATE_NOOP(\"QObject\", \"Title\")&#10;</xsl:text>"
    "<xsl:for-each select=\"/data/properties/property\"><xsl:sort select=\"@name\"/>"
    "<xsl:call-template name=\"show\"/></xsl:for-each>"
    "<xsl:value-of select=\"concat(key('byName', 'size'), ' at the end', $line)\"/>"
    "</xsl:template>"
    "<xsl:template name=\"show\"><xsl:if test=\"string-length(.) &gt; 0\">"
    "<xsl:value-of select=\"concat(@name, '=', ., $line)\"/></xsl:if></xsl:template>"
    "</xsl:stylesheet>";

constexpr const char* smallTemplate =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
    "<xsl:output method=\"text\"/><xsl:template match=\"/\">"
    "<xsl:value-of select=\"//property\"/></xsl:template></xsl:stylesheet>";

constexpr const char* htmlTemplate =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
    "<xsl:output method=\"html\" indent=\"yes\"/><xsl:template match=\"/\"><html><body>"
    "<p class=\"{//property/@name}\"><xsl:value-of select=\"//property\"/></p></body></html>"
    "</xsl:template></xsl:stylesheet>";

// A union of more than 64 nodes, which libxml2 sorts with memory of its own.
constexpr const char* sortingTemplate =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
    "<xsl:output method=\"text\"/><xsl:template match=\"/\">"
    "<xsl:for-each select=\"//property | //@name\"><xsl:sort select=\".\"/>"
    "<xsl:value-of select=\"concat(., '&#10;')\"/></xsl:for-each>"
    "</xsl:template></xsl:stylesheet>";

const char* RGEN_CALL translateTitle(const char* /*text*/, void* /*context*/) {
    return "A title that is longer than the marker and its text were";
}

void addEveryKindOfValue(FaultSubject& subject) {
    rgen_setTranslateFunction(subject.generator(), translateTitle, nullptr);
    subject.input.variants()
        .addInt64("number", -7)
        .addInt64("size", 4096, RGEN_HINT_SIZE)
        .addInt64("address", 0xABCD, RGEN_HINT_ADDRESS)
        .addInt64("speed", 88, RGEN_HINT_SPEED)
        .addString("text", "a text that is too long for the inside of a string, with &amp; and <")
        .addBytes("bytes", {1, 2, 254, 255})
        .addHandle("handle", nullptr)
        .addInt64("time", 1000000000, RGEN_HINT_TIME)
        .addInt64("date", 1000000000, RGEN_HINT_DATE)
        .addInt64("date and time", 1000000000, RGEN_HINT_DATE_TIME);
    subject.input.pairs().add("pair", "first").add("p", "instead of the stored text");
    subject.input.format("html").output(RGEN_OUTPUT_BYTES);
}

RgenStatus generate(FaultSubject& subject) {
    return rgen_generateReport(subject.generator(), subject.input.get(), &subject.result);
}

std::vector<RgenStatus> generationFailures() {
    return configurationFailures() + std::vector<RgenStatus>{RGEN_E_EMPTY_INPUT, RGEN_E_XSLT_PARSE,
                                                             RGEN_E_XSLT_APPLY, RGEN_E_XSLT_RESULT};
}

FaultScenario generation(const std::string& name) {
    FaultScenario scenario;
    scenario.name = name;
    scenario.call = generate;
    scenario.take = takeBytes;
    scenario.failures = generationFailures();
    scenario.mayLoseLines = true;
    return scenario;
}

// A report of one value in one mode.
FaultScenario smallGeneration(const std::string& format, std::uint64_t mode) {
    FaultScenario scenario = generation(format + " in mode " + std::to_string(mode));
    scenario.prepare = [format, mode](FaultSubject& subject) {
        subject.input.variants().addString("v", "value");
        subject.input.format(format).output(mode, subject.files.file("report"));
    };
    if (mode == RGEN_OUTPUT_FILE) {
        scenario.take = takeFile("report");
        scenario.productsOfFailure = {"missing"};
    }
    if (mode == RGEN_OUTPUT_DELETE_ON_CLOSE) scenario.take = takeHandle;
    return scenario;
}

class FailingAllocations : public testing::Test {
protected:
    FaultFolder files;
};

TEST_F(FailingAllocations, ReportOfAllKindsOfInput) {
    files.putTemplate(richTemplate, "html");
    files.putPersistentData();
    FaultScenario scenario = generation("report of all kinds of input");
    scenario.prepare = addEveryKindOfValue;
    sweepAllocations(files, scenario);
}

TEST_F(FailingAllocations, ReportThatSortsManyNodes) {
    files.putTemplate(sortingTemplate, "html");
    FaultScenario scenario = generation("report that sorts many nodes");
    scenario.prepare = [](FaultSubject& subject) {
        for (int number = 10; number < 46; ++number)
            subject.input.pairs().add("n" + std::to_string(number), "t" + std::to_string(number));
        subject.input.format("html").output(RGEN_OUTPUT_BYTES);
    };
    sweepAllocations(files, scenario);
}

// The first text of the result is shared with the stylesheet; the long one is appended to it.
TEST_F(FailingAllocations, ReportThatAppendsALongText) {
    files.putTemplate(
        "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
        "<xsl:output method=\"text\"/><xsl:template match=\"/\"><xsl:text>first&#10;</xsl:text>"
        "<xsl:value-of select=\"//property\"/><xsl:text>last</xsl:text></xsl:template>"
        "</xsl:stylesheet>",
        "html");
    FaultScenario scenario = generation("report that appends a long text");
    scenario.prepare = [](FaultSubject& subject) {
        subject.input.variants().addString("v", std::string(300000, 'x') + "\n");
        subject.input.format("html").output(RGEN_OUTPUT_BYTES);
    };
    sweepAllocations(files, scenario);
}

TEST_F(FailingAllocations, ReportInHtml) {
    files.putTemplate(htmlTemplate, "html");
    sweepAllocations(files, smallGeneration("html", RGEN_OUTPUT_BYTES));
}

TEST_F(FailingAllocations, EveryFormatInTheFileMode) {
    for (const std::string format : {"html", "txt", "pdf"}) {
        files.putTemplate(smallTemplate, format);
        sweepAllocations(files, smallGeneration(format, RGEN_OUTPUT_FILE));
    }
}

TEST_F(FailingAllocations, EveryFormatInTheDeleteOnCloseMode) {
    for (const std::string format : {"html", "txt", "pdf"}) {
        files.putTemplate(smallTemplate, format);
        sweepAllocations(files, smallGeneration(format, RGEN_OUTPUT_DELETE_ON_CLOSE));
    }
}

TEST_F(FailingAllocations, EveryFormatInTheBytesMode) {
    for (const std::string format : {"html", "txt", "pdf"}) {
        files.putTemplate(smallTemplate, format);
        sweepAllocations(files, smallGeneration(format, RGEN_OUTPUT_BYTES));
    }
}

}  // namespace
}  // namespace rgen_test
