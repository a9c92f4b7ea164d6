// Runs the hosts that use the library while their process ends.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_ENDING_ENDING_MOMENTS_H
#define RGEN_TESTS_ENDING_ENDING_MOMENTS_H

#include <string>

namespace rgen_test {

// Runs a host in a folder of its own; returns a line for each moment, in their order. The
// late library is a path, or "-" for none.
std::string momentsOf(const std::string& host, const std::string& use,
                      const std::string& lateLibrary);

}  // namespace rgen_test

#endif
