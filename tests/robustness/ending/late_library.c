/*
 * A library that a host loads before the report library: the system ends libraries that do not know
 * each other in the opposite order, so this one's end comes last.
 *
 * SPDX-License-Identifier: MIT
 */

extern void (*late_function)(void);
void (*late_function)(void) = 0;

__attribute__((destructor)) static void run_late_function(void) {
    if (late_function) late_function();
}
