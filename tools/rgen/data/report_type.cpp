// rgen reads the files of a data directory itself; the library reads them again for each report.
//
// SPDX-License-Identifier: MIT
#include "data/report_type.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include "base/arguments.h"
#include "base/command_error.h"
#include "base/file_set.h"
#include "base/paths.h"
#include "base/suggestion.h"
#include "base/text_functions.h"
#include "data/config_check.h"
#include "data/xml_documents.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

bool isFolder(const std::string& path) {
    std::error_code ignored;
    return fs::is_directory(fs::u8path(path), ignored);
}

ReportType typeOf(const ConfiguredType& configured) {
    ReportType type;
    type.guid = strata::repgen::Guid(configured.guid);
    type.guidText = configured.guid;
    type.templateFile = configured.reportTypeFile;
    type.persistDataFile = configured.persistDataFile;
    type.name = fs::u8path(configured.reportTypeFile).stem().u8string();
    return type;
}

std::vector<std::string> namesOf(const std::vector<ReportType>& types) {
    std::vector<std::string> names;
    names.reserve(types.size());
    for (const ReportType& type : types)
        names.push_back(type.name);
    return names;
}

ReportType typeWithGuid(const DataDirectory& directory, const strata::repgen::Guid& guid) {
    try {
        for (const ReportType& type : reportTypes(directory)) {
            if (type.guid == guid) return type;
        }
    } catch (const CommandError&) {
        // The library reports what is wrong with the configuration.
    }
    ReportType unknown;
    unknown.guidText = guid.text();
    unknown.guid = guid;
    return unknown;
}

ReportType onlyType(const DataDirectory& directory, const std::vector<ReportType>& types) {
    if (types.size() == 1) return types.front();
    const std::string config = "\"" + directory.configPath() + "\"";
    if (types.empty()) {
        throw CommandError(ExitCode::Environment, config + " has no usable report type",
                           firstMistake(directory.configPath()));
    }
    throw usageError(config + " has " + std::to_string(types.size()) + " report types",
                     "choose one with --type: " + joined(namesOf(types)));
}

ReportType typeNamed(const DataDirectory& directory, const std::vector<ReportType>& types,
                     const std::string& name) {
    std::vector<ReportType> found;
    std::copy_if(types.begin(), types.end(), std::back_inserter(found),
                 [&name](const ReportType& type) { return type.name == name; });
    if (found.size() == 1) return found.front();
    const std::string config = "\"" + directory.configPath() + "\"";
    if (found.empty()) {
        const std::string mistake = firstMistake(directory.configPath());
        throw usageError("there is no report type \"" + name + "\" in " + config,
                         didYouMean(name, namesOf(types),
                                    mistake.empty() ? "\"rgen types\" lists them" : mistake));
    }
    std::vector<std::string> candidates;
    candidates.reserve(found.size());
    for (const ReportType& type : found)
        candidates.push_back(type.templateFile + " (" + type.guidText + ")");
    throw usageError("\"" + name + "\" names " + std::to_string(found.size()) +
                         " report types in " + config + ": " + joined(candidates),
                     "give the GUID");
}

}  // namespace

std::string DataDirectory::path(const std::string& inside) const {
    return joinedPath(folder, ".rgen/" + inside);
}

DataDirectory namedDataDirectory(const std::optional<std::string>& given) {
    std::string folder = given.value_or("");
    if (folder.empty()) folder = ".";
    const auto isSeparator = [](char letter) {
        return letter == '/' || letter == fs::path::preferred_separator;
    };
    // The root of a drive keeps its separator.
    while (isSeparator(folder.back()) && fs::u8path(folder).has_relative_path())
        folder.pop_back();
    if (fs::u8path(folder).filename() == ".rgen") folder = folderOf(folder);
    return {folder};
}

DataDirectory openDataDirectory(const std::optional<std::string>& given) {
    DataDirectory directory = namedDataDirectory(given);
    const std::string& folder = directory.folder;
    const std::string advice = "rgen init \"" + folder + "\"";
    requireAccess(folder);
    if (!exists(folder)) {
        throw CommandError(ExitCode::Environment, "the folder \"" + folder + "\" does not exist",
                           "make it with: " + advice);
    }
    if (!isFolder(folder)) {
        throw CommandError(ExitCode::Environment, "\"" + folder + "\" is not a folder",
                           "name the folder that holds .rgen with --data-dir");
    }
    requireAccess(directory.configPath());
    if (!exists(directory.configPath())) {
        throw CommandError(ExitCode::Environment,
                           "there is no data directory in \"" + folder + "\" (\"" +
                               directory.configPath() + "\" is missing)",
                           "make one with: " + advice);
    }
    requireReadable(directory.configPath());
    return directory;
}

std::vector<ReportType> reportTypes(const DataDirectory& directory) {
    std::vector<ReportType> types;
    for (const ConfiguredType& configured : readConfiguration(directory.configPath()))
        types.push_back(typeOf(configured));
    std::stable_sort(
        types.begin(), types.end(),
        [](const ReportType& one, const ReportType& other) { return one.name < other.name; });
    return types;
}

ReportType findReportType(const DataDirectory& directory,
                          const std::optional<std::string>& wanted) {
    const auto guid = strata::repgen::Guid::parse(wanted.value_or(""));
    if (guid) return typeWithGuid(directory, *guid);
    const std::vector<ReportType> types = reportTypes(directory);
    return wanted ? typeNamed(directory, types, *wanted) : onlyType(directory, types);
}

std::string templatePath(const DataDirectory& directory, const ReportType& type,
                         const std::string& format) {
    return directory.path("templates/" + format + "/" + type.templateFile);
}

const std::vector<std::string>& outputFormats() {
    static const std::vector<std::string> formats = split(outputFormatChoices, '|');
    return formats;
}

std::string cataloguePath(const DataDirectory& directory, const ReportType& type,
                          const std::string& language) {
    for (const std::string& name : {type.name + "-" + language, language}) {
        std::string path = directory.path("translations/" + name + ".po");
        if (exists(path)) return path;
    }
    return {};
}

std::string ownCataloguePath(const DataDirectory& directory, const ReportType& type,
                             const std::string& language) {
    return directory.path("translations/" + type.name + "-" + language + ".po");
}

bool looksLikeLanguage(const std::string& text) {
    const std::size_t end = std::min(text.find_first_of("-_@"), text.size());
    const auto isLetter = [](char letter) { return letter >= 'a' && letter <= 'z'; };
    return (end == 2 || end == 3) &&
           std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end), isLetter);
}

std::vector<std::string> catalogueLanguages(const DataDirectory& directory,
                                            const ReportType& type) {
    std::set<std::string> languages;
    std::error_code failure;
    const std::string ownStart = type.name + "-";
    for (const auto& entry :
         fs::directory_iterator(fs::u8path(directory.path("translations")), failure)) {
        if (entry.path().extension() != ".po") continue;
        std::string stem = entry.path().stem().u8string();
        if (stem.compare(0, ownStart.size(), ownStart) == 0) stem.erase(0, ownStart.size());
        if (looksLikeLanguage(stem)) languages.insert(stem);
    }
    return {languages.begin(), languages.end()};
}

bool namesCatalogueFile(const std::string& lang) {
    const fs::path path = fs::u8path(lang);
    return path.extension() == ".po" || path.has_parent_path();
}

std::string chosenCatalogue(const DataDirectory& directory, const ReportType& type,
                            const std::string& lang) {
    if (lang.empty() || namesCatalogueFile(lang)) return lang;
    std::string path = cataloguePath(directory, type, lang);
    if (!path.empty()) return path;
    const std::string languages = joined(catalogueLanguages(directory, type));
    throw usageError(
        "there is no catalogue for \"" + lang + "\" in \"" + directory.path("translations") + "\"",
        languages.empty() ? "give a .po file" : "there is: " + languages);
}

void addDataDirectoryFiles(const DataDirectory& directory, FileSet& files) {
    files.add(directory.configPath());
    for (const char* const folder : {"templates", "translations"}) {
        std::error_code failure;
        const fs::path place = fs::u8path(directory.path(folder));
        for (fs::recursive_directory_iterator entry(place, failure), end; !failure && entry != end;
             entry.increment(failure)) {
            std::error_code ignored;
            if (entry->is_regular_file(ignored)) files.add(entry->path().u8string());
        }
    }
    try {
        for (const ReportType& type : reportTypes(directory))
            files.add(directory.path(type.persistDataFile));
    } catch (const CommandError&) {
        // The command itself reports what is wrong with the configuration.
    }
}

}  // namespace cli
