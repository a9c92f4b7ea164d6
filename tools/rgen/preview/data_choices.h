// The values with which a report can be previewed.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "data/report_input.h"
#include "preview/preview_settings.h"

namespace cli {

struct DataChoice {
    /// "given", "sample", "missing" or "hostile".
    std::string id;
    std::string title;
};

/// The choices that there are for the report type; the first one is shown at the start.
std::vector<DataChoice> dataChoices(const PreviewSettings& settings, const ReportType& type);

/// The values of a choice. Throws a CommandError when a file cannot be read.
ReportInput chosenInput(const PreviewSettings& settings, const ReportType& type,
                        const std::string& choice, const repgen::Generator& generator,
                        Console& console);

/// Tells whether a report of this choice shows persistent data as it is stored.
bool showsPersistentData(const std::string& choice);

/// The data files of all choices, and the files that they name.
std::vector<std::string> dataFiles(const PreviewSettings& settings, const ReportType& type);

}  // namespace cli
