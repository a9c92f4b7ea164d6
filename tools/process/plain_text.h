// Texts from outside in what a program shows to people.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tools {

/// `text` without anything that steers a terminal, forges a line or reorders what is seen: control
/// characters (C0, DEL, C1), line and paragraph separators and marks of writing direction appear as
/// "\n", "\r", "\t", "\x1b" and "\u009b", bytes that are not UTF-8 as "\xff". The characters in
/// `kept` stay. The result is valid UTF-8; a second call does not change it.
std::string printable(std::string_view text, std::string_view kept = {});

/// Length of the UTF-8 sequence at the start of `text`, 0 when there is no valid one.
std::size_t sequenceLength(std::string_view text);

/// The character of a valid UTF-8 sequence.
std::uint32_t codePoint(std::string_view sequence);

}  // namespace tools
