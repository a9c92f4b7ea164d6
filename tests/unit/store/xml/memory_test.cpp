// The memory functions of the XML libraries when memory is exhausted or the stack is short.
//
// SPDX-License-Identifier: MIT
#include "store/xml/memory.h"

#include <gtest/gtest.h>
#include <libxml/xmlmemory.h>

#include <cstddef>

#include "store/xml/parser_context.h"
#include "store/xml/work.h"
#include "support/fault_injection.h"

namespace rgen_test {
namespace {

using rgen::XmlWork;
using rgen::memory::poolsAreUsed;

// Larger than any block of a pool.
constexpr std::size_t largeSize = std::size_t{100} * 1024;

// Outside of all pools a new block comes from realloc, which an optimising compiler may replace by
// malloc.
class NoMemory {
public:
    bool reached() const { return reallocFailure.reached() || mallocFailure.reached(); }

private:
    const FailingCall reallocFailure{Call::Realloc};
    const FailingCall mallocFailure{Call::Malloc};
};

const char* stackAbove() {
    return static_cast<const char*>(__builtin_frame_address(0)) + 1024;
}

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

TEST(XmlMemory, FailuresOfAPoolsWorkAreItsOwn) {
    if (!poolsAreUsed) GTEST_SKIP() << "the build for the address sanitizer has no pools";
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
    if (!poolsAreUsed) GTEST_SKIP() << "the build for the address sanitizer has no pools";
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

TEST(XmlMemory, ReserveIsForWatchedWorkOfAPoolOnly) {
    if (!poolsAreUsed) GTEST_SKIP() << "the build for the address sanitizer has no pools";
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
