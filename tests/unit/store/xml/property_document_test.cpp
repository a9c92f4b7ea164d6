// The property document: its structure, the parsing of texts and names, exhausted memory.
//
// SPDX-License-Identifier: MIT
#include "store/xml/property_document.h"

#include <gtest/gtest.h>

#include <string>

#include "store/xml/parser_context.h"
#include "store/xml/text.h"
#include "support/fault_injection.h"

namespace rgen_test {
namespace {

using rgen::buildPropertyDocument;
using rgen::PropertyMap;
using rgen::XmlPtr;

// The document without its XML declaration.
std::string serialised(const XmlPtr<xmlDoc>& document) {
    xmlChar* bytes = nullptr;
    int size = 0;
    xmlDocDumpMemoryEnc(document.get(), &bytes, &size, "UTF-8");
    const XmlPtr<xmlChar> owner(bytes);
    const std::string text(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size));
    return text.substr(text.find('\n') + 1);
}

std::string propertyOf(const std::string& name, const std::string& text) {
    const rgen::XmlSilence silence;
    const std::string document = serialised(buildPropertyDocument({{name, text}}));
    const std::size_t start = document.find("<property ");
    return document.substr(start, document.find("</properties>") - start);
}

TEST(BuildPropertyDocument, EmptyMapGivesEmptyProperties) {
    EXPECT_EQ("<data><properties/></data>\n", serialised(buildPropertyDocument({})));
}

TEST(BuildPropertyDocument, OnePropertyForEachEntryInMapOrder) {
    PropertyMap properties;
    for (int i = 0; i < 50; ++i)
        properties["name" + std::to_string(i)] = std::to_string(i);
    std::string expected = "<data><properties>";
    for (const auto& [name, text] : properties) {
        expected += "<property name=\"" + name + "\">" + text + "</property>";
    }
    EXPECT_EQ(expected + "</properties></data>\n", serialised(buildPropertyDocument(properties)));
}

TEST(BuildPropertyDocument, TextsAreReadAsContent) {
    const struct {
        const char* text;
        const char* content;
    } rows[] = {{"plain", ">plain<"},
                {"<b>", ">&lt;b&gt;<"},
                {"]]>", ">]]&gt;<"},
                {"&amp;", ">&amp;<"},
                {"&lt;x&gt;", ">&lt;x&gt;<"},
                {"&#65;&#x42;", ">AB<"},
                {"&undefined;", ">&undefined;<"},
                {"x&<b/>;y", ">xy<"},
                {"a & b", ">a  b<"},
                {"\"'", ">\"'<"},
                {"\xD0\x9F", ">\xD0\x9F<"}};
    for (const auto& row : rows) {
        const std::string property = propertyOf("n", row.text);
        EXPECT_NE(std::string::npos, property.find(row.content)) << row.text << ' ' << property;
    }
}

TEST(BuildPropertyDocument, NamesArePlainText) {
    EXPECT_EQ("<property name=\"&amp;amp;&lt;&quot;\">x</property>", propertyOf("&amp;<\"", "x"));
    EXPECT_EQ("<property name=\"\">x</property>", propertyOf("", "x"));
}

TEST(BuildPropertyDocument, TextsEndAtTheirZeroByte) {
    EXPECT_EQ("<property name=\"n\">ab</property>",
              propertyOf(std::string("n\0m", 3), std::string("ab\0cd", 5)));
}

TEST(BuildPropertyDocument, PropertyIsLeftOutWhenMemoryIsExhausted) {
    // The first child is the list itself.
    for (const int number : {2, 3, 4}) {
        const FailingCall failure(Call::NewXmlChild, number);
        const XmlPtr<xmlDoc> document = buildPropertyDocument({{"a", "1"}, {"b", "2"}, {"c", "3"}});
        EXPECT_TRUE(failure.reached());
        const xmlNode* list = xmlDocGetRootElement(document.get())->children;
        EXPECT_EQ(2U, xmlChildElementCount(const_cast<xmlNode*>(list)));
    }
}

TEST(BuildPropertyDocument, MissingListGivesADocumentWithoutProperties) {
    const FailingCall failure(Call::NewXmlChild);
    EXPECT_EQ("<data/>\n", serialised(buildPropertyDocument({{"a", "1"}})));
    EXPECT_TRUE(failure.reached());
}

TEST(BuildPropertyDocument, MissingRootOrDocumentIsSurvived) {
    {
        const FailingCall failure(Call::NewXmlNode);
        const XmlPtr<xmlDoc> document = buildPropertyDocument({{"a", "1"}});
        EXPECT_EQ(nullptr, xmlDocGetRootElement(document.get()));
    }
    const FailingCall failure(Call::NewXmlDocument);
    EXPECT_EQ(nullptr, buildPropertyDocument({{"a", "1"}}));
    EXPECT_TRUE(failure.reached());
}

}  // namespace
}  // namespace rgen_test
