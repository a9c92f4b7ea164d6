// Error messages of the JSON parser.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace cli {

/// The message without its prefix, its position and the text that was read last, which may not be
/// UTF-8: "syntax error while parsing value - unexpected end of input".
std::string jsonErrorText(const std::string& text);

}  // namespace cli
