// The commands and options, told to CLI11. It parses; what to say about a mistake is decided here,
// so arguments that it does not know are collected first and then looked at.
//
// SPDX-License-Identifier: MIT
#include "front/command_line.h"

#include <CLI/CLI.hpp>
#include <functional>

#include "base/command_error.h"
#include "base/input_file.h"
#include "base/suggestion.h"
#include "front/argument_checks.h"
#include "front/help_text.h"

namespace cli {
namespace {

constexpr std::size_t anyNumber = static_cast<std::size_t>(-1);

std::string wholeName(const CLI::App& app) {
    const CLI::App* const parent = app.get_parent();
    return parent == nullptr || parent->get_parent() == nullptr
               ? app.get_name()
               : wholeName(*parent) + " " + app.get_name();
}

/// "report" or "persist get"; empty for rgen itself.
std::string commandWords(const CLI::App& app) {
    return app.get_parent() == nullptr ? std::string() : wholeName(app);
}

class Syntax {
public:
    Syntax() : app("", "rgen") {
        prepare(app);
        app.add_flag("--version", wantsVersion_, "Print the versions of rgen and of the library");
        app.add_flag("--json", line_.arguments.json, "Print one JSON document");
        // One command and no more: a later word of such a name is an operand.
        app.require_subcommand(0, 1);
        addReport();
        addPersist();
        addFiles();
        addOthers();
    }

    CommandLine parse(const std::vector<std::string>& arguments);

    CLI::App app;

private:
    using Texts = std::vector<std::string>;

    static void prepare(CLI::App& command) {
        command.allow_windows_style_options(false);
        command.allow_extras();
        command.set_help_flag("-h,--help", "Print this help");
        command.get_formatter()->column_width(32);
    }

    CLI::App& add(CLI::App& parent, const std::string& name, const std::string& summary) {
        CLI::App& command = *parent.add_subcommand(name, summary);
        prepare(command);
        command.add_flag("--json", line_.arguments.json, "Print one JSON document");
        command.add_flag("-q,--quiet", line_.arguments.quiet, "No notes, errors only");
        return command;
    }

    static void text(CLI::App& command, const std::string& names, std::string& target,
                     const std::string& type, const std::string& summary) {
        command.add_option(names, target, summary)
            ->type_name(type)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    }

    static void optionalText(CLI::App& command, const std::string& names,
                             std::optional<std::string>& target, const std::string& type,
                             const std::string& summary) {
        command
            .add_option_function<std::string>(
                names, [&target](const std::string& value) { target = value; }, summary)
            ->type_name(type)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    }

    /// Kept as they are: bound to a vector, a value in brackets would be taken apart.
    void texts(CLI::App& command, const std::string& names, Texts& target, const std::string& type,
               const std::string& summary) {
        CLI::Option* const option = command.add_option(names, summary);
        option->type_name(type)->expected(1)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
        collectors_.push_back([option, &target] {
            if (option->count() > 0) target = option->results();
        });
    }

    void operands(CLI::App& command, const std::string& name, std::size_t atMost,
                  const std::string& summary) {
        CLI::Option* const option = command.add_option(name, summary);
        option->type_name("")->allow_extra_args();
        option->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
        collectors_.push_back([this, &command, option, atMost] {
            if (option->count() == 0) return;
            line_.arguments.operands = option->results();
            if (option->count() > atMost) failAtSurplus(command, option->results()[atMost]);
        });
    }

    void addDirectory(CLI::App& command) {
        optionalText(command, "-d,--data-dir", line_.arguments.dataDir, "DIR",
                     "Folder that holds .rgen (default: the current one)");
    }

    void addType(CLI::App& command) {
        optionalText(command, "-t,--type", line_.arguments.type, "GUID|NAME",
                     "Report type: GUID or template name without ending");
    }

    void addValues(CLI::App& command) {
        ValueArguments& values = line_.arguments.values;
        texts(command, "--data", values.data, "FILE",
              "Values from a JSON or simulated input file, - is standard input");
        command.add_flag("--raw", values.raw, "Texts are XML content: do not escape &");
    }

    void addSet(CLI::App& command) {
        texts(command, "--set", line_.arguments.values.set, "NAME[:HINT]=VALUE", "One value");
    }

    void addOutput(CLI::App& command, const std::string& summary) {
        text(command, "-o,--output", line_.arguments.report.output, "FILE", summary);
    }

    void addReport();
    void addPersist();
    void addFiles();
    void addOthers();

    CLI::App& selected(CLI::App& from);
    [[noreturn]] void failAt(const CLI::App& command, const std::string& message,
                             const std::string& hint) const;
    [[noreturn]] void failAtSurplus(const CLI::App& command, const std::string& word) const;
    void checkExtras(CLI::App& command) const;
    void runParser(const std::vector<std::string>& arguments);

    CommandLine line_;
    bool wantsVersion_ = false;
    std::vector<std::function<void()>> collectors_;
};

void Syntax::addReport() {
    CLI::App& command = add(app, "report", "Make a report, or many with --batch");
    ReportArguments& report = line_.arguments.report;
    addOutput(command, "The report; - is standard output");
    text(command, "-f,--format", report.format, "html|pdf|txt",
         "Format (default: the ending of FILE)");
    addDirectory(command);
    addType(command);
    addSet(command);
    texts(command, "--pair", line_.arguments.values.pair, "NAME=TEXT",
          "One name/text pair; a value of its name wins");
    addValues(command);
    text(command, "--lang", report.lang, "LANG|FILE.po", "Translate the template's texts");
    text(command, "--mode", report.mode, "MODE", "What is delivered: file, bytes, delete-on-close");
    text(command, "--base", report.base, "ARG", "Base of relative links for the pdf converter");
    command.add_flag("--no-convert", report.noConvert, "Write a pdf report unconverted");
    command.add_flag("--show-data", line_.arguments.showData,
                     "Show all values and where they come from");
    command.add_flag("--timing", line_.arguments.timing, "Show what each step took");
    text(command, "--batch", line_.arguments.batch, "FILE",
         "One report for each line (JSON), - is standard input");
}

void Syntax::addPersist() {
    CLI::App& persist = add(app, "persist", "Read and change persistent data");
    persist.require_subcommand(0, 1);
    CLI::App& get = add(persist, "get", "Print persistent data");
    CLI::App& set = add(persist, "set", "Add or change persistent data");
    CLI::App& unset = add(persist, "unset", "Remove persistent data");
    CLI::App& replace = add(persist, "replace", "Replace all persistent data");
    for (CLI::App* command : {&get, &set, &unset, &replace}) {
        addDirectory(*command);
        addType(*command);
    }
    get.add_flag("--raw", line_.arguments.values.raw, "Print texts as XML content");
    operands(get, "NAME", anyNumber, "Names to print (default: all)");
    operands(unset, "NAME", anyNumber, "Names to remove");
    for (CLI::App* command : {&set, &replace}) {
        addValues(*command);
        operands(*command, "NAME[:HINT]=VALUE", anyNumber, "Values");
    }
}

void Syntax::addFiles() {
    CLI::App& dump = add(app, "dump", "Write values as a raw input dump");
    CLI::App& simulate = add(app, "simulate", "Write values as simulated input");
    for (CLI::App* command : {&dump, &simulate}) {
        addOutput(*command, "The file; - is standard output");
        addSet(*command);
        addValues(*command);
    }
    CLI::App& init = add(app, "init", "Make a data directory with a sample report type");
    text(init, "--sample", line_.arguments.sample, "NAME", "The sample: acquisition");
    operands(init, "DIR", 1, "Folder, made if need be");
}

void Syntax::addOthers() {
    CLI::App& types = add(app, "types", "List the report types of a data directory");
    addDirectory(types);
    CLI::App& explain = add(app, "explain", "Explain a status of the library");
    operands(explain, "STATUS", 1, "Number or name; all of them without it");
    CLI::App& doctor = add(app, "doctor", "Check what reports need");
    addDirectory(doctor);
    CLI::App& completion = add(app, "completion", "Print a shell's completion script");
    operands(completion, "SHELL", 1, "bash or zsh");
}

/// The command that was named last.
CLI::App& Syntax::selected(CLI::App& from) {
    const std::vector<CLI::App*> chosen = from.get_subcommands();
    return chosen.empty() ? from : selected(*chosen.front());
}

void Syntax::failAt(const CLI::App& command, const std::string& message,
                    const std::string& hint) const {
    throw usageErrorOf(commandWords(command), message, hint);
}

std::string helpOf(const CLI::App& command) {
    const std::string words = commandWords(command);
    const std::size_t blank = words.rfind(' ');
    const std::string before = blank == std::string::npos ? "" : " " + words.substr(0, blank);
    return helpText(words, command.help(words.empty() ? "" : "rgen" + before));
}

std::vector<std::string> commandNames(CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::App* each : command.get_subcommands([](CLI::App*) { return true; }))
        names.push_back(each->get_name());
    return names;
}

std::vector<std::string> optionNames(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
        for (const std::string& name : option->get_snames())
            names.push_back("-" + name);
    }
    return names;
}

void Syntax::failAtSurplus(const CLI::App& command, const std::string& word) const {
    failAt(command, "\"" + word + "\" is not expected",
           helpCommand(commandWords(command)) + " shows what is");
}

void Syntax::checkExtras(CLI::App& command) const {
    const std::vector<std::string> extras = command.remaining();
    if (!extras.empty()) {
        const std::string& first = extras.front();
        if (first.size() > 1 && first[0] == '-') {
            const std::string name = first.substr(0, first.find('='));
            const bool isShort = name.size() == 2;
            failAt(command, "there is no option \"" + name + "\"",
                   didYouMean(name, isShort ? std::vector<std::string>() : optionNames(command),
                              helpCommand(commandWords(command)) + " lists the options"));
        }
        const std::vector<std::string> names = commandNames(command);
        if (!names.empty()) {
            failAt(command, "there is no command \"" + first + "\"",
                   didYouMean(first, names,
                              helpCommand(commandWords(command)) + " lists the commands"));
        }
        failAtSurplus(command, first);
    }
    for (CLI::App* chosen : command.get_subcommands())
        checkExtras(*chosen);
}

/// CLI11's own complaints, in rgen's words.
void Syntax::runParser(const std::vector<std::string>& arguments) {
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    try {
        app.parse(reversed);
    } catch (const CLI::CallForHelp&) {
        line_.help = helpOf(selected(app));
    } catch (const CLI::ArgumentMismatch& error) {
        CLI::App& command = selected(app);
        const std::string text = error.what();
        const std::string option = text.substr(0, text.find(':'));
        failAt(command, option + " needs a value",
               helpCommand(commandWords(command)) + " shows examples");
    } catch (const CLI::ParseError& error) {
        CLI::App& command = selected(app);
        failAt(command, error.what(), helpCommand(commandWords(command)) + " shows examples");
    }
}

CommandLine Syntax::parse(const std::vector<std::string>& arguments) {
    if (arguments.empty()) line_.help = helpOf(app);
    for (const std::string& argument : arguments) {
        if (isPlainUtf8(argument)) continue;
        throw usageError("an argument is not valid UTF-8", "write it in UTF-8");
    }
    runParser(arguments);
    if (!line_.help.empty()) return line_;
    for (const auto& collect : collectors_)
        collect();
    checkExtras(app);
    line_.wantsVersion = wantsVersion_;
    if (wantsVersion_) return line_;
    CLI::App& command = selected(app);
    if (!commandNames(command).empty()) {
        failAt(command, "a command is missing",
               helpCommand(commandWords(command)) + " shows examples");
    }
    line_.arguments.command = commandWords(command);
    checkArguments(line_.arguments);
    return line_;
}

CommandOutline outlineOf(CLI::App& app) {
    CommandOutline outline{app.get_name(), app.get_description(), {}, {}, {}};
    for (const CLI::Option* option : app.get_options()) {
        if (option->get_positional()) {
            outline.operands = choicesOf(option->get_name());
            continue;
        }
        OptionOutline one;
        for (const std::string& name : option->get_snames())
            one.names.push_back("-" + name);
        for (const std::string& name : option->get_lnames())
            one.names.push_back("--" + name);
        one.summary = option->get_description();
        one.takesValue = option->get_items_expected_max() > 0;
        one.choices = choicesOf(one.names.back());
        outline.options.push_back(std::move(one));
    }
    for (CLI::App* command : app.get_subcommands([](CLI::App*) { return true; }))
        outline.commands.push_back(outlineOf(*command));
    return outline;
}

}  // namespace

CommandLine parseCommandLine(const std::vector<std::string>& arguments) {
    return Syntax().parse(arguments);
}

CommandOutline commandOutline() {
    Syntax syntax;
    return outlineOf(syntax.app);
}

}  // namespace cli
