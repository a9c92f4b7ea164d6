// Child processes on Windows.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include <psapi.h>

#include <cwchar>
#include <system_error>

#include "process/child_process.h"

namespace tools {

struct ChildProcess::State {
    HANDLE process = nullptr;
    /// Kills all of its processes when its last handle is closed.
    HANDLE job = nullptr;
    std::optional<int> exitCode;

    ~State() {
        if (process != nullptr) CloseHandle(process);
        if (job != nullptr) CloseHandle(job);
    }
};

namespace {

[[noreturn]] void fail(const std::string& what) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

std::wstring wide(const std::string& text) {
    return std::filesystem::u8path(text).wstring();
}

/// An argument quoted for the C runtime of the new program.
std::wstring quoted(const std::wstring& argument) {
    std::wstring text = L"\"";
    std::size_t slashes = 0;
    for (const wchar_t letter : argument) {
        slashes = letter == L'\\' ? slashes + 1 : 0;
        if (letter == L'"') text.append(slashes + 1, L'\\');
        text += letter;
        if (letter == L'"') slashes = 0;
    }
    return text.append(slashes, L'\\') + L"\"";
}

std::wstring commandLine(const ProcessRequest& request) {
    std::wstring line = quoted(request.program.wstring());
    for (const std::string& argument : request.arguments)
        line += L" " + quoted(wide(argument));
    return line;
}

/// The environment of this process, changed by the request, in the form that CreateProcessW takes.
std::wstring environmentBlock(const ProcessRequest& request) {
    std::wstring block;
    wchar_t* const own = GetEnvironmentStringsW();
    for (const wchar_t* variable = own; *variable != L'\0'; variable += std::wcslen(variable) + 1) {
        const std::wstring text = variable;
        bool isReplaced = false;
        for (const auto& [name, value] : request.environment) {
            const std::wstring start = wide(name) + L"=";
            isReplaced = isReplaced || _wcsnicmp(text.c_str(), start.c_str(), start.size()) == 0;
        }
        if (!isReplaced) block.append(text).push_back(L'\0');
    }
    FreeEnvironmentStringsW(own);
    for (const auto& [name, value] : request.environment)
        block.append(wide(name) + L"=" + wide(value)).push_back(L'\0');
    block.push_back(L'\0');
    return block;
}

HANDLE makeJob(std::uint64_t memoryLimit) {
    HANDLE job = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    if (memoryLimit > 0) {
        limits.BasicLimitInformation.LimitFlags |= JOB_OBJECT_LIMIT_JOB_MEMORY;
        // Above the limit of the request: the caller polls memory() and can then say which limit
        // was exceeded, whereas a program that is refused memory only reports some failure.
        limits.JobMemoryLimit = memoryLimit + memoryLimit / 4;
    }
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

DWORD activeProcesses(HANDLE job) {
    JOBOBJECT_BASIC_ACCOUNTING_INFORMATION facts = {};
    QueryInformationJobObject(job, JobObjectBasicAccountingInformation, &facts, sizeof facts,
                              nullptr);
    return facts.ActiveProcesses;
}

/// The process identifiers of a job.
std::vector<ULONG_PTR> processesOf(HANDLE job) {
    constexpr std::size_t most = 1024;
    constexpr std::size_t head = sizeof(JOBOBJECT_BASIC_PROCESS_ID_LIST);
    std::vector<ULONG_PTR> buffer(head / sizeof(ULONG_PTR) + most);
    auto* const list = reinterpret_cast<JOBOBJECT_BASIC_PROCESS_ID_LIST*>(buffer.data());
    const auto size = static_cast<DWORD>(buffer.size() * sizeof(ULONG_PTR));
    if (QueryInformationJobObject(job, JobObjectBasicProcessIdList, list, size, nullptr) == 0)
        return {};
    return {list->ProcessIdList, list->ProcessIdList + list->NumberOfProcessIdsInList};
}

/// The private committed memory of a process in bytes.
std::uint64_t ownMemory(ULONG_PTR number) {
    HANDLE process =
        OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, static_cast<DWORD>(number));
    if (process == nullptr) return 0;
    PROCESS_MEMORY_COUNTERS facts = {};
    const BOOL isKnown = K32GetProcessMemoryInfo(process, &facts, sizeof facts);
    CloseHandle(process);
    return isKnown == 0 ? 0 : facts.PagefileUsage;
}

HANDLE openInheritable(const wchar_t* path, DWORD access, DWORD creation) {
    SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
    return CreateFileW(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable, creation,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

}  // namespace

ChildProcess::ChildProcess(const ProcessRequest& request) : state_(std::make_unique<State>()) {
    HANDLE input = openInheritable(L"NUL", GENERIC_READ, OPEN_EXISTING);
    HANDLE output = openInheritable(request.outputFile.c_str(), GENERIC_WRITE, CREATE_ALWAYS);
    if (output == INVALID_HANDLE_VALUE) fail("cannot prepare a process");
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = input;
    start.hStdOutput = output;
    start.hStdError = output;
    std::wstring line = commandLine(request);
    std::wstring block = environmentBlock(request);
    PROCESS_INFORMATION process = {};
    // Suspended until it belongs to the job, so that it cannot start a child outside of it.
    const BOOL isStarted =
        CreateProcessW(request.program.c_str(), line.data(), nullptr, nullptr, TRUE,
                       CREATE_NO_WINDOW | CREATE_SUSPENDED | CREATE_UNICODE_ENVIRONMENT,
                       block.data(), nullptr, &start, &process);
    const DWORD reason = GetLastError();
    CloseHandle(input);
    CloseHandle(output);
    if (isStarted == 0) {
        SetLastError(reason);
        fail("cannot start " + request.program.u8string());
    }
    state_->process = process.hProcess;
    state_->job = makeJob(request.memoryLimit);
    // Old versions of Windows refuse this inside another job; then only the process itself is
    // killed.
    AssignProcessToJobObject(state_->job, process.hProcess);
    ResumeThread(process.hThread);
    CloseHandle(process.hThread);
}

ChildProcess::~ChildProcess() {
    kill();
}

bool ChildProcess::hasEnded() {
    if (state_->exitCode) return true;
    if (WaitForSingleObject(state_->process, 0) != WAIT_OBJECT_0) return false;
    DWORD code = 0;
    GetExitCodeProcess(state_->process, &code);
    state_->exitCode = static_cast<int>(code);
    return true;
}

std::optional<int> ChildProcess::wait(std::chrono::milliseconds longest) {
    WaitForSingleObject(state_->process, static_cast<DWORD>(longest.count()));
    hasEnded();
    return state_->exitCode;
}

std::uint64_t ChildProcess::memory() const {
    std::uint64_t bytes = 0;
    for (const ULONG_PTR number : processesOf(state_->job))
        bytes += ownMemory(number);
    return bytes;
}

void ChildProcess::kill() {
    constexpr UINT killedCode = 1;
    TerminateJobObject(state_->job, killedCode);
    if (state_->exitCode) return;
    TerminateProcess(state_->process, killedCode);
    WaitForSingleObject(state_->process, INFINITE);
    state_->exitCode = -1;
    // The other processes of the job end a moment later.
    constexpr DWORD pause = 5;
    for (int round = 0; round < 100 && activeProcesses(state_->job) > 0; ++round)
        Sleep(pause);
}

}  // namespace tools
