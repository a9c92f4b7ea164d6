// The program without its entry point.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace cli {

/// Runs rgen with the arguments after the program name, in UTF-8; returns the exit code.
int runProgram(const std::vector<std::string>& arguments);

}  // namespace cli
