// Removes temporary files even if this process is killed.
// guardian_posix.cpp and guardian_windows.cpp implement it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <memory>

namespace tools {

/// A second process that waits for the end of this one. If this one ends without calling the
/// destructor, it removes the files and folders that were passed to watch(). Does nothing if the
/// process cannot be started.
class Guardian {
public:
    Guardian();
    /// Ends the guardian without removing anything.
    ~Guardian();
    Guardian(const Guardian&) = delete;
    Guardian& operator=(const Guardian&) = delete;

    /// Adds a file, or a folder with all that it contains.
    void watch(const std::filesystem::path& path);

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// The guardian's work: reads null-terminated paths with `readSome` until that returns 0, then
/// removes them. An empty path ends it without removing anything.
void removeWhenOwnerEnds(long (*readSome)(char* buffer, unsigned long size));

/// On Windows the guardian is the same program, started with this one argument: its main function
/// then calls runGuardian and returns.
constexpr const wchar_t* guardianArgument = L"--guard-files";
void runGuardian();

}  // namespace tools
