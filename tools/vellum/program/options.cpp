// One table for the parser and for --help. A test compares --help with the manual page and
// docs/vellum.md.
//
// The parser is written by hand because the argument after an option is always its value: a path
// may begin with "-" and a base may be empty.
//
// SPDX-License-Identifier: MIT
#include "program/options.h"

#include "base/failure.h"

namespace vellum {
namespace {

struct Option {
    const char* name;
    /// Another name for it, or null.
    const char* longName;
    /// The value as --help shows it; null for a flag.
    const char* value;
    const char* meaning;
    std::string Options::*text;
    bool Options::*flag;
};

constexpr Option optionTable[] = {
    {"-i", nullptr, "FILE", "the page", &Options::input, nullptr},
    {"-b", nullptr, "BASE",
     "base of relative links: a URL, or a folder (default: the folder of the page)", &Options::base,
     nullptr},
    {"-t", nullptr, "html", "type of the input; there is no other", &Options::type, nullptr},
    {"-o", nullptr, "FILE", "the PDF", &Options::output, nullptr},
    {"--engine", nullptr, "NAME",
     "use this engine and no other: a name of --list-engines or a path", &Options::engine, nullptr},
    {"--list-engines", nullptr, nullptr, "list the engines in the order in which they are tried",
     nullptr, &Options::listEngines},
    {"--check", nullptr, nullptr, "convert a built-in page and print which engine did it", nullptr,
     &Options::check},
    {"-h", "--help", nullptr, "print this help", nullptr, &Options::help},
    {"--version", nullptr, nullptr, "print the version", nullptr, &Options::version},
};

struct HelpRow {
    const char* name;
    const char* meaning;
};

constexpr HelpRow variables[] = {
    {"VELLUM_ENGINE", "same as --engine, which takes precedence"},
    {"VELLUM_TIMEOUT", "seconds for a conversion (default: 60 and 1 for each 100 kB of the page)"},
    {"VELLUM_MEMORY",
     "MiB for the engine (default: 2048 and 1 for each kB of the page, up to 8192)"},
    {"VELLUM_ON_ERROR", "error report next to the output: text (default), page or none"},
};

constexpr HelpRow exitCodes[] = {
    {"0", "the PDF was written"},
    {"2", "wrong arguments"},
    {"3", "the page cannot be read"},
    {"4", "the output cannot be written"},
    {"5", "the engine failed or wrote no complete PDF"},
    {"6", "the time limit was exceeded"},
    {"7", "no engine was found"},
    {"8", "cancelled"},
    {"9", "the engine exceeded the memory limit"},
};

Failure usageError(const std::string& message) {
    return {ExitCode::Usage, message + "; \"vellum --help\" shows the options"};
}

const Option* findOption(const std::string& argument) {
    for (const Option& option : optionTable) {
        const bool isLongName = option.longName != nullptr && argument == option.longName;
        if (argument == option.name || isLongName) return &option;
    }
    return nullptr;
}

void readArguments(const std::vector<std::string>& arguments, Options& options) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const Option* const option = findOption(argument);
        if (option == nullptr) {
            const bool isOption = argument.size() > 1 && argument[0] == '-';
            throw usageError(isOption ? "there is no option \"" + argument + "\""
                                      : "\"" + argument + "\" is not expected");
        }
        if (option->flag != nullptr) {
            options.*option->flag = true;
        } else {
            if (i + 1 == arguments.size()) throw usageError(argument + " needs a value");
            options.*option->text = arguments[++i];
        }
    }
}

std::string helpLine(const std::string& name, const char* meaning) {
    constexpr std::size_t column = 17;
    return "  " + name + std::string(column - name.size(), ' ') + meaning + "\n";
}

}  // namespace

std::string helpText() {
    std::string text =
        "vellum makes a PDF of an HTML page with a browser or WeasyPrint.\n"
        "\n"
        "Examples:\n"
        "  vellum -i report.html -o report.pdf\n"
        "  vellum -i report.html -b images -t html -o report.pdf\n"
        "  vellum --check\n"
        "\n"
        "Options:\n";
    for (const Option& option : optionTable) {
        std::string name = option.name;
        if (option.longName != nullptr) name += std::string(", ") + option.longName;
        if (option.value != nullptr) name += std::string(" ") + option.value;
        text += helpLine(name, option.meaning);
    }
    text += "\nEnvironment variables:\n";
    for (const HelpRow& row : variables)
        text += helpLine(row.name, row.meaning);
    text += "\nExit codes:\n";
    for (const HelpRow& row : exitCodes)
        text += helpLine(row.name, row.meaning);
    return text;
}

void parseOptions(const std::vector<std::string>& arguments, Options& options) {
    readArguments(arguments, options);
    if (options.help || options.version || options.listEngines || options.check) return;
    if (options.input.empty()) throw usageError("-i is missing");
    if (options.output.empty()) throw usageError("-o is missing");
    if (options.type != "html") {
        throw Failure(ExitCode::Usage,
                      "-t \"" + options.type + "\" is not known; there is html only");
    }
}

}  // namespace vellum
