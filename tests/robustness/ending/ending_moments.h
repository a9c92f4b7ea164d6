// What the hosts that use the library at the end of their process tell about it.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_ENDING_ENDING_MOMENTS_H
#define RGEN_TESTS_ENDING_ENDING_MOMENTS_H

#include <string>

namespace rgen_test {

// Runs a host in a folder of its own; a line for each moment, in the order in which they came. The
// late library is a path, or "-" for none.
std::string momentsOf(const std::string& host, const std::string& use,
                      const std::string& lateLibrary);

}  // namespace rgen_test

#endif
