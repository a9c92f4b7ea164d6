// PoolSlot, and the faults of all pools.
//
// SPDX-License-Identifier: MIT
#include "memory/pool_slot.h"

#include <new>

namespace rgen::memory {

namespace {

std::atomic<std::size_t> poolsLeft = 0;
std::atomic<std::size_t> wrongReleases = 0;

}  // namespace

const bool poolsAreUsed = RGEN_POOLS_ARE_USED;

PoolFaults poolFaults() {
    return {poolsLeft, wrongReleases};
}

std::unique_ptr<Pool> PoolSlot::acquire() noexcept {
    Pool* pool = idle_.exchange(nullptr);
    return std::unique_ptr<Pool>(pool != nullptr ? pool : new (std::nothrow) Pool);
}

void PoolSlot::release(std::unique_ptr<Pool> pool) noexcept {
    const std::size_t wrong = pool->wrongReleases();
    if (wrong != 0) wrongReleases += wrong;
    if (pool->blocksInUse() != 0) {
        static_cast<void>(pool.release());
        ++poolsLeft;
    } else if (wrong == 0) {
        pool->rewind();
        delete idle_.exchange(pool.release());
    }
}

}  // namespace rgen::memory
