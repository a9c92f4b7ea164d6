// The table holds what libxml2 and libxslt register without EXSLT.
//
// SPDX-License-Identifier: MIT
#include "templates/xpath_functions.h"

#include <array>
#include <utility>

namespace cli {
namespace {

constexpr std::array functions = {
    XPathFunction{"boolean", 1, 1},
    XPathFunction{"ceiling", 1, 1},
    XPathFunction{"concat", 2, anyNumber},
    XPathFunction{"contains", 2, 2},
    XPathFunction{"count", 1, 1},
    XPathFunction{"current", 0, 0},
    XPathFunction{"document", 1, 2},
    XPathFunction{"element-available", 1, 1},
    XPathFunction{"false", 0, 0},
    XPathFunction{"floor", 1, 1},
    XPathFunction{"format-number", 2, 3},
    XPathFunction{"function-available", 1, 1},
    XPathFunction{"generate-id", 0, 1},
    XPathFunction{"id", 1, 1},
    XPathFunction{"key", 2, 2},
    XPathFunction{"lang", 1, 1},
    XPathFunction{"last", 0, 0},
    XPathFunction{"local-name", 0, 1},
    XPathFunction{"name", 0, 1},
    XPathFunction{"namespace-uri", 0, 1},
    XPathFunction{"normalize-space", 0, 1},
    XPathFunction{"not", 1, 1},
    XPathFunction{"number", 0, 1},
    XPathFunction{"position", 0, 0},
    XPathFunction{"round", 1, 1},
    XPathFunction{"starts-with", 2, 2},
    XPathFunction{"string", 0, 1},
    XPathFunction{"string-length", 0, 1},
    XPathFunction{"substring", 2, 3},
    XPathFunction{"substring-after", 2, 2},
    XPathFunction{"substring-before", 2, 2},
    XPathFunction{"sum", 1, 1},
    XPathFunction{"system-property", 1, 1},
    XPathFunction{"translate", 3, 3},
    XPathFunction{"true", 0, 0},
    XPathFunction{"unparsed-entity-uri", 1, 1},
};

using Advice = std::pair<std::string_view, std::string_view>;

constexpr std::string_view useSort = "use xsl:for-each with xsl:sort, and take the first";
constexpr std::string_view useValues = "pass the time as a value";
constexpr std::string_view useRecursion =
    "write a template that calls itself, with substring-before() and substring-after()";
constexpr std::string_view useKey = "compare generate-id() with that of key(...)[1]";

constexpr std::array laterFunctions = {
    Advice{"lower-case", "write translate(TEXT, 'ABC...', 'abc...')"},
    Advice{"upper-case", "write translate(TEXT, 'abc...', 'ABC...')"},
    Advice{"ends-with", "compare substring(TEXT, string-length(TEXT) - string-length(END) + 1)"},
    Advice{"replace", useRecursion},
    Advice{"tokenize", useRecursion},
    Advice{"matches", "use contains() and starts-with()"},
    Advice{"string-join", "use xsl:for-each"},
    Advice{"max", useSort},
    Advice{"min", useSort},
    Advice{"avg", "write sum(NODES) div count(NODES)"},
    Advice{"abs", "use xsl:choose"},
    Advice{"exists", "write boolean(NODES)"},
    Advice{"empty", "write not(NODES)"},
    Advice{"distinct-values", useKey},
    Advice{"current-date", useValues},
    Advice{"current-dateTime", useValues},
    Advice{"current-time", useValues},
    Advice{"format-date", useValues},
    Advice{"format-dateTime", useValues},
    Advice{"format-time", useValues},
    Advice{"doc", "values are the only input of a template"},
    Advice{"if", "use xsl:choose"},
};

constexpr std::array extensionFunctions = {
    Advice{"node-set",
           "declare xmlns:libxslt=\"http://xmlsoft.org/XSLT/namespace\" and call "
           "libxslt:node-set()"},
    Advice{"tokenize", useRecursion},
    Advice{"split", useRecursion},
    Advice{"replace", useRecursion},
    Advice{"padding", "write substring('     ', 1, LENGTH)"},
    Advice{"align", "write substring(concat(TEXT, '     '), 1, LENGTH)"},
    Advice{"max", useSort},
    Advice{"min", useSort},
    Advice{"highest", useSort},
    Advice{"lowest", useSort},
    Advice{"distinct", useKey},
    Advice{"date", useValues},
    Advice{"time", useValues},
    Advice{"date-time", useValues},
    Advice{"format-date", useValues},
};

template <typename Table>
std::string adviceIn(const Table& table, std::string_view name) {
    for (const auto& [key, advice] : table) {
        if (key == name) return std::string(advice);
    }
    return {};
}

}  // namespace

const XPathFunction* findFunction(std::string_view name) {
    for (const XPathFunction& function : functions) {
        if (function.name == name) return &function;
    }
    return nullptr;
}

std::vector<std::string> functionNames() {
    std::vector<std::string> names;
    names.reserve(functions.size());
    for (const XPathFunction& function : functions)
        names.emplace_back(function.name);
    return names;
}

std::string argumentCountText(const XPathFunction& function) {
    const auto [name, fewest, most] = function;
    if (most == 0) return "no argument";
    const std::string unit = most == 1 ? " argument" : " arguments";
    if (fewest == most) return std::to_string(fewest) + unit;
    if (most == anyNumber) return "at least " + std::to_string(fewest) + unit;
    return (fewest == 0 ? "none" : std::to_string(fewest)) + " or " + std::to_string(most) + unit;
}

std::string replacementOfFunction(std::string_view name) {
    return adviceIn(laterFunctions, name);
}

bool hasNodeSet(std::string_view uri) {
    return uri == "http://xmlsoft.org/XSLT/namespace" || uri == "http://icl.com/saxon" ||
           uri == "http://www.jclark.com/xt";
}

bool isExslt(std::string_view uri) {
    constexpr std::string_view start = "http://exslt.org/";
    return uri.substr(0, start.size()) == start;
}

bool isExsltPrefix(std::string_view prefix) {
    for (const std::string_view known :
         {"exsl", "exslt", "str", "date", "math", "set", "func", "dyn", "regexp"}) {
        if (prefix == known) return true;
    }
    return false;
}

std::string replacementOfExtension(std::string_view localName) {
    const std::string advice = adviceIn(extensionFunctions, localName);
    return advice.empty() ? "use functions of XSLT 1.0, or pass the result as a value" : advice;
}

}  // namespace cli
