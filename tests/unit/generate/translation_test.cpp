// The marker matcher compared with a regular expression of the same grammar. What the callback is
// asked and what becomes of its answers is tested through the library (host/translation_test.cpp).
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
