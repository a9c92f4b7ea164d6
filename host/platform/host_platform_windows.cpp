// The operating system for the host library on Windows. The version of a loaded library is read
// from its version resource, which is in memory.
//
// SPDX-License-Identifier: MIT
#include <process.h>
#include <windows.h>

#include <bitset>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string_view>

#include "platform/host_platform.h"
#include "text/character_check.h"

namespace rgenh::platform {
namespace {

std::string utf8Of(std::wstring_view wide) {
    const int wideSize = static_cast<int>(wide.size());
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, wide.data(), wideSize, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), wideSize, text.data(), size, nullptr, nullptr);
    return text;
}

struct ThreadStart {
    void (*run)(void*);
    void* argument;
};

unsigned __stdcall runThread(void* start) {
    const std::unique_ptr<ThreadStart> owned(static_cast<ThreadStart*>(start));
    owned->run(owned->argument);
    return 0;
}

HMODULE moduleOf(const void* address) {
    HMODULE module = nullptr;
    GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        static_cast<LPCWSTR>(address), &module);
    return module;
}

std::string pathOf(HMODULE module) {
    std::wstring path(MAX_PATH, L'\0');
    DWORD size = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    while (size == path.size()) {
        path.resize(path.size() * 2);
        size = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    }
    path.resize(size);
    return utf8Of(path);
}

/// The fixed part of a version resource, which follows a name of varying length.
const VS_FIXEDFILEINFO* fixedInfoIn(const char* resource, DWORD size) {
    constexpr DWORD signature = 0xFEEF04BD;
    for (DWORD at = 0; at + sizeof(VS_FIXEDFILEINFO) <= size; at += 4) {
        DWORD word = 0;
        std::memcpy(&word, resource + at, sizeof word);
        if (word == signature) return reinterpret_cast<const VS_FIXEDFILEINFO*>(resource + at);
    }
    return nullptr;
}

std::string versionOf(HMODULE module) {
    HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(VS_VERSION_INFO),
                                MAKEINTRESOURCEW(16));  // RT_VERSION as a wide name.
    HGLOBAL loaded = found == nullptr ? nullptr : LoadResource(module, found);
    const void* const resource = loaded == nullptr ? nullptr : LockResource(loaded);
    if (resource == nullptr) return "unknown";
    const VS_FIXEDFILEINFO* const info =
        fixedInfoIn(static_cast<const char*>(resource), SizeofResource(module, found));
    if (info == nullptr) return "unknown";
    return std::to_string(HIWORD(info->dwProductVersionMS)) + "." +
           std::to_string(LOWORD(info->dwProductVersionMS)) + "." +
           std::to_string(HIWORD(info->dwProductVersionLS));
}

}  // namespace

std::uint64_t currentThread() noexcept {
    return GetCurrentThreadId();
}

std::uint64_t currentProcess() noexcept {
    return GetCurrentProcessId();
}

struct Monitor::State {
    // Zero is the initial state of both.
    SRWLOCK mutex = {};
    CONDITION_VARIABLE condition = {};
};

Monitor::Monitor() : state_(std::make_unique<State>()) {}

Monitor::~Monitor() = default;

void Monitor::lock() noexcept {
    AcquireSRWLockExclusive(&state_->mutex);
}

void Monitor::unlock() noexcept {
    ReleaseSRWLockExclusive(&state_->mutex);
}

void Monitor::wait(std::int64_t milliseconds) noexcept {
    constexpr std::int64_t longest = 0x7FFFFFFF;
    DWORD time = INFINITE;
    if (milliseconds >= 0) {
        time = static_cast<DWORD>(milliseconds < longest ? milliseconds : longest);
    }
    SleepConditionVariableSRW(&state_->condition, &state_->mutex, time, 0);
}

void Monitor::notifyAll() noexcept {
    WakeAllConditionVariable(&state_->condition);
}

bool Thread::start(void (*run)(void*), void* argument, std::size_t stackBytes) noexcept {
    std::unique_ptr<ThreadStart> start(new (std::nothrow) ThreadStart{run, argument});
    if (start == nullptr) return false;
    handle_ = _beginthreadex(nullptr, static_cast<unsigned>(stackBytes), runThread, start.get(),
                             STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    isJoinable_ = handle_ != 0;
    // The thread frees it.
    if (isJoinable_) static_cast<void>(start.release());
    return isJoinable_;
}

bool Thread::isTerminated() const noexcept {
    return WaitForSingleObject(reinterpret_cast<HANDLE>(handle_), 0) == WAIT_OBJECT_0;
}

void Thread::join() noexcept {
    WaitForSingleObject(reinterpret_cast<HANDLE>(handle_), INFINITE);
    detach();
}

void Thread::detach() noexcept {
    CloseHandle(reinterpret_cast<HANDLE>(handle_));
    isJoinable_ = false;
}

std::int64_t monotonicMicroseconds() noexcept {
    LARGE_INTEGER frequency;
    LARGE_INTEGER now;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&now);
    const std::int64_t second = frequency.QuadPart;
    constexpr std::int64_t microseconds = 1000000;
    return now.QuadPart / second * microseconds + now.QuadPart % second * microseconds / second;
}

int processorCount() noexcept {
    DWORD_PTR usable = 0;
    DWORD_PTR all = 0;
    GetProcessAffinityMask(GetCurrentProcess(), &usable, &all);
    return static_cast<int>(std::bitset<sizeof usable * 8>(usable).count());
}

boost::filesystem::path nativePath(const std::string& path) {
    if (!isUtf8(path)) throw std::range_error("a path is not valid UTF-8");
    const int size = static_cast<int>(path.size());
    std::wstring wide(path.size(), L'\0');
    const int wideSize = MultiByteToWideChar(CP_UTF8, 0, path.data(), size, wide.data(),
                                             static_cast<int>(wide.size()));
    wide.resize(static_cast<std::size_t>(wideSize));
    return {wide};
}

std::string utf8Path(const std::wstring& path) {
    return utf8Of(path);
}

std::string systemErrorText(std::int64_t number) {
    wchar_t text[512] = {};
    const DWORD flags =
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
    const DWORD code = static_cast<DWORD>(number);
    constexpr DWORD english = 0x0409;
    DWORD size = FormatMessageW(flags, nullptr, code, english, text, 512, nullptr);
    if (size == 0) size = FormatMessageW(flags, nullptr, code, 0, text, 512, nullptr);
    std::wstring_view words(text, size);
    while (!words.empty() && (words.back() == L' ' || words.back() == L'.'))
        words.remove_suffix(1);
    return words.empty() ? "error " + std::to_string(number) : utf8Of(words);
}

LoadedFile loadedFileOf(const void* address) {
    const HMODULE module = moduleOf(address);
    if (module == nullptr) return {"", "unknown"};
    return {pathOf(module), versionOf(module)};
}

void closeFile(void* handle) noexcept {
    CloseHandle(handle);
}

}  // namespace rgenh::platform
