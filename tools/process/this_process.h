// What a program asks about its own process: search path, own folder, environment, current folder.
// this_process_posix.cpp and this_process_windows.cpp implement it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace tools {

/// The executable file that the system's search path has for this program name, or the given path
/// if it names one; empty optional when there is none.
std::optional<std::filesystem::path> findProgram(const std::string& name);

/// The folder of the running program.
std::filesystem::path ownFolder();

/// The UTF-8 value of an environment variable; empty optional when it is not set.
std::optional<std::string> environmentVariable(const std::string& name);

/// The path relative to the current folder made absolute, without "." and ".."; on Windows network
/// paths keep their server.
std::filesystem::path absolutePath(const std::filesystem::path& path);

}  // namespace tools
