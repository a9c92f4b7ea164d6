// Somebody who removes what a process leaves when it is ended in a way that it cannot notice.
// guardian_posix.cpp and guardian_windows.cpp are the two sources behind it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <memory>

namespace tools {

/// A process beside this one. When this one ends without the destructor, it removes the files and
/// folders that were named to it. Where it cannot be started, nothing is watched.
class Guardian {
public:
    Guardian();
    /// From now on nothing is removed.
    ~Guardian();
    Guardian(const Guardian&) = delete;
    Guardian& operator=(const Guardian&) = delete;

    /// Names a file or a folder, which is removed with all that is in it.
    void watch(const std::filesystem::path& path);

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// What the guardian does: reads zero-terminated paths with `readSome` until it returns 0, and
/// removes them, unless an empty one came.
void removeWhatIsLeft(long (*readSome)(char* buffer, unsigned long size));

/// The word with which a program is started on Windows to be a guardian; its main function then
/// calls removeWhatStandardInputNames and ends.
constexpr const wchar_t* guardianWord = L"--guard-files";
void removeWhatStandardInputNames();

}  // namespace tools
