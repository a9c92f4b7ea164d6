// The marked texts of templates and the callback that translates them.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "support/report_fixture.h"

namespace rgen_test {
namespace {

// What a callback returns, and the texts that it was called with.
struct Translator {
    std::string answer;
    std::vector<std::string> asked;
    std::thread::id thread;
    bool givesArgument = false;
};

const char* RGEN_CALL translate(const char* text, void* context) {
    auto* translator = static_cast<Translator*>(context);
    translator->asked.emplace_back(text);
    translator->thread = std::this_thread::get_id();
    return translator->givesArgument ? text : translator->answer.c_str();
}

// Gives the text and a number that rises with every call, from one buffer that each call reuses.
const char* RGEN_CALL number(const char* text, void* context) {
    auto* buffer = static_cast<std::string*>(context);
    const std::size_t blank = buffer->find(' ');
    const int calls = blank == std::string::npos ? 1 : std::stoi(buffer->substr(blank)) + 1;
    *buffer = std::string(text) + " " + std::to_string(calls);
    return buffer->c_str();
}

std::string marker(const std::string& text) {
    return "QT_TRANSLATE_NOOP(\"QObject\", \"" + text + "\")";
}

class Translation : public ReportTest {
protected:
    Translation() { translator_.answer = "T"; }

    void useTranslator() { rgen_setTranslateFunction(generator.get(), translate, &translator_); }

    // The report of a template with that text in its root template, "[" and "]" around it.
    Report reportOfText(const std::string& text) {
        return reportOfTemplate(textStylesheet("[" + text + "]"));
    }

    Translator translator_;
};

TEST_F(Translation, WithoutACallbackAMarkerBecomesItsText) {
    EXPECT_EQ(reportOf("[Size of disk]"), reportOfText(marker("Size of disk")));
}

TEST_F(Translation, TheCallbackGetsTheTextAndTheContext) {
    useTranslator();
    EXPECT_EQ(reportOf("[a T z]"), reportOfText("a " + marker("Size of disk") + " z"));
    EXPECT_EQ(std::vector<std::string>{"Size of disk"}, translator_.asked);
}

TEST_F(Translation, ANullContextIsPassedOn) {
    rgen_setTranslateFunction(
        generator.get(),
        [](const char*, void* context) { return context == nullptr ? "null" : "not null"; },
        nullptr);
    EXPECT_EQ(reportOf("[null]"), reportOfText(marker("a")));
}

TEST_F(Translation, TheCallbackRunsOnTheGeneratingThread) {
    useTranslator();
    std::thread generating([this] { reportOfText(marker("a")); });
    const std::thread::id expected = generating.get_id();
    generating.join();
    EXPECT_EQ(expected, translator_.thread);
}

TEST_F(Translation, ANullCallbackKeepsThePreviousOneAndItsContext) {
    useTranslator();
    int other = 0;
    rgen_setTranslateFunction(generator.get(), nullptr, &other);
    EXPECT_EQ(reportOf("[T]"), reportOfText(marker("a")));
}

TEST_F(Translation, ANullGeneratorIsIgnored) {
    rgen_setTranslateFunction(nullptr, translate, &translator_);
    EXPECT_EQ(reportOf("[a]"), reportOfText(marker("a")));
}

TEST_F(Translation, GeneratorsHaveCallbacksOfTheirOwn) {
    useTranslator();
    const Generator other(folder.path());
    putTemplate(textStylesheet(marker("a")));
    InputParams input;
    input.variants().addString("v", "1");
    Result result;
    ASSERT_EQ(RGEN_OK, rgen_generateReport(other.get(), input.get(), result.get()));
    EXPECT_EQ("a", result.bytes());
}

TEST_F(Translation, ANewCallbackServesTheNextReport) {
    std::string first = "1:";
    std::string second = "2:";
    rgen_setTranslateFunction(generator.get(), translateWithPrefix, &first[0]);
    EXPECT_EQ(reportOf("[1:a]"), reportOfText(marker("a")));
    rgen_setTranslateFunction(generator.get(), translateWithPrefix, &second[0]);
    EXPECT_EQ(reportOf("[2:a]"), reportOfText(marker("a")));
}

TEST_F(Translation, EveryReportAsksAnew) {
    useTranslator();
    reportOfText(marker("a"));
    reportOfText(marker("a"));
    EXPECT_EQ(2U, translator_.asked.size());
}

TEST_F(Translation, TheCallbackIsNotAskedWhenNoTemplateIsReached) {
    useTranslator();
    putTemplate(textStylesheet(marker("a")));
    InputParams input;
    EXPECT_EQ(failure(RGEN_E_EMPTY_INPUT), report(input));
    putTemplate(textStylesheet(marker("a")), "odd");
    input.format("odd");
    input.variants().addString("v", "1");
    EXPECT_EQ(failure(RGEN_E_UNKNOWN_FORMAT), report(input));
    EXPECT_TRUE(translator_.asked.empty());
}

TEST_F(Translation, SeveralMarkersAreAskedForInTextOrderWithACallEach) {
    std::string buffer;
    rgen_setTranslateFunction(generator.get(), number, &buffer);
    EXPECT_EQ(reportOf("[b 1a 2,b 3]"),
              reportOfText(marker("b") + marker("a") + "," + marker("b")));
}

struct MarkerRow {
    const char* label;
    std::string given;
    std::string asked;
};

TEST_F(Translation, TheFormsOfAMarkerThatAreFound) {
    const std::string name = "QT_TRANSLATE_NOOP";
    const std::vector<MarkerRow> rows = {
        {"empty text", marker(""), ""},
        {"blanks only", marker("   "), "   "},
        {"outer blanks stay", marker("  a b \t"), "  a b \t"},
        {"line break in the text", marker("a\nb"), "a\nb"},
        {"parentheses in the text", marker("a(b)c"), "a(b)c"},
        {"a backslash before the end", marker("a\\"), "a\\"},
        {"UTF-8", marker("\xD0\xB6 \xE6\xBC\xA2"), "\xD0\xB6 \xE6\xBC\xA2"},
        {"blanks before the parenthesis", name + " \t\n(\"QObject\", \"a\")", "a"},
        {"blanks after the parenthesis", name + "( \r\n\"QObject\", \"a\")", "a"},
        {"blanks before the comma", name + "(\"QObject\" \t, \"a\")", "a"},
        {"vertical tab and form feed", name + "\v(\f\"QObject\"\v, \"a\")", "a"}};
    useTranslator();
    for (const MarkerRow& row : rows) {
        SCOPED_TRACE(row.label);
        translator_.asked.clear();
        EXPECT_EQ(reportOf("[T]"), reportOfText(row.given));
        EXPECT_EQ(std::vector<std::string>{row.asked}, translator_.asked);
    }
}

TEST_F(Translation, NearMissesStayAsTheyAre) {
    const std::string name = "QT_TRANSLATE_NOOP";
    const std::vector<std::string> texts = {name + "(\"QObject\",\"a\")",
                                            name + "(\"QObject\",  \"a\")",
                                            name + "(\"QObject\",\t\"a\")",
                                            name + "(\"QObject\",\n\"a\")",
                                            name + "(\"QObject\", \"a\" )",
                                            name + "(\"QObject\", \"a\"",
                                            name + "(\"QObject\", \"a)",
                                            name + "(\"QObject\", a)",
                                            name + "(\"QObject\", 'a')",
                                            name + "(\"QObject\", \"a\\\"b\")",
                                            name + "(\"QObject\", \"a\", \"b\")",
                                            name + "(\"QObject\")",
                                            name + "(\"QObject \", \"a\")",
                                            name + "(\" QObject\", \"a\")",
                                            name + "(\"qobject\", \"a\")",
                                            name + "(\"Other\", \"a\")",
                                            name + "(\"\", \"a\")",
                                            name + "(QObject, \"a\")",
                                            name + "(, \"a\")",
                                            name + "\"QObject\", \"a\")",
                                            name + "\xC2\xA0(\"QObject\", \"a\")",
                                            name + "_(\"QObject\", \"a\")",
                                            "qt_translate_noop(\"QObject\", \"a\")",
                                            "QT_TRANSLATE_NOO(\"QObject\", \"a\")",
                                            "QT_TRANSLATE(\"QObject\", \"a\")"};
    useTranslator();
    for (const std::string& text : texts) {
        SCOPED_TRACE(text);
        EXPECT_EQ(reportOf("[" + text + "]"), reportOfText(text));
    }
    EXPECT_TRUE(translator_.asked.empty());
}

TEST_F(Translation, AMarkerIsFoundBehindANearMiss) {
    useTranslator();
    const std::string start = "QT_TRANSLATE_NOOP";
    EXPECT_EQ(reportOf("[" + start + "T]"), reportOfText(start + marker("a")));
    EXPECT_EQ(reportOf("[" + start + "(T]"), reportOfText(start + "(" + marker("a")));
    EXPECT_EQ(reportOf("[" + start + "(\"QObject\", T]"),
              reportOfText(start + "(\"QObject\", " + marker("a")));
    EXPECT_EQ(reportOf("[xT]"), reportOfText("x" + marker("a")));
    EXPECT_EQ(reportOf("[T\")]"), reportOfText(marker("a") + "\")"));
}

TEST_F(Translation, AnUnclosedTextReachesNoFurtherThanItsQuote) {
    useTranslator();
    const std::string unclosed = "QT_TRANSLATE_NOOP(\"QObject\", \"open ";
    EXPECT_EQ(reportOf("[" + unclosed + "T]"), reportOfText(unclosed + marker("a")));
    EXPECT_EQ(std::vector<std::string>{"a"}, translator_.asked);
}

TEST_F(Translation, MarkersAreFoundAnywhereInTheTemplate) {
    useTranslator();
    translator_.answer = "/data/properties/property";
    EXPECT_EQ(
        reportOf("value"),
        reportOfTemplate(stylesheet("method=\"text\"", "<!-- " + marker("comment") +
                                                           " --><xsl:template match=\"/\">"
                                                           "<xsl:value-of select='" +
                                                           marker("path") + "'/></xsl:template>")));
    EXPECT_EQ((std::vector<std::string>{"comment", "path"}), translator_.asked);
}

TEST_F(Translation, MarkersBehindAZeroByteAreAskedFor) {
    useTranslator();
    EXPECT_EQ(reportOf("[T]"), reportOfTemplate(textStylesheet("[" + marker("a") + "]") +
                                                std::string(1, '\0') + marker("b")));
    EXPECT_EQ((std::vector<std::string>{"a", "b"}), translator_.asked);
}

TEST_F(Translation, AZeroByteInsideAMarkerEndsTheTextForTheCallback) {
    useTranslator();
    EXPECT_EQ(reportOf("[T]"), reportOfText(marker(std::string("a\0b", 3))));
    EXPECT_EQ(std::vector<std::string>{"a"}, translator_.asked);
}

TEST_F(Translation, ATranslationIsNotTranslatedAgain) {
    useTranslator();
    translator_.answer = marker("again");
    EXPECT_EQ(reportOf("[" + marker("again") + marker("again") + "]"),
              reportOfText(marker("a") + marker("b")));
    EXPECT_EQ((std::vector<std::string>{"a", "b"}), translator_.asked);
}

TEST_F(Translation, ATranslationAndTheTextBehindItMakeNoMarker) {
    useTranslator();
    translator_.answer = "QT_TRANSLATE_NOOP(";
    EXPECT_EQ(reportOf("[QT_TRANSLATE_NOOP(\"QObject\", \"b\")]"),
              reportOfText(marker("a") + "\"QObject\", \"b\")"));
    EXPECT_EQ(std::vector<std::string>{"a"}, translator_.asked);
}

TEST_F(Translation, ATranslationIsPartOfTheTemplatesMarkup) {
    useTranslator();
    translator_.answer = "<b>bold</b> &amp; ";
    EXPECT_EQ(
        reportOf("<p><b>bold</b> &amp; </p>\n"),
        reportOfTemplate(stylesheet("method=\"html\"", "<xsl:template match=\"/\"><p>" +
                                                           marker("a") + "</p></xsl:template>")));
    translator_.answer = valueOf("v");
    EXPECT_EQ(reportOf("[value]"), reportOfText(marker("a")));
}

TEST_F(Translation, ATranslationCanBeEmpty) {
    useTranslator();
    translator_.answer = "";
    EXPECT_EQ(reportOf("[az]"), reportOfText("a" + marker("b") + "z"));
}

TEST_F(Translation, ATranslationMayBeTheArgumentItself) {
    useTranslator();
    translator_.givesArgument = true;
    EXPECT_EQ(reportOf("[ab]"), reportOfText(marker("a") + marker("b")));
}

TEST_F(Translation, ATranslationThatIsNotUtf8IsRepaired) {
    useTranslator();
    translator_.answer = "a\xFFz";
    EXPECT_EQ(reportOf("[a\xEF\xBF\xBDz]"), reportOfText(marker("b")));
}

TEST_F(Translation, ADamagedTranslationTakesTheReferencesAfterIt) {
    useTranslator();
    const std::string rest = "|&lt; &amp; &gt;";
    for (const char* damaged : {"]]>", "\a", "\b", "\v", "\f", "\xFF", "\xEF\xBF\xBE", "&foo;",
                                "& ", "&nbsp;", "&#1;", "&#xD800;"}) {
        SCOPED_TRACE(damaged);
        translator_.answer = damaged;
        const Report report = reportOfText(marker("a") + rest);
        EXPECT_EQ(statusHex(RGEN_OK), report.status);
        EXPECT_EQ("|  ]", report.bytes.substr(report.bytes.find('|')));
    }
    for (const char* harmless : {"]]&gt;", "a > b", "\t\r\n", "&#65;", "\x7F"}) {
        SCOPED_TRACE(harmless);
        translator_.answer = harmless;
        const Report report = reportOfText(marker("a") + rest);
        EXPECT_EQ("|< & >]", report.bytes.substr(report.bytes.find('|')));
    }
}

TEST_F(Translation, ATranslationOfTenMegabytesIsTaken) {
    useTranslator();
    translator_.answer.clear();
    for (int part = 0; part < 10; ++part) {
        translator_.answer += "<x>" + std::string(1000000, 't') + "</x>";
    }
    const Report result = reportOfText(marker("a"));
    EXPECT_EQ(statusHex(RGEN_OK), result.status);
    EXPECT_EQ(10000002U, result.bytes.size());
}

TEST_F(Translation, ATextOfAMillionLettersIsTranslated) {
    useTranslator();
    const std::string longText(1000000, 'm');
    EXPECT_EQ(reportOf("[T]"), reportOfText(marker(longText)));
    EXPECT_EQ(std::vector<std::string>{longText}, translator_.asked);
}

TEST_F(Translation, AMillionBlanksAndAnUnclosedTextTakeLinearTime) {
    useTranslator();
    const std::string blanks(1000000, ' ');
    EXPECT_EQ(reportOf("[T]"), reportOfText(marker("a" + blanks)));
    const std::string open = "QT_TRANSLATE_NOOP(\"QObject\", \"" + blanks;
    EXPECT_EQ(reportOf("[" + open + "]"), reportOfText(open));
    const std::string beforeParenthesis = "QT_TRANSLATE_NOOP" + blanks + "x";
    EXPECT_EQ(reportOf("[" + beforeParenthesis + "]"), reportOfText(beforeParenthesis));
}

TEST_F(Translation, AHundredThousandMarkersAreTranslated) {
    useTranslator();
    std::string text;
    for (int index = 0; index < 100000; ++index)
        text += marker("m");
    EXPECT_EQ(reportOf("[" + std::string(100000, 'T') + "]"), reportOfText(text));
    EXPECT_EQ(100000U, translator_.asked.size());
}

TEST_F(Translation, AHundredThousandUnclosedMarkersTakeLinearTime) {
    useTranslator();
    std::string text;
    for (int index = 0; index < 100000; ++index)
        text += "QT_TRANSLATE_NOOP(\"QObject\", ";
    EXPECT_EQ(reportOf("[" + text + "]"), reportOfText(text));
}

}  // namespace
}  // namespace rgen_test
