// What the host library asks of the operating system, without an OS header.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <boost/filesystem/path.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace rgenh::platform {

/// Identifies the calling thread among the running ones.
std::uint64_t currentThread() noexcept;

/// Identifies the process. Linux: a forked process has another number than its parent.
std::uint64_t currentProcess() noexcept;

/// A mutex with one condition. The standard ones leak memory with the Windows compiler: their
/// destructors do nothing, but their first use allocates.
class Monitor {
public:
    Monitor();
    ~Monitor();
    Monitor(const Monitor&) = delete;
    Monitor& operator=(const Monitor&) = delete;

    void lock() noexcept;
    void unlock() noexcept;

    /// Call with the lock held: releases it until notifyAll, the end of the time, or for no reason.
    /// A negative time has no end.
    void wait(std::int64_t milliseconds) noexcept;
    void notifyAll() noexcept;

    /// Call with the lock held: waits until `condition()` is true, which it returns, or the time is
    /// over. A negative time has no end.
    template <typename Condition>
    bool waitUntil(Condition condition, std::int64_t milliseconds = -1);

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// A thread with a stack of a given size.
class Thread {
public:
    Thread() noexcept = default;
    /// The thread must have been joined or detached.
    ~Thread() = default;
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    /// Calls `run(argument)` on a new thread. Returns whether there is one. Linux: the thread
    /// blocks the signals that rgenh_startReport lists, so that the host's handlers run on the
    /// host's threads.
    bool start(void (*run)(void*), void* argument, std::size_t stackBytes) noexcept;

    /// Whether the system has ended the thread in the middle of its work, as Windows ends all other
    /// threads at the end of a process.
    bool isTerminated() const noexcept;
    /// Whether start() succeeded and neither join() nor detach() was called.
    bool isJoinable() const noexcept { return isJoinable_; }
    void join() noexcept;
    void detach() noexcept;

private:
    std::uintptr_t handle_ = 0;
    bool isJoinable_ = false;
};

/// Microseconds of a clock that never goes back.
std::int64_t monotonicMicroseconds() noexcept;

/// How many processors the process may use.
int processorCount() noexcept;

template <typename Condition>
bool Monitor::waitUntil(Condition condition, std::int64_t milliseconds) {
    const std::int64_t start = milliseconds < 0 ? 0 : monotonicMicroseconds();
    while (!condition()) {
        std::int64_t left = -1;
        if (milliseconds >= 0) {
            const std::int64_t passed = (monotonicMicroseconds() - start) / 1000;
            if (passed >= milliseconds) return false;
            left = milliseconds - passed;
        }
        wait(left);
    }
    return true;
}

/// A UTF-8 path as the system takes it. Throws std::range_error if it is not UTF-8.
boost::filesystem::path nativePath(const std::string& path);

///@{
/// A path of the system in UTF-8.
std::string utf8Path(const std::string& path);
std::string utf8Path(const std::wstring& path);
///@}

/// The system's English description of an error number, UTF-8, without a line break; for a number
/// without one "error 1234".
std::string systemErrorText(std::int64_t number);

/// A file that the process has loaded.
struct LoadedFile {
    /// UTF-8; empty if the system does not say.
    std::string path;
    /// Such as "1.2.3"; "unknown" if the file does not say.
    std::string version;
};

/// The program or library that contains the object at an address. Not for functions: in a program
/// at a fixed address their address is that of a jump in the program.
LoadedFile loadedFileOf(const void* address);

/// Closes a result of output mode 1.
void closeFile(void* handle) noexcept;

}  // namespace rgenh::platform
