// SPDX-License-Identifier: MIT
#include "base/line_diff.h"

#include <gtest/gtest.h>

#include <string>

namespace cli {
namespace {

TEST(LineDiff, EqualTextsHaveNone) {
    EXPECT_EQ(lineDiff("", "").text, "");
    EXPECT_EQ(lineDiff("a\nb", "a\nb").changedLines, 0U);
}

TEST(LineDiff, AChangedLineIsShownWithItsNeighbours) {
    const LineDiff diff = lineDiff("1\n2\n3\nvalue 4\n5\n6\n7\n", "1\n2\n3\nvalue 8\n5\n6\n7\n");
    EXPECT_EQ(diff.text, "@@ line 4\n  2\n  3\n- value 4\n+ value 8\n        ^\n  5\n  6\n");
    EXPECT_EQ(diff.changedLines, 1U);
}

TEST(LineDiff, AddedAndRemovedLines) {
    EXPECT_EQ(lineDiff("1\n2\n", "1\n1a\n1b\n2\n").text, "@@ line 2\n  1\n+ 1a\n+ 1b\n  2\n");
    EXPECT_EQ(lineDiff("1\n2\n3\n", "1\n3\n").text, "@@ line 2\n  1\n- 2\n  3\n");
    EXPECT_EQ(lineDiff("", "a\n").text, "@@ line 1\n+ a\n");
    EXPECT_EQ(lineDiff("a\n", "").text, "@@ line 1\n- a\n");
}

TEST(LineDiff, PlacesThatAreNearAreOne) {
    const std::string before = "a\n1\n2\n3\nb\n4\n5\n6\n7\n8\n9\nc\n";
    const std::string after = "A\n1\n2\n3\nB\n4\n5\n6\n7\n8\n9\nC\n";
    EXPECT_EQ(lineDiff(before, after).text,
              "@@ line 1\n- a\n+ A\n  ^\n  1\n  2\n  3\n- b\n+ B\n  ^\n  4\n  5\n"
              "@@ line 12\n  8\n  9\n- c\n+ C\n  ^\n");
}

TEST(LineDiff, LongLinesAreShortenedAroundTheDifference) {
    const std::string start(500, 'a');
    const std::string end(500, 'b');
    const std::string text = lineDiff(start + "X" + end, start + "\xC3\xA9" + end).text;
    EXPECT_NE(text.find("- ..." + std::string(40, 'a') + "X" + "bbb"), std::string::npos) << text;
    EXPECT_NE(text.find("\n  " + std::string(43, ' ') + "^\n"), std::string::npos) << text;
    EXPECT_LT(text.size(), 400U);
}

TEST(LineDiff, InvisibleCharactersAreShown) {
    EXPECT_EQ(lineDiff("a\n", "a\r\n").text, "@@ line 1\n- a\n+ a\\r\n   ^\n");
}

TEST(LineDiff, ManyDifferencesAreCounted) {
    std::string before;
    std::string after;
    for (int i = 0; i < 5000; ++i) {
        before += "old " + std::to_string(i) + "\n";
        after += "new " + std::to_string(i) + "\n";
    }
    const LineDiff diff = lineDiff(before, after, 30);
    EXPECT_EQ(diff.changedLines, 5000U);
    EXPECT_NE(diff.text.find("... and 4990 more lines that differ"), std::string::npos)
        << diff.text;
}

}  // namespace
}  // namespace cli
