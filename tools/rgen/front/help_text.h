// The help of a command: as a text, and as a document for programs.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "base/json_document.h"
#include "front/command_table.h"

namespace cli {

/// Puts the examples of the command before the usage in CLI11's text about it.
std::string helpText(const Command& command, const std::string& usageAndOptions);

/// Adds the command and the commands inside it with their options and operands: what
/// "rgen --help --json" prints, and what the tables of the manual page and of docs/rgen.md are made
/// from.
void describeCommands(const Command& command, JsonDocument& document);

}  // namespace cli
