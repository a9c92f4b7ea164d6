// The exceptions of a host in C++ beside those inside the libraries.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_HOST_LIBRARY_OWN_EXCEPTIONS_H
#define RGEN_TESTS_HOST_LIBRARY_OWN_EXCEPTIONS_H

#include "host_library/hosts/host_failures.h"

namespace rgen_test {

// As meet_failures(), while an exception of the host is being handled and while one unwinds the
// stack, and compares std::uncaught_exceptions() before and after.
const char* meetFailures(const host_functions& functions, const char* folder);

}  // namespace rgen_test

#endif
