// Every pointer of every function is checked; the error names its position.
//
// SPDX-License-Identifier: MIT
#include <functional>

#include "host_library/host_library_fixture.h"

namespace rgen_test {
namespace {

struct NullCase {
    const char* label;
    int argument;
    std::function<std::int32_t(RgenhError*)> call;
};

class NullArguments : public HostLibraryTest {
protected:
    std::vector<NullCase> generatorCases() {
        const RgenCInputParams* const in = input.get();
        const char* const path = "x";
        return {
            {"setDataDirPath", 1, [=](auto* e) { return rgenh_setDataDirPath(nullptr, path, e); }},
            {"setDataDirPath", 2,
             [this](auto* e) { return rgenh_setDataDirPath(host, nullptr, e); }},
            {"setTranslateFunction", 1,
             [](auto* e) {
                 return rgenh_setTranslateFunction(nullptr, translateWithPrefix, nullptr, e);
             }},
            {"setTranslator", 1,
             [](auto* e) {
                 return rgenh_setTranslator(nullptr, translateWithPrefix, nullptr, 0, e);
             }},
            {"cancel", 1, [](auto* e) { return rgenh_cancel(nullptr, nullptr, e); }},
            {"generateReport", 1,
             [=](auto* e) { return rgenh_generateReport(nullptr, in, &record, e); }},
            {"generateReport", 2,
             [this](auto* e) { return rgenh_generateReport(host, nullptr, &record, e); }},
            {"generateReport", 3,
             [=](auto* e) { return rgenh_generateReport(host, in, nullptr, e); }},
            {"getSimulatedRawDataFromFile", 1,
             [=](auto* e) { return rgenh_getSimulatedRawDataFromFile(nullptr, path, &set, e); }},
            {"getSimulatedRawDataFromFile", 2,
             [this](auto* e) { return rgenh_getSimulatedRawDataFromFile(host, nullptr, &set, e); }},
            {"getSimulatedRawDataFromFile", 3,
             [=](auto* e) { return rgenh_getSimulatedRawDataFromFile(host, path, nullptr, e); }},
            {"dumpRawInputDataToFile", 1,
             [=](auto* e) { return rgenh_dumpRawInputDataToFile(nullptr, in, path, e); }},
            {"dumpRawInputDataToFile", 2,
             [=](auto* e) { return rgenh_dumpRawInputDataToFile(host, nullptr, path, e); }},
            {"dumpRawInputDataToFile", 3,
             [=](auto* e) { return rgenh_dumpRawInputDataToFile(host, in, nullptr, e); }}};
    }

    std::vector<NullCase> persistentCases() {
        return {
            {"getPersistentData", 1,
             [this](auto* e) { return rgenh_getPersistentData(nullptr, &guid, &pairs, e); }},
            {"getPersistentData", 2,
             [this](auto* e) { return rgenh_getPersistentData(host, nullptr, &pairs, e); }},
            {"getPersistentTexts", 1,
             [this](auto* e) { return rgenh_getPersistentTexts(nullptr, &guid, &pairs, e); }},
            {"getPersistentTexts", 2,
             [this](auto* e) { return rgenh_getPersistentTexts(host, nullptr, &pairs, e); }},
            {"getPersistentTexts", 3,
             [this](auto* e) { return rgenh_getPersistentTexts(host, &guid, nullptr, e); }},
            {"setPersistentDataFromAnsiStringPairSet", 1,
             [this](auto* e) {
                 return rgenh_setPersistentDataFromAnsiStringPairSet(nullptr, &guid, &pairs, e);
             }},
            {"setPersistentDataFromAnsiStringPairSet", 2,
             [this](auto* e) {
                 return rgenh_setPersistentDataFromAnsiStringPairSet(host, nullptr, &pairs, e);
             }},
            {"setPersistentDataFromAnsiStringPairSet", 3,
             [this](auto* e) {
                 return rgenh_setPersistentDataFromAnsiStringPairSet(host, &guid, nullptr, e);
             }},
            {"setPersistentDataFromCVariantSet", 1,
             [this](auto* e) {
                 return rgenh_setPersistentDataFromCVariantSet(nullptr, &guid, &set, e);
             }},
            {"setPersistentDataFromCVariantSet", 2,
             [this](auto* e) {
                 return rgenh_setPersistentDataFromCVariantSet(host, nullptr, &set, e);
             }},
            {"setPersistentDataFromCVariantSet", 3,
             [this](auto* e) {
                 return rgenh_setPersistentDataFromCVariantSet(host, &guid, nullptr, e);
             }},
            {"setPersistentValues", 1,
             [this](auto* e) { return rgenh_setPersistentValues(nullptr, &guid, nullptr, 0, e); }},
            {"setPersistentValues", 2,
             [this](auto* e) { return rgenh_setPersistentValues(host, nullptr, nullptr, 0, e); }},
            {"setPersistentValues", 3,
             [this](auto* e) { return rgenh_setPersistentValues(host, &guid, nullptr, 1, e); }}};
    }

    std::vector<NullCase> textCases() {
        return {
            {"escapeText", 1,
             [this](auto* e) { return rgenh_escapeText(nullptr, 1, 0, 0, &text, e); }},
            {"escapeText", 5, [](auto* e) { return rgenh_escapeText("a", 1, 0, 0, nullptr, e); }},
            {"escapeTranslation", 1,
             [this](auto* e) { return rgenh_escapeTranslation(nullptr, "a", 1, 0, &text, e); }},
            {"escapeTranslation", 2,
             [this](auto* e) { return rgenh_escapeTranslation("a", nullptr, 1, 0, &text, e); }},
            {"escapeTranslation", 5,
             [](auto* e) { return rgenh_escapeTranslation("a", "a", 1, 0, nullptr, e); }},
            {"unescapeText", 1,
             [this](auto* e) { return rgenh_unescapeText(nullptr, 1, &text, e); }},
            {"unescapeText", 3, [](auto* e) { return rgenh_unescapeText("a", 1, nullptr, e); }},
            {"isStorable", 1, [](auto* e) { return rgenh_isStorable(nullptr, 1, 0, e); }},
            {"parseGuid", 1, [this](auto* e) { return rgenh_parseGuid(nullptr, 1, &other, e); }},
            {"parseGuid", 3, [](auto* e) { return rgenh_parseGuid("a", 1, nullptr, e); }},
            {"formatGuid", 1, [this](auto* e) { return rgenh_formatGuid(nullptr, letters, e); }},
            {"formatGuid", 2, [this](auto* e) { return rgenh_formatGuid(&guid, nullptr, e); }},
            {"parseTime", 1, [this](auto* e) { return rgenh_parseTime(nullptr, 1, &seconds, e); }},
            {"parseTime", 3, [](auto* e) { return rgenh_parseTime("a", 1, nullptr, e); }},
            {"verifyPdf", 1, [](auto* e) { return rgenh_verifyPdf(nullptr, e); }},
            {"getVersions", 1, [](auto* e) { return rgenh_getVersions(nullptr, e); }},
            {"waitForJob", 1, [](auto* e) { return rgenh_waitForJob(nullptr, 0, e); }},
            {"cancelJob", 1, [](auto* e) { return rgenh_cancelJob(nullptr, e); }},
            {"takeJobResult", 1,
             [this](auto* e) { return rgenh_takeJobResult(nullptr, &record, e); }}};
    }

    void expectRefused(const std::vector<NullCase>& cases) {
        for (const NullCase& each : cases) {
            SCOPED_TRACE(std::string(each.label) + ", argument " + std::to_string(each.argument));
            EXPECT_EQ(statusHex(RGEN_E_BAD_PARAMETER), statusHex(each.call(&error)));
            EXPECT_EQ("7 " + std::to_string(each.argument), kindAndArgument());
            EXPECT_NE(std::string::npos, std::string(error.message).find("null"));
            EXPECT_EQ(statusHex(RGEN_E_BAD_PARAMETER), statusHex(each.call(nullptr)));
        }
    }

    RgenCVariant record = {};
    RgenCVariantSet set = {};
    RgenCAnsiStringPairSet pairs = {};
    RgenAnsiString text = {};
    RgenGuid other = {};
    char letters[RGENH_GUID_TEXT_SIZE] = {};
    std::int64_t seconds = 0;
};

TEST_F(NullArguments, OfGeneratorCallsAreNamed) {
    expectRefused(generatorCases());
}

TEST_F(NullArguments, OfPersistentDataAreNamed) {
    expectRefused(persistentCases());
}

TEST_F(NullArguments, OfTextsAndJobsAreNamed) {
    expectRefused(textCases());
}

TEST_F(NullArguments, OfFunctionsThatReturnObjectsAreNamed) {
    EXPECT_EQ(nullptr, rgenh_newRequest(nullptr, &error));
    EXPECT_EQ("7 1", kindAndArgument());
    EXPECT_EQ(nullptr, rgenh_startReport(host, nullptr, nullptr, nullptr, &error));
    EXPECT_EQ("7 2", kindAndArgument());
    const HostRequest request({});
    EXPECT_EQ(nullptr, rgenh_startReport(nullptr, request.get(), nullptr, nullptr, &error));
    EXPECT_EQ("7 1", kindAndArgument());
}

}  // namespace
}  // namespace rgen_test
