// The calls of rgen to the operating system, implemented in host_system_posix.cpp and
// host_system_windows.cpp; CMake compiles one of them.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace cli {

/// Makes standard output and error binary and UTF-8. A stream that was closed at the start stays
/// unusable, and no file that is opened later gets its descriptor.
void prepareStreams();

bool standardErrorIsTerminal();
bool standardOutputIsTerminal();

/// Tells whether standard error is a terminal that takes colour sequences.
bool standardErrorHasColour();

/// To be called directly after a failed write to standard output, with its errno: tells whether it
/// is a pipe whose reader has closed it.
bool isWithoutReader(int reason);

/// Calls `handler` on its own thread for each Ctrl-C or request to end; with true when it must end
/// at once: at SIGTERM and SIGHUP, or when Windows is about to end the process anyway. Signals that
/// the parent process ignored stay ignored. Writing to a closed pipe or beyond the file size limit
/// becomes an ordinary error.
void watchInterrupts(void (*handler)(bool mustEnd));

/// While it exists, standard output of the process is redirected to standard error.
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

/// Makes a file at `path` with the content of `original`, which lies on the same disk: a relative
/// link, on Windows, where links need a privilege, a copy. Throws std::system_error.
void makeSameFile(const std::string& path, const std::string& original);

/// Adds the folder of rgen to the end of PATH. Windows searches it without that.
void addProgramFolderToPath();

}  // namespace cli
