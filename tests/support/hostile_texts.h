// Template texts for the translation pass: ordinary ones, and ones that make a careless matcher
// slow.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace rgen_test {

struct TemplateText {
    std::string name;
    std::string text;
    /// The pass changes the text, so each run needs a new copy.
    bool isChanged = false;
    bool isHostile = false;
};

/// HTML of this size with so many evenly distributed markers.
TemplateText ordinaryText(std::size_t size, int markers);

/// Texts of this size for which a careless matcher takes more than linear time.
std::vector<TemplateText> hostileTexts(std::size_t size);

}  // namespace rgen_test
