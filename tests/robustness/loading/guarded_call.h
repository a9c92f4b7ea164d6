/*
 * A call that may end in std::bad_alloc where the host is written in C++.
 *
 * SPDX-License-Identifier: MIT
 */
#ifndef RGEN_TESTS_LOADING_GUARDED_CALL_H
#define RGEN_TESTS_LOADING_GUARDED_CALL_H

#ifdef __cplusplus
extern "C" {
#endif

/* Calls `call` and gives 1, or 0 for std::bad_alloc. */
int guarded_call(void (*call)(void));

#ifdef __cplusplus
}
#endif

#endif
