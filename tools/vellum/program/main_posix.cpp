// The entry point on Linux.
//
// SPDX-License-Identifier: MIT
#include <csignal>

#include "engine/watchdog.h"
#include "program/program.h"

int main(int argc, char** argv) {
    // A host that ignores SIGCHLD passes that on, and children could not be waited for.
    std::signal(SIGCHLD, SIG_DFL);
    vellum::cancelOnSignal(SIGHUP);
    vellum::cancelOnSignal(SIGQUIT);
    return vellum::runProgram(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
}
