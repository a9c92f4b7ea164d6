// XPath queries and their statuses.
//
// SPDX-License-Identifier: MIT
#include "store/xml/xpath.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>

#include <string>

#include "store/xml/parser_context.h"
#include "support/fault_injection.h"
#include "support/status_printer.h"

namespace rgen_test {
namespace {

using rgen::XPathQuery;

class XPathQueryTest : public ::testing::Test {
protected:
    std::string select(const char* expression) {
        return statusHex(query.select(document.get(), expression, RGEN_E_NO_TYPE_MAP));
    }

    const rgen::XmlSilence silence;
    const rgen::XmlPtr<xmlDoc> document{
        xmlReadDoc(rgen::xmlText("<a x='1'><b>1</b>text<b>2</b><!--c--><c><b>3</b></c></a>"),
                   nullptr, "UTF-8", 0)};
    XPathQuery query;
};

TEST_F(XPathQueryTest, SelectedElementsComeInDocumentOrder) {
    EXPECT_EQ(statusHex(RGEN_OK), select("//b"));
    std::string texts;
    query.forEachElement([&texts](const xmlNode* element) {
        texts += reinterpret_cast<const char*>(element->children->content);
    });
    EXPECT_EQ("123", texts);
}

TEST_F(XPathQueryTest, NodesThatAreNoElementsArePassedOver) {
    EXPECT_EQ(statusHex(RGEN_OK), select("/a/node() | /a/@x"));
    int count = 0;
    query.forEachElement([&count](const xmlNode*) { ++count; });
    EXPECT_EQ(3, count);
}

TEST_F(XPathQueryTest, NothingSelectedGivesTheStatusOfTheCaller) {
    for (const char* expression : {"/none", "/a/B", "1 + 1", "'text'", "true()"}) {
        XPathQuery other;
        EXPECT_EQ(statusHex(RGEN_E_NO_TYPE_MAP),
                  statusHex(other.select(document.get(), expression, RGEN_E_NO_TYPE_MAP)))
            << expression;
    }
}

TEST_F(XPathQueryTest, ExpressionThatCannotBeEvaluatedIsASearchFailure) {
    EXPECT_EQ(statusHex(RGEN_E_XPATH_SEARCH), select("/a["));
}

TEST_F(XPathQueryTest, FailuresOfTheXmlLibraryHaveTheirStatus) {
    {
        const FailingCall failure(Call::NewXPathContext);
        XPathQuery other;
        EXPECT_EQ(statusHex(RGEN_E_XPATH_CONTEXT),
                  statusHex(other.select(document.get(), "//b", RGEN_OK)));
        EXPECT_TRUE(failure.reached());
    }
    const FailingCall failure(Call::EvaluateXPath);
    EXPECT_EQ(statusHex(RGEN_E_XPATH_SEARCH), select("//b"));
    EXPECT_TRUE(failure.reached());
}

}  // namespace
}  // namespace rgen_test
