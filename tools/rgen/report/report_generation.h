// Makes one report, from its input to the verified file: once for "rgen report", and for each line
// of a batch.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/arguments.h"
#include "base/file_set.h"
#include "data/report_input.h"
#include "data/report_type.h"
#include "library/library_calls.h"
#include "report/known_template.h"

namespace cli {

class Console;
class JsonDocument;

/// What all reports of a run share.
struct ReportContext {
    repgen::Generator& generator;
    DataDirectory directory;
    Console& console;
    /// Translations are inserted unchanged.
    bool raw = false;
    /// Files that no report may overwrite, besides those that were read for it.
    FileSet inputs = {};
    std::shared_ptr<KnownTemplates> templates = std::make_shared<KnownTemplates>();
};

/// The input of one report.
struct ReportRequest {
    ReportType type;
    ReportArguments arguments;
    ReportInput input;
};

struct ReportResult {
    std::string format;
    std::uint64_t bytes = 0;
    /// Number of names among the values and pairs.
    std::size_t values = 0;
    std::vector<std::string> untranslated;
    double generateMilliseconds = 0;
    double deliverMilliseconds = 0;
};

/// Makes a report. Throws a CommandError; no new or temporary file is left then.
ReportResult makeReport(const ReportContext& context, const ReportRequest& request);

/// Makes a report in memory, a pdf report unconverted. A Ctrl-C ends the program meanwhile. Throws
/// a CommandError.
std::string makePage(const ReportContext& context, const ReportRequest& request);

/// Adds the members that --json prints about a report.
void describeReport(const ReportRequest& request, const ReportResult& result,
                    const Console& console, JsonDocument& document);

/// "12.3 ms".
std::string millisecondsText(double milliseconds);

/// Throws a CommandError when the output is one of the inputs.
void requireOtherFile(const FileSet& inputs, const std::string& output);

/// "report.html", or "standard output" for "-".
std::string outputName(const std::string& output);

}  // namespace cli
