// rgen explain of templates.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "base/arguments.h"
#include "base/command_error.h"
#include "base/console.h"
#include "base/json_document.h"

namespace cli {

/// Whether the arguments name a template, rather than a status.
bool isAboutTemplate(const Arguments& arguments);

ExitCode explainTemplates(const Arguments& arguments, Console& console, JsonDocument& document);

}  // namespace cli
