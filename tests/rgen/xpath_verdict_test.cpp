// Whether an expression is one is compared with the library itself: thousands of changed
// expressions, each in a template that the library compiles.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxslt/xsltInternals.h>
#include <libxslt/xsltutils.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "data/xml_nodes.h"
#include "support/process_figures.h"
#include "templates/xpath_check.h"

namespace cli {
namespace {

int messages = 0;

void countMessage(void*, const char*, ...) {
    ++messages;
}

std::string escaped(const std::string& text) {
    std::string result;
    for (const char letter : text) {
        if (letter == '&')
            result += "&amp;";
        else if (letter == '<')
            result += "&lt;";
        else if (letter == '"')
            result += "&quot;";
        else
            result += letter;
    }
    return result;
}

std::string templateWith(const std::string& expression, ExpressionKind kind) {
    const std::string value = escaped(expression);
    std::string top;
    std::string body;
    if (kind == ExpressionKind::Expression) body = "<xsl:value-of select=\"" + value + "\"/>";
    if (kind == ExpressionKind::ValueTemplate) body = "<a b=\"" + value + "\"/>";
    if (kind == ExpressionKind::Pattern) top = "<xsl:template match=\"" + value + "\"/>";
    if (kind == ExpressionKind::KeyPattern)
        top = "<xsl:key name='k' use='1' match=\"" + value + "\"/>";
    return "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform' "
           "xmlns:a='urn:a'>" +
           top + "<xsl:template name='t'>" + body + "</xsl:template></xsl:stylesheet>";
}

bool isCompiled(const std::string& expression, ExpressionKind kind) {
    const std::string text = templateWith(expression, kind);
    XmlPtr<xmlDoc> document(xmlReadDoc(xmlText(text.c_str()), nullptr, "UTF-8",
                                       XML_PARSE_RECOVER | XML_PARSE_NONET | XML_PARSE_NOERROR));
    xsltStylesheet* const stylesheet = xsltNewStylesheet();
    messages = 0;
    const bool isAccepted = xsltParseStylesheetUser(stylesheet, document.get()) == 0;
    if (isAccepted) static_cast<void>(document.release());
    xsltFreeStylesheet(stylesheet);
    // A template with an empty alternative in its pattern is left out with a message only.
    const bool isLeftOut = kind == ExpressionKind::Pattern && messages > 0;
    return isAccepted && !isLeftOut;
}

bool isRefused(const std::string& expression, ExpressionKind kind) {
    ExpressionNames names;
    names.prefixes = {{"a", "urn:a"}};
    names.variablesAllowed = kind != ExpressionKind::KeyPattern && kind != ExpressionKind::Pattern;
    for (const ExpressionProblem& problem : checkExpression(expression, kind, names)) {
        EXPECT_LE(problem.offset + problem.length, expression.size()) << expression;
        EXPECT_FALSE(problem.what.empty()) << expression;
        const bool isOpenBrace =
            problem.code == "unmatched-brace" && expression[problem.offset] == '{';
        if (problem.code == "bad-expression" || isOpenBrace) return true;
    }
    return false;
}

/// The library looks prefixes up when it compiles a pattern, except those in its predicates.
bool hasForeignPrefix(const std::string& expression, ExpressionKind kind) {
    ExpressionNames names;
    names.prefixes = {{"a", "urn:a"}};
    const std::vector<ExpressionProblem> problems = checkExpression(expression, kind, names);
    return kind == ExpressionKind::Pattern &&
           std::any_of(problems.begin(), problems.end(), [](const ExpressionProblem& problem) {
               return problem.code == "unknown-prefix";
           });
}

const std::vector<std::string> seeds = {
    "key('p', 'Device.Model')",
    "concat(substring-before(@name, '.'), '*', \"x\")",
    "/data/properties/property[@name = 'A' and position() != last()]/text()",
    "$a * -2 div ($b + 1.5) mod 3 >= 4 or not(.) | ../@*",
    "ancestor-or-self::node()[1]/preceding-sibling::a:b//processing-instruction('x')",
    "property|@name|data//property[. = '|'][2]|/",
    "id('x')/a:*|key('p', 'q')//property|comment()|text()",
    "{$a}b{{c}}{key('p', '}')}",
};

const std::vector<std::string> pieces = {
    "(",  ")",  "[",      "]",       "{",   "}",        "'",   "\"",   "/",  "//", "..",
    ".",  "@",  "$",      "*",       "|",   "=",        "==",  "!=",   "<",  ">=", "+",
    "-",  ",",  "::",     ":",       "and", "or",       "div", "mod",  " ",  "a",  "1",
    "1e", "&&", "node()", "child::", "if",  "\xC3\xA9", "\n",  "key(", "a:", "!"};

std::string changed(std::string expression, std::mt19937& random) {
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    for (std::size_t changes = 1 + below(3); changes > 0; --changes) {
        const std::size_t at = below(expression.size() + 1);
        const std::size_t count = below(2) == 0 ? 0 : 1 + below(6);
        expression.replace(at, std::min(count, expression.size() - at),
                           below(3) == 0 ? std::string() : pieces[below(pieces.size())]);
    }
    return expression;
}

/// The attribute's value as the parser passes it on.
std::string normalized(std::string expression) {
    std::replace(expression.begin(), expression.end(), '\n', ' ');
    return expression;
}

/// A byte sequence that is not UTF-8 would change the whole template.
bool isWholeText(const std::string& text) {
    return xmlCheckUTF8(xmlText(text.c_str())) != 0;
}

class Verdict : public testing::TestWithParam<ExpressionKind> {
protected:
    Verdict() {
        xsltSetGenericErrorFunc(nullptr, countMessage);
        xmlSetGenericErrorFunc(nullptr, countMessage);
    }
    ~Verdict() override {
        xsltSetGenericErrorFunc(nullptr, nullptr);
        xmlSetGenericErrorFunc(nullptr, nullptr);
    }
};

TEST_P(Verdict, IsThatOfTheLibraryForChangedExpressions) {
    constexpr unsigned seed = 20261122;
    std::mt19937 random(seed);
    const int rounds = rgen_test::loopCount(4000);
    int refused = 0;
    for (int round = 0; round < rounds; ++round) {
        const std::string expression = normalized(changed(seeds[random() % seeds.size()], random));
        if (expression.empty() || !isWholeText(expression)) continue;
        if (hasForeignPrefix(expression, GetParam())) continue;
        const bool isOurs = isRefused(expression, GetParam());
        ASSERT_EQ(isOurs, !isCompiled(expression, GetParam())) << expression;
        refused += isOurs ? 1 : 0;
    }
    EXPECT_GT(refused, rounds / 20);
    EXPECT_LT(refused, rounds);
}

INSTANTIATE_TEST_SUITE_P(Kinds, Verdict,
                         testing::Values(ExpressionKind::Expression, ExpressionKind::Pattern,
                                         ExpressionKind::KeyPattern,
                                         ExpressionKind::ValueTemplate));

}  // namespace
}  // namespace cli
