// SPDX-License-Identifier: MIT
#include "templates/xpath_sequence.h"

#include <string>

#include "base/suggestion.h"

namespace cli {
namespace {

const std::vector<std::string>& axes() {
    static const std::vector<std::string> names = {
        "ancestor",  "ancestor-or-self",  "attribute", "child",  "descendant", "descendant-or-self",
        "following", "following-sibling", "namespace", "parent", "preceding",  "preceding-sibling",
        "self"};
    return names;
}

std::string quoted(const Token& token) {
    return "\"" + std::string(token.text) + "\"";
}

class SequenceReader {
public:
    explicit SequenceReader(const std::vector<Token>& tokens) : tokens_(tokens) {}

    std::optional<SyntaxMistake> read() {
        for (at_ = 0; at_ < tokens_.size() && !mistake_; ++at_) {
            if (expectsOperand_)
                readOperand(tokens_[at_]);
            else
                readAfterOperand(tokens_[at_]);
        }
        if (!mistake_ && expectsOperand_ && !tokens_.empty()) missingAfter(tokens_.back());
        if (!mistake_ && !open_.empty()) {
            const Token& bracket = tokens_[open_.back()];
            fail(bracket, quoted(bracket) + " is not closed", {});
        }
        return mistake_;
    }

private:
    const Token* next() const { return at_ + 1 < tokens_.size() ? &tokens_[at_ + 1] : nullptr; }
    const Token* previous() const { return at_ > 0 ? &tokens_[at_ - 1] : nullptr; }

    void fail(const Token& token, const std::string& what, const std::string& advice) {
        mistake_ = SyntaxMistake{token.offset, token.text.size(), what, advice};
    }

    /// There is nothing where an operand, a step or an argument must follow `token`.
    void missingAfter(const Token& token) {
        if (token.is("(")) return fail(token, "there is nothing between the brackets", {});
        if (token.is("[")) return fail(token, "the predicate is empty", {});
        if (token.is(",")) return fail(token, "an argument is missing after \",\"", {});
        if (token.is("@")) return fail(token, "the name of the attribute is missing", {});
        if (token.is("::")) return fail(token, "a name is missing after \"::\"", {});
        if (token.kind == TokenKind::Slash)
            return fail(token, "a step is missing after " + quoted(token), {});
        fail(token, quoted(token) + " has no right side", {});
    }

    void missingBefore(const Token& token) {
        const Token* const before = previous();
        if (before != nullptr && !before->is("(") && !before->is("[") && !before->is(","))
            return missingAfter(*before);
        if (token.is(",")) return fail(token, "an argument is missing before \",\"", {});
        if (token.is(")") || token.is("]"))
            return before != nullptr ? missingAfter(*before)
                                     : fail(token, quoted(token) + " closes nothing", {});
        if (token.is("[")) return fail(token, "the predicate has no path before it", {});
        if (token.is("::")) return fail(token, "the axis before \"::\" is missing", {});
        fail(token, quoted(token) + " has no left side", {});
    }

    bool isAfterSlash() const {
        return previous() != nullptr && previous()->kind == TokenKind::Slash;
    }

    /// After "@" or "::" only a name, "*" or a node type can follow.
    bool needsNodeTest() const {
        return previous() != nullptr && previous()->kind == TokenKind::Sign &&
               (previous()->is("@") || previous()->is("::"));
    }

    void readOperand(const Token& token) {
        switch (token.kind) {
            case TokenKind::Operator:
                if (!token.is("-") || isAfterSlash() || needsNodeTest()) missingBefore(token);
                return;
            case TokenKind::Slash:
                return readLeadingSlash(token);
            case TokenKind::Sign:
                return readLeadingSign(token);
            case TokenKind::Axis:
                return readAxis(token);
            case TokenKind::Variable:
                if (token.is("$")) return fail(token, "a name is missing after \"$\"", {});
                return readValue(token);
            case TokenKind::Function:
            case TokenKind::Literal:
            case TokenKind::Number:
                return readValue(token);
            default:
                expectsOperand_ = false;
        }
    }

    void readLeadingSlash(const Token& token) {
        if (previous() != nullptr && previous()->kind == TokenKind::Slash)
            return missingAfter(*previous());
        if (needsNodeTest()) return missingAfter(*previous());
        // "/" alone is the root.
        if (token.is("/") && !isFollowedByStep()) expectsOperand_ = false;
    }

    bool isFollowedByStep() const {
        if (next() == nullptr) return false;
        const TokenKind kind = next()->kind;
        if (kind == TokenKind::Sign)
            return next()->is("@") || next()->is(".") || next()->is("..") || next()->is("*");
        return kind != TokenKind::Operator && kind != TokenKind::Unknown;
    }

    void readLeadingSign(const Token& token) {
        if (token.is("(")) {
            if (isAfterSlash())
                return fail(token, "a path cannot continue with \"(\" in XPath 1.0",
                            "write the whole paths with \"|\" between them");
            if (needsNodeTest()) return missingAfter(*previous());
            open_.push_back(at_);
        } else if (token.is("@")) {
            if (needsNodeTest()) return missingAfter(*previous());
        } else if (token.is(")") && isEmptyCall()) {
            close(token);
        } else if (token.is(".") || token.is("..") || token.is("*")) {
            expectsOperand_ = false;
        } else {
            missingBefore(token);
        }
    }

    bool isEmptyCall() const { return at_ > 1 && previous()->is("(") && isCall(at_ - 1); }

    /// Whether the bracket belongs to the function or node type before it.
    bool isCall(std::size_t bracket) const {
        if (bracket == 0) return false;
        const TokenKind kind = tokens_[bracket - 1].kind;
        return kind == TokenKind::Function || kind == TokenKind::NodeType;
    }

    void readAxis(const Token& token) {
        const std::string name(token.text);
        for (const std::string& axis : axes()) {
            // "::" follows, then the node test.
            if (axis == name) {
                ++at_;
                return;
            }
        }
        fail(token, "unknown axis " + quoted(token), didYouMean(name, axes(), {}));
    }

    /// A function call, variable, text or number: never a step of a path.
    void readValue(const Token& token) {
        expectsOperand_ = false;
        if (needsNodeTest()) return missingAfter(*previous());
        if (!isAfterSlash()) return;
        if (token.kind == TokenKind::Function)
            return fail(token, "a path cannot continue with the function " + quoted(token),
                        "write " + std::string(token.text) + "(PATH)");
        fail(token, "a path cannot continue with " + quoted(token), "write \"div\" to divide");
    }

    void readAfterOperand(const Token& token) {
        if (token.kind == TokenKind::Operator || token.kind == TokenKind::Slash) {
            expectsOperand_ = true;
        } else if (token.kind == TokenKind::Sign) {
            readSign(token);
        } else {
            missingOperator(token);
        }
    }

    /// A sign after an operand.
    void readSign(const Token& token) {
        if (token.is("[")) {
            openPredicate();
        } else if (token.is("(") && isCall(at_)) {
            open_.push_back(at_);
            expectsOperand_ = true;
        } else if (token.is(")") || token.is("]")) {
            close(token);
        } else if (token.is(",")) {
            readComma(token);
        } else {
            missingOperator(token);
        }
    }

    void openPredicate() {
        const Token& before = *previous();
        if (before.is(".") || before.is("..")) {
            const std::string step = before.is(".") ? "self::node()" : "parent::node()";
            return fail(before, quoted(before) + " cannot have a predicate",
                        "write " + step + "[...]");
        }
        open_.push_back(at_);
        expectsOperand_ = true;
    }

    void close(const Token& token) {
        const std::string_view opening = token.is(")") ? "(" : "[";
        if (open_.empty() || !tokens_[open_.back()].is(opening))
            return fail(token, quoted(token) + " closes no \"" + std::string(opening) + "\"", {});
        open_.pop_back();
        expectsOperand_ = false;
    }

    void readComma(const Token& token) {
        expectsOperand_ = true;
        const bool isInCall =
            !open_.empty() && tokens_[open_.back()].is("(") && isCall(open_.back());
        if (isInCall) return;
        fail(token, "only arguments of functions are separated by \",\"",
             "XPath 1.0 has no lists; join nodes with \"|\"");
    }

    void missingOperator(const Token& token) {
        const Token& before = *previous();
        if (before.kind == TokenKind::Literal && token.kind == TokenKind::Literal)
            return fail(token, "a text cannot contain its own quote",
                        "write it in the other quotes, or join texts with concat()");
        const std::string nearest = token.kind == TokenKind::Name
                                        ? nearestWord(token.text, {"and", "or", "div", "mod"})
                                        : std::string();
        fail(token, "an operator is missing between " + quoted(before) + " and " + quoted(token),
             nearest.empty() ? "" : "did you mean \"" + nearest + "\"?");
    }

    const std::vector<Token>& tokens_;
    std::size_t at_ = 0;
    bool expectsOperand_ = true;
    /// The brackets that are open, by their indices.
    std::vector<std::size_t> open_;
    std::optional<SyntaxMistake> mistake_;
};

}  // namespace

std::optional<SyntaxMistake> firstTokenOutOfPlace(const std::vector<Token>& tokens) {
    return SequenceReader(tokens).read();
}

}  // namespace cli
