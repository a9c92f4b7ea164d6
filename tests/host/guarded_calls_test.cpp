// The calls for hosts that cannot catch exceptions: the same results, and a reason instead of an
// exception.
//
// SPDX-License-Identifier: MIT
#include "guarded_calls.h"

#include <gtest/gtest.h>

#include <cstring>

#include "support/report_fixture.h"

namespace rgen_test {
namespace {

const char* const brokenPath = "\xFF";

class GuardedCalls : public ReportTest {
protected:
    void expectRaised(RgenStatus status) {
        EXPECT_EQ(statusHex(RGEN_GUARDED_RAISED), statusHex(status));
        EXPECT_STRNE("", failure.reason);
    }

    RgenGuardedFailure failure = {};
    RgenGuid guid = defaultGuid();
    Generator fresh;
};

TEST_F(GuardedCalls, GiveTheResultsOfTheLibrary) {
    putTemplate(textStylesheet(valueOf("v") + "QT_TRANSLATE_NOOP(\"QObject\", \"a\")"));
    InputParams input;
    input.variants().addString("v", "value");
    Result result;
    char context[] = "[]";
    RgenReportGenerator* handle = fresh.get();
    std::strcpy(failure.reason, "old");
    EXPECT_EQ(RGEN_OK, rgenGuarded_setDataDirPath(handle, folder.path().c_str(), &failure));
    EXPECT_STREQ("", failure.reason);
    EXPECT_EQ(RGEN_OK,
              rgenGuarded_setTranslateFunction(handle, translateWithPrefix, context, &failure));
    EXPECT_EQ(RGEN_OK, rgenGuarded_cancel(handle, &guid, &failure));
    EXPECT_EQ(RGEN_OK, rgenGuarded_generateReport(handle, input.get(), result.get(), &failure));
    EXPECT_EQ("value[]a", result.bytes());
    EXPECT_STREQ("", failure.reason);
}

TEST_F(GuardedCalls, HandleDataAndFiles) {
    RgenReportGenerator* handle = generator.get();
    InputParams input;
    input.variants().addString("v", "value");
    RgenCInputParams* record = input.get();
    PairSet pairs;
    pairs.add("p", "text");
    EXPECT_EQ(RGEN_OK, rgenGuarded_setPersistentDataFromAnsiStringPairSet(handle, &guid,
                                                                          pairs.get(), nullptr));
    EXPECT_EQ("text", persistentData(generator, guid).pairs.at("p"));
    EXPECT_EQ(RGEN_OK, rgenGuarded_setPersistentDataFromCVariantSet(handle, &guid,
                                                                    &record->variants, nullptr));
    RgenCAnsiStringPairSet stored = {};
    EXPECT_EQ(RGEN_OK, rgenGuarded_getPersistentData(handle, &guid, &stored, nullptr));
    EXPECT_EQ((TextMap{{"v", "value"}}), toMap(stored));
    rgen_freeRgenCAnsiStringSet(&stored);
    const std::string path = folder.file("dump.xml");
    EXPECT_EQ(RGEN_OK, rgenGuarded_dumpRawInputDataToFile(handle, record, path.c_str(), nullptr));
    RgenCVariantSet values = {};
    EXPECT_EQ(0, rgenGuarded_getSimulatedRawDataFromFile(handle, path.c_str(), &values, nullptr));
}

TEST_F(GuardedCalls, GiveAReasonInsteadOfAnException) {
    RgenReportGenerator* handle = fresh.get();
    InputParams input;
    input.variants().addString("v", "value");
    RgenCInputParams* record = input.get();
    Result result;
    PairSet pairs;
    expectRaised(rgenGuarded_setDataDirPath(handle, brokenPath, &failure));
    // Without a data directory the file system throws.
    expectRaised(rgenGuarded_generateReport(handle, record, result.get(), &failure));
    expectRaised(rgenGuarded_getPersistentData(handle, &guid, nullptr, &failure));
    expectRaised(
        rgenGuarded_setPersistentDataFromAnsiStringPairSet(handle, &guid, pairs.get(), &failure));
    expectRaised(
        rgenGuarded_setPersistentDataFromCVariantSet(handle, &guid, &record->variants, &failure));
    expectRaised(rgenGuarded_dumpRawInputDataToFile(handle, record, brokenPath, &failure));
    failure = {};
    RgenCVariantSet values = {};
    EXPECT_EQ(0, rgenGuarded_getSimulatedRawDataFromFile(handle, brokenPath, &values, &failure));
    EXPECT_STREQ("bad conversion", failure.reason);
    EXPECT_EQ(statusHex(RGEN_GUARDED_RAISED),
              statusHex(rgenGuarded_setDataDirPath(handle, brokenPath, nullptr)));
}

TEST_F(GuardedCalls, DescribeTheirOwnStatusToo) {
    EXPECT_STREQ("The library raised an exception.",
                 rgenGuarded_getStatusCodeDescription(generator.get(), RGEN_GUARDED_RAISED));
    EXPECT_STREQ(rgen_getStatusCodeDescription(generator.get(), RGEN_E_XSLT_APPLY),
                 rgenGuarded_getStatusCodeDescription(generator.get(), RGEN_E_XSLT_APPLY));
    EXPECT_EQ("0xE0000001", statusHex(RGEN_GUARDED_RAISED));
}

}  // namespace
}  // namespace rgen_test
