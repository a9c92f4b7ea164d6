// SPDX-License-Identifier: MIT
#include "templates/template_text.h"

#include <gtest/gtest.h>

#include <string>

namespace cli {
namespace {

constexpr const char* twoMarkers =
    "<a>\n"
    " QT_TRANSLATE_NOOP(\"QObject\", \"One\") x\n"
    " QT_TRANSLATE_NOOP(\"QObject\", \"Two\") \xC3\xA9y\n"
    "</a>";

std::string placeOf(const TemplateText& text, const std::string& words) {
    const std::size_t begin = text.text().find(words);
    const Finding finding = text.at(begin, begin + words.size(), {});
    return std::to_string(finding.position.line) + ":" + std::to_string(finding.position.column) +
           "+" + std::to_string(finding.length);
}

TEST(TemplateText, AMarkerIsReplacedByItsMessageUnlessThereIsATranslation) {
    EXPECT_EQ(TemplateText("a.xsl", twoMarkers).text(), "<a>\n One x\n Two \xC3\xA9y\n</a>");
    const TemplateText german("a.xsl", twoMarkers,
                              [](const std::string& message) { return message + "-de"; });
    EXPECT_EQ(german.text(), "<a>\n One-de x\n Two-de \xC3\xA9y\n</a>");
}

TEST(TemplateText, EveryPlaceLeadsBackToTheTemplatesOwnFile) {
    const TemplateText text("a.xsl", twoMarkers);
    EXPECT_EQ(placeOf(text, "<a>"), "1:1+3");
    EXPECT_EQ(placeOf(text, "One"), "2:32+3");
    EXPECT_EQ(placeOf(text, "x"), "2:38+1");
    EXPECT_EQ(placeOf(text, "Two"), "3:32+3");
    EXPECT_EQ(placeOf(text, "y"), "3:39+1");
    EXPECT_EQ(placeOf(text, "</a>"), "4:1+4");
}

TEST(TemplateText, APlaceInsideATranslationIsTheMessage) {
    const TemplateText text("a.xsl", twoMarkers,
                            [](const std::string&) { return "a long {translation}"; });
    EXPECT_EQ(placeOf(text, "{translation}"), "2:32+1");
    EXPECT_EQ(placeOf(text, " x"), "2:37+2");
    ASSERT_NE(text.replacementAt(text.text().find("{translation}")), nullptr);
    EXPECT_EQ(text.replacementAt(text.text().find(" x")), nullptr);
}

TEST(TemplateText, AByteOrderMarkIsNoColumn) {
    const TemplateText text("a.xsl", "\xEF\xBB\xBF<a/>");
    EXPECT_EQ(placeOf(text, "<a/>"), "1:1+4");
}

TEST(Finding, AnExcerptMarksThePlace) {
    Finding finding;
    finding.sourceLine = "\t<b select=\"\xC3\xA9 + $peek\"/>";
    finding.position = {3, 18};
    finding.length = 5;
    EXPECT_EQ(findingExcerpt(finding),
              "     <b select=\"\xC3\xA9 + $peek\"/>\n"
              "                     ^~~~~\n");
}

TEST(Finding, ALongLineIsShortenedAroundThePlace) {
    Finding finding;
    finding.sourceLine = std::string(500, 'a') + "X" + std::string(500, 'b');
    finding.position = {1, 501};
    const std::string excerpt = findingExcerpt(finding);
    const std::size_t lineBreak = excerpt.find('\n');
    EXPECT_LT(lineBreak, 130U);
    EXPECT_EQ(excerpt[excerpt.find('^') - lineBreak - 1], 'X');
}

}  // namespace
}  // namespace cli
