// Child processes on Linux.
//
// The death signal (PR_SET_PDEATHSIG) reaches the program only, which may be a script that starts
// the real program. So another process, the group killer, kills the whole group when this process
// is gone: it reads a pipe, the lifeline, whose write end this process keeps.
//
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <sstream>
#include <system_error>

#include "process/child_process.h"

namespace tools {

struct ChildProcess::State {
    pid_t process = -1;
    /// Becomes readable when the process ends; -1 if the kernel has no such descriptors.
    int endDescriptor = -1;
    pid_t groupKiller = -1;
    int lifeline = -1;
    std::optional<int> exitCode;
    bool isReaped = false;

    void endGroupKiller() const {
        if (lifeline >= 0) {
            static_cast<void>(!write(lifeline, "x", 1));
            close(lifeline);
        }
        if (groupKiller > 0) waitpid(groupKiller, nullptr, 0);
    }
};

namespace {

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

/// Arguments and environment in the form that execve takes.
struct ProgramImage {
    explicit ProgramImage(const ProcessRequest& request) : program(request.program.string()) {
        arguments.push_back(program);
        arguments.insert(arguments.end(), request.arguments.begin(), request.arguments.end());
        for (char** variable = environ; *variable != nullptr; ++variable) {
            const std::string text = *variable;
            if (request.environment.count(text.substr(0, text.find('='))) == 0) {
                variables.push_back(text);
            }
        }
        for (const auto& [name, value] : request.environment)
            variables.push_back(std::string(name).append("=").append(value));
        for (std::string& argument : arguments)
            argv.push_back(argument.data());
        for (std::string& variable : variables)
            envp.push_back(variable.data());
        argv.push_back(nullptr);
        envp.push_back(nullptr);
    }

    std::string program;
    std::vector<std::string> arguments;
    std::vector<std::string> variables;
    std::vector<char*> argv;
    std::vector<char*> envp;
};

/// Write ends of pipes and files that the child uses between fork and exec.
struct ChildDescriptors {
    int output;
    int failure;
    int lifeline;
};

/// Runs in the child: only calls that are allowed between fork and exec. Tells the group killer
/// the number of the group before the program starts.
[[noreturn]] void becomeProgram(const ProgramImage& image, const ChildDescriptors& ends,
                                pid_t parent) {
    setpgid(0, 0);
    const pid_t group = getpid();
    if (ends.lifeline >= 0) static_cast<void>(!write(ends.lifeline, &group, sizeof group));
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    signal(SIGPIPE, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    const int input = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (getppid() == parent && dup2(input, STDIN_FILENO) >= 0 &&
        dup2(ends.output, STDOUT_FILENO) >= 0 && dup2(ends.output, STDERR_FILENO) >= 0) {
        execve(image.program.c_str(), image.argv.data(), image.envp.data());
    }
    const int reason = errno;
    static_cast<void>(!write(ends.failure, &reason, sizeof reason));
    _exit(127);
}

bool readWhole(int descriptor, void* bytes, std::size_t size) {
    ssize_t got = 0;
    do {
        got = read(descriptor, bytes, size);
    } while (got < 0 && errno == EINTR);
    return got == static_cast<ssize_t>(size);
}

/// Runs in the group killer: reads the group's number, then waits for one more byte (nothing to do)
/// or the end of the pipe (this process is gone).
[[noreturn]] void runGroupKiller(int lifeline) {
    setsid();
    pid_t group = 0;
    char byte = 0;
    if (readWhole(lifeline, &group, sizeof group) && !readWhole(lifeline, &byte, 1))
        kill(-group, SIGKILL);
    _exit(0);
}

/// Sets the process number of the group killer and the write end of its pipe. If it cannot be
/// started, the child runs without it.
void startGroupKiller(pid_t& groupKiller, int& lifeline) {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) return;
    groupKiller = fork();
    if (groupKiller == 0) {
        close(ends[1]);
        runGroupKiller(ends[0]);
    }
    close(ends[0]);
    lifeline = ends[1];
}

/// The errno of the failed execve, 0 when it succeeded.
int execFailure(int descriptor) {
    int reason = 0;
    const ssize_t size = read(descriptor, &reason, sizeof reason);
    close(descriptor);
    return size == static_cast<ssize_t>(sizeof reason) ? reason : 0;
}

/// The process group of the process with this folder in /proc; -1 when it has ended.
pid_t groupOf(const std::filesystem::path& folder) {
    std::ifstream file(folder / "stat");
    std::string line;
    std::getline(file, line);
    // The second field, the name in parentheses, may contain any character.
    std::istringstream fields(line.substr(std::min(line.rfind(')') + 1, line.size())));
    std::string state;
    pid_t parent = -1;
    pid_t group = -1;
    fields >> state >> parent >> group;
    return fields ? group : -1;
}

/// Anonymous and shared memory of a process in bytes, resident or swapped out.
std::uint64_t ownMemory(const std::filesystem::path& folder) {
    std::ifstream file(folder / "status");
    std::uint64_t bytes = 0;
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string name;
        std::uint64_t kilobytes = 0;
        words >> name;
        if (name != "RssAnon:" && name != "RssShmem:" && name != "VmSwap:") continue;
        if (words >> kilobytes) bytes += kilobytes * 1024;
    }
    return bytes;
}

}  // namespace

ChildProcess::ChildProcess(const ProcessRequest& request) : state_(std::make_unique<State>()) {
    const ProgramImage image(request);
    // Before the other descriptors are opened, so that the group killer inherits none of them.
    startGroupKiller(state_->groupKiller, state_->lifeline);
    const int output =
        open(request.outputFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    int failure[2] = {-1, -1};
    if (output < 0 || pipe2(failure, O_CLOEXEC) != 0) {
        const int reason = errno;
        close(output);
        state_->endGroupKiller();
        errno = reason;
        fail("cannot prepare a process");
    }
    const pid_t parent = getpid();
    state_->process = fork();
    if (state_->process == 0) becomeProgram(image, {output, failure[1], state_->lifeline}, parent);
    int reason = errno;
    close(output);
    close(failure[1]);
    const int refusal = execFailure(failure[0]);
    if (state_->process > 0) reason = refusal;
    if (reason != 0 && state_->process > 0) waitpid(state_->process, nullptr, 0);
    if (state_->process < 0 || reason != 0) {
        state_->endGroupKiller();
        throw std::system_error(reason, std::generic_category(),
                                "cannot start " + request.program.string());
    }
    state_->endDescriptor = static_cast<int>(syscall(SYS_pidfd_open, state_->process, 0));
}

ChildProcess::~ChildProcess() {
    kill();
    if (state_->endDescriptor >= 0) close(state_->endDescriptor);
    state_->endGroupKiller();
}

/// Does not reap the process: until that happens, the number of its group is not used again.
bool ChildProcess::hasEnded() {
    if (state_->exitCode) return true;
    siginfo_t info = {};
    const int result =
        waitid(P_PID, static_cast<id_t>(state_->process), &info, WEXITED | WNOHANG | WNOWAIT);
    // The children of this process are reaped elsewhere (SIGCHLD is ignored).
    if (result != 0 && errno == ECHILD) state_->exitCode = -1;
    if (result == 0 && info.si_pid == state_->process) {
        state_->exitCode = info.si_code == CLD_EXITED ? info.si_status : -1;
    }
    return state_->exitCode.has_value();
}

std::optional<int> ChildProcess::wait(std::chrono::milliseconds longest) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + longest;
    while (!hasEnded()) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0) break;
        // Without a descriptor (old kernel) poll is only a pause.
        constexpr std::chrono::milliseconds pause{10};
        const auto slice = state_->endDescriptor >= 0 ? left : std::min(left, pause);
        pollfd watched = {state_->endDescriptor, POLLIN, 0};
        poll(&watched, 1, static_cast<int>(slice.count()));
    }
    return state_->exitCode;
}

std::uint64_t ChildProcess::memory() const {
    if (state_->isReaped) return 0;
    std::uint64_t bytes = 0;
    std::error_code failure;
    for (std::filesystem::directory_iterator entry("/proc", failure), end; !failure && entry != end;
         entry.increment(failure)) {
        const std::string name = entry->path().filename().string();
        const bool isProcess = name.find_first_not_of("0123456789") == std::string::npos;
        if (isProcess && groupOf(entry->path()) == state_->process)
            bytes += ownMemory(entry->path());
    }
    return bytes;
}

void ChildProcess::kill() {
    if (state_->isReaped) return;
    const bool isRunning = !hasEnded();
    ::kill(-state_->process, SIGKILL);
    int status = 0;
    waitpid(state_->process, &status, 0);
    state_->isReaped = true;
    if (!isRunning) return;
    state_->exitCode = -1;
    // The other members of the group are reaped by their parents; wait a moment for that.
    constexpr int pause = 5;
    for (int round = 0; round < 100 && ::kill(-state_->process, 0) == 0; ++round)
        poll(nullptr, 0, pause);
}

}  // namespace tools
