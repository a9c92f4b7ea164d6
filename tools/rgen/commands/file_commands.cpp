// rgen dump and rgen simulate: the two files that hold the values of a request.
//
// SPDX-License-Identifier: MIT
#include <memory>
#include <system_error>

#include "base/input_file.h"
#include "base/interruption.h"
#include "base/safe_files.h"
#include "base/xml_text.h"
#include "commands/commands.h"
#include "data/report_input.h"
#include "data/xml_documents.h"
#include "library/generator.h"
#include "report/report_generation.h"
#include "report/report_output.h"

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

CommandError unwritable(const std::string& path, const std::system_error& error) {
    return {ExitCode::Unverified, "cannot write \"" + path + "\": " + error.code().message(),
            "check that the folder exists, may be written and has room"};
}

/// The folder that the library writes a dump to.
std::unique_ptr<TemporaryFolder> folderFor(const std::string& output, const Generator& generator) {
    if (output == "-") return std::make_unique<TemporaryFolder>();
    try {
        return std::make_unique<TemporaryFolder>(output);
    } catch (const std::system_error& error) {
        if (isFullDisk(error.code())) throw unwritable(output, error);
        throw generator.failure(output, RGEN_E_CREATE_PERSIST,
                                "check that the folder exists and may be written");
    }
}

/// For reading it back before anything is written to the output.
void writeCopy(const std::string& path, const std::string& bytes) {
    try {
        writeNewFile(path, bytes);
    } catch (const std::system_error& error) {
        throw unwritable(path, error);
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
    const std::unique_ptr<TemporaryFolder> folder = folderFor(output, generator);
    const std::string file = folder->file("dump.xml");
    const RgenStatus status = generator.dump(inOrder(values), file);
    if (status < 0) {
        CommandError error =
            generator.failure(outputName(output), status,
                              "check that the folder exists, may be written and has room");
        if (status == RGEN_E_CREATE_PERSIST) error.exitCode = ExitCode::Unverified;
        throw error;
    }
    if (output == "-") {
        printData(readInputFile(file, "try again"));
    } else {
        folder->deliver(file, output);
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
    writeCopy(copy, bytes);
    noteDifferences(values, generator, copy, console);
    writeOutput(output, bytes);
    finish(arguments, values.size(), console, document);
    return ExitCode::Done;
}

}  // namespace cli
