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

#include "base/host_system.h"

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

void addProgramFolderToPath() {}

void makeSameFile(const std::string& path, const std::string& original) {
    std::filesystem::copy_file(std::filesystem::u8path(original), std::filesystem::u8path(path));
}

}  // namespace cli
