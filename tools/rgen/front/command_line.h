// The arguments of rgen. The only place that knows the library behind them.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "base/arguments.h"

namespace cli {

/// One option as completion needs it.
struct OptionOutline {
    /// "-o", "--output".
    std::vector<std::string> names;
    std::string summary;
    bool takesValue = false;
    /// The values that there are, if they can be counted.
    std::vector<std::string> choices;
};

/// One command with all that can stand behind it.
struct CommandOutline {
    std::string name;
    std::string summary;
    std::vector<OptionOutline> options;
    std::vector<CommandOutline> commands;
    /// The words that may stand as operands, if they can be counted.
    std::vector<std::string> operands;
};

/// What the command line asks for: a command with its arguments, or a text to print.
struct CommandLine {
    Arguments arguments;
    /// Not empty: print it and be done.
    std::string help;
    bool wantsVersion = false;
};

/// Raises a CommandError whose message begins with the command ("report: ...").
CommandLine parseCommandLine(const std::vector<std::string>& arguments);

/// Everything that rgen understands.
CommandOutline commandOutline();

}  // namespace cli
