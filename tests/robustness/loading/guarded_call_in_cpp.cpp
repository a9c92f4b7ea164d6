// SPDX-License-Identifier: MIT
#include <new>

#include "robustness/loading/guarded_call.h"

int guarded_call(void (*call)(void)) {
    try {
        call();
        return 1;
    } catch (const std::bad_alloc&) {
        return 0;
    }
}
