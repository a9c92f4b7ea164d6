/*
 * The functions of hosts that link the libraries.
 *
 * SPDX-License-Identifier: MIT
 */
#ifndef RGEN_TESTS_HOST_LIBRARY_LINKED_FUNCTIONS_H
#define RGEN_TESTS_HOST_LIBRARY_LINKED_FUNCTIONS_H

#include "host_library/hosts/host_failures.h"

#ifdef __cplusplus
extern "C" {
#endif

struct host_functions linked_functions(void);

#ifdef __cplusplus
}
#endif

#endif
