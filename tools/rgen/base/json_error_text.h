// What the JSON parser says about a mistake.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace cli {

/// The parser's own words without its prefix, its place and the text that it read last, which need
/// not be UTF-8: "syntax error while parsing value - unexpected end of input".
std::string parserWords(const std::string& text);

}  // namespace cli
