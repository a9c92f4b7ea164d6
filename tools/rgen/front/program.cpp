// Runs a command line and turns every failure into a message and an exit code.
//
// SPDX-License-Identifier: MIT
#include "front/program.h"

#include <algorithm>
#include <exception>

#include "base/host_system.h"
#include "base/interruption.h"
#include "base/time_zone.h"
#include "commands/commands.h"
#include "front/command_line.h"
#include "front/command_table.h"
#include "front/help_text.h"
#include "library/error_json.h"

namespace cli {
namespace {

/// Prints the error; with --json the document so far and the error. Prints nothing when the reader
/// of standard output has closed it.
ExitCode fail(const CommandError& error, bool json, Console& console, JsonDocument& document) {
    if (error.exitCode == ExitCode::ClosedPipe) return error.exitCode;
    console.error(error);
    if (!json) return error.exitCode;
    describeFailure(error, document);
    try {
        printData(document.text());
    } catch (const CommandError&) {
        // Standard output does not work; the first error is reported.
    }
    return error.exitCode;
}

ExitCode runCommandLine(const CommandLine& commandLine, Console& console, JsonDocument& document) {
    const Arguments& arguments = commandLine.arguments;
    const Command& command = findCommand(arguments.command);
    if (!commandLine.help.empty()) {
        if (arguments.json) describeCommands(command, document);
        printData(arguments.json ? document.text() : commandLine.help);
        return ExitCode::Done;
    }
    if (!arguments.timezone.empty()) useTimeZone(arguments.timezone);
    const ExitCode code = arguments.version ? runVersion(arguments, document)
                                            : command.run(arguments, console, document);
    if (arguments.json) printData(document.text());
    return code;
}

/// For failures of the library that have no status.
CommandError libraryException(const std::exception& exception) {
    return {ExitCode::Environment, exception.what(), "check paths and access rights"};
}

}  // namespace

int runProgram(const std::vector<std::string>& arguments) {
    prepareStreams();
    addProgramFolderToPath();
    listenForInterrupts();
    bool json = std::find(arguments.begin(), arguments.end(), "--json") != arguments.end();
    Console console;
    JsonDocument document;
    document.set("ok", true);
    ExitCode code = ExitCode::Done;
    try {
        const CommandLine commandLine = parseCommandLine(arguments);
        if (arguments.empty()) {
            console.plain(commandLine.help);
            return static_cast<int>(ExitCode::Usage);
        }
        json = commandLine.arguments.json;
        console = Console(commandLine.arguments.quiet);
        code = runCommandLine(commandLine, console, document);
    } catch (const CommandError& error) {
        code = fail(error, json, console, document);
    } catch (const std::bad_alloc&) {
        code = fail({ExitCode::Environment, "memory is exhausted", "use less data"}, json, console,
                    document);
    } catch (const std::exception& exception) {
        code = fail(libraryException(exception), json, console, document);
    }
    return static_cast<int>(code);
}

}  // namespace cli
