// What an author has got wrong in a configuration. The library passes over such entries without a
// word.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace cli {

struct ConfigMistake {
    /// "case/.rgen/config.xml:4: the guid ... has braces".
    std::string text;
    /// What to write.
    std::string advice;
    /// An entry that is not used, or not as it is written; otherwise only doubtful.
    bool isError = true;
};

/// The mistakes in a configuration, in the order of their lines. Throws a CommandError when the
/// file cannot be read.
std::vector<ConfigMistake> configurationMistakes(const std::string& path);

/// The first mistake that is an error and what to do about it, in one line; empty without one.
std::string firstMistake(const std::string& path);

}  // namespace cli
