// The program without its entry point.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace vellum {

/// Runs vellum with these arguments, in UTF-8 and without the program's name; returns the exit
/// code.
int runProgram(const std::vector<std::string>& arguments);

}  // namespace vellum
