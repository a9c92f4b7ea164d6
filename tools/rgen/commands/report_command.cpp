// rgen report: one report.
//
// SPDX-License-Identifier: MIT
#include <chrono>

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

void showData(const Arguments& arguments, const Generator& generator, const ReportOrder& order,
              Console& console, JsonDocument& document) {
    const std::vector<ShownValue> values = shownValues(generator, order.type, order.input);
    if (!arguments.json) {
        const std::string table = shownTable(values);
        if (arguments.report.output == "-") {
            console.plain(table.substr(0, table.size() - 1));
        } else {
            printData(table);
        }
        return;
    }
    std::vector<JsonDocument> rows;
    for (const ShownValue& shown : values) {
        JsonDocument row;
        row.set("name", shown.value.name);
        row.set("source", shown.value.source);
        row.set("hint", hintWord(shown.value));
        row.set("text", shown.text);
        rows.push_back(std::move(row));
    }
    document.set("data", rows);
}

void showTiming(double input, double total, const ReportOutcome& outcome, bool json,
                Console& console, JsonDocument& document) {
    if (!json) {
        console.plain("rgen: timing: input " + millisecondsText(input) + ", generate " +
                      millisecondsText(outcome.generateMilliseconds) + ", verify " +
                      millisecondsText(outcome.deliverMilliseconds) + ", total " +
                      millisecondsText(total));
        return;
    }
    JsonDocument timing;
    timing.set("input", input);
    timing.set("generate", outcome.generateMilliseconds);
    timing.set("verify", outcome.deliverMilliseconds);
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
    Generator generator;
    ReportSurroundings surroundings{generator, openDataDirectory(arguments.dataDir), console,
                                    arguments.values.raw};
    addDataDirectoryFiles(surroundings.directory, surroundings.inputs);
    generator.setDataDir(surroundings.directory.folder);
    const ReportType type = findReportType(surroundings.directory, arguments.type);
    recoverForReading(surroundings.directory, type, console);
    const ReportOrder order{type, arguments.report,
                            collectInput(arguments.values, generator, console)};
    noteLosses(order.input, arguments.values.raw, console);
    const double input = passed();
    if (arguments.showData) showData(arguments, generator, order, console, document);
    const ReportOutcome outcome = makeReport(surroundings, order);
    describeReport(order, outcome, console, document);
    if (arguments.timing) {
        showTiming(input, passed(), outcome, arguments.json, console, document);
    }
    console.say(outputName(order.arguments.output) + ": " + countText(outcome.bytes, "byte"));
    return ExitCode::Done;
}

}  // namespace cli
