// rgen report: one report.
//
// SPDX-License-Identifier: MIT
#include <chrono>

#include "base/text_functions.h"
#include "commands/commands.h"
#include "data/persistent_store.h"
#include "report/report_generation.h"
#include "report/value_table.h"

namespace cli {
namespace {

using Clock = std::chrono::steady_clock;

void checkTogether(const Arguments& arguments) {
    if (arguments.report.output != "-") return;
    if (arguments.json) {
        throw usageErrorOf("report", "--json and --output - exclude each other",
                           "the report itself is on standard output");
    }
    if (arguments.report.mode == "delete-on-close") {
        throw usageErrorOf("report", "--mode delete-on-close and --output - exclude each other",
                           "name a file");
    }
}

void showData(const Arguments& arguments, repgen::Generator& generator,
              const ReportRequest& request, Console& console, JsonDocument& document) {
    const std::vector<ValueRow> values = valueRows(generator, request.type, request.input);
    if (!arguments.json) {
        const std::string table = valueTable(values);
        if (arguments.report.output == "-") {
            console.plain(table.substr(0, table.size() - 1));
        } else {
            printData(table);
        }
        return;
    }
    std::vector<JsonDocument> rows;
    for (const ValueRow& shown : values) {
        JsonDocument row;
        row.set("name", shown.value.name);
        row.set("source", shown.value.source);
        row.set("hint", hintName(shown.value));
        row.set("text", shown.text);
        rows.push_back(std::move(row));
    }
    document.set("data", rows);
}

void showTiming(double input, double total, const ReportResult& result, bool json, Console& console,
                JsonDocument& document) {
    if (!json) {
        console.plain("rgen: timing: input " + millisecondsText(input) + ", generate " +
                      millisecondsText(result.generateMilliseconds) + ", verify " +
                      millisecondsText(result.deliverMilliseconds) + ", total " +
                      millisecondsText(total));
        return;
    }
    JsonDocument timing;
    timing.set("input", input);
    timing.set("generate", result.generateMilliseconds);
    timing.set("verify", result.deliverMilliseconds);
    timing.set("total", total);
    document.set("timing", timing);
}

}  // namespace

ExitCode runReport(const Arguments& arguments, Console& console, JsonDocument& document) {
    if (!arguments.batch.empty()) return runBatch(arguments, console, document);
    checkTogether(arguments);
    const Clock::time_point start = Clock::now();
    const auto passed = [start] {
        return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    };
    repgen::Generator generator;
    ReportContext context{generator, openDataDirectory(arguments.dataDir), console,
                          arguments.values.raw};
    addDataDirectoryFiles(context.directory, context.inputs);
    setDataDir(generator, context.directory.folder);
    const ReportType type = findReportType(context.directory, arguments.type);
    recoverForReading(context.directory, type, console);
    const ReportRequest request{type, arguments.report,
                                collectInput(arguments.values, generator, console)};
    noteLosses(request.input, arguments.values.raw, console);
    const double input = passed();
    if (arguments.showData) showData(arguments, generator, request, console, document);
    const ReportResult result = makeReport(context, request);
    describeReport(request, result, console, document);
    if (arguments.timing) {
        showTiming(input, passed(), result, arguments.json, console, document);
    }
    console.say(outputName(request.arguments.output) + ": " + countText(result.bytes, "byte"));
    return ExitCode::Done;
}

}  // namespace cli
