// SPDX-License-Identifier: MIT
#include <dirent.h>
#include <pthread.h>

#include "robustness/faults/process_state.h"

// Null in builds without the leak sanitizer.
extern "C" int __lsan_do_recoverable_leak_check() __attribute__((weak));

namespace rgen_test {

unsigned long long callingThread() {
    return pthread_self();
}

std::size_t openDescriptors() {
    DIR* folder = opendir("/proc/self/fd");
    if (folder == nullptr) return 0;
    std::size_t count = 0;
    while (readdir(folder) != nullptr)
        ++count;
    closedir(folder);
    return count;
}

bool sanitizerFindsLeaks() {
    return __lsan_do_recoverable_leak_check != nullptr && __lsan_do_recoverable_leak_check() != 0;
}

}  // namespace rgen_test
