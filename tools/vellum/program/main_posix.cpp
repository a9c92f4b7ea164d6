// The entry point on Linux.
//
// SPDX-License-Identifier: MIT
#include <csignal>

#include "engine/watchdog.h"
#include "program/program.h"

int main(int argc, char** argv) {
    // A host that ignores its children's ends hands that on.
    std::signal(SIGCHLD, SIG_DFL);
    vellum::stopOnSignal(SIGHUP);
    vellum::stopOnSignal(SIGQUIT);
    return vellum::runProgram(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
}
