// Child processes and program files on Linux.
//
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <system_error>

#include "process/child_process.h"

namespace tools {

struct ChildProcess::State {
    pid_t process = -1;
    /// A descriptor that becomes readable when the process ends.
    int watch = -1;
    /// A process that ends the group when this one is gone, and what it watches.
    pid_t guardian = -1;
    int lifeline = -1;
    std::optional<int> exitCode;
    bool isReaped = false;

    void endGuardian() const {
        if (lifeline >= 0) {
            static_cast<void>(!write(lifeline, "x", 1));
            close(lifeline);
        }
        if (guardian > 0) waitpid(guardian, nullptr, 0);
    }
};

namespace {

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

/// The words of the new program, for execve.
struct ProgramImage {
    explicit ProgramImage(const ProcessRequest& request) : program(request.program.string()) {
        words.push_back(program);
        words.insert(words.end(), request.arguments.begin(), request.arguments.end());
        for (char** variable = environ; *variable != nullptr; ++variable) {
            const std::string text = *variable;
            if (request.environment.count(text.substr(0, text.find('='))) == 0) {
                variables.push_back(text);
            }
        }
        for (const auto& [name, value] : request.environment)
            variables.push_back(std::string(name).append("=").append(value));
        for (std::string& word : words)
            argv.push_back(word.data());
        for (std::string& variable : variables)
            envp.push_back(variable.data());
        argv.push_back(nullptr);
        envp.push_back(nullptr);
    }

    std::string program;
    std::vector<std::string> words;
    std::vector<std::string> variables;
    std::vector<char*> argv;
    std::vector<char*> envp;
};

/// The descriptors of the child between fork and exec.
struct ChildEnds {
    int output;
    int failure;
    int lifeline;
};

/// Runs in the child; only calls that are safe between fork and exec. The guardian knows the group
/// before the program runs.
[[noreturn]] void becomeProgram(const ProgramImage& image, const ChildEnds& ends, pid_t parent) {
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

/// Runs in the guardian: waits for the number of the group and then until the lifeline ends. A word
/// through it means that all is well.
[[noreturn]] void guard(int lifeline) {
    setsid();
    pid_t group = 0;
    char word = 0;
    if (readWhole(lifeline, &group, sizeof group) && !readWhole(lifeline, &word, 1))
        kill(-group, SIGKILL);
    _exit(0);
}

/// Starts a guardian; sets its number, and its end of the lifeline. An engine may be a script that
/// starts the real one: the death signal reaches only the script.
void startGuardian(pid_t& guardian, int& lifeline) {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) return;
    guardian = fork();
    if (guardian == 0) {
        close(ends[1]);
        guard(ends[0]);
    }
    close(ends[0]);
    lifeline = ends[1];
}

/// The reason why the program could not be executed, 0 when it was.
int failureOf(int descriptor) {
    int reason = 0;
    const ssize_t size = read(descriptor, &reason, sizeof reason);
    close(descriptor);
    return size == static_cast<ssize_t>(sizeof reason) ? reason : 0;
}

/// The group of a process by its folder in /proc; -1 when it is gone.
pid_t groupOf(const std::filesystem::path& folder) {
    std::ifstream file(folder / "stat");
    std::string line;
    std::getline(file, line);
    // The program's name is in brackets and may hold anything; state and parent follow.
    std::istringstream fields(line.substr(std::min(line.rfind(')') + 1, line.size())));
    std::string state;
    pid_t parent = -1;
    pid_t group = -1;
    fields >> state >> parent >> group;
    return fields ? group : -1;
}

/// What a process does not map from files, in memory and swapped out.
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
    // First, so that it holds none of the other pipes open.
    startGuardian(state_->guardian, state_->lifeline);
    const int output =
        open(request.outputFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    int failure[2] = {-1, -1};
    if (output < 0 || pipe2(failure, O_CLOEXEC) != 0) {
        const int reason = errno;
        close(output);
        state_->endGuardian();
        errno = reason;
        fail("cannot prepare a process");
    }
    const pid_t parent = getpid();
    state_->process = fork();
    if (state_->process == 0) becomeProgram(image, {output, failure[1], state_->lifeline}, parent);
    int reason = errno;
    close(output);
    close(failure[1]);
    const int refusal = failureOf(failure[0]);
    if (state_->process > 0) reason = refusal;
    if (reason != 0 && state_->process > 0) waitpid(state_->process, nullptr, 0);
    if (state_->process < 0 || reason != 0) {
        state_->endGuardian();
        throw std::system_error(reason, std::generic_category(),
                                "cannot start " + request.program.string());
    }
    state_->watch = static_cast<int>(syscall(SYS_pidfd_open, state_->process, 0));
}

ChildProcess::~ChildProcess() {
    kill();
    if (state_->watch >= 0) close(state_->watch);
    state_->endGuardian();
}

/// Looks without collecting: as long as the process is not collected, its group keeps its number.
bool ChildProcess::hasEnded() {
    if (state_->exitCode) return true;
    siginfo_t info = {};
    const int result =
        waitid(P_PID, static_cast<id_t>(state_->process), &info, WEXITED | WNOHANG | WNOWAIT);
    // Somebody else collects the children of this process.
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
        // Without a descriptor (an old kernel) the wait is a number of pauses.
        constexpr std::chrono::milliseconds pause{10};
        const auto slice = state_->watch >= 0 ? left : std::min(left, pause);
        pollfd watched = {state_->watch, POLLIN, 0};
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
    // The other members of its group are somebody else's to collect; they are gone in a moment.
    constexpr int pause = 5;
    for (int round = 0; round < 100 && ::kill(-state_->process, 0) == 0; ++round)
        poll(nullptr, 0, pause);
}

}  // namespace tools
