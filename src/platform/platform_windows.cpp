// The Windows half of platform.h. Paths go to the file system as UTF-16; only the delete-on-close
// file passes its path on as it is, in the ANSI code page.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include <codecvt>
#include <limits>
#include <locale>
#include <utility>

#include "platform/platform.h"
#include "platform/utf8.h"

namespace rgen::platform {
namespace {

constexpr std::int64_t lastAcceptedSecond = 32535215999;

constexpr std::size_t kibibyte = 1024;

/// Thread-local variables of this compiler take a lock on Windows; the system's slots do not. No
/// slot yet, or none to be had: the pointer reads as null.
DWORD threadSlot = TLS_OUT_OF_INDEXES;

class ThreadSlotOwner {
public:
    ThreadSlotOwner() { threadSlot = TlsAlloc(); }
    ~ThreadSlotOwner() { TlsFree(std::exchange(threadSlot, TLS_OUT_OF_INDEXES)); }
    ThreadSlotOwner(const ThreadSlotOwner&) = delete;
    ThreadSlotOwner& operator=(const ThreadSlotOwner&) = delete;
};

const ThreadSlotOwner threadSlotOwner;

HANDLE asHandle(std::intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle);
}

}  // namespace

const char pathSeparator = '\\';

const StackRule smallStackRule = {256 * kibibyte, 0};

const StackRule unknownStackRule = {256 * kibibyte, 0};

// Of the 512 KiB that every call may count on, the host and the way to the template take up to 32.
const std::size_t assumedStack = 480 * kibibyte;

NativePathText toWidePath(const std::string& utf8Text) {
    requireUtf8(utf8Text);
    return std::wstring_convert<std::codecvt_utf8_utf16<wchar_t>>().from_bytes(utf8Text);
}

bool namesSpecialFile(const std::string& path) {
    requireUtf8(path);
    return false;
}

void adoptTimeZone() {}

bool localTime(std::int64_t secondsSince1970, std::tm& brokenDown) {
    if (secondsSince1970 < 0 || secondsSince1970 > lastAcceptedSecond) return false;
    const __time64_t seconds = secondsSince1970;
    const std::tm* converted = _localtime64(&seconds);
    if (converted == nullptr) return false;
    brokenDown = *converted;
    return true;
}

bool appendByHostFacet(std::string& /*text*/, const std::tm& /*brokenDown*/,
                       std::string_view /*pattern*/) {
    return false;
}

bool createDeleteOnCloseFile(const std::string& path, FileHandle& file) {
    // On purpose: the ANSI call, the only one that takes a path as the bytes it is.
    constexpr DWORD notShared = 0;
    file = CreateFileA(path.c_str(), GENERIC_WRITE, notShared, nullptr, CREATE_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    return file != INVALID_HANDLE_VALUE;
}

bool writeToFile(FileHandle file, const void* bytes, std::size_t size, std::size_t& written) {
    // On purpose: the length is cut to 32 bits. The caller sees a larger size as a short count.
    const auto length = static_cast<DWORD>(size & std::numeric_limits<DWORD>::max());
    DWORD count = 0;
    const bool succeeded = WriteFile(file, bytes, length, &count, nullptr) != FALSE;
    written = count;
    return succeeded;
}

void closeFile(FileHandle file) {
    CloseHandle(file);
}

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

void offerPages(void* pages, std::size_t size) {
    VirtualAlloc(pages, size, MEM_RESET, PAGE_READWRITE);
}

void* threadPointer() {
    return TlsGetValue(threadSlot);
}

bool setThreadPointer(void* pointer) {
    return TlsSetValue(threadSlot, pointer) != FALSE;
}

const char* stackLimit() {
    MEMORY_BASIC_INFORMATION region = {};
    if (VirtualQuery(__builtin_frame_address(0), &region, sizeof region) == 0) return nullptr;
    return static_cast<const char*>(region.AllocationBase);
}

}  // namespace rgen::platform
