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
    std::vector<NullCase> settingCases() {
        return {
            {"setDataDirPath", 1, [](auto* e) { return rgenh_setDataDirPath(nullptr, "x", e); }},
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
            {"cancel", 1, [](auto* e) { return rgenh_cancel(nullptr, nullptr, e); }}};
    }

    // The cases of a function of a generator and two more pointers.
    template <typename Call, typename Second, typename Third>
    std::vector<NullCase> casesOf(const char* label, Call call, Second second, Third third) {
        return {{label, 1, [=](auto* e) { return call(nullptr, second, third, e); }},
                {label, 2, [=](auto* e) { return call(host, nullptr, third, e); }},
                {label, 3, [=](auto* e) { return call(host, second, nullptr, e); }}};
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
    RgenhValue value = {};
    RgenCVariantSet set = {};
    RgenCAnsiStringPairSet pairs = {};
    RgenAnsiString text = {};
    RgenGuid other = {};
    char letters[RGENH_GUID_TEXT_SIZE] = {};
    std::int64_t seconds = 0;
};

TEST_F(NullArguments, OfGeneratorCallsAreNamed) {
    expectRefused(settingCases());
    const RgenCInputParams* const in = input.get();
    expectRefused(casesOf("generateReport", rgenh_generateReport, in, &record));
    expectRefused(
        casesOf("getSimulatedRawDataFromFile", rgenh_getSimulatedRawDataFromFile, "x", &set));
    expectRefused(casesOf("dumpRawInputDataToFile", rgenh_dumpRawInputDataToFile, in, "x"));
}

TEST_F(NullArguments, OfPersistentDataAreNamed) {
    std::vector<NullCase> reading =
        casesOf("getPersistentData", rgenh_getPersistentData, &guid, &pairs);
    reading.pop_back();  // The record may be null.
    expectRefused(reading);
    expectRefused(casesOf("getPersistentTexts", rgenh_getPersistentTexts, &guid, &pairs));
    expectRefused(casesOf("setPersistentDataFromAnsiStringPairSet",
                          rgenh_setPersistentDataFromAnsiStringPairSet, &guid, &pairs));
    expectRefused(casesOf("setPersistentDataFromCVariantSet",
                          rgenh_setPersistentDataFromCVariantSet, &guid, &set));
    const auto setOneValue = [](RgenReportGenerator* handle, const RgenGuid* type,
                                const RgenhValue* values, RgenhError* e) {
        return rgenh_setPersistentValues(handle, type, values, 1, e);
    };
    expectRefused(casesOf("setPersistentValues", setOneValue, &guid, &value));
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
