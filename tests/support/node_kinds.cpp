// The two tables, and the stylesheet around them.
//
// SPDX-License-Identifier: MIT
#include "support/node_kinds.h"

#include <ostream>

#include "support/process_figures.h"

namespace rgen_test {
namespace {

const char* const start =
    "<!DOCTYPE x [<!ENTITY e \"entity text\"><!ENTITY c \"<![CDATA[entity cdata]]>\">"
    "<!ENTITY m \"<em>entity element</em>\">]>"
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\" "
    "xmlns:n=\"http://xmlsoft.org/XSLT/namespace\" exclude-result-prefixes=\"n\">";
const char* const templates =
    "<xsl:template name=\"named\"><xsl:param name=\"w\"/><o k=\"{$w}\"><xsl:copy-of "
    "select=\"$w\"/></o></xsl:template>"
    "<xsl:template name=\"attribute\"><xsl:attribute name=\"t\">value</xsl:attribute>content"
    "</xsl:template></xsl:stylesheet>";
const char* const otherSet =
    "<xsl:attribute-set name=\"s\"><xsl:attribute name=\"z\">value</xsl:attribute>"
    "</xsl:attribute-set>";

std::string filled(const NodeText& place, const std::string& content) {
    std::string xml = place.xml;
    return xml.replace(xml.find('@'), 1, content);
}

// The cdata-section-elements are some of the elements that places and kinds make.
std::string output(const std::string& method) {
    return "<xsl:output method=\"" + method + "\" omit-xml-declaration=\"yes\"" +
           (method == "xml" ? " cdata-section-elements=\"q e p\"/>" : "/>");
}

bool defines(const std::string& topLevel, const char* name) {
    return topLevel.find(std::string("name=\"") + name + '"') != std::string::npos;
}

std::string sheet(const std::string& topLevel, const std::string& body, const std::string& method) {
    const std::string use =
        defines(topLevel, "g") ? "<i j=\"{$g}\"/><xsl:copy-of select=\"$g\"/>" : "";
    return start + topLevel + (defines(topLevel, "s") ? "" : otherSet) + output(method) +
           "<xsl:template match=\"/\"><r><f>" + body + "</f><u xsl:use-attribute-sets=\"s\"/>" +
           use + "<xsl:apply-templates select=\"//property\"/></r></xsl:template>" + templates;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const NodeText& text) {
    return out << text.label;
}

const std::vector<NodeText>& bodyPlaces() {
    static const std::vector<NodeText> places = {
        {"attribute", "<xsl:attribute name=\"a\">@</xsl:attribute>"},
        {"attribute with namespace",
         "<xsl:attribute name=\"q:a\" namespace=\"urn:q\">@</xsl:attribute>"},
        {"attribute that keeps blanks",
         "<xsl:attribute name=\"a\" xml:space=\"preserve\">@</xsl:attribute>"},
        {"identifier", "<xsl:attribute name=\"xml:id\">@</xsl:attribute>"},
        {"two attributes of one name",
         "<q><xsl:attribute name=\"a\">@</xsl:attribute>"
         "<xsl:attribute name=\"a\">last</xsl:attribute></q>"},
        {"attribute of no element",
         "<xsl:variable name=\"v\"><xsl:attribute name=\"a\">@</xsl:attribute></xsl:variable>"
         "<xsl:copy-of select=\"$v\"/>"},
        {"element", "<xsl:element name=\"e\">@</xsl:element>"},
        {"literal element", "<q>@</q>"},
        {"literal element that keeps blanks", "<q xml:space=\"preserve\">@</q>"},
        {"script", "<script>@</script>"},
        {"style", "<style>@</style>"},
        {"attribute sets", "<q xsl:use-attribute-sets=\"s\">@</q>"},
        {"text", "<xsl:text>@</xsl:text>"},
        {"text without escaping", "<xsl:text disable-output-escaping=\"yes\">@</xsl:text>"},
        {"value-of", "<xsl:value-of select=\"1\">@</xsl:value-of>"},
        {"copy", "<xsl:copy>@</xsl:copy>"},
        {"copy of an attribute",
         "<xsl:for-each select=\"//attribute::name\"><xsl:copy>@</xsl:copy></xsl:for-each>"},
        {"copy of a text",
         "<xsl:for-each select=\"//property/text()\"><xsl:copy>@</xsl:copy></xsl:for-each>"},
        {"copy-of", "<xsl:copy-of select=\"//property\">@</xsl:copy-of>"},
        {"number", "<xsl:number value=\"3\">@</xsl:number>"},
        {"comment", "<xsl:comment>@</xsl:comment>"},
        {"processing-instruction",
         "<xsl:processing-instruction name=\"pp\">@</xsl:processing-instruction>"},
        {"message", "<xsl:message>@</xsl:message>"},
        {"message that ends", "<xsl:message terminate=\"yes\">@</xsl:message>"},
        {"if", "<xsl:if test=\"true()\">@</xsl:if>"},
        {"choose", "<xsl:choose>@</xsl:choose>"},
        {"when", "<xsl:choose><xsl:when test=\"true()\">@</xsl:when></xsl:choose>"},
        {"otherwise",
         "<xsl:choose><xsl:when test=\"false()\"/>"
         "<xsl:otherwise>@</xsl:otherwise></xsl:choose>"},
        {"for-each", "<xsl:for-each select=\"//property\">@</xsl:for-each>"},
        {"sort",
         "<xsl:for-each select=\"//property\">"
         "<xsl:sort select=\"name()\">@</xsl:sort><i/></xsl:for-each>"},
        {"variable",
         "<xsl:variable name=\"v\">@</xsl:variable><b t=\"{$v}\"/>"
         "<xsl:value-of select=\"$v\"/><xsl:copy-of select=\"$v\"/>"},
        {"variable as attribute",
         "<xsl:variable name=\"v\">@</xsl:variable><b><xsl:attribute name=\"t\">"
         "<xsl:copy-of select=\"$v\"/></xsl:attribute></b>"},
        {"variable as nodes",
         "<xsl:variable name=\"v\">@</xsl:variable><xsl:for-each "
         "select=\"n:node-set($v)/node()\"><xsl:copy-of select=\".\"/></xsl:for-each>"},
        {"call-template", "<xsl:call-template name=\"named\">@</xsl:call-template>"},
        {"with-param",
         "<xsl:call-template name=\"named\">"
         "<xsl:with-param name=\"w\">@</xsl:with-param></xsl:call-template>"},
        {"apply-templates", "<xsl:apply-templates select=\"//property\">@</xsl:apply-templates>"},
        {"apply-imports", "<xsl:apply-imports>@</xsl:apply-imports>"},
        {"fallback", "<xsl:unknown><xsl:fallback>@</xsl:fallback></xsl:unknown>"},
        {"fallback by itself", "<xsl:fallback>@</xsl:fallback>"},
        {"unknown instruction", "<xsl:unknown>@</xsl:unknown>"},
        {"extension element",
         "<x:x xmlns:x=\"urn:x\" xsl:extension-element-prefixes=\"x\">@</x:x>"}};
    return places;
}

const std::vector<NodeText>& topLevelPlaces() {
    static const std::vector<NodeText> places = {
        {"nothing", "@"},
        {"attribute of a set",
         "<xsl:attribute-set name=\"s\"><xsl:attribute name=\"a\">@"
         "</xsl:attribute></xsl:attribute-set>"},
        {"attribute-set", "<xsl:attribute-set name=\"s\">@</xsl:attribute-set>"},
        {"variable", "<xsl:variable name=\"g\">@</xsl:variable>"},
        {"param", "<xsl:param name=\"g\">@</xsl:param>"},
        {"template", "<xsl:template match=\"property\"><p>@</p></xsl:template>"},
        {"template with param",
         "<xsl:template match=\"property\"><xsl:param name=\"v\">@"
         "</xsl:param><xsl:copy-of select=\"$v\"/></xsl:template>"},
        {"key",
         "<xsl:key name=\"k\" "
         "match=\"property\" use=\"name()\">@</xsl:key>"},
        {"output", "<xsl:output indent=\"no\">@</xsl:output>"},
        {"strip-space", "<xsl:strip-space elements=\"*\">@</xsl:strip-space>"},
        {"preserve-space", "<xsl:preserve-space elements=\"*\">@</xsl:preserve-space>"},
        {"decimal-format", "<xsl:decimal-format name=\"d\">@</xsl:decimal-format>"},
        {"namespace-alias",
         "<xsl:namespace-alias stylesheet-prefix=\"n\" "
         "result-prefix=\"xsl\">@</xsl:namespace-alias>"}};
    return places;
}

const std::vector<NodeText>& nodeKinds() {
    const std::string blanks(100, ' ');
    static const std::vector<NodeText> kinds = {
        {"nothing", ""},
        {"text", letters(shortLength)},
        {"one letter", "x"},
        {"long text", letters(longLength)},
        {"blanks", blanks},
        {"line ends", "\n   \n   "},
        {"character references", "&#65;&#x42;&lt;"},
        {"CDATA", cdata(letters(shortLength))},
        {"CDATA of markup", "<![CDATA[<b>&amp;</b>]]>"},
        {"long CDATA", cdata(letters(longLength))},
        {"CDATA of blanks", cdata(blanks)},
        {"CDATA of nothing", cdata("")},
        {"comment", "<!--comment-->"},
        {"instruction for others", "<?other content?>"},
        {"reference to a text", "&e;"},
        {"reference to CDATA", "&c;"},
        {"reference to an element", "&m;"},
        {"reference to nothing", "&unknown;"},
        {"literal element", "<p>inside</p>"},
        {"xsl:text", "<xsl:text>abcdefghij</xsl:text>"},
        {"xsl:text with CDATA", "<xsl:text><![CDATA[abcdefghij]]></xsl:text>"},
        {"xsl:text without escaping",
         "<xsl:text disable-output-escaping=\"yes\">&lt;br/&gt;</xsl:text>"},
        {"xsl:text without escaping, with CDATA",
         "<xsl:text disable-output-escaping=\"yes\"><![CDATA[<br/>]]></xsl:text>"},
        {"xsl:value-of", "<xsl:value-of select=\"'abcdefghij'\"/>"},
        {"xsl:attribute", "<xsl:attribute name=\"n\"><![CDATA[value]]></xsl:attribute>"},
        {"xsl:variable", "<xsl:variable name=\"w\"><![CDATA[value]]></xsl:variable>"},
        {"xsl:if", "<xsl:if test=\"true()\"><![CDATA[value]]></xsl:if>"},
        {"xsl:for-each",
         "<xsl:for-each select=\"//property\"><xsl:value-of select=\".\"/>"
         "</xsl:for-each>"},
        {"xsl:copy-of", "<xsl:copy-of select=\"//property\"/>"},
        {"xsl:call-template", "<xsl:call-template name=\"attribute\"/>"},
        {"xsl:element", "<xsl:element name=\"e\"><![CDATA[value]]></xsl:element>"},
        {"xsl:comment", "<xsl:comment><![CDATA[value]]></xsl:comment>"},
        {"xsl:unknown", "<xsl:unknown>value</xsl:unknown>"}};
    return kinds;
}

void forEachPlaceAndKind(const std::vector<NodeText>& places, const VisitCombination& visit) {
    for (std::size_t place = 0; place < places.size(); ++place) {
        for (std::size_t kind = 0; kind < nodeKinds().size(); ++kind) {
            if (combinationIsTried(place, kind)) visit(places[place], nodeKinds()[kind]);
        }
    }
}

std::string letters(std::size_t length) {
    std::string text(length, 'a');
    for (std::size_t i = 0; i < length; ++i)
        text[i] = static_cast<char>('a' + i % 26);
    return text;
}

std::string cdata(const std::string& text) {
    return "<![CDATA[" + text + "]]>";
}

std::string sheetWithBody(const NodeText& place, const std::string& content,
                          const std::string& method) {
    return sheet("", filled(place, content), method);
}

std::string sheetWithTopLevel(const NodeText& place, const std::string& content,
                              const std::string& method) {
    return sheet(filled(place, content), "", method);
}

}  // namespace rgen_test
