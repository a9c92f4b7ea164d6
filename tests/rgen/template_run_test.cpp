// SPDX-License-Identifier: MIT
#include "templates/template_run.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace cli {
namespace {

constexpr const char* data =
    "<data><properties><property name=\"A\">1</property>"
    "<property name=\"B\">x</property></properties></data>";

std::string stylesheet(const std::string& body, const std::string& more = "") {
    return "<xsl:stylesheet version=\"1.0\" "
           "xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\"><xsl:output method=\"text\"/>"
           "<xsl:template match=\"/\">" +
           body + "</xsl:template>" + more + "</xsl:stylesheet>";
}

TEST(TemplateRun, MakesTheReport) {
    const TemplateRun run = runTemplate(stylesheet("<xsl:value-of select=\"//property\"/>"), data);
    EXPECT_EQ(run.outcome, TemplateRun::Outcome::Done);
    EXPECT_EQ(run.result, "1");
    EXPECT_TRUE(run.errors.empty());
    EXPECT_EQ(run.reachedTemplates, std::set<std::size_t>{2});
}

TEST(TemplateRun, KeepsWhatTheProcessorSays) {
    const TemplateRun compiled = compileTemplate(stylesheet("<xsl:value-of select=\"1 +\"/>"));
    EXPECT_EQ(compiled.outcome, TemplateRun::Outcome::NotCompiled);
    ASSERT_FALSE(compiled.errors.empty());
    EXPECT_EQ(compiled.errors.front().expression, "1 +");
    const TemplateRun run = runTemplate(stylesheet("<xsl:value-of select=\"flor(1)\"/>"), data);
    EXPECT_EQ(run.outcome, TemplateRun::Outcome::NotApplied);
    ASSERT_FALSE(run.errors.empty());
    EXPECT_EQ(run.errors.front().element, 3U);
}

TEST(TemplateRun, TellsElementsOfOneLineApart) {
    const TemplateRun run = compileTemplate(stylesheet(
        "<xsl:value-of select=\"1\"/><xsl:value-of select=\"2 +\"/>\n<xsl:if test=\"3)\"/>"));
    EXPECT_EQ(run.outcome, TemplateRun::Outcome::NotCompiled);
    std::map<std::string, std::size_t> elements;
    for (const ProcessorMessage& error : run.errors) {
        EXPECT_EQ(error.line, error.element == 4 ? 1U : 2U) << error.text;
        if (!error.expression.empty()) elements[error.expression] = error.element;
    }
    EXPECT_EQ(elements, (std::map<std::string, std::size_t>{{"2 +", 4}, {"3)", 5}}));
    EXPECT_EQ(run.errors.front().expressionOffset, 3U);
}

TEST(TemplateRun, AnElementOfAnotherNamespaceIsNoMessage) {
    const TemplateRun run = runTemplate(
        stylesheet("<message><xsl:attribute name=\"{//none}\"/></message><xsl:message>One"
                   "</xsl:message>"),
        data);
    ASSERT_EQ(run.messages.size(), 1U);
    EXPECT_EQ(run.messages.front().text, "One");
    ASSERT_FALSE(run.errors.empty());
    EXPECT_EQ(run.errors.front().element, 4U);
}

TEST(TemplateRun, KeepsTheMessagesOfTheTemplate) {
    const TemplateRun run = runTemplate(
        stylesheet("<xsl:message>One</xsl:message><xsl:message terminate=\"yes\">No <xsl:value-of "
                   "select=\"'date'\"/></xsl:message>"),
        data);
    EXPECT_EQ(run.outcome, TemplateRun::Outcome::NotApplied);
    ASSERT_EQ(run.messages.size(), 2U);
    EXPECT_EQ(run.messages[0].text, "One");
    EXPECT_FALSE(run.messages[0].terminates);
    EXPECT_EQ(run.messages[1].text, "No date");
    EXPECT_TRUE(run.messages[1].terminates);
    EXPECT_EQ(run.messages[1].element, 4U);
}

TEST(TemplateRun, NamesTheCallsOfAnEndlessRecursion) {
    const TemplateRun run = runTemplate(
        stylesheet("<xsl:call-template name=\"rows\"/>",
                   "<xsl:template name=\"rows\"><xsl:call-template name=\"rows\"/></xsl:template>"),
        data);
    EXPECT_EQ(run.outcome, TemplateRun::Outcome::NotApplied);
    ASSERT_GT(run.callChain.size(), 1000U);
    EXPECT_EQ(run.callChain.front(), 4U);
    EXPECT_EQ(run.callChain.back(), 2U);
}

TEST(TemplateRun, CountsEmptyTextsAndThoseThatAreNoNumbers) {
    const TemplateRun run = runTemplate(
        stylesheet("a<xsl:value-of select=\"//property[2] * 2\"/>b<xsl:value-of select=\"//none\"/>"
                   "<xsl:for-each select=\"//property\"><xsl:value-of select=\". + 1\"/>"
                   "</xsl:for-each>"),
        data);
    EXPECT_EQ(run.result, "aNaNb2NaN");
    ASSERT_EQ(run.texts.size(), 3U);
    EXPECT_EQ(run.texts.at(3).notNumbers, 1U);
    EXPECT_EQ(run.texts.at(4).empty, 1U);
    EXPECT_EQ(run.texts.at(6).all, 2U);
    EXPECT_EQ(run.texts.at(6).notNumbers, 1U);
}

}  // namespace
}  // namespace cli
