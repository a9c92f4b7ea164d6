// What "rgen dump" and "rgen simulate" share: both write the values of the arguments to a file.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <system_error>

#include "base/arguments.h"
#include "base/command_error.h"
#include "base/console.h"
#include "base/json_document.h"
#include "values/value.h"

namespace cli {

/// Throws a CommandError when file and document would both be written to standard output.
void requireOneOutput(const Arguments& arguments);

/// Throws a CommandError when there are no values.
ValueSet requiredValues(const Arguments& arguments, const repgen::Generator& generator,
                        Console& console);

CommandError unwritable(const std::string& path, const std::system_error& error);

/// Fills the document and says what was written.
void describeValuesFile(const Arguments& arguments, std::size_t values, Console& console,
                        JsonDocument& document);

}  // namespace cli
