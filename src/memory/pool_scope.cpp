// PoolScope. Memory functions take no argument of ours, so the pool in use stands in the thread's
// own pointer.
//
// SPDX-License-Identifier: MIT
#include "memory/pool_scope.h"

#include <atomic>
#include <utility>

#include "platform/platform.h"

namespace rgen::memory {

namespace {

std::atomic<std::size_t> poolsLeft = 0;
std::atomic<std::size_t> wrongReleases = 0;

}  // namespace

const bool poolsAreUsed = RGEN_POOLS_ARE_USED;

ScopeFaults scopeFaults() {
    return {poolsLeft, wrongReleases};
}

Pool* poolInUse() {
    return static_cast<Pool*>(platform::threadPointer());
}

PoolScope::PoolScope(PoolSlot& slot) : slot_(slot), outerPool_(platform::threadPointer()) {
    if (poolsAreUsed) pool_ = slot.take();
    // Work without a pool is slower and comes to the same.
    if (!platform::setThreadPointer(pool_.get()) && pool_) slot.giveBack(std::move(pool_));
}

PoolScope::~PoolScope() {
    static_cast<void>(platform::setThreadPointer(outerPool_));
    if (!pool_) return;
    const std::size_t wrong = pool_->wrongReleases();
    if (wrong != 0) wrongReleases += wrong;
    if (pool_->blocksInUse() != 0) {
        // Whoever kept a block for later still owns its memory: the pool is left to it.
        static_cast<void>(pool_.release());
        ++poolsLeft;
    } else if (wrong == 0) {
        pool_->rewind();
        slot_.giveBack(std::move(pool_));
    }
}

}  // namespace rgen::memory
