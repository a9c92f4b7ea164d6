// The lines of a batch file.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/arguments.h"
#include "values/value.h"

namespace cli {

/// One line with what the command line adds to it.
struct BatchLine {
    std::optional<std::string> type;
    ReportArguments report;
    ValueArguments values;
    std::vector<Value> set;
    std::vector<Value> pairs;
};

/// Reads one line. Throws a CommandError that begins with the file and the line. With `filesNamed`
/// the files of "@FILE" are put there instead of being opened.
BatchLine readBatchLine(const std::string& text, std::size_t line, const Arguments& arguments,
                        std::vector<std::string>* filesNamed = nullptr);

}  // namespace cli
