// State of each thread on Linux, stored under pthread keys. The library has no thread-local
// variables: in a library that is loaded at run time the system allocates them on first use in each
// thread and ends the process when memory is exhausted. Static TLS, the alternative, is a small
// area that all libraries share: using it could keep this library, or others, from being loaded.
//
// SPDX-License-Identifier: MIT
#include <pthread.h>

#include <cerrno>
#include <climits>
#include <cstddef>
#include <initializer_list>
#include <new>
#include <utility>

#include "platform/platform.h"

namespace rgen::platform {
namespace {

/// One pointer for each thread. The C library stores the first 32 keys of a process in the thread's
/// own record; for later keys a thread needs memory when it first sets one.
class ThreadSlot {
public:
    void open() {
        if (pthread_key_create(&key_, nullptr) != 0) key_ = none;
    }
    void close() {
        if (key_ != none) pthread_key_delete(std::exchange(key_, none));
    }
    /// Called for each allocation, so without a check: the C library returns null for an invalid
    /// key.
    void* get() const { return pthread_getspecific(key_); }
    bool set(const void* pointer) const {
        return key_ != none && pthread_setspecific(key_, pointer) == 0;
    }

private:
    static constexpr pthread_key_t none = PTHREAD_KEYS_MAX;

    pthread_key_t key_ = none;
};

ThreadSlot pointerSlot;
ThreadSlot lowestStackSlot;
ThreadSlot highestStackSlot;

[[gnu::constructor]] void openSlots() {
    for (ThreadSlot* slot : {&pointerSlot, &lowestStackSlot, &highestStackSlot})
        slot->open();
}

/// Runs after all exit functions, or when the library is unloaded.
[[gnu::destructor]] void closeSlots() {
    for (ThreadSlot* slot : {&pointerSlot, &lowestStackSlot, &highestStackSlot})
        slot->close();
}

struct StackBounds {
    const char* lowest = nullptr;
    const char* highest = nullptr;
};

StackBounds readStackBounds() {
    StackBounds bounds;
    pthread_attr_t attributes;
    const int outcome = pthread_getattr_np(pthread_self(), &attributes);
    if (outcome == ENOMEM) throw std::bad_alloc();
    if (outcome != 0) return bounds;
    void* lowest = nullptr;
    std::size_t size = 0;
    if (pthread_attr_getstack(&attributes, &lowest, &size) == 0) {
        bounds.lowest = static_cast<const char*>(lowest);
        bounds.highest = bounds.lowest + size;
    }
    pthread_attr_destroy(&attributes);
    return bounds;
}

/// Read once for each thread, if there is memory to store them: for the main thread the C library
/// has to read the list of memory mappings.
StackBounds stackBounds() {
    StackBounds bounds = {static_cast<const char*>(lowestStackSlot.get()),
                          static_cast<const char*>(highestStackSlot.get())};
    if (bounds.lowest != nullptr && bounds.highest != nullptr) return bounds;
    bounds = readStackBounds();
    static_cast<void>(lowestStackSlot.set(bounds.lowest));
    static_cast<void>(highestStackSlot.set(bounds.highest));
    return bounds;
}

}  // namespace

void* threadPointer() {
    return pointerSlot.get();
}

bool setThreadPointer(void* pointer) {
    return pointerSlot.set(pointer);
}

const char* stackLimit() {
    const StackBounds bounds = stackBounds();
    const auto* frame = static_cast<const char*>(__builtin_frame_address(0));
    const bool onThreadStack = frame >= bounds.lowest && frame < bounds.highest;
    return onThreadStack ? bounds.lowest : nullptr;
}

}  // namespace rgen::platform
