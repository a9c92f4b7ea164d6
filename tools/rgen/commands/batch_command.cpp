// rgen report --batch: one report for each line. A line that fails does not stop the others.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <chrono>
#include <map>
#include <set>
#include <sstream>

#include "base/input_file.h"
#include "base/interruption.h"
#include "base/json_error_text.h"
#include "base/paths.h"
#include "base/text_functions.h"
#include "commands/commands.h"
#include "data/batch_file.h"
#include "data/data_file.h"
#include "data/persistent_store.h"
#include "library/error_json.h"
#include "report/report_generation.h"
#include "report/report_output.h"
#include "report/template_diagnosis.h"

namespace cli {
namespace {

/// Why a line failed.
struct LineFailure {
    /// "batch.ndjson:17: item-17.html: ..."
    std::string text;
    /// The same without the place and the output, and the diagnosis, if a template failed, which
    /// then fails alike for many lines; otherwise empty.
    std::string reason;
    /// What is wrong with the template, in lines; may be empty.
    std::string diagnosis;
};

bool isOfTemplate(const CommandError& error) {
    return error.status && isTemplateStatus(*error.status);
}

/// The whole run: what all lines share, and the results so far.
class Batch {
public:
    Batch(const Arguments& arguments, Console& console)
        : arguments_(arguments),
          console_(console),
          context_{generator_, openDataDirectory(arguments.dataDir), console,
                   arguments.values.raw} {
        addDataDirectoryFiles(context_.directory, context_.inputs);
        setDataDir(generator_, context_.directory.folder);
    }

    void run();
    ExitCode finish(JsonDocument& document) const;

private:
    std::string placeOf(std::size_t line) const;
    void addInputs(const BatchLine& line, const std::vector<std::string>& filesNamed);
    void addInputsOfOptions();
    void requireOtherFiles(const std::vector<std::pair<std::size_t, std::string>>& lines);
    std::string summary(std::size_t done, std::size_t notBegun) const;
    void printFailures() const;
    BatchLine readWholeLine(const std::string& text, std::size_t line) const;
    void runLine(const std::string& text, std::size_t line, std::size_t number, std::size_t all);
    void makeOne(const BatchLine& line, std::size_t number, JsonDocument& report);
    void fail(std::size_t line, const std::string& output, const CommandError& error,
              JsonDocument& report);

    const Arguments& arguments_;
    Console& console_;
    repgen::Generator generator_;
    ReportContext context_;
    /// The data files whose "@FILE" paths have been added to the inputs.
    std::set<std::string> dataFiles_;
    /// The lines with the same output as an earlier line.
    std::set<std::size_t> repeatedOutputs_;
    std::vector<JsonDocument> reports_;
    std::vector<LineFailure> failures_;
    /// Number of lines with a report.
    std::size_t all_ = 0;
    bool interrupted_ = false;
    /// A report is being made.
    bool isBegun_ = false;
};

std::string Batch::placeOf(std::size_t line) const {
    return inputName(arguments_.batch) + ":" + std::to_string(line) + ":";
}

void Batch::makeOne(const BatchLine& line, std::size_t number, JsonDocument& report) {
    if (repeatedOutputs_.count(number) > 0) {
        throw usageError(line.report.output + ": an earlier line writes the same file",
                         "name another output");
    }
    ReportRequest request;
    request.type = findReportType(context_.directory, line.type);
    recoverForReading(context_.directory, request.type, console_);
    request.arguments = line.report;
    {
        const ImmediateInterrupt whileWaitingForPipes;
        request.input = collectInput(line.values, generator_, console_);
    }
    for (const Value& value : line.set)
        request.input.values.add(value);
    for (const Value& pair : line.pairs)
        request.input.pairs.add(pair);
    noteLosses(request.input, arguments_.values.raw, console_);
    const ReportResult result = makeReport(context_, request);
    report.set("ok", true);
    describeReport(request, result, console_, report);
}

void Batch::fail(std::size_t line, const std::string& output, const CommandError& error,
                 JsonDocument& report) {
    describeFailure(error, report);
    report.set("output", output);
    const std::string place = placeOf(line);
    const std::string text = errorText(error);
    const std::string start = outputName(output) + ": ";
    const std::string diagnosis = error.diagnosis ? error.diagnosis->lines : std::string();
    const bool isShared = isOfTemplate(error) && text.rfind(start, 0) == 0;
    failures_.push_back({text.rfind(place, 0) == 0 ? text : place + " " + text,
                         isShared ? text.substr(start.size()) + "\n" + diagnosis : std::string(),
                         diagnosis});
}

BatchLine Batch::readWholeLine(const std::string& text, std::size_t line) const {
    const ImmediateInterrupt whileWaitingForPipes;
    return readBatchLine(text, line, arguments_);
}

void Batch::runLine(const std::string& text, std::size_t line, std::size_t number,
                    std::size_t all) {
    throwIfInterrupted();
    isBegun_ = true;
    JsonDocument report;
    report.set("line", static_cast<std::int64_t>(line));
    std::string output;
    console_.beginNotes(placeOf(line) + " ");
    try {
        const BatchLine batchLine = readWholeLine(text, line);
        output = batchLine.report.output;
        console_.progress(std::to_string(number) + "/" + std::to_string(all) + " " + output);
        makeOne(batchLine, line, report);
    } catch (const CommandError& error) {
        if (error.exitCode == ExitCode::Interrupted) throw;
        fail(line, output, error, report);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& exception) {
        fail(line, output,
             {ExitCode::Environment, outputName(output) + ": " + exception.what(),
              "check paths and access rights"},
             report);
    }
    reports_.push_back(std::move(report));
    isBegun_ = false;
}

void Batch::addInputs(const BatchLine& line, const std::vector<std::string>& filesNamed) {
    for (const std::string& file : filesNamed)
        context_.inputs.add(file);
    for (const std::string& file : line.values.data) {
        context_.inputs.add(file);
        if (!dataFiles_.insert(file).second) continue;
        for (const std::string& named : filesNamedIn(file))
            context_.inputs.add(named);
    }
    if (namesCatalogueFile(line.report.lang)) context_.inputs.add(line.report.lang);
}

void Batch::addInputsOfOptions() {
    if (arguments_.batch != "-") context_.inputs.add(arguments_.batch);
    std::vector<std::string> files;
    ValueReadOptions reading;
    reading.filesNamed = &files;
    try {
        for (const std::string& assignment : arguments_.values.set)
            readAssignment(assignment, "--set", reading);
    } catch (const CommandError&) {
        // Each line reports it when it is run.
    }
    for (const std::string& file : files)
        context_.inputs.add(file);
}

/// Runs before anything is written: no report may replace a file that any line reads. Files named
/// by "@FILE" are not opened, because a pipe can be read only once. Outputs are resolved here as
/// well, because each written report can change where links point.
void Batch::requireOtherFiles(const std::vector<std::pair<std::size_t, std::string>>& lines) {
    std::vector<std::pair<std::string, std::string>> outputs;
    std::set<std::string> places;
    addInputsOfOptions();
    for (const auto& [number, text] : lines) {
        try {
            std::vector<std::string> filesNamed;
            const BatchLine line = readBatchLine(text, number, arguments_, &filesNamed);
            const std::string& output = line.report.output;
            addInputs(line, filesNamed);
            outputs.emplace_back(placeOf(number), output);
            const bool isNew = isSpecialFile(output) || places.insert(placeWritten(output)).second;
            if (!isNew) repeatedOutputs_.insert(number);
        } catch (const CommandError&) {
            // The line reports it when it is run.
        }
    }
    for (const auto& [place, output] : outputs) {
        if (output.find('\0') != std::string::npos) {
            throw usageError(place + " \"output\" has a zero character", "take out \\u0000");
        }
        try {
            requireOtherFile(context_.inputs, output);
        } catch (const CommandError& error) {
            throw CommandError(error.exitCode, place + " " + error.what(), error.hint);
        }
    }
}

void Batch::run() {
    const std::string content = readInputFile(arguments_.batch, "check the path given to --batch");
    requireNotUtf16(content, arguments_.batch);
    std::vector<std::pair<std::size_t, std::string>> lines;
    std::istringstream stream(content);
    std::size_t number = 0;
    for (std::string line; std::getline(stream, line);) {
        ++number;
        if (line.find_first_not_of(" \t\r\xEF\xBB\xBF") != std::string::npos) {
            lines.emplace_back(number, line);
        }
    }
    if (lines.empty()) {
        throw usageError(inputName(arguments_.batch) + ": there is no report in it",
                         "write one JSON object in each line");
    }
    requireOtherFiles(lines);
    all_ = lines.size();
    const InterruptGuard guard;
    try {
        for (std::size_t i = 0; i < lines.size(); ++i)
            runLine(lines[i].second, lines[i].first, i + 1, lines.size());
    } catch (const CommandError& error) {
        if (error.exitCode != ExitCode::Interrupted) throw;
        interrupted_ = true;
    }
}

std::string Batch::summary(std::size_t done, std::size_t notBegun) const {
    const std::string failed = std::to_string(failures_.size()) + " failed";
    if (!interrupted_) {
        return countText(all_, "report") + ": " + std::to_string(done) + " done, " + failed;
    }
    return std::to_string(done) + " of " + std::to_string(all_) + " done" +
           (failures_.empty() ? "" : ", " + failed) + (isBegun_ ? ", 1 interrupted" : "") + ", " +
           std::to_string(notBegun) + " not begun";
}

/// The failure of a template is printed once.
void Batch::printFailures() const {
    std::map<std::string, std::size_t> lines;
    for (const LineFailure& failure : failures_)
        ++lines[failure.reason];
    for (const LineFailure& failure : failures_) {
        const bool isShared = !failure.reason.empty();
        std::size_t& left = lines[failure.reason];
        if (left == 0) continue;
        console_.errorLine(failure.text);
        if (!failure.diagnosis.empty()) console_.lines(failure.diagnosis);
        if (!isShared) continue;
        if (left > 1) console_.errorLine("the same for " + countText(left - 1, "more line"));
        left = 0;
    }
}

ExitCode Batch::finish(JsonDocument& document) const {
    console_.progress({});
    printFailures();
    const std::size_t done = reports_.size() - failures_.size();
    const std::size_t notBegun = all_ - reports_.size() - (isBegun_ ? 1 : 0);
    console_.say(summary(done, notBegun));
    const CommandError interruption(ExitCode::Interrupted, "interrupted");
    if (interrupted_) console_.error(interruption);
    if (interrupted_) {
        describeFailure(interruption, document);
    } else if (!failures_.empty()) {
        describeFailure({ExitCode::Refused, countText(failures_.size(), "report") + " failed"},
                        document);
    }
    document.set("done", static_cast<std::int64_t>(done));
    document.set("failed", static_cast<std::int64_t>(failures_.size()));
    document.set("notBegun", static_cast<std::int64_t>(notBegun));
    document.set("reports", reports_);
    if (interrupted_) return ExitCode::Interrupted;
    return failures_.empty() ? ExitCode::Done : ExitCode::Refused;
}

}  // namespace

ExitCode runBatch(const Arguments& arguments, Console& console, JsonDocument& document) {
    const std::vector<std::string>& data = arguments.values.data;
    const bool readsInput = std::find(data.begin(), data.end(), "-") != data.end();
    if (arguments.showData || readsInput || !arguments.report.output.empty()) {
        const std::string option = arguments.showData ? "--show-data"
                                   : readsInput       ? "--data -"
                                                      : "--output";
        throw usageErrorOf("report", option + " and --batch exclude each other",
                           "the lines of the batch say it");
    }
    const auto start = std::chrono::steady_clock::now();
    Batch batch(arguments, console);
    batch.run();
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    if (arguments.timing && !arguments.json) {
        console.plain("rgen: timing: total " + millisecondsText(took.count()));
    } else if (arguments.timing) {
        JsonDocument timing;
        timing.set("total", took.count());
        document.set("timing", timing);
    }
    return batch.finish(document);
}

}  // namespace cli
