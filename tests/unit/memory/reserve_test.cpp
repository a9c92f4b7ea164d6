// The reserve: its blocks, its limits, its restart.
//
// SPDX-License-Identifier: MIT
#include "memory/reserve.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

namespace rgen_test {
namespace {

using rgen::memory::Reserve;

class ReserveTest : public testing::Test {
protected:
    // Too large for a small stack.
    const std::unique_ptr<Reserve> reserve = std::make_unique<Reserve>();
};

TEST_F(ReserveTest, BlocksAreAlignedApartAndKnowTheirSizes) {
    std::vector<void*> blocks;
    for (const std::size_t size : {0U, 1U, 16U, 17U, 1000U}) {
        void* block = reserve->allocate(size);
        ASSERT_NE(nullptr, block) << size;
        EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t));
        EXPECT_EQ(size, Reserve::sizeOf(block));
        std::memset(block, 0x5A, size);
        blocks.push_back(block);
    }
    EXPECT_EQ(1000U, Reserve::sizeOf(blocks.back()));
    EXPECT_EQ(17U, Reserve::sizeOf(blocks[3]));
}

TEST_F(ReserveTest, KnowsItsOwnBlocksOnly) {
    const void* block = reserve->allocate(8);
    int other = 0;
    EXPECT_TRUE(reserve->owns(block));
    EXPECT_FALSE(reserve->owns(&other));
    EXPECT_FALSE(reserve->owns(nullptr));
    EXPECT_FALSE(reserve->owns(reserve.get() + 1));
}

TEST_F(ReserveTest, GivesNullWhenTooLittleIsLeft) {
    EXPECT_EQ(nullptr, reserve->allocate(Reserve::capacity));
    EXPECT_EQ(nullptr, reserve->allocate(static_cast<std::size_t>(-1)));
    EXPECT_NE(nullptr, reserve->allocate(Reserve::capacity / 2));
    EXPECT_EQ(nullptr, reserve->allocate(Reserve::capacity / 2));
    EXPECT_NE(nullptr, reserve->allocate(Reserve::capacity / 4));
}

TEST_F(ReserveTest, StartsAnewWhenAllBlocksAreBack) {
    void* first = reserve->allocate(Reserve::capacity / 2);
    void* second = reserve->allocate(Reserve::capacity / 4);
    reserve->release(first);
    EXPECT_EQ(nullptr, reserve->allocate(Reserve::capacity / 2));
    reserve->release(second);
    EXPECT_EQ(first, reserve->allocate(Reserve::capacity / 2));
}

}  // namespace
}  // namespace rgen_test
