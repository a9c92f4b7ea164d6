// The template files that a command line names.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "data/report_type.h"

namespace cli {

struct TemplateFile {
    std::string path;
    /// "html", "pdf" or "txt"; empty for a file outside of a data directory.
    std::string format;
    /// Other formats that have the same template.
    std::vector<std::string> sameFormats;
    /// Absent for a file that belongs to no report type.
    std::optional<DataDirectory> directory;
    std::optional<ReportType> type;
};

/// Whether an operand is the path of a template rather than a name.
bool looksLikeFile(const std::string& operand);

/// The templates of a report type. A template that several formats share is there once. Throws a
/// CommandError when there is none.
std::vector<TemplateFile> templatesOf(const DataDirectory& directory, const ReportType& type);

/// A file, with its format and its report type if it lies in a data directory.
TemplateFile templateFileAt(const std::string& path);

/// What the operands (files, names or GUIDs of report types) and --type name; the templates of all
/// report types when they name nothing. Throws a CommandError.
std::vector<TemplateFile> namedTemplates(const std::vector<std::string>& operands,
                                         const std::optional<std::string>& type,
                                         const std::optional<std::string>& dataDir);

}  // namespace cli
