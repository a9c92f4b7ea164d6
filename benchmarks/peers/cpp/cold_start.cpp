// Measures repeatedly how long a command takes from its start to its end.
//
// Usage: cold_start COUNT COMMAND [ARGUMENT...]
// Prints the milliseconds of each start, one per line, and discards the output of the command.
// On purpose: a small program, since starting a process takes longer from a large one.
//
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;

/// Exits with an error if a step fails.
void require(bool done, const char* what) {
    if (done) return;
    std::fprintf(stderr, "cold_start: %s\n", what);
    std::exit(1);
}

double startOnce(const posix_spawn_file_actions_t& actions, char** command) {
    const Clock::time_point start = Clock::now();
    pid_t child = 0;
    require(posix_spawnp(&child, command[0], &actions, nullptr, command, environ) == 0,
            "the command cannot be started");
    int status = 0;
    require(waitpid(child, &status, 0) == child && status == 0, "the command fails");
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

}  // namespace

int main(int argc, char** argv) {
    require(argc >= 3, "a count and a command are needed");
    posix_spawn_file_actions_t actions;
    require(posix_spawn_file_actions_init(&actions) == 0 &&
                posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0) == 0,
            "there is no way to drop what is printed");
    const int count = std::atoi(argv[1]);
    for (int number = 0; number < count; ++number)
        std::printf("%.4f\n", startOnce(actions, argv + 2));
    posix_spawn_file_actions_destroy(&actions);
}
