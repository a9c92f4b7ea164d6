// The arguments of rgen. command_line.cpp is the only source that knows CLI11.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "base/arguments.h"

namespace cli {

/// What the command line asks for: a command with its arguments, or a text to print.
struct CommandLine {
    Arguments arguments;
    /// When not empty, it is printed and no command is run.
    std::string help;
};

/// Throws a CommandError whose message begins with the command ("report: ...").
CommandLine parseCommandLine(const std::vector<std::string>& arguments);

}  // namespace cli
