// SPDX-License-Identifier: MIT
#include "templates/xpath_check.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace cli {
namespace {

ExpressionNames someNames() {
    ExpressionNames names;
    names.variables = {"peak", "size", "dump"};
    names.prefixes = {{"xsl", "http://www.w3.org/1999/XSL/Transform"},
                      {"exsl", "http://exslt.org/common"},
                      {"ext", "urn:other"},
                      {"libxslt", "http://xmlsoft.org/XSLT/namespace"}};
    names.keys = {"p", "list"};
    names.decimalFormats = {"grouped"};
    return names;
}

/// "offset+length what; advice" for each problem, one a line.
std::string problemsOf(const std::string& expression, ExpressionKind kind,
                       const ExpressionNames& names = someNames()) {
    std::string lines;
    for (const ExpressionProblem& problem : checkExpression(expression, kind, names)) {
        if (!lines.empty()) lines += "\n";
        lines += std::to_string(problem.offset) + "+" + std::to_string(problem.length) + " " +
                 problem.what;
        if (!problem.advice.empty()) lines += "; " + problem.advice;
    }
    return lines;
}

std::string problemsOf(const std::string& expression) {
    return problemsOf(expression, ExpressionKind::Expression);
}

struct Row {
    const char* expression;
    const char* problems;
};

std::ostream& operator<<(std::ostream& stream, const Row& row) {
    return stream << row.expression;
}

class ExpressionTable : public testing::TestWithParam<Row> {};
class PatternTable : public testing::TestWithParam<Row> {};
class ValueTemplateTable : public testing::TestWithParam<Row> {};

TEST_P(ExpressionTable, HasTheseProblems) {
    EXPECT_EQ(problemsOf(GetParam().expression), GetParam().problems);
}

TEST_P(PatternTable, HasTheseProblems) {
    EXPECT_EQ(problemsOf(GetParam().expression, ExpressionKind::Pattern), GetParam().problems);
}

TEST_P(ValueTemplateTable, HasTheseProblems) {
    EXPECT_EQ(problemsOf(GetParam().expression, ExpressionKind::ValueTemplate),
              GetParam().problems);
}

INSTANTIATE_TEST_SUITE_P(
    Correct, ExpressionTable,
    testing::Values(
        Row{"key('p', 'Device.Model')", ""},
        Row{"concat(substring-before(@name, 'Text'), 'Lang')", ""}, Row{"$peak * -2 + 1", ""},
        Row{"position() = last()", ""}, Row{".", ""}, Row{"..", ""}, Row{"/", ""},
        Row{"//property[starts-with(@name, 'Hours.')]", ""},
        Row{"/data/properties/property[@name = 'A']/text()", ""}, Row{"/*/*/*", ""},
        Row{"@*|node()", ""}, Row{"//comment()", ""},
        Row{"../property[@name='A'] | ../../properties", ""}, Row{"ancestor::data//property", ""},
        Row{"format-number(1, '0.0', 'grouped')", ""}, Row{"libxslt:node-set('a')", ""},
        Row{"function-available('exsl:node-set')", ""}, Row{"* * *", ""}, Row{"3 mod2", ""},
        Row{"1 div 2 mod 3", ""}, Row{"following-sibling::property[1]", ""},
        Row{"property[@name = current()/@name]", ""},
        Row{"self::node()[@name='x' or @name='y']", ""}, Row{"string-length() > 1", ""},
        Row{"'it is \"quoted\"'", ""}, Row{"1.5e3", ""}, Row{"namespace::*", ""},
        Row{"@xml:lang[false()]",
            "0+9 \"@xml:lang\" matches nothing in the data document; a property has only the "
            "attribute name"}));

INSTANTIATE_TEST_SUITE_P(
    Names, ExpressionTable,
    testing::Values(
        Row{"flor($size div 86400)",
            "0+4 unknown function \"flor\" in \"flor($size div 86400)\"; did you mean \"floor\"?"},
        Row{"zzzzzzzz(1)",
            "0+8 unknown function \"zzzzzzzz\" in \"zzzzzzzz(1)\"; only the "
            "functions of XPath 1.0 and XSLT 1.0 are available"},
        Row{"lower-case('A')",
            "0+10 unknown function \"lower-case\" in \"lower-case('A')\"; write "
            "translate(TEXT, 'ABC...', 'abc...')"},
        Row{"$peek", "0+5 unknown variable \"peek\"; did you mean \"peak\"?"},
        Row{"$peak-1",
            "0+7 unknown variable \"peak-1\"; \"-\" can be part of a name; to subtract, "
            "write blanks around it"},
        Row{"$x:y",
            "0+4 the prefix \"x\" is not declared in \"$x:y\"; declare xmlns:x in the root "
            "element"},
        Row{"key('q', 'A')", "4+3 no xsl:key \"q\"; did you mean \"p\"?"},
        Row{"format-number(1, '0', 'groped')",
            "22+8 no xsl:decimal-format \"groped\"; did you mean \"grouped\"?"},
        Row{"substring('a')",
            "0+9 \"substring\" takes 2 or 3 arguments, not 1, in \"substring('a')\""},
        Row{"concat('a')", "0+6 \"concat\" takes at least 2 arguments, not 1, in \"concat('a')\""},
        Row{"position(1)", "0+8 \"position\" takes no argument, not 1, in \"position(1)\""},
        Row{"count('a')",
            "6+3 \"count\" takes nodes, not a text, in \"count('a')\"; write a path "
            "without quotes"},
        Row{"exsl:node-set($peak)",
            "0+13 \"exsl:node-set\" is a function of EXSLT, which is not available here, in "
            "\"exsl:node-set($peak)\"; declare "
            "xmlns:libxslt=\"http://xmlsoft.org/XSLT/namespace\" and call libxslt:node-set()"},
        Row{"str:tokenize('a')",
            "0+12 \"str:tokenize\" is a function of EXSLT, which is not available here, in "
            "\"str:tokenize('a')\"; write a template that calls itself, with substring-before() "
            "and "
            "substring-after()"},
        Row{"ext:go()",
            "0+6 \"ext:go\" is an extension function, which is not available here, in "
            "\"ext:go()\"; use functions of XSLT 1.0, or pass the result as a value"},
        Row{"xls:template",
            "0+12 the prefix \"xls\" is not declared in \"xls:template\"; did you "
            "mean \"xsl\"?\n0+12 \"xls:template\" matches nothing in the data "
            "document; a value is selected by its name: property[@name = "
            "'xls:template']"},
        Row{"document('extra.xml')",
            "9+11 document('extra.xml') is not available here: the path belongs to the folder in "
            "which the program runs, not to the template's; pass what it contains as values, or "
            "keep it in xsl:variable or xsl:key of the template"},
        Row{"document('')",
            "9+2 document('') is not available here: the template is not a document that can be "
            "read; pass what it contains as values, or keep it in xsl:variable or xsl:key of the "
            "template"},
        Row{"@name = 'A' or 'B'",
            "15+3 the text 'B' alone is always true in \"@name = 'A' or 'B'\"; "
            "repeat the comparison: A = B or A = C"}));

INSTANTIATE_TEST_SUITE_P(
    Syntax, ExpressionTable,
    testing::Values(
        Row{"", "0+0 bad XPath \"\": it is empty; write \".\" for the node itself"},
        Row{"$size == 1", "6+2 bad XPath \"$size == 1\": \"==\" is not an operator; write \"=\""},
        Row{"1 && 2", "2+2 bad XPath \"1 && 2\": \"&&\" is not an operator; write \"and\""},
        Row{"1 || 2",
            "2+2 bad XPath \"1 || 2\": \"||\" is not an operator; write \"or\", or "
            "concat() for texts"},
        Row{"!$size", "0+1 bad XPath \"!$size\": \"!\" is not an operator; write not(...)"},
        Row{"1 <> 2", "2+2 bad XPath \"1 <> 2\": \"<>\" is not an operator; write \"!=\""},
        Row{"1 => 2", "2+2 bad XPath \"1 => 2\": \"=>\" is not an operator; write \">=\""},
        Row{"1 % 2", "2+1 bad XPath \"1 % 2\": \"%\" is not an operator; write \"mod\""},
        Row{"1 / 2",
            "4+1 bad XPath \"1 / 2\": a path cannot continue with \"2\"; write \"div\" to "
            "divide"},
        Row{"if ($size) then 1 else 2",
            "0+2 bad XPath \"if ($size) then 1 else 2\": \"if\" is not "
            "in XPath 1.0; use xsl:choose"},
        Row{"for $x in //property return $x",
            "0+3 bad XPath \"for $x in //property return $x\": \"for\" is not in XPath 1.0; use "
            "xsl:for-each"},
        Row{"$size eq 1", "6+2 bad XPath \"$size eq 1\": \"eq\" is not in XPath 1.0; write \"=\""},
        Row{"'it's'",
            "5+1 bad XPath \"'it's'\": the text that begins with ' does not end; a text "
            "that contains ' is written in double quotes"},
        Row{"count(//property", "5+1 bad XPath \"count(//property\": \"(\" is not closed"},
        Row{"1)", "1+1 bad XPath \"1)\": \")\" closes no \"(\""},
        Row{"property[1)", "10+1 bad XPath \"property[1)\": \")\" closes no \"(\""},
        Row{"$size and", "6+3 bad XPath \"$size and\": \"and\" has no right side"},
        Row{"= 1", "0+1 bad XPath \"= 1\": \"=\" has no left side"},
        Row{"property[]", "8+1 bad XPath \"property[]\": the predicate is empty"},
        Row{"concat('a',)", "10+1 bad XPath \"concat('a',)\": an argument is missing after \",\""},
        Row{".[1]",
            "0+1 bad XPath \".[1]\": \".\" cannot have a predicate; write "
            "self::node()[...]"},
        Row{"ancester::data",
            "0+8 bad XPath \"ancester::data\": unknown axis \"ancester\"; did you "
            "mean \"ancestor\"?"},
        Row{"$size adn 1",
            "6+3 bad XPath \"$size adn 1\": an operator is missing between \"$size\" "
            "and \"adn\"; did you mean \"and\"?"},
        Row{"(1, 2)",
            "2+1 bad XPath \"(1, 2)\": only arguments of functions are separated by "
            "\",\"; XPath 1.0 has no lists; join nodes with \"|\""},
        Row{"property/string()",
            "9+6 bad XPath \"property/string()\": a path cannot continue with the function "
            "\"string\"; write string(PATH)"},
        Row{"a/(b|c)",
            "2+1 bad XPath \"a/(b|c)\": a path cannot continue with \"(\" in XPath 1.0; "
            "write the whole paths with \"|\" between them"},
        Row{"\u201cA\u201d",
            "0+3 bad XPath \"\u201cA\u201d\": \"\u201c\" has no meaning in XPath; write ' or \""},
        Row{"{$size}",
            "0+1 bad XPath \"{$size}\": \"{\" has no meaning in XPath; only attributes of "
            "output elements have braces; remove them"},
        Row{"'a' 'b'",
            "4+3 bad XPath \"'a' 'b'\": a text cannot contain its own quote; write it in "
            "the other quotes, or join texts with concat()"},
        Row{"property/", "8+1 bad XPath \"property/\": a step is missing after \"/\""},
        Row{"@", "0+1 bad XPath \"@\": the name of the attribute is missing"},
        Row{"$", "0+1 bad XPath \"$\": a name is missing after \"$\""}));

INSTANTIATE_TEST_SUITE_P(
    Paths, ExpressionTable,
    testing::Values(
        Row{"/dat", "0+4 \"/dat\" matches nothing in the data document; did you mean \"/data\"?"},
        Row{"/data/property",
            "0+14 \"/data/property\" matches nothing in the data document; the data document is "
            "/data/properties/property with the attribute name"},
        Row{"Device",
            "0+6 \"Device\" matches nothing in the data document; a value is selected by "
            "its name: property[@name = 'Device']"},
        Row{"property[name = 'A']",
            "9+4 \"name\" matches nothing in the data document; did you mean \"@name\"?"},
        Row{"property[1]/row",
            "12+3 \"row\" matches nothing in the data document; a value is selected "
            "by its name: property[@name = 'row']"},
        Row{"@nam", "0+4 \"@nam\" matches nothing in the data document; did you mean \"@name\"?"},
        Row{"$dump/item",
            "0+10 \"$dump/item\" matches nothing in the data document; a value is "
            "selected by its name: property[@name = 'item']"}));

INSTANTIATE_TEST_SUITE_P(
    Patterns, PatternTable,
    testing::Values(
        Row{"/", ""}, Row{"property", ""}, Row{"*", ""}, Row{"@*|node()", ""}, Row{"text()", ""},
        Row{"key('p', 'A')", ""}, Row{"property[@name = 'A']|data", ""}, Row{"data//property", ""},
        Row{"properties/property[position() = 1]", ""}, Row{"comment()", ""},
        Row{"/dat", "0+4 \"/dat\" matches nothing in the data document; did you mean \"/data\"?"},
        Row{"property|row",
            "9+3 \"row\" matches nothing in the data document; a value is selected "
            "by its name: property[@name = 'row']"},
        Row{"property[flor(.) = 1]",
            "9+4 unknown function \"flor\" in \"property[flor(.) = 1]\"; "
            "did you mean \"floor\"?"},
        Row{"ancestor::data",
            "0+8 bad XPath \"ancestor::data\": a pattern has only the axes child "
            "and attribute; write the condition in a predicate: property[...]"},
        Row{"..",
            "0+2 bad XPath \"..\": a pattern has no step \"..\"; write the name of the node, "
            "or \"*\""},
        Row{"contains(@name, 'A')",
            "0+8 bad XPath \"contains(@name, 'A')\": a pattern cannot call \"contains\"; write the "
            "condition in a predicate: property[...]"},
        Row{"property and data",
            "9+3 bad XPath \"property and data\": \"and\" cannot join patterns; "
            "write \"|\" between alternatives, conditions in a predicate"},
        Row{"key('p', $size)",
            "0+3 bad XPath \"key('p', $size)\": arguments of \"key\" in a pattern must be texts; "
            "write the condition in a predicate: property[...]"},
        Row{"property[1", "8+1 bad XPath \"property[1\": \"[\" is not closed"},
        Row{"x:row",
            "0+5 the prefix \"x\" is not declared in \"x:row\"; declare xmlns:x in the root "
            "element\n0+5 \"x:row\" matches nothing in the data document; a value is "
            "selected by its name: property[@name = 'x:row']"}));

INSTANTIATE_TEST_SUITE_P(
    ValueTemplates, ValueTemplateTable,
    testing::Values(Row{"plain", ""}, Row{"a{{b}}c", ""}, Row{"x{$size}y{key('p', '}')}", ""},
                    Row{"{$sise} {flor(1)}",
                        "1+5 unknown variable \"sise\"; did you mean \"size\"?\n9+4 unknown "
                        "function \"flor\" in \"flor(1)\"; did you mean \"floor\"?"},
                    Row{"a{b", "1+1 \"{\" in an attribute begins an expression; write \"{{\""},
                    Row{"a}b", "1+1 \"}\" in an attribute ends no expression; write \"}}\""},
                    Row{"{}",
                        "0+2 \"{}\" in an attribute is an expression without content, which writes "
                        "nothing; write \"{{}}\""},
                    Row{"{$size == 1}",
                        "7+2 bad XPath \"$size == 1\": \"==\" is not an operator; write \"=\""},
                    Row{"{color red}",
                        "7+3 bad XPath \"color red\": an operator is missing between \"color\" "
                        "and \"red\"; a brace that is no expression is written \"{{\" or "
                        "\"}}\""}));

TEST(CheckExpression, AVariableInAKeyIsAnError) {
    ExpressionNames names = someNames();
    names.variablesAllowed = false;
    EXPECT_EQ(
        problemsOf("property[. != $size]", ExpressionKind::KeyPattern, names),
        "14+5 bad XPath \"property[. != $size]\": xsl:key cannot use variables; write the value "
        "itself");
    EXPECT_EQ(problemsOf("$size", ExpressionKind::Expression, names),
              "0+5 bad XPath \"$size\": xsl:key cannot use variables; write the value itself");
}

TEST(CheckExpression, AVariableInTheMatchOfATemplateIsAnError) {
    ExpressionNames names = someNames();
    EXPECT_EQ(problemsOf("property[. != $size]", ExpressionKind::Pattern, names), "");
    names.variablesAllowed = false;
    EXPECT_EQ(
        problemsOf("property[. != $size]", ExpressionKind::Pattern, names),
        "14+5 bad XPath \"property[. != $size]\": match of xsl:template cannot use variables; "
        "compare with xsl:if or xsl:choose inside the template");
}

TEST(CheckExpression, APatternOfAKeyIsReadAsTheLibraryReadsIt) {
    EXPECT_EQ(problemsOf("property[contains(., '|')]|data", ExpressionKind::KeyPattern), "");
    EXPECT_EQ(problemsOf("descendant::property", ExpressionKind::KeyPattern), "");
    EXPECT_EQ(problemsOf("prop erty", ExpressionKind::KeyPattern),
              "5+4 bad XPath \"prop erty\": an operator is missing between \"prop\" and \"erty\"");
}

TEST(CheckExpression, AFunctionThatTheTemplateTestsForIsNotUnknown) {
    ExpressionNames names = someNames();
    names.guardedFunctions = {"exsl:node-set", "lower-case"};
    EXPECT_EQ(problemsOf("exsl:node-set($size)", ExpressionKind::Expression, names), "");
    EXPECT_EQ(problemsOf("lower-case('A')", ExpressionKind::Expression, names), "");
}

TEST(CheckExpression, PathsAreNotComparedWhenThereAreOtherDocuments) {
    ExpressionNames names = someNames();
    names.onlyDataDocument = false;
    EXPECT_EQ(problemsOf("row", ExpressionKind::Pattern, names), "");
    EXPECT_TRUE(usesOtherDocuments("document('a')", ExpressionKind::Expression));
    EXPECT_TRUE(usesOtherDocuments("{x:node-set($a)}", ExpressionKind::ValueTemplate));
    EXPECT_FALSE(usesOtherDocuments("'document(1)' or node-set", ExpressionKind::Expression));
}

TEST(CheckExpression, AMessageShowsTheSurroundingsOfAPlaceInALongExpression) {
    const std::string long_expression =
        "concat('" + std::string(100, 'x') + "', flor(1), '" + std::string(100, 'y') + "')";
    EXPECT_EQ(problemsOf(long_expression),
              "111+4 unknown function \"flor\" in \"..." + std::string(17, 'x') + "', flor(1), '" +
                  std::string(50, 'y') + "...\"; did you mean \"floor\"?");
}

TEST(CheckExpression, TheNamesThatAnExpressionUsesAreListed) {
    EXPECT_EQ(keysUsedBy("key('p', 1) | key(\"q\", 2) | key($k, 3)", ExpressionKind::Expression),
              (std::vector<std::string>{"p", "q", ""}));
    EXPECT_EQ(variablesUsedBy("{$a}{concat($b, '$c')}", ExpressionKind::ValueTemplate),
              (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(guardedFunctionsOf("function-available('exsl:node-set')", ExpressionKind::Expression),
              (std::vector<std::string>{"exsl:node-set"}));
}

}  // namespace
}  // namespace cli
