// The engines of Windows: next to vellum.exe, registered as applications, in the Program Files
// folders, on the search path.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include <algorithm>

#include "engine/engines.h"
#include "process/this_process.h"

namespace vellum {
namespace {

namespace fs = std::filesystem;

bool isProgram(const fs::path& path) {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored);
}

/// "chrome-headless-shell*\chrome-headless-shell.exe" next to vellum.exe; the last by name of
/// several.
fs::path headlessShellBeside() {
    fs::path found;
    std::error_code failure;
    for (const auto& entry : fs::directory_iterator(tools::ownFolder(), failure)) {
        const fs::path program = entry.path() / "chrome-headless-shell.exe";
        const bool hasName =
            entry.path().filename().wstring().rfind(L"chrome-headless-shell", 0) == 0;
        if (hasName && isProgram(program)) found = std::max(found, program);
    }
    return found;
}

/// The program that is registered under this name for the user or for the machine.
fs::path registeredProgram(HKEY root, const wchar_t* name) {
    const std::wstring key =
        std::wstring(L"Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\") + name;
    wchar_t value[32768] = {};
    DWORD size = sizeof value;
    const LSTATUS status =
        RegGetValueW(root, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, value, &size);
    if (status != ERROR_SUCCESS) return {};
    // Some installers put the path in quotes.
    std::wstring path = value;
    path.erase(std::remove(path.begin(), path.end(), L'"'), path.end());
    return isProgram(path) ? fs::path(path) : fs::path();
}

fs::path folderOfVariable(const wchar_t* variable) {
    wchar_t value[32768] = {};
    const DWORD length = GetEnvironmentVariableW(variable, value, 32768);
    return length == 0 || length >= 32768 ? fs::path() : fs::path(value);
}

fs::path browser(const wchar_t* name, const wchar_t* inProgramFiles) {
    for (HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        fs::path program = registeredProgram(root, name);
        if (!program.empty()) return program;
    }
    for (const wchar_t* variable : {L"ProgramFiles(x86)", L"ProgramFiles"}) {
        const fs::path folder = folderOfVariable(variable);
        if (!folder.empty() && isProgram(folder / inProgramFiles)) return folder / inProgramFiles;
    }
    return {};
}

}  // namespace

std::vector<Engine> engineCandidates() {
    return {
        {"chrome-headless-shell", EngineKind::Chromium, headlessShellBeside()},
        {"microsoft-edge", EngineKind::Chromium,
         browser(L"msedge.exe", L"Microsoft\\Edge\\Application\\msedge.exe")},
        {"google-chrome", EngineKind::Chromium,
         browser(L"chrome.exe", L"Google\\Chrome\\Application\\chrome.exe")},
        {"weasyprint", EngineKind::WeasyPrint,
         tools::findProgram("weasyprint.exe").value_or(fs::path())},
    };
}

bool isAdministrator() {
    // Unlike for root on Linux, the sandbox of the browsers works for administrators.
    return false;
}

}  // namespace vellum
