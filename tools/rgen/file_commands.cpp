// rgen dump and rgen simulate: the two files that hold the values of a request.
//
// SPDX-License-Identifier: MIT
#include <memory>

#include "commands.h"
#include "generator.h"
#include "input_file.h"
#include "interruption.h"
#include "report_input.h"
#include "report_output.h"
#include "report_run.h"
#include "xml_content.h"
#include "xml_documents.h"

namespace cli {
namespace {

ValueSet requiredValues(const Arguments& arguments, Generator& generator, Console& console) {
    ReportInput input = collectInput(arguments.values, generator, console);
    noteLosses(input, arguments.values.raw, console);
    if (!input.values.empty()) return std::move(input.values);
    throw usageErrorOf(arguments.command, "there are no values",
                       "give values with --data or --set");
}

void finish(const Arguments& arguments, std::size_t values, Console& console,
            JsonDocument& document) {
    const std::string& output = arguments.report.output;
    document.set("output", output);
    document.set("values", static_cast<std::int64_t>(values));
    document.set("notes", console.notes());
    console.say(outputName(output) + ": " + countText(values, "value"));
}

void checkTogether(const Arguments& arguments) {
    if (arguments.report.output != "-" || !arguments.json) return;
    throw usageErrorOf(arguments.command, "--json and --output - exclude each other",
                       "the file itself is on standard output");
}

/// Says what the library finds in the file that differs from what was to be written.
void noteDifferences(const ValueSet& wanted, const Generator& generator, const std::string& path,
                     Console& console) {
    std::map<std::string, Value> read;
    for (Value& value : generator.simulatedInput(path)) {
        std::string name = value.name;
        read[std::move(name)] = std::move(value);
    }
    for (const auto& [name, value] : wanted.values()) {
        const std::string subject = "\"" + shortened(name) + "\": simulated input carries ";
        const auto found = read.find(name);
        const bool isEmpty =
            trimmed(name).empty() || (value.bytes.empty() && value.type != RGEN_TYPE_INT64 &&
                                      trimmed(value.content).empty());
        if (found == read.end()) {
            const bool isRenamed = name != trimmed(name) && read.count(trimmed(name)) > 0;
            if (!isEmpty && !isRenamed) {
                throw CommandError(ExitCode::Unverified,
                                   "simulated input cannot carry \"" + shortened(name) + "\"",
                                   "texts hold at most 10,000,000 bytes there");
            }
            console.note(subject + (isRenamed ? "it as \"" + shortened(trimmed(name)) + "\""
                                    : trimmed(name).empty() ? "no value without a name"
                                                            : "no value without a text"));
        } else if (value.type == RGEN_TYPE_STRING && found->second.content != value.content) {
            console.note(subject + "\"" + shortened(withoutReferences(found->second.content)) +
                         "\" instead of \"" + shortened(withoutReferences(value.content)) + "\"");
        }
    }
}

}  // namespace

ExitCode runDump(const Arguments& arguments, Console& console, JsonDocument& document) {
    checkTogether(arguments);
    Generator generator;
    const ValueSet values = requiredValues(arguments, generator, console);
    const std::string& output = arguments.report.output;
    if (isSpecialFile(output)) {
        throw CommandError(ExitCode::Unverified,
                           "cannot write \"" + output + "\": it is no ordinary file",
                           "write to - and lead standard output there");
    }
    std::unique_ptr<TemporaryFolder> folder;
    if (output == "-") folder = std::make_unique<TemporaryFolder>();
    TemporaryFile file(folder ? folder->file("dump.xml") : temporaryPathBeside(output));
    const RgenStatus status = generator.dump(inOrder(values), file.path());
    if (status < 0) {
        throw generator.failure(outputName(output), status,
                                "check that the folder exists and may be written");
    }
    if (output == "-") {
        printData(readInputFile(file.path(), "try again"));
    } else {
        file.renameTo(output);
    }
    finish(arguments, values.size(), console, document);
    return ExitCode::Done;
}

ExitCode runSimulate(const Arguments& arguments, Console& console, JsonDocument& document) {
    checkTogether(arguments);
    Generator generator;
    const ValueSet values = requiredValues(arguments, generator, console);
    const std::string bytes = simulatedInputDocument(values.values());
    const std::string& output = arguments.report.output;
    const TemporaryFolder folder;
    const std::string copy = folder.file("simulated.xml");
    writeOutputFile(copy, bytes);
    noteDifferences(values, generator, copy, console);
    writeOutput(output, bytes);
    finish(arguments, values.size(), console, document);
    return ExitCode::Done;
}

}  // namespace cli
