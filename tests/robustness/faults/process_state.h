// What a test process tells of itself.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_FAULTS_PROCESS_STATE_H
#define RGEN_TESTS_FAULTS_PROCESS_STATE_H

#include <cstddef>

namespace rgen_test {

// The number of the calling thread; found without allocating memory.
unsigned long long callingThread();

// Descriptors that are open. On Windows, where the number is not to be had, always 0.
std::size_t openDescriptors();

// True when the leak sanitizer is there and knows of a block that nothing points to any more.
bool sanitizerFindsLeaks();

}  // namespace rgen_test

#endif
