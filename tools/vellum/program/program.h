// vellum without its entry point.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace vellum {

/// Runs vellum with the arguments behind the program's name, in UTF-8; returns the exit code.
int runProgram(const std::vector<std::string>& arguments);

}  // namespace vellum
