// Template texts for the translation pass.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace benchmarks {

struct TemplateText {
    std::string name;
    std::string text;
    /// Whether the pass changes the text, which then has to be copied for each run.
    bool isChanged = false;
    bool isHostile = false;
};

/// HTML of that size with `markers` marked texts spread over it.
TemplateText ordinaryText(std::size_t size, int markers);

/// Texts of that size that a careless matcher reads again and again.
std::vector<TemplateText> hostileTexts(std::size_t size);

}  // namespace benchmarks
