// The functions that templates can call, and what replaces those that they cannot.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

struct XPathFunction {
    std::string_view name;
    std::size_t fewest;
    std::size_t most;
};

/// For XPathFunction::most.
constexpr std::size_t anyNumber = static_cast<std::size_t>(-1);

/// A function without a prefix, or null.
const XPathFunction* findFunction(std::string_view name);

std::vector<std::string> functionNames();

/// "2", "2 or 3", "at least 2", with "argument" or "arguments".
std::string argumentCountText(const XPathFunction& function);

/// What to write instead of a function of later versions of XPath; empty when it is none of them.
std::string replacementOfFunction(std::string_view name);

/// Whether the namespace has the function node-set() here.
bool hasNodeSet(std::string_view uri);

/// Whether the namespace is one of EXSLT.
bool isExslt(std::string_view uri);

/// Whether the prefix is usually one of EXSLT: "exsl", "str", "date".
bool isExsltPrefix(std::string_view prefix);

/// What to do instead of calling an extension function with this local name.
std::string replacementOfExtension(std::string_view localName);

}  // namespace cli
