// A lock that needs no memory, for what is short or rare: the blocks of the reserve, and the start
// and the end of the XML libraries.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <thread>

namespace rgen::sync {

/// Holds `isBusy` while it lives. A mutex of the C++ library may need memory itself when it is
/// first used, and this one is needed where memory is exhausted.
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
