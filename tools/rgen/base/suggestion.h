// "did you mean": the known word that is nearest to a misspelt one.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cli {

/// Number of letters to insert, remove, replace or swap with their neighbour to turn one word into
/// the other; letter case is ignored.
std::size_t editDistance(std::string_view one, std::string_view other);

/// The nearest of the known words, or the empty text when none is near enough.
std::string nearestWord(std::string_view word, const std::vector<std::string>& known);

/// Returns `did you mean "..."?` with the nearest known word, or `fallback` when there is none.
std::string didYouMean(std::string_view word, const std::vector<std::string>& known,
                       const std::string& fallback);

}  // namespace cli
