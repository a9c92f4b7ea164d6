/*
 * What the hosts without a C runtime share: the function that the system calls first, and the
 * comparison of texts that a runtime would provide.
 *
 * SPDX-License-Identifier: MIT
 */
#ifndef RGEN_TESTS_OTHER_LINKER_FREESTANDING_H
#define RGEN_TESTS_OTHER_LINKER_FREESTANDING_H

int start(void);

static int sameText(const char* left, const char* right) {
    while (*left != 0 && *left == *right) {
        ++left;
        ++right;
    }
    return *left == *right;
}

#endif
