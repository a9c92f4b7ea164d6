/*
 * A host in C without a C++ runtime of its own. Its argument is the data directory's parent; the
 * exit code is 0 if every failure was an error.
 *
 * SPDX-License-Identifier: MIT
 */
#include <stdio.h>

#include "host_library/hosts/linked_functions.h"

int main(int count, char** arguments) {
    const struct host_functions functions = linked_functions();
    const char* const problem = count == 2 ? meet_failures(&functions, arguments[1]) : "arguments";
    if (problem) fprintf(stderr, "%s\n", problem);
    return problem != 0;
}
