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
    /// Empty: not on this machine.
    std::filesystem::path program;
};

/// The engines of this system in the order in which they are tried, found or not.
/// engine_places_posix.cpp and engine_places_windows.cpp are the two sources behind it.
std::vector<Engine> engineCandidates();

/// The engine that is named by option or variable, or that the page asks for, or the first there
/// is. A page may ask for engines that obey the policy in it. Raises a Failure when there is none,
/// or the named one is missing; warns when the page does not get its own.
Engine chooseEngine(const std::string& named, const std::string& askedByPage);

/// The arguments with which an engine makes `pdf` of `page`.
struct EngineTask {
    std::filesystem::path page;
    std::filesystem::path pdf;
    /// For what the engine keeps for itself.
    std::filesystem::path profile;
    std::string base;
    bool isLarge = false;
};
std::vector<std::string> engineArguments(const Engine& engine, const EngineTask& task);

/// Tells whether this process has the rights of the system's administrator. Implemented beside
/// engineCandidates.
bool isAdministrator();

}  // namespace vellum
