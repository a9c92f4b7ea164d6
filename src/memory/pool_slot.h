// Holds a pool between two pieces of work.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>

#include "memory/pool.h"

namespace rgen::memory {

/// False in builds with the address sanitizer, which can only check blocks of malloc.
extern const bool poolsAreUsed;

/// How many pools of this process came back to their slots in a bad state. Both are zero unless
/// this library or the XML libraries misuse memory; the tests check it.
struct PoolFaults {
    /// Pools with a block that was still in use.
    std::size_t poolsLeft;
    /// Releases of blocks that were free already.
    std::size_t wrongReleases;
};
PoolFaults poolFaults();

/// Holds at most one idle pool. May be used by several threads at once: each acquire() returns a
/// different pool.
class PoolSlot {
public:
    PoolSlot() = default;
    ~PoolSlot() { delete idle_.load(); }
    PoolSlot(const PoolSlot&) = delete;
    PoolSlot& operator=(const PoolSlot&) = delete;

    /// The idle pool, or a new one if there is none. Null when memory is exhausted.
    std::unique_ptr<Pool> acquire() noexcept;

    /// Rewinds `pool` and stores it; a pool that was stored meanwhile is freed. A pool in a bad
    /// state is counted and never used again: with a block in use it is leaked, so that the block
    /// stays valid; after a wrong release it is freed.
    void release(std::unique_ptr<Pool> pool) noexcept;

private:
    std::atomic<Pool*> idle_ = nullptr;
};

}  // namespace rgen::memory
