// The functions of the commands. Each fills the document that --json prints and throws a
// CommandError when it fails. front/command_table.cpp names them.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "base/arguments.h"
#include "base/command_error.h"
#include "base/console.h"
#include "base/json_document.h"

namespace cli {

ExitCode runCheck(const Arguments& arguments, Console& console, JsonDocument& document);
ExitCode runReport(const Arguments& arguments, Console& console, JsonDocument& document);
ExitCode runPreview(const Arguments& arguments, Console& console, JsonDocument& document);
ExitCode runBatch(const Arguments& arguments, Console& console, JsonDocument& document);
ExitCode runMessages(const Arguments& arguments, Console& console, JsonDocument& document);
ExitCode runBundle(const Arguments& arguments, Console& console, JsonDocument& document);
ExitCode runPersistGet(const Arguments& arguments, Console& console, JsonDocument& document);
ExitCode runPersistSet(const Arguments& arguments, Console& console, JsonDocument& document);
ExitCode runPersistUnset(const Arguments& arguments, Console& console, JsonDocument& document);
ExitCode runPersistReplace(const Arguments& arguments, Console& console, JsonDocument& document);
ExitCode runDump(const Arguments& arguments, Console& console, JsonDocument& document);
ExitCode runSimulate(const Arguments& arguments, Console& console, JsonDocument& document);
ExitCode runInit(const Arguments& arguments, Console& console, JsonDocument& document);
ExitCode runNew(const Arguments& arguments, Console& console, JsonDocument& document);
ExitCode runTest(const Arguments& arguments, Console& console, JsonDocument& document);
ExitCode runTypes(const Arguments& arguments, Console& console, JsonDocument& document);
ExitCode runExplain(const Arguments& arguments, Console& console, JsonDocument& document);
ExitCode runDoctor(const Arguments& arguments, Console& console, JsonDocument& document);
ExitCode runVersion(const Arguments& arguments, JsonDocument& document);

}  // namespace cli
