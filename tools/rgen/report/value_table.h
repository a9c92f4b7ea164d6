// The table of --show-data: every value of a report, its source, and its text.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "data/report_input.h"
#include "data/report_type.h"
#include "library/library_calls.h"

namespace cli {

struct ValueRow {
    Value value;
    /// The text in the report.
    std::string text;
};

/// Persistent data, pairs and values merged like in the library, sorted by name. The texts are
/// those of the library, from a raw input dump.
std::vector<ValueRow> valueRows(repgen::Generator& generator, const ReportType& type,
                                const ReportInput& input);

/// The table with columns name, source, hint and text.
std::string valueTable(const std::vector<ValueRow>& values);

}  // namespace cli
