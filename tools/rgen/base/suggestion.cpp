// Uses the optimal string alignment distance.
//
// SPDX-License-Identifier: MIT
#include "base/suggestion.h"

#include <algorithm>

namespace cli {
namespace {

char lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

/// One third of the letters may be wrong, and at least one letter.
std::size_t largestDistance(std::string_view word) {
    return std::max<std::size_t>(1, word.size() / 3);
}

}  // namespace

std::size_t editDistance(std::string_view one, std::string_view other) {
    std::vector<std::vector<std::size_t>> rows(one.size() + 1,
                                               std::vector<std::size_t>(other.size() + 1));
    for (std::size_t i = 0; i <= one.size(); ++i) {
        for (std::size_t j = 0; j <= other.size(); ++j) {
            if (i == 0 || j == 0) {
                rows[i][j] = i + j;
                continue;
            }
            const bool same = lower(one[i - 1]) == lower(other[j - 1]);
            rows[i][j] = std::min(
                {rows[i - 1][j] + 1, rows[i][j - 1] + 1, rows[i - 1][j - 1] + (same ? 0 : 1)});
            const bool swapped = i > 1 && j > 1 && lower(one[i - 1]) == lower(other[j - 2]) &&
                                 lower(one[i - 2]) == lower(other[j - 1]);
            if (swapped) rows[i][j] = std::min(rows[i][j], rows[i - 2][j - 2] + 1);
        }
    }
    return rows[one.size()][other.size()];
}

std::string nearestWord(std::string_view word, const std::vector<std::string>& known) {
    std::string nearest;
    std::size_t best = largestDistance(word) + 1;
    for (const std::string& candidate : known) {
        const std::size_t distance = editDistance(word, candidate);
        if (distance >= best) continue;
        best = distance;
        nearest = candidate;
    }
    return nearest;
}

std::string didYouMean(std::string_view word, const std::vector<std::string>& known,
                       const std::string& fallback) {
    const std::string nearest = nearestWord(word, known);
    return nearest.empty() ? fallback : "did you mean \"" + nearest + "\"?";
}

}  // namespace cli
