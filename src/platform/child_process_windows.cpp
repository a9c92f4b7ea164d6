// ChildProcess on Windows.
//
// SPDX-License-Identifier: MIT
#include "platform/child_process.h"

#include <windows.h>

#include "platform/platform.h"

namespace rgen::platform {
namespace {

HANDLE asHandle(std::intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle);
}

}  // namespace

ChildProcess::ChildProcess(const std::string& commandLine) : process_(0), waitHandle_(0) {
    std::wstring wideCommandLine = toWidePath(commandLine);
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    PROCESS_INFORMATION process = {};
    constexpr BOOL noInheritedHandles = FALSE;
    if (CreateProcessW(nullptr, wideCommandLine.data(), nullptr, nullptr, noInheritedHandles,
                       CREATE_NEW_CONSOLE, nullptr, nullptr, &startup, &process) == FALSE) {
        return;
    }
    CloseHandle(process.hThread);
    process_ = reinterpret_cast<std::intptr_t>(process.hProcess);
    waitHandle_ = process_;
}

ChildProcess::~ChildProcess() {
    if (started()) CloseHandle(asHandle(process_));
}

bool ChildProcess::started() const {
    return process_ != 0;
}

bool ChildProcess::waitTimedOut(std::uint32_t milliseconds) {
    return WaitForSingleObject(asHandle(waitHandle_), milliseconds) == WAIT_TIMEOUT;
}

bool ChildProcess::queryExitCode(std::uint32_t& exitCode) {
    DWORD code = 0;
    const bool known = GetExitCodeProcess(asHandle(process_), &code) != FALSE;
    exitCode = code;
    return known;
}

void reapAbandonedProcesses() {}

}  // namespace rgen::platform
