// The process environment on Windows. It goes through the system, since a C runtime keeps a copy of
// its own that child processes do not see.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include <filesystem>
#include <vector>

#include "support/process_environment.h"

namespace rgen_test {
namespace {

constexpr DWORD longestText = 32768;

std::wstring wide(const std::string& text) {
    return std::filesystem::u8path(text).wstring();
}

}  // namespace

const char pathSeparator = ';';

std::string environmentText(const std::string& name) {
    std::vector<wchar_t> value(longestText);
    const DWORD length = GetEnvironmentVariableW(wide(name).c_str(), value.data(), longestText);
    return std::filesystem::path(std::wstring(value.data(), length)).u8string();
}

void setEnvironmentText(const std::string& name, const std::string& value) {
    const std::wstring text = wide(value);
    SetEnvironmentVariableW(wide(name).c_str(), value.empty() ? nullptr : text.c_str());
}

std::string programFolder() {
    std::vector<wchar_t> program(longestText);
    GetModuleFileNameW(nullptr, program.data(), longestText);
    return std::filesystem::path(program.data()).parent_path().u8string();
}

}  // namespace rgen_test
