// Catches what a call writes to standard output and standard error, in any library.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_CONSOLE_CAPTURE_H
#define RGEN_TESTS_SUPPORT_CONSOLE_CAPTURE_H

#include <functional>
#include <string>

namespace rgen_test {

// What arrived; line ends are "\n" on every system.
struct ConsoleText {
    std::string out;
    std::string err;
};

// Runs the action with the file descriptors 1 and 2 turned into files. Not for use on two threads
// at once. Report nothing to the test framework inside the action: it would be caught too.
ConsoleText captureConsole(const std::function<void()>& action);

}  // namespace rgen_test

#endif
