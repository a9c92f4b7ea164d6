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

/// One line, completed with the options of the command line.
struct BatchLine {
    std::optional<std::string> type;
    ReportArguments report;
    ValueArguments values;
    std::vector<Value> set;
    std::vector<Value> pairs;
};

/// Reads one line. Throws a CommandError that begins with the file and the line. With `filesNamed`
/// the paths of "@FILE" are added there and the files are not opened.
BatchLine readBatchLine(const std::string& text, std::size_t line, const Arguments& arguments,
                        std::vector<std::string>* filesNamed = nullptr);

}  // namespace cli
