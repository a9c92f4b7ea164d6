// SPDX-License-Identifier: MIT
#include "templates/xslt_vocabulary.h"

#include <algorithm>
#include <array>
#include <utility>

namespace cli {
namespace {

using Attributes = std::vector<XsltAttribute>;
constexpr bool required = true;

XsltAttribute expression(const char* name, bool isRequired = false) {
    return {name, XsltValue::Expression, isRequired, {}};
}
XsltAttribute pattern(const char* name, bool isRequired = false) {
    return {name, XsltValue::Pattern, isRequired, {}};
}
XsltAttribute valueTemplate(const char* name, bool isRequired = false) {
    return {name, XsltValue::ValueTemplate, isRequired, {}};
}
XsltAttribute qualifiedName(const char* name, bool isRequired = false) {
    return {name, XsltValue::QualifiedName, isRequired, {}};
}
XsltAttribute text(const char* name, bool isRequired = false) {
    return {name, XsltValue::Text, isRequired, {}};
}
XsltAttribute choice(const char* name, std::vector<std::string> choices) {
    return {name, XsltValue::Choice, false, std::move(choices)};
}
XsltAttribute choiceTemplate(const char* name, std::vector<std::string> choices) {
    return {name, XsltValue::ChoiceTemplate, false, std::move(choices)};
}
XsltAttribute yesOrNo(const char* name) {
    return choice(name, {"yes", "no"});
}

XsltElement topLevel(const char* name, Attributes attributes,
                     XsltContent content = XsltContent::Nothing,
                     std::vector<std::string> children = {}) {
    return {name, std::move(attributes), content, std::move(children), true, false};
}
XsltElement instruction(const char* name, Attributes attributes,
                        XsltContent content = XsltContent::Nothing,
                        std::vector<std::string> children = {}) {
    return {name, std::move(attributes), content, std::move(children), false, true};
}
/// An element that only certain parents may contain.
XsltElement part(const char* name, Attributes attributes,
                 XsltContent content = XsltContent::Nothing) {
    return {name, std::move(attributes), content, {}, false, false};
}
/// "variable" and "param" are top-level elements as well.
XsltElement everywhere(XsltElement element) {
    element.isTopLevel = true;
    return element;
}

Attributes stylesheetAttributes() {
    return {text("version", required), text("id"), text("extension-element-prefixes"),
            text("exclude-result-prefixes")};
}

Attributes outputAttributes() {
    return {choice("method", {"xml", "html", "text", "xhtml"}),
            text("version"),
            text("encoding"),
            yesOrNo("omit-xml-declaration"),
            yesOrNo("standalone"),
            text("doctype-public"),
            text("doctype-system"),
            text("cdata-section-elements"),
            yesOrNo("indent"),
            text("media-type")};
}

std::vector<XsltElement> topLevelElements() {
    const Attributes stylesheet = stylesheetAttributes();
    return {
        part("stylesheet", stylesheet, XsltContent::Children),
        part("transform", stylesheet, XsltContent::Children),
        topLevel("import", {text("href", required)}),
        topLevel("include", {text("href", required)}),
        topLevel("strip-space", {text("elements", required)}),
        topLevel("preserve-space", {text("elements", required)}),
        topLevel("output", outputAttributes()),
        topLevel("key", {qualifiedName("name", required), pattern("match", required),
                         expression("use", required)}),
        topLevel("decimal-format",
                 {qualifiedName("name"), text("decimal-separator"), text("grouping-separator"),
                  text("infinity"), text("minus-sign"), text("NaN"), text("percent"),
                  text("per-mille"), text("zero-digit"), text("digit"), text("pattern-separator")}),
        topLevel("namespace-alias",
                 {text("stylesheet-prefix", required), text("result-prefix", required)}),
        topLevel("attribute-set", {qualifiedName("name", required), text("use-attribute-sets")},
                 XsltContent::Children, {"attribute"}),
        topLevel("template",
                 {pattern("match"), qualifiedName("name"), text("priority"), qualifiedName("mode")},
                 XsltContent::Sequence, {"param"}),
    };
}

std::vector<XsltElement> selectingInstructions() {
    return {
        instruction("apply-templates", {expression("select"), qualifiedName("mode")},
                    XsltContent::Children, {"sort", "with-param"}),
        instruction("apply-imports", {}),
        instruction("call-template", {qualifiedName("name", required)}, XsltContent::Children,
                    {"with-param"}),
        instruction("for-each", {expression("select", required)}, XsltContent::Sequence, {"sort"}),
        instruction("value-of",
                    {expression("select", required), yesOrNo("disable-output-escaping")}),
        instruction("copy-of", {expression("select", required)}),
        instruction(
            "number",
            {choice("level", {"single", "multiple", "any"}), pattern("count"), pattern("from"),
             expression("value"), valueTemplate("format"), valueTemplate("lang"),
             choiceTemplate("letter-value", {"alphabetic", "traditional"}),
             valueTemplate("grouping-separator"), valueTemplate("grouping-size")}),
        instruction("choose", {}, XsltContent::Children, {"when", "otherwise"}),
        instruction("if", {expression("test", required)}, XsltContent::Sequence),
        everywhere(instruction("variable", {qualifiedName("name", required), expression("select")},
                               XsltContent::Sequence)),
    };
}

std::vector<XsltElement> creatingInstructions() {
    return {
        instruction("text", {yesOrNo("disable-output-escaping")}, XsltContent::TextOnly),
        instruction("processing-instruction", {valueTemplate("name", required)},
                    XsltContent::Sequence),
        instruction("element",
                    {valueTemplate("name", required), valueTemplate("namespace"),
                     text("use-attribute-sets")},
                    XsltContent::Sequence),
        instruction("attribute", {valueTemplate("name", required), valueTemplate("namespace")},
                    XsltContent::Sequence),
        instruction("comment", {}, XsltContent::Sequence),
        instruction("copy", {text("use-attribute-sets")}, XsltContent::Sequence),
        instruction("message", {yesOrNo("terminate")}, XsltContent::Sequence),
        instruction("fallback", {}, XsltContent::Sequence),
        instruction(
            "document",
            {valueTemplate("href", required), valueTemplate("method"), valueTemplate("version"),
             valueTemplate("encoding"), valueTemplate("omit-xml-declaration"),
             valueTemplate("standalone"), valueTemplate("doctype-public"),
             valueTemplate("doctype-system"), valueTemplate("cdata-section-elements"),
             valueTemplate("indent"), valueTemplate("media-type")},
            XsltContent::Sequence),
    };
}

std::vector<XsltElement> parts() {
    XsltElement param = part("param", {qualifiedName("name", required), expression("select")},
                             XsltContent::Sequence);
    param.isTopLevel = true;
    return {
        std::move(param),
        part("with-param", {qualifiedName("name", required), expression("select")},
             XsltContent::Sequence),
        part("sort", {expression("select"), valueTemplate("lang"),
                      choiceTemplate("data-type", {"text", "number"}),
                      choiceTemplate("order", {"ascending", "descending"}),
                      choiceTemplate("case-order", {"upper-first", "lower-first"})}),
        part("when", {expression("test", required)}, XsltContent::Sequence),
        part("otherwise", {}, XsltContent::Sequence),
    };
}

std::vector<XsltElement> makeElements() {
    std::vector<XsltElement> elements = topLevelElements();
    for (std::vector<XsltElement> more : {selectingInstructions(), creatingInstructions(), parts()})
        std::move(more.begin(), more.end(), std::back_inserter(elements));
    return elements;
}

const std::vector<XsltElement>& elements() {
    static const std::vector<XsltElement> all = makeElements();
    return all;
}

constexpr std::array<std::pair<std::string_view, std::string_view>, 12> newerElements{{
    {"for-each-group", "group with xsl:key and generate-id() as XSLT 1.0 does"},
    {"function", "write a named template and call it with xsl:call-template"},
    {"sequence", "write xsl:copy-of, or xsl:value-of"},
    {"analyze-string", "take the text apart with substring-before() and substring-after()"},
    {"result-document", "a report is one file; write one template for each"},
    {"next-match", "give the templates modes or names"},
    {"perform-sort", "write xsl:sort inside xsl:for-each"},
    {"character-map", "write the characters themselves"},
    {"iterate", "write a named template that calls itself"},
    {"try", "test with xsl:if before"},
    {"where-populated", "test with xsl:if before"},
    {"evaluate", "expressions cannot be made at run time; use xsl:choose"},
}};

}  // namespace

const XsltAttribute* XsltElement::find(std::string_view attribute) const {
    for (const XsltAttribute& one : attributes) {
        if (attribute == one.name) return &one;
    }
    return nullptr;
}

const XsltElement* findXsltElement(std::string_view name) {
    for (const XsltElement& element : elements()) {
        if (name == element.name) return &element;
    }
    return nullptr;
}

std::vector<std::string> xsltElementNames() {
    std::vector<std::string> names;
    for (const XsltElement& element : elements())
        names.emplace_back(element.name);
    return names;
}

std::string alternativeFor(std::string_view name) {
    for (const auto& [newer, alternative] : newerElements) {
        if (newer == name) return std::string(alternative);
    }
    return {};
}

}  // namespace cli
