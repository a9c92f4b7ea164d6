// Collects the values of a request from all sources that the arguments name.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "base/arguments.h"
#include "values/value.h"

namespace cli {

struct ReportInput {
    ValueSet values;
    ValueSet pairs;
};

/// Reads the data files first, then the options, so that options take precedence.
ReportInput collectInput(const ValueArguments& arguments, const repgen::Generator& generator,
                         Console& console);

/// Notes names that were given more than once and, with `raw`, texts that lose a plain "&".
/// Persistent data is read twice before a report shows it.
enum class Readings { Once, Twice };
void noteLosses(const ReportInput& input, bool raw, Console& console,
                Readings readings = Readings::Once);

/// Reads "NAME[:HINT]=VALUE" arguments into `values`. `option` names them in messages.
void addAssignments(const std::vector<std::string>& assignments, const std::string& option,
                    bool raw, ValueSet& values);

}  // namespace cli
