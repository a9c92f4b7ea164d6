// The table of --show-data: every value of a report, where it came from, and its text.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "data/report_input.h"
#include "data/report_type.h"
#include "library/generator.h"

namespace cli {

struct ShownValue {
    Value value;
    /// As the report shows it.
    std::string text;
};

/// Persistent data, pairs and values merged as the library merges them, sorted by name. The texts
/// are the library's own, taken from a raw input dump.
std::vector<ShownValue> shownValues(const Generator& generator, const ReportType& type,
                                    const ReportInput& input);

/// Columns for people: name, source, hint and text.
std::string shownTable(const std::vector<ShownValue>& values);

}  // namespace cli
