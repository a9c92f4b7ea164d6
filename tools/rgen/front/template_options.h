// The options of the commands for templates, one row each.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "front/option.h"

namespace cli::options {

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

}  // namespace cli::options
