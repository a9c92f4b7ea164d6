// Error messages of the JSON parser.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace cli {

/// The message without its prefix, its position and the text that was read last, which may not be
/// UTF-8: "syntax error while parsing value - unexpected end of input".
std::string jsonErrorText(const std::string& text);

/// The line of a comma that is followed by the end of an object or list, where the parser refused
/// the text at `offset`; zero when something else is wrong.
std::size_t lineOfLastComma(const std::string& text, std::size_t offset);

/// Throws a CommandError for a text in UTF-16, as some editors and shells write it. `path` names
/// the file.
void requireNotUtf16(const std::string& text, const std::string& path);

}  // namespace cli
