// Numbers are computed with. The rest are words: of the template that is called with the value
// ("date"), of texts that are passed with it ('size'), of the variable that holds it ("dump").
//
// SPDX-License-Identifier: MIT
#include "templates/value_hints.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string_view>
#include <utility>
#include <vector>

#include "base/text_functions.h"
#include "templates/xpath_tokens.h"

namespace cli {
namespace {

constexpr const char* number = "int";

/// The first one that is part of a word counts.
constexpr std::array hintsOfWords = {
    std::pair{"date", "datetime"}, std::pair{"duration", number}, std::pair{"dump", "bytes"},
    std::pair{"size", "size"},     std::pair{"bytes", "size"},    std::pair{"speed", "speed"},
    std::pair{"hex", "address"},   std::pair{"count", number},    std::pair{"digits", number},
    std::pair{"decimal", number},  std::pair{"time", "datetime"}, std::pair{"number", number},
};

std::string hintOfWord(const std::string& word) {
    const std::string lower = lowerCase(word);
    for (const auto& [part, hint] : hintsOfWords) {
        if (lower.find(part) != std::string::npos) return hint;
    }
    return {};
}

bool isOneOf(const Token& token, std::initializer_list<std::string_view> names) {
    return std::any_of(names.begin(), names.end(),
                       [&token](std::string_view name) { return token.is(name); });
}

enum class Use { Text, Number, Computation };

/// How the expression uses what the call at `function` returns, of itself or inside another one.
Use useAround(const std::vector<Token>& tokens, std::size_t function, std::size_t closing) {
    const Token& name = tokens[function];
    if (isOneOf(name, {"count", "string-length", "substring", "contains"})) return Use::Text;
    if (isOneOf(name, {"number", "sum", "format-number", "floor", "ceiling", "round"}))
        return Use::Number;
    const auto computes = [&tokens](std::size_t at) {
        return at < tokens.size() && tokens[at].kind == TokenKind::Operator &&
               isOneOf(tokens[at], {"+", "-", "*", "div", "mod", "<", ">", "<=", ">="});
    };
    const bool isOperand = computes(function - 1) || computes(closing + 1);
    return name.is("key") && isOperand ? Use::Computation : Use::Text;
}

/// From the innermost call outwards.
Use useOf(const std::vector<Token>& tokens, std::size_t at) {
    for (std::size_t i = at; i > 0; --i) {
        if (tokens[i - 1].kind != TokenKind::Function) continue;
        const std::size_t closing = closingBracket(tokens, i);
        if (closing <= at) continue;
        const Use use = useAround(tokens, i - 1, closing);
        if (use != Use::Text || tokens[i - 1].is("count")) return use;
    }
    return Use::Text;
}

Use useIn(const TemplateExpression& expression, const ValueRequest& request) {
    std::string_view text = expression.text;
    std::size_t offset = request.offset;
    const bool hasParts = expression.kind == ExpressionKind::ValueTemplate;
    const ValueTemplate read = hasParts ? readValueTemplate(text) : ValueTemplate();
    for (const EmbeddedExpression& part : read.expressions) {
        if (part.offset > request.offset) break;
        text = part.text;
        offset = request.offset - part.offset;
    }
    const std::vector<Token> tokens = tokensOf(text);
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (tokens[i].offset <= offset && offset < tokens[i].end()) return useOf(tokens, i);
    }
    return Use::Text;
}

/// The words of a call: its template's name, and the texts among its other parameters.
std::string hintOfCall(const xmlNode* call, const xmlNode* parameter) {
    std::string hint = hintOfWord(attributeText(call, "name"));
    if (!hint.empty()) return hint;
    for (xmlNode* child = elementFrom(call->children); child != nullptr;
         child = elementFrom(child->next)) {
        const std::string select = attributeText(child, "select");
        const bool isText = child != parameter && !select.empty() && select[0] == '\'';
        std::string word = isText ? hintOfWord(select) : std::string();
        if (!word.empty()) return word;
    }
    return {};
}

}  // namespace

std::string hintOfUse(const TemplateExpression& expression, const ValueRequest& request) {
    const Use use = useIn(expression, request);
    if (use == Use::Computation) return number;
    xmlNode* const element = expression.element;
    std::string hint;
    if (isXsltElement(element, "variable")) hint = hintOfWord(attributeText(element, "name"));
    if (isXsltElement(element, "with-param")) hint = hintOfCall(element->parent, element);
    if (isXsltElement(element, "apply-templates")) hint = hintOfCall(element, nullptr);
    return hint.empty() && use == Use::Number ? number : hint;
}

}  // namespace cli
