// Small operations on texts: lists, letter case, counted nouns.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

std::string joined(const std::vector<std::string>& words, const std::string& separator = ", ");

/// The parts of a text between separators; none of an empty text.
std::vector<std::string> split(std::string_view text, char separator);

/// A to Z in lower case, whatever the locale.
std::string lowerCase(std::string text);

/// `text` without white space at its edges.
std::string trimmed(const std::string& text);

/// "12345 bytes", "1 byte".
std::string countText(std::uint64_t count, const std::string& word);

}  // namespace cli
