// Threads with a chosen stack size on Linux.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <pthread.h>

#include "support/sized_thread.h"

namespace rgen_test {
namespace {

void* runFunction(void* function) {
    (*static_cast<const std::function<void()>*>(function))();
    return nullptr;
}

void start(std::size_t stackSize, std::function<void()> function) {
    pthread_attr_t attributes;
    ASSERT_EQ(0, pthread_attr_init(&attributes));
    ASSERT_EQ(0, pthread_attr_setstacksize(&attributes, stackSize));
    pthread_t thread;
    const int started = pthread_create(&thread, &attributes, runFunction, &function);
    pthread_attr_destroy(&attributes);
    ASSERT_EQ(0, started);
    pthread_join(thread, nullptr);
}

// How much of a stack is taken before a thread's function starts.
std::size_t takenAtStart() {
    std::size_t taken = 0;
    start(mebibyte * 4, [&taken] {
        pthread_attr_t attributes;
        void* lowest = nullptr;
        std::size_t size = 0;
        ASSERT_EQ(0, pthread_getattr_np(pthread_self(), &attributes));
        pthread_attr_getstack(&attributes, &lowest, &size);
        pthread_attr_destroy(&attributes);
        const char* top = static_cast<const char*>(lowest) + size;
        taken =
            static_cast<std::size_t>(top - static_cast<const char*>(__builtin_frame_address(0)));
    });
    return taken;
}

// The thread-local data of a sanitizer lies on the stack and is large; a caller does not mean it.
std::size_t sanitizerShare() {
    constexpr std::size_t ordinary = 64 * kibibyte;
    static const std::size_t share = takenAtStart() / ordinary * ordinary;
    return share;
}

}  // namespace

const std::size_t smallestStack = 256 * kibibyte;

void runOnStack(std::size_t stackSize, const std::function<void()>& function) {
    start(stackSize + sanitizerShare(), function);
}

}  // namespace rgen_test
