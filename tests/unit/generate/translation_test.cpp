// The marker matcher against the regular expression that it stands for, and the replacements.
//
// SPDX-License-Identifier: MIT
#include "generate/translation.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/expression_oracles.h"
#include "unit/random_text.h"

namespace rgen_test {
namespace {

// The pieces of a marker, whole and broken.
const std::vector<std::string>& pieces() {
    static const std::vector<std::string> all = {
        "QT_TRANSLATE_NOOP", "(",    "\"QObject\"", ",", " ", "\"", "m", ")", "\n", "QT_",
        "\"QObject",         ", \"", "\")"};
    return all;
}

std::string translated(std::string text, RgenTranslateFunction translate = nullptr) {
    rgen::ReportGenerator generator;
    if (translate != nullptr) generator.translateFunction = translate;
    rgen::translateTemplateText(generator, text);
    return text;
}

const char* RGEN_CALL identity(const char* text, void*) {
    return text;
}

void expectSameAsExpression(const std::string& text) {
    ASSERT_EQ(translatedByExpression(text, identity), translated(text))
        << testing::PrintToString(text);
    ASSERT_EQ(translatedByExpression(text, markMessage), translated(text, markMessage))
        << testing::PrintToString(text);
}

TEST(TranslateTemplateText, AgreesWithTheExpressionOnShortTexts) {
    visitSequences(pieces(), 3, expectSameAsExpression);
    visitSequences(pieces(), 2, expectSameAsExpression, "QT_TRANSLATE_NOOP(\"QObject\", \"m");
    visitSequences(pieces(), 2, expectSameAsExpression, "QT_TRANSLATE_NOOP(\"QObject\"");
    visitSequences(pieces(), 2, expectSameAsExpression, "QT_TRANSLATE_NOOP");
}

TEST(TranslateTemplateText, AgreesWithTheExpressionOnLongerTexts) {
    visitRandomTexts(pieces(), 14, 5000, expectSameAsExpression);
    visitRandomTexts({"QT_TRANSLATE_NOOP", "(", "\"QObject\"", ", \"", "m \n", "\")", " "}, 16,
                     5000, expectSameAsExpression);
    visitRandomTexts({"QT_TRANSLATE_NOOP(\"QObject\", \"a\")", "QT_TRANSLATE_NOOP(\"QObject\", \"",
                      "QT_TRANSLATE_NOOP (", "\"QObject\" , \"b c\")", "x", "\"", " "},
                     8, 5000, expectSameAsExpression);
}

TEST(TranslateTemplateText, EveryCharacterAtEveryPlaceAgreesWithTheExpression) {
    const std::string valid = "[QT_TRANSLATE_NOOP ( \"QObject\" , \"m s \")]";
    for (std::size_t place = 0; place <= valid.size(); ++place) {
        for (const char* piece : {" ", "\t", "\v", "\"", ")", "(", ",", "x", "\n", "\xA0", "Q"}) {
            std::string inserted = valid;
            expectSameAsExpression(inserted.insert(place, piece));
            std::string replaced = valid;
            expectSameAsExpression(replaced.replace(place, 1, piece));
        }
        std::string shorter = valid;
        expectSameAsExpression(shorter.erase(place, 1));
    }
}

TEST(TranslateTemplateText, MarkersBecomeTheirTranslations) {
    const struct {
        const char* text;
        const char* expected;
    } rows[] = {
        {"", ""},
        {"plain", "plain"},
        {"QT_TRANSLATE_NOOP(\"QObject\", \"m\")", "<m>"},
        {"aQT_TRANSLATE_NOOP(\"QObject\", \"m\")b", "a<m>b"},
        {"QT_TRANSLATE_NOOP \t(\n \"QObject\" \r\n, \"m\")", "<m>"},
        {"QT_TRANSLATE_NOOP(\"QObject\", \"\")", "<>"},
        {"QT_TRANSLATE_NOOP(\"QObject\", \" m \n\")", "< m \n>"},
        {"QT_TRANSLATE_NOOP(\"QObject\", \"1\")QT_TRANSLATE_NOOP(\"QObject\", \"2\")", "<1><2>"},
        {"QT_TRANSLATE_NOOPQT_TRANSLATE_NOOP(\"QObject\", \"m\")", "QT_TRANSLATE_NOOP<m>"},
        {"QT_TRANSLATE_NOOP(\"QObject\",\"m\")", "QT_TRANSLATE_NOOP(\"QObject\",\"m\")"},
        {"QT_TRANSLATE_NOOP(\"QObject\",  \"m\")", "QT_TRANSLATE_NOOP(\"QObject\",  \"m\")"},
        {"QT_TRANSLATE_NOOP(\"QObject\", \"m\" )", "QT_TRANSLATE_NOOP(\"QObject\", \"m\" )"},
        {"QT_TRANSLATE_NOOP(\"Other\", \"m\")", "QT_TRANSLATE_NOOP(\"Other\", \"m\")"},
        {"QT_TRANSLATE_NOOP( \"QObject \", \"m\")", "QT_TRANSLATE_NOOP( \"QObject \", \"m\")"},
        {"qt_translate_noop(\"QObject\", \"m\")", "qt_translate_noop(\"QObject\", \"m\")"},
        {"QT_TRANSLATE_NOOP(\"QObject\", \"m", "QT_TRANSLATE_NOOP(\"QObject\", \"m"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.expected, translated(row.text, markMessage)) << row.text;
}

TEST(TranslateTemplateText, ReplacementIsNotSearchedAgain) {
    EXPECT_EQ("QT_TRANSLATE_NOOP(\"QObject\", \"again\")!",
              translated("QT_TRANSLATE_NOOP(\"QObject\", \"m\")!", giveMarker));
}

TEST(TranslateTemplateText, CallbackGetsContextAndMessagesInTextOrder) {
    rgen::ReportGenerator generator;
    std::vector<std::string> messages;
    generator.translateContext = &messages;
    generator.translateFunction = [](const char* text, void* context) {
        static_cast<std::vector<std::string>*>(context)->emplace_back(text);
        return "";
    };
    std::string text =
        "QT_TRANSLATE_NOOP(\"QObject\", \"one\") QT_TRANSLATE_NOOP(\"QObject\", \"two\")";
    rgen::translateTemplateText(generator, text);
    EXPECT_EQ((std::vector<std::string>{"one", "two"}), messages);
    EXPECT_EQ(" ", text);
}

TEST(TranslateTemplateText, ZeroBytesInATemplateAreKeptOutsideMarkers) {
    const std::string text("a\0QT_TRANSLATE_NOOP(\"QObject\", \"m\0n\")\0b", 39);
    EXPECT_EQ(std::string("a\0<m>\0b", 7), translated(text, markMessage));
}

TEST(TranslateTemplateText, LongTextsNeedNoStack) {
    const std::string start = "QT_TRANSLATE_NOOP(\"QObject\", \"";
    const std::string message(1000000, 'm');
    EXPECT_EQ(message, translated(start + message + "\")"));
    EXPECT_EQ(start + message, translated(start + message));
    const std::string blanks(1000000, ' ');
    EXPECT_EQ(start + blanks + "x", translated(start + blanks + "x"));
    EXPECT_EQ("QT_TRANSLATE_NOOP" + blanks, translated("QT_TRANSLATE_NOOP" + blanks));
    std::string keywords;
    while (keywords.size() < 1000000)
        keywords += "QT_TRANSLATE_NOOP(";
    EXPECT_EQ(keywords, translated(keywords));
}

TEST(TranslateTemplateText, ManyMarkersAreAllReplaced) {
    std::string text;
    std::string expected;
    for (int i = 0; i < 30000; ++i) {
        text += "QT_TRANSLATE_NOOP(\"QObject\", \"m\")\n";
        expected += "<m>\n";
    }
    EXPECT_EQ(expected, translated(text, markMessage));
}

TEST(TranslateTemplateText, CallbackThatGivesNullKeepsTheMessage) {
    const RgenTranslateFunction giveNull = [](const char*, void*) -> const char* {
        return nullptr;
    };
    EXPECT_EQ("[first][]", translated("[QT_TRANSLATE_NOOP(\"QObject\", \"first\")]"
                                      "[QT_TRANSLATE_NOOP(\"QObject\", \"\")]",
                                      giveNull));
}

}  // namespace
}  // namespace rgen_test
