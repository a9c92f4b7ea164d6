// ChildProcess on Linux: the program is started without a shell and waited for through a process
// descriptor.
//
// SPDX-License-Identifier: MIT
#include "platform/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <mutex>
#include <new>
#include <vector>

#include "platform/platform.h"

namespace rgen::platform {
namespace {

/// Splits at blanks outside double quotes and removes the quotes. Nothing else is special.
std::vector<std::string> splitCommandLine(const std::string& commandLine) {
    std::vector<std::string> words;
    bool inQuotes = false;
    bool inWord = false;
    for (const char character : commandLine) {
        if (character == ' ' && !inQuotes) {
            inWord = false;
            continue;
        }
        if (!inWord) words.emplace_back();
        inWord = true;
        if (character == '"') {
            inQuotes = !inQuotes;
        } else {
            words.back() += character;
        }
    }
    return words;
}

/// The program gets a session of its own, default signals, the null device as its standard streams
/// and no other descriptor.
class SpawnSettings {
public:
    SpawnSettings() {
        if (posix_spawn_file_actions_init(&actions) != 0) throw std::bad_alloc();
        if (posix_spawnattr_init(&attributes) != 0) {
            posix_spawn_file_actions_destroy(&actions);
            throw std::bad_alloc();
        }
        sigset_t signals;
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&attributes, &signals);
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes, &signals);
        posix_spawnattr_setflags(
            &attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
        if (!describeDescriptors()) {
            release();
            throw std::bad_alloc();
        }
    }
    ~SpawnSettings() { release(); }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;

private:
    bool describeDescriptors() {
        for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
            const int added =
                posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
            if (added != 0) return false;
        }
        return posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1) == 0;
    }

    void release() {
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&actions);
    }
};

constexpr int noDescriptor = -1;

int openProcessDescriptor(pid_t process) {
    return static_cast<int>(syscall(SYS_pidfd_open, process, 0));
}

enum class ChildState { Running, Ended, Unknown };

/// Reaps the process if it has ended. A process that the host has reaped counts as ended and leaves
/// `exitCode` unchanged. Uses the process id when the system refused a process descriptor.
ChildState tryReap(pid_t process, int descriptor, std::uint32_t& exitCode) {
    siginfo_t info = {};
    const idtype_t kind = descriptor == noDescriptor ? P_PID : P_PIDFD;
    const id_t id = static_cast<id_t>(descriptor == noDescriptor ? process : descriptor);
    int outcome = 0;
    do {
        outcome = waitid(kind, id, &info, WEXITED | WNOHANG);
    } while (outcome == -1 && errno == EINTR);
    if (outcome == -1) return errno == ECHILD ? ChildState::Ended : ChildState::Unknown;
    if (info.si_pid == 0) return ChildState::Running;
    exitCode = static_cast<std::uint32_t>(info.si_status);
    return ChildState::Ended;
}

/// An intrusive list without a destructor: a host's exit functions may run after the destructors of
/// this library's static objects.
struct AbandonedProcess {
    pid_t process;
    int descriptor;
    AbandonedProcess* next;
};

std::mutex abandonedMutex;
AbandonedProcess* abandonedProcesses = nullptr;
std::atomic<bool> anyAbandoned = false;

void abandon(pid_t process, int descriptor) {
    void* room = std::malloc(sizeof(AbandonedProcess));
    if (room == nullptr) {
        if (descriptor != noDescriptor) close(descriptor);
        return;
    }
    const std::lock_guard lock(abandonedMutex);
    abandonedProcesses = ::new (room) AbandonedProcess{process, descriptor, abandonedProcesses};
    anyAbandoned = true;
}

/// True when the process has ended or can never be reaped; its descriptor is then closed.
bool disposeIfEnded(pid_t process, int descriptor) {
    std::uint32_t exitCode = 0;
    if (tryReap(process, descriptor, exitCode) == ChildState::Running) return false;
    if (descriptor != noDescriptor) close(descriptor);
    return true;
}

/// Runs when the library is unloaded or the process ends: nothing reaps these programs any more.
/// At process exit other threads may still run; if one of them uses the list, it is left alone.
[[gnu::destructor]] void forgetAbandonedProcesses() {
    const std::unique_lock lock(abandonedMutex, std::try_to_lock);
    if (!lock.owns_lock()) return;
    while (AbandonedProcess* abandoned = abandonedProcesses) {
        if (abandoned->descriptor != noDescriptor) close(abandoned->descriptor);
        abandonedProcesses = abandoned->next;
        std::free(abandoned);
    }
    anyAbandoned = false;
}

/// Replaces the wait on a process descriptor when the system refuses one: polls every 20 ms.
bool pollTimedOut(pid_t process, std::uint32_t milliseconds) {
    constexpr std::uint32_t step = 20;
    for (std::uint32_t passed = 0; passed < milliseconds; passed += step) {
        siginfo_t info = {};
        const int outcome =
            waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOHANG | WNOWAIT);
        if (outcome == -1 || info.si_pid != 0) return false;
        poll(nullptr, 0, step);
    }
    return true;
}

}  // namespace

ChildProcess::ChildProcess(const std::string& commandLine)
    : process_(0), waitHandle_(noDescriptor) {
    std::vector<std::string> words = splitCommandLine(toWidePath(commandLine));
    if (words.empty()) return;
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const SpawnSettings settings;
    pid_t process = 0;
    if (posix_spawnp(&process, arguments.front(), &settings.actions, &settings.attributes,
                     arguments.data(), environ) != 0) {
        return;
    }
    process_ = process;
    waitHandle_ = openProcessDescriptor(process);
}

ChildProcess::~ChildProcess() {
    const auto process = static_cast<pid_t>(process_);
    const auto descriptor = static_cast<int>(waitHandle_);
    if (started() && !disposeIfEnded(process, descriptor)) abandon(process, descriptor);
}

bool ChildProcess::started() const {
    return process_ != 0;
}

bool ChildProcess::waitTimedOut(std::uint32_t milliseconds) {
    if (waitHandle_ == noDescriptor)
        return pollTimedOut(static_cast<pid_t>(process_), milliseconds);
    pollfd ended = {static_cast<int>(waitHandle_), POLLIN, 0};
    const int outcome = poll(&ended, 1, static_cast<int>(milliseconds));
    // A signal handler of the host may interrupt the wait; the caller simply waits again.
    return outcome == 0 || (outcome == -1 && errno == EINTR);
}

bool ChildProcess::queryExitCode(std::uint32_t& exitCode) {
    exitCode = 0;
    const auto descriptor = static_cast<int>(waitHandle_);
    if (tryReap(static_cast<pid_t>(process_), descriptor, exitCode) != ChildState::Ended) {
        return false;
    }
    // From now on the system may reuse the process id.
    if (descriptor != noDescriptor) close(descriptor);
    process_ = 0;
    return true;
}

void reapAbandonedProcesses() {
    if (!anyAbandoned) return;
    // Never blocks: the owner of the lock may be a thread that no longer exists after a fork.
    const std::unique_lock lock(abandonedMutex, std::try_to_lock);
    if (!lock) return;
    AbandonedProcess** link = &abandonedProcesses;
    while (AbandonedProcess* abandoned = *link) {
        if (disposeIfEnded(abandoned->process, abandoned->descriptor)) {
            *link = abandoned->next;
            std::free(abandoned);
        } else {
            link = &abandoned->next;
        }
    }
    anyAbandoned = abandonedProcesses != nullptr;
}

}  // namespace rgen::platform
