// The slot: which pool it returns, and what it does with one in a bad state.
//
// SPDX-License-Identifier: MIT
#include "memory/pool_slot.h"

#include <gtest/gtest.h>

#include <utility>

#include "support/fault_injection.h"
#include "support/pool_fault_check.h"

namespace rgen_test {
namespace {

using rgen::memory::Pool;
using rgen::memory::PoolSlot;

TEST(PoolSlot, GivesTheSamePoolAgain) {
    PoolSlot slot;
    auto pool = slot.acquire();
    Pool* first = pool.get();
    EXPECT_NE(nullptr, first);
    slot.release(std::move(pool));
    EXPECT_EQ(first, slot.acquire().get());
}

TEST(PoolSlot, GivesAnotherPoolWhileTheFirstIsInUse) {
    PoolSlot slot;
    auto first = slot.acquire();
    auto second = slot.acquire();
    EXPECT_NE(first, second);
    Pool* last = second.get();
    slot.release(std::move(first));
    slot.release(std::move(second));
    EXPECT_EQ(last, slot.acquire().get());
}

TEST(PoolSlot, GivesNoneWhenMemoryIsExhausted) {
    PoolSlot slot;
    const FailingCall noMemory(Call::Malloc);
    EXPECT_EQ(nullptr, slot.acquire());
    EXPECT_TRUE(noMemory.reached());
}

// The address alone proves little: a new pool may get the address of a freed one.
TEST(PoolSlot, PoolComesBackWithItsMemory) {
    PoolSlot slot;
    auto pool = slot.acquire();
    rgen::memory::release(rgen::memory::allocate(pool.get(), 10));
    slot.release(std::move(pool));
    EXPECT_LT(0U, slot.acquire()->chunkBytes());
}

TEST(PoolSlot, PoolWithABlockThatIsStillInUseIsNotUsedAgain) {
    PoolSlot slot;
    auto owner = slot.acquire();
    Pool* pool = owner.get();
    void* kept = rgen::memory::allocate(pool, 10);
    slot.release(std::move(owner));
    const auto next = slot.acquire();
    EXPECT_NE(pool, next.get());
    EXPECT_EQ(1U, pool->blocksInUse());
    rgen::memory::release(kept);
    EXPECT_EQ(0U, pool->blocksInUse());
    delete pool;
    EXPECT_EQ(1U, acknowledgePoolFaults().poolsLeft);
}

TEST(PoolSlot, PoolWithAWrongReleaseGoesAndIsNoted) {
    PoolSlot slot;
    auto pool = slot.acquire();
    void* block = rgen::memory::allocate(pool.get(), 10);
    rgen::memory::release(block);
    rgen::memory::release(block);
    slot.release(std::move(pool));
    EXPECT_EQ(0U, slot.acquire()->chunkBytes());
    const auto faults = acknowledgePoolFaults();
    EXPECT_EQ(0U, faults.poolsLeft);
    EXPECT_EQ(1U, faults.wrongReleases);
}

}  // namespace
}  // namespace rgen_test
