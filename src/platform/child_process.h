// A program that the library starts: the external converter.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace rgen::platform {

/// A program that was started from one command line. It has no console window, inherits no open
/// files, and keeps running when this object is destroyed.
class ChildProcess {
public:
    /// Starts the program named by the first word of `commandLine` (UTF-8), found by the system's
    /// usual search. Check started() afterwards. Throws std::range_error like toWidePath.
    explicit ChildProcess(const std::string& commandLine);
    ~ChildProcess();

    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    bool started() const;

    /// Waits until the program ends. True when it still runs after `milliseconds`; false when it
    /// has ended or the wait failed.
    bool waitTimedOut(std::uint32_t milliseconds);

    /// Returns the exit code of an ended program; call it once. False when the code is unknown.
    bool queryExitCode(std::uint32_t& exitCode);

private:
    std::intptr_t process_;
    std::intptr_t waitHandle_;
};

/// Reaps programs that were still running when their ChildProcess was destroyed and have ended
/// since. Cheap when there are none; does nothing on Windows, which has no zombie processes.
void reapAbandonedProcesses();

}  // namespace rgen::platform
