// Templates that recurse without end, or deeply, on stacks of several sizes. A crash would end this
// program before the line that its runner requires.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/report_fixture.h"
#include "support/sized_thread.h"

namespace rgen_test {
namespace {

struct EndlessTemplate {
    const char* label;
    std::string text;
};

const char* const callAgain = "<xsl:call-template name=\"again\"/>";

// A template "again" with that body, which the root template calls.
std::string endless(const std::string& body, const std::string& topLevel = std::string()) {
    return stylesheet("method=\"xml\"", "<xsl:template match=\"/\">" + std::string(callAgain) +
                                            "</xsl:template><xsl:template name=\"again\">" + body +
                                            "</xsl:template>" + topLevel);
}

// The body of "again" that calls it once more inside an element.
std::string endlessIn(const std::string& element, const std::string& attributes = std::string()) {
    return endless("<" + element + " " + attributes + ">" + callAgain + "</" + element + ">");
}

// A template for one kind of node, which the root template applies.
std::string endlessFor(const std::string& match, const std::string& body) {
    return stylesheet("method=\"xml\"",
                      "<xsl:key name=\"k\" match=\"property\" use=\"@name\"/>"
                      "<xsl:template match=\"/\"><xsl:apply-templates select=\"//property\"/>"
                      "</xsl:template><xsl:template match=\"" +
                          match + "\">" + body + "</xsl:template>");
}

std::vector<EndlessTemplate> callingTemplates() {
    return {
        {"call", endless(callAgain)},
        {"call inside for-each", endlessIn("xsl:for-each", "select=\"//property\"")},
        {"call inside if", endlessIn("xsl:if", "test=\"true()\"")},
        {"call inside choose", endless("<xsl:choose><xsl:when test=\"false()\"/><xsl:otherwise>" +
                                       std::string(callAgain) + "</xsl:otherwise></xsl:choose>")},
        {"call inside a variable", endlessIn("xsl:variable", "name=\"x\"")},
        {"call behind a variable",
         endless("<xsl:variable name=\"x\" select=\"//property\"/>" + std::string(callAgain))},
        {"call inside a parameter's default", endlessIn("xsl:param", "name=\"x\"")},
        {"call inside with-param",
         endless("<xsl:param name=\"x\"/><xsl:call-template name=\"again\">"
                 "<xsl:with-param name=\"x\">" +
                 std::string(callAgain) + "</xsl:with-param></xsl:call-template>")},
        {"growing parameter", endless("<xsl:param name=\"x\"/><xsl:call-template name=\"again\">"
                                      "<xsl:with-param name=\"x\" select=\"concat($x, 'x')\"/>"
                                      "</xsl:call-template>")},
        {"call inside an attribute", endless("<x><xsl:attribute name=\"a\">" +
                                             std::string(callAgain) + "</xsl:attribute></x>")},
        {"call inside a literal element", endlessIn("x")},
        {"call inside xsl:element", endlessIn("xsl:element", "name=\"x\"")},
        {"call inside xsl:copy", endlessIn("xsl:copy")},
        {"call inside a comment", endlessIn("xsl:comment")},
        {"call inside a processing instruction",
         endlessIn("xsl:processing-instruction", "name=\"x\"")},
        {"call inside a message", endlessIn("xsl:message")},
        {"call inside a fallback", endless("<xsl:later><xsl:fallback>" + std::string(callAgain) +
                                           "</xsl:fallback></xsl:later>")},
        {"two templates in turn",
         endless("<xsl:call-template name=\"other\"/>",
                 "<xsl:template name=\"other\">" + std::string(callAgain) + "</xsl:template>")},
        {"call inside an attribute set",
         endless("<x xsl:use-attribute-sets=\"s\"/>",
                 "<xsl:attribute-set name=\"s\"><xsl:attribute name=\"a\">" +
                     std::string(callAgain) + "</xsl:attribute></xsl:attribute-set>")},
        {"call inside a global variable that is needed again",
         endless("<xsl:value-of select=\"$g\"/>",
                 "<xsl:variable name=\"g\">" + std::string(callAgain) + "</xsl:variable>")}};
}

std::vector<EndlessTemplate> applyingTemplates() {
    const std::string self = "<xsl:apply-templates select=\".\"/>";
    return {{"apply to itself", endlessFor("property", self)},
            {"apply to the root",
             stylesheet("method=\"xml\"",
                        "<xsl:template match=\"/\"><xsl:apply-templates select=\"/\"/>"
                        "</xsl:template>")},
            {"apply up and down",
             endlessFor("property",
                        "<xsl:for-each select=\"..\"><xsl:apply-templates/></xsl:for-each>")},
            {"apply with sort", endlessFor("property",
                                           "<xsl:apply-templates select=\".\"><xsl:sort/>"
                                           "</xsl:apply-templates>")},
            {"apply with parameter",
             endlessFor("property",
                        "<xsl:param name=\"p\"/><xsl:apply-templates select=\".\">"
                        "<xsl:with-param name=\"p\" select=\".\"/>"
                        "</xsl:apply-templates>")},
            {"apply inside copy", endlessFor("property", "<xsl:copy>" + self + "</xsl:copy>")},
            {"apply inside an element",
             endlessFor("property", "<xsl:element name=\"e\">" + self + "</xsl:element>")},
            {"apply inside a variable",
             endlessFor("property", "<xsl:variable name=\"x\">" + self +
                                        "</xsl:variable><xsl:value-of select=\"$x\"/>")},
            {"apply to a key's nodes",
             endlessFor("property", "<xsl:apply-templates select=\"key('k', 'v')\"/>")},
            {"apply to text",
             endlessFor("text()|property", "<xsl:apply-templates select=\"//property/text()\"/>")},
            {"the root over the built-in templates",
             stylesheet("method=\"xml\"",
                        "<xsl:template match=\"text()\"><xsl:apply-templates select=\"/\"/>"
                        "</xsl:template>")}};
}

std::vector<EndlessTemplate> endlessTemplates() {
    std::vector<EndlessTemplate> templates = callingTemplates();
    for (const EndlessTemplate& row : applyingTemplates())
        templates.push_back(row);
    return templates;
}

class Recursion : public ReportTest {
protected:
    void expectEveryEndlessTemplateToFail() {
        for (const EndlessTemplate& row : endlessTemplates()) {
            SCOPED_TRACE(row.label);
            EXPECT_EQ(failure(RGEN_E_XSLT_APPLY), reportOfTemplate(row.text));
            EXPECT_EQ(reportOf("alive"), reportOfTemplate(textStylesheet("alive")));
        }
    }

    // Runs a template on a thread of that stack size.
    Report reportOnStack(std::size_t stackSize, const std::string& text) {
        Report result;
        runOnStack(stackSize, [&] { result = reportOfTemplate(text); });
        return result;
    }

    // A template that calls itself that many times and writes a letter each time.
    static std::string descending(int levels) {
        return stylesheet("method=\"text\"",
                          "<xsl:template match=\"/\"><xsl:call-template name=\"down\">"
                          "<xsl:with-param name=\"n\" select=\"" +
                              std::to_string(levels) +
                              "\"/></xsl:call-template></xsl:template>"
                              "<xsl:template name=\"down\"><xsl:param name=\"n\"/>"
                              "<xsl:if test=\"$n &gt; 0\">x<xsl:call-template name=\"down\">"
                              "<xsl:with-param name=\"n\" select=\"$n - 1\"/>"
                              "</xsl:call-template></xsl:if></xsl:template>");
    }

    // That many templates, each of which calls the next one.
    static std::string chain(int levels) {
        std::string templates =
            "<xsl:template match=\"/\"><xsl:call-template name=\"t1\"/></xsl:template>";
        for (int level = 1; level < levels; ++level) {
            templates += "<xsl:template name=\"t" + std::to_string(level) +
                         "\">x<xsl:call-template name=\"t" + std::to_string(level + 1) +
                         "\"/></xsl:template>";
        }
        return stylesheet("method=\"text\"", templates + "<xsl:template name=\"t" +
                                                 std::to_string(levels) + "\">x</xsl:template>");
    }

    // Descends with apply-templates and writes nested elements.
    static std::string nesting(int levels) {
        return stylesheet("method=\"html\"",
                          "<xsl:template match=\"/\"><xsl:apply-templates select=\"//property\">"
                          "<xsl:with-param name=\"n\" select=\"" +
                              std::to_string(levels) +
                              "\"/></xsl:apply-templates></xsl:template>"
                              "<xsl:template match=\"property\"><xsl:param name=\"n\"/>"
                              "<xsl:if test=\"$n &gt; 0\"><b><xsl:apply-templates select=\".\">"
                              "<xsl:with-param name=\"n\" select=\"$n - 1\"/>"
                              "</xsl:apply-templates></b></xsl:if></xsl:template>");
    }

    static std::string nested(std::size_t levels) {
        std::string text;
        for (std::size_t level = 0; level < levels; ++level)
            text += "<b>";
        for (std::size_t level = 0; level < levels; ++level)
            text += "</b>";
        return text + "\n";
    }
};

TEST_F(Recursion, WithoutEndFailsOnTheMainThread) {
    expectEveryEndlessTemplateToFail();
}

TEST_F(Recursion, WithoutEndFailsOnAStackOfOneMebibyte) {
    runOnStack(mebibyte, [this] { expectEveryEndlessTemplateToFail(); });
}

TEST_F(Recursion, WithoutEndFailsOnTheSmallestStack) {
    runOnStack(smallestStack, [this] { expectEveryEndlessTemplateToFail(); });
}

TEST_F(Recursion, WithoutEndFailsOnALargeStack) {
    runOnStack(8 * mebibyte, [this] { expectEveryEndlessTemplateToFail(); });
}

TEST_F(Recursion, WithoutEndThroughADocumentFails) {
    const std::string path = folder.file("endless.xml");
    writeFile(path, "<other/>");
    std::string url = path[0] == '/' ? "file://" + path : "file:///" + path;
    for (char& character : url) {
        if (character == '\\') character = '/';
    }
    const std::string text = stylesheet(
        "method=\"xml\"",
        "<xsl:template match=\"/\"><xsl:apply-templates select=\"//property\"/></xsl:template>"
        "<xsl:template match=\"*\"><xsl:apply-templates select=\"document('" +
            url + "')/other\"/></xsl:template>");
    EXPECT_EQ(failure(RGEN_E_XSLT_APPLY), reportOfTemplate(text));
    EXPECT_EQ(failure(RGEN_E_XSLT_APPLY), reportOnStack(mebibyte, text));
}

TEST_F(Recursion, OfFiveHundredLevelsFitsInOneMebibyte) {
    EXPECT_EQ(reportOf(std::string(500, 'x')), reportOnStack(mebibyte, descending(500)));
    EXPECT_EQ(reportOf(nested(500)), reportOnStack(mebibyte, nesting(500)));
}

TEST_F(Recursion, OfTwentyNineHundredLevelsFitsInFourMebibytes) {
    EXPECT_EQ(reportOf(std::string(2900, 'x')), reportOnStack(4 * mebibyte, chain(2900)));
    EXPECT_EQ(reportOf(nested(1000)), reportOnStack(4 * mebibyte, nesting(1000)));
}

TEST_F(Recursion, OfMoreThanThreeThousandLevelsFailsOnAnyStack) {
    EXPECT_EQ(failure(RGEN_E_XSLT_APPLY), reportOnStack(16 * mebibyte, chain(3100)));
}

TEST_F(Recursion, AnOrdinaryReportFitsOnTheSmallestStack) {
    const std::string row =
        "<xsl:for-each select=\"/data/properties/property\"><xsl:sort select=\"@name\"/>"
        "<xsl:if test=\"@name\"><tr><td><xsl:value-of select=\"@name\"/></td></tr></xsl:if>"
        "</xsl:for-each>";
    const std::string text =
        stylesheet("method=\"html\"",
                   "<xsl:template match=\"/\"><xsl:call-template name=\"table\"/></xsl:template>"
                   "<xsl:template name=\"table\"><table>" +
                       row + "</table></xsl:template>");
    EXPECT_EQ(reportOf("<table><tr><td>v</td></tr></table>\n"), reportOnStack(smallestStack, text));
}

TEST_F(Recursion, LongMarkedTextsFitOnTheSmallestStack) {
    const std::string longText(100000, 'm');
    EXPECT_EQ(reportOf(longText),
              reportOnStack(smallestStack, textStylesheet("QT_TRANSLATE_NOOP(\"QObject\", \"" +
                                                          longText + "\")")));
}

// The forms of one expression with that many steps or operators.
std::vector<std::string> longExpressions(std::size_t length) {
    std::string sum = "1";
    std::string path = "/x";
    std::string comparison = "1";
    for (std::size_t index = 0; index < length; ++index) {
        sum += "+1";
        path += "/x";
        comparison += "=1";
    }
    const auto repeated = [length](const std::string& text) {
        std::string result;
        for (std::size_t index = 0; index < length; ++index)
            result += text;
        return result;
    };
    return {sum,
            path,
            comparison,
            repeated("//x"),
            repeated("-") + "1",
            repeated("(") + "1" + repeated(")"),
            repeated("x[") + "1" + repeated("]"),
            repeated("string(") + "1" + repeated(")"),
            repeated("concat('a',") + "'b'" + repeated(")")};
}

TEST_F(Recursion, LongExpressionsAreSurvivedOnTheSmallestStack) {
    for (const std::size_t length : {400U, 900U, 4900U, 20000U}) {
        for (const std::string& expression : longExpressions(length)) {
            SCOPED_TRACE(std::to_string(length) + " " + expression.substr(0, 10));
            reportOnStack(smallestStack,
                          textStylesheet("<xsl:value-of select=\"" + expression + "\"/>done"));
            EXPECT_EQ(reportOf("alive"), reportOnStack(smallestStack, textStylesheet("alive")));
        }
    }
}

TEST_F(Recursion, OfAnExpressionToFiveHundredOperatorsWorksOnTheSmallestStack) {
    const std::string sum = longExpressions(500).front();
    EXPECT_EQ(
        reportOf("501"),
        reportOnStack(smallestStack, textStylesheet("<xsl:value-of select=\"" + sum + "\"/>")));
}

TEST_F(Recursion, WithoutEndFailsAlsoWithLongExpressionsOnTheWay) {
    for (const std::size_t length : {900U, 4900U}) {
        const std::string body = "<xsl:variable name=\"x\" select=\"" +
                                 longExpressions(length).front() + "\"/>" + callAgain;
        for (const std::size_t stackSize : {smallestStack, mebibyte, 4 * mebibyte}) {
            SCOPED_TRACE(std::to_string(length) + " on " + std::to_string(stackSize));
            EXPECT_EQ(failure(RGEN_E_XSLT_APPLY), reportOnStack(stackSize, endless(body)));
        }
    }
}

// A template whose variable "deep" holds elements nested that many hundred levels deep.
std::string withDeepTree(int hundreds, const std::string& use) {
    std::string start;
    std::string end;
    for (int level = 0; level < 100; ++level) {
        start += "<b>";
        end += "</b>";
    }
    return stylesheet(
        "method=\"xml\"",
        "<xsl:template match=\"/\"><xsl:variable name=\"deep\">"
        "<xsl:call-template name=\"down\"><xsl:with-param name=\"n\" select=\"" +
            std::to_string(hundreds) + "\"/></xsl:call-template></xsl:variable>" + use +
            "</xsl:template><xsl:template name=\"down\"><xsl:param name=\"n\"/>" + start +
            "<xsl:if test=\"$n &gt; 1\"><xsl:call-template name=\"down\">"
            "<xsl:with-param name=\"n\" select=\"$n - 1\"/></xsl:call-template>"
            "</xsl:if>" +
            end + "</xsl:template>");
}

// A tree is copied level by level inside one instruction.
TEST_F(Recursion, CopiesOfDeepTreesFailOrComeOutWhole) {
    const std::string use = "<xsl:copy-of select=\"$deep\"/>";
    const std::string twice =
        "<xsl:variable name=\"copy\">" + use + "</xsl:variable><xsl:copy-of select=\"$copy\"/>";
    const std::vector<int> depths =
        deepCopiesAreGuarded ? std::vector<int>{5, 50, 200, 2000} : std::vector<int>{5};
    for (const std::size_t stackSize : {smallestStack, mebibyte, 4 * mebibyte}) {
        for (const int hundreds : depths) {
            for (const std::string& copy : {use, twice}) {
                SCOPED_TRACE(std::to_string(hundreds) + "00 levels on " +
                             std::to_string(stackSize) + ": " + copy);
                const Report result = reportOnStack(stackSize, withDeepTree(hundreds, copy));
                EXPECT_TRUE(result == failure(RGEN_E_XSLT_APPLY) ||
                            (result.status == statusHex(RGEN_OK) &&
                             result.bytes.size() > 600U * static_cast<unsigned>(hundreds)))
                    << result.status << ", " << result.bytes.size() << " bytes";
                EXPECT_EQ(reportOf("alive"), reportOnStack(stackSize, textStylesheet("alive")));
            }
        }
    }
}

// Top-level elements "v0", "v1", ... of which each needs the next one. In the pattern of an element
// "{}" stands for its own name and "[]" for that of the next one.
std::string definitions(const std::string& pattern, int length) {
    std::string result;
    for (int index = 0; index < length; ++index) {
        std::string element = pattern;
        element.replace(element.find("{}"), 2, "v" + std::to_string(index));
        element.replace(element.find("[]"), 2, "v" + std::to_string(index + 1));
        result += element;
    }
    return result;
}

TEST_F(Recursion, LongChainsOfDefinitionsAreSurvivedOnOneMebibyte) {
    struct Row {
        const char* pattern;
        const char* use;
        int longest;
    };
    const std::vector<Row> rows = {
        {"<xsl:variable name=\"{}\" select=\"$[]\"/>", "<xsl:value-of select=\"$v0\"/>", 2500},
        {"<xsl:key name=\"{}\" match=\"property\" use=\"key('[]', 'v')\"/>",
         "<xsl:value-of select=\"key('v0', 'v')\"/>", 2500},
        {"<xsl:attribute-set name=\"{}\" use-attribute-sets=\"[]\"/>",
         "<x xsl:use-attribute-sets=\"v0\"/>", 500}};
    for (const Row& row : rows) {
        for (int length = 500; length <= row.longest; length *= 5) {
            SCOPED_TRACE(row.pattern + std::to_string(length));
            reportOnStack(mebibyte, stylesheet("method=\"xml\"", definitions(row.pattern, length) +
                                                                     "<xsl:template match=\"/\">" +
                                                                     row.use + "</xsl:template>"));
            EXPECT_EQ(reportOf("alive"), reportOnStack(mebibyte, textStylesheet("alive")));
        }
    }
}

}  // namespace
}  // namespace rgen_test
