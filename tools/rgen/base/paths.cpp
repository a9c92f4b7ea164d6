// Paths are UTF-8.
//
// SPDX-License-Identifier: MIT
#include "base/paths.h"

#include <filesystem>
#include <system_error>

#include "base/command_error.h"
#include "base/input_file.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

}  // namespace

bool exists(const std::string& path) {
    std::error_code ignored;
    return fs::exists(fs::u8path(path), ignored);
}

bool isSpecialFile(const std::string& path) {
    if (path == "-") return false;
    std::error_code ignored;
    const fs::file_status status = fs::status(fs::u8path(path), ignored);
    return fs::exists(status) && !fs::is_regular_file(status);
}

void requireAccess(const std::string& path) {
    std::error_code failure;
    const fs::file_status status = fs::status(fs::u8path(path), failure);
    if (!failure || status.type() == fs::file_type::not_found) return;
    throw CommandError(ExitCode::Environment,
                       "cannot look at \"" + path + "\": " + failure.message(),
                       "check the rights of it and of the folders that it is in");
}

void requireReadable(const std::string& path) {
    std::error_code ignored;
    if (!fs::is_regular_file(fs::u8path(path), ignored)) return;
    try {
        readInputFile(path, "check its rights");
    } catch (const CommandError& error) {
        throw CommandError(ExitCode::Environment, error.what(), error.hint);
    }
}

std::string joinedPath(const std::string& folder, const std::string& name) {
    if (folder.empty() || folder == ".") return name;
    const char last = folder.back();
    const bool hasDrives = fs::path::preferred_separator == '\\';
    const bool hasSeparator = last == '/' || (hasDrives && (last == '\\' || last == ':'));
    return folder + (hasSeparator ? "" : "/") + name;
}

std::string folderOf(const std::string& path) {
    const std::string folder = fs::u8path(path).parent_path().u8string();
    return folder.empty() ? "." : folder;
}

}  // namespace cli
