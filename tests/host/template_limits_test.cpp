// Limits that authors of templates meet: how deep templates may call each other, and which numbers
// come out whole.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/report_fixture.h"
#include "support/sized_thread.h"

namespace rgen_test {
namespace {

class TemplateLimits : public ReportTest {
protected:
    // The report of a text template with that body, on a stack that has room for all levels.
    Report textOf(const std::string& body, const std::string& topLevel = std::string()) {
        Report result;
        const std::string text = stylesheet(
            "method=\"text\"", "<xsl:template match=\"/\">" + body + "</xsl:template>" + topLevel);
        runOnStack(16 * mebibyte, [&] { result = reportOfTemplate(text); });
        return result;
    }

    // A template that calls itself that many times, inside these elements.
    Report descent(int levels, const std::string& start, const std::string& end) {
        const std::string call =
            "<xsl:call-template name=\"down\"><xsl:with-param name=\"n\" select=\"";
        return textOf(call + std::to_string(levels) + "\"/></xsl:call-template>",
                      "<xsl:template name=\"down\"><xsl:param name=\"n\"/>" + start + call +
                          "$n - 1\"/></xsl:call-template>" + end + "</xsl:template>");
    }

    std::string number(const std::string& expression) {
        return textOf("<xsl:value-of select=\"" + expression + "\"/>").bytes;
    }
    std::string formatted(const std::string& expression) {
        return number("format-number(" + expression + ", '#,##0')");
    }
};

TEST_F(TemplateLimits, CallsInsideAConditionCountTwice) {
    const std::string ifStart = "x<xsl:if test=\"$n &gt; 0\">";
    const struct {
        const char* label;
        std::string start;
        std::string end;
        int levels;
    } rows[] = {
        {"if", ifStart, "</xsl:if>", 1490},
        {"choose", "x<xsl:choose><xsl:when test=\"$n &gt; 0\">", "</xsl:when></xsl:choose>", 1490},
        {"choose inside if", ifStart + "<xsl:choose><xsl:when test=\"true()\">",
         "</xsl:when></xsl:choose></xsl:if>", 990},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        const std::string all(static_cast<std::size_t>(row.levels) + 1, 'x');
        EXPECT_EQ(reportOf(all), descent(row.levels, row.start, row.end));
        EXPECT_EQ(failure(RGEN_E_XSLT_APPLY), descent(row.levels + 20, row.start, row.end));
    }
}

TEST_F(TemplateLimits, CallsOutsideAConditionCountOnce) {
    const auto applied = [this](int levels) {
        return textOf(
            "<xsl:apply-templates select=\"data\" mode=\"down\">"
            "<xsl:with-param name=\"n\" select=\"" +
                std::to_string(levels) + "\"/></xsl:apply-templates>",
            "<xsl:template match=\"data\" mode=\"down\"><xsl:param name=\"n\"/>x"
            "<xsl:apply-templates select=\"self::*[$n &gt; 0]\" mode=\"down\">"
            "<xsl:with-param name=\"n\" select=\"$n - 1\"/></xsl:apply-templates>"
            "</xsl:template>");
    };
    EXPECT_EQ(statusHex(RGEN_OK), applied(2900).status);
    EXPECT_EQ(failure(RGEN_E_XSLT_APPLY), applied(3000));
}

TEST_F(TemplateLimits, ComputedNumbersFromTwoGigaOnComeWithAnExponent) {
    EXPECT_EQ("2147483646", number("2147483645 + 1"));
    EXPECT_EQ("2.147483647e+09", number("2147483646 + 1"));
    EXPECT_EQ("5.00107862016e+11", number("500107862016 * 1"));
    EXPECT_EQ("9.00719925474099e+15", number("9007199254740991 * 1"));
    EXPECT_EQ("-2147483647", number("-2147483647"));
}

TEST_F(TemplateLimits, FormatNumberIsExactUpToTwoToThe52) {
    EXPECT_EQ("2,147,483,647", formatted("2147483647"));
    EXPECT_EQ("500,107,862,016", formatted("500107862016"));
    EXPECT_EQ("4,503,599,627,370,495", formatted("4503599627370495"));
    EXPECT_EQ("4,503,599,627,370,496", formatted("4503599627370496"));
    // Odd numbers beyond become even ones.
    EXPECT_EQ("4,503,599,627,370,498", formatted("4503599627370497"));
    EXPECT_EQ("9,007,199,254,740,992", formatted("9007199254740991"));
    EXPECT_EQ("12,345,678,901,234,568", formatted("12345678901234567"));
}

TEST_F(TemplateLimits, FractionsAreTextsThatSortAndAdd) {
    putTemplate(textStylesheet(
        "<xsl:for-each select=\"//property\"><xsl:sort select=\".\" data-type=\"number\"/>"
        "<xsl:value-of select=\"concat(., ' ')\"/></xsl:for-each>"
        "<xsl:value-of select=\"format-number(sum(//property), '0.00')\"/>"));
    InputParams input;
    input.variants().addString("a", "10.5").addString("b", "9.25").addString("c", "-0.75");
    EXPECT_EQ(reportOf("-0.75 9.25 10.5 19.00"), report(input));
}

}  // namespace
}  // namespace rgen_test
