// Where a pool waits between two pieces of work.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <memory>
#include <new>

#include "memory/pool.h"

namespace rgen::memory {

/// Holds at most one idle pool. Safe from several threads at once: whoever takes the pool has it
/// alone, and whoever comes meanwhile gets a new one.
class PoolSlot {
public:
    PoolSlot() = default;
    ~PoolSlot() { delete idle_.load(); }
    PoolSlot(const PoolSlot&) = delete;
    PoolSlot& operator=(const PoolSlot&) = delete;

    /// The idle pool or a new one; null when memory is exhausted.
    std::unique_ptr<Pool> take() {
        Pool* pool = idle_.exchange(nullptr);
        return std::unique_ptr<Pool>(pool != nullptr ? pool : new (std::nothrow) Pool);
    }

    /// Keeps this pool; one that waits already goes.
    void giveBack(std::unique_ptr<Pool> pool) { delete idle_.exchange(pool.release()); }

private:
    std::atomic<Pool*> idle_ = nullptr;
};

}  // namespace rgen::memory
