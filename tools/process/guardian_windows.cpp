// The guardian on Windows: the same program, started once more, reads a pipe, the lifeline, whose
// write end this process keeps. It does not belong to the job of the engine, which is killed with
// this process.
//
// SPDX-License-Identifier: MIT
#include "process/guardian.h"

#include <windows.h>

#include <string>

namespace tools {

struct Guardian::State {
    HANDLE process = nullptr;
    HANDLE lifeline = nullptr;
};

namespace {

long readStandardInput(char* buffer, unsigned long size) {
    DWORD got = 0;
    const BOOL isRead = ReadFile(GetStdHandle(STD_INPUT_HANDLE), buffer, size, &got, nullptr);
    return isRead == 0 ? 0 : static_cast<long>(got);
}

std::wstring ownProgram() {
    std::wstring name(32768, L'\0');
    name.resize(GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size())));
    return name;
}

HANDLE startGuardian(HANDLE input) {
    const std::wstring program = ownProgram();
    std::wstring line = L"\"" + program + L"\" " + guardianArgument;
    wchar_t folder[MAX_PATH + 1] = {};
    GetSystemDirectoryW(folder, MAX_PATH);
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = input;
    PROCESS_INFORMATION process = {};
    // On purpose: in the system folder. The current folder of a process cannot be removed.
    if (CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE,
                       CREATE_NO_WINDOW | CREATE_NEW_PROCESS_GROUP, nullptr, folder, &start,
                       &process) == 0) {
        return nullptr;
    }
    CloseHandle(process.hThread);
    return process.hProcess;
}

void writeAll(HANDLE pipe, const std::string& text) {
    DWORD size = 0;
    WriteFile(pipe, text.data(), static_cast<DWORD>(text.size()), &size, nullptr);
}

}  // namespace

Guardian::Guardian() : state_(std::make_unique<State>()) {
    HANDLE input = nullptr;
    if (CreatePipe(&input, &state_->lifeline, nullptr, 0) == 0) return;
    // The guardian inherits the read end only.
    SetHandleInformation(input, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    state_->process = startGuardian(input);
    CloseHandle(input);
}

Guardian::~Guardian() {
    if (state_->lifeline == nullptr) return;
    writeAll(state_->lifeline, std::string(1, '\0'));
    CloseHandle(state_->lifeline);
    if (state_->process == nullptr) return;
    WaitForSingleObject(state_->process, INFINITE);
    CloseHandle(state_->process);
}

void Guardian::watch(const std::filesystem::path& path) {
    if (state_->process != nullptr) writeAll(state_->lifeline, path.u8string() + '\0');
}

void runGuardian() {
    removeWhenOwnerEnds(readStandardInput);
}

}  // namespace tools
