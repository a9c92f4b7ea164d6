// A file is stored by its canonical path and, if it exists, by its identity.
//
// SPDX-License-Identifier: MIT
#include "base/file_set.h"

#include <filesystem>
#include <system_error>

#include "base/paths.h"
#include "base/safe_files.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

/// Links are resolved, because reading follows them.
std::string placeRead(const std::string& path) {
    std::error_code failure;
    const fs::path place = fs::weakly_canonical(fs::absolute(fs::u8path(path)), failure);
    return "place " + (failure ? path : place.u8string());
}

}  // namespace

void FileSet::add(const std::string& path) {
    names_.emplace(placeRead(path), path);
    const auto identity = fileIdentity(path);
    if (identity) names_.emplace("identity " + *identity, path);
}

std::optional<std::string> FileSet::find(const std::string& path) const {
    if (path == "-" || isSpecialFile(path)) return std::nullopt;
    auto found = names_.find(placeRead(path));
    const auto identity = fileIdentity(path);
    if (found == names_.end() && identity) found = names_.find("identity " + *identity);
    if (found == names_.end()) return std::nullopt;
    return found->second;
}

std::string placeWritten(const std::string& path) {
    std::error_code failure;
    const fs::path whole = fs::absolute(fs::u8path(path), failure);
    const fs::path folder = whole.parent_path();
    const auto identity = fileIdentity(folder.u8string());
    const std::string place =
        identity ? *identity : fs::weakly_canonical(folder, failure).u8string();
    return place + "/" + comparableName(whole.filename().u8string());
}

FileSet& filesRead() {
    static FileSet files;
    return files;
}

}  // namespace cli
