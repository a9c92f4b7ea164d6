// Child processes on Linux. SIGKILL is what no process can prepare for.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>

#include "robustness/soak/child_host.h"
#include "support/process_environment.h"

namespace rgen_test {
namespace {

pid_t asNumber(void* process) {
    return static_cast<pid_t>(reinterpret_cast<std::intptr_t>(process));
}

}  // namespace

ChildHost::ChildHost(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {programFolder() + "/" + program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    pid_t number = 0;
    EXPECT_EQ(0,
              posix_spawn(&number, pointers.front(), nullptr, nullptr, pointers.data(), environ));
    process_ = reinterpret_cast<void*>(static_cast<std::intptr_t>(number));
}

ChildHost::~ChildHost() {
    kill();
}

bool ChildHost::runs() {
    siginfo_t info = {};
    return waitid(P_PID, static_cast<id_t>(asNumber(process_)), &info,
                  WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == 0;
}

void ChildHost::kill() {
    if (process_ == nullptr) return;
    ::kill(asNumber(process_), SIGKILL);
    waitpid(asNumber(process_), nullptr, 0);
    process_ = nullptr;
}

int ChildHost::exitCode() {
    int status = 0;
    waitpid(asNumber(process_), &status, 0);
    process_ = nullptr;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace rgen_test
