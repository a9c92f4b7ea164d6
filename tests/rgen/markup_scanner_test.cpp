// SPDX-License-Identifier: MIT
#include "templates/markup_scanner.h"

#include <gtest/gtest.h>

#include <libxml/parser.h>

#include <random>
#include <string>

namespace cli {
namespace {

std::string firstProblem(const std::string& text) {
    const Markup markup = scanMarkup(text);
    if (markup.problems.empty()) return {};
    const MarkupProblem& first = markup.problems.front();
    return std::to_string(first.range.begin) + ": " + first.what + "; " + first.advice;
}

TEST(MarkupScanner, ElementsAndAttributesHaveTheirPlaces) {
    const std::string text =
        "<?xml version=\"1.0\"?><!-- c --><a x='1 > 0'>"
        "<b:c y = \"&lt;\"/><![CDATA[ <d> ]]></a >";
    const Markup markup = scanMarkup(text);
    EXPECT_TRUE(markup.problems.empty());
    ASSERT_EQ(markup.elements.size(), 2U);
    const MarkupElement& root = markup.elements[0];
    EXPECT_EQ(root.name, "a");
    EXPECT_EQ(text.substr(root.startTag.begin, root.startTag.size()), "<a x='1 > 0'>");
    EXPECT_EQ(text.substr(root.endTag.begin, root.endTag.size()), "</a >");
    ASSERT_NE(root.find("x"), nullptr);
    EXPECT_EQ(root.find("x")->quote, '\'');
    const MarkupElement& inner = markup.elements[1];
    EXPECT_EQ(inner.name, "b:c");
    EXPECT_EQ(inner.parent, 0U);
    EXPECT_EQ(inner.endTag.size(), 0U);
    ASSERT_NE(inner.find("y"), nullptr);
    EXPECT_EQ(text.substr(inner.find("y")->valueRange.begin, 4), "&lt;");
    EXPECT_EQ(markup.comments.size(), 1U);
    EXPECT_EQ(markup.cdataSections.size(), 1U);
    EXPECT_EQ(markup.instructions.size(), 1U);
}

TEST(MarkupScanner, WhatIsNotWellFormedHasAPlaceAndAReason) {
    EXPECT_EQ(firstProblem("<a><table></a>"),
              "10: \"table\" (line 1) is not closed before </a>; "
              "what follows was repaired or lost");
    EXPECT_EQ(firstProblem("<a>&nbsp;</a>"), "3: unknown entity \"nbsp\"; write \"&#160;\"");
    EXPECT_EQ(firstProblem("<a>A & B</a>"), "5: \"&\" begins a reference; write \"&amp;\"");
    EXPECT_EQ(firstProblem("<a b=\"x & y\"/>"), "8: \"&\" begins a reference; write \"&amp;\"");
    EXPECT_EQ(firstProblem("<a>1 < 2</a>"), "5: \"<\" begins a tag; write \"&lt;\"");
    EXPECT_EQ(firstProblem("<a></a> more"), "8: text after the end of the root element; remove it");
    EXPECT_EQ(firstProblem("<a></a><b/>"),
              "7: \"b\" after the end of the root element; move it into the root element");
    EXPECT_EQ(firstProblem("<a b=1/>"),
              "3: the value of attribute \"b\" has no quotes; "
              "write b=\"...\"");
    EXPECT_EQ(firstProblem("<a b/>"), "3: attribute \"b\" has no value; write b=\"...\"");
    EXPECT_EQ(firstProblem("<a b='1' b='2'/>"), "9: attribute \"b\" is written twice; remove one");
    EXPECT_EQ(firstProblem("<a b=\"<\"/>"),
              "6: \"<\" in the value of attribute \"b\"; "
              "write \"&lt;\", or close the value before it");
    EXPECT_EQ(firstProblem("<a><b></c></b></a>"),
              "6: </c> does not close \"b\" (line 1); write </b>, or remove it");
    EXPECT_EQ(firstProblem("<a><!-- x -- y --></a>"),
              "10: a comment must not contain \"--\"; write a single dash");
    EXPECT_EQ(firstProblem("<a>\n<!-- x </a>"),
              "4: the file ends inside this comment; "
              "close it with \"-->\"");
    EXPECT_EQ(firstProblem("<a>\n<b/>\n"),
              "8: the file ends inside \"a\"; \"a\" (line 1) is not closed");
}

TEST(MarkupScanner, DeclaredEntitiesAreKnown) {
    EXPECT_EQ(firstProblem("<!DOCTYPE a [<!ENTITY x \"]>\"> ]><a>&x;</a>"), "");
}

TEST(MarkupScanner, TheValueOfAnAttributeLeadsBackToItsPlace) {
    const std::string text = "<a b=\"1 &lt;&#x20AC;\n2\"/>";
    const Markup markup = scanMarkup(text);
    const AttributeValue value(text, markup.elements[0].attributes[0].valueRange);
    EXPECT_EQ(value.text(), "1 <\xE2\x82\xAC 2");
    EXPECT_EQ(value.offset(2), 8U);
    EXPECT_EQ(value.offset(4), 12U);
    EXPECT_EQ(value.offset(6), 20U);
    EXPECT_EQ(value.offset(value.text().size()), 22U);
}

bool isWellFormed(const std::string& text) {
    const int options = XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET;
    xmlDoc* document =
        xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, "UTF-8", options);
    xmlFreeDoc(document);
    return document != nullptr;
}

TEST(MarkupScanner, NothingThatAParserAcceptsIsAProblem) {
    const std::string seed =
        "<?xml version=\"1.0\"?>\n<!-- c -->\n<a b=\"1\" c='&amp;'>x &lt; y"
        "<d/><e f=\">\"> t </e><![CDATA[<&]]><?p i?>&#65;</a>\n";
    std::mt19937 random(77);
    const std::string letters = "<>/&;'\"=! -?[]ab\n";
    std::size_t accepted = 0;
    for (int round = 0; round < 100000; ++round) {
        std::string text = seed;
        for (int change = 0; change < 2; ++change) {
            const std::size_t at = random() % text.size();
            const char letter = letters[random() % letters.size()];
            switch (random() % 3) {
                case 0:
                    text[at] = letter;
                    break;
                case 1:
                    text.erase(at, 1 + random() % 3);
                    break;
                default:
                    text.insert(at, 1, letter);
                    break;
            }
        }
        if (!isWellFormed(text)) continue;
        ++accepted;
        ASSERT_EQ(firstProblem(text), "") << text;
    }
    EXPECT_GT(accepted, 1000U);
}

}  // namespace
}  // namespace cli
