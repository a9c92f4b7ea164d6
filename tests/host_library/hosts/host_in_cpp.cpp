// A host in C++ that links the libraries. It is built with every kind of C++ runtime; that runtime
// must not notice the exceptions inside the libraries. Arguments and exit code as of host_in_c.
//
// SPDX-License-Identifier: MIT
#include <cstdio>

#include "host_library/hosts/linked_functions.h"
#include "host_library/hosts/own_exceptions.h"

int main(int count, char** arguments) {
    if (count != 2) return 2;
    const host_functions functions = linked_functions();
    const char* const problem = rgen_test::meetFailures(functions, arguments[1]);
    if (problem != nullptr) std::fprintf(stderr, "%s\n", problem);
    return problem == nullptr ? 0 : 1;
}
