// Child processes and program files on Linux.
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
#include <cstdlib>
#include <sstream>
#include <system_error>

#include "child_process.h"

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

/// Runs in the child; only calls that are safe between fork and exec.
[[noreturn]] void becomeProgram(const ProgramImage& image, int output, int failure, pid_t parent) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    signal(SIGPIPE, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    const int input = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (getppid() == parent && dup2(input, STDIN_FILENO) >= 0 && dup2(output, STDOUT_FILENO) >= 0 &&
        dup2(output, STDERR_FILENO) >= 0) {
        execve(image.program.c_str(), image.argv.data(), image.envp.data());
    }
    const int reason = errno;
    static_cast<void>(!write(failure, &reason, sizeof reason));
    _exit(127);
}

/// Runs in the guardian: waits until the lifeline ends. A word through it means that all is well.
[[noreturn]] void guard(int lifeline, pid_t group) {
    setsid();
    char word = 0;
    ssize_t size = 0;
    do {
        size = read(lifeline, &word, 1);
    } while (size < 0 && errno == EINTR);
    if (size != 1) kill(-group, SIGKILL);
    _exit(0);
}

/// The reason why the program could not be executed, 0 when it was.
int failureOf(int descriptor) {
    int reason = 0;
    const ssize_t size = read(descriptor, &reason, sizeof reason);
    close(descriptor);
    return size == static_cast<ssize_t>(sizeof reason) ? reason : 0;
}

bool isRunnable(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::is_regular_file(path, ignored) && access(path.c_str(), X_OK) == 0;
}

}  // namespace

ChildProcess::ChildProcess(const ProcessRequest& request) : state_(std::make_unique<State>()) {
    const ProgramImage image(request);
    const int output =
        open(request.outputFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    int failure[2] = {-1, -1};
    if (output < 0 || pipe2(failure, O_CLOEXEC) != 0) {
        const int reason = errno;
        close(output);
        errno = reason;
        fail("cannot prepare a process");
    }
    const pid_t parent = getpid();
    state_->process = fork();
    if (state_->process == 0) becomeProgram(image, output, failure[1], parent);
    int reason = errno;
    close(output);
    close(failure[1]);
    const int refusal = failureOf(failure[0]);
    if (state_->process > 0) reason = refusal;
    if (reason != 0 && state_->process > 0) waitpid(state_->process, nullptr, 0);
    if (state_->process < 0 || reason != 0) {
        throw std::system_error(reason, std::generic_category(),
                                "cannot start " + request.program.string());
    }
    state_->watch = static_cast<int>(syscall(SYS_pidfd_open, state_->process, 0));
    startGuardian();
}

/// An engine may be a script that starts the real one: the death signal reaches only the script.
void ChildProcess::startGuardian() {
    int lifeline[2] = {-1, -1};
    if (pipe2(lifeline, O_CLOEXEC) != 0) return;
    state_->guardian = fork();
    if (state_->guardian == 0) {
        close(lifeline[1]);
        guard(lifeline[0], state_->process);
    }
    close(lifeline[0]);
    state_->lifeline = lifeline[1];
}

ChildProcess::~ChildProcess() {
    kill();
    if (state_->watch >= 0) close(state_->watch);
    if (state_->lifeline >= 0) {
        static_cast<void>(!write(state_->lifeline, "x", 1));
        close(state_->lifeline);
    }
    if (state_->guardian > 0) waitpid(state_->guardian, nullptr, 0);
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

std::optional<std::filesystem::path> findProgram(const std::string& name) {
    const std::filesystem::path given = name;
    if (given.has_parent_path()) {
        return isRunnable(given) ? std::optional(std::filesystem::absolute(given)) : std::nullopt;
    }
    const char* const searchPath = std::getenv("PATH");
    std::istringstream folders(searchPath == nullptr ? "/bin:/usr/bin" : searchPath);
    for (std::string folder; std::getline(folders, folder, ':');) {
        const std::filesystem::path path = std::filesystem::path(folder) / name;
        if (isRunnable(path)) return std::filesystem::absolute(path);
    }
    return std::nullopt;
}

std::filesystem::path ownFolder() {
    std::error_code failure;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", failure);
    return failure ? std::filesystem::path() : program.parent_path();
}

std::filesystem::path makePrivateFolder(const std::string& prefix) {
    std::string path = (std::filesystem::temp_directory_path() / (prefix + "-XXXXXX")).string();
    if (mkdtemp(path.data()) == nullptr) fail("cannot make a temporary folder");
    return path;
}

std::optional<std::string> environmentVariable(const std::string& name) {
    const char* const value = std::getenv(name.c_str());
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

std::filesystem::path absolutePath(const std::filesystem::path& path) {
    return std::filesystem::absolute(path).lexically_normal();
}

unsigned long processNumber() {
    return static_cast<unsigned long>(getpid());
}

}  // namespace tools
