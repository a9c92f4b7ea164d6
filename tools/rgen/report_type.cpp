// What rgen knows of a data directory is what its files say; the library reads them anew for each
// report.
//
// SPDX-License-Identifier: MIT
#include "report_type.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>

#include "command_error.h"
#include "input_file.h"
#include "suggestion.h"
#include "xml_documents.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

bool exists(const std::string& path) {
    std::error_code ignored;
    return fs::exists(fs::u8path(path), ignored);
}

bool isFolder(const std::string& path) {
    std::error_code ignored;
    return fs::is_directory(fs::u8path(path), ignored);
}

/// "5A0C6F1E-..." with or without braces; empty when it is no GUID.
std::string guidTextOf(std::string text) {
    if (text.size() == 38 && text.front() == '{' && text.back() == '}') text = text.substr(1, 36);
    constexpr const char* shape = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    if (text.size() != 36) return {};
    for (std::size_t i = 0; i < text.size(); ++i) {
        char& letter = text[i];
        if (letter >= 'A' && letter <= 'F') letter = static_cast<char>(letter - 'A' + 'a');
        const bool isHex = (letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'f');
        if (shape[i] == '-' ? letter != '-' : !isHex) return {};
    }
    return text;
}

RgenGuid guidOf(const std::string& text) {
    const auto part = [&text](std::size_t at, std::size_t digits) {
        return std::strtoul(text.substr(at, digits).c_str(), nullptr, 16);
    };
    RgenGuid guid = {};
    guid.data1 = static_cast<std::uint32_t>(part(0, 8));
    guid.data2 = static_cast<std::uint16_t>(part(9, 4));
    guid.data3 = static_cast<std::uint16_t>(part(14, 4));
    constexpr std::size_t places[] = {19, 21, 24, 26, 28, 30, 32, 34};
    for (std::size_t i = 0; i < std::size(places); ++i)
        guid.data4[i] = static_cast<std::uint8_t>(part(places[i], 2));
    return guid;
}

ReportType typeOf(const ConfiguredType& configured) {
    ReportType type;
    type.guid = guidOf(configured.guid);
    type.guidText = configured.guid;
    type.templateFile = configured.reportTypeFile;
    type.persistDataFile = configured.persistDataFile;
    type.name = fs::u8path(configured.reportTypeFile).stem().u8string();
    return type;
}

std::vector<std::string> namesOf(const std::vector<ReportType>& types) {
    std::vector<std::string> names;
    for (const ReportType& type : types)
        names.push_back(type.name);
    return names;
}

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : ", ") + word;
    return text;
}

ReportType typeWithGuid(const DataDirectory& directory, const std::string& guidText) {
    try {
        for (const ReportType& type : reportTypes(directory)) {
            if (type.guidText == guidText) return type;
        }
    } catch (const CommandError&) {
        // The library says what is wrong with the configuration.
    }
    ReportType unknown;
    unknown.guidText = guidText;
    unknown.guid = guidOf(guidText);
    return unknown;
}

ReportType onlyType(const DataDirectory& directory, const std::vector<ReportType>& types) {
    if (types.size() == 1) return types.front();
    const std::string config = "\"" + directory.configPath() + "\"";
    if (types.empty()) {
        throw CommandError(ExitCode::Environment, config + " has no usable report type",
                           "\"rgen doctor\" looks at it");
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
        throw usageError("there is no report type \"" + name + "\" in " + config,
                         didYouMean(name, namesOf(types), "\"rgen types\" lists them"));
    }
    std::vector<std::string> candidates;
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
    std::string folder = given.value_or(".");
    const auto isSeparator = [](char letter) {
        return letter == '/' || letter == fs::path::preferred_separator;
    };
    while (folder.size() > 1 && isSeparator(folder.back()))
        folder.pop_back();
    if (fs::u8path(folder).filename() == ".rgen") folder = folderOf(folder);
    return {folder};
}

DataDirectory openDataDirectory(const std::optional<std::string>& given) {
    DataDirectory directory = namedDataDirectory(given);
    const std::string& folder = directory.folder;
    const std::string advice = "rgen init \"" + folder + "\"";
    if (!exists(folder)) {
        throw CommandError(ExitCode::Environment, "the folder \"" + folder + "\" does not exist",
                           "make it with: " + advice);
    }
    if (!isFolder(folder)) {
        throw CommandError(ExitCode::Environment, "\"" + folder + "\" is not a folder",
                           "name the folder that holds .rgen with --data-dir");
    }
    if (!exists(directory.configPath())) {
        throw CommandError(ExitCode::Environment,
                           "there is no data directory in \"" + folder + "\" (\"" +
                               directory.configPath() + "\" is missing)",
                           "make one with: " + advice);
    }
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
    const std::string guidText = guidTextOf(wanted.value_or(""));
    if (!guidText.empty()) return typeWithGuid(directory, guidText);
    const std::vector<ReportType> types = reportTypes(directory);
    return wanted ? typeNamed(directory, types, *wanted) : onlyType(directory, types);
}

std::string templatePath(const DataDirectory& directory, const ReportType& type,
                         const std::string& format) {
    return directory.path("templates/" + format + "/" + type.templateFile);
}

const std::vector<std::string>& outputFormats() {
    static const std::vector<std::string> formats = {"html", "pdf", "txt"};
    return formats;
}

std::vector<CatalogueFile> catalogueFiles(const DataDirectory& directory, const ReportType& type) {
    std::map<std::string, std::string> files;
    const std::string folder = directory.path("translations");
    std::error_code failure;
    for (const auto& entry : fs::directory_iterator(fs::u8path(folder), failure)) {
        const std::string stem = entry.path().stem().u8string();
        const std::string path = folder + "/" + entry.path().filename().u8string();
        if (entry.path().extension() != ".po") continue;
        const std::string ownPrefix = type.name + "-";
        if (stem.compare(0, ownPrefix.size(), ownPrefix) == 0) {
            files[stem.substr(ownPrefix.size())] = path;
        } else if (stem.find('-') == std::string::npos) {
            files.emplace(stem, path);
        }
    }
    std::vector<CatalogueFile> sorted;
    for (const auto& [language, path] : files)
        sorted.push_back({language, path});
    return sorted;
}

}  // namespace cli
