// A guardian on Linux: a fork that waits at a pipe.
//
// SPDX-License-Identifier: MIT
#include "process/guardian.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace tools {

struct Guardian::State {
    pid_t process = -1;
    int lifeline = -1;
};

namespace {

/// The end of the pipe at which the guardian waits.
int watched = -1;

long readWatched(char* buffer, unsigned long size) {
    for (;;) {
        const ssize_t got = read(watched, buffer, size);
        if (got >= 0 || errno != EINTR) return got;
    }
}

/// A session of its own: what ends the other's group or terminal does not end it. Nobody waits for
/// the end of its output.
[[noreturn]] void becomeGuardian(const int (&lifeline)[2]) {
    setsid();
    close(lifeline[1]);
    watched = lifeline[0];
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(nothing, stream);
    static_cast<void>(!chdir("/"));
    removeWhatIsLeft(readWatched);
    _exit(0);
}

void writeAll(int descriptor, const std::string& text) {
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t size = write(descriptor, text.data() + done, text.size() - done);
        if (size < 0 && errno == EINTR) continue;
        if (size <= 0) return;
        done += static_cast<std::size_t>(size);
    }
}

}  // namespace

Guardian::Guardian() : state_(std::make_unique<State>()) {
    int lifeline[2] = {-1, -1};
    if (pipe2(lifeline, O_CLOEXEC) != 0) return;
    state_->process = fork();
    if (state_->process == 0) becomeGuardian(lifeline);
    close(lifeline[0]);
    state_->lifeline = lifeline[1];
}

Guardian::~Guardian() {
    if (state_->lifeline < 0) return;
    writeAll(state_->lifeline, std::string(1, '\0'));
    close(state_->lifeline);
    if (state_->process > 0) waitpid(state_->process, nullptr, 0);
}

void Guardian::watch(const std::filesystem::path& path) {
    if (state_->process > 0) writeAll(state_->lifeline, path.string() + '\0');
}

}  // namespace tools
