// Translate callbacks: escaped or plain, failing, changed and removed.
//
// SPDX-License-Identifier: MIT
#include "host_library/host_library_fixture.h"

namespace rgen_test {
namespace {

// Returns its context.
const char* RGEN_CALL translateTo(const char* /*text*/, void* context) {
    return static_cast<const char*>(context);
}

// Fails for "bad" and counts its calls.
const char* RGEN_CALL failForBad(const char* text, void* context) {
    ++*static_cast<int*>(context);
    return std::string(text) == "bad" ? nullptr : "translated";
}

std::string marked(const std::string& text) {
    return "QT_TRANSLATE_NOOP(\"QObject\", \"" + text + "\")";
}

class Translators : public HostLibraryTest {
protected:
    std::string translated(const std::string& translation, std::uint64_t form) {
        std::string copy = translation;
        EXPECT_EQ(RGEN_OK, rgenh_setTranslator(host, translateTo, copy.data(), form, &error));
        const std::string shown = bytesOf({rgenh_textValue("v", "x")});
        EXPECT_EQ(RGEN_OK, rgenh_setTranslator(host, nullptr, nullptr, form, nullptr));
        return shown;
    }
};

TEST_F(Translators, OfPlainTextsAreEscaped) {
    putTemplate(textStylesheet(marked("a") + " &lt; &amp;"));
    for (const std::string text : {"<b>", "x & y", "&lt;", "&nbsp;", "]]>", "it's", "&"}) {
        EXPECT_EQ(text + " < &", translated(text, RGENH_PLAIN));
    }
    EXPECT_EQ("a\xEF\xBF\xBD < &", translated("a\x01", RGENH_PLAIN));
}

TEST_F(Translators, OfMarkupBecomePartsOfTheTemplate) {
    putTemplate(textStylesheet(marked("a") + " &lt; &amp;"));
    EXPECT_EQ("<\xE2\x82\xAC < &", translated("&lt;&#8364;", RGENH_MARKUP));
    EXPECT_EQ("x < &", translated("<xsl:value-of select=\"'x'\"/>", RGENH_MARKUP));
}

TEST_F(Translators, OfMarkupWithAnUnknownReferenceFailTheReport) {
    putTemplate(textStylesheet(marked("a") + " &lt;"));
    EXPECT_EQ("a translation cannot be used: the text contains the unknown reference &nbsp;",
              translated("x&nbsp;y", RGENH_MARKUP));
}

TEST_F(Translators, ThatReturnNullLeaveTheRestUntranslatedAndFailTheReport) {
    putTemplate(textStylesheet(marked("good") + marked("bad") + marked("good")));
    int calls = 0;
    ASSERT_EQ(RGEN_OK, rgenh_setTranslateFunction(host, failForBad, &calls, &error));
    InputParams request;
    request.variants().addString("v", "x");
    request.output(RGEN_OUTPUT_FILE, folder.file("o.html"));
    Result result;
    EXPECT_EQ(RGEN_E_UNKNOWN, rgenh_generateReport(host, request.get(), result.get(), &error));
    EXPECT_EQ(RGENH_ERROR_CALLBACK, error.kind);
    EXPECT_EQ(2, calls);
    EXPECT_EQ("translatedbadgood", readFile(folder.file("o.html")));
    request.output(RGEN_OUTPUT_BYTES);
    EXPECT_EQ(RGEN_E_UNKNOWN, rgenh_generateReport(host, request.get(), result.get(), &error));
    EXPECT_EQ(std::uint64_t{RGEN_TYPE_EMPTY}, result.record().type);
}

TEST_F(Translators, ThatFailDoNotHideAnotherFailure) {
    putTemplate(textStylesheet(marked("bad") + "<xsl:message terminate=\"yes\"/>"));
    int calls = 0;
    ASSERT_EQ(RGEN_OK, rgenh_setTranslateFunction(host, failForBad, &calls, &error));
    EXPECT_NE("the translate callback failed", bytesOf({rgenh_textValue("v", "x")}));
    EXPECT_EQ(RGEN_E_XSLT_APPLY, error.status);
    EXPECT_EQ(RGENH_ERROR_STATUS, error.kind);
    EXPECT_EQ(1, calls);
}

TEST_F(Translators, ThatFailDoNotFailTheNextReport) {
    putTemplate(textStylesheet(marked("bad")));
    int calls = 0;
    ASSERT_EQ(RGEN_OK, rgenh_setTranslateFunction(host, failForBad, &calls, &error));
    EXPECT_EQ("the translate callback failed", bytesOf({rgenh_textValue("v", "x")}));
    putTemplate(textStylesheet(marked("good")));
    EXPECT_EQ("translated", bytesOf({rgenh_textValue("v", "x")}));
}

TEST_F(Translators, ThatFailInAPlainCallAreIgnored) {
    putTemplate(textStylesheet(marked("bad")));
    int calls = 0;
    ASSERT_EQ(RGEN_OK, rgenh_setTranslateFunction(host, failForBad, &calls, &error));
    InputParams request;
    request.variants().addString("v", "x");
    Result result;
    EXPECT_EQ(RGEN_OK, rgen_generateReport(host, request.get(), result.get()));
    EXPECT_EQ("bad", result.bytes());
    char unusable[] = "x&nbsp;y";
    ASSERT_EQ(RGEN_OK, rgenh_setTranslator(host, translateTo, unusable, RGENH_MARKUP, &error));
    Result second;
    EXPECT_EQ(RGEN_OK, rgen_generateReport(host, request.get(), second.get()));
    EXPECT_EQ("bad", second.bytes());
}

TEST_F(Translators, ThatReturnTheMarkedTextLeaveItAsItIs) {
    putTemplate(textStylesheet(marked("a &lt; b")));
    EXPECT_EQ("a < b", translated("a &lt; b", RGENH_PLAIN));
}

TEST_F(Translators, AreReplacedAndRemoved) {
    putTemplate(textStylesheet(marked("a")));
    char first[] = "1";
    char second[] = "2";
    const std::vector<RgenhValue> values = {rgenh_textValue("v", "x")};
    ASSERT_EQ(RGEN_OK, rgenh_setTranslateFunction(host, translateWithPrefix, first, &error));
    EXPECT_EQ("1a", bytesOf(values));
    ASSERT_EQ(RGEN_OK, rgenh_setTranslateFunction(host, translateWithPrefix, second, &error));
    EXPECT_EQ("2a", bytesOf(values));
    ASSERT_EQ(RGEN_OK, rgenh_setTranslateFunction(host, nullptr, nullptr, &error));
    EXPECT_EQ("a", bytesOf(values));
}

TEST_F(Translators, OfAnUnknownFormAreRefused) {
    EXPECT_EQ(RGEN_E_BAD_PARAMETER, rgenh_setTranslator(host, translateTo, nullptr, 2, &error));
    EXPECT_EQ("7 4", kindAndArgument());
}

TEST_F(Translators, OfManyThreadsDoNotMixTheirTexts) {
    putTemplate(textStylesheet(marked("a") + marked("b")));
    char prefix[] = "p";
    ASSERT_EQ(RGEN_OK, rgenh_setTranslateFunction(host, translateWithPrefix, prefix, &error));
    const HostRequest request({rgenh_textValue("v", "x")});
    std::vector<RgenhJob*> jobs;
    for (int i = 0; i < 16; ++i)
        jobs.push_back(rgenh_startReport(host, request.get(), nullptr, nullptr, &error));
    for (RgenhJob* job : jobs) {
        Result result;
        EXPECT_EQ(RGEN_OK, rgenh_takeJobResult(job, result.get(), &error)) << error.message;
        EXPECT_EQ("papb", result.bytes());
        rgenh_freeJob(job);
    }
}

}  // namespace
}  // namespace rgen_test
