// One report from its input to the verified file: what "rgen report" does once, and for each line
// of a batch.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/arguments.h"
#include "base/file_set.h"
#include "data/report_input.h"
#include "data/report_type.h"
#include "library/generator.h"

namespace cli {

class Console;
class JsonDocument;

/// What does not change from report to report.
struct ReportSurroundings {
    const Generator& generator;
    DataDirectory directory;
    Console& console;
    /// Translations are taken as they are.
    bool raw = false;
    /// What no report may be written over, besides the files that were read for it.
    InputFiles inputs = {};
};

/// What a report is made from.
struct ReportOrder {
    ReportType type;
    ReportArguments arguments;
    ReportInput input;
};

struct ReportOutcome {
    std::string format;
    std::uint64_t bytes = 0;
    /// Number of names among the values and pairs.
    std::size_t values = 0;
    std::vector<std::string> untranslated;
    double generateMilliseconds = 0;
    double deliverMilliseconds = 0;
};

/// Makes a report. Throws a CommandError, after which neither a new nor a temporary file is left.
ReportOutcome makeReport(const ReportSurroundings& surroundings, const ReportOrder& order);

/// Adds what --json tells of a report.
void describeReport(const ReportOrder& order, const ReportOutcome& outcome, const Console& console,
                    JsonDocument& document);

/// "12345 bytes", "1 byte".
std::string countText(std::uint64_t count, const std::string& word);

/// "12.3 ms".
std::string millisecondsText(double milliseconds);

/// Tells whether --lang names a file and no language.
bool namesCatalogueFile(const std::string& lang);

/// Refuses an output that is a file which reports are made from. Throws a CommandError.
void requireOtherFile(const InputFiles& inputs, const std::string& output);

/// "report.html", or "standard output" for "-".
std::string outputName(const std::string& output);

}  // namespace cli
