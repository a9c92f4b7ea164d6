// This process on Linux.
//
// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <cstdlib>
#include <sstream>
#include <system_error>

#include "process/this_process.h"

namespace tools {
namespace {

bool isRunnable(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::is_regular_file(path, ignored) && access(path.c_str(), X_OK) == 0;
}

}  // namespace

std::optional<std::filesystem::path> findProgram(const std::string& name) {
    const std::filesystem::path given = name;
    if (given.has_parent_path()) {
        return isRunnable(given) ? std::optional(std::filesystem::absolute(given)) : std::nullopt;
    }
    const char* const searchPath = std::getenv("PATH");
    std::istringstream folders(searchPath == nullptr ? "/bin:/usr/bin" : searchPath);
    for (std::string folder; std::getline(folders, folder, ':');) {
        const std::filesystem::path path = std::filesystem::path(folder) / name;
        if (isRunnable(path)) return std::filesystem::absolute(path);
    }
    return std::nullopt;
}

std::filesystem::path ownFolder() {
    std::error_code failure;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", failure);
    return failure ? std::filesystem::path() : program.parent_path();
}

std::optional<std::string> environmentVariable(const std::string& name) {
    const char* const value = std::getenv(name.c_str());
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

std::filesystem::path absolutePath(const std::filesystem::path& path) {
    return std::filesystem::absolute(path).lexically_normal();
}

}  // namespace tools
