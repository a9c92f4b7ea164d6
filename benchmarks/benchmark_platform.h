// What the benchmarks ask of the operating system.
// benchmark_platform_posix.cpp and benchmark_platform_windows.cpp implement it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace benchmarks {

// ---- Files: the system calls that one report needs at least ----

/// Queries the attributes of a file; throws std::runtime_error when it does not exist.
void requireExists(const std::string& path);

/// Opens a file, queries its size, reads and closes it.
std::string readWholeFile(const std::string& path);

/// Deletes the file if it exists, then creates, writes and closes it.
void replaceFile(const std::string& path, const std::vector<unsigned char>& bytes);

// ---- Memory and stack ----

struct ProcessMemory {
    long residentKib = 0;
    long peakKib = 0;
};

/// The memory of this process.
ProcessMemory readProcessMemory();

/// Bytes of stack that `work` uses on a new thread, without those of an empty thread function; -1
/// where this cannot be measured.
long stackUsedBy(const std::function<void()>& work);

// ---- Substring search ----

/// A substring search of a standard library, to compare the translation pass with.
struct PlainSearch {
    const char* name;
    /// Returns the offset of `wanted` in `text`, or npos.
    std::size_t (*find)(std::string_view text, std::string_view wanted);
};

/// The searches that this system has.
std::vector<PlainSearch> plainSearches();

}  // namespace benchmarks
