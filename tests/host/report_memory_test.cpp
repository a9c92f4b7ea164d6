// Generations whose memory could meet: one inside the other, large and small ones in turn, on
// several threads, and after failures.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "support/report_fixture.h"

namespace rgen_test {
namespace {

const std::string marker = "QT_TRANSLATE_NOOP(\"QObject\", \"inner\")";

class ReportMemory : public ReportTest {
protected:
    ReportMemory() { putTemplate(textStylesheet("[" + valueOf("v") + "]")); }

    Report withText(std::size_t size) { return reportOfValue(std::string(size, 'x')); }
    static Report expected(std::size_t size) {
        return reportOf("[" + std::string(size, 'x') + "]");
    }
};

class OtherReport : public ReportTest {
public:
    void TestBody() override {}
    Report make(const std::string& templateText) { return reportOfTemplate(templateText); }
};

const char* RGEN_CALL translateByReport(const char*, void* context) {
    auto& translated = *static_cast<std::string*>(context);
    OtherReport other;
    // A failure first, after which libxml2 keeps its last error.
    EXPECT_EQ(failure(RGEN_E_XSLT_PARSE), other.make("no template"));
    translated = other.make(textStylesheet("made " + valueOf("v"))).bytes;
    return translated.c_str();
}

TEST_F(ReportMemory, CallbackMayGenerateWithAnotherGenerator) {
    std::string translated;
    rgen_setTranslateFunction(generator.get(), translateByReport, &translated);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(reportOf("outer made value value"),
                  reportOfTemplate(textStylesheet("outer " + marker + " " + valueOf("v"))));
    }
}

// A callback that treats the input record as its own.
const char* RGEN_CALL translateAndChangeInput(const char* text, void* context) {
    static_cast<RgenCInputParams*>(context)->outputMode = RGEN_OUTPUT_FILE;
    return text;
}

TEST_F(ReportMemory, InputRecordIsReadBeforeTheTemplate) {
    putTemplate(textStylesheet(marker));
    InputParams input;
    input.variants().addString("v", "value");
    RgenCInputParams* record = input.get();
    rgen_setTranslateFunction(generator.get(), translateAndChangeInput, record);
    Result result;
    EXPECT_EQ(RGEN_OK, rgen_generateReport(generator.get(), record, result.get()));
    EXPECT_EQ("inner", result.bytes());
}

TEST_F(ReportMemory, LargeAndSmallReportsTakeTurns) {
    for (const std::size_t size : {1U, 3000000U, 10U, 70000U, 6000000U, 0U, 65000U, 1U}) {
        EXPECT_EQ(expected(size), withText(size)) << size;
    }
}

TEST_F(ReportMemory, ReportsAfterFailuresAreWhole) {
    const std::string good = textStylesheet("[" + valueOf("v") + "]");
    for (const char* bad : {"", "<", "no template", "<xsl:stylesheet/>"}) {
        EXPECT_EQ(failure(RGEN_E_XSLT_PARSE), reportOfTemplate(bad)) << bad;
        EXPECT_EQ(reportOf("[value]"), reportOfTemplate(good)) << bad;
    }
    const std::string endless = stylesheet("method=\"text\"",
                                           "<xsl:template match=\"/\" name=\"t\">"
                                           "<xsl:call-template name=\"t\"/></xsl:template>");
    EXPECT_EQ(failure(RGEN_E_XSLT_APPLY), reportOfTemplate(endless));
    EXPECT_EQ(reportOf("[value]"), reportOfTemplate(good));
}

TEST_F(ReportMemory, SortingByLanguageWorksEachTime) {
    const std::string sorted = textStylesheet(
        "<xsl:for-each select=\"/data/properties/property\"><xsl:sort select=\"@name\" "
        "lang=\"en\"/><xsl:value-of select=\"@name\"/></xsl:for-each>");
    for (int round = 0; round < 3; ++round)
        EXPECT_EQ(reportOf("v"), reportOfTemplate(sorted));
}

TEST_F(ReportMemory, OneGeneratorMayBeUsedByManyThreadsOneAfterTheOther) {
    for (int round = 0; round < 8; ++round) {
        std::thread([this, round] {
            const auto size = static_cast<std::size_t>(round) * 40000;
            EXPECT_EQ(expected(size), withText(size));
        }).join();
    }
}

TEST_F(ReportMemory, OneGeneratorMayBeUsedByManyThreadsAtOnce) {
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < 4; ++number) {
        threads.emplace_back([this, number] {
            for (int round = 0; round < 20; ++round)
                EXPECT_EQ(expected(number * 30000), withText(number * 30000));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

}  // namespace
}  // namespace rgen_test
