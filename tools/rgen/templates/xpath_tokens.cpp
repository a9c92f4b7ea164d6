// Follows the rules of XPath 1.0 for words and "*" that are operators between operands. Where the
// library's parser is more tolerant ("3 mod2" is "3 mod 2"), so is this one.
//
// SPDX-License-Identifier: MIT
#include "templates/xpath_tokens.h"

#include <algorithm>
#include <array>

namespace cli {
namespace {

bool isBlank(char letter) {
    return letter == ' ' || letter == '\t' || letter == '\n' || letter == '\r';
}

bool isDigit(char letter) {
    return letter >= '0' && letter <= '9';
}

bool startsName(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') || letter == '_' ||
           static_cast<unsigned char>(letter) >= 0x80;
}

bool continuesName(char letter) {
    return startsName(letter) || isDigit(letter) || letter == '-' || letter == '.';
}

/// Characters of other alphabets that look like XPath, and the blank that is none: quotes, dashes.
std::size_t lookalikeLength(std::string_view text) {
    constexpr std::array lookalikes = {
        std::string_view("\u2018"), std::string_view("\u2019"), std::string_view("\u201c"),
        std::string_view("\u201d"), std::string_view("\u201e"), std::string_view("\u00ab"),
        std::string_view("\u00bb"), std::string_view("\u2013"), std::string_view("\u2212"),
        std::string_view("\u00a0"), std::string_view("\u2260"), std::string_view("\u2264"),
        std::string_view("\u2265")};
    for (const std::string_view one : lookalikes) {
        if (text.substr(0, one.size()) == one) return one.size();
    }
    return 0;
}

/// The bytes of a character, so that no token ends inside one.
std::size_t characterLength(std::string_view text) {
    std::size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80)
        ++length;
    return length;
}

std::size_t nameLength(std::string_view text) {
    if (text.empty() || !startsName(text[0]) || lookalikeLength(text) > 0) return 0;
    std::size_t length = 1;
    while (length < text.size() && continuesName(text[length]) &&
           lookalikeLength(text.substr(length)) == 0)
        ++length;
    return length;
}

/// With a prefix; "*" may follow the colon.
std::size_t qualifiedNameLength(std::string_view text) {
    const std::size_t prefix = nameLength(text);
    if (prefix == 0 || text.substr(prefix, 1) != ":" || text.substr(prefix, 2) == "::") {
        return prefix;
    }
    const std::string_view rest = text.substr(prefix + 1);
    const std::size_t local = rest.substr(0, 1) == "*" ? 1 : nameLength(rest);
    return local == 0 ? prefix : prefix + 1 + local;
}

std::size_t digitsLength(std::string_view text) {
    return std::min(text.find_first_not_of("0123456789"), text.size());
}

/// With an exponent, which the library accepts.
std::size_t numberLength(std::string_view text) {
    std::size_t length = digitsLength(text);
    if (text.substr(length, 1) == ".") length += 1 + digitsLength(text.substr(length + 1));
    const std::string_view exponent = text.substr(length, 1);
    if (exponent != "e" && exponent != "E") return length;
    ++length;
    const std::string_view sign = text.substr(length, 1);
    if (sign == "-" || sign == "+") ++length;
    return length + digitsLength(text.substr(length));
}

std::size_t literalLength(std::string_view text) {
    const std::size_t end = text.find(text[0], 1);
    return end == std::string_view::npos ? text.size() : end + 1;
}

bool isNodeType(std::string_view name) {
    return name == "node" || name == "text" || name == "comment" ||
           name == "processing-instruction";
}

class Scanner {
public:
    explicit Scanner(std::string_view expression) : text_(expression) {}

    std::vector<Token> scan() {
        skipBlanks();
        while (at_ < text_.size()) {
            addNext();
            skipBlanks();
        }
        return std::move(tokens_);
    }

private:
    void skipBlanks() {
        while (at_ < text_.size() && isBlank(text_[at_]))
            ++at_;
    }

    void add(TokenKind kind, std::size_t length) {
        tokens_.push_back({kind, at_, text_.substr(at_, length)});
        at_ += length;
    }

    void addNext() {
        const std::string_view rest = text_.substr(at_);
        const char first = rest[0];
        if (first == '\'' || first == '"') {
            add(TokenKind::Literal, literalLength(rest));
        } else if (isDigit(first) || (first == '.' && rest.size() > 1 && isDigit(rest[1]))) {
            add(TokenKind::Number, numberLength(rest));
        } else if (first == '$') {
            add(TokenKind::Variable, 1 + qualifiedNameLength(rest.substr(1)));
        } else if (nameLength(rest) > 0) {
            addWord(rest);
        } else {
            addSign(rest);
        }
    }

    /// Whether the token before is one after which an operand follows.
    bool expectsOperand() const {
        if (tokens_.empty()) return true;
        const Token& last = tokens_.back();
        if (last.kind == TokenKind::Operator || last.kind == TokenKind::Slash) return true;
        return last.kind == TokenKind::Sign &&
               (last.is("(") || last.is("[") || last.is(",") || last.is("@") || last.is("::"));
    }

    void addWord(std::string_view rest) {
        if (!expectsOperand()) {
            for (const std::string_view word : {"and", "or", "div", "mod"}) {
                if (rest.substr(0, word.size()) == word)
                    return add(TokenKind::Operator, word.size());
            }
        }
        const std::size_t length = qualifiedNameLength(rest);
        const std::string_view word = rest.substr(0, length);
        std::size_t next = length;
        while (next < rest.size() && isBlank(rest[next]))
            ++next;
        if (rest.substr(next, 2) == "::") return add(TokenKind::Axis, length);
        const bool isCall = rest.substr(next, 1) == "(" && word.back() != '*';
        if (!isCall) return add(TokenKind::Name, length);
        add(isNodeType(word) ? TokenKind::NodeType : TokenKind::Function, length);
    }

    void addSign(std::string_view rest) {
        if (rest.substr(0, 2) == "//") return add(TokenKind::Slash, 2);
        if (rest[0] == '/') return add(TokenKind::Slash, 1);
        for (const std::string_view sign : {"::", ".."}) {
            if (rest.substr(0, 2) == sign) return add(TokenKind::Sign, 2);
        }
        for (const std::string_view sign : {"!=", "<=", ">="}) {
            if (rest.substr(0, 2) == sign) return add(TokenKind::Operator, 2);
        }
        if (rest[0] == '*') return add(expectsOperand() ? TokenKind::Sign : TokenKind::Operator, 1);
        if (std::string_view("+-=<>|").find(rest[0]) != std::string_view::npos) {
            return add(TokenKind::Operator, 1);
        }
        if (std::string_view("()[],@.").find(rest[0]) != std::string_view::npos) {
            return add(TokenKind::Sign, 1);
        }
        add(TokenKind::Unknown, std::max(lookalikeLength(rest), characterLength(rest)));
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::vector<Token> tokens_;
};

bool opens(const Token& token) {
    return token.kind == TokenKind::Sign && (token.is("(") || token.is("["));
}

bool closes(const Token& token) {
    return token.kind == TokenKind::Sign && (token.is(")") || token.is("]"));
}

/// The offset after the "}" of the expression that begins at `begin`, or the end. Quotes hide "}".
std::size_t endOfEmbedded(std::string_view text, std::size_t begin) {
    std::size_t at = begin;
    while (at < text.size() && text[at] != '}') {
        if (text[at] == '\'' || text[at] == '"')
            at = std::min(text.find(text[at], at + 1), text.size());
        if (at < text.size()) ++at;
    }
    return at;
}

}  // namespace

std::vector<Token> tokensOf(std::string_view expression) {
    return Scanner(expression).scan();
}

std::string_view literalText(const Token& literal) {
    const std::string_view text = literal.text.substr(1);
    const bool isClosed = !text.empty() && text.back() == literal.text.front();
    return isClosed ? text.substr(0, text.size() - 1) : text;
}

std::size_t closingBracket(const std::vector<Token>& tokens, std::size_t opening) {
    std::size_t depth = 0;
    for (std::size_t i = opening; i < tokens.size(); ++i) {
        if (opens(tokens[i])) ++depth;
        if (closes(tokens[i]) && --depth == 0) return i;
    }
    return tokens.size();
}

std::vector<TokenRange> argumentsOf(const std::vector<Token>& tokens, std::size_t function) {
    const std::size_t opening = function + 1;
    if (opening >= tokens.size()) return {};
    const std::size_t end = closingBracket(tokens, opening);
    if (end == opening + 1) return {};
    std::vector<TokenRange> arguments = {{opening + 1, end}};
    std::size_t depth = 0;
    for (std::size_t i = opening + 1; i < end; ++i) {
        if (opens(tokens[i])) ++depth;
        if (closes(tokens[i])) --depth;
        if (depth > 0 || !tokens[i].is(",") || tokens[i].kind != TokenKind::Sign) continue;
        arguments.back().end = i;
        arguments.push_back({i + 1, end});
    }
    return arguments;
}

ValueTemplate readValueTemplate(std::string_view text) {
    ValueTemplate read;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '{' && text[i] != '}') continue;
        if (text.substr(i + 1, 1) == text.substr(i, 1)) {
            ++i;
        } else if (text[i] == '}') {
            // What follows is not read.
            read.unmatched.push_back({i, '}'});
            return read;
        } else {
            const std::size_t end = endOfEmbedded(text, i + 1);
            if (end == text.size()) {
                read.unmatched.push_back({i, '{'});
                return read;
            }
            read.expressions.push_back({i + 1, text.substr(i + 1, end - i - 1)});
            i = end;
        }
    }
    return read;
}

}  // namespace cli
