// Checks of arguments beyond what the parser checks.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "front/command_table.h"

namespace cli {

/// Throws a CommandError when something that the command requires is missing, or a value is none of
/// the choices.
void checkArguments(const Command& command, const Arguments& arguments);

/// Throws the CommandError about an unknown argument, with a suggestion.
[[noreturn]] void failAtUnknown(const Command& command, const std::string& argument);

/// Throws the CommandError about a surplus operand.
[[noreturn]] void failAtSurplus(const Command& command, const std::string& operand);

/// `"rgen persist get --help"` for "persist get", in quotes.
std::string helpCommand(std::string_view command);

}  // namespace cli
