// Starting a program, waiting for it, and ending it with all processes that it has started.
// child_process_posix.cpp and child_process_windows.cpp implement it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tools {

struct ProcessRequest {
    std::filesystem::path program;
    /// In UTF-8, without the name of the program.
    std::vector<std::string> arguments;
    /// Environment variables in addition to those of this process, or instead of them.
    std::map<std::string, std::string> environment;
    /// Receives standard output and standard error.
    std::filesystem::path outputFile;
    /// Bytes of memory that the program and its children may use together; 0 means no limit. The
    /// system enforces it on Windows only.
    std::uint64_t memoryLimit = 0;
};

/// A running program without a window and without standard input, in a process group (Linux) or
/// job (Windows) of its own. The program and its children are killed by the destructor, and also
/// when this process is killed.
class ChildProcess {
public:
    /// Throws std::system_error when the program cannot be started.
    explicit ChildProcess(const ProcessRequest& request);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Waits for the program's end, at most `longest`. Returns its exit code, or -1 if it was
    /// killed; empty optional while it is still running.
    std::optional<int> wait(std::chrono::milliseconds longest);

    /// The private memory, in bytes, of the program and its children.
    std::uint64_t memory() const;

    /// Kills the program and its children.
    void kill();

private:
    bool hasEnded();

    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace tools
