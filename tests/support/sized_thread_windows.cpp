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

// A function that a fiber runs before it returns to the fiber that has started it.
struct FiberCall {
    const std::function<void()>& function;
    void* caller;
};

void WINAPI runFiberCall(void* parameter) {
    const auto* call = static_cast<const FiberCall*>(parameter);
    call->function();
    SwitchToFiber(call->caller);
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

void runOnFiber(std::size_t stackSize, const std::function<void()>& function) {
    void* const caller = ConvertThreadToFiber(nullptr);
    ASSERT_NE(nullptr, caller);
    FiberCall call = {function, caller};
    constexpr std::size_t committed = 64 * kibibyte;
    void* const fiber = CreateFiberEx(committed, stackSize, 0, runFiberCall, &call);
    ASSERT_NE(nullptr, fiber);
    SwitchToFiber(fiber);
    DeleteFiber(fiber);
    ConvertFiberToThread();
}

}  // namespace rgen_test
