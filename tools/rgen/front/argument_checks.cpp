// Required arguments are checked here and not by the parser, so that a misspelt option is reported
// as misspelt and not as missing.
//
// SPDX-License-Identifier: MIT
#include "front/argument_checks.h"

#include <algorithm>

#include "base/command_error.h"
#include "base/suggestion.h"
#include "base/text_functions.h"

namespace cli {
namespace {

[[noreturn]] void fail(const Command& command, const std::string& message,
                       const std::string& hint) {
    throw usageErrorOf(std::string(command.name), message, hint);
}

using Texts = std::vector<std::string>;

/// What is stored for an option, in the form that the checks need.
struct Stored {
    explicit Stored(bool flag) : isGiven(flag) {}
    explicit Stored(const std::string& text) : isGiven(!text.empty()), values({text}) {}
    explicit Stored(const std::optional<std::string>& text) : isGiven(text.has_value()) {
        if (text) values = {*text};
    }
    explicit Stored(const Texts& texts) : isGiven(!texts.empty()), values(texts) {}

    bool isGiven;
    Texts values;
};

Stored storedFor(const Option& option, Arguments arguments) {
    return std::visit([&arguments](auto target) { return Stored(target(arguments)); },
                      option.target);
}

bool isGiven(const Command& command, std::string_view name, const Arguments& arguments) {
    const auto option = std::find_if(command.options.begin(), command.options.end(),
                                     [name](const Option& each) { return each.name == name; });
    return option != command.options.end() && storedFor(*option, arguments).isGiven;
}

/// "NAME=VALUE" for "NAME[:HINT]=VALUE".
std::string withoutBrackets(std::string_view name) {
    const std::size_t start = name.find('[');
    if (start == std::string_view::npos) return std::string(name);
    return std::string(name.substr(0, start)) + std::string(name.substr(name.find(']') + 1));
}

/// The name of the first argument that is required and missing; empty when there is none.
std::string missingArgument(const Command& command, const Arguments& arguments) {
    for (const Option& option : command.options) {
        const bool isMissing =
            option.need == Need::Required && !storedFor(option, arguments).isGiven;
        if (isMissing && !isGiven(command, option.unless, arguments)) {
            return std::string(option.name);
        }
    }
    const Operand& operand = command.operand;
    const bool isMissing = arguments.operands.empty() || arguments.operands.front().empty();
    if (!operand.required() || !isMissing || isGiven(command, operand.unless, arguments)) return {};
    return withoutBrackets(operand.name);
}

void checkChoice(const Command& command, const std::string& what, const std::string& word,
                 std::string_view choices) {
    const std::vector<std::string> known = choicesOf(choices);
    if (std::find(known.begin(), known.end(), word) != known.end()) return;
    fail(command, "there is no " + what + " \"" + word + "\"",
         didYouMean(word, known, "there is: " + joined(known)));
}

void checkChoices(const Command& command, const Arguments& arguments) {
    for (const Option& option : command.options) {
        const Texts values = storedFor(option, arguments).values;
        if (option.choices.empty() || values == storedFor(option, Arguments()).values) continue;
        for (const std::string& value : values)
            checkChoice(command, std::string(option.name.substr(2)), value, option.choices);
    }
    if (command.operand.choices.empty()) return;
    for (const std::string& operand : arguments.operands) {
        checkChoice(command, lowerCase(std::string(command.operand.name)), operand,
                    command.operand.choices);
    }
}

std::vector<std::string> optionNames(const Command& command) {
    std::vector<std::string> names;
    for (const Option& option : command.options) {
        names.emplace_back(option.name);
        if (!option.shortName.empty()) names.emplace_back(option.shortName);
    }
    return names;
}

}  // namespace

void checkArguments(const Command& command, const Arguments& arguments) {
    const std::string missing = missingArgument(command, arguments);
    if (!missing.empty()) {
        fail(command, missing + " is missing", helpCommand(command.name) + " shows examples");
    }
    checkChoices(command, arguments);
}

void failAtUnknown(const Command& command, const std::string& argument) {
    if (argument.size() > 1 && argument[0] == '-') {
        const std::string name = argument.substr(0, argument.find('='));
        const bool isShort = name.size() == 2;
        fail(command, "there is no option \"" + name + "\"",
             didYouMean(name, isShort ? std::vector<std::string>() : optionNames(command),
                        helpCommand(command.name) + " lists the options"));
    }
    std::vector<std::string> names;
    for (const Command* inner : commandsInside(command))
        names.push_back(lastWord(*inner));
    if (names.empty()) failAtSurplus(command, argument);
    fail(command, "there is no command \"" + argument + "\"",
         didYouMean(argument, names, helpCommand(command.name) + " lists the commands"));
}

void failAtSurplus(const Command& command, const std::string& operand) {
    fail(command, "\"" + operand + "\" is not expected",
         helpCommand(command.name) + " shows what is");
}

std::string helpCommand(std::string_view command) {
    return "\"rgen " + std::string(command) + (command.empty() ? "" : " ") + "--help\"";
}

}  // namespace cli
