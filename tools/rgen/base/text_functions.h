// Lists of words in messages and scripts, and letter case without regard to any locale.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace cli {

std::string joined(const std::vector<std::string>& words, const std::string& separator = ", ");

/// A to Z in lower case.
std::string lowerCase(std::string text);

}  // namespace cli
