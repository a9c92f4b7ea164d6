// The pool: alignment and reuse of blocks, growth, exhausted memory, retained chunks.
//
// SPDX-License-Identifier: MIT
#include "memory/pool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "support/fault_injection.h"

namespace rgen_test {
namespace {

using rgen::memory::allocate;
using rgen::memory::Pool;
using rgen::memory::reallocate;
using rgen::memory::release;

constexpr std::size_t mebibyte = std::size_t{1024} * 1024;

bool isAligned(const void* block) {
    return reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t) == 0;
}

// A block whose every byte is known.
struct FilledBlock {
    unsigned char* bytes;
    std::size_t size;
    unsigned char mark;

    void fill() { std::memset(bytes, mark, size); }
    bool isWhole() const {
        return std::all_of(bytes, bytes + size,
                           [this](unsigned char byte) { return byte == mark; });
    }
};

FilledBlock filledBlock(Pool* pool, std::size_t size, unsigned char mark) {
    FilledBlock block = {static_cast<unsigned char*>(allocate(pool, size)), size, mark};
    EXPECT_TRUE(isAligned(block.bytes)) << size;
    block.fill();
    return block;
}

// Sizes around every boundary of the pool.
std::vector<std::size_t> interestingSizes() {
    std::vector<std::size_t> sizes = {0, 1, 2};
    for (std::size_t size = 8; size <= 4 * Pool::largestBlock; size *= 2) {
        for (std::size_t near = size - 9; near <= size + 9; ++near)
            sizes.push_back(near);
    }
    return sizes;
}

class PoolTest : public ::testing::TestWithParam<bool> {
protected:
    // Null for the cases that run without a pool.
    Pool* pool() { return GetParam() ? &pool_ : nullptr; }

    Pool pool_;
};

INSTANTIATE_TEST_SUITE_P(WithAndWithoutPool, PoolTest, ::testing::Bool());

TEST_P(PoolTest, BlocksOfEverySizeAreAlignedAndDoNotOverlap) {
    std::vector<FilledBlock> blocks;
    unsigned char mark = 1;
    for (const std::size_t size : interestingSizes())
        blocks.push_back(filledBlock(pool(), size, mark++));
    for (const FilledBlock& block : blocks)
        EXPECT_TRUE(block.isWhole()) << block.size;
    for (const FilledBlock& block : blocks)
        release(block.bytes);
    EXPECT_EQ(0U, pool_.blocksInUse());
}

TEST_P(PoolTest, ContentMovesWithABlockThatGrowsOrShrinks) {
    for (const std::size_t from : interestingSizes()) {
        for (const std::size_t to : {std::size_t{0}, from / 2, from + 1, from + 40, 3 * from}) {
            FilledBlock block = filledBlock(pool(), from, 0x5A);
            // The memory after the block belongs to another one.
            FilledBlock neighbour = filledBlock(pool(), 24, 0xA5);
            block.bytes = static_cast<unsigned char*>(reallocate(pool(), block.bytes, to));
            ASSERT_TRUE(isAligned(block.bytes)) << from << " to " << to;
            block.size = std::min(from, to);
            EXPECT_TRUE(block.isWhole()) << from << " to " << to;
            block.size = to;
            block.fill();
            EXPECT_TRUE(neighbour.isWhole()) << from << " to " << to;
            release(block.bytes);
            release(neighbour.bytes);
        }
    }
    EXPECT_EQ(0U, pool_.blocksInUse());
}

TEST_P(PoolTest, NullGrowsToABlockAndMayBeReleased) {
    void* block = reallocate(pool(), nullptr, 100);
    EXPECT_NE(nullptr, block);
    release(block);
    release(nullptr);
}

TEST_P(PoolTest, SizesThatNobodyHasAreRefused) {
    constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
    void* block = allocate(pool(), 10);
    for (std::size_t size = most; size > most - 40; --size) {
        EXPECT_EQ(nullptr, allocate(pool(), size));
        EXPECT_EQ(nullptr, reallocate(pool(), block, size));
    }
    release(block);
}

// Random calls, checked against the contents that the test expects.
TEST_P(PoolTest, RandomCallsKeepEveryBlockWhole) {
    std::mt19937 random(1);
    std::vector<FilledBlock> blocks;
    const auto randomSize = [&random] {
        return random() % (std::size_t{1} << (3 + random() % 15));
    };
    for (int step = 0; step < 20000; ++step) {
        const std::size_t kind = random() % 5;
        if (blocks.empty() || kind < 2) {
            blocks.push_back(filledBlock(pool(), randomSize(), static_cast<unsigned char>(step)));
            continue;
        }
        std::swap(blocks[random() % blocks.size()], blocks.back());
        FilledBlock& block = blocks.back();
        ASSERT_TRUE(block.isWhole()) << step;
        if (kind == 2) {
            block.size = randomSize();
            block.bytes = static_cast<unsigned char*>(reallocate(pool(), block.bytes, block.size));
            ASSERT_TRUE(isAligned(block.bytes)) << step;
            block.fill();
        } else {
            release(block.bytes);
            blocks.pop_back();
        }
    }
    for (const FilledBlock& block : blocks) {
        EXPECT_TRUE(block.isWhole());
        release(block.bytes);
    }
    EXPECT_EQ(0U, pool_.blocksInUse());
}

TEST(Pool, CountsItsBlocks) {
    Pool pool;
    void* first = allocate(&pool, 10);
    void* second = allocate(&pool, 5000);
    void* onHeap = allocate(&pool, Pool::largestBlock + 1);
    EXPECT_EQ(2U, pool.blocksInUse());
    release(onHeap);
    release(first);
    EXPECT_EQ(1U, pool.blocksInUse());
    release(second);
    EXPECT_EQ(0U, pool.blocksInUse());
}

// Otherwise the free list would contain the block twice and return it to two owners.
TEST(Pool, SecondReleaseIsNotedAndChangesNothing) {
    for (const std::size_t size : {1U, 8U, 100U, 1016U, 1017U, 40000U, 65528U}) {
        SCOPED_TRACE(size);
        Pool pool;
        void* other = allocate(&pool, size);
        void* block = allocate(&pool, size);
        release(block);
        EXPECT_EQ(0U, pool.wrongReleases());
        release(block);
        EXPECT_TRUE(rgen::memory::releaseToPool(block));
        EXPECT_EQ(nullptr, reallocate(&pool, block, size + 5000));
        EXPECT_EQ(3U, pool.wrongReleases());
        EXPECT_EQ(1U, pool.blocksInUse());
        EXPECT_EQ(block, allocate(&pool, size));
        EXPECT_NE(block, allocate(&pool, size));
        EXPECT_EQ(3U, pool.blocksInUse());
        release(other);
        EXPECT_EQ(3U, pool.wrongReleases());
        pool.rewind();
        EXPECT_EQ(0U, pool.wrongReleases());
    }
}

TEST(Pool, ReleasedBlockIsTheNextOfItsSize) {
    Pool pool;
    for (const std::size_t size : {1U, 8U, 9U, 100U, 1000U, 1016U, 1017U, 1500U, 40000U, 65528U}) {
        void* block = allocate(&pool, size);
        void* other = allocate(&pool, size);
        release(block);
        EXPECT_EQ(block, allocate(&pool, size)) << size;
        release(block);
        release(other);
    }
}

TEST(Pool, SizesAreRoundedUpByLessThanAQuarter) {
    for (std::size_t size = 1100; size <= Pool::largestBlock * 3 / 4; size += 997) {
        Pool pool;
        void* block = allocate(&pool, size);
        release(block);
        // Served by the released block only if that was rounded up by more than a quarter.
        void* larger = allocate(&pool, size + size / 4 + 16);
        EXPECT_NE(block, larger) << size;
        release(larger);
    }
}

TEST(Pool, ReleasedBlockServesTheSizesThatAreRoundedAlike) {
    Pool pool;
    void* block = allocate(&pool, 1200);
    release(block);
    EXPECT_EQ(block, allocate(&pool, 1100));
    release(block);
}

// Released blocks are reused even when sizes alternate.
TEST(Pool, MixedSizesDoNotMakeItGrow) {
    using Sizes = std::pair<std::size_t, std::size_t>;
    for (const Sizes& sizes : {Sizes(2000, 1100), Sizes(60000, 33000), Sizes(1017, 1016)}) {
        Pool pool;
        std::size_t bytesAtFirst = 0;
        for (int round = 0; round < 1000; ++round) {
            void* first = allocate(&pool, sizes.first);
            void* second = allocate(&pool, sizes.second);
            release(first);
            release(second);
            if (round == 0) bytesAtFirst = pool.chunkBytes();
        }
        EXPECT_EQ(bytesAtFirst, pool.chunkBytes()) << sizes.first;
    }
}

TEST(Pool, LastBlockGrowsInPlace) {
    Pool pool;
    void* block = allocate(&pool, 100);
    EXPECT_EQ(block, reallocate(&pool, block, 3000));
    const FilledBlock next = filledBlock(&pool, 100, 1);
    std::memset(block, 2, 3000);
    EXPECT_TRUE(next.isWhole());
    release(next.bytes);
    release(block);
}

TEST(Pool, BlockGoesBackToItsOwnPool) {
    Pool pool;
    Pool other;
    void* block = allocate(&pool, 100);
    void* moved = reallocate(&other, block, 5 * Pool::largestBlock);
    EXPECT_EQ(0U, pool.blocksInUse());
    block = allocate(&pool, 100);
    release(moved);
    release(block);
    EXPECT_EQ(0U, pool.blocksInUse());
    EXPECT_EQ(0U, other.blocksInUse());
}

TEST(Pool, NothingIsTakenBeforeTheFirstBlock) {
    EXPECT_EQ(0U, Pool().chunkBytes());
}

// Allocates and releases about that many bytes in blocks of 1,000.
void use(Pool& pool, std::size_t bytes) {
    std::vector<void*> blocks;
    for (std::size_t used = 0; used < bytes; used += 1000)
        blocks.push_back(allocate(&pool, 1000));
    for (void* block : blocks)
        release(block);
}

TEST(Pool, RewindKeepsWhatWasUsed) {
    Pool pool;
    use(pool, 4 * mebibyte);
    const std::size_t bytes = pool.chunkBytes();
    EXPECT_GE(bytes, 4 * mebibyte);
    pool.rewind();
    EXPECT_EQ(bytes, pool.chunkBytes());
    use(pool, 4 * mebibyte);
    EXPECT_EQ(bytes, pool.chunkBytes());
}

TEST(Pool, RewindGivesBackWhatWasNotUsedAnyMore) {
    Pool pool;
    use(pool, 8 * mebibyte);
    pool.rewind();
    use(pool, mebibyte);
    pool.rewind();
    EXPECT_LE(pool.chunkBytes(), 3 * mebibyte);
    EXPECT_GE(pool.chunkBytes(), mebibyte);
    pool.rewind();
    EXPECT_EQ(0U, pool.chunkBytes());
}

TEST(Pool, RewindKeepsNoMoreThanItsLimit) {
    Pool pool;
    use(pool, Pool::maxRetainedBytes + 8 * mebibyte);
    EXPECT_GT(pool.chunkBytes(), Pool::maxRetainedBytes);
    pool.rewind();
    EXPECT_LE(pool.chunkBytes(), Pool::maxRetainedBytes);
    EXPECT_GE(pool.chunkBytes(), Pool::maxRetainedBytes - 2 * mebibyte);
}

TEST(Pool, BlocksOfPagesThatTheSystemMayTakeAreGoodAgainAfterwards) {
    Pool pool;
    use(pool, Pool::maxResidentBytes + 8 * mebibyte);
    pool.rewind();
    std::vector<FilledBlock> blocks;
    for (std::size_t used = 0; used < Pool::maxResidentBytes + 8 * mebibyte; used += 1000)
        blocks.push_back(filledBlock(&pool, 1000, static_cast<unsigned char>(used / 1000)));
    EXPECT_TRUE(std::all_of(blocks.begin(), blocks.end(),
                            [](const FilledBlock& block) { return block.isWhole(); }));
    for (const FilledBlock& block : blocks)
        release(block.bytes);
}

TEST(Pool, RewoundPoolHandsOutItsFirstBlockAgain) {
    Pool pool;
    void* first = allocate(&pool, 100);
    release(first);
    use(pool, 3 * mebibyte);
    pool.rewind();
    EXPECT_EQ(first, allocate(&pool, 50));
    release(first);
}

TEST(Pool, BlockOfTheCHeapServesWhileThePoolCannotGrow) {
    Pool pool;
    const FailingCall chunk(Call::Malloc);
    void* block = allocate(&pool, 100);
    EXPECT_TRUE(chunk.reached());
    EXPECT_TRUE(isAligned(block));
    EXPECT_EQ(0U, pool.blocksInUse());
    EXPECT_EQ(0U, pool.chunkBytes());
    release(block);
    block = allocate(&pool, 100);
    EXPECT_EQ(1U, pool.blocksInUse());
    release(block);
}

}  // namespace
}  // namespace rgen_test
