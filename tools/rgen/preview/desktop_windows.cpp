// SPDX-License-Identifier: MIT
#include "preview/desktop.h"

#include <windows.h>

#include <shellapi.h>

#include <filesystem>
#include <system_error>

#include "base/command_error.h"
#include "process/this_process.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

/// Quoted so that the C runtime of the program finds the same word.
std::wstring quoted(const std::wstring& word) {
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t letter : word) {
        if (letter == L'"') text.append(backslashes + 1, L'\\');
        backslashes = letter == L'\\' ? backslashes + 1 : 0;
        text += letter;
    }
    return text.append(backslashes, L'\\') + L"\"";
}

CommandError notStarted(const std::string& program, DWORD reason) {
    return {ExitCode::Environment,
            "\"" + program +
                "\" cannot be started: " + std::system_category().message(static_cast<int>(reason)),
            "check that the program is installed"};
}

}  // namespace

void openInBrowser(const std::string& address) {
    const std::wstring wide = fs::u8path(address).wstring();
    // A result up to 32 is an error.
    constexpr INT_PTR lastError = 32;
    const HINSTANCE result =
        ShellExecuteW(nullptr, L"open", wide.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    if (reinterpret_cast<INT_PTR>(result) <= lastError) {
        throw CommandError(ExitCode::Environment, "the browser cannot be started",
                           "open the address yourself");
    }
}

void startProgram(const std::vector<std::string>& words) {
    const auto program = tools::findProgram(words.front());
    if (!program) throw notStarted(words.front(), ERROR_FILE_NOT_FOUND);
    std::wstring command = quoted(program->wstring());
    for (std::size_t i = 1; i < words.size(); ++i)
        command += L" " + quoted(fs::u8path(words[i]).wstring());
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    if (CreateProcessW(program->c_str(), command.data(), nullptr, nullptr, FALSE,
                       CREATE_NEW_PROCESS_GROUP | CREATE_NO_WINDOW, nullptr, nullptr, &startup,
                       &process) == 0) {
        throw notStarted(words.front(), GetLastError());
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

}  // namespace cli
