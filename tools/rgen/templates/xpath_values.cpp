// Names are often composed: concat(substring-before(@name, 'Address'), 'Sectors'). Where the
// current node is a property of a list, this is a name of the same list; the text is computed with
// "N" as the number of the entry.
//
// SPDX-License-Identifier: MIT
#include "templates/xpath_values.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "templates/xpath_names.h"
#include "templates/xpath_tokens.h"

namespace cli {
namespace {

class RequestReader {
public:
    RequestReader(const std::vector<Token>& tokens, const KeyDeclarations& keys,
                  const ValueContext& context)
        : tokens_(tokens), keys_(keys), context_(context) {}

    std::vector<ValueRequest> read() {
        readRange({0, tokens_.size()});
        return std::move(requests_);
    }

    std::optional<std::string> textOf(TokenRange range) const {
        if (range.size() == 0) return std::nullopt;
        const Token& first = tokens_[range.begin];
        if (isName(range)) return known(context_.currentName);
        if (range.size() == 1 && first.kind == TokenKind::Literal)
            return std::string(literalText(first));
        if (range.size() == 1 && first.kind == TokenKind::Variable) {
            const auto variable = context_.texts.find(std::string(first.text.substr(1)));
            if (variable != context_.texts.end()) return variable->second;
        }
        const bool isCall = first.kind == TokenKind::Function &&
                            closingBracket(tokens_, range.begin + 1) + 1 == range.end;
        return isCall ? textOfCall(range.begin) : std::nullopt;
    }

    /// The name of the properties that the tokens select.
    std::string selectedName(TokenRange range) const {
        if (range.size() == 0) return {};
        const Token& first = tokens_[range.begin];
        std::size_t end = range.begin + 1;
        std::string name;
        if (first.kind == TokenKind::Variable) {
            const auto variable = context_.lists.find(std::string(first.text.substr(1)));
            if (variable != context_.lists.end()) name = variable->second;
        } else if (first.kind == TokenKind::Function && first.is("key")) {
            name = listOfKey(range.begin);
            end = closingBracket(tokens_, range.begin + 1) + 1;
        }
        while (end < range.end && tokens_[end].is("["))
            end = closingBracket(tokens_, end) + 1;
        return end == range.end ? name : std::string();
    }

private:
    using Kind = ValueRequest::Kind;

    static std::optional<std::string> known(const std::string& text) {
        return text.empty() ? std::nullopt : std::make_optional(text);
    }

    bool isSign(std::size_t at, std::string_view sign) const {
        return at < tokens_.size() && tokens_[at].kind == TokenKind::Sign && tokens_[at].is(sign);
    }

    /// "@name", alone or at the end of ".", "./".
    bool isName(TokenRange range) const {
        return range.size() == 2 && isSign(range.begin, "@") && tokens_[range.begin + 1].is("name");
    }

    std::optional<std::string> textOfCall(std::size_t function) const {
        const Token& name = tokens_[function];
        const std::vector<TokenRange> arguments = argumentsOf(tokens_, function);
        std::vector<std::string> texts;
        for (const TokenRange& argument : arguments) {
            const auto text = textOf(argument);
            if (!text) return std::nullopt;
            texts.push_back(*text);
        }
        if (name.is("concat")) {
            std::string all;
            for (const std::string& text : texts)
                all += text;
            return all;
        }
        if (texts.size() == 1 && (name.is("string") || name.is("normalize-space"))) return texts[0];
        if (texts.size() != 2) return std::nullopt;
        const std::size_t at = texts[0].find(texts[1]);
        if (at == std::string::npos) return std::nullopt;
        if (name.is("substring-before")) return texts[0].substr(0, at);
        if (name.is("substring-after")) return texts[0].substr(at + texts[1].size());
        return std::nullopt;
    }

    std::string listOfKey(std::size_t function) const {
        const Token* const key = textArgument(tokens_, function, 0);
        const std::vector<TokenRange> arguments = argumentsOf(tokens_, function);
        if (key == nullptr || arguments.size() != 2) return {};
        const auto text = textOf(arguments[1]);
        if (!text) return {};
        const auto target = targetOfKey(keys_, std::string(literalText(*key)), *text);
        return target && target->kind != KeyTarget::Kind::Prefix ? target->name : std::string();
    }

    void readRange(TokenRange range) {
        for (std::size_t i = range.begin; i < range.end; ++i) {
            const Token& token = tokens_[i];
            if (token.kind == TokenKind::Operator && (token.is("=") || token.is("!=")))
                readComparison(i);
            if (token.kind != TokenKind::Function && token.kind != TokenKind::Variable) continue;
            if (token.is("key")) readKey(i);
            if (token.is("starts-with")) readStart(i);
            i = readPredicates(i);
        }
    }

    /// Inside of predicates after a list the current node is a property of that list. Returns the
    /// index of the last token that has been read.
    std::size_t readPredicates(std::size_t i) {
        const bool isCall = tokens_[i].kind == TokenKind::Function;
        const std::size_t end = isCall ? closingBracket(tokens_, i + 1) : i;
        if (!isSign(end + 1, "[")) return i;
        const std::string list = selectedName({i, end + 1});
        if (list.empty()) return i;
        if (isCall) readRange({i + 1, end});
        std::size_t last = end;
        while (isSign(last + 1, "[")) {
            const std::size_t closing = closingBracket(tokens_, last + 1);
            const std::string outer = std::exchange(context_.currentName, list);
            readRange({last + 2, std::min(closing, tokens_.size())});
            context_.currentName = outer;
            last = closing;
        }
        return std::min(last, tokens_.size() - 1);
    }

    void add(Kind kind, const std::string& name, const Token& literal, const std::string& key = {},
             const std::string& keyText = {}) {
        if (name.empty()) return;
        requests_.push_back(
            {kind, name, literal.offset + 1, literalText(literal).size(), key, keyText});
    }

    void readComparison(std::size_t i) {
        const bool isLeft = i >= 2 && isName({i - 2, i});
        const bool isRight = i + 3 <= tokens_.size() && isName({i + 1, i + 3});
        const auto literalAt = [this](std::size_t at) {
            return at < tokens_.size() && tokens_[at].kind == TokenKind::Literal;
        };
        if (isLeft && literalAt(i + 1))
            add(Kind::Name, std::string(literalText(tokens_[i + 1])), tokens_[i + 1]);
        if (isRight && i > 0 && literalAt(i - 1))
            add(Kind::Name, std::string(literalText(tokens_[i - 1])), tokens_[i - 1]);
        if (literalAt(i + 1) && isSign(i - 1, ")")) readFirstPart(i);
    }

    /// substring-before(@name, '.') = 'Err'
    void readFirstPart(std::size_t i) {
        for (std::size_t function = 0; function + 1 < i; ++function) {
            if (tokens_[function].kind != TokenKind::Function ||
                !tokens_[function].is("substring-before"))
                continue;
            const std::vector<TokenRange> arguments = argumentsOf(tokens_, function);
            const Token* const separator = textArgument(tokens_, function, 1);
            if (closingBracket(tokens_, function + 1) + 1 != i || separator == nullptr ||
                !isName(arguments[0]))
                continue;
            const Token& literal = tokens_[i + 1];
            add(Kind::Prefix,
                std::string(literalText(literal)) + std::string(literalText(*separator)), literal);
        }
    }

    void readStart(std::size_t i) {
        const std::vector<TokenRange> arguments = argumentsOf(tokens_, i);
        const Token* const start = textArgument(tokens_, i, 1);
        if (arguments.size() != 2 || start == nullptr || !isName(arguments[0])) return;
        add(Kind::Prefix, std::string(literalText(*start)), *start);
    }

    void readKey(std::size_t i) {
        const Token* const keyName = textArgument(tokens_, i, 0);
        const std::vector<TokenRange> arguments = argumentsOf(tokens_, i);
        if (keyName == nullptr || arguments.size() != 2) return;
        const std::string key(literalText(*keyName));
        const Token* const literal = textArgument(tokens_, i, 1);
        const auto text = textOf(arguments[1]);
        if (text && lastLiteral(arguments[1]) != nullptr) {
            const auto target = targetOfKey(keys_, key, *text);
            if (!target) return;
            const bool isComposedOfEntry =
                literal == nullptr && entryPlace(target->name) != std::string::npos;
            Kind kind = isComposedOfEntry ? Kind::List : Kind::Name;
            if (target->kind == KeyTarget::Kind::List) kind = Kind::List;
            if (target->kind == KeyTarget::Kind::Prefix) kind = Kind::Prefix;
            return add(kind, target->name, *lastLiteral(arguments[1]), key,
                       literal == nullptr ? std::string() : *text);
        }
        readComposedKey(key, arguments[1]);
    }

    /// concat($entry, 'Sectors') without a known beginning.
    void readComposedKey(const std::string& key, TokenRange range) {
        const Token* const last = lastLiteral(range);
        if (last == nullptr || !tokens_[range.begin].is("concat")) return;
        const auto target = targetOfKey(keys_, key, "Name");
        if (!target || target->kind != KeyTarget::Kind::Name) return;
        const std::vector<TokenRange> parts = argumentsOf(tokens_, range.begin);
        const Token& first = tokens_[parts.front().begin];
        const bool startsWithText = parts.front().size() == 1 && first.kind == TokenKind::Literal;
        const bool endsWithText = last->end() == tokens_[parts.back().end - 1].end();
        if (startsWithText && endsWithText && last != &first)
            return add(Kind::List,
                       std::string(literalText(first)) + "N" + std::string(literalText(*last)),
                       first, key);
        if (startsWithText) return add(Kind::Prefix, std::string(literalText(first)), first, key);
        if (endsWithText) add(Kind::Part, std::string(literalText(*last)), *last, key);
    }

    const Token* lastLiteral(TokenRange range) const {
        for (std::size_t i = range.end; i > range.begin; --i) {
            if (tokens_[i - 1].kind == TokenKind::Literal) return &tokens_[i - 1];
        }
        return nullptr;
    }

    const std::vector<Token>& tokens_;
    const KeyDeclarations& keys_;
    ValueContext context_;
    std::vector<ValueRequest> requests_;
};

}  // namespace

std::vector<ValueRequest> valueRequests(std::string_view expression, ExpressionKind kind,
                                        const KeyDeclarations& keys, const ValueContext& context) {
    if (kind != ExpressionKind::ValueTemplate) {
        const std::vector<Token> tokens = tokensOf(expression);
        return RequestReader(tokens, keys, context).read();
    }
    std::vector<ValueRequest> requests;
    for (const EmbeddedExpression& embedded : readValueTemplate(expression).expressions) {
        for (ValueRequest& request :
             valueRequests(embedded.text, ExpressionKind::Expression, keys, context)) {
            request.offset += embedded.offset;
            requests.push_back(std::move(request));
        }
    }
    return requests;
}

std::string knownText(std::string_view expression, const ValueContext& context) {
    const std::vector<Token> tokens = tokensOf(expression);
    const KeyDeclarations noKeys;
    return RequestReader(tokens, noKeys, context).textOf({0, tokens.size()}).value_or("");
}

std::string selectedName(std::string_view expression, const KeyDeclarations& keys,
                         const ValueContext& context) {
    const std::vector<Token> tokens = tokensOf(expression);
    return RequestReader(tokens, keys, context).selectedName({0, tokens.size()});
}

}  // namespace cli
