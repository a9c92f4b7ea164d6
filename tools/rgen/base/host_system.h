// All that rgen asks of the operating system. host_system_posix.cpp and host_system_windows.cpp are
// the two sources behind it; CMake compiles exactly one.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace cli {

/// Makes standard output and error binary and UTF-8. A stream that was closed stays unusable, and
/// no file that is opened later takes its place.
void prepareStreams();

bool standardErrorIsTerminal();
bool standardOutputIsTerminal();

/// Tells whether standard error is a terminal that takes colour sequences.
bool standardErrorHasColour();

/// Tells, directly after a write to standard output failed for `reason`, whether it is a pipe whose
/// reader has gone.
bool isWithoutReader(int reason);

/// Calls `handler` on a thread of its own, once for each Ctrl-C or request to end; with true when
/// the process is about to be ended anyway. Requests that the process was started to ignore stay
/// ignored. Writing into a closed pipe, or beyond the size that files may have, becomes an ordinary
/// failure.
void watchInterrupts(void (*handler)(bool mustEnd));

/// While it lives, what the process prints to standard output goes to standard error.
class StdoutToStderr {
public:
    StdoutToStderr();
    ~StdoutToStderr();
    StdoutToStderr(const StdoutToStderr&) = delete;
    StdoutToStderr& operator=(const StdoutToStderr&) = delete;

private:
    int saved_;
};

/// Closes the handle of a delete-on-close file, which removes the file; returns the size it had.
std::uint64_t closeDeleteOnCloseFile(void* handle);

struct LoadedLibrary {
    /// UTF-8 path of the file.
    std::string path;
    /// "1.2.3", or "unknown" when the file does not tell.
    std::string version;
};

/// The report library that this process has loaded.
LoadedLibrary loadedLibrary();

/// Lets the system find programs in rgen's own folder, after those on PATH. Windows looks there
/// anyway.
void searchOwnFolder();

}  // namespace cli
