// rgen completion: scripts that complete rgen's command line in a shell.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "base/arguments.h"
#include "base/command_error.h"
#include "base/console.h"
#include "base/json_document.h"

namespace cli {

/// Like the commands in commands/commands.h. It is here because it reads the table of commands.
ExitCode runCompletion(const Arguments& arguments, Console& console, JsonDocument& document);

}  // namespace cli
