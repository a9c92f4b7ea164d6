// The operating system for rgen on Linux.
//
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "base/host_system.h"
#include "process/this_process.h"

namespace cli {
namespace {

bool isIgnored(int signalNumber) {
    struct sigaction action = {};
    return sigaction(signalNumber, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

void prepareStreams() {
    // Opened in the wrong direction, so that using it fails as it would on a closed stream.
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (fcntl(stream, F_GETFD) >= 0 || errno != EBADF) continue;
        const int direction = stream == STDIN_FILENO ? O_WRONLY : O_RDONLY;
        static_cast<void>(open("/dev/null", direction));  // It takes the lowest free number.
    }
}

bool standardErrorIsTerminal() {
    return isatty(STDERR_FILENO) == 1;
}

bool standardOutputIsTerminal() {
    return isatty(STDOUT_FILENO) == 1;
}

bool standardErrorHasColour() {
    return standardErrorIsTerminal();
}

bool isWithoutReader(int reason) {
    return reason == EPIPE;
}

void watchInterrupts(void (*handler)(bool)) {
    signal(SIGPIPE, SIG_IGN);
    signal(SIGXFSZ, SIG_IGN);
    sigset_t watched;
    sigemptyset(&watched);
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP}) {
        if (!isIgnored(signalNumber)) sigaddset(&watched, signalNumber);
    }
    // Blocked before any other thread exists, so that only the watching thread receives them.
    pthread_sigmask(SIG_BLOCK, &watched, nullptr);
    std::thread([watched, handler] {
        int signalNumber = 0;
        while (sigwait(&watched, &signalNumber) == 0)
            handler(signalNumber != SIGINT);
    }).detach();
}

StdoutToStderr::StdoutToStderr() {
    std::fflush(stdout);
    saved_ = dup(STDOUT_FILENO);
    dup2(STDERR_FILENO, STDOUT_FILENO);
}

StdoutToStderr::~StdoutToStderr() {
    std::fflush(stdout);
    if (saved_ < 0) return;
    dup2(saved_, STDOUT_FILENO);
    close(saved_);
}

std::uint64_t closeDeleteOnCloseFile(void* handle) {
    const int descriptor = static_cast<int>(reinterpret_cast<std::intptr_t>(handle));
    struct stat facts = {};
    const bool known = fstat(descriptor, &facts) == 0;
    close(descriptor);
    return known ? static_cast<std::uint64_t>(facts.st_size) : 0;
}

void addProgramFolderToPath() {
    const std::filesystem::path folder = tools::ownFolder();
    if (folder.empty()) return;
    const char* const searchPath = std::getenv("PATH");
    std::string folders = searchPath == nullptr ? "/bin:/usr/bin" : searchPath;
    if (!folders.empty()) folders += ':';
    setenv("PATH", (folders + folder.string()).c_str(), 1);
}

void makeSameFile(const std::string& path, const std::string& original) {
    namespace fs = std::filesystem;
    const fs::path link = fs::absolute(fs::u8path(path));
    fs::create_symlink(fs::absolute(fs::u8path(original)).lexically_relative(link.parent_path()),
                       link);
}

}  // namespace cli
