// SPDX-License-Identifier: MIT
#include <pthread.h>

#include <exception>
#include <system_error>

#include "base/roomy_stack.h"

namespace cli {
namespace {

struct Call {
    const std::function<void()>& function;
    std::exception_ptr thrown;
};

void* makeCall(void* argument) {
    auto& call = *static_cast<Call*>(argument);
    try {
        call.function();
    } catch (...) {
        call.thrown = std::current_exception();
    }
    return nullptr;
}

void requireSuccess(int error) {
    if (error != 0) throw std::system_error(error, std::generic_category(), "no thread");
}

}  // namespace

void runWithRoomyStack(const std::function<void()>& function) {
    Call call{function, nullptr};
    pthread_attr_t attributes;
    requireSuccess(pthread_attr_init(&attributes));
    pthread_attr_setstacksize(&attributes, roomyStackSize);
    pthread_t thread{};
    const int error = pthread_create(&thread, &attributes, makeCall, &call);
    pthread_attr_destroy(&attributes);
    requireSuccess(error);
    requireSuccess(pthread_join(thread, nullptr));
    if (call.thrown) std::rethrow_exception(call.thrown);
}

}  // namespace cli
