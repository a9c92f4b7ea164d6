// Child processes on Windows.
//
// SPDX-License-Identifier: MIT
#include <windows.h>
// Needs windows.h before it.
#include <gtest/gtest.h>

#include <filesystem>

#include "robustness/soak/child_host.h"
#include "support/process_environment.h"

namespace rgen_test {

ChildHost::ChildHost(const std::string& program, const std::vector<std::string>& arguments) {
    std::string line = '"' + programFolder() + "\\" + program + ".exe\"";
    for (const std::string& argument : arguments)
        line += " \"" + argument + '"';
    std::wstring wideLine = std::filesystem::u8path(line).wstring();
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    EXPECT_NE(0, CreateProcessW(nullptr, wideLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                nullptr, &startup, &process));
    CloseHandle(process.hThread);
    process_ = process.hProcess;
}

ChildHost::~ChildHost() {
    kill();
}

bool ChildHost::runs() {
    return WaitForSingleObject(process_, 0) == WAIT_TIMEOUT;
}

void ChildHost::kill() {
    if (process_ == nullptr) return;
    TerminateProcess(process_, 1);
    WaitForSingleObject(process_, INFINITE);
    CloseHandle(process_);
    process_ = nullptr;
}

int ChildHost::exitCode() {
    DWORD code = 0;
    WaitForSingleObject(process_, INFINITE);
    const bool known = GetExitCodeProcess(process_, &code) != 0;
    CloseHandle(process_);
    process_ = nullptr;
    return known ? static_cast<int>(code) : -1;
}

}  // namespace rgen_test
