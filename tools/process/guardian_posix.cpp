// The guardian on Linux: a forked process that reads a pipe, the lifeline, whose write end this
// process keeps.
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

/// The read end of the lifeline, in the guardian.
int guardianInput = -1;

long readLifeline(char* buffer, unsigned long size) {
    for (;;) {
        const ssize_t got = read(guardianInput, buffer, size);
        if (got >= 0 || errno != EINTR) return got;
    }
}

/// In a session of its own, so that signals to the group or terminal of this process do not reach
/// it. It keeps none of the standard streams open: a reader of their output would wait for it.
[[noreturn]] void becomeGuardian(const int (&lifeline)[2]) {
    setsid();
    close(lifeline[1]);
    guardianInput = lifeline[0];
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(nothing, stream);
    static_cast<void>(!chdir("/"));
    removeWhenOwnerEnds(readLifeline);
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
