// What the arguments of a command must hold together, beyond what can be parsed.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "base/arguments.h"

namespace cli {

/// Raises a CommandError when something is missing or a word is none of those there are.
void checkArguments(const Arguments& arguments);

/// The words that an option ("--mode") or operand ("SHELL") can be; empty when they cannot be
/// counted.
std::vector<std::string> choicesOf(const std::string& name);

/// `"rgen persist get --help"` for "persist get", in quotes.
std::string helpCommand(const std::string& command);

}  // namespace cli
