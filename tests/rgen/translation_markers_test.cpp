// SPDX-License-Identifier: MIT
#include "templates/translation_markers.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "generate/translation.h"

namespace cli {
namespace {

std::string reasonFor(const std::string& text) {
    const std::vector<UnmatchedMarker> found = findUnmatchedMarkers(text);
    return found.size() == 1 ? found[0].what : std::to_string(found.size()) + " markers";
}

std::string adviceFor(const std::string& text) {
    const std::vector<UnmatchedMarker> found = findUnmatchedMarkers(text);
    return found.empty() ? "" : found[0].advice;
}

TEST(TranslationMarkers, EachMarkerHasItsMessageAndItsPlace) {
    const std::string text =
        "<a>QT_TRANSLATE_NOOP(\"QObject\", \"One\")</a>"
        "<b>QT_TRANSLATE_NOOP \t( \"QObject\"\n, \"Two, (2)\")</b>";
    const std::vector<TranslationMarker> markers = findMarkers(text);
    ASSERT_EQ(markers.size(), 2U);
    EXPECT_EQ(markers[0].message, "One");
    EXPECT_EQ(markers[0].begin, 3U);
    EXPECT_EQ(text.substr(markers[0].end, 4), "</a>");
    EXPECT_EQ(text.substr(markers[0].messageBegin, 4), "One\"");
    EXPECT_EQ(markers[1].message, "Two, (2)");
    EXPECT_TRUE(findUnmatchedMarkers(text).empty());
}

TEST(TranslationMarkers, TheReasonOfAnUnmatchedMarkerIsNamed) {
    const std::string start = "this marker is not translated: ";
    EXPECT_EQ(reasonFor("QT_TRANSLATE_NOOP(\"QObject\",  \"A\")"),
              start + "two blanks after the comma");
    EXPECT_EQ(reasonFor("QT_TRANSLATE_NOOP(\"QObject\",\"A\")"),
              start + "no blank after the comma");
    EXPECT_EQ(reasonFor("QT_TRANSLATE_NOOP(\"QObject\",\n\"A\")"),
              start + "no blank, but another white space after the comma");
    EXPECT_EQ(reasonFor("QT_TRANSLATE_NOOP(\"Health\", \"A\")"),
              start + "the context is \"Health\", only \"QObject\" is known");
    EXPECT_EQ(reasonFor("QT_TRANSLATE_NOP(\"QObject\", \"A\")"),
              start + "\"QT_TRANSLATE_NOP\" is not a keyword");
    EXPECT_EQ(reasonFor("QT_TRANSLATE_NOOP(QObject, \"A\")"), start + "the context has no quotes");
    EXPECT_EQ(reasonFor("QT_TRANSLATE_NOOP(\"QObject\", A)"), start + "the text has no quotes");
    EXPECT_EQ(reasonFor("QT_TRANSLATE_NOOP(\"QObject\" \"A\")"),
              start + "the comma after \"QObject\" is missing");
    EXPECT_EQ(reasonFor("QT_TRANSLATE_NOOP \"A\""),
              start + "\"(\" is missing after QT_TRANSLATE_NOOP");
    EXPECT_EQ(reasonFor("QT_TRANSLATE_NOOP(\"QObject\", \"A\" )"),
              start + "white space before the closing bracket");
    EXPECT_EQ(reasonFor("QT_TRANSLATE_NOOP(\"QObject\", \"A \\\"b\\\"\")"),
              start + "the text ends at its first quote, and \")\" does not follow");
    EXPECT_EQ(reasonFor("QT_TRANSLATE_NOOP(\"QObject\", \"A"),
              start + "the text has no closing quote");
    EXPECT_EQ(reasonFor("QT_TRANSLATE_NOOP(\"QObject"), start + "the context has no closing quote");
}

TEST(TranslationMarkers, TheAdviceFitsTheReason) {
    EXPECT_EQ(adviceFor("QT_TRANSLATE_NOP(\"QObject\", \"A\")"),
              "did you mean \"QT_TRANSLATE_NOOP\"?");
    EXPECT_EQ(adviceFor("QT_TRANSLATE_NOOP(\"Health\", \"A\")"), "write \"QObject\"");
    EXPECT_EQ(adviceFor("QT_TRANSLATE_NOOP(\"QObject\",  \"A\")"), "write exactly one blank there");
}

TEST(TranslationMarkers, OrdinaryWordsAreNotTakenForMarkers) {
    EXPECT_TRUE(findUnmatchedMarkers("translate(.,'ab','AB') concat('TRANSLATE', 'NOOP')").empty());
    EXPECT_TRUE(findUnmatchedMarkers("<a>A sentence about translations (of texts).</a>").empty());
}

std::string translatedByLibrary(std::string text) {
    rgen::ReportGenerator generator;
    generator.translateFunction = [](const char* message, void* kept) -> const char* {
        auto& last = *static_cast<std::string*>(kept);
        last = std::string("<") + message + ">";
        return last.c_str();
    };
    std::string last;
    generator.translateContext = &last;
    rgen::translateTemplateText(generator, text);
    return text;
}

std::string translatedByMarkers(const std::string& text) {
    std::string result;
    std::size_t copied = 0;
    for (const TranslationMarker& marker : findMarkers(text)) {
        result.append(text, copied, marker.begin - copied);
        result += "<" + marker.message + ">";
        copied = marker.end;
    }
    return result.append(text, copied, std::string::npos);
}

TEST(TranslationMarkers, TheLibraryTranslatesExactlyTheMarkersThatAreFound) {
    const std::vector<std::string> pieces{"QT_TRANSLATE_NOOP",
                                          "(",
                                          "\"QObject\"",
                                          ", ",
                                          ",",
                                          " ",
                                          "\"Text\"",
                                          "\"",
                                          ")",
                                          "\")",
                                          "\n",
                                          "\t",
                                          "\v",
                                          "x",
                                          "QT_TRANSLATE_NOOP(\"QObject\", \"Whole\")",
                                          "Q",
                                          "<"};
    std::mt19937 random(20260309);
    std::uniform_int_distribution<std::size_t> anyPiece(0, pieces.size() - 1);
    // Most sequences begin like a marker, so that many of them become one.
    for (int round = 0; round < 20000; ++round) {
        std::string text = round % 2 == 0 ? "" : "QT_TRANSLATE_NOOP(\"QObject\"";
        for (int i = 0; i < 12; ++i)
            text += pieces[anyPiece(random)];
        ASSERT_EQ(translatedByMarkers(text), translatedByLibrary(text)) << text;
    }
}

}  // namespace
}  // namespace cli
