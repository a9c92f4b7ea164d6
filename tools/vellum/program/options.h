// The arguments of vellum.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace vellum {

struct Options {
    std::string input;
    std::string base;
    std::string type = "html";
    std::string output;
    /// A name or a path; empty: the first one that there is.
    std::string engine;
    bool help = false;
    bool version = false;
    bool listEngines = false;
    bool check = false;
};

/// Understands arguments in any order. Raises a Failure; the options that were understood until
/// then are in `options`.
void parseOptions(const std::vector<std::string>& arguments, Options& options);

/// What --help prints.
extern const char* const helpText;

}  // namespace vellum
