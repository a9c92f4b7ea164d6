// Sets CLI11 up from the table of commands. CLI11 parses; the messages about mistakes are those of
// rgen, so CLI11 collects unknown arguments and checkUnknown examines them.
//
// SPDX-License-Identifier: MIT
#include "front/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <map>

#include "base/command_error.h"
#include "base/input_file.h"
#include "base/suggestion.h"
#include "front/argument_checks.h"
#include "front/command_table.h"
#include "front/help_text.h"
#include "front/option_table.h"

namespace cli {
namespace {

class Parser {
public:
    Parser();
    CommandLine parse(const std::vector<std::string>& arguments);

private:
    using Texts = std::vector<std::string>;

    CLI::App& addCommand(const Command& command);
    void addOption(CLI::App& app, const Option& option);
    static void bind(CLI::App& app, const Option& option, bool& target);
    static void bind(CLI::App& app, const Option& option, std::string& target);
    static void bind(CLI::App& app, const Option& option, std::optional<std::string>& target);
    void bind(CLI::App& app, const Option& option, Texts& target);
    void addOperands(CLI::App& app, const Command& command);

    const Command& selected() const { return *commands_.at(&selectedApp(app_)); }
    static const CLI::App& selectedApp(const CLI::App& from);
    std::string helpOf(const Command& command) const;
    void checkUnknown(const CLI::App& app) const;
    void runParser(const std::vector<std::string>& arguments);

    CLI::App app_;
    std::map<const CLI::App*, const Command*> commands_;
    std::map<std::string_view, CLI::App*> apps_;
    CommandLine line_;
    /// What is done with the results of CLI11 after it has parsed.
    std::vector<std::function<void()>> collectors_;
};

[[noreturn]] void fail(const Command& command, const std::string& message,
                       const std::string& hint) {
    throw usageErrorOf(std::string(command.name), message, hint);
}

bool isGiven(std::string_view name, const std::vector<std::string>& arguments) {
    return std::find(arguments.begin(), arguments.end(), name) != arguments.end();
}

std::string namesOf(const Option& option) {
    const std::string name(option.name);
    return option.shortName.empty() ? name : std::string(option.shortName) + "," + name;
}

Parser::Parser() : app_("", "rgen") {
    for (const Command& command : commandTable())
        commands_.emplace(&addCommand(command), &command);
}

CLI::App& Parser::addCommand(const Command& command) {
    CLI::App* app = &app_;
    if (!command.name.empty()) {
        CLI::App& parent = *apps_.at(parentName(command));
        app = parent.add_subcommand(lastWord(command), std::string(command.summary));
    }
    apps_.emplace(command.name, app);
    app->allow_windows_style_options(false);
    app->allow_extras();
    app->get_formatter()->column_width(32);
    // One command and no more: a later word of such a name is an operand.
    if (command.run == nullptr) app->require_subcommand(0, 1);
    for (const Option& option : command.options)
        addOption(*app, option);
    if (!command.operand.name.empty()) addOperands(*app, command);
    return *app;
}

void Parser::addOption(CLI::App& app, const Option& option) {
    if (option.name == options::help.name) {
        app.set_help_flag(namesOf(option), std::string(option.summary));
        return;
    }
    std::visit([&](auto target) { bind(app, option, target(line_.arguments)); }, option.target);
}

void Parser::bind(CLI::App& app, const Option& option, bool& target) {
    app.add_flag(namesOf(option), target, std::string(option.summary));
}

void Parser::bind(CLI::App& app, const Option& option, std::string& target) {
    app.add_option(namesOf(option), target, std::string(option.summary))
        ->type_name(std::string(option.argument))
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

void Parser::bind(CLI::App& app, const Option& option, std::optional<std::string>& target) {
    app.add_option_function<std::string>(
           namesOf(option), [&target](const std::string& value) { target = value; },
           std::string(option.summary))
        ->type_name(std::string(option.argument))
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

/// CLI11 would take a value in brackets apart if the option were bound to the vector itself.
void Parser::bind(CLI::App& app, const Option& option, Texts& target) {
    const std::string summary(option.summary);
    CLI::Option* const added = app.add_option(namesOf(option), summary);
    added->type_name(std::string(option.argument))
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    collectors_.push_back([added, &target] {
        if (added->count() > 0) target = added->results();
    });
}

void Parser::addOperands(CLI::App& app, const Command& command) {
    const Operand& operand = command.operand;
    const std::string summary(operand.summary);
    CLI::Option* const added = app.add_option(std::string(operand.name), summary);
    added->type_name("")->allow_extra_args();
    added->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    collectors_.push_back([this, &command, added] {
        if (added->count() == 0) return;
        line_.arguments.operands = added->results();
        if (!command.operand.repeats() && added->count() > 1)
            failAtSurplus(command, added->results()[1]);
    });
}

/// The command that was named last.
const CLI::App& Parser::selectedApp(const CLI::App& from) {
    const std::vector<CLI::App*> chosen = from.get_subcommands();
    return chosen.empty() ? from : selectedApp(*chosen.front());
}

std::string Parser::helpOf(const Command& command) const {
    const CLI::App& app = selectedApp(app_);
    const std::string parent(parentName(command));
    const std::string program = parent.empty() ? "rgen" : "rgen " + parent;
    return helpText(command, app.help(command.name.empty() ? "" : program));
}

void Parser::checkUnknown(const CLI::App& app) const {
    const std::vector<std::string> unknown = app.remaining();
    if (!unknown.empty()) failAtUnknown(*commands_.at(&app), unknown.front());
    for (const CLI::App* chosen : app.get_subcommands())
        checkUnknown(*chosen);
}

/// CLI11's own messages become those of rgen.
void Parser::runParser(const std::vector<std::string>& arguments) {
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    try {
        app_.parse(reversed);
    } catch (const CLI::CallForHelp&) {
        line_.help = helpOf(selected());
    } catch (const CLI::ArgumentMismatch& error) {
        const std::string text = error.what();
        const std::string option = text.substr(0, text.find(':'));
        fail(selected(), option + " needs a value",
             helpCommand(selected().name) + " shows examples");
    } catch (const CLI::ParseError& error) {
        fail(selected(), error.what(), helpCommand(selected().name) + " shows examples");
    }
}

CommandLine Parser::parse(const std::vector<std::string>& arguments) {
    if (arguments.empty()) line_.help = helpOf(commandTable().front());
    for (const std::string& argument : arguments) {
        if (isPlainUtf8(argument)) continue;
        throw usageError("an argument is not valid UTF-8", "write it in UTF-8");
    }
    runParser(arguments);
    const Command& command = selected();
    line_.arguments.command = command.name;
    if (!line_.help.empty()) {
        // CLI11 calls for help before it stores anything.
        line_.arguments.json = isGiven(options::json.name, arguments);
        return line_;
    }
    for (const auto& collect : collectors_)
        collect();
    checkUnknown(app_);
    if (line_.arguments.version) return line_;
    if (command.run == nullptr) {
        fail(command, "a command is missing", helpCommand(command.name) + " shows examples");
    }
    checkArguments(command, line_.arguments);
    return line_;
}

}  // namespace

CommandLine parseCommandLine(const std::vector<std::string>& arguments) {
    return Parser().parse(arguments);
}

}  // namespace cli
