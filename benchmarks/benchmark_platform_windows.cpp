// The benchmarks on Windows. The paths of workloads are ASCII.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include <psapi.h>

#include <stdexcept>

#include "benchmark_platform.h"

namespace benchmarks {
namespace {

void require(bool done, const char* what, const std::string& path) {
    if (!done) throw std::runtime_error(std::string(what) + " " + path);
}

bool exists(const std::string& path) {
    return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::size_t findByView(std::string_view text, std::string_view wanted) {
    return text.find(wanted);
}

}  // namespace

void requireExists(const std::string& path) {
    require(exists(path), "there is no", path);
}

std::string readWholeFile(const std::string& path) {
    const HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    require(file != INVALID_HANDLE_VALUE, "cannot open", path);
    LARGE_INTEGER size{};
    require(GetFileSizeEx(file, &size) != 0, "cannot query", path);
    std::string bytes(static_cast<std::size_t>(size.QuadPart), '\0');
    DWORD count = 0;
    const bool done =
        ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) != 0;
    require(done && count == bytes.size(), "cannot read", path);
    CloseHandle(file);
    return bytes;
}

void replaceFile(const std::string& path, const std::vector<unsigned char>& bytes) {
    if (exists(path)) require(DeleteFileA(path.c_str()) != 0, "cannot remove", path);
    const HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                    CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    require(file != INVALID_HANDLE_VALUE, "cannot create", path);
    DWORD count = 0;
    const bool done =
        WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) != 0;
    require(done && count == bytes.size(), "cannot write", path);
    require(CloseHandle(file) != 0, "cannot close", path);
}

ProcessMemory readProcessMemory() {
    ProcessMemory memory;
    PROCESS_MEMORY_COUNTERS counters{};
    if (K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters)) != 0) {
        memory.residentKib = static_cast<long>(counters.WorkingSetSize / 1024);
        memory.peakKib = static_cast<long>(counters.PeakWorkingSetSize / 1024);
    }
    return memory;
}

long stackUsedBy(const std::function<void()>& /*work*/) {
    return -1;
}

std::vector<PlainSearch> plainSearches() {
    return {{"find", findByView}};
}

}  // namespace benchmarks
