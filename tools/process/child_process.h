// A program that another one starts, watches and can end with all that it has started.
// child_process_posix.cpp and child_process_windows.cpp are the two sources behind it.
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

/// What to start and how.
struct ProcessRequest {
    std::filesystem::path program;
    /// UTF-8, without the program's name.
    std::vector<std::string> arguments;
    /// Variables that the program gets besides this one's.
    std::map<std::string, std::string> environment;
    /// Receives standard output and error.
    std::filesystem::path outputFile;
    /// So many bytes of memory the program and its children may have together, where the system can
    /// hold them to it (Windows); 0: as much as they like.
    std::uint64_t memoryLimit = 0;
};

/// A started program, without a window and without standard input. It is a group of its own; when
/// this goes, or this process ends in whatever way, the program is ended with its children.
class ChildProcess {
public:
    /// Raises std::system_error when the program cannot be started.
    explicit ChildProcess(const ProcessRequest& request);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Waits for the end, at most so long. The exit code, or -1 for a program that was ended from
    /// outside; nothing while it still runs.
    std::optional<int> wait(std::chrono::milliseconds longest);

    /// The memory, in bytes, that the program and its children have for themselves.
    std::uint64_t memory() const;

    /// Ends the program and all that it has started, at once.
    void kill();

private:
    bool hasEnded();

    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace tools
