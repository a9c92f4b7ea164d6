// The programs that can make a PDF of a page.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vellum {

enum class EngineKind { Chromium, WeasyPrint, WkHtmlToPdf };

struct Engine {
    std::string name;
    EngineKind kind = EngineKind::Chromium;
    /// Empty when it is not installed.
    std::filesystem::path program;
};

/// The engines of this system in the order in which they are tried, installed or not.
/// engine_candidates_posix.cpp and engine_candidates_windows.cpp implement it.
std::vector<Engine> engineCandidates();

/// The engine that the option or variable names, or else the one that the page asks for, or else
/// the first that is installed. The page's wish is ignored with a warning if that engine is not
/// installed, or if it ignores the content security policy and would not be used anyway. Throws a
/// Failure when there is no engine, or the named one is not installed.
Engine chooseEngine(const std::string& named, const std::string& askedByPage);

/// What an engine is to convert.
struct EngineTask {
    std::filesystem::path page;
    std::filesystem::path pdf;
    /// Folder for the browser's own files.
    std::filesystem::path profile;
    std::string base;
    bool isLarge = false;
};
std::vector<std::string> engineArguments(const Engine& engine, const EngineTask& task);

/// Returns whether this process runs as root. Implemented next to engineCandidates.
bool isAdministrator();

}  // namespace vellum
