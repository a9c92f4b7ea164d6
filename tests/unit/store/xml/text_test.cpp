// Texts from XML nodes.
//
// SPDX-License-Identifier: MIT
#include "store/xml/text.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>

#include <clocale>
#include <string>

#include "store/xml/parser_context.h"

namespace rgen_test {
namespace {

using rgen::XmlPtr;

std::string trimmed(const std::string& text) {
    return rgen::trimmedXmlText(rgen::xmlText(text.c_str()));
}

XmlPtr<xmlDoc> parse(const std::string& text) {
    const rgen::XmlSilence silence;
    return XmlPtr<xmlDoc>(
        xmlReadDoc(rgen::xmlText(text.c_str()), nullptr, "UTF-8", XML_PARSE_RECOVER));
}

xmlNode* rootOf(const XmlPtr<xmlDoc>& document) {
    return xmlDocGetRootElement(document.get());
}

std::string textOfRoot(const std::string& text) {
    const XmlPtr<xmlDoc> document = parse(text);
    return rgen::nodeText(rootOf(document));
}

TEST(TrimmedXmlText, NullAndWhiteSpaceGiveTheEmptyText) {
    EXPECT_EQ("", rgen::trimmedXmlText(nullptr));
    EXPECT_EQ("", trimmed(""));
    EXPECT_EQ("", trimmed(" "));
    EXPECT_EQ("", trimmed(" \t\n\v\f\r "));
}

TEST(TrimmedXmlText, SixCharactersAreCutAtBothEnds) {
    for (const char character : std::string(" \t\n\v\f\r")) {
        const std::string edge(3, character);
        EXPECT_EQ("a" + edge + "b", trimmed(edge + "a" + edge + "b" + edge)) << int{character};
    }
}

TEST(TrimmedXmlText, EveryOtherByteIsKept) {
    const std::string whiteSpace = " \t\n\v\f\r";
    for (int code = 1; code < 256; ++code) {
        const std::string byte(1, static_cast<char>(code));
        if (whiteSpace.find(byte) != std::string::npos) continue;
        EXPECT_EQ(byte, trimmed(" " + byte + " ")) << code;
        EXPECT_EQ(byte + "x" + byte, trimmed(byte + "x" + byte)) << code;
    }
}

TEST(TrimmedXmlText, LastByteOfALetterIsNoWhiteSpaceInAnyLocale) {
    const std::string previous = std::setlocale(LC_ALL, nullptr);
    for (const char* locale : {"C", "", "en_US.ISO-8859-1", "English_United States.1252"}) {
        std::setlocale(LC_ALL, locale);
        EXPECT_EQ("\xD0\xA0", trimmed(" \xD0\xA0 ")) << locale;
        EXPECT_EQ("\xC3\xA0", trimmed("\xC3\xA0")) << locale;
        EXPECT_EQ("\xC2\x85", trimmed("\xC2\x85\n")) << locale;
    }
    std::setlocale(LC_ALL, previous.c_str());
}

TEST(TrimmedXmlText, LongTextNeedsNoStack) {
    const std::string space(1000000, ' ');
    EXPECT_EQ("a" + space + "b", trimmed(space + "a" + space + "b" + space));
}

TEST(ToLowerCopy, ChangesAsciiLettersOnly) {
    EXPECT_EQ("", rgen::toLowerCopy(""));
    EXPECT_EQ("abcxyz-@[`{019", rgen::toLowerCopy("ABCXYZ-@[`{019"));
    EXPECT_EQ("\xC0\xD0\xDE\xC3\x84", rgen::toLowerCopy("\xC0\xD0\xDE\xC3\x84"));
    EXPECT_EQ(std::string("a\0b", 3), rgen::toLowerCopy(std::string("A\0B", 3)));
}

TEST(AttributeText, GivesTheTrimmedValue) {
    const XmlPtr<xmlDoc> document = parse("<a x=' \t1 2&#10;' y='' z='&lt;&amp;&#65;'>text</a>");
    EXPECT_EQ("1 2", rgen::attributeText(rootOf(document), "x"));
    EXPECT_EQ("", rgen::attributeText(rootOf(document), "y"));
    EXPECT_EQ("<&A", rgen::attributeText(rootOf(document), "z"));
}

TEST(AttributeText, MissingAttributeAndOtherNodesGiveTheEmptyText) {
    const XmlPtr<xmlDoc> document = parse("<a x='1'>text<!--c--><?x y?></a>");
    EXPECT_EQ("", rgen::attributeText(rootOf(document), "X"));
    EXPECT_EQ("", rgen::attributeText(rootOf(document), "none"));
    for (xmlNode* child = rootOf(document)->children; child != nullptr; child = child->next) {
        EXPECT_EQ("", rgen::attributeText(child, "x"));
    }
}

TEST(NodeText, ConcatenatesTextAndEntities) {
    const struct {
        const char* xml;
        const char* text;
    } rows[] = {{"<a> one &amp; <![CDATA[two <x>]]>&#33; </a>", "one & two <x>!"},
                {"<a>one<b>inner</b>two</a>", "onetwo"},
                {"<a>one<!--comment--> two</a>", "one two"},
                {"<!DOCTYPE a [<!ENTITY e 'entity'>]><a>[&e;]</a>", "[entity]"},
                {"<a/>", ""},
                {"<a> \n </a>", ""},
                {"<a><b>inner</b></a>", ""}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.text, textOfRoot(row.xml)) << row.xml;
    }
}

TEST(ChildrenText, KeepsWhiteSpaceAndIsNullWithoutText) {
    const XmlPtr<xmlDoc> spaced = parse("<a> x </a>");
    EXPECT_EQ(0, xmlStrcmp(rgen::childrenText(rootOf(spaced)).get(), rgen::xmlText(" x ")));
    const XmlPtr<xmlDoc> empty = parse("<a/>");
    EXPECT_EQ(nullptr, rgen::childrenText(rootOf(empty)));
}

}  // namespace
}  // namespace rgen_test
