// What a report shows of a value or a name: the display texts by hint, and what becomes of texts
// that look like markup, hold control characters or are not UTF-8.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "support/report_fixture.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
constexpr std::uint64_t greatestHint = std::numeric_limits<std::uint64_t>::max();

class ValueInReport : public ReportTest {
protected:
    ValueInReport() { putTemplate(textStylesheet("[" + valueOf("v") + "]")); }

    // The text of the value "v" in a report, "[" and "]" around it.
    Report reportOfNumber(std::int64_t number, std::uint64_t hint) {
        InputParams input;
        input.variants().addInt64("v", number, RGEN_HINT_GENERIC);
        input.variants().at(0).hint = hint;
        return report(input);
    }
};

struct NumberRow {
    std::int64_t number;
    std::uint64_t hint;
    const char* text;
};

TEST_F(ValueInReport, NumbersAreShownByTheirHint) {
    const TimeZone zone("UTC0");
    const std::vector<NumberRow> rows = {
        {255, RGEN_HINT_GENERIC, "255"},
        {255, RGEN_HINT_SIZE, "255"},
        {255, RGEN_HINT_SPEED, "255"},
        {255, RGEN_HINT_ADDRESS, "0xff"},
        {0, RGEN_HINT_GENERIC, "0"},
        {0, RGEN_HINT_ADDRESS, "0x0"},
        {-1, RGEN_HINT_GENERIC, "-1"},
        {-1, RGEN_HINT_ADDRESS, "0xffffffffffffffff"},
        {greatest, RGEN_HINT_SIZE, "9223372036854775807"},
        {least, RGEN_HINT_SPEED, "-9223372036854775808"},
        {least, RGEN_HINT_ADDRESS, "0x8000000000000000"},
        {0, RGEN_HINT_TIME, "00:00:00"},
        {86399, RGEN_HINT_TIME, "23:59:59"},
        {86399, RGEN_HINT_DATE, " 1.01.1970"},
        {86399, RGEN_HINT_DATE_TIME, " 1.01.1970 23:59:59"},
        {951782400, RGEN_HINT_DATE, "29.02.2000"},
        {32535215999, RGEN_HINT_DATE_TIME, "31.12.3000 23:59:59"},
        {32535216000, RGEN_HINT_DATE_TIME, "ERROR: BAD TIME_T INPUT"},
        {-1, RGEN_HINT_TIME, "ERROR: BAD TIME_T INPUT"},
        {-1, RGEN_HINT_DATE, "ERROR: BAD TIME_T INPUT"},
        {least, RGEN_HINT_DATE_TIME, "ERROR: BAD TIME_T INPUT"},
        {greatest, RGEN_HINT_TIME, "ERROR: BAD TIME_T INPUT"}};
    for (const NumberRow& row : rows) {
        SCOPED_TRACE(std::to_string(row.number) + " hint " + std::to_string(row.hint));
        EXPECT_EQ(reportOf("[" + std::string(row.text) + "]"),
                  reportOfNumber(row.number, row.hint));
    }
}

TEST_F(ValueInReport, EveryHintBeside2To7CountsAsGeneric) {
    for (const std::uint64_t hint :
         {std::uint64_t{RGEN_HINT_UNINITIALIZED}, std::uint64_t{RGEN_HINT_GENERIC},
          std::uint64_t{RGEN_HINT_DUMP}, std::uint64_t{9}, std::uint64_t{200}, greatestHint}) {
        SCOPED_TRACE(hint);
        EXPECT_EQ(reportOf("[86399]"), reportOfNumber(86399, hint));
    }
}

TEST_F(ValueInReport, TimesFollowTheLocalTimeZoneAndItsDaylightSaving) {
    const TimeZone zone("EST5EDT");
    EXPECT_EQ(reportOf("[31.12.1969 19:00:00]"), reportOfNumber(0, RGEN_HINT_DATE_TIME));
    EXPECT_EQ(reportOf("[14.01.2020 19:00:00]"), reportOfNumber(1579046400, RGEN_HINT_DATE_TIME));
    EXPECT_EQ(reportOf("[14.07.2020 20:00:00]"), reportOfNumber(1594771200, RGEN_HINT_DATE_TIME));
}

TEST_F(ValueInReport, BytesAreAHexDumpWithAClosingBlank) {
    InputParams input;
    input.variants().addBytes("v", {0x01, 0xAB});
    EXPECT_EQ(reportOf("[01 AB ]"), report(input));
    input.variants().addBytes("v", {0x00, 0xFF, 0x7F});
    EXPECT_EQ(reportOf("[00 FF 7F ]"), report(input));
    input.variants().addBytes("v", {});
    EXPECT_EQ(reportOf("[]"), report(input));
}

TEST_F(ValueInReport, TextsAndBytesDoNotDependOnTheHint) {
    const TimeZone zone("UTC0");
    for (std::uint64_t hint = 0; hint < 11; ++hint) {
        SCOPED_TRACE(hint);
        InputParams texts;
        texts.variants().addString("v", "86399");
        texts.variants().at(0).hint = hint;
        EXPECT_EQ(reportOf("[86399]"), report(texts));
        InputParams bytes;
        bytes.variants().addBytes("v", {0x2A});
        bytes.variants().at(0).hint = hint;
        EXPECT_EQ(reportOf("[2A ]"), report(bytes));
    }
}

struct TextRow {
    const char* label;
    std::string given;
    std::string shown;
};

std::vector<TextRow> ampersandRows() {
    return {{"lone ampersand", "&", ""},
            {"ampersand and semicolon", "&;", ""},
            {"empty character reference", "&#;", ""},
            {"reference to zero", "&#0;", ""},
            {"unclosed character reference", "&#12", ""},
            {"ampersand between blanks", "a & b", "a  b"},
            {"two ampersands", "&&", "&"},
            {"five ampersands", "&&&&&", "&&&&"},
            {"a query", "?a=1&b=2&c=3", "?a=1b=2&c=3"},
            {"amp", "&amp;", "&"},
            {"lt", "&lt;", "<"},
            {"gt", "&gt;", ">"},
            {"quot", "&quot;", "\""},
            {"apos", "&apos;", "'"},
            {"unclosed amp", "&amp", "amp"},
            {"unclosed lt", "&lt", "lt"},
            {"undefined entity", "&undefined;", ""},
            {"undefined entity of Cyrillic letters", "&\xD0\xBD\xD0\xB0;", ""},
            {"blank in an entity name", "&a b;", ""},
            {"blank in an entity name, with text around", "x &a b; y", "x  y"},
            {"ampersand and a distant semicolon", "AT&T; x", "AT x"},
            {"digit as entity name", "&1;", ""},
            {"percent as entity name", "&%;", ""},
            {"decimal reference", "&#65;", "A"},
            {"hexadecimal reference", "&#x41;", "A"},
            {"reference to 1", "&#1;", "\x01"},
            {"reference beyond Unicode", "&#x110000;", "\xEF\xBF\xBD"},
            {"huge reference", "&#99999999999;", "\xEF\xBF\xBD"},
            {"reference to a surrogate", "&#xD800;", "\xED\xA0\x80"},
            {"reference to U+FFFE", "&#xFFFE;", "\xEF\xBF\xBE"},
            {"no hexadecimal digits", "&#xZZ;", "ZZ;"},
            {"negative reference", "x&#-5;y", "x-5;y"},
            {"unclosed decimal", "x &#12 y", "x  y"},
            {"hexadecimal up to a blank", "x &#x41 y; z", "x  y; z"}};
}

std::vector<TextRow> plainRows() {
    return {{"element", "<b>bold</b>", "<b>bold</b>"},
            {"end of CDATA", "]]>", "]]>"},
            {"comment", "<!-- c -->", "<!-- c -->"},
            {"line ends and tab", "a\rb\nc\td\r\n", "a\rb\nc\td\r\n"},
            {"outer blanks", "  a  ", "  a  "},
            {"byte 01", "a\x01z", "a\x01z"},
            {"byte 1F", "\x1F", "\x1F"},
            {"byte FF", "a\xFFz", "a\xFFz"},
            {"cut two-byte sequence", "a\xC3", "a\xC3"},
            {"cut three-byte sequence", "a\xE2\x82", "a\xE2\x82"},
            {"overlong zero", "\xC0\x80", "\xC0\x80"},
            {"beyond Unicode", "\xF4\x90\x80\x80", "\xF4\x90\x80\x80"},
            {"U+FFFE", "\xEF\xBF\xBE", "\xEF\xBF\xBE"},
            {"code page 1251", "\xCF\xF0\xE8\xE2\xE5\xF2", "\xCF\xF0\xE8\xE2\xE5\xF2"},
            {"three scripts", "\xC3\xA9 \xD0\xB6 \xE6\xBC\xA2", "\xC3\xA9 \xD0\xB6 \xE6\xBC\xA2"},
            {"beyond the first plane", "\xF0\x9F\x93\x84", "\xF0\x9F\x93\x84"}};
}

std::vector<TextRow> textRows() {
    std::vector<TextRow> rows = ampersandRows();
    for (const TextRow& row : plainRows())
        rows.push_back(row);
    return rows;
}

TEST_F(ValueInReport, ATextIsReadAsElementContent) {
    for (const TextRow& row : textRows()) {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(reportOf("[" + row.shown + "]"), reportOfValue(row.given));
    }
}

TEST_F(ValueInReport, TheTextOfAPairIsReadAsElementContent) {
    for (const TextRow& row : textRows()) {
        SCOPED_TRACE(row.label);
        InputParams input;
        input.pairs().add("v", row.given);
        EXPECT_EQ(reportOf("[" + row.shown + "]"), report(input));
    }
}

TEST_F(ValueInReport, APersistentTextIsReadAsElementContentOnceMore) {
    const std::vector<TextRow> rows = {{"twice escaped", "a &amp;amp; b", "a & b"},
                                       {"once escaped", "a &amp; b", "a  b"},
                                       {"markup", "<b>", "<b>"},
                                       {"byte 01", "a\x01z", "a\xEF\xBF\xBDz"}};
    for (const TextRow& row : rows) {
        SCOPED_TRACE(row.label);
        ASSERT_EQ(RGEN_OK, storePairs(generator, defaultGuid(), {{"v", row.given}}));
        InputParams input;
        EXPECT_EQ(reportOf("[" + row.shown + "]"), report(input));
    }
}

TEST_F(ValueInReport, MarkupInATextIsEscapedInHtml) {
    putTemplate(stylesheet("method=\"html\" encoding=\"UTF-8\"",
                           "<xsl:template match=\"/\"><p>" + valueOf("v") + "</p></xsl:template>"));
    EXPECT_EQ(reportOf("<p>&lt;b&gt; &amp; ]]&gt;</p>\n"), reportOfValue("<b> &amp; ]]>"));
}

TEST_F(ValueInReport, MarkupInATextNeverBecomesAnElement) {
    const std::vector<std::string> texts = {"<x/></property><property name='y'>z</property>",
                                            "t&</property><property name='y'>z</property>;",
                                            "t&<x/>;", "a&<b>c</b>;d&e<f/>;g"};
    for (const std::string& text : texts) {
        SCOPED_TRACE(text);
        putTemplate(textStylesheet("<xsl:value-of select=\"count(//*)\"/>"));
        EXPECT_EQ(reportOf("3"), reportOfValue(text));
        putTemplate(stylesheet("method=\"xml\" omit-xml-declaration=\"yes\"",
                               "<xsl:template match=\"/\"><xsl:copy-of select=\"//property\"/>"
                               "</xsl:template>"));
        const Report copied = reportOfValue(text);
        EXPECT_EQ(statusHex(RGEN_OK), copied.status);
        EXPECT_EQ(2, std::count(copied.bytes.begin(), copied.bytes.end(), '<')) << copied;
    }
}

TEST_F(ValueInReport, AReferenceWithMarkupIsNothing) {
    putTemplate(textStylesheet("[" + valueOf("v") + "]"));
    EXPECT_EQ(reportOf("[ab]"), reportOfValue("a&<b>x</b>;b"));
    EXPECT_EQ(reportOf("[R & D]"), reportOfValue("R&<x@y.org>; &amp; D"));
}

TEST_F(ValueInReport, BytesThatAreNoCharactersGoIntoReportsAsTheyAre) {
    putTemplate(textStylesheet("[" + valueOf("v") + "]"));
    for (const std::string text : {"\x01", "\xFF", "\xC3", "\xE2\x82", "\xC0\x80", "\xEE\xF2"}) {
        EXPECT_EQ(reportOf("[" + text + "]"), reportOfValue(text));
    }
}

TEST_F(ValueInReport, ControlCharactersAreReplacedInXmlOutputAlone) {
    const struct {
        const char* given;
        const char* inXml;
    } rows[] = {
        {"a\x01z", "a&#xFFFD;z"}, {"a\x0Bz", "a&#xFFFD;z"}, {"a\x1Fz", "a&#xFFFD;z"},
        {"&#1;", "&#xFFFD;"},     {"a\rz", "a&#13;z"},      {"a\xFFz", "a\xFFz"},
        {"a\tz\n", "a\tz\n"},     {"\x7F", "\x7F"},         {"\xEF\xBF\xBE", "\xEF\xBF\xBE"}};
    const std::string body = "<xsl:template match=\"/\"><p>" + valueOf("v") + "</p></xsl:template>";
    for (const auto& row : rows) {
        SCOPED_TRACE(row.inXml);
        putTemplate(
            stylesheet("method=\"xml\" encoding=\"UTF-8\" omit-xml-declaration=\"yes\"", body));
        EXPECT_EQ(reportOf("<p>" + std::string(row.inXml) + "</p>\n"), reportOfValue(row.given));
        if (row.given[0] == '&') continue;
        putTemplate(stylesheet("method=\"html\" encoding=\"UTF-8\"", body));
        EXPECT_EQ(reportOf("<p>" + std::string(row.given) + "</p>\n"), reportOfValue(row.given));
    }
}

TEST_F(ValueInReport, ANameIsAnAttributeValueWithoutInterpretation) {
    putTemplate(
        textStylesheet("<xsl:for-each select=\"//property\">[<xsl:value-of select=\"@name\"/>"
                       "]</xsl:for-each>"));
    const std::vector<std::string> names = {
        "&",   "&amp;",    "&undefined;", "&#65;",        "<b>",      "\"q\"",
        "'a'", "a b",      " edge ",      "a\tb\nc",      "\x01",     "\xFF",
        "]]>", "\xC3\xA9", "\xE2\x82",    "\xEF\xBF\xBE", "property", std::string(5000, 'n')};
    for (const std::string& name : names) {
        SCOPED_TRACE(name.substr(0, 20));
        InputParams input;
        input.variants().addString(name, "text");
        EXPECT_EQ(reportOf("[" + name + "]"), report(input));
    }
}

TEST_F(ValueInReport, TheDocumentIsDataWithPropertiesWithNamedProperty) {
    putTemplate(textStylesheet(
        "<xsl:value-of select=\"name(/*)\"/>,<xsl:value-of select=\"count(/*/@*)\"/>,"
        "<xsl:value-of select=\"name(/*/*)\"/>,<xsl:value-of select=\"count(/*/*)\"/>,"
        "<xsl:value-of select=\"name(/*/*/*)\"/>,<xsl:value-of select=\"name(/*/*/*/@*)\"/>,"
        "<xsl:value-of select=\"count(/*/*/*/@*)\"/>,<xsl:value-of select=\"count(//*)\"/>,"
        "<xsl:value-of select=\"namespace-uri(/*)\"/>,"
        "<xsl:value-of select=\"count(/*/text()|/*/*/text())\"/>"));
    EXPECT_EQ(reportOf("data,0,properties,1,property,name,1,3,,0"), reportOfValue("1"));
}

TEST_F(ValueInReport, ALongTextArrivesWhole) {
    const std::string longText(3000000, 'x');
    EXPECT_EQ(reportOf("[" + longText + "]"), reportOfValue(longText));
}

TEST_F(ValueInReport, ManyValuesArriveEachOnce) {
    putTemplate(
        textStylesheet("<xsl:value-of select=\"count(//property)\"/>/<xsl:value-of "
                       "select=\"sum(//property)\"/>"));
    InputParams input;
    for (int number = 1; number <= 5000; ++number) {
        input.variants().addInt64("value " + std::to_string(number), number);
    }
    EXPECT_EQ(reportOf("5000/12502500"), report(input));
}

}  // namespace
}  // namespace rgen_test
