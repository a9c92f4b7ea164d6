// The command line of vellum.
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
    /// A name or a path; empty means the first engine that is installed.
    std::string engine;
    bool help = false;
    bool version = false;
    bool listEngines = false;
    bool check = false;
};

/// Reads the arguments, in any order, into `options`. Throws a Failure; the options before the
/// mistake are set then.
void parseOptions(const std::vector<std::string>& arguments, Options& options);

/// What --help prints.
std::string helpText();

}  // namespace vellum
