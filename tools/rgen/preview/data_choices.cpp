// SPDX-License-Identifier: MIT
#include "preview/data_choices.h"

#include <filesystem>

#include "base/command_error.h"
#include "base/paths.h"
#include "base/text_functions.h"
#include "data/data_file.h"
#include "library/library_calls.h"
#include "preview/hostile_values.h"

namespace cli {
namespace {

/// The data file that "rgen init" and "rgen new" put next to the data directory.
std::string sampleFile(const PreviewSettings& settings, const ReportType& type) {
    return joinedPath(settings.directory.folder, type.name + ".json");
}

std::string fileName(const std::string& path) {
    return std::filesystem::u8path(path).filename().u8string();
}

bool hasSample(const PreviewSettings& settings, const ReportType& type) {
    return exists(sampleFile(settings, type));
}

ValueArguments sampleArguments(const PreviewSettings& settings, const ReportType& type) {
    ValueArguments arguments = settings.values;
    arguments.data = {sampleFile(settings, type)};
    return arguments;
}

/// The library refuses a report without any value.
ReportInput emptyInput() {
    ReportInput input;
    input.pairs.replace({"Preview.Empty", repgen::Text(""), "preview"});
    return input;
}

/// Hostile values replace persistent ones as well: a pair of the same name takes precedence.
ReportInput hostileInput(const PreviewSettings& settings, const ReportType& type,
                         const repgen::Generator& generator, Console& console) {
    ReportInput input;
    RgenStatus status = RGEN_OK;
    for (Value& value : persistentValues(generator, type.guid, status))
        input.pairs.replace(std::move(value));
    const bool isGiven = !settings.values.data.empty();
    const ReportInput sample = collectInput(
        isGiven ? settings.values : sampleArguments(settings, type), generator, console);
    input.values = sample.values;
    return withHostileValues(input);
}

}  // namespace

std::vector<DataChoice> dataChoices(const PreviewSettings& settings, const ReportType& type) {
    std::vector<DataChoice> choices;
    std::vector<std::string> names;
    for (const std::string& path : settings.values.data)
        names.push_back(fileName(path));
    if (!names.empty()) choices.push_back({"given", joined(names)});
    if (hasSample(settings, type)) choices.push_back({"sample", "sample"});
    choices.push_back({"missing", "all values missing"});
    if (choices.size() > 1) choices.push_back({"hostile", "hostile values"});
    return choices;
}

ReportInput chosenInput(const PreviewSettings& settings, const ReportType& type,
                        const std::string& choice, const repgen::Generator& generator,
                        Console& console) {
    if (choice == "given") return collectInput(settings.values, generator, console);
    if (choice == "sample") {
        return collectInput(sampleArguments(settings, type), generator, console);
    }
    if (choice == "hostile") return hostileInput(settings, type, generator, console);
    return emptyInput();
}

bool showsPersistentData(const std::string& choice) {
    return choice != "missing";
}

std::vector<std::string> dataFiles(const PreviewSettings& settings, const ReportType& type) {
    std::vector<std::string> files = settings.values.data;
    files.push_back(sampleFile(settings, type));
    for (std::size_t i = 0, count = files.size(); i < count; ++i) {
        if (!exists(files[i])) continue;
        for (std::string& named : filesNamedIn(files[i]))
            files.push_back(std::move(named));
    }
    return files;
}

}  // namespace cli
