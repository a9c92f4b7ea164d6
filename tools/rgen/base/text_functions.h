// Lists of words in messages and scripts, and letter case without regard to any locale.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cli {

std::string joined(const std::vector<std::string>& words, const std::string& separator = ", ");

/// The parts of a text between separators; none of an empty text.
std::vector<std::string> split(std::string_view text, char separator);

/// A to Z in lower case.
std::string lowerCase(std::string text);

}  // namespace cli
