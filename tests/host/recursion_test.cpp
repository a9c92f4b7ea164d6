// Templates that recurse without end, or deeply, on stacks of several sizes.
//
// SPDX-License-Identifier: MIT
#include <string>
#include <vector>

#include "host/recursion_fixture.h"
#include "support/process_figures.h"

namespace rgen_test {
namespace {

TEST_F(Recursion, WithoutEndFailsOnTheMainThread) {
    expectEveryEndlessTemplateToFail();
}

TEST_F(Recursion, WithoutEndFailsOnAStackOfOneMebibyte) {
    runOnStack(mebibyte, [this] { expectEveryEndlessTemplateToFail(); });
}

TEST_F(Recursion, WithoutEndFailsOnTheSmallestStack) {
    runOnStack(smallestStack, [this] { expectEveryEndlessTemplateToFail(); });
}

TEST_F(Recursion, WithoutEndFailsOnTheSmallestFiber) {
    smallestFiber().run(smallestStack, [this] { expectEveryEndlessTemplateToFail(); });
}

TEST_F(Recursion, WithoutEndFailsOnAFiberOfOneMebibyte) {
    runOnFiber(mebibyte, [this] { expectEveryEndlessTemplateToFail(); });
}

TEST_F(Recursion, WithoutEndFailsOnTheSmallestFiberOfASmallThread) {
    runOnStack(smallestStack, [this] {
        smallestFiber().run(smallestStack, [this] { expectEveryEndlessTemplateToFail(); });
    });
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
    for (const StackPlace& place : smallStackPlaces()) {
        EXPECT_EQ(failure(RGEN_E_XSLT_APPLY), reportAt(place, text)) << place.label;
    }
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
    for (const StackPlace& place : smallStackPlaces()) {
        EXPECT_EQ(reportOf("<table><tr><td>v</td></tr></table>\n"), reportAt(place, text))
            << place.label;
    }
}

TEST_F(Recursion, OfFortyLevelsFitsOnAnyFiber) {
    for (const StackPlace& place :
         {smallestFiber(), StackPlace{"fiber of 1 MiB", runOnFiber, mebibyte}}) {
        EXPECT_EQ(reportOf(std::string(40, 'x')), reportAt(place, descending(40))) << place.label;
        EXPECT_EQ(reportOf(nested(40)), reportAt(place, nesting(40))) << place.label;
    }
}

TEST_F(Recursion, LongMarkedTextsFitOnTheSmallestStack) {
    const std::string longText(100000, 'm');
    for (const StackPlace& place : smallStackPlaces()) {
        EXPECT_EQ(
            reportOf(longText),
            reportAt(place, textStylesheet("QT_TRANSLATE_NOOP(\"QObject\", \"" + longText + "\")")))
            << place.label;
    }
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

TEST_F(Recursion, LongExpressionsAreSurvivedOnSmallStacks) {
    for (const StackPlace& place : smallStackPlaces()) {
        for (const std::size_t length : {400U, 900U, 4900U, 20000U}) {
            for (const std::string& expression : longExpressions(length)) {
                SCOPED_TRACE(std::to_string(length) + " " + expression.substr(0, 10) + " on a " +
                             place.label);
                reportAt(place,
                         textStylesheet("<xsl:value-of select=\"" + expression + "\"/>done"));
                EXPECT_EQ(reportOf("alive"), reportAt(place, textStylesheet("alive")));
            }
        }
    }
}

TEST_F(Recursion, OfAnExpressionToFiveHundredOperatorsWorksOnSmallStacks) {
    const std::string sum = longExpressions(500).front();
    for (const StackPlace& place : smallStackPlaces()) {
        EXPECT_EQ(reportOf("501"),
                  reportAt(place, textStylesheet("<xsl:value-of select=\"" + sum + "\"/>")))
            << place.label;
    }
}

TEST_F(Recursion, WithoutEndFailsAlsoWithLongExpressionsOnTheWay) {
    std::vector<StackPlace> places = smallStackPlaces();
    places.push_back({"thread of 4 MiB", runOnStack, 4 * mebibyte});
    for (const std::size_t length : {400U, 900U, 4900U}) {
        const std::vector<std::string> expressions = longExpressions(length);
        for (std::size_t index = 0; index < expressions.size() * places.size(); ++index) {
            const std::string& expression = expressions[index / places.size()];
            const StackPlace& place = places[index % places.size()];
            if (!combinationIsTried(index / places.size(), index % places.size())) continue;
            SCOPED_TRACE(std::to_string(length) + " " + expression.substr(0, 10) + " on a " +
                         place.label);
            const Report result = reportAt(place, endless("<xsl:variable name=\"x\" select=\"" +
                                                          expression + "\"/>" + callAgain));
            EXPECT_TRUE(result == failure(RGEN_E_XSLT_APPLY) ||
                        result == failure(RGEN_E_XSLT_PARSE))
                << result;
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
    std::vector<StackPlace> places = smallStackPlaces();
    places.push_back({"thread of 4 MiB", runOnStack, 4 * mebibyte});
    for (const StackPlace& place : places) {
        for (const int hundreds : depths) {
            for (const std::string& copy : {use, twice}) {
                SCOPED_TRACE(std::to_string(hundreds) + "00 levels on a " + place.label + ": " +
                             copy);
                const Report result = reportAt(place, withDeepTree(hundreds, copy));
                EXPECT_TRUE(result == failure(RGEN_E_XSLT_APPLY) ||
                            (result.status == statusHex(RGEN_OK) &&
                             result.bytes.size() > 600U * static_cast<unsigned>(hundreds)))
                    << result.status << ", " << result.bytes.size() << " bytes";
                EXPECT_EQ(reportOf("alive"), reportAt(place, textStylesheet("alive")));
            }
        }
    }
}

// Top-level elements "v0", "v1", ... of which each needs the next one. In the pattern of an element
// "{}" is replaced by its own name and "[]" by that of the next one.
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

TEST_F(Recursion, LongChainsOfDefinitionsAreSurvivedOnSmallStacks) {
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
            const std::string text = stylesheet("method=\"xml\"", definitions(row.pattern, length) +
                                                                      "<xsl:template match=\"/\">" +
                                                                      row.use + "</xsl:template>");
            for (const StackPlace& place : smallStackPlaces()) {
                SCOPED_TRACE(row.pattern + std::to_string(length) + " on a " + place.label);
                reportAt(place, text);
                EXPECT_EQ(reportOf("alive"), reportAt(place, textStylesheet("alive")));
            }
        }
    }
}

}  // namespace
}  // namespace rgen_test
