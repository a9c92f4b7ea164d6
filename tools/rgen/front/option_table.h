// The options of rgen, one row each. A command of command_table.cpp names the ones that it takes.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/arguments.h"

namespace cli {

/// Where an option is stored. The type says what it takes: nothing, one text (the last one counts)
/// or any number of texts.
using OptionTarget = std::variant<bool& (*)(Arguments&), std::string& (*)(Arguments&),
                                  std::optional<std::string>& (*)(Arguments&),
                                  std::vector<std::string>& (*)(Arguments&)>;

enum class Need { Optional, Required };

/// What shells offer as the value of an option without choices.
enum class Completion { FileNames, ReportTypes };

struct Option {
    /// "-o"; may be empty.
    std::string_view shortName;
    /// "--output".
    std::string_view name;
    /// "FILE"; empty for a flag.
    std::string_view argument;
    /// One line for --help and the completion scripts.
    std::string_view summary;
    /// Sentences for the manual page and docs/rgen.md; `code` is in back quotes.
    std::string_view details;
    OptionTarget target;
    /// The possible values, separated by "|"; empty for any text.
    std::string_view choices = {};
    /// The option `unless` makes a required one optional.
    Need need = Need::Optional;
    std::string_view unless = {};
    Completion completion = Completion::FileNames;
};

namespace options {

inline constexpr Option help = {
    "-h",
    "--help",
    "",
    "Print this help",
    "Print help with examples; with `--json` the commands and options as a document.",
    [](Arguments& to) -> bool& { return to.help; },
};

inline constexpr Option version = {
    "",
    "--version",
    "",
    "Print the versions of rgen and of the library",
    "Without a command: print the version of `rgen`, then the versions and the paths of the loaded "
    "libraries.",
    [](Arguments& to) -> bool& { return to.version; },
};

inline constexpr Option json = {
    "",
    "--json",
    "",
    "Print one JSON document",
    "Print one JSON document on standard output instead of text, also when the command fails. Not "
    "together with `-o -`.",
    [](Arguments& to) -> bool& { return to.json; },
};

inline constexpr Option quiet = {
    "-q",
    "--quiet",
    "",
    "No notes, errors only",
    "With a command: print no notes and no progress, errors only.",
    [](Arguments& to) -> bool& { return to.quiet; },
};

inline constexpr Option dataDir = {
    "-d",
    "--data-dir",
    "DIR",
    "Folder that holds .rgen (default: the current one)",
    "The folder that holds `.rgen`; `DIR/.rgen` is accepted as well. Default: the current folder.",
    [](Arguments& to) -> std::optional<std::string>& { return to.dataDir; },
};

inline constexpr Option type = {
    "-t",
    "--type",
    "GUID|NAME",
    "Report type: GUID or template name without ending",
    "The report type: its GUID, or the file name of its template without the ending. May be left "
    "out when there is only one.",
    [](Arguments& to) -> std::optional<std::string>& { return to.type; },
    {},
    Need::Optional,
    {},
    Completion::ReportTypes,
};

inline constexpr Option set = {
    "",
    "--set",
    "NAME[:HINT]=VALUE",
    "One value",
    "One value; may be given any number of times.",
    [](Arguments& to) -> std::vector<std::string>& { return to.values.set; },
};

inline constexpr Option pair = {
    "",
    "--pair",
    "NAME=TEXT",
    "One name/text pair; a value of its name wins",
    "One pair of name and text; may be given any number of times. A value of the same name takes "
    "precedence.",
    [](Arguments& to) -> std::vector<std::string>& { return to.values.pair; },
};

inline constexpr Option data = {
    "",
    "--data",
    "FILE",
    "Values from a JSON or simulated input file, - is standard input",
    "Values from a file: JSON, or simulated input (XML). May be given any number of times; `-` "
    "reads "
    "JSON from standard input.",
    [](Arguments& to) -> std::vector<std::string>& { return to.values.data; },
};

inline constexpr Option raw = {
    "",
    "--raw",
    "",
    "Texts are XML content: do not escape &",
    "Pass texts to the library as XML content: \"&\" is not escaped.",
    [](Arguments& to) -> bool& { return to.values.raw; },
};

inline constexpr Option timezone = {
    "",
    "--timezone",
    "ZONE",
    "Time zone of the report: UTC, +01:00, Europe/Berlin",
    "The time zone in which times are shown, and read where they have none; only for this run. "
    "`UTC`, an offset such as `+01:00`, or on Linux a name such as `Europe/Berlin`. Default: `TZ`, "
    "or the zone of the system.",
    [](Arguments& to) -> std::string& { return to.timezone; },
};

inline constexpr Option printRaw = {
    "",
    "--raw",
    "",
    "Print texts as XML content",
    "Print texts as XML content.",
    [](Arguments& to) -> bool& { return to.values.raw; },
};

inline constexpr Option reportOutput = {
    "-o",
    "--output",
    "FILE",
    "The report; - is standard output",
    "The report; `-` is standard output (mode `bytes`; a converted pdf goes through a temporary "
    "file).",
    [](Arguments& to) -> std::string& { return to.report.output; },
    {},
    Need::Required,
    "--batch",
};

inline constexpr Option fileOutput = {
    "-o",
    "--output",
    "FILE",
    "The file; - is standard output",
    "The file to write; `-` is standard output.",
    [](Arguments& to) -> std::string& { return to.report.output; },
    {},
    Need::Required,
};

inline constexpr Option format = {
    "-f",
    "--format",
    outputFormatChoices,
    "Format (default: the ending of FILE)",
    "The format. Default: the ending of FILE.",
    [](Arguments& to) -> std::string& { return to.report.format; },
    outputFormatChoices,
};

inline constexpr Option lang = {
    "",
    "--lang",
    "LANG|FILE.po",
    "Translate the template's texts",
    "Translate the texts that the template marks: a language that has a catalogue in the data "
    "directory, or a catalogue file.",
    [](Arguments& to) -> std::string& { return to.report.lang; },
};

inline constexpr Option mode = {
    "",
    "--mode",
    "MODE",
    "What is delivered: file, bytes, delete-on-close",
    "What is delivered. `file`: a whole file or none (default). `bytes`: the bytes, also into a "
    "pipe "
    "or device. `delete-on-close`: a file of the library that is removed when it is closed. Only "
    "`file` converts to pdf.",
    [](Arguments& to) -> std::string& { return to.report.mode; },
    "file|bytes|delete-on-close",
};

inline constexpr Option base = {
    "",
    "--base",
    "ARG",
    "Base of relative links for the pdf converter",
    "Passed to the pdf converter as the base of relative links. Default: the folder of the output "
    "file.",
    [](Arguments& to) -> std::string& { return to.report.base; },
};

inline constexpr Option noConvert = {
    "",
    "--no-convert",
    "",
    "Write a pdf report unconverted",
    "Write a pdf report as the template made it, without the converter.",
    [](Arguments& to) -> bool& { return to.report.noConvert; },
};

inline constexpr Option showData = {
    "",
    "--show-data",
    "",
    "Show all values and where they come from",
    "Print a table of all values: name, source of the value that is used, hint, text in the "
    "report. "
    "It goes to standard output, with `-o -` to standard error, also when the report then fails.",
    [](Arguments& to) -> bool& { return to.showData; },
};

inline constexpr Option timing = {
    "",
    "--timing",
    "",
    "Show what each step took",
    "Print on standard error how long each step took.",
    [](Arguments& to) -> bool& { return to.timing; },
};

inline constexpr Option batch = {
    "",
    "--batch",
    "FILE",
    "One report for each line (JSON), - is standard input",
    "Make many reports, one for each line of FILE (JSON); `-` is standard input.",
    [](Arguments& to) -> std::string& { return to.batch; },
};

inline constexpr Option previewBase = {
    "",
    "--base",
    "FOLDER",
    "Folder of relative links in the report",
    "The folder of relative links in the report. Default: the folder that holds `.rgen`.",
    [](Arguments& to) -> std::string& { return to.report.base; },
};

inline constexpr Option open = {
    "",
    "--open",
    "",
    "Open the browser",
    "Open the address in the browser.",
    [](Arguments& to) -> bool& { return to.preview.open; },
};

inline constexpr Option port = {
    "",
    "--port",
    "N",
    "Port of 127.0.0.1 (default: any free one)",
    "The port of 127.0.0.1. Default: any free one.",
    [](Arguments& to) -> std::string& { return to.preview.port; },
};

inline constexpr Option editor = {
    "",
    "--editor",
    "CMD",
    "Open a clicked place: 'code -g {file}:{line}'",
    "The command that opens the template at the place of an element that is clicked, without a "
    "shell: "
    "`{file}`, `{line}` and `{column}` are replaced.",
    [](Arguments& to) -> std::string& { return to.preview.editor; },
};

inline constexpr Option sample = {
    "",
    "--sample",
    "NAME",
    "The sample: acquisition",
    "The sample; there is `acquisition`.",
    [](Arguments& to) -> std::string& { return to.sample; },
    "acquisition",
};

inline constexpr Option templateFormat = {
    "-f",
    "--format",
    outputFormatChoices,
    "Only the template of this format",
    "Of the report type's templates only that of this format.",
    [](Arguments& to) -> std::string& { return to.report.format; },
    outputFormatChoices,
};

inline constexpr Option skeleton = {
    "",
    "--skeleton",
    "FILE",
    "Write a data file with every value, - is standard output",
    "Write a new JSON data file with a value for each name that the template asks for, and two "
    "entries for each list; `-` is standard output. The hints are guessed from how the template "
    "uses the values.",
    [](Arguments& to) -> std::string& { return to.skeleton; },
};

inline constexpr Option strict = {
    "",
    "--strict",
    "",
    "Warnings count as errors",
    "End with exit code 3 for warnings as well.",
    [](Arguments& to) -> bool& { return to.check.strict; },
};

inline constexpr Option sarif = {
    "",
    "--sarif",
    "FILE",
    "Write the findings for other tools, - is standard output",
    "Write the findings in the Static Analysis Results Interchange Format (SARIF 2.1.0), which "
    "code "
    "hosts and editors read; `-` is standard output.",
    [](Arguments& to) -> std::string& { return to.check.sarif; },
};

inline constexpr Option title = {
    "",
    "--title",
    "TEXT",
    "Title of the reports (default: from NAME)",
    "The title of the reports. Default: the name as words.",
    [](Arguments& to) -> std::string& { return to.newType.title; },
};

inline constexpr Option langs = {
    "",
    "--langs",
    "LANG,LANG",
    "Languages to make catalogues for",
    "The languages for which catalogues with all texts are made, separated by commas.",
    [](Arguments& to) -> std::string& { return to.newType.languages; },
};

inline constexpr Option formats = {
    "",
    "--formats",
    "FORMAT,FORMAT",
    "Formats to make templates for (default: html,pdf,txt)",
    "The formats for which templates are made, separated by commas. Default: `html,pdf,txt`.",
    [](Arguments& to) -> std::string& { return to.newType.formats; },
};

inline constexpr Option fromData = {
    "",
    "--from-data",
    "FILE",
    "JSON data file whose values and lists the templates show",
    "A JSON data file. The templates show every value and every list of it.",
    [](Arguments& to) -> std::string& { return to.newType.fromData; },
};

inline constexpr Option messagesOutput = {
    "-o",
    "--output",
    "FILE.pot",
    "Write the texts as a template of catalogues, - is standard output",
    "Write the texts with their places as a template of catalogues (POT); `-` is standard output.",
    [](Arguments& to) -> std::string& { return to.report.output; },
};

inline constexpr Option merge = {
    "",
    "--merge",
    "",
    "Bring the catalogues up to date",
    "Bring the catalogues up to date: new texts are added, translations of similar texts become "
    "fuzzy ones, translations that nothing uses become comments.",
    [](Arguments& to) -> bool& { return to.messages.merge; },
};

inline constexpr Option newLanguage = {
    "",
    "--lang",
    "LANG",
    "With --merge: begin a catalogue for this language",
    "With `--merge`: begin a catalogue for this language if it has none.",
    [](Arguments& to) -> std::string& { return to.messages.language; },
};

inline constexpr Option checkMessages = {
    "",
    "--check",
    "",
    "Exit code 3 when a language is incomplete",
    "End with exit code 3 when a language lacks a translation or has a fuzzy one, and name these "
    "texts.",
    [](Arguments& to) -> bool& { return to.messages.check; },
};

inline constexpr Option accept = {
    "",
    "--accept",
    "",
    "Take over the reports of this run as the expected ones",
    "Write the reports of this run as the expected ones; look at the differences first.",
    [](Arguments& to) -> bool& { return to.test.accept; },
};

inline constexpr Option junit = {
    "",
    "--junit",
    "FILE",
    "Write the results for other tools, - is standard output",
    "Write the results in the XML format of JUnit, which continuous integration services read; `-` "
    "is standard output.",
    [](Arguments& to) -> std::string& { return to.test.junit; },
};

inline constexpr Option bundleOutput = {
    "-o",
    "--output",
    "FILE",
    "The bundled template, - is standard output",
    "The template of the data directory to write; `-` is standard output.",
    [](Arguments& to) -> std::string& { return to.report.output; },
};

inline constexpr Option parts = {
    "",
    "--parts",
    "DIR",
    "Another folder with parts",
    "A folder in which parts are looked for that are not next to the file that includes them; may "
    "be given any number of times.",
    [](Arguments& to) -> std::vector<std::string>& { return to.bundle.parts; },
};

inline constexpr Option checkBundle = {
    "",
    "--check",
    "",
    "Write nothing; exit code 3 for an outdated file",
    "Write nothing, and end with exit code 3 when the bundled file is not what its sources make, "
    "or was edited by hand.",
    [](Arguments& to) -> bool& { return to.bundle.check; },
};

}  // namespace options

}  // namespace cli
