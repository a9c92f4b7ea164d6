// The lines of a batch file.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "arguments.h"
#include "value.h"

namespace cli {

/// One line with what the command line adds to it.
struct BatchLine {
    std::optional<std::string> type;
    ReportArguments report;
    ValueArguments values;
    std::vector<Value> set;
    std::vector<Value> pairs;
};

/// Reads one line. Raises a CommandError that begins with the file and the line.
BatchLine readBatchLine(const std::string& text, std::size_t line, const Arguments& arguments);

}  // namespace cli
