// rgen types: lists the report types of a data directory.
//
// SPDX-License-Identifier: MIT
#include <filesystem>

#include "base/text_functions.h"
#include "commands/commands.h"
#include "data/config_check.h"
#include "data/report_type.h"

namespace cli {
namespace {

std::vector<std::string> formatsOf(const DataDirectory& directory, const ReportType& type) {
    std::vector<std::string> formats;
    for (const std::string& format : outputFormats()) {
        std::error_code ignored;
        const std::string path = templatePath(directory, type, format);
        if (std::filesystem::is_regular_file(std::filesystem::u8path(path), ignored)) {
            formats.push_back(format);
        }
    }
    return formats;
}

std::string column(const std::vector<std::string>& words) {
    return words.empty() ? "-" : joined(words, " ");
}

}  // namespace

ExitCode runTypes(const Arguments& arguments, Console& console, JsonDocument& document) {
    const DataDirectory directory = openDataDirectory(arguments.dataDir);
    std::vector<JsonDocument> rows;
    std::string lines;
    for (const ReportType& type : reportTypes(directory)) {
        const std::vector<std::string> formats = formatsOf(directory, type);
        const std::vector<std::string> languages = catalogueLanguages(directory, type);
        JsonDocument row;
        row.set("name", type.name);
        row.set("guid", type.guidText);
        row.set("template", type.templateFile);
        row.set("persistentData", type.persistDataFile);
        row.set("formats", formats);
        row.set("languages", languages);
        rows.push_back(std::move(row));
        lines += inOneLine(type.name) + "\t" + type.guidText + "\t" + column(formats) + "\t" +
                 inOneLine(column(languages)) + "\n";
    }
    document.set("dataDir", directory.path(""));
    document.set("types", rows);
    const std::vector<ConfigMistake> mistakes = configurationMistakes(directory.configPath());
    for (const ConfigMistake& mistake : mistakes)
        console.note(mistake.text + "; " + mistake.advice);
    if (lines.empty() && mistakes.empty()) {
        console.note("\"" + directory.configPath() + "\" has no usable report type");
    }
    document.set("notes", console.notes());
    if (!arguments.json) printData(lines);
    return ExitCode::Done;
}

}  // namespace cli
