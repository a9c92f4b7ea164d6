// The stand-in engine on Windows. Converts texts of the system to UTF-8.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include <shellapi.h>

#include <filesystem>
#include <fstream>

#include "vellum/stand_in_engine.h"

namespace stand_in_engine {

namespace {

constexpr DWORD longestLife = 60'000;

std::string toUtf8(const std::wstring& text) {
    return std::filesystem::path(text).u8string();
}

std::wstring toWide(const std::string& text) {
    return std::filesystem::u8path(text).wstring();
}

}  // namespace

std::vector<std::string> arguments() {
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> texts;
    for (int i = 0; words != nullptr && i < count; ++i) {
        texts.push_back(toUtf8(words[i]));
    }
    LocalFree(words);
    return texts;
}

std::string variable(const std::string& name) {
    const std::wstring wideName = toWide(name);
    const DWORD size = GetEnvironmentVariableW(wideName.c_str(), nullptr, 0);
    if (size == 0) return std::string();
    std::wstring text(size, L'\0');
    text.resize(GetEnvironmentVariableW(wideName.c_str(), text.data(), size));
    return toUtf8(text);
}

void startCopy(const std::string& argument) {
    std::wstring program(32'768, L'\0');
    program.resize(GetModuleFileNameW(nullptr, program.data(), 32'768));
    std::wstring line = L"\"" + program + L"\" \"" + toWide(argument) + L"\"";
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    if (CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                       &startup, &process) == 0) {
        return;
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

void hang(const std::string& markPath) {
    if (!markPath.empty()) {
        std::ofstream(std::filesystem::u8path(markPath), std::ios::binary) << GetCurrentProcessId();
    }
    Sleep(longestLife);
}

}  // namespace stand_in_engine
