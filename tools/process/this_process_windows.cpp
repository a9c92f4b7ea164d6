// This process on Windows.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include "process/this_process.h"

namespace tools {
namespace {

std::wstring wide(const std::string& text) {
    return std::filesystem::u8path(text).wstring();
}

}  // namespace

std::optional<std::filesystem::path> findProgram(const std::string& name) {
    const std::wstring wideName = wide(name);
    std::wstring found(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = SearchPathW(nullptr, wideName.c_str(), L".exe",
                                         static_cast<DWORD>(found.size()), found.data(), nullptr);
        if (length == 0) return std::nullopt;
        if (length < found.size()) {
            found.resize(length);
            return absolutePath(found);
        }
        found.resize(length + 1);
    }
}

std::filesystem::path ownFolder() {
    std::wstring name(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length =
            GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
        if (length < name.size()) {
            name.resize(length);
            return std::filesystem::path(name).parent_path();
        }
        name.resize(name.size() * 2);
    }
}

std::optional<std::string> environmentVariable(const std::string& name) {
    const wchar_t* const value = _wgetenv(wide(name).c_str());
    if (value == nullptr) return std::nullopt;
    return std::filesystem::path(value).u8string();
}

std::filesystem::path absolutePath(const std::filesystem::path& path) {
    std::wstring full(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length =
            GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
        if (length == 0) return path;
        if (length < full.size()) {
            full.resize(length);
            return full;
        }
        full.resize(length);
    }
}

}  // namespace tools
