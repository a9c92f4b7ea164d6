// The options of rgen, one row each. A command of command_table.cpp names the ones that it takes.
// Those of the commands for templates are in template_options.h.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "front/option.h"

namespace cli::options {

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

inline constexpr Option sample = {
    "",
    "--sample",
    "NAME",
    "The sample: acquisition",
    "The sample; there is `acquisition`.",
    [](Arguments& to) -> std::string& { return to.sample; },
    "acquisition",
};

}  // namespace cli::options
