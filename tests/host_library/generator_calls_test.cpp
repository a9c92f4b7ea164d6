// The guarded calls return what the calls of rgen.h return.
//
// SPDX-License-Identifier: MIT
#include "host_library/host_library_fixture.h"

namespace rgen_test {
namespace {

using GuardedCalls = HostLibraryTest;

TEST_F(GuardedCalls, GenerateTheSameBytes) {
    putTemplate(textStylesheet(valueOf("a") + valueOf("b")));
    InputParams same;
    same.variants().addInt64("a", 4096, RGEN_HINT_ADDRESS).addString("b", " &amp; <");
    const Report expected = report(same);
    Result result;
    EXPECT_EQ(RGEN_OK, rgenh_generateReport(host, same.get(), result.get(), &error));
    EXPECT_EQ(expected.bytes, result.bytes());
    EXPECT_EQ("Return stub name", toText(result.record().name));
    EXPECT_EQ(std::uint64_t{RGEN_HINT_DUMP}, result.record().hint);
}

TEST_F(GuardedCalls, TakeAHandleOfTheFirstLibrary) {
    putTemplate(textStylesheet("plain"));
    InputParams request;
    request.variants().addString("v", "x");
    Result result;
    EXPECT_EQ(RGEN_OK, rgenh_generateReport(generator.get(), request.get(), result.get(), &error));
    EXPECT_EQ("plain", result.bytes());
    EXPECT_EQ(RGEN_E_BAD_PARAMETER,
              rgenh_setTranslateFunction(generator.get(), translateWithPrefix, nullptr, &error));
    EXPECT_EQ("7 1", kindAndArgument());
    const HostRequest forJob({rgenh_textValue("v", "x")});
    EXPECT_EQ(nullptr, rgenh_startReport(generator.get(), forJob.get(), nullptr, nullptr, &error));
    EXPECT_EQ("7 1", kindAndArgument());
}

TEST_F(GuardedCalls, SetUpAndFreeAHandleOfTheFirstLibrary) {
    putTemplate(textStylesheet("plain"));
    RgenReportGenerator* const plain = rgen_newReportGenerator();
    EXPECT_EQ(RGEN_OK, rgenh_setDataDirPath(plain, folder.path().c_str(), &error));
    InputParams request;
    request.variants().addString("v", "x");
    Result result;
    EXPECT_EQ(RGEN_OK, rgenh_generateReport(plain, request.get(), result.get(), &error));
    EXPECT_EQ("plain", result.bytes());
    EXPECT_EQ(RGEN_OK, rgenh_freeReportGenerator(plain, &error));
}

TEST_F(GuardedCalls, LeaveTheResultOfModeZeroAndOfFailuresUnchanged) {
    putTemplate(textStylesheet("file"));
    InputParams request;
    request.variants().addString("v", "x");
    request.output(RGEN_OUTPUT_FILE, folder.file("o.html"));
    RgenCVariant marked = {};
    marked.hint = 77;
    EXPECT_EQ(RGEN_OK, rgenh_generateReport(host, request.get(), &marked, &error));
    EXPECT_EQ("file", readFile(folder.file("o.html")));
    EXPECT_EQ(77U, marked.hint);
    request.format("txt");
    EXPECT_EQ(RGEN_E_TEMPLATE_NOT_FOUND,
              rgenh_generateReport(host, request.get(), &marked, &error));
    EXPECT_EQ(77U, marked.hint);
    EXPECT_EQ(folder.file("o.html"), error.path);
}

TEST_F(GuardedCalls, ReturnAnOpenFile) {
    putTemplate(textStylesheet("open"));
    InputParams request;
    request.variants().addString("v", "x");
    request.output(RGEN_OUTPUT_DELETE_ON_CLOSE, folder.file("open.html"));
    Result result;
    ASSERT_EQ(RGEN_OK, rgenh_generateReport(host, request.get(), result.get(), &error));
    ASSERT_EQ(std::uint64_t{RGEN_TYPE_HANDLE}, result.record().type);
    EXPECT_TRUE(closesOnBytes(result.record().value.handleValue, "open"));
    EXPECT_FALSE(exists(folder.file("open.html")));
}

TEST_F(GuardedCalls, ReturnTheStatusesOfTheLibrary) {
    Result result;
    InputParams request;
    request.variants().addString("v", "x");
    const auto statusOf = [&] {
        return statusHex(rgenh_generateReport(host, request.get(), result.get(), &error));
    };
    EXPECT_EQ(statusHex(RGEN_E_TEMPLATE_NOT_FOUND), statusOf());
    putTemplate("<no stylesheet");
    EXPECT_EQ(statusHex(RGEN_E_XSLT_PARSE), statusOf());
    putTemplate(textStylesheet("<xsl:message terminate=\"yes\"/>"));
    EXPECT_EQ(statusHex(RGEN_E_XSLT_APPLY), statusOf());
    putTemplate(textStylesheet("x"));
    request.output(3);
    EXPECT_EQ(statusHex(RGEN_E_UNKNOWN_OUTPUT_MODE), statusOf());
    request.guid(guidFromText("ffffffff-4e5f-6071-8293-a4b5c6d7e8f9"));
    EXPECT_EQ(statusHex(RGEN_E_GUID_NOT_IN_CONFIG), statusOf());
    EXPECT_EQ(RGENH_ERROR_STATUS, error.kind);
}

TEST_F(GuardedCalls, StoreAndReadPersistentData) {
    PairSet pairs;
    pairs.add("p", "a &amp;amp; b");
    EXPECT_EQ(RGEN_OK,
              rgenh_setPersistentDataFromAnsiStringPairSet(host, &guid, pairs.get(), &error));
    RgenCAnsiStringPairSet stored = {};
    EXPECT_EQ(RGEN_OK, rgenh_getPersistentData(host, &guid, &stored, &error));
    EXPECT_EQ((TextMap{{"p", "a &amp; b"}}), toMap(stored));
    rgen_freeRgenCAnsiStringSet(&stored);
    EXPECT_EQ(RGEN_OK, rgenh_getPersistentData(host, &guid, nullptr, &error));
    VariantSet values;
    values.addInt64("n", 12);
    EXPECT_EQ(RGEN_OK, rgenh_setPersistentDataFromCVariantSet(host, &guid, values.get(), &error));
    EXPECT_EQ((TextMap{{"n", "12"}}), persistentData(generator, guid).pairs);
    EXPECT_EQ(RGEN_OK,
              rgenh_setPersistentDataFromAnsiStringPairSet(host, &guid, PairSet().get(), &error));
    EXPECT_EQ(RGEN_E_NO_PERSIST_VALUES, rgenh_getPersistentData(host, &guid, &stored, &error));
    EXPECT_EQ(RGENH_ERROR_STATUS, error.kind);
}

TEST_F(GuardedCalls, DumpAndSimulate) {
    const std::string path = folder.file("dump.xml");
    InputParams request;
    request.variants().addString("v", "value");
    EXPECT_EQ(RGEN_OK, rgenh_dumpRawInputDataToFile(host, request.get(), path.c_str(), &error));
    EXPECT_NE(std::string::npos, readFile(path).find("value"));
    const RgenCInputParams empty = {};
    EXPECT_EQ(RGEN_OK, rgenh_dumpRawInputDataToFile(host, &empty, path.c_str(), &error));
    EXPECT_EQ(std::string::npos, readFile(path).find("value"));
    RgenCVariantSet values = {};
    EXPECT_EQ(0, rgenh_getSimulatedRawDataFromFile(host, path.c_str(), &values, &error));
    writeFile(path,
              "<data><properties><property name=\"n\" type=\"int64\" hint=\"Size\">7</property>"
              "</properties></data>");
    EXPECT_EQ(1, rgenh_getSimulatedRawDataFromFile(host, path.c_str(), &values, &error));
    ASSERT_EQ(1U, values.count);
    EXPECT_EQ(7, values.items[0].value.int64Value);
    rgen_freeRgenCVariantSet(&values);
}

TEST_F(GuardedCalls, NameTheFileOfADumpThatFails) {
    InputParams request;
    request.variants().addString("v", "value");
    const std::string path = folder.file("missing/dump.xml");
    EXPECT_GT(0, rgenh_dumpRawInputDataToFile(host, request.get(), path.c_str(), &error));
    EXPECT_EQ(RGENH_ERROR_STATUS, error.kind);
    EXPECT_EQ(path, error.path);
}

TEST_F(GuardedCalls, CancelARunningReport) {
    converter.obey(waiting({}));
    Result result;
    RgenStatus status = RGEN_OK;
    std::thread thread(
        [&] { status = rgenh_generateReport(host, input.get(), result.get(), &error); });
    ASSERT_TRUE(waitForStarted());
    EXPECT_EQ(RGEN_OK, rgenh_cancel(host, &guid, nullptr));
    thread.join();
    release();
    EXPECT_EQ(statusHex(RGEN_CANCELED), statusHex(status));
    EXPECT_EQ(RGEN_OK, rgenh_cancel(host, nullptr, nullptr));
}

TEST_F(GuardedCalls, ThatFailToSetADataDirectoryKeepThePreviousOne) {
    putTemplate(textStylesheet("still the old folder"));
    ASSERT_EQ(RGEN_E_DIR_NOT_FOUND,
              rgenh_setDataDirPath(host, folder.file("missing").c_str(), &error));
    ASSERT_EQ(RGEN_E_UNKNOWN, rgenh_setDataDirPath(host, "\xFF", &error));
    const HostRequest request({rgenh_textValue("v", "x")});
    EXPECT_EQ("still the old folder", bytesOf(request.get()));
    RgenhJob* const job = rgenh_startReport(host, request.get(), nullptr, nullptr, &error);
    Result result;
    EXPECT_EQ(RGEN_OK, rgenh_takeJobResult(job, result.get(), &error)) << error.message;
    EXPECT_EQ("still the old folder", result.bytes());
    rgenh_freeJob(job);
}

TEST_F(GuardedCalls, FreeingNullDoesNothing) {
    EXPECT_EQ(RGEN_OK, rgenh_freeReportGenerator(nullptr, &error));
    rgenh_freeRequest(nullptr);
    rgenh_freeJob(nullptr);
    EXPECT_EQ(nullptr, rgenh_getRequestInput(nullptr));
}

}  // namespace
}  // namespace rgen_test
