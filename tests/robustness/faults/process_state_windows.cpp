// SPDX-License-Identifier: MIT
#include <windows.h>

#include "robustness/faults/process_state.h"

namespace rgen_test {

unsigned long long callingThread() {
    return GetCurrentThreadId();
}

std::size_t openDescriptors() {
    return 0;
}

bool sanitizerFindsLeaks() {
    return false;
}

}  // namespace rgen_test
