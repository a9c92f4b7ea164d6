// Scopes, slots and the allocator for containers; the memory of the XML libraries.
//
// SPDX-License-Identifier: MIT
#include "memory/pool_scope.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xmlmemory.h>

#include <limits>
#include <new>
#include <string>
#include <thread>
#include <unordered_map>

#include "memory/pool_allocator.h"
#include "store/xml/handles.h"
#include "store/xml/memory.h"
#include "store/xml/parser_context.h"
#include "support/fault_injection.h"
#include "support/scope_fault_check.h"

namespace rgen_test {
namespace {

using rgen::memory::Pool;
using rgen::memory::PoolAllocator;
using rgen::memory::poolInUse;
using rgen::memory::poolsAreUsed;
using rgen::memory::PoolScope;
using rgen::memory::PoolSlot;

TEST(PoolSlot, GivesTheSamePoolAgain) {
    PoolSlot slot;
    auto pool = slot.take();
    Pool* first = pool.get();
    EXPECT_NE(nullptr, first);
    slot.giveBack(std::move(pool));
    EXPECT_EQ(first, slot.take().get());
}

TEST(PoolSlot, GivesAnotherPoolWhileTheFirstIsInUse) {
    PoolSlot slot;
    auto first = slot.take();
    auto second = slot.take();
    EXPECT_NE(first, second);
    Pool* last = second.get();
    slot.giveBack(std::move(first));
    slot.giveBack(std::move(second));
    EXPECT_EQ(last, slot.take().get());
}

TEST(PoolSlot, GivesNoneWhenMemoryIsExhausted) {
    PoolSlot slot;
    const FailingCall noMemory(Call::Malloc);
    EXPECT_EQ(nullptr, slot.take());
    EXPECT_TRUE(noMemory.reached());
}

TEST(PoolScope, PoolIsInUseInsideOnly) {
    PoolSlot slot;
    EXPECT_EQ(nullptr, poolInUse());
    {
        const PoolScope scope(slot);
        EXPECT_EQ(poolsAreUsed, poolInUse() != nullptr);
    }
    EXPECT_EQ(nullptr, poolInUse());
}

TEST(PoolScope, InnerScopeHasItsOwnPool) {
    PoolSlot slot;
    const PoolScope scope(slot);
    Pool* outer = poolInUse();
    {
        const PoolScope inner(slot);
        EXPECT_EQ(poolsAreUsed, poolInUse() != outer);
    }
    EXPECT_EQ(outer, poolInUse());
}

TEST(PoolScope, BelongsToTheThread) {
    PoolSlot slot;
    const PoolScope scope(slot);
    Pool* seen = poolInUse();
    std::thread([&seen] { seen = poolInUse(); }).join();
    EXPECT_EQ(nullptr, seen);
}

TEST(PoolScope, WorksOnWithoutAPoolWhenMemoryIsExhausted) {
    if (!poolsAreUsed) GTEST_SKIP() << "the build for the address sanitizer has no pools";
    PoolSlot slot;
    const FailingCall noMemory(Call::Malloc);
    const PoolScope scope(slot);
    EXPECT_TRUE(noMemory.reached());
    EXPECT_EQ(nullptr, poolInUse());
    void* block = rgen::memory::allocate(poolInUse(), 10);
    EXPECT_NE(nullptr, block);
    rgen::memory::release(block);
}

// The address alone says little: a new pool may stand where an old one has gone.
TEST(PoolScope, PoolComesBackWithItsMemory) {
    if (!poolsAreUsed) GTEST_SKIP() << "the build for the address sanitizer has no pools";
    PoolSlot slot;
    {
        const PoolScope scope(slot);
        rgen::memory::release(rgen::memory::allocate(poolInUse(), 10));
    }
    EXPECT_LT(0U, slot.take()->bytesKept());
}

TEST(PoolScope, PoolWithABlockThatIsStillInUseIsNotUsedAgain) {
    if (!poolsAreUsed) GTEST_SKIP() << "the build for the address sanitizer has no pools";
    PoolSlot slot;
    void* kept = nullptr;
    Pool* pool = nullptr;
    {
        const PoolScope scope(slot);
        pool = poolInUse();
        kept = rgen::memory::allocate(pool, 10);
    }
    const auto next = slot.take();
    EXPECT_NE(pool, next.get());
    EXPECT_EQ(1U, pool->blocksInUse());
    rgen::memory::release(kept);
    EXPECT_EQ(0U, pool->blocksInUse());
    delete pool;
    EXPECT_EQ(1U, acknowledgeScopeFaults().poolsLeft);
}

TEST(PoolScope, PoolWithAWrongReleaseGoesAndIsNoted) {
    if (!poolsAreUsed) GTEST_SKIP() << "the build for the address sanitizer has no pools";
    PoolSlot slot;
    {
        const PoolScope scope(slot);
        void* block = rgen::memory::allocate(poolInUse(), 10);
        rgen::memory::release(block);
        rgen::memory::release(block);
    }
    EXPECT_EQ(0U, slot.take()->bytesKept());
    const auto faults = acknowledgeScopeFaults();
    EXPECT_EQ(0U, faults.poolsLeft);
    EXPECT_EQ(1U, faults.wrongReleases);
}

using PooledMap = std::unordered_map<int, std::string, std::hash<int>, std::equal_to<>,
                                     PoolAllocator<std::pair<const int, std::string>>>;

TEST(PoolAllocator, ContainersTakeTheirMemoryFromThePoolInUse) {
    PoolSlot slot;
    PooledMap outside = {{1, "one"}};
    const PoolScope scope(slot);
    {
        PooledMap inside = {{2, "two"}};
        EXPECT_EQ(poolsAreUsed, poolInUse() != nullptr && poolInUse()->blocksInUse() > 0);
        // Entries from both sides may change the container.
        inside.merge(outside);
        EXPECT_EQ(2U, inside.size());
    }
    if (poolsAreUsed) {
        EXPECT_EQ(0U, poolInUse()->blocksInUse());
    }
}

TEST(PoolAllocator, RaisesBadAllocForSizesThatNobodyHas) {
    PoolAllocator<std::string> allocator;
    EXPECT_THROW(static_cast<void>(allocator.allocate(std::numeric_limits<std::size_t>::max() / 2)),
                 std::bad_alloc);
    EXPECT_THROW(static_cast<void>(allocator.allocate(std::numeric_limits<std::size_t>::max() /
                                                      sizeof(std::string))),
                 std::bad_alloc);
    EXPECT_EQ(PoolAllocator<int>(), PoolAllocator<int>(allocator));
    EXPECT_FALSE(PoolAllocator<int>() != allocator);
}

TEST(XmlMemoryScope, XmlObjectsComeFromThePool) {
    PoolSlot slot;
    const rgen::XmlMemoryScope scope(slot);
    const rgen::XmlPtr<xmlDoc> document(xmlNewDoc(rgen::xmlText("1.0")));
    ASSERT_NE(nullptr, document);
    EXPECT_EQ(poolsAreUsed, poolInUse() != nullptr && poolInUse()->blocksInUse() > 0);
}

TEST(XmlMemoryScope, TextsAreCopiedIntoThePool) {
    PoolSlot slot;
    const rgen::XmlMemoryScope scope(slot);
    char* copy = xmlMemStrdup("text");
    EXPECT_STREQ("text", copy);
    xmlFree(copy);
}

TEST(XmlMemoryScope, LastErrorDoesNotKeepThePool) {
    if (!poolsAreUsed) GTEST_SKIP() << "the build for the address sanitizer has no pools";
    const rgen::XmlSilence silence;
    PoolSlot slot;
    Pool* pool = nullptr;
    {
        const rgen::XmlMemoryScope scope(slot);
        pool = poolInUse();
        const rgen::XmlPtr<xmlDoc> document(
            xmlReadDoc(rgen::xmlText("<a>&b;"), nullptr, nullptr, 0));
        EXPECT_GT(pool->blocksInUse(), 0U);
    }
    EXPECT_EQ(pool, slot.take().release());
    EXPECT_EQ(0U, pool->blocksInUse());
    delete pool;
}

TEST(XmlMemoryScope, ErrorFromBeforeMayBeReplacedInside) {
    const rgen::XmlSilence silence;
    const auto provokeError = [] {
        xmlFreeDoc(xmlReadDoc(rgen::xmlText("<a>&b;"), nullptr, nullptr, 0));
    };
    provokeError();
    PoolSlot slot;
    {
        const rgen::XmlMemoryScope scope(slot);
        provokeError();
        {
            PoolSlot innerSlot;
            const rgen::XmlMemoryScope inner(innerSlot);
            provokeError();
        }
        provokeError();
    }
    provokeError();
    xmlResetLastError();
}

}  // namespace
}  // namespace rgen_test
