// The memory functions of the XML libraries when memory is exhausted.
//
// SPDX-License-Identifier: MIT
#include "store/xml/memory.h"

#include <gtest/gtest.h>
#include <libxml/xmlmemory.h>

#include <cstddef>
#include <new>

#include "store/xml/parser_context.h"
#include "support/fault_injection.h"

namespace rgen_test {
namespace {

// Outside of all pools a new block comes from realloc, for which an optimising compiler may take
// malloc.
class NoMemory {
public:
    bool reached() const { return reallocFailure.reached() || mallocFailure.reached(); }

private:
    const FailingCall reallocFailure{Call::Realloc};
    const FailingCall mallocFailure{Call::Malloc};
};

TEST(XmlMemory, TheReserveStandsInForAWhile) {
    const auto context = rgen::sharedXmlParserContext();
    const std::size_t failedBefore = rgen::failedXmlAllocations();
    char* copy = nullptr;
    {
        const NoMemory failure;
        copy = xmlMemStrdup("text");
        EXPECT_TRUE(failure.reached());
    }
    EXPECT_STREQ("text", copy);
    EXPECT_EQ(failedBefore + 1, rgen::failedXmlAllocations());
    xmlFree(copy);
}

TEST(XmlMemory, FailuresOfAPoolsWorkAreItsOwn) {
    if (!rgen::memory::poolsAreUsed)
        GTEST_SKIP() << "the build for the address sanitizer has no pools";
    const auto context = rgen::sharedXmlParserContext();
    const std::size_t failedOutside = rgen::failedXmlAllocations();
    rgen::memory::PoolSlot slot;
    {
        const rgen::XmlMemoryScope scope(slot);
        const rgen::XmlMemoryWatch memory;
        EXPECT_TRUE(memory.sufficed());
        const std::size_t moreThanAnybodyHas = std::size_t{1} << 60U;
        EXPECT_EQ(nullptr, xmlMalloc(moreThanAnybodyHas));
        EXPECT_FALSE(memory.sufficed());
    }
    EXPECT_EQ(failedOutside, rgen::failedXmlAllocations());
}

TEST(XmlMemory, ThreadWithTooLittleStackGetsNeitherPoolNorReserve) {
    if (!rgen::memory::poolsAreUsed)
        GTEST_SKIP() << "the build for the address sanitizer has no pools";
    const auto context = rgen::sharedXmlParserContext();
    rgen::memory::PoolSlot slot;
    const rgen::XmlMemoryScope scope(slot);
    const rgen::XmlMemoryWatch memory;
    rgen::memory::Pool* pool = rgen::memory::poolInUse();
    pool->needStackAbove(static_cast<const char*>(__builtin_frame_address(0)) + 1024);
    EXPECT_EQ(nullptr, xmlMalloc(24));
    EXPECT_FALSE(memory.sufficed());
}

TEST(XmlMemory, ReserveIsForWatchedWorkOfAPoolOnly) {
    if (!rgen::memory::poolsAreUsed)
        GTEST_SKIP() << "the build for the address sanitizer has no pools";
    const auto context = rgen::sharedXmlParserContext();
    rgen::memory::PoolSlot slot;
    const rgen::XmlMemoryScope scope(slot);
    constexpr std::size_t moreThanAPoolServes = std::size_t{100} * 1024;
    {
        const NoMemory failure;
        EXPECT_EQ(nullptr, xmlMalloc(moreThanAPoolServes));
    }
    void* block = nullptr;
    {
        const rgen::XmlMemoryWatch memory;
        const NoMemory failure;
        block = xmlMalloc(moreThanAPoolServes);
    }
    EXPECT_NE(nullptr, block);
    xmlFree(block);
    const NoMemory failure;
    EXPECT_EQ(nullptr, xmlMalloc(moreThanAPoolServes));
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
    // The failure has ended the XML libraries for everybody; this starts them again. It stays,
    // since its end would do the same.
    static rgen::XmlParserContext again;
    EXPECT_NE(nullptr, again.acquire().release());
}

}  // namespace
}  // namespace rgen_test
