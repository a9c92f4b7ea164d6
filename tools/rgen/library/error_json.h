// A failure in the document that --json prints.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "base/command_error.h"
#include "base/json_document.h"

namespace cli {

/// The members of "error".
JsonDocument errorDetails(const CommandError& error);

/// Sets "ok" to false and "error".
void describeFailure(const CommandError& error, JsonDocument& document);

}  // namespace cli
