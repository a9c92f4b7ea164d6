// Required arguments are checked here and not by the parser, so that a misspelt option is reported
// as misspelt and not as missing.
//
// SPDX-License-Identifier: MIT
#include "front/argument_checks.h"

#include <algorithm>

#include "base/command_error.h"
#include "base/suggestion.h"
#include "base/text_functions.h"
#include "data/report_type.h"

namespace cli {
namespace {

std::string missingArgument(const Arguments& arguments) {
    const std::string& command = arguments.command;
    const bool needsOutput = command == "dump" || command == "simulate" ||
                             (command == "report" && arguments.batch.empty());
    if (needsOutput && arguments.report.output.empty()) return "--output";
    const bool hasOperand = !arguments.operands.empty() && !arguments.operands.front().empty();
    if (hasOperand) return {};
    if (command == "init") return "DIR";
    if (command == "completion") return "SHELL";
    if (command == "persist unset") return "NAME";
    const bool takesValues = command == "persist set" || command == "persist replace";
    return takesValues && arguments.values.data.empty() ? "NAME=VALUE" : "";
}

void checkWord(const Arguments& arguments, const std::string& what, const std::string& word,
               const std::vector<std::string>& known) {
    if (std::find(known.begin(), known.end(), word) != known.end()) return;
    throw usageErrorOf(arguments.command, "there is no " + what + " \"" + word + "\"",
                       didYouMean(word, known, "there is: " + joined(known)));
}

}  // namespace

void checkArguments(const Arguments& arguments) {
    const std::string missing = missingArgument(arguments);
    if (!missing.empty()) {
        throw usageErrorOf(arguments.command, missing + " is missing",
                           helpCommand(arguments.command) + " shows examples");
    }
    const std::string& format = arguments.report.format;
    if (!format.empty()) checkWord(arguments, "format", format, outputFormats());
    checkWord(arguments, "mode", arguments.report.mode, choicesOf("--mode"));
    checkWord(arguments, "sample", arguments.sample, choicesOf("--sample"));
    if (arguments.command == "completion") {
        checkWord(arguments, "shell", arguments.operands.front(), choicesOf("SHELL"));
    }
}

std::vector<std::string> choicesOf(const std::string& name) {
    if (name == "--format") return outputFormats();
    if (name == "--mode") return {"file", "bytes", "delete-on-close"};
    if (name == "--sample") return {"acquisition"};
    if (name == "SHELL") return {"bash", "zsh"};
    return {};
}

std::string helpCommand(const std::string& command) {
    return "\"rgen " + (command.empty() ? "" : command + " ") + "--help\"";
}

}  // namespace cli
