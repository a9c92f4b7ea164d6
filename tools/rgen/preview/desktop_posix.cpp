// SPDX-License-Identifier: MIT
#include "preview/desktop.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <system_error>
#include <thread>

#include "base/command_error.h"

namespace cli {
namespace {

/// The attributes of a program in a process group of its own, so that Ctrl-C does not end it, and
/// the null device as its standard input and output.
class Detachment {
public:
    Detachment() {
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setflags(
            &attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes_, &signals);
        for (const int each : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
            sigaddset(&signals, each);
        posix_spawnattr_setsigdefault(&attributes_, &signals);
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        for (const int output : {STDOUT_FILENO, STDERR_FILENO})
            posix_spawn_file_actions_addopen(&actions_, output, "/dev/null", O_WRONLY, 0);
    }
    ~Detachment() {
        posix_spawn_file_actions_destroy(&actions_);
        posix_spawnattr_destroy(&attributes_);
    }
    Detachment(const Detachment&) = delete;
    Detachment& operator=(const Detachment&) = delete;

    int spawn(pid_t& process, char* const* words) {
        return posix_spawnp(&process, words[0], &actions_, &attributes_, words, environ);
    }

private:
    posix_spawnattr_t attributes_{};
    posix_spawn_file_actions_t actions_{};
};

/// Without this an ended program would stay in the system's list until rgen ends.
void awaitEnd(pid_t process) {
    std::thread([process] {
        while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
        }
    }).detach();
}

}  // namespace

void openInBrowser(const std::string& address) {
    startProgram({"xdg-open", address});
}

void startProgram(const std::vector<std::string>& words) {
    std::vector<std::string> copies = words;
    std::vector<char*> pointers;
    for (std::string& word : copies)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    pid_t process = 0;
    const int failure = Detachment().spawn(process, pointers.data());
    if (failure == 0) return awaitEnd(process);
    throw CommandError(
        ExitCode::Environment,
        "\"" + words.front() + "\" cannot be started: " + std::generic_category().message(failure),
        "check that the program is installed");
}

}  // namespace cli
