// Each of the 26 functions leaves the state of the host's process as it was, when it succeeds, when
// it fails and when it throws, and prints nothing. The state is described in support/host_state.h.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <atomic>
#include <clocale>
#include <cstdio>
#include <functional>
#include <thread>
#include <vector>

#include "support/console_capture.h"
#include "support/conversion_fixture.h"
#include "support/host_state.h"
#include "support/report_fixture.h"

namespace rgen_test {
namespace {

// Compares the process before and after one call. True when the call threw an exception.
bool expectUnchanged(const char* name, const std::function<void()>& call) {
    const std::string before = hostState();
    std::string after;
    bool threw = false;
    const ConsoleText console = captureConsole([&] {
        const std::string inside = hostState();
        try {
            call();
        } catch (const std::exception&) {
            threw = true;
        }
        after = settledHostState(inside) == inside ? before : hostState();
    });
    EXPECT_EQ(before, after) << name;
    EXPECT_EQ("", console.out) << name;
    EXPECT_EQ("", console.err) << name;
    return threw;
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

// A C locale of the host that is not "C", with a decimal comma where the system has one.
class HostLocale {
public:
    HostLocale() : previous_(std::setlocale(LC_ALL, nullptr)) {
        for (const char* name : {"German_Germany.1252", "de_DE.UTF-8", "C.UTF-8"}) {
            if (std::setlocale(LC_ALL, name) != nullptr) return;
        }
        ADD_FAILURE() << "the system has no locale but C";
    }
    ~HostLocale() { std::setlocale(LC_ALL, previous_.c_str()); }
    HostLocale(const HostLocale&) = delete;
    HostLocale& operator=(const HostLocale&) = delete;

private:
    std::string previous_;
};

std::string numberHabits() {
    return std::setlocale(LC_ALL, nullptr) + std::string(" ") + std::localeconv()->decimal_point;
}

InputParams& addDates(InputParams& input) {
    for (int number = 0; number < 60; ++number) {
        for (const std::uint64_t hint : {RGEN_HINT_TIME, RGEN_HINT_DATE, RGEN_HINT_DATE_TIME}) {
            const std::string name = std::to_string(hint) + " " + std::to_string(number);
            input.variants().addInt64(name.c_str(), 1000000000 + number * 7919, hint);
        }
    }
    return input;
}

class UnchangedHostWithThreads : public ReportTest {
protected:
    // Dumps, reports and stores dates until every thread has done so for a while.
    void convert(int number) {
        constexpr int enoughRounds = 3;
        InputParams input;
        RgenCInputParams* record = addDates(input).get();
        const std::string path = folder.file("dump" + std::to_string(number));
        const RgenGuid guid = guidFromText(secondGuidText);
        for (int round = 1; !isWatched; ++round) {
            EXPECT_EQ(RGEN_OK, rgen_dumpRawInputDataToFile(generator.get(), record, path.c_str()));
            EXPECT_EQ(reportOf("180"), report(input));
            // One writer: two at once may interleave.
            if (number == 0) {
                EXPECT_EQ(RGEN_OK, rgen_setPersistentDataFromCVariantSet(generator.get(), &guid,
                                                                         &record->variants));
            }
            if (round == enoughRounds) ++satisfied;
        }
    }

    // The number of looks that saw something else than the host had set.
    int changesSeenBeside(int converters) {
        isWatched = false;
        satisfied = 0;
        const std::string before = numberHabits();
        std::vector<std::thread> threads;
        for (int number = 0; number < converters; ++number)
            threads.emplace_back([this, number] { convert(number); });
        int changes = 0;
        while (satisfied < converters)
            changes += numberHabits() != before ? 1 : 0;
        isWatched = true;
        for (std::thread& thread : threads)
            thread.join();
        return changes + (numberHabits() != before ? 1 : 0);
    }

    std::atomic<bool> isWatched = false;
    std::atomic<int> satisfied = 0;
};

TEST_F(UnchangedHostWithThreads, SeesNoOtherLocaleWhileTheyConvertDates) {
    putTemplate(textStylesheet("<xsl:value-of select=\"count(//property)\"/>"));
    const HostLocale locale;
    for (int converters = 1; converters <= 8; ++converters)
        EXPECT_EQ(0, changesSeenBeside(converters)) << converters;
}

}  // namespace
}  // namespace rgen_test
