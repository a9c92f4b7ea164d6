// The rows are in the order in which the help shows them.
//
// SPDX-License-Identifier: MIT
#include "front/command_table.h"

#include <algorithm>

#include "base/text_functions.h"
#include "commands/commands.h"
#include "front/command_examples.h"
#include "front/completion.h"
#include "front/option_table.h"
#include "front/template_options.h"

namespace cli {
namespace {

/// The options that every command takes, then its own.
std::vector<Option> withCommonOptions(const std::vector<Option>& own) {
    std::vector<Option> all = {options::help, options::json, options::quiet};
    all.insert(all.end(), own.begin(), own.end());
    return all;
}

constexpr Operand newValues = {
    "NAME[:HINT]=VALUE",
    "Values",
    Count::OneOrMore,
    options::data.name,
};

std::vector<Command> reportCommands() {
    namespace o = options;
    return {
        {"report",
         "Make a report, or many with --batch",
         "",
         reportExamples,
         withCommonOptions({o::reportOutput, o::format, o::dataDir, o::type, o::set, o::pair,
                            o::data, o::raw, o::timezone, o::lang, o::mode, o::base, o::noConvert,
                            o::showData, o::timing, o::batch}),
         {},
         runReport},
        {"preview",
         "Show a report in the browser, live",
         "Print the address of a page that shows the report, and show each change of a file that "
         "it is "
         "made from at once, until Ctrl-C ends it.",
         previewExamples,
         withCommonOptions(
             {o::dataDir, o::type, o::data, o::raw, o::previewBase, o::open, o::port, o::editor}),
         {},
         runPreview},
    };
}

std::vector<Command> templateCommands() {
    namespace o = options;
    return {
        {"check",
         "Find mistakes in templates",
         "Print each mistake with file, line and column, what is wrong and what to do about it. "
         "Without a template: check all of the data directory. With values: also make the report, "
         "and find what fails or is missing in it. Exit code 3 when there is an error.",
         checkExamples,
         withCommonOptions({o::dataDir, o::type, o::set, o::pair, o::data, o::raw, o::timezone,
                            o::lang, o::strict, o::sarif}),
         {"TEMPLATE|TYPE", "Templates, or report types (default: all)", Count::Any},
         runCheck},
        {"messages",
         "List and translate the texts that templates mark",
         "Print how complete the catalogues of a report type are.",
         messagesExamples,
         withCommonOptions(
             {o::dataDir, o::type, o::messagesOutput, o::merge, o::newLanguage, o::checkMessages}),
         {"TYPE", "Report type (default: the only one)"},
         runMessages},
        {"test",
         "Compare reports with the expected ones",
         "Make the reports of all tests of the report types, compare each with the expected one, "
         "and list what no test reaches. Exit code 3 when a report is not as expected.",
         testExamples,
         withCommonOptions({o::dataDir, o::type, o::accept, o::junit}),
         {"TYPE", "Report types (default: all)", Count::Any},
         runTest},
        {"bundle",
         "Put a template and its parts into one file",
         "Write a template with all files that its `xsl:include` elements name as one file, which "
         "the library can read. Without SOURCE: the templates of the data directory that were "
         "bundled before, from their sources.",
         bundleExamples,
         withCommonOptions({o::dataDir, o::bundleOutput, o::parts, o::checkBundle}),
         {"SOURCE", "Template with xsl:include (default: all bundled ones)"},
         runBundle},
    };
}

std::vector<Command> persistCommands() {
    namespace o = options;
    return {
        {"persist", "Read and change persistent data", "", persistExamples, withCommonOptions({})},
        {"persist get",
         "Print persistent data",
         "Print lines `NAME=TEXT`, sorted; of one NAME its text only.",
         persistGetExamples,
         withCommonOptions({o::dataDir, o::type, o::printRaw}),
         {"NAME", "Names to print (default: all)", Count::Any},
         runPersistGet},
        {"persist set", "Add or change persistent data", "Add or change values.",
         persistSetExamples, withCommonOptions({o::dataDir, o::type, o::data, o::raw, o::timezone}),
         newValues, runPersistSet},
        {"persist unset",
         "Remove persistent data",
         "Remove values. Nothing is changed when one of them does not exist.",
         persistUnsetExamples,
         withCommonOptions({o::dataDir, o::type}),
         {"NAME", "Names to remove", Count::OneOrMore},
         runPersistUnset},
        {"persist replace", "Replace all persistent data",
         "Make the values exactly the given ones.", persistReplaceExamples,
         withCommonOptions({o::dataDir, o::type, o::data, o::raw, o::timezone}), newValues,
         runPersistReplace},
    };
}

std::vector<Command> valuesFileCommands() {
    namespace o = options;
    return {
        {"dump",
         "Write values as a raw input dump",
         "",
         dumpExamples,
         withCommonOptions({o::fileOutput, o::set, o::data, o::raw, o::timezone}),
         {},
         runDump},
        {"simulate",
         "Write values as simulated input",
         "",
         simulateExamples,
         withCommonOptions({o::fileOutput, o::set, o::data, o::raw, o::timezone}),
         {},
         runSimulate},
    };
}

std::vector<Command> dataDirectoryCommands() {
    namespace o = options;
    return {
        {"init",
         "Make a data directory with a sample report type",
         "",
         initExamples,
         withCommonOptions({o::sample}),
         {"DIR", "Folder, made if need be", Count::One},
         runInit},
        {"new",
         "Make a new report type",
         "Add a report type to a data directory, which is made if need be: an entry with a new "
         "GUID "
         "in the configuration, short templates, a data file, and a catalogue for each language. "
         "Then make the first page.",
         newExamples,
         withCommonOptions({o::dataDir, o::title, o::langs, o::formats, o::fromData}),
         {"NAME", "Name of the report type", Count::One},
         runNew},
        {"types",
         "List the report types of a data directory",
         "",
         typesExamples,
         withCommonOptions({o::dataDir}),
         {},
         runTypes},
    };
}

std::vector<Command> otherCommands() {
    namespace o = options;
    return {
        {"explain",
         "Explain a status of the library, or what a template uses",
         "A status by its number or name; without an argument all of them. Of a template: values, "
         "lists, keys, texts to translate and formats of numbers, with the lines that use them.",
         explainExamples,
         withCommonOptions({o::dataDir, o::type, o::templateFormat, o::skeleton}),
         {"STATUS|TEMPLATE", "Number or name of a status, or the file of a template"},
         runExplain},
        {"doctor",
         "Check what reports need",
         "",
         doctorExamples,
         withCommonOptions({o::dataDir}),
         {},
         runDoctor},
        {"completion",
         "Print a shell's completion script",
         "",
         completionExamples,
         withCommonOptions({}),
         {"SHELL", "bash or zsh", Count::One, {}, "bash|zsh"},
         runCompletion},
    };
}

std::vector<Command> makeTable() {
    std::vector<Command> table = {
        {"", "", "", rgenExamples, {options::help, options::version, options::json}},
    };
    for (const std::vector<Command>& group :
         {reportCommands(), templateCommands(), persistCommands(), valuesFileCommands(),
          dataDirectoryCommands(), otherCommands()})
        table.insert(table.end(), group.begin(), group.end());
    return table;
}

}  // namespace

const std::vector<Command>& commandTable() {
    static const std::vector<Command> table = makeTable();
    return table;
}

const Command& findCommand(std::string_view name) {
    const std::vector<Command>& table = commandTable();
    return *std::find_if(table.begin(), table.end(),
                         [name](const Command& command) { return command.name == name; });
}

std::vector<const Command*> commandsInside(const Command& command) {
    std::vector<const Command*> inside;
    for (const Command& each : commandTable()) {
        if (!each.name.empty() && parentName(each) == command.name) inside.push_back(&each);
    }
    return inside;
}

std::string_view parentName(const Command& command) {
    const std::size_t blank = command.name.rfind(' ');
    return blank == std::string_view::npos ? std::string_view() : command.name.substr(0, blank);
}

std::string lastWord(const Command& command) {
    const std::size_t blank = command.name.rfind(' ');
    return std::string(blank == std::string_view::npos ? command.name
                                                       : command.name.substr(blank + 1));
}

std::vector<std::string> choicesOf(std::string_view choices) {
    return split(choices, '|');
}

}  // namespace cli
