// The memory functions of the XML libraries when memory is exhausted or the stack is short.
//
// SPDX-License-Identifier: MIT
#include "store/xml/memory.h"

#include <gtest/gtest.h>
#include <libxml/xmlmemory.h>

#include <cstddef>

#include "store/xml/parser_context.h"
#include "store/xml/work.h"
#include "unit/store/xml/memory_conditions.h"

namespace rgen_test {
namespace {

using rgen::XmlWork;
using rgen::memory::poolsAreUsed;

TEST(XmlMemory, TheReserveStandsInForAWhile) {
    const auto context = rgen::sharedXmlParserContext();
    const XmlWork work(XmlWork::WithReserve{});
    char* copy = nullptr;
    {
        const NoMemory failure;
        EXPECT_TRUE(work.memorySufficed());
        copy = xmlMemStrdup("text");
        EXPECT_TRUE(failure.reached());
    }
    EXPECT_STREQ("text", copy);
    EXPECT_FALSE(work.memorySufficed());
    const XmlWork next(XmlWork::WithReserve{});
    EXPECT_TRUE(next.memorySufficed());
    xmlFree(copy);
}

TEST(XmlMemory, StackLimitEndsWithItsWork) {
    const auto context = rgen::sharedXmlParserContext();
    rgen::memory::PoolSlot slot;
    const XmlWork whole(slot);
    {
        XmlWork part(XmlWork::WithReserve{});
        part.limitStack(nullptr, stackAbove());
        void* refused = xmlMalloc(24);
        EXPECT_EQ(poolsAreUsed, refused == nullptr);
        xmlFree(refused);
        part.limitStack(nullptr, nullptr);
        void* block = xmlMalloc(24);
        EXPECT_NE(nullptr, block);
        xmlFree(block);
        part.limitStack(nullptr, stackAbove());
    }
    void* block = xmlMalloc(24);
    EXPECT_NE(nullptr, block);
    xmlFree(block);
}

TEST(XmlMemory, InitialisationWithoutMemoryGivesNoReference) {
    const auto context = rgen::sharedXmlParserContext();
    rgen::XmlParserContext other;
    {
        const NoMemory failure;
        EXPECT_EQ(nullptr, other.acquire());
        EXPECT_TRUE(failure.reached());
    }
    EXPECT_EQ(0U, other.references());
    // The failure has ended the XML libraries for everybody; this starts them again. It is not
    // released, since the last release would end them, too.
    static rgen::XmlParserContext again;
    EXPECT_NE(nullptr, again.acquire().release());
}

}  // namespace
}  // namespace rgen_test
