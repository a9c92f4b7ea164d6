// SPDX-License-Identifier: MIT
#include <windows.h>

#include <exception>
#include <system_error>

#include "base/roomy_stack.h"

namespace cli {
namespace {

struct Call {
    const std::function<void()>& function;
    std::exception_ptr thrown;
};

DWORD WINAPI makeCall(void* argument) {
    auto& call = *static_cast<Call*>(argument);
    try {
        call.function();
    } catch (...) {
        call.thrown = std::current_exception();
    }
    return 0;
}

}  // namespace

void runWithRoomyStack(const std::function<void()>& function) {
    Call call{function, nullptr};
    HANDLE thread = CreateThread(nullptr, roomyStackSize, makeCall, &call,
                                 STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (thread == nullptr) {
        throw std::system_error(static_cast<int>(GetLastError()), std::system_category(),
                                "no thread");
    }
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    if (call.thrown) std::rethrow_exception(call.thrown);
}

}  // namespace cli
