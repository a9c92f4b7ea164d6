// A host in a library that another program loads, with a C++ runtime of its own or that of others.
//
// SPDX-License-Identifier: MIT
#include "host_library/hosts/linked_functions.h"
#include "host_library/hosts/own_exceptions.h"

// Null, or what went wrong.
extern "C" const char* meet_failures_of_plug_in(const char* folder);

const char* meet_failures_of_plug_in(const char* folder) {
    return rgen_test::meetFailures(linked_functions(), folder);
}
