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
    std::optional<int> exitCode;
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
    int failure[2] = {};
    if (output < 0 || pipe2(failure, O_CLOEXEC) != 0) fail("cannot prepare a process");
    const pid_t parent = getpid();
    state_->process = fork();
    if (state_->process == 0) becomeProgram(image, output, failure[1], parent);
    close(output);
    close(failure[1]);
    const int reason = state_->process < 0 ? errno : failureOf(failure[0]);
    if (reason != 0) {
        if (state_->process > 0) waitpid(state_->process, nullptr, 0);
        throw std::system_error(reason, std::generic_category(),
                                "cannot start " + request.program.string());
    }
    state_->watch = static_cast<int>(syscall(SYS_pidfd_open, state_->process, 0));
}

ChildProcess::~ChildProcess() {
    kill();
    if (state_->watch >= 0) close(state_->watch);
}

std::optional<int> ChildProcess::wait(std::chrono::milliseconds longest) {
    if (state_->exitCode) return state_->exitCode;
    // Without a descriptor (an old kernel) the wait is a pause.
    pollfd watched = {state_->watch, POLLIN, 0};
    poll(&watched, 1, static_cast<int>(longest.count()));
    int status = 0;
    if (waitpid(state_->process, &status, WNOHANG) != state_->process) return std::nullopt;
    state_->exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return state_->exitCode;
}

void ChildProcess::kill() {
    // The group may outlive its first process.
    const bool hasGroup = ::kill(-state_->process, SIGKILL) == 0;
    if (!state_->exitCode) {
        int status = 0;
        waitpid(state_->process, &status, 0);
        state_->exitCode = -1;
    }
    // Its other members are somebody else's to collect; they are gone in a moment.
    constexpr int pause = 5;
    for (int round = 0; hasGroup && round < 100 && ::kill(-state_->process, 0) == 0; ++round)
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
