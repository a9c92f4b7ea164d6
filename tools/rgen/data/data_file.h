// Values from files: JSON data files and simulated input.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "values/value.h"

namespace cli {

/// Reads a data file of either kind; the first character decides which. "-" is JSON from standard
/// input. `pathHint` says where the path came from, for readInputFile. Throws a CommandError with
/// line and column for what is wrong in a JSON file, notes what the library skips of simulated
/// input.
std::vector<Value> readDataFile(const std::string& path, const std::string& pathHint, bool raw,
                                const repgen::Generator& generator, Console& console);

/// The files that "@FILE" names in a JSON data file, without opening them. Of a file with a mistake
/// those before it; none of a pipe, which can be read once.
std::vector<std::string> filesNamedIn(const std::string& path);

/// The values of a JSON text; `place` names it in messages.
std::vector<Value> readJsonValues(const std::string& text, const std::string& place,
                                  const ValueReadOptions& reading);

}  // namespace cli
