// Files that arguments name.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace cli {

/// A place in a text, both parts counted from 1, columns in characters.
struct TextPosition {
    std::size_t line = 1;
    std::size_t column = 1;
};

/// The whole file; "-" is standard input. Raises a CommandError, whose hint says where the path
/// came from: "check the path given to --data".
std::string readInputFile(const std::string& path, const std::string& hint);

/// The place of a byte in a text. A byte order mark is no character.
TextPosition positionOf(const std::string& text, std::size_t offset);

/// The path, or "standard input" for "-".
std::string inputName(const std::string& path);

/// "file:3:12".
std::string placeText(const std::string& file, const TextPosition& position);

/// Tells whether the text is valid UTF-8 without a zero character.
bool isPlainUtf8(const std::string& text);

/// Tells whether something is at the path.
bool exists(const std::string& path);

/// Tells whether something is at the path that is no ordinary file: a folder, a pipe, a device.
bool isSpecialFile(const std::string& path);

/// Throws a CommandError when rights or the system keep from seeing whether something is there.
void requireAccess(const std::string& path);

/// Throws a CommandError when there is a file that cannot be read for want of rights: to those who
/// read it all the same it would look empty.
void requireReadable(const std::string& path);

/// `folder` and `name` with a separator between; "." is left out.
std::string joinedPath(const std::string& folder, const std::string& name);

/// The part of the path before the last separator, "." when there is none.
std::string folderOf(const std::string& path);

}  // namespace cli
