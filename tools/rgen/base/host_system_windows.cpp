// The operating system for rgen on Windows.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "base/host_system.h"
#include "strata_repgenlib/rgen.h"

namespace cli {
namespace {

void (*interruptHandler)(bool) = nullptr;

/// Windows ends the process a moment after the events for closing, logging off and shutting down.
BOOL WINAPI handleConsoleEvent(DWORD event) {
    interruptHandler(event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT);
    return TRUE;
}

UINT consoleCodePage = 0;

void restoreCodePage() {
    SetConsoleOutputCP(consoleCodePage);
}

std::wstring moduleFileName(HMODULE module) {
    std::wstring name(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length =
            GetModuleFileNameW(module, name.data(), static_cast<DWORD>(name.size()));
        if (length < name.size()) {
            name.resize(length);
            return name;
        }
        name.resize(name.size() * 2);
    }
}

std::string versionOfFile(const std::wstring& fileName) {
    DWORD unused = 0;
    const DWORD size = GetFileVersionInfoSizeW(fileName.c_str(), &unused);
    std::vector<char> resource(size);
    void* block = nullptr;
    UINT blockSize = 0;
    if (size == 0 || GetFileVersionInfoW(fileName.c_str(), 0, size, resource.data()) == 0 ||
        VerQueryValueW(resource.data(), L"\\", &block, &blockSize) == 0 ||
        blockSize < sizeof(VS_FIXEDFILEINFO)) {
        return "unknown";
    }
    const auto* info = static_cast<const VS_FIXEDFILEINFO*>(block);
    return std::to_string(HIWORD(info->dwFileVersionMS)) + "." +
           std::to_string(LOWORD(info->dwFileVersionMS)) + "." +
           std::to_string(HIWORD(info->dwFileVersionLS));
}

}  // namespace

void prepareStreams() {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    consoleCodePage = GetConsoleOutputCP();
    if (consoleCodePage == 0) return;
    SetConsoleOutputCP(CP_UTF8);
    std::atexit(restoreCodePage);
}

bool standardErrorIsTerminal() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

bool standardOutputIsTerminal() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) != 0;
}

bool standardErrorHasColour() {
    // Consoles older than Windows 10 refuse the mode.
    constexpr DWORD processSequences = 0x0004;
    HANDLE console = GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode = 0;
    return GetConsoleMode(console, &mode) != 0 &&
           SetConsoleMode(console, mode | processSequences) != 0;
}

/// The C runtime does not have an errno for each error of the system.
bool isWithoutReader(int reason) {
    const auto systemReason = static_cast<DWORD>(_doserrno);
    return reason == EPIPE || systemReason == ERROR_BROKEN_PIPE || systemReason == ERROR_NO_DATA ||
           systemReason == ERROR_PIPE_NOT_CONNECTED;
}

void watchInterrupts(void (*handler)(bool)) {
    interruptHandler = handler;
    SetConsoleCtrlHandler(handleConsoleEvent, TRUE);
}

StdoutToStderr::StdoutToStderr() {
    std::fflush(stdout);
    saved_ = _dup(_fileno(stdout));
    _dup2(_fileno(stderr), _fileno(stdout));
}

StdoutToStderr::~StdoutToStderr() {
    std::fflush(stdout);
    if (saved_ < 0) return;
    _dup2(saved_, _fileno(stdout));
    _close(saved_);
}

std::uint64_t closeDeleteOnCloseFile(void* handle) {
    LARGE_INTEGER size = {};
    const bool known = GetFileSizeEx(handle, &size) != 0;
    CloseHandle(handle);
    return known ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

LoadedLibrary loadedLibrary() {
    HMODULE module = GetModuleHandleW(L"strata_repgenlib.dll");
    if (module == nullptr) return {"", "unknown"};
    const std::wstring fileName = moduleFileName(module);
    return {std::filesystem::path(fileName).u8string(), versionOfFile(fileName)};
}

void addProgramFolderToPath() {}

}  // namespace cli
