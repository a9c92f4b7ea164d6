// Templates that recurse without end, or deeply.
//
// SPDX-License-Identifier: MIT
#include "host/recursion_fixture.h"

namespace rgen_test {

const char* const callAgain = "<xsl:call-template name=\"again\"/>";

std::string endless(const std::string& body, const std::string& topLevel) {
    return stylesheet("method=\"xml\"", "<xsl:template match=\"/\">" + std::string(callAgain) +
                                            "</xsl:template><xsl:template name=\"again\">" + body +
                                            "</xsl:template>" + topLevel);
}

namespace {

struct EndlessTemplate {
    const char* label;
    std::string text;
};

// The body of "again" that calls it once more inside an element.
std::string endlessIn(const std::string& element, const std::string& attributes = std::string()) {
    return endless("<" + element + " " + attributes + ">" + callAgain + "</" + element + ">");
}

// A template for one kind of node, which the root template applies.
std::string endlessFor(const std::string& match, const std::string& body) {
    return stylesheet("method=\"xml\"",
                      "<xsl:key name=\"k\" match=\"property\" use=\"@name\"/>"
                      "<xsl:template match=\"/\"><xsl:apply-templates select=\"//property\"/>"
                      "</xsl:template><xsl:template match=\"" +
                          match + "\">" + body + "</xsl:template>");
}

std::vector<EndlessTemplate> callingTemplates() {
    return {
        {"call", endless(callAgain)},
        {"call inside for-each", endlessIn("xsl:for-each", "select=\"//property\"")},
        {"call inside if", endlessIn("xsl:if", "test=\"true()\"")},
        {"call inside choose", endless("<xsl:choose><xsl:when test=\"false()\"/><xsl:otherwise>" +
                                       std::string(callAgain) + "</xsl:otherwise></xsl:choose>")},
        {"call inside a variable", endlessIn("xsl:variable", "name=\"x\"")},
        {"call after a variable",
         endless("<xsl:variable name=\"x\" select=\"//property\"/>" + std::string(callAgain))},
        {"call inside a parameter's default", endlessIn("xsl:param", "name=\"x\"")},
        {"call inside with-param",
         endless("<xsl:param name=\"x\"/><xsl:call-template name=\"again\">"
                 "<xsl:with-param name=\"x\">" +
                 std::string(callAgain) + "</xsl:with-param></xsl:call-template>")},
        {"growing parameter", endless("<xsl:param name=\"x\"/><xsl:call-template name=\"again\">"
                                      "<xsl:with-param name=\"x\" select=\"concat($x, 'x')\"/>"
                                      "</xsl:call-template>")},
        {"call inside an attribute", endless("<x><xsl:attribute name=\"a\">" +
                                             std::string(callAgain) + "</xsl:attribute></x>")},
        {"call inside a literal element", endlessIn("x")},
        {"call inside xsl:element", endlessIn("xsl:element", "name=\"x\"")},
        {"call inside xsl:copy", endlessIn("xsl:copy")},
        {"call inside a comment", endlessIn("xsl:comment")},
        {"call inside a processing instruction",
         endlessIn("xsl:processing-instruction", "name=\"x\"")},
        {"call inside a message", endlessIn("xsl:message")},
        {"call inside a fallback", endless("<xsl:later><xsl:fallback>" + std::string(callAgain) +
                                           "</xsl:fallback></xsl:later>")},
        {"two templates in turn",
         endless("<xsl:call-template name=\"other\"/>",
                 "<xsl:template name=\"other\">" + std::string(callAgain) + "</xsl:template>")},
        {"call inside an attribute set",
         endless("<x xsl:use-attribute-sets=\"s\"/>",
                 "<xsl:attribute-set name=\"s\"><xsl:attribute name=\"a\">" +
                     std::string(callAgain) + "</xsl:attribute></xsl:attribute-set>")},
        {"call inside a global variable that is needed again",
         endless("<xsl:value-of select=\"$g\"/>",
                 "<xsl:variable name=\"g\">" + std::string(callAgain) + "</xsl:variable>")}};
}

std::vector<EndlessTemplate> applyingTemplates() {
    const std::string self = "<xsl:apply-templates select=\".\"/>";
    return {{"apply to itself", endlessFor("property", self)},
            {"apply to the root",
             stylesheet("method=\"xml\"",
                        "<xsl:template match=\"/\"><xsl:apply-templates select=\"/\"/>"
                        "</xsl:template>")},
            {"apply up and down",
             endlessFor("property",
                        "<xsl:for-each select=\"..\"><xsl:apply-templates/></xsl:for-each>")},
            {"apply with sort", endlessFor("property",
                                           "<xsl:apply-templates select=\".\"><xsl:sort/>"
                                           "</xsl:apply-templates>")},
            {"apply with parameter",
             endlessFor("property",
                        "<xsl:param name=\"p\"/><xsl:apply-templates select=\".\">"
                        "<xsl:with-param name=\"p\" select=\".\"/>"
                        "</xsl:apply-templates>")},
            {"apply inside copy", endlessFor("property", "<xsl:copy>" + self + "</xsl:copy>")},
            {"apply inside an element",
             endlessFor("property", "<xsl:element name=\"e\">" + self + "</xsl:element>")},
            {"apply inside a variable",
             endlessFor("property", "<xsl:variable name=\"x\">" + self +
                                        "</xsl:variable><xsl:value-of select=\"$x\"/>")},
            {"apply to a key's nodes",
             endlessFor("property", "<xsl:apply-templates select=\"key('k', 'v')\"/>")},
            {"apply to text",
             endlessFor("text()|property", "<xsl:apply-templates select=\"//property/text()\"/>")},
            {"the root over the built-in templates",
             stylesheet("method=\"xml\"",
                        "<xsl:template match=\"text()\"><xsl:apply-templates select=\"/\"/>"
                        "</xsl:template>")}};
}

std::vector<EndlessTemplate> endlessTemplates() {
    std::vector<EndlessTemplate> templates = callingTemplates();
    for (const EndlessTemplate& row : applyingTemplates())
        templates.push_back(row);
    return templates;
}

}  // namespace

namespace {

// As a host that has used as much of a small stack as it may before it calls the library.
void runAfterUse(const std::function<void()>& function) {
    volatile char used[24 * kibibyte];
    used[0] = 0;
    function();
    used[sizeof used - 1] = 0;
}

void runOnUsedStack(std::size_t stackSize, const std::function<void()>& function) {
    runOnStack(stackSize, [&function] { runAfterUse(function); });
}

void runOnUsedFiber(std::size_t stackSize, const std::function<void()>& function) {
    runOnFiber(stackSize, [&function] { runAfterUse(function); });
}

}  // namespace

StackPlace smallestFiber() {
    return {"smallest fiber", runOnUsedFiber, smallestStack};
}

std::vector<StackPlace> smallStackPlaces() {
    return {{"smallest thread", runOnUsedStack, smallestStack},
            {"thread of 1 MiB", runOnStack, mebibyte},
            smallestFiber(),
            {"fiber of 1 MiB", runOnFiber, mebibyte}};
}

void Recursion::expectEveryEndlessTemplateToFail() {
    for (const EndlessTemplate& row : endlessTemplates()) {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(failure(RGEN_E_XSLT_APPLY), reportOfTemplate(row.text));
        EXPECT_EQ(reportOf("alive"), reportOfTemplate(textStylesheet("alive")));
    }
}

Report Recursion::reportOnStack(std::size_t stackSize, const std::string& text) {
    Report result;
    runOnStack(stackSize, [&] { result = reportOfTemplate(text); });
    return result;
}

Report Recursion::reportAt(const StackPlace& place, const std::string& text) {
    Report result;
    place.run(place.stackSize, [&] { result = reportOfTemplate(text); });
    return result;
}

std::string Recursion::descending(int levels) {
    return stylesheet("method=\"text\"",
                      "<xsl:template match=\"/\"><xsl:call-template name=\"down\">"
                      "<xsl:with-param name=\"n\" select=\"" +
                          std::to_string(levels) +
                          "\"/></xsl:call-template></xsl:template>"
                          "<xsl:template name=\"down\"><xsl:param name=\"n\"/>"
                          "<xsl:if test=\"$n &gt; 0\">x<xsl:call-template name=\"down\">"
                          "<xsl:with-param name=\"n\" select=\"$n - 1\"/>"
                          "</xsl:call-template></xsl:if></xsl:template>");
}

std::string Recursion::chain(int levels) {
    std::string templates =
        "<xsl:template match=\"/\"><xsl:call-template name=\"t1\"/></xsl:template>";
    for (int level = 1; level < levels; ++level) {
        templates += "<xsl:template name=\"t" + std::to_string(level) +
                     "\">x<xsl:call-template name=\"t" + std::to_string(level + 1) +
                     "\"/></xsl:template>";
    }
    return stylesheet("method=\"text\"", templates + "<xsl:template name=\"t" +
                                             std::to_string(levels) + "\">x</xsl:template>");
}

std::string Recursion::nesting(int levels) {
    return stylesheet("method=\"html\"",
                      "<xsl:template match=\"/\"><xsl:apply-templates select=\"//property\">"
                      "<xsl:with-param name=\"n\" select=\"" +
                          std::to_string(levels) +
                          "\"/></xsl:apply-templates></xsl:template>"
                          "<xsl:template match=\"property\"><xsl:param name=\"n\"/>"
                          "<xsl:if test=\"$n &gt; 0\"><b><xsl:apply-templates select=\".\">"
                          "<xsl:with-param name=\"n\" select=\"$n - 1\"/>"
                          "</xsl:apply-templates></b></xsl:if></xsl:template>");
}

std::string Recursion::nested(std::size_t levels) {
    std::string text;
    for (std::size_t level = 0; level < levels; ++level)
        text += "<b>";
    for (std::size_t level = 0; level < levels; ++level)
        text += "</b>";
    return text + "\n";
}

}  // namespace rgen_test
