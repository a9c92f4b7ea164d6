// A mistake in the syntax of an XPath expression.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

namespace cli {

struct SyntaxMistake {
    /// In bytes.
    std::size_t offset = 0;
    std::size_t length = 0;
    /// `"==" is not an operator`.
    std::string what;
    /// `write "="`; may be empty.
    std::string advice;
};

}  // namespace cli
