// rgen dump: the values as the library dumps them.
//
// SPDX-License-Identifier: MIT
#include <memory>
#include <system_error>

#include "base/input_file.h"
#include "base/interruption.h"
#include "base/paths.h"
#include "base/safe_files.h"
#include "commands/commands.h"
#include "commands/values_file.h"
#include "data/report_input.h"
#include "library/library_calls.h"
#include "report/report_generation.h"

namespace cli {
namespace {

/// The folder that the library writes a dump to.
std::unique_ptr<TemporaryFolder> folderFor(const std::string& output) {
    if (output == "-") return std::make_unique<TemporaryFolder>();
    try {
        return std::make_unique<TemporaryFolder>(output);
    } catch (const std::system_error& error) {
        if (isFullDisk(error.code())) throw unwritable(output, error);
        throw statusFailure(output, RGEN_E_CREATE_PERSIST,
                            "check that the folder exists and may be written");
    }
}

}  // namespace

ExitCode runDump(const Arguments& arguments, Console& console, JsonDocument& document) {
    requireOneOutput(arguments);
    repgen::Generator generator;
    const ValueSet values = requiredValues(arguments, generator, console);
    const std::string& output = arguments.report.output;
    if (isSpecialFile(output)) {
        throw CommandError(ExitCode::Unverified,
                           "cannot write \"" + output + "\": it is no ordinary file",
                           "write to - and lead standard output there");
    }
    const std::unique_ptr<TemporaryFolder> folder = folderFor(output);
    const std::string file = folder->file("dump.xml");
    try {
        generator.dump(libraryValues(values), file);
    } catch (const repgen::StatusError& failure) {
        CommandError error =
            statusFailure(outputName(output), failure.status(),
                          "check that the folder exists, may be written and has room");
        if (failure.status() == RGEN_E_CREATE_PERSIST) error.exitCode = ExitCode::Unverified;
        throw error;
    }
    if (output == "-") {
        printData(readInputFile(file, "try again"));
    } else {
        folder->deliver(file, output);
    }
    describeValuesFile(arguments, values.size(), console, document);
    return ExitCode::Done;
}

}  // namespace cli
