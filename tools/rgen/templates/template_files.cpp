// SPDX-License-Identifier: MIT
#include "templates/template_files.h"

#include <algorithm>
#include <filesystem>

#include "base/command_error.h"
#include "base/input_file.h"
#include "base/paths.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

bool isFile(const std::string& path) {
    std::error_code ignored;
    return fs::is_regular_file(fs::u8path(path), ignored);
}

/// The file that has the same content, or null: the pdf template often is a copy of html's.
TemplateFile* sameFile(std::vector<TemplateFile>& files, const std::string& content) {
    for (TemplateFile& file : files) {
        if (readInputFile(file.path, "check the data directory") == content) return &file;
    }
    return nullptr;
}

/// The folder that holds ".rgen", for "FOLDER/.rgen/templates/html/NAME.xsl": as it is written, so
/// that messages name the other files alike, or from the whole path when it is not written.
fs::path dataFolderOf(const fs::path& given, const fs::path& whole) {
    constexpr int levels = 4;
    fs::path folder = given;
    for (int level = 0; level < levels; ++level) {
        if (folder.empty()) return whole.parent_path().parent_path().parent_path().parent_path();
        folder = folder.parent_path();
    }
    return folder.empty() ? fs::path(".") : folder;
}

}  // namespace

bool looksLikeFile(const std::string& operand) {
    const std::string ending = fs::u8path(operand).extension().u8string();
    return ending == ".xsl" || ending == ".xslt" || operand.find('/') != std::string::npos ||
           isFile(operand);
}

std::vector<TemplateFile> templatesOf(const DataDirectory& directory, const ReportType& type) {
    std::vector<TemplateFile> files;
    for (const std::string& format : outputFormats()) {
        const std::string path = templatePath(directory, type, format);
        if (type.templateFile.empty() || !isFile(path)) continue;
        const std::string content = readInputFile(path, "check the data directory");
        if (TemplateFile* same = sameFile(files, content)) {
            same->sameFormats.push_back(format);
        } else {
            files.push_back({path, format, {}, directory, type});
        }
    }
    if (files.empty()) {
        throw usageError("report type \"" + type.name + "\" has no template",
                         "put one at \"" + templatePath(directory, type, "html") + "\"");
    }
    return files;
}

TemplateFile templateFileAt(const std::string& path) {
    TemplateFile file;
    file.path = path;
    if (path == "-") return file;
    std::error_code failure;
    const fs::path whole = fs::absolute(fs::u8path(path), failure);
    const fs::path formatFolder = whole.parent_path();
    const fs::path templates = formatFolder.parent_path();
    const std::string format = formatFolder.filename().u8string();
    const std::vector<std::string>& formats = outputFormats();
    if (std::find(formats.begin(), formats.end(), format) == formats.end()) return file;
    file.format = format;
    const DataDirectory directory{dataFolderOf(fs::u8path(path), whole).u8string()};
    const bool isInDirectory = templates.filename() == "templates" &&
                               templates.parent_path().filename() == ".rgen" &&
                               exists(directory.configPath());
    if (!isInDirectory) return file;
    file.directory = directory;
    for (const ReportType& type : reportTypes(directory)) {
        if (type.templateFile == whole.filename().u8string()) file.type = type;
    }
    return file;
}

std::vector<TemplateFile> namedTemplates(const std::vector<std::string>& operands,
                                         const std::optional<std::string>& type,
                                         const std::optional<std::string>& dataDir) {
    std::vector<TemplateFile> files;
    const auto addType = [&files](const DataDirectory& directory, const ReportType& one) {
        for (TemplateFile& file : templatesOf(directory, one))
            files.push_back(std::move(file));
    };
    for (const std::string& operand : operands) {
        if (operand == "-" || looksLikeFile(operand)) {
            files.push_back(templateFileAt(operand));
        } else {
            const DataDirectory directory = openDataDirectory(dataDir);
            addType(directory, findReportType(directory, operand));
        }
    }
    if (!operands.empty() && !type) return files;
    const DataDirectory directory = openDataDirectory(dataDir);
    if (type) {
        addType(directory, findReportType(directory, type));
        return files;
    }
    const std::vector<ReportType> types = reportTypes(directory);
    for (const ReportType& one : types)
        addType(directory, one);
    if (types.empty()) addType(directory, findReportType(directory, std::nullopt));
    return files;
}

}  // namespace cli
