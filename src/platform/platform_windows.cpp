// platform.h on Windows. Paths are passed to the file system as UTF-16; only the path of the
// delete-on-close file is passed unchanged, in the ANSI code page.
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

/// This compiler's thread-local variables take a lock on Windows; the system's TLS slots do not.
/// Before the slot is allocated, or if none was free, the pointer reads as null.
DWORD threadSlot = TLS_OUT_OF_INDEXES;

class ThreadSlotOwner {
public:
    ThreadSlotOwner() { threadSlot = TlsAlloc(); }
    ~ThreadSlotOwner() { TlsFree(std::exchange(threadSlot, TLS_OUT_OF_INDEXES)); }
    ThreadSlotOwner(const ThreadSlotOwner&) = delete;
    ThreadSlotOwner& operator=(const ThreadSlotOwner&) = delete;
};

const ThreadSlotOwner threadSlotOwner;

}  // namespace

const char pathSeparator = '\\';

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
    // On purpose: the ANSI call, the only one that takes the bytes of a path unchanged.
    constexpr DWORD notShared = 0;
    file = CreateFileA(path.c_str(), GENERIC_WRITE, notShared, nullptr, CREATE_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    return file != INVALID_HANDLE_VALUE;
}

bool writeToFile(FileHandle file, const void* bytes, std::size_t size, std::size_t& written) {
    // On purpose: the length is truncated to 32 bits. For a larger size the caller sees a short
    // count.
    const auto length = static_cast<DWORD>(size & std::numeric_limits<DWORD>::max());
    DWORD count = 0;
    const bool succeeded = WriteFile(file, bytes, length, &count, nullptr) != FALSE;
    written = count;
    return succeeded;
}

void closeFile(FileHandle file) {
    CloseHandle(file);
}

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
