// The state of the process that the library must not change.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_HOST_STATE_H
#define RGEN_TESTS_SUPPORT_HOST_STATE_H

#include <string>

namespace rgen_test {

// One line for each of: the current folder, the C and the C++ locale, the rounding mode, the number
// of threads, what is done about signals; on Linux also the file mode mask, the blocked signals,
// the open descriptors and a number for the environment. Two texts are equal when nothing has
// changed.
std::string hostState();

// As hostState(), once it is `expected` or a while has passed: the system still counts a thread for
// a moment after it has been joined, and a process that has ended.
std::string settledHostState(const std::string& expected);

}  // namespace rgen_test

#endif
