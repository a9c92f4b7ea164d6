// The command of --editor: "code -g {file}:{line}".
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace cli {

/// The words of a command. Blanks separate them, except inside double or single quotes. Throws a
/// CommandError when there is none or a quote is not closed.
std::vector<std::string> commandWords(const std::string& command);

/// The words with {file}, {line} and {column} replaced.
std::vector<std::string> editorWords(const std::string& command, const std::string& file,
                                     std::size_t line, std::size_t column);

}  // namespace cli
