// Finds mistakes in a configuration file. The library ignores such entries without a message.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace cli {

struct ConfigMistake {
    /// "case/.rgen/config.xml:4: write the GUID without braces".
    std::string text;
    /// The correction.
    std::string advice;
    /// The library ignores the entry or reads it differently; false for a doubtful entry.
    bool isError = true;
};

/// The mistakes in a configuration, in the order of their lines. Throws a CommandError when the
/// file cannot be read.
std::vector<ConfigMistake> configurationMistakes(const std::string& path);

/// The first mistake that is an error, with its correction, in one line; empty when there is none.
std::string firstMistake(const std::string& path);

}  // namespace cli
