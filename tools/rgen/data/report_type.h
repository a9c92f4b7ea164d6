// Data directories and the report types in them.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "strata_repgenlib/rgen.hpp"

namespace cli {

class FileSet;

/// The folder that holds ".rgen".
struct DataDirectory {
    std::string folder;

    /// The path of a file or folder inside ".rgen".
    std::string path(const std::string& inside) const;
    std::string configPath() const { return path("config.xml"); }
};

struct ReportType {
    strata::repgen::Guid guid;
    std::string guidText;
    /// The template's file name without its ending; empty when the configuration lacks the GUID.
    std::string name;
    std::string templateFile;
    std::string persistDataFile;
};

/// The folder that `given` names, the current one by default; a path that ends in ".rgen" means its
/// parent folder. Nothing is checked.
DataDirectory namedDataDirectory(const std::optional<std::string>& given);

/// The same; throws a CommandError when the folder contains no data directory.
DataDirectory openDataDirectory(const std::optional<std::string>& given);

/// All usable report types, sorted by name.
std::vector<ReportType> reportTypes(const DataDirectory& directory);

/// The report type with this GUID or name, by default the only one. Throws a CommandError, but not
/// for a GUID that is not in the configuration: the library reports that.
ReportType findReportType(const DataDirectory& directory, const std::optional<std::string>& wanted);

/// The path of the template of a report type.
std::string templatePath(const DataDirectory& directory, const ReportType& type,
                         const std::string& format);

/// The formats of the library.
const std::vector<std::string>& outputFormats();

/// The catalogue for a language: "translations/<template>-<language>.po" or
/// "translations/<language>.po"; empty when there is none.
std::string cataloguePath(const DataDirectory& directory, const ReportType& type,
                          const std::string& language);

/// Tells whether --lang names a file instead of a language.
bool namesCatalogueFile(const std::string& lang);

/// The catalogue that --lang names: a language or a file; empty without the option. Throws a
/// CommandError when there is no catalogue for the language.
std::string chosenCatalogue(const DataDirectory& directory, const ReportType& type,
                            const std::string& lang);

/// The path that the catalogue of a report type has when only this type uses it.
std::string ownCataloguePath(const DataDirectory& directory, const ReportType& type,
                             const std::string& language);

/// Tells whether a text is the code of a language, "de", "pt-BR", "zh_Hant": two or three letters,
/// and more after a separator.
bool looksLikeLanguage(const std::string& text);

/// The languages that have a catalogue for the report type, sorted.
std::vector<std::string> catalogueLanguages(const DataDirectory& directory, const ReportType& type);

/// Adds the files of a data directory: configuration, templates, translations and persistent data.
void addDataDirectoryFiles(const DataDirectory& directory, FileSet& files);

}  // namespace cli
