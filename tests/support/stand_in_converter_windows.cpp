// The stand-in converter on Windows. Texts of the system are turned into UTF-8.
//
// SPDX-License-Identifier: MIT
#include "support/stand_in_converter.h"

#include <windows.h>

#include <cstdlib>
#include <filesystem>

namespace stand_in {

namespace {

std::string toUtf8(const std::wstring& text) {
    if (text.empty()) return std::string();
    const int size = static_cast<int>(text.size());
    const int needed =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(needed), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), size, &result[0], needed, nullptr, nullptr);
    return result;
}

LONG WINAPI endProcess(EXCEPTION_POINTERS* fault) {
    TerminateProcess(GetCurrentProcess(), fault->ExceptionRecord->ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

}  // namespace

std::string controlFilePath() {
    wchar_t path[4096];
    const DWORD length = GetEnvironmentVariableW(L"STAND_IN_CONTROL", path, 4096);
    return toUtf8(std::wstring(path, length < 4096 ? length : 0));
}

unsigned long processNumber() {
    return GetCurrentProcessId();
}

void describeProcess(std::ostream& out) {
    STARTUPINFOW startup = {};
    GetStartupInfoW(&startup);
    const bool showGiven = (startup.dwFlags & STARTF_USESHOWWINDOW) != 0;
    out << "command-line\t" << toUtf8(GetCommandLineW()) << '\n';
    out << "directory\t" << toUtf8(std::filesystem::current_path().wstring()) << '\n';
    out << "show-window\t" << (showGiven ? std::to_string(startup.wShowWindow) : "default") << '\n';
}

void crash() {
    SetUnhandledExceptionFilter(endProcess);
    RaiseException(EXCEPTION_ACCESS_VIOLATION, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    std::abort();
}

void ignoreSignals() {}

void obeyInBackground(const std::string& controlPath) {
    SetEnvironmentVariableW(L"STAND_IN_CONTROL",
                            std::filesystem::u8path(controlPath).wstring().c_str());
    wchar_t program[4096];
    GetModuleFileNameW(nullptr, program, 4096);
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    if (CreateProcessW(program, nullptr, nullptr, nullptr, FALSE, CREATE_NEW_CONSOLE, nullptr,
                       nullptr, &startup, &process) == 0) {
        return;
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

}  // namespace stand_in
