// Reading input files as a whole, and positions in them for messages.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace cli {

/// A position in a text, line and column from 1, columns in characters.
struct TextPosition {
    std::size_t line = 1;
    std::size_t column = 1;
};

/// Returns the whole file; "-" is standard input. Throws a CommandError with `hint`, which says
/// where the path came from: "check the path given to --data".
std::string readInputFile(const std::string& path, const std::string& hint);

/// The position of a byte in a text. A byte order mark does not count as a character.
TextPosition positionOf(const std::string& text, std::size_t offset);

/// The path, or "standard input" for "-".
std::string inputName(const std::string& path);

/// "file:3:12".
std::string placeText(const std::string& file, const TextPosition& position);

/// Tells whether the text is valid UTF-8 without a zero character.
bool isPlainUtf8(const std::string& text);

}  // namespace cli
