// The host's state on Windows.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include <tlhelp32.h>

#include <csignal>
#include <cstdint>
#include <string>

#include "support/host_state.h"

namespace rgen_test {
namespace {

int countThreads() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    if (snapshot == INVALID_HANDLE_VALUE) return -1;
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    int count = 0;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
        if (entry.th32OwnerProcessID == GetCurrentProcessId()) ++count;
    }
    CloseHandle(snapshot);
    return count;
}

// The C library tells the handler of a signal while it sets one.
std::string handlerOf(int number) {
    const auto handler = std::signal(number, SIG_DFL);
    std::signal(number, handler);
    return " " + std::to_string(number) + "=" +
           std::to_string(reinterpret_cast<std::uintptr_t>(handler));
}

}  // namespace

std::string systemState() {
    std::string handled;
    for (const int number : {SIGABRT, SIGFPE, SIGILL, SIGINT, SIGSEGV, SIGTERM})
        handled += handlerOf(number);
    return "threads: " + std::to_string(countThreads()) +
           "\nerror mode: " + std::to_string(GetErrorMode()) + "\nhandled signals:" + handled +
           "\n";
}

}  // namespace rgen_test
