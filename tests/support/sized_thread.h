// Runs code on a thread or fiber whose stack size the caller chooses.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_SIZED_THREAD_H
#define RGEN_TESTS_SUPPORT_SIZED_THREAD_H

#include <cstddef>
#include <functional>

namespace rgen_test {

constexpr std::size_t kibibyte = 1024;
constexpr std::size_t mebibyte = 1024 * kibibyte;

// The stack that the library asks of a calling thread on this system.
extern const std::size_t smallestStack;

// What runOnStack adds to every stack, since instrumented code takes more of it.
extern const std::size_t instrumentationStack;

// Whether the library stops a deep copy before it runs out of stack. The build for the address
// sanitizer has no pools, whose task that is.
extern const bool deepCopiesAreGuarded;

// Runs the function on a new thread with a stack of that many bytes and waits for its end.
void runOnStack(std::size_t stackSize, const std::function<void()>& function);

// The same on a fiber of the calling thread; on Linux that is a stack which the system does not
// know. Below the stack is memory that nobody may touch.
void runOnFiber(std::size_t stackSize, const std::function<void()>& function);

}  // namespace rgen_test

#endif
