// Reading UTF-8 character by character.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tools {

/// Length of the UTF-8 sequence at the start of `text`; 0 when it is not valid or `text` is empty.
std::size_t sequenceLength(std::string_view text);

/// The code point of a valid UTF-8 sequence.
std::uint32_t codePoint(std::string_view sequence);

/// The start of a text, at most so many bytes, cut between two characters.
std::string utf8Prefix(const std::string& text, std::size_t longest);

}  // namespace tools
