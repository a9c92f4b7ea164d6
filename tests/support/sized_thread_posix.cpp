// Threads with a chosen stack size on Linux.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/mman.h>
#include <ucontext.h>

#include <cstdint>
#include <cstdlib>

#include "support/sized_thread.h"

namespace rgen_test {
namespace {

void* runFunction(void* function) {
    (*static_cast<const std::function<void()>*>(function))();
    return nullptr;
}

// Memory for one stack, with a page below it that nobody may touch. Merely asking for a size would
// not do: a thread may get the larger stack of an ended one.
class StackMemory {
public:
    explicit StackMemory(std::size_t size)
        : size_(size),
          memory_(mmap(nullptr, guardSize + size, PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0)) {
        if (memory_ == MAP_FAILED || mprotect(memory_, guardSize, PROT_NONE) != 0) std::abort();
    }
    ~StackMemory() { munmap(memory_, guardSize + size_); }
    StackMemory(const StackMemory&) = delete;
    StackMemory& operator=(const StackMemory&) = delete;

    void* lowest() const { return static_cast<char*>(memory_) + guardSize; }

private:
    static constexpr std::size_t guardSize = 16 * kibibyte;
    std::size_t size_;
    void* memory_;
};

void start(std::size_t stackSize, std::function<void()> function) {
    const StackMemory stack(stackSize);
    pthread_attr_t attributes;
    ASSERT_EQ(0, pthread_attr_init(&attributes));
    ASSERT_EQ(0, pthread_attr_setstack(&attributes, stack.lowest(), stackSize));
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

// The thread-local data of a sanitizer is on the stack and large, and instrumented code needs more
// stack; the sizes of the callers include neither.
std::size_t sanitizerShare() {
    constexpr std::size_t ordinary = 64 * kibibyte;
    static const std::size_t share = takenAtStart() / ordinary * ordinary + instrumentationStack;
    return share;
}

extern "C" {

// The sanitizers want to know of every switch; null without them.
void* currentTsanFiber() __asm__("__tsan_get_current_fiber") __attribute__((weak));
void* createTsanFiber(unsigned flags) __asm__("__tsan_create_fiber") __attribute__((weak));
void destroyTsanFiber(void* fiber) __asm__("__tsan_destroy_fiber") __attribute__((weak));
void switchToTsanFiber(void* fiber, unsigned flags) __asm__("__tsan_switch_to_fiber")
    __attribute__((weak));
void startAsanSwitch(void** left, const void* lowest,
                     std::size_t size) __asm__("__sanitizer_start_switch_fiber")
    __attribute__((weak));
void finishAsanSwitch(void* entered, const void** lowest,
                      std::size_t* size) __asm__("__sanitizer_finish_switch_fiber")
    __attribute__((weak));

}  // extern "C"

// A stack on which a function runs, with the context that waits for it.
struct Fiber {
    const std::function<void()>& function;
    ucontext_t caller;
    ucontext_t own;
    void* tsanCaller;
    void* asanCaller;
    const void* callerLowest;
    std::size_t callerSize;
};

// makecontext() passes numbers of 32 bits only.
void runFiber(unsigned high, unsigned low) {
    auto* fiber = reinterpret_cast<Fiber*>((std::uintptr_t{high} << 32U) | low);
    if (finishAsanSwitch != nullptr)
        finishAsanSwitch(nullptr, &fiber->callerLowest, &fiber->callerSize);
    fiber->function();
    if (startAsanSwitch != nullptr)
        startAsanSwitch(nullptr, fiber->callerLowest, fiber->callerSize);
    if (switchToTsanFiber != nullptr) switchToTsanFiber(fiber->tsanCaller, 0);
    setcontext(&fiber->caller);
}

}  // namespace

const std::size_t smallestStack = 256 * kibibyte;

const std::size_t instrumentationStack = RGEN_SANITIZER_STACK_KIB * kibibyte;

const bool deepCopiesAreGuarded = RGEN_POOLS_ARE_USED;

void runOnStack(std::size_t stackSize, const std::function<void()>& function) {
    start(stackSize + sanitizerShare(), function);
}

void runOnFiber(std::size_t stackSize, const std::function<void()>& function) {
    const std::size_t size = stackSize + instrumentationStack;
    const StackMemory stack(size);
    Fiber fiber = {function, {}, {}, nullptr, nullptr, nullptr, 0};
    ASSERT_EQ(0, getcontext(&fiber.own));
    fiber.own.uc_stack.ss_sp = stack.lowest();
    fiber.own.uc_stack.ss_size = size;
    constexpr unsigned halfOfBits = 32;
    const auto address = reinterpret_cast<std::uintptr_t>(&fiber);
    makecontext(&fiber.own, reinterpret_cast<void (*)()>(runFiber), 2,
                static_cast<unsigned>(address >> halfOfBits), static_cast<unsigned>(address));
    void* const tsanFiber = createTsanFiber != nullptr ? createTsanFiber(0) : nullptr;
    if (tsanFiber != nullptr) {
        fiber.tsanCaller = currentTsanFiber();
        switchToTsanFiber(tsanFiber, 0);
    }
    if (startAsanSwitch != nullptr) startAsanSwitch(&fiber.asanCaller, stack.lowest(), size);
    ASSERT_EQ(0, swapcontext(&fiber.caller, &fiber.own));
    if (finishAsanSwitch != nullptr) finishAsanSwitch(fiber.asanCaller, nullptr, nullptr);
    if (tsanFiber != nullptr) destroyTsanFiber(tsanFiber);
}

}  // namespace rgen_test
