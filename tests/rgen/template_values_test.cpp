// SPDX-License-Identifier: MIT
#include "templates/template_values.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "base/command_error.h"
#include "templates/template_summary.h"

namespace cli {
namespace {

/// A template with a key for names and one for lists; line 5 is the first of `body`.
std::string templateWith(const std::string& body) {
    return "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>\n"
           "<xsl:key name='p' match='property' use='@name'/>\n"
           "<xsl:key name='list' match='property' use=\"concat(substring-before(@name, '.'), '*', "
           "substring-after(substring-after(@name, '.'), '.'))\"/>\n"
           "<xsl:template match='/'>\n" +
           body + "</xsl:template></xsl:stylesheet>";
}

class TemplateValues : public testing::Test {
protected:
    void read(const std::string& body) {
        text_ = std::make_unique<TemplateText>("a.xsl", templateWith(body));
        tree_ = std::make_unique<TemplateTree>(*text_);
        names_ = collectNames(*tree_);
        expressions_ = expressionsOf(*tree_, names_);
        uses_ = valueUses(*tree_, names_, expressions_);
    }

    /// "line:column name:hint" for each use.
    std::string usesIn(const std::string& body) {
        read(body);
        std::string lines;
        for (const ValueUse& use : uses_) {
            if (!lines.empty()) lines += "\n";
            lines += std::to_string(use.position.line) + ":" + std::to_string(use.position.column) +
                     " " + use.request.name + (use.hint.empty() ? "" : ":" + use.hint);
        }
        return lines;
    }

    std::string missingIn(const std::string& body, const std::vector<std::string>& values) {
        read(body);
        const KeyDeclarations keys = keyDeclarations(names_);
        std::string lines;
        const Findings findings = missingValues(*tree_, uses_, keys, values);
        for (const Finding& finding : findings.all())
            lines += findingLine(finding) + "\n";
        return lines;
    }

    std::unique_ptr<TemplateText> text_;
    std::unique_ptr<TemplateTree> tree_;
    XsltNames names_;
    std::vector<TemplateExpression> expressions_;
    std::vector<ValueUse> uses_;
};

TEST_F(TemplateValues, HaveThePlaceOfTheirNames) {
    EXPECT_EQ(usesIn("<xsl:value-of select=\"key('p', 'A')\"/>\n<p id=\"{key('p', 'B')}\"/>"),
              "5:33 A\n6:19 B");
}

TEST_F(TemplateValues, AreFollowedThroughLoopsAndVariables) {
    EXPECT_EQ(usesIn("<xsl:variable name='bad' select=\"key('list', 'Err*Address')\"/>\n"
                     "<xsl:for-each select='$bad'>\n"
                     "<xsl:variable name='e' select=\"substring-before(@name, 'Address')\"/>\n"
                     "<p><xsl:value-of select=\"key('p', concat($e, 'Cause'))\"/></p>\n"
                     "</xsl:for-each>\n"
                     "<xsl:value-of select=\"key('p', concat($e, 'Cause'))\"/>"),
              "5:47 Err.N.Address\n8:47 Err.N.Cause\n10:44 Err.N.Cause");
}

TEST_F(TemplateValues, GetAHintFromTheirUse) {
    EXPECT_EQ(
        usesIn("<xsl:value-of select=\"key('p', 'A') * 2\"/>\n"
               "<xsl:value-of select=\"format-number(sum(key('list', 'L*B')), '0')\"/>\n"
               "<xsl:value-of select=\"format-number(count(key('list', 'L*C')), '0')\"/>\n"
               "<xsl:call-template name='date'><xsl:with-param name='x' select=\"key('p', "
               "'D')\"/></xsl:call-template>\n"
               "<xsl:apply-templates select=\"key('p', 'E')\"><xsl:with-param name='as' "
               "select=\"'size'\"/></xsl:apply-templates>\n"
               "<xsl:variable name='dump' select=\"key('p', 'F')\"/>\n"
               "<p id=\"x{key('p', 'G')}{key('p', 'H') + 1}\"/>"),
        "5:33 A:int\n6:54 L.N.B:int\n7:56 L.N.C\n8:75 D:datetime\n9:40 E:size\n10:45 F:bytes\n"
        "11:20 G\n11:35 H:int");
}

TEST_F(TemplateValues, ThatTheDataLacksAreNamedWithTheNearestUnusedOne) {
    EXPECT_EQ(missingIn("<xsl:value-of select=\"key('p', 'Hostt.Name')\"/>\n"
                        "<xsl:value-of select=\"key('p', 'Other')\"/>\n"
                        "<xsl:value-of select=\"key('list', 'Err*Adress')\"/>\n"
                        "<xsl:value-of select=\"key('p', 'There')\"/>\n"
                        "<xsl:value-of select=\"key('p', 'Their')\"/>",
                        {"Host.Name", "Err.12.Address", "There"}),
              "a.xsl:5:33: warning: no value \"Hostt.Name\"; did you mean \"Host.Name\"?\n"
              "a.xsl:6:33: note: no value \"Other\"\n"
              "a.xsl:7:36: warning: no value \"Err.N.Adress\"; did you mean \"Err.N.Address\"?\n"
              "a.xsl:9:33: note: no value \"Their\"\n");
}

TEST_F(TemplateValues, ThatTheTemplateNeverUsesAreListed) {
    read(
        "<xsl:value-of select=\"key('p', 'A') | //property[starts-with(@name, 'H.')] | "
        "key('list', 'Err*Address') | key('p', concat($x, 'End'))\"/>");
    EXPECT_EQ(unusedValues(uses_, {"A", "B", "H.1", "Err.2.Address", "Err.2.Cause", "X.End"}),
              (std::vector<std::string>{"B", "Err.2.Cause"}));
}

TEST_F(TemplateValues, MakeADataFileWithTwoEntriesForEachList) {
    const TemplateText text("a.xsl",
                            templateWith("<xsl:value-of select=\"key('p', 'A') + key('list', "
                                         "'L*B') | //property[starts-with(@name, 'H.')]\"/>"));
    EXPECT_EQ(skeletonOf({summaryOf(text)}),
              "{\n  \"A\": 10,\n  \"H.1\": \"H.1\",\n  \"H.2\": \"H.2\",\n  \"L.1.B\": 10,\n"
              "  \"L.2.B\": 20\n}\n");
}

TEST(SummaryOf, ATemplateThatIsNotWellFormedIsRefused) {
    const TemplateText text("a.xsl", "<a>");
    EXPECT_THROW(summaryOf(text), CommandError);
}

}  // namespace
}  // namespace cli
