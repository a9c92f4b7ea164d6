/*
 * The C library's allocation functions for a whole process: a program that defines them replaces
 * them in every library, in the dynamic loader, too.
 *
 * SPDX-License-Identifier: MIT
 */
#ifndef RGEN_TESTS_LOADING_FAILING_MALLOC_H
#define RGEN_TESTS_LOADING_FAILING_MALLOC_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* From now on the allocation of that number fails on the calling thread, counted from 1, and all
 * later ones where `all_from` is set. */
void fail_allocation(size_t number, int all_from);

/* Ends that, and gives the number of allocations since. */
size_t stop_failing(void);

#ifdef __cplusplus
}
#endif

#endif
