// Pieces of XML work: which pool they use, on which thread, and what the allocator and the XML
// libraries take from it.
//
// SPDX-License-Identifier: MIT
#include "store/xml/work.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xmlmemory.h>

#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <thread>
#include <unordered_map>

#include "store/xml/handles.h"
#include "store/xml/parser_context.h"
#include "store/xml/work_allocator.h"
#include "support/fault_injection.h"

namespace rgen_test {
namespace {

using rgen::WorkAllocator;
using rgen::XmlWork;
using rgen::memory::Pool;
using rgen::memory::poolsAreUsed;
using rgen::memory::PoolSlot;

Pool* poolInUse() {
    return XmlWork::currentPool();
}

TEST(XmlWork, PoolIsInUseInsideOnly) {
    PoolSlot slot;
    EXPECT_EQ(nullptr, poolInUse());
    {
        const XmlWork work(slot);
        EXPECT_EQ(poolsAreUsed, poolInUse() != nullptr);
        EXPECT_EQ(work.pool(), poolInUse());
    }
    EXPECT_EQ(nullptr, poolInUse());
}

TEST(XmlWork, InnerWorkHasItsOwnPool) {
    PoolSlot slot;
    const XmlWork work(slot);
    Pool* outer = poolInUse();
    {
        const XmlWork inner(slot);
        EXPECT_EQ(poolsAreUsed, poolInUse() != outer);
    }
    EXPECT_EQ(outer, poolInUse());
}

TEST(XmlWork, PartIsCurrentAndHasThePoolOfTheWhole) {
    PoolSlot slot;
    const XmlWork whole(slot);
    XmlWork* const outer = XmlWork::current();
    Pool* const pool = poolInUse();
    {
        const XmlWork part(XmlWork::WithReserve{});
        EXPECT_EQ(poolsAreUsed, XmlWork::current() == &part);
        EXPECT_EQ(pool, poolInUse());
    }
    EXPECT_EQ(outer, XmlWork::current());
    EXPECT_EQ(pool, poolInUse());
}

TEST(XmlWork, PartOfNothingChangesNothing) {
    const XmlWork part(XmlWork::WithReserve{});
    EXPECT_EQ(nullptr, XmlWork::current());
    EXPECT_EQ(nullptr, part.pool());
    EXPECT_TRUE(part.memorySufficed());
}

TEST(XmlWork, BelongsToTheThread) {
    PoolSlot slot;
    const XmlWork work(slot);
    Pool* seen = poolInUse();
    std::thread([&seen] { seen = poolInUse(); }).join();
    EXPECT_EQ(nullptr, seen);
}

TEST(XmlWork, WorksOnWithoutAPoolWhenMemoryIsExhausted) {
    PoolSlot slot;
    std::optional<FailingCall> noMemory(std::in_place, Call::Malloc);
    const XmlWork work(slot);
    EXPECT_EQ(poolsAreUsed, noMemory->reached());
    noMemory.reset();
    EXPECT_EQ(nullptr, poolInUse());
    void* block = rgen::memory::allocate(poolInUse(), 10);
    EXPECT_NE(nullptr, block);
    rgen::memory::release(block);
}

TEST(XmlWork, PoolComesBackWithItsMemory) {
    PoolSlot slot;
    {
        const XmlWork work(slot);
        rgen::memory::release(rgen::memory::allocate(poolInUse(), 10));
    }
    EXPECT_EQ(poolsAreUsed, slot.acquire()->chunkBytes() > 0);
}

using PooledMap = std::unordered_map<int, std::string, std::hash<int>, std::equal_to<>,
                                     WorkAllocator<std::pair<const int, std::string>>>;

TEST(WorkAllocator, ContainersTakeTheirMemoryFromThePoolInUse) {
    PoolSlot slot;
    PooledMap outside = {{1, "one"}};
    const XmlWork work(slot);
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

TEST(WorkAllocator, ThrowsBadAllocForSizesThatNobodyHas) {
    WorkAllocator<std::string> allocator;
    EXPECT_THROW(static_cast<void>(allocator.allocate(std::numeric_limits<std::size_t>::max() / 2)),
                 std::bad_alloc);
    EXPECT_THROW(static_cast<void>(allocator.allocate(std::numeric_limits<std::size_t>::max() /
                                                      sizeof(std::string))),
                 std::bad_alloc);
    EXPECT_EQ(WorkAllocator<int>(), WorkAllocator<int>(allocator));
    EXPECT_FALSE(WorkAllocator<int>() != allocator);
}

TEST(XmlWork, XmlObjectsComeFromThePool) {
    PoolSlot slot;
    const XmlWork work(slot);
    const rgen::XmlPtr<xmlDoc> document(xmlNewDoc(rgen::xmlText("1.0")));
    ASSERT_NE(nullptr, document);
    EXPECT_EQ(poolsAreUsed, poolInUse() != nullptr && poolInUse()->blocksInUse() > 0);
}

TEST(XmlWork, TextsAreCopiedIntoThePool) {
    PoolSlot slot;
    const XmlWork work(slot);
    char* copy = xmlMemStrdup("text");
    EXPECT_STREQ("text", copy);
    xmlFree(copy);
}

TEST(XmlWork, LastErrorDoesNotKeepThePool) {
    const rgen::XmlSilence silence;
    PoolSlot slot;
    Pool* pool = nullptr;
    {
        const XmlWork work(slot);
        pool = poolInUse();
        const rgen::XmlPtr<xmlDoc> document(
            xmlReadDoc(rgen::xmlText("<a>&b;"), nullptr, nullptr, 0));
        EXPECT_EQ(poolsAreUsed, pool != nullptr && pool->blocksInUse() > 0);
    }
    const std::unique_ptr<Pool> kept = slot.acquire();
    EXPECT_EQ(poolsAreUsed, kept.get() == pool);
    EXPECT_EQ(0U, kept->blocksInUse());
}

TEST(XmlWork, ErrorFromBeforeMayBeReplacedInside) {
    const rgen::XmlSilence silence;
    const auto provokeError = [] {
        xmlFreeDoc(xmlReadDoc(rgen::xmlText("<a>&b;"), nullptr, nullptr, 0));
    };
    provokeError();
    PoolSlot slot;
    {
        const XmlWork work(slot);
        provokeError();
        {
            PoolSlot innerSlot;
            const XmlWork inner(innerSlot);
            provokeError();
        }
        provokeError();
    }
    provokeError();
    xmlResetLastError();
}

}  // namespace
}  // namespace rgen_test
