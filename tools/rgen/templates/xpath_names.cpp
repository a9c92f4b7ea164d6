// SPDX-License-Identifier: MIT
#include "templates/xpath_names.h"

#include <algorithm>

#include "base/suggestion.h"
#include "templates/xpath_functions.h"

namespace cli {
namespace {

bool contains(const std::vector<std::string>& known, std::string_view name) {
    return std::find(known.begin(), known.end(), name) != known.end();
}

/// Empty without a colon.
std::string_view prefixOf(std::string_view name) {
    const std::size_t colon = name.find(':');
    return colon == std::string_view::npos ? std::string_view() : name.substr(0, colon);
}

std::string quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

/// Whether one of these functions gets a text or number where it needs nodes.
bool needsNodes(std::string_view function) {
    for (const std::string_view name :
         {"count", "sum", "local-name", "name", "namespace-uri", "generate-id"}) {
        if (function == name) return true;
    }
    return false;
}

class NameChecker {
public:
    NameChecker(std::string_view expression, const std::vector<Token>& tokens,
                const ExpressionNames& names)
        : expression_(expression), tokens_(tokens), names_(names) {}

    std::vector<ExpressionProblem> check() {
        for (std::size_t i = 0; i < tokens_.size(); ++i) {
            const Token& token = tokens_[i];
            if (token.kind == TokenKind::Name) checkPrefix(token, token.text);
            if (token.kind == TokenKind::Variable) checkVariable(token);
            if (token.kind == TokenKind::Function) checkFunction(i);
            if (token.kind == TokenKind::Literal) checkConstantCondition(i);
        }
        return std::move(problems_);
    }

private:
    void add(const Token& token, const std::string& code, const std::string& what,
             const std::string& advice, Severity severity = Severity::Error) {
        problems_.push_back({severity, token.offset, token.text.size(), code, what, advice});
    }

    std::string inExpression(const Token& token) const {
        return " in " + shownExpression(expression_, token.offset);
    }

    bool isDeclared(std::string_view prefix) const {
        return prefix.empty() || prefix == "xml" || names_.prefixes.count(std::string(prefix)) > 0;
    }

    void checkPrefix(const Token& token, std::string_view name) {
        const std::string prefix(prefixOf(name));
        if (isDeclared(prefix)) return;
        std::vector<std::string> known;
        for (const auto& [declared, uri] : names_.prefixes)
            known.push_back(declared);
        add(token, "unknown-prefix",
            "the prefix \"" + prefix + "\" is not declared" + inExpression(token),
            didYouMean(prefix, known, "declare xmlns:" + prefix + " in the root element"));
    }

    void checkVariable(const Token& token) {
        const std::string name(token.text.substr(1));
        if (!isDeclared(prefixOf(name))) return checkPrefix(token, name);
        if (contains(names_.variables, name)) return;
        add(token, "unknown-variable", "unknown variable " + quoted(name), adviceForVariable(name));
    }

    /// "$a-b" is one name.
    std::string adviceForVariable(const std::string& name) const {
        for (std::size_t minus = name.find('-'); minus != std::string::npos;
             minus = name.find('-', minus + 1)) {
            if (contains(names_.variables, name.substr(0, minus)))
                return "\"-\" can be part of a name; to subtract, write blanks around it";
        }
        return didYouMean(name, names_.variables, "it is not declared, or not visible here");
    }

    void checkFunction(std::size_t i) {
        const Token& token = tokens_[i];
        if (!prefixOf(token.text).empty()) return checkExtension(token);
        const XPathFunction* const function = findFunction(token.text);
        if (function == nullptr) return reportUnknown(token);
        const std::size_t count = argumentsOf(tokens_, i).size();
        if (count < function->fewest || count > function->most) {
            return add(token, "argument-count",
                       quoted(token.text) + " takes " + argumentCountText(*function) + ", not " +
                           std::to_string(count) + "," + inExpression(token),
                       {});
        }
        checkArguments(i);
    }

    void reportUnknown(const Token& token) {
        const std::string name(token.text);
        if (names_.guardedFunctions.count(name) > 0) return;
        std::string advice = replacementOfFunction(name);
        if (advice.empty()) {
            advice = didYouMean(name, functionNames(),
                                "only the functions of XPath 1.0 and XSLT 1.0 are available");
        }
        add(token, "unknown-function", "unknown function " + quoted(name) + inExpression(token),
            advice);
    }

    void checkExtension(const Token& token) {
        if (names_.guardedFunctions.count(std::string(token.text)) > 0) return;
        const std::string_view prefix = prefixOf(token.text);
        const std::string_view local = token.text.substr(prefix.size() + 1);
        const auto declared = names_.prefixes.find(std::string(prefix));
        const bool isKnown = declared != names_.prefixes.end();
        if (isKnown && hasNodeSet(declared->second) && local == "node-set") return;
        const bool ofExslt = isKnown ? isExslt(declared->second) : isExsltPrefix(prefix);
        if (!isKnown && !ofExslt) return checkPrefix(token, token.text);
        add(token, "extension-function",
            quoted(token.text) + " is " +
                (ofExslt ? "a function of EXSLT" : "an extension function") +
                ", which is not available here," + inExpression(token),
            replacementOfExtension(local));
    }

    void checkArguments(std::size_t i) {
        const Token& token = tokens_[i];
        if (token.is("key")) checkKey(i);
        if (token.is("format-number")) checkDecimalFormat(i);
        if (token.is("document")) checkDocument(i);
        if (!needsNodes(token.text)) return;
        const std::vector<TokenRange> arguments = argumentsOf(tokens_, i);
        if (arguments.size() != 1 || arguments[0].size() != 1) return;
        const Token& argument = tokens_[arguments[0].begin];
        if (argument.kind != TokenKind::Literal && argument.kind != TokenKind::Number) return;
        add(argument, "argument-type",
            quoted(token.text) + " takes nodes, not " +
                (argument.kind == TokenKind::Literal ? "a text," : "a number,") +
                inExpression(token),
            "write a path without quotes");
    }

    void checkKey(std::size_t i) {
        const Token* const key = textArgument(tokens_, i, 0);
        if (key == nullptr || contains(names_.keys, literalText(*key))) return;
        const std::string name(literalText(*key));
        add(*key, "unknown-key", "no xsl:key " + quoted(name),
            didYouMean(name, names_.keys, "declare it with xsl:key"));
    }

    void checkDecimalFormat(std::size_t i) {
        const Token* const format = textArgument(tokens_, i, 2);
        if (format == nullptr || contains(names_.decimalFormats, literalText(*format))) return;
        const std::string name(literalText(*format));
        add(*format, "unknown-decimal-format", "no xsl:decimal-format " + quoted(name),
            didYouMean(name, names_.decimalFormats, "declare it with xsl:decimal-format"));
    }

    void checkDocument(std::size_t i) {
        const Token* const path = textArgument(tokens_, i, 0);
        const std::string alternative =
            "pass what it contains as values, or keep it in xsl:variable or xsl:key of the "
            "template";
        if (path == nullptr) {
            return add(
                tokens_[i], "document",
                "document() reads any file that its argument names" + inExpression(tokens_[i]),
                "no value may be part of its path", Severity::Warning);
        }
        const std::string name(literalText(*path));
        const std::string call = "document('" + name + "') is not available here: ";
        if (name.empty()) {
            add(*path, "document", call + "the template is not a document that can be read",
                alternative);
        } else if (name.find("://") != std::string::npos && name.rfind("file:", 0) != 0) {
            add(*path, "document", call + "nothing is loaded from a network", alternative);
        } else if (name[0] != '/' && name.rfind("file:", 0) != 0 && name.substr(1, 1) != ":") {
            add(*path, "document",
                call +
                    "the path belongs to the folder in which the program runs, not to the "
                    "template's",
                alternative);
        } else {
            add(*path, "document",
                "document('" + name +
                    "') reads this file on each machine, nothing if it is missing",
                alternative, Severity::Warning);
        }
    }

    /// "@name = 'A' or 'B'": the second text alone is a condition, and always true.
    void checkConstantCondition(std::size_t i) {
        const auto isJoin = [this](std::size_t at) {
            return tokens_[at].kind == TokenKind::Operator &&
                   (tokens_[at].is("or") || tokens_[at].is("and"));
        };
        const bool isAlone = i + 1 == tokens_.size() || isJoin(i + 1) || tokens_[i + 1].is(")") ||
                             tokens_[i + 1].is("]") || tokens_[i + 1].is(",");
        if (i == 0 || !isJoin(i - 1) || !isAlone || literalText(tokens_[i]).empty()) return;
        add(tokens_[i], "constant-condition",
            "the text " + std::string(tokens_[i].text) + " alone is always true" +
                inExpression(tokens_[i]),
            "repeat the comparison: A = B " + std::string(tokens_[i - 1].text) + " A = C",
            Severity::Warning);
    }

    std::string_view expression_;
    const std::vector<Token>& tokens_;
    const ExpressionNames& names_;
    std::vector<ExpressionProblem> problems_;
};

/// The next start of a character at or after `at`.
std::size_t characterStart(std::string_view text, std::size_t at) {
    while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80)
        ++at;
    return at;
}

}  // namespace

std::vector<ExpressionProblem> checkNames(std::string_view expression,
                                          const std::vector<Token>& tokens,
                                          const ExpressionNames& names) {
    return NameChecker(expression, tokens, names).check();
}

std::string shownExpression(std::string_view expression, std::size_t place) {
    constexpr std::size_t longest = 80;
    constexpr std::size_t before = 20;
    std::string shown(expression);
    if (shown.size() > longest) {
        const std::size_t begin = characterStart(shown, place > before ? place - before : 0);
        const std::size_t end = characterStart(shown, std::min(begin + longest, shown.size()));
        shown = (begin > 0 ? "..." : "") + shown.substr(begin, end - begin) +
                (end < expression.size() ? "..." : "");
    }
    // Messages are one line.
    std::replace_if(
        shown.begin(), shown.end(),
        [](char letter) { return letter == '\n' || letter == '\r' || letter == '\t'; }, ' ');
    return "\"" + shown + "\"";
}

const Token* textArgument(const std::vector<Token>& tokens, std::size_t function,
                          std::size_t argument) {
    const std::vector<TokenRange> arguments = argumentsOf(tokens, function);
    if (argument >= arguments.size() || arguments[argument].size() != 1) return nullptr;
    const Token& token = tokens[arguments[argument].begin];
    return token.kind == TokenKind::Literal ? &token : nullptr;
}

}  // namespace cli
