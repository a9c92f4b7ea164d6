// What the tests ask of Windows.
//
// SPDX-License-Identifier: MIT
#include "support/test_platform.h"

#include <windows.h>
// Need windows.h before them.
#include <psapi.h>
#include <tlhelp32.h>

#include <time.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <filesystem>

namespace rgen_test {
namespace {

constexpr DWORD longestText = 32768;

std::wstring wide(const std::string& text) {
    return std::filesystem::u8path(text).wstring();
}

std::string utf8(const std::wstring& text) {
    return std::filesystem::path(text).u8string();
}

std::wstring programPath() {
    std::vector<wchar_t> program(longestText);
    GetModuleFileNameW(nullptr, program.data(), longestText);
    return program.data();
}

// The C library tells the handler of a signal while it sets one.
std::string handlerOf(int number) {
    const auto handler = std::signal(number, SIG_DFL);
    std::signal(number, handler);
    return " " + std::to_string(number) + "=" +
           std::to_string(reinterpret_cast<std::uintptr_t>(handler));
}

LONG WINAPI endProcess(EXCEPTION_POINTERS* fault) {
    TerminateProcess(GetCurrentProcess(), fault->ExceptionRecord->ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

HANDLE start(const std::wstring& program, std::wstring line, DWORD flags) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    if (CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, flags, nullptr,
                       nullptr, &startup, &process) == 0) {
        std::fprintf(stderr, "%ls: error %lu\n", program.c_str(), GetLastError());
        std::abort();
    }
    CloseHandle(process.hThread);
    return process.hProcess;
}

}  // namespace

const char pathSeparator = ';';

// Through the system, since a C library keeps a copy of its own that child processes do not see.
std::string environmentText(const std::string& name) {
    std::vector<wchar_t> value(longestText);
    const DWORD length = GetEnvironmentVariableW(wide(name).c_str(), value.data(), longestText);
    return utf8(std::wstring(value.data(), length));
}

void setEnvironmentText(const std::string& name, const std::string& value) {
    const std::wstring text = wide(value);
    SetEnvironmentVariableW(wide(name).c_str(), value.empty() ? nullptr : text.c_str());
}

std::string programFolder() {
    return std::filesystem::path(programPath()).parent_path().u8string();
}

// The DLL shares this C library.
void setTimeZone(const char* name) {
    _putenv((std::string("TZ=") + (name == nullptr ? "" : name)).c_str());
    _tzset();
}

unsigned long processNumber() {
    return GetCurrentProcessId();
}

unsigned long long callingThread() {
    return GetCurrentThreadId();
}

std::string systemState() {
    std::string handled;
    for (const int number : {SIGABRT, SIGFPE, SIGILL, SIGINT, SIGSEGV, SIGTERM})
        handled += handlerOf(number);
    return "threads: " + std::to_string(threadCount()) +
           "\nerror mode: " + std::to_string(GetErrorMode()) + "\nhandled signals:" + handled +
           "\n";
}

long residentBytes() {
    HeapCompact(GetProcessHeap(), 0);
    PROCESS_MEMORY_COUNTERS counters = {};
    counters.cb = sizeof counters;
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return static_cast<long>(counters.WorkingSetSize);
}

// By asking for each handle number, since not every system has a count of them.
long openHandles() {
    constexpr int longestGap = 5000;
    long count = 0;
    int gap = 0;
    for (std::intptr_t number = 4; gap < longestGap; number += 4) {
        DWORD flags = 0;
        const bool isOpen = GetHandleInformation(reinterpret_cast<HANDLE>(number), &flags) != 0;
        count += isOpen ? 1 : 0;
        gap = isOpen ? 0 : gap + 1;
    }
    return count;
}

const long handlesOfLocks = 8;

long threadCount() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    long count = 0;
    for (BOOL more = Thread32First(snapshot, &entry); more != 0;
         more = Thread32Next(snapshot, &entry)) {
        count += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    }
    CloseHandle(snapshot);
    return count;
}

long endedChildren() {
    return 0;
}

long allChildren() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    long count = 0;
    for (BOOL more = Process32FirstW(snapshot, &entry); more != 0;
         more = Process32NextW(snapshot, &entry)) {
        // The system starts that one for a console, as a child of the process that has it.
        const bool isConsole = std::wcscmp(entry.szExeFile, L"conhost.exe") == 0;
        const bool isChild = entry.th32ParentProcessID == GetCurrentProcessId();
        count += isChild && !isConsole ? 1 : 0;
    }
    CloseHandle(snapshot);
    return count;
}

IgnoredLeaks::IgnoredLeaks() = default;
IgnoredLeaks::~IgnoredLeaks() = default;

bool sanitizerFindsLeaks() {
    return false;
}

void describeProcess(std::ostream& out) {
    STARTUPINFOW startup = {};
    GetStartupInfoW(&startup);
    const bool showGiven = (startup.dwFlags & STARTF_USESHOWWINDOW) != 0;
    out << "command-line\t" << utf8(GetCommandLineW()) << '\n';
    out << "directory\t" << std::filesystem::current_path().u8string() << '\n';
    out << "show-window\t" << (showGiven ? std::to_string(startup.wShowWindow) : "default") << '\n';
}

void crash() {
    SetUnhandledExceptionFilter(endProcess);
    RaiseException(EXCEPTION_ACCESS_VIOLATION, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    std::abort();
}

void ignoreSignals() {}

void startThisProgramAgain() {
    CloseHandle(start(programPath(), L'"' + programPath() + L'"', CREATE_NEW_CONSOLE));
}

ChildHost::ChildHost(const std::string& program, const std::vector<std::string>& arguments) {
    const std::string path = programFolder() + "\\" + program + ".exe";
    std::string line = '"' + path + '"';
    for (const std::string& argument : arguments)
        line += " \"" + argument + '"';
    process_ = start(wide(path), wide(line), 0);
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

void* loadLibrary(const char* path) {
    return LoadLibraryA(path);
}

bool unloadLibrary(void* library) {
    return FreeLibrary(static_cast<HMODULE>(library)) != 0;
}

std::string lastLoadError() {
    return "error " + std::to_string(GetLastError());
}

void* findSymbol(void* library, const char* name) {
    const FARPROC found = GetProcAddress(static_cast<HMODULE>(library), name);
    void* result = nullptr;
    std::memcpy(&result, &found, sizeof result);
    return result;
}

bool isLibraryLoaded(const char* path) {
    return GetModuleHandleA(path) != nullptr;
}

const bool librarySharesCppRuntime = false;

const long bytesKeptOfLoad = 1280;
const long bytesKeptOfThread = 1536;
const long handlesKeptOfThread = 2;

std::string takeDeliveredFile(void* handle) {
    LARGE_INTEGER size = {};
    const bool known = GetFileSizeEx(handle, &size) != 0;
    const bool closed = CloseHandle(handle) != 0;
    return known && closed ? std::to_string(size.QuadPart) + " bytes" : "no file";
}

bool closesOnBytes(void* handle, const std::string& bytes) {
    return takeDeliveredFile(handle) == std::to_string(bytes.size()) + " bytes";
}

}  // namespace rgen_test
