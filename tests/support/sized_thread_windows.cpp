// Threads with a chosen stack size on Windows.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <windows.h>

#include "support/sized_thread.h"

namespace rgen_test {
namespace {

DWORD WINAPI runFunction(void* function) {
    (*static_cast<const std::function<void()>*>(function))();
    return 0;
}

}  // namespace

const std::size_t smallestStack = 512 * kibibyte;

const std::size_t instrumentationStack = 0;

const bool deepCopiesAreGuarded = true;

void runOnStack(std::size_t stackSize, const std::function<void()>& function) {
    std::function<void()> copy = function;
    const HANDLE thread = CreateThread(nullptr, stackSize, runFunction, &copy,
                                       STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    ASSERT_NE(nullptr, thread);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}

}  // namespace rgen_test
