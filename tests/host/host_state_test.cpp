// Each of the 26 functions leaves the state of the host's process as it was, when it succeeds, when
// it fails and when it raises, and prints nothing. What that state is, support/host_state.h says.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>

#include "support/console_capture.h"
#include "support/conversion_fixture.h"
#include "support/host_state.h"
#include "support/report_fixture.h"

namespace rgen_test {
namespace {

// Makes one call and looks at the process in front of it and behind it. True when the call raised.
bool expectUnchanged(const char* name, const std::function<void()>& call) {
    const std::string before = hostState();
    std::string after;
    bool raised = false;
    const ConsoleText console = captureConsole([&] {
        const std::string inside = hostState();
        try {
            call();
        } catch (const std::exception&) {
            raised = true;
        }
        after = settledHostState(inside) == inside ? before : hostState();
    });
    EXPECT_EQ(before, after) << name;
    EXPECT_EQ("", console.out) << name;
    EXPECT_EQ("", console.err) << name;
    return raised;
}

class UnchangedHost : public ReportTest {
protected:
    RgenGuid known = defaultGuid();
    RgenGuid unknown = guidFromText("12345678-0000-0000-0000-000000000000");
};

TEST_F(UnchangedHost, ByHandles) {
    RgenReportGenerator* other = nullptr;
    expectUnchanged("new", [&] { other = rgen_newReportGenerator(); });
    expectUnchanged("set path", [&] { rgen_setDataDirPath(other, folder.path().c_str()); });
    expectUnchanged("set no path", [&] { rgen_setDataDirPath(other, nullptr); });
    expectUnchanged("set missing path",
                    [&] { rgen_setDataDirPath(other, folder.file("none").c_str()); });
    EXPECT_TRUE(expectUnchanged("set broken path", [&] { rgen_setDataDirPath(other, "\xFF"); }));
    expectUnchanged("translate",
                    [&] { rgen_setTranslateFunction(other, translateWithPrefix, nullptr); });
    expectUnchanged("cancel", [&] { rgen_cancel(other, &known); });
    expectUnchanged("describe", [&] { rgen_getStatusCodeDescription(other, RGEN_E_XSLT_APPLY); });
    expectUnchanged("free", [&] { rgen_freeReportGenerator(other); });
    expectUnchanged("free null", [&] { rgen_freeReportGenerator(nullptr); });
}

TEST_F(UnchangedHost, ByReports) {
    struct Row {
        const char* name;
        std::string text;
    };
    const Row rows[] = {
        {"good", textStylesheet(valueOf("v") + "<xsl:message>m</xsl:message>")},
        {"not compiled", textStylesheet("<xsl:value-of select=\"//[\"/>")},
        {"failing", textStylesheet("<xsl:value-of select=\"no-such-function()\"/>")},
        {"sorting by language",
         textStylesheet("<xsl:for-each select=\"//property\"><xsl:sort lang=\"de\"/>x"
                        "</xsl:for-each>")},
        {"in another encoding", stylesheet("method=\"text\" encoding=\"ISO-8859-1\"",
                                           "<xsl:template match=\"/\">\xC3\xA4</xsl:template>")}};
    for (const Row& row : rows) {
        putTemplate(row.text);
        for (std::uint64_t mode = RGEN_OUTPUT_FILE; mode <= RGEN_OUTPUT_BYTES + 1; ++mode) {
            if (mode == RGEN_OUTPUT_DELETE_ON_CLOSE)
                continue;  // A handle is what the host asked for.
            InputParams input;
            input.variants().addString("v", "\xFF &undefined;").addInt64("t", 0, RGEN_HINT_TIME);
            input.output(mode, folder.file("report"));
            Result result;
            RgenCInputParams* record = input.get();
            expectUnchanged(row.name,
                            [&] { rgen_generateReport(generator.get(), record, result.get()); });
        }
    }
}

TEST_F(UnchangedHost, ByConversions) {
    putTemplate(textStylesheet("page"), "pdf");
    InputParams input;
    input.variants().addString("v", "value");
    input.format("pdf").output(RGEN_OUTPUT_FILE, folder.file("report.pdf"));
    RgenCInputParams* record = input.get();
    Result result;
    RgenStatus status = RGEN_OK;
    expectUnchanged("converter that is not there",
                    [&] { status = rgen_generateReport(generator.get(), record, result.get()); });
    EXPECT_EQ(statusHex(RGEN_E_RUN_EXTERNAL), statusHex(status));
}

class UnchangedHostOfAConverter : public ConversionTest {};

TEST_F(UnchangedHostOfAConverter, ThatWritesItsFile) {
    converter.obey({{"copy", html, output}});
    RgenCInputParams* record = input.get();
    Result result;
    RgenStatus status = RGEN_E_UNKNOWN;
    expectUnchanged("conversion",
                    [&] { status = rgen_generateReport(generator.get(), record, result.get()); });
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(status));
    EXPECT_EQ(bytes, readFile(output));
}

TEST_F(UnchangedHost, ByDataAndFiles) {
    PairSet pairs;
    pairs.add("n", "&undefined;");
    const RgenCAnsiStringPairSet* pairRecord = pairs.get();
    InputParams input;
    input.variants().addString("n", "text").addBytes("b", {1, 2});
    RgenCInputParams* record = input.get();
    for (const RgenGuid* guid : {&known, &unknown}) {
        RgenCAnsiStringPairSet stored{};
        RgenReportGenerator* handle = generator.get();
        expectUnchanged("set pairs", [&] {
            rgen_setPersistentDataFromAnsiStringPairSet(handle, guid, pairRecord);
        });
        expectUnchanged("set values", [&] {
            rgen_setPersistentDataFromCVariantSet(handle, guid, &record->variants);
        });
        expectUnchanged("get", [&] { rgen_getPersistentData(handle, guid, &stored); });
        expectUnchanged("free pairs", [&] { rgen_freeRgenCAnsiStringSet(&stored); });
    }
    for (const char* name : {"dump.xml", "missing/dump.xml"}) {
        const std::string path = folder.file(name);
        RgenCVariantSet values{};
        expectUnchanged(
            "dump", [&] { rgen_dumpRawInputDataToFile(generator.get(), record, path.c_str()); });
        expectUnchanged("simulate", [&] {
            rgen_getSimulatedRawDataFromFile(generator.get(), path.c_str(), &values);
        });
        expectUnchanged("free values", [&] { rgen_freeRgenCVariantSet(&values); });
    }
}

TEST_F(UnchangedHost, ByRecords) {
    RgenAnsiString text{};
    RgenByteArray bytes{};
    RgenCAnsiStringPairSet pairs{};
    RgenCVariantSet values{};
    RgenCVariant value{};
    RgenCInputParams input{};
    const std::uint8_t byte = 7;
    const std::uint64_t tooMany = std::uint64_t{1} << 61U;
    expectUnchanged("text", [&] { rgen_createRgenAnsiString("text", &text); });
    expectUnchanged("free text", [&] { rgen_freeRgenAnsiString(&text); });
    expectUnchanged("bytes", [&] { rgen_createRgenByteArray(&byte, 1, &bytes); });
    expectUnchanged("free bytes", [&] { rgen_freeRgenByteArray(&bytes); });
    expectUnchanged("pairs", [&] { rgen_createRgenCAnsiStringpairSet(&pairs, 3); });
    expectUnchanged("free pairs", [&] { rgen_freeRgenCAnsiStringSet(&pairs); });
    expectUnchanged("values", [&] { rgen_createRgenCVariantSet(&values, 3); });
    expectUnchanged("free values", [&] { rgen_freeRgenCVariantSet(&values); });
    expectUnchanged("number", [&] { rgen_createRgenCVariantInt64("n", 1, 2, &value); });
    expectUnchanged("free number", [&] { rgen_freeRgenCVariant(&value); });
    expectUnchanged("handle", [&] { rgen_createRgenCVariantHandle("n", &value, 0, &value); });
    expectUnchanged("free handle", [&] { rgen_freeRgenCVariant(&value); });
    expectUnchanged("named text", [&] { rgen_createRgenCVariantString("n", "t", 0, &value); });
    expectUnchanged("free named text", [&] { rgen_freeRgenCVariant(&value); });
    expectUnchanged("named bytes",
                    [&] { rgen_createRgenCVariantByteArray("n", &byte, 1, 0, &value); });
    expectUnchanged("free named bytes", [&] { rgen_freeRgenCVariant(&value); });
    expectUnchanged("free input", [&] { rgen_freeRgenCInputParams(&input); });
    expectUnchanged("too many pairs", [&] { rgen_createRgenCAnsiStringpairSet(&pairs, tooMany); });
    expectUnchanged("too many values", [&] { rgen_createRgenCVariantSet(&values, tooMany); });
}

}  // namespace
}  // namespace rgen_test
