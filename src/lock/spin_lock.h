// A lock that needs no memory, for short or rare operations: the blocks of the reserve, and the
// initialisation and clean-up of the XML libraries.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <thread>

namespace rgen::sync {

/// Sets `isBusy` during its lifetime. Not a std::mutex, which may allocate memory on first use:
/// this lock is used when memory is exhausted.
class SpinLock {
public:
    explicit SpinLock(std::atomic_flag& isBusy) : isBusy_(isBusy) {
        while (isBusy_.test_and_set(std::memory_order_acquire))
            std::this_thread::yield();
    }
    ~SpinLock() { isBusy_.clear(std::memory_order_release); }
    SpinLock(const SpinLock&) = delete;
    SpinLock& operator=(const SpinLock&) = delete;

private:
    std::atomic_flag& isBusy_;
};

}  // namespace rgen::sync
