// The memory functions of the XML libraries in works that have a pool; for builds with pools only.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <libxml/xmlmemory.h>

#include <cstddef>

#include "store/xml/memory.h"
#include "store/xml/parser_context.h"
#include "store/xml/work.h"
#include "unit/store/xml/memory_conditions.h"

namespace rgen_test {
namespace {

using rgen::XmlWork;

// Larger than any block of a pool.
constexpr std::size_t largeSize = std::size_t{100} * 1024;

TEST(XmlMemory, FailuresOfAPoolsWorkAreItsOwn) {
    const auto context = rgen::sharedXmlParserContext();
    const XmlWork outside(XmlWork::WithReserve{});
    rgen::memory::PoolSlot slot;
    {
        const XmlWork whole(slot);
        const XmlWork part(XmlWork::WithReserve{});
        EXPECT_TRUE(part.memorySufficed());
        const std::size_t moreThanAnybodyHas = std::size_t{1} << 60U;
        EXPECT_EQ(nullptr, xmlMalloc(moreThanAnybodyHas));
        EXPECT_FALSE(part.memorySufficed());
        EXPECT_TRUE(whole.memorySufficed());
    }
    EXPECT_TRUE(outside.memorySufficed());
}

TEST(XmlMemory, ThreadWithTooLittleStackGetsNoSmallBlockNorTheReserve) {
    const auto context = rgen::sharedXmlParserContext();
    rgen::memory::PoolSlot slot;
    const XmlWork whole(slot);
    void* small = xmlMalloc(24);
    void* large = xmlMalloc(largeSize);
    XmlWork part(XmlWork::WithReserve{});
    part.limitStack(nullptr, stackAbove());
    EXPECT_EQ(nullptr, xmlMalloc(24));
    EXPECT_FALSE(part.memorySufficed());
    small = xmlRealloc(small, 2000);
    EXPECT_NE(nullptr, small);
    large = xmlRealloc(large, 2 * largeSize);
    EXPECT_NE(nullptr, large);
    {
        const NoMemory failure;
        EXPECT_EQ(nullptr, xmlMalloc(largeSize));
        EXPECT_TRUE(failure.reached());
    }
    void* another = xmlMalloc(largeSize);
    EXPECT_NE(nullptr, another);
    xmlFree(another);
    xmlFree(small);
    xmlFree(large);
}

TEST(XmlMemory, ReserveIsForWatchedWorkOfAPoolOnly) {
    const auto context = rgen::sharedXmlParserContext();
    rgen::memory::PoolSlot slot;
    const XmlWork whole(slot);
    {
        const NoMemory failure;
        EXPECT_EQ(nullptr, xmlMalloc(largeSize));
    }
    void* block = nullptr;
    {
        const XmlWork part(XmlWork::WithReserve{});
        const NoMemory failure;
        block = xmlMalloc(largeSize);
    }
    EXPECT_NE(nullptr, block);
    xmlFree(block);
    const NoMemory failure;
    EXPECT_EQ(nullptr, xmlMalloc(largeSize));
}

}  // namespace
}  // namespace rgen_test
