// Compiles as libxslt does when it reads a template. The handlers of messages are replaced during a
// compilation: what they would print is not needed, only where the parser stopped.
//
// SPDX-License-Identifier: MIT
#include "templates/xpath_compile.h"

#include <libxml/xmlerror.h>
#include <libxml/xpath.h>
#include <libxslt/pattern.h>
#include <libxslt/xsltutils.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "data/xml_nodes.h"
#include "templates/xpath_tokens.h"

namespace cli {
namespace {

struct XPathFree {
    void operator()(xmlXPathContext* context) const { xmlXPathFreeContext(context); }
    void operator()(xmlXPathCompExpr* expression) const { xmlXPathFreeCompExpr(expression); }
    void operator()(xsltCompMatch* pattern) const { xsltFreeCompMatchList(pattern); }
    void operator()(xsltStylesheet* stylesheet) const { xsltFreeStylesheet(stylesheet); }
};
template <typename T>
using XPathPtr = std::unique_ptr<T, XPathFree>;

void keepFirstError(void* verdict, const xmlError* error) {
    auto& kept = *static_cast<CompileVerdict*>(verdict);
    if (!kept.isAccepted) return;
    kept.isAccepted = false;
    kept.stoppedAt = static_cast<std::size_t>(error->int1);
    kept.isForbiddenVariable = error->code == XML_XPATH_EXPRESSION_OK + XPATH_FORBID_VARIABLE_ERROR;
    kept.isTooDeep = error->code == XML_XPATH_EXPRESSION_OK + XPATH_RECURSION_LIMIT_EXCEEDED;
}

CompileVerdict compileXPath(const std::string& expression, bool variablesAllowed) {
    CompileVerdict verdict;
    const XPathPtr<xmlXPathContext> context(xmlXPathNewContext(nullptr));
    if (!context) return verdict;
    context->error = keepFirstError;
    context->userData = &verdict;
    if (!variablesAllowed) context->flags = XML_XPATH_NOVAR;
    const XPathPtr<xmlXPathCompExpr> compiled(
        xmlXPathCtxtCompile(context.get(), xmlText(expression.c_str())));
    if (!compiled && verdict.isAccepted) verdict = {false, expression.size()};
    return verdict;
}

void discard(void*, const char*, ...) {}
void discardError(void*, const xmlError*) {}

/// The messages of both libraries on this thread, while it lives.
class Silence {
public:
    Silence() {
        xmlSetGenericErrorFunc(nullptr, discard);
        xmlSetStructuredErrorFunc(nullptr, discardError);
        xsltSetGenericErrorFunc(nullptr, discard);
    }
    ~Silence() {
        xmlSetGenericErrorFunc(genericContext_, generic_);
        xmlSetStructuredErrorFunc(structuredContext_, structured_);
        xsltSetGenericErrorFunc(xsltContext_, xslt_);
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    xmlGenericErrorFunc generic_ = xmlGenericError;
    void* genericContext_ = xmlGenericErrorContext;
    xmlStructuredErrorFunc structured_ = xmlStructuredError;
    void* structuredContext_ = xmlStructuredErrorContext;
    xmlGenericErrorFunc xslt_ = xsltGenericError;
    void* xsltContext_ = xsltGenericErrorContext;
};

/// A document whose root declares each name as a prefix: a blank may follow the colon.
XmlPtr<xmlDoc> documentWithPrefixes(std::string_view pattern) {
    XmlPtr<xmlDoc> document(xmlNewDoc(xmlText("1.0")));
    xmlNode* const root = xmlNewDocNode(document.get(), nullptr, xmlText("root"), nullptr);
    xmlDocSetRootElement(document.get(), root);
    for (const Token& token : tokensOf(pattern)) {
        if (token.kind != TokenKind::Name) continue;
        const std::string prefix(token.text.substr(0, token.text.find(':')));
        xmlNewNs(root, xmlText("urn:any"), xmlText(prefix.c_str()));
    }
    return document;
}

bool usesVariables(std::string_view expression) {
    const std::vector<Token> tokens = tokensOf(expression);
    return std::any_of(tokens.begin(), tokens.end(),
                       [](const Token& token) { return token.kind == TokenKind::Variable; });
}

/// The function that compiles a pattern without variables is not public, so a template is compiled.
bool isMatchOfTemplate(const std::string& pattern) {
    const XPathPtr<xsltStylesheet> stylesheet(xsltNewStylesheet());
    XmlPtr<xmlDoc> document = documentWithPrefixes(pattern);
    xmlNode* const root = xmlDocGetRootElement(document.get());
    xmlNs* const xslt = xmlNewNs(root, XSLT_NAMESPACE, xmlText("xslt-of-rgen"));
    xmlNodeSetName(root, xmlText("stylesheet"));
    xmlSetNs(root, xslt);
    xmlNewProp(root, xmlText("version"), xmlText("1.0"));
    xmlNode* const rule = xmlNewChild(root, xslt, xmlText("template"), nullptr);
    xmlNewProp(rule, xmlText("match"), xmlText(pattern.c_str()));
    if (xsltParseStylesheetUser(stylesheet.get(), document.get()) != 0) return false;
    // The stylesheet owns a document that it has compiled.
    static_cast<void>(document.release());
    return true;
}

CompileVerdict compilePattern(const std::string& pattern, bool variablesAllowed) {
    const Silence silence;
    const XmlPtr<xmlDoc> document = documentWithPrefixes(pattern);
    const XPathPtr<xsltStylesheet> stylesheet(xsltNewStylesheet());
    if (!document || !stylesheet) return {};
    const XPathPtr<xsltCompMatch> compiled(
        xsltCompilePattern(xmlText(pattern.c_str()), document.get(),
                           xmlDocGetRootElement(document.get()), stylesheet.get(), nullptr));
    // A predicate that cannot be compiled is an error of the stylesheet only.
    if (compiled && stylesheet->errors == 0) {
        const bool isForbidden =
            !variablesAllowed && usesVariables(pattern) && !isMatchOfTemplate(pattern);
        return isForbidden ? CompileVerdict{false, pattern.size(), true} : CompileVerdict{};
    }
    CompileVerdict verdict = compileXPath(pattern, true);
    if (verdict.isAccepted) verdict = {false, pattern.size()};
    return verdict;
}

/// The offset after the predicate that begins at `begin`, or npos when it does not end.
std::size_t endOfPredicate(std::string_view pattern, std::size_t begin) {
    std::size_t depth = 0;
    for (std::size_t i = begin; i < pattern.size(); ++i) {
        const char letter = pattern[i];
        if (letter == '[') ++depth;
        if (letter == ']' && --depth == 0) return i + 1;
        if (letter == '\'' || letter == '"') i = pattern.find(letter, i + 1);
        if (i == std::string_view::npos) break;
    }
    return std::string_view::npos;
}

/// libxslt searches each alternative of a key that does not begin with "/" in the whole document.
/// It takes each "[" for a predicate, also one in a text.
CompileVerdict compileKeyPattern(std::string_view pattern, bool variablesAllowed) {
    std::string expression;
    for (std::size_t begin = 0; begin < pattern.size();) {
        std::size_t end = begin;
        while (end < pattern.size() && pattern[end] != '|') {
            const std::size_t bracket = end;
            end = pattern[end] == '[' ? endOfPredicate(pattern, end) : end + 1;
            if (end == std::string_view::npos) return {false, bracket};
        }
        if (pattern[begin] != '/') expression += "//";
        expression += pattern.substr(begin, end - begin);
        if (end < pattern.size()) expression += '|';
        begin = end + 1;
    }
    CompileVerdict verdict = compileXPath(expression, variablesAllowed);
    const std::size_t added = pattern.substr(0, 1) == "/" ? 0 : 2;
    verdict.stoppedAt -= std::min(verdict.stoppedAt, added);
    return verdict;
}

}  // namespace

CompileVerdict compileExpression(std::string_view expression, ExpressionKind kind,
                                 bool variablesAllowed) {
    const std::string text(expression);
    if (kind == ExpressionKind::Pattern) return compilePattern(text, variablesAllowed);
    if (kind == ExpressionKind::Expression) return compileXPath(text, variablesAllowed);
    return compileKeyPattern(expression, variablesAllowed);
}

}  // namespace cli
