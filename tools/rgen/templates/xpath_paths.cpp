// Follows each path through the shape of the data document (src/store/xml/property_document.h):
//
//     root - data - properties - property - @name, text
//
// and looks for the name at which nothing is left. Where a path begins, any node may be the current
// one, except after "/" and in predicates.
//
// SPDX-License-Identifier: MIT
#include "templates/xpath_paths.h"

#include <algorithm>
#include <array>
#include <string>

#include "base/suggestion.h"

namespace cli {
namespace {

/// A set of kinds of nodes, one bit each.
using Nodes = unsigned;
constexpr Nodes root = 1;
constexpr Nodes data = 2;
constexpr Nodes properties = 4;
constexpr Nodes property = 8;
constexpr Nodes nameAttribute = 16;
constexpr Nodes text = 32;
constexpr Nodes elements = data | properties | property;
constexpr Nodes anyNode = root | elements | nameAttribute | text;

struct Shape {
    Nodes kind;
    std::string_view name;
    Nodes parent;
    Nodes children;
};

constexpr std::array shapes = {
    Shape{root, "", 0, data},
    Shape{data, "data", root, properties},
    Shape{properties, "properties", data, property},
    Shape{property, "property", properties, text},
    Shape{nameAttribute, "name", property, 0},
    Shape{text, "", property, 0},
};

Nodes childrenOf(Nodes nodes) {
    Nodes result = 0;
    for (const Shape& shape : shapes) {
        if ((nodes & shape.kind) != 0) result |= shape.children;
    }
    return result;
}

Nodes parentsOf(Nodes nodes) {
    Nodes result = 0;
    for (const Shape& shape : shapes) {
        if ((nodes & shape.kind) != 0) result |= shape.parent;
    }
    return result;
}

template <typename Step>
Nodes repeated(Nodes nodes, Step step) {
    Nodes result = 0;
    for (Nodes next = step(nodes); (next & ~result) != 0; next = step(result))
        result |= next;
    return result;
}

Nodes named(std::string_view name) {
    Nodes result = 0;
    for (const Shape& shape : shapes) {
        if (!shape.name.empty() && shape.name == name) result |= shape.kind;
    }
    return result;
}

Nodes alongAxis(std::string_view axis, Nodes nodes) {
    if (axis == "child") return childrenOf(nodes);
    if (axis == "attribute") return (nodes & property) != 0 ? nameAttribute : 0;
    if (axis == "self") return nodes;
    if (axis == "parent") return parentsOf(nodes);
    if (axis == "descendant") return repeated(nodes, childrenOf);
    if (axis == "descendant-or-self") return nodes | repeated(nodes, childrenOf);
    if (axis == "ancestor") return repeated(nodes, parentsOf);
    if (axis == "ancestor-or-self") return nodes | repeated(nodes, parentsOf);
    if (axis == "namespace") return anyNode;
    // Siblings, and what precedes or follows.
    return (nodes & (property | text | nameAttribute)) != 0 ? property | text : 0;
}

std::string quoted(std::string_view name) {
    return "\"" + std::string(name) + "\"";
}

class PathReader {
public:
    PathReader(std::string_view expression, const std::vector<Token>& tokens)
        : expression_(expression), tokens_(tokens) {}

    std::vector<ExpressionProblem> read() {
        readOperands(0, tokens_.size(), anyNode);
        return std::move(problems_);
    }

private:
    bool isSign(std::size_t at, std::string_view sign) const {
        return at < tokens_.size() && tokens_[at].kind == TokenKind::Sign && tokens_[at].is(sign);
    }

    bool isSlash(std::size_t at, std::size_t end) const {
        return at < end && tokens_[at].kind == TokenKind::Slash;
    }

    /// Tokens [at, end) with `current` as the kinds of the context node.
    void readOperands(std::size_t at, std::size_t end, Nodes current) {
        while (at < end) {
            const Token& token = tokens_[at];
            if (token.kind == TokenKind::Operator || token.is(",")) {
                ++at;
            } else {
                at = readPath(at, end, current);
            }
        }
    }

    std::size_t readPath(std::size_t at, std::size_t end, Nodes current) {
        pathBegin_ = tokens_[at].offset;
        switch (tokens_[at].kind) {
            case TokenKind::Slash:
                return readSteps(at, end, root);
            case TokenKind::Function:
                return readCall(at, end, current);
            case TokenKind::Variable:
            case TokenKind::Literal:
            case TokenKind::Number:
                return readSteps(readPredicates(at + 1, end, anyNode), end, anyNode);
            default:
                break;
        }
        if (isSign(at, "(")) {
            const std::size_t closing = std::min(closingBracket(tokens_, at), end);
            readOperands(at + 1, closing, current);
            return readSteps(readPredicates(closing + 1, end, anyNode), end, anyNode);
        }
        Nodes nodes = current;
        at = readStep(at, end, nodes);
        return readSteps(at, end, nodes);
    }

    /// What a function returns is not known; what its arguments select is.
    std::size_t readCall(std::size_t at, std::size_t end, Nodes current) {
        const std::size_t closing = std::min(closingBracket(tokens_, at + 1), end);
        readOperands(at + 2, closing, current);
        return readSteps(readPredicates(closing + 1, end, anyNode), end, anyNode);
    }

    /// "/step//step", at any slash.
    std::size_t readSteps(std::size_t at, std::size_t end, Nodes nodes) {
        while (isSlash(at, end)) {
            if (tokens_[at].is("//")) nodes = alongAxis("descendant-or-self", nodes);
            ++at;
            if (at < end && startsStep(at)) at = readStep(at, end, nodes);
        }
        return at;
    }

    bool startsStep(std::size_t at) const {
        const TokenKind kind = tokens_[at].kind;
        return kind == TokenKind::Name || kind == TokenKind::NodeType || kind == TokenKind::Axis ||
               isSign(at, "@") || isSign(at, "*") || isSign(at, ".") || isSign(at, "..");
    }

    std::size_t readStep(std::size_t at, std::size_t end, Nodes& nodes) {
        std::string_view axis = "child";
        if (tokens_[at].kind == TokenKind::Axis) {
            axis = tokens_[at].text;
            at += 2;
        } else if (isSign(at, "@")) {
            axis = "attribute";
            ++at;
        }
        if (at >= end) return end;
        if (isSign(at, ".") || isSign(at, "..")) {
            if (tokens_[at].is("..")) nodes = parentsOf(nodes);
            return at + 1;
        }
        const Nodes before = nodes;
        nodes = test(tokens_[at], axis, alongAxis(axis, nodes));
        if (tokens_[at].kind == TokenKind::Name && axis != "namespace" && nodes == 0 && before != 0)
            report(tokens_[at], axis, before);
        if (tokens_[at].kind == TokenKind::NodeType) at = closingBracket(tokens_, at + 1);
        return readPredicates(at + 1, end, nodes);
    }

    static Nodes test(const Token& token, std::string_view axis, Nodes nodes) {
        if (axis == "namespace") return anyNode;
        const Nodes principal = axis == "attribute" ? nameAttribute : elements;
        if (token.kind == TokenKind::Name) return nodes & principal & named(token.text);
        if (token.is("*")) return nodes & principal;
        if (token.is("text")) return nodes & text;
        return token.is("node") ? nodes : 0;
    }

    std::size_t readPredicates(std::size_t at, std::size_t end, Nodes nodes) {
        while (at < end && isSign(at, "[")) {
            const std::size_t closing = std::min(closingBracket(tokens_, at), end);
            const std::size_t outerBegin = pathBegin_;
            // Nothing is said about conditions for nodes that do not exist.
            if (nodes != 0) readOperands(at + 1, closing, nodes);
            pathBegin_ = outerBegin;
            at = closing + 1;
        }
        return std::min(at, end);
    }

    void report(const Token& token, std::string_view axis, Nodes before) {
        std::string_view path = expression_.substr(pathBegin_, token.end() - pathBegin_);
        const bool isShort = path.find('[') == std::string_view::npos;
        if (!isShort) path = token.text;
        const std::string_view start = path.substr(0, path.size() - token.text.size());
        problems_.push_back({Severity::Warning, token.end() - path.size(), path.size(),
                             "matches-nothing",
                             quoted(path) + " matches nothing in the data document",
                             advice(start, token.text, axis, before)});
    }

    /// `start` is the path before the name.
    static std::string advice(std::string_view start, std::string_view name, std::string_view axis,
                              Nodes before) {
        const bool isAttribute = axis == "attribute";
        std::vector<std::string> known;
        for (const Shape& one : shapes) {
            if ((one.kind & ~text & alongAxis(axis, before)) != 0) known.emplace_back(one.name);
        }
        const std::string nearest = nearestWord(name, known);
        if (!nearest.empty()) return "did you mean " + quoted(std::string(start) + nearest) + "?";
        if (isAttribute) return "a property has only the attribute name";
        if (name == "name" && (before & property) != 0)
            return "did you mean " + quoted(std::string(start) + "@name") + "?";
        if (named(name) != 0)
            return "the data document is /data/properties/property with the attribute name";
        return "a value is selected by its name: property[@name = '" + std::string(name) + "']";
    }

    std::string_view expression_;
    const std::vector<Token>& tokens_;
    std::size_t pathBegin_ = 0;
    std::vector<ExpressionProblem> problems_;
};

}  // namespace

std::vector<ExpressionProblem> pathsThatMatchNothing(std::string_view expression,
                                                     const std::vector<Token>& tokens) {
    return PathReader(expression, tokens).read();
}

}  // namespace cli
