/*
 * The replacements. They call the C library's own functions by their other names.
 *
 * SPDX-License-Identifier: MIT
 */
#include "robustness/loading/failing_malloc.h"

#include <errno.h>
#include <malloc.h>
#include <stdlib.h>

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* block);

/* Thread-local variables of a program are always there. */
static _Thread_local int is_armed;
static _Thread_local int fails_all;
static _Thread_local size_t failing_number;
static _Thread_local size_t allocation_count;

void fail_allocation(size_t number, int all_from) {
    failing_number = number;
    fails_all = all_from;
    allocation_count = 0;
    is_armed = 1;
}

size_t stop_failing(void) {
    is_armed = 0;
    return allocation_count;
}

static int fails_now(void) {
    if (!is_armed) return 0;
    ++allocation_count;
    if (allocation_count != failing_number && !(fails_all && allocation_count > failing_number))
        return 0;
    errno = ENOMEM;
    return 1;
}

void* malloc(size_t size) {
    return fails_now() ? NULL : __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
    return fails_now() ? NULL : __libc_calloc(count, size);
}

void* realloc(void* block, size_t size) {
    return fails_now() ? NULL : __libc_realloc(block, size);
}

void* aligned_alloc(size_t alignment, size_t size) {
    return fails_now() ? NULL : __libc_memalign(alignment, size);
}

void* memalign(size_t alignment, size_t size) {
    return fails_now() ? NULL : __libc_memalign(alignment, size);
}

int posix_memalign(void** block, size_t alignment, size_t size) {
    *block = fails_now() ? NULL : __libc_memalign(alignment, size);
    return *block == NULL ? ENOMEM : 0;
}

void free(void* block) {
    __libc_free(block);
}
