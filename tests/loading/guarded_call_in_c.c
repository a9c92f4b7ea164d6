/*
 * SPDX-License-Identifier: MIT
 */
#include "loading/guarded_call.h"

int guarded_call(void (*call)(void)) {
    call();
    return 1;
}
