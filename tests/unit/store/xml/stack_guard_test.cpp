// The stack guard, on a transformation that the test runs itself.
//
// SPDX-License-Identifier: MIT
#include "store/xml/stack_guard.h"

#include <libxml/parser.h>
#include <libxslt/transform.h>
#include <libxslt/xsltutils.h>

#include <string>

#include "platform/platform.h"
#include "store/xml/handles.h"
#include "store/xml/parser_context.h"
#include "support/sized_thread.h"
#include "unit/unit_fixture.h"

namespace rgen_test {
namespace {

using rgen::XmlPtr;
using rgen::XmlWork;

XmlPtr<xmlDoc> parse(const std::string& text) {
    return XmlPtr<xmlDoc>(xmlReadDoc(rgen::xmlText(text.c_str()), nullptr, "UTF-8", 0));
}

// A template that calls itself that many levels deep and outputs the letter "x".
std::string recursion(int levels) {
    std::string text =
        textTemplate("<xsl:call-template name=\"r\"><xsl:with-param name=\"n\" select=\"" +
                     std::to_string(levels) + "\"/></xsl:call-template>");
    text.insert(text.find("</xsl:stylesheet>"),
                "<xsl:template name=\"r\"><xsl:param name=\"n\"/><xsl:choose>"
                "<xsl:when test=\"$n &gt; 0\"><xsl:call-template name=\"r\">"
                "<xsl:with-param name=\"n\" select=\"$n - 1\"/></xsl:call-template></xsl:when>"
                "<xsl:otherwise>x</xsl:otherwise></xsl:choose></xsl:template>");
    return text;
}

// Whether a guarded transformation returns a document.
bool succeeds(const std::string& stylesheetText) {
    const auto context = rgen::sharedXmlParserContext();
    const rgen::XmlSilence silence;
    XmlPtr<xmlDoc> source = parse(stylesheetText);
    const XmlPtr<xsltStylesheet> stylesheet(xsltParseStylesheetDoc(source.get()));
    if (!stylesheet) return false;
    static_cast<void>(source.release());
    const XmlPtr<xmlDoc> data = parse("<data/>");
    const XmlPtr<xsltTransformContext> transformation(
        xsltNewTransformContext(stylesheet.get(), data.get()));
    XmlWork work(XmlWork::WithReserve{});
    rgen::guardStack(*transformation, work);
    const XmlPtr<xmlDoc> result(xsltApplyStylesheetUser(stylesheet.get(), data.get(), nullptr,
                                                        nullptr, nullptr, transformation.get()));
    return result != nullptr;
}

TEST(GuardStack, OrdinaryTemplatesRunToTheirEnd) {
    EXPECT_TRUE(succeeds(recursion(0)));
    EXPECT_TRUE(succeeds(recursion(100)));
}

TEST(GuardStack, EndlessRecursionStopsOnASmallStack) {
    bool succeeded = true;
    runOnStack(smallestStack, [&succeeded] { succeeded = succeeds(recursion(1000000)); });
    EXPECT_FALSE(succeeded);
    runOnStack(mebibyte, [&succeeded] { succeeded = succeeds(recursion(1000000)); });
    EXPECT_FALSE(succeeded);
}

TEST(GuardStack, DeepRecursionFitsALargeStack) {
    bool succeeded = false;
    runOnStack(16 * mebibyte, [&succeeded] { succeeded = succeeds(recursion(500)); });
    EXPECT_TRUE(succeeded);
}

TEST(GuardStack, MarksTheLowestAddressThatATemplateMayReach) {
    const XmlPtr<xmlDoc> data = parse("<data/>");
    const XmlPtr<xsltStylesheet> stylesheet(xsltNewStylesheet());
    const XmlPtr<xsltTransformContext> context(
        xsltNewTransformContext(stylesheet.get(), data.get()));
    XmlWork work(XmlWork::WithReserve{});
    rgen::guardStack(*context, work);
    const char* limit = rgen::platform::stackLimit();
    ASSERT_NE(nullptr, limit);
    EXPECT_EQ(limit + rgen::smallStackRule.reserve, work.lowestForTemplates());
    EXPECT_EQ(&work, context->_private);
    EXPECT_EQ(XSLT_DEBUG_RUN, context->debugStatus);
}

TEST(StackReserve, LeavesRoomOnTheSmallestStack) {
    EXPECT_LT(rgen::smallStackRule.reserve, smallestStack + instrumentationStack);
    EXPECT_LT(rgen::unknownStackRule.reserve, rgen::assumedStack);
    EXPECT_LT(rgen::assumedStack, smallestStack + instrumentationStack);
}

}  // namespace
}  // namespace rgen_test
