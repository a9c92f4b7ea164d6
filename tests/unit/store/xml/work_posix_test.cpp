// XML work on Linux where the thread's pointer cannot be set, or the stack's limit is not known.
//
// SPDX-License-Identifier: MIT
#include "store/xml/work.h"

#include <gtest/gtest.h>
#include <libxslt/transform.h>
#include <libxslt/xsltInternals.h>
#include <libxslt/xsltutils.h>

#include <cstddef>
#include <thread>

#include "store/xml/handles.h"
#include "store/xml/memory.h"
#include "store/xml/stack_guard.h"
#include "support/fault_injection.h"
#include "support/sized_thread.h"

namespace rgen_test {
namespace {

using rgen::XmlWork;

TEST(XmlWork, WorksOnWithoutAPoolWhereThePointerCannotBeSet) {
    rgen::memory::PoolSlot slot;
    std::thread([&slot] {
        rgen::requireXmlThreadState();
        const FailingCall failure(Call::SetThreadPointer);
        const XmlWork work(slot);
        EXPECT_TRUE(failure.reached());
        EXPECT_EQ(nullptr, XmlWork::currentPool());
    }).join();
}

TEST(XmlWork, WorksOnWithoutMemoryForAPoolWhereThePointerCannotBeSet) {
    rgen::memory::PoolSlot slot;
    std::thread([&slot] {
        rgen::requireXmlThreadState();
        const FailingCall noPointer(Call::SetThreadPointer);
        const FailingAllocation noMemory(1);
        const XmlWork work(slot);
        EXPECT_TRUE(noPointer.reached());
        EXPECT_EQ(nullptr, XmlWork::currentPool());
    }).join();
}

TEST(GuardStack, CountsOnTheSmallestStackWhereTheLimitIsUnknown) {
    std::thread([] {
        const rgen::XmlPtr<xmlDoc> data(xmlNewDoc(rgen::xmlText("1.0")));
        const rgen::XmlPtr<xsltStylesheet> stylesheet(xsltNewStylesheet());
        const rgen::XmlPtr<xsltTransformContext> context(
            xsltNewTransformContext(stylesheet.get(), data.get()));
        const FailingCall failure(Call::ReadThreadStack);
        XmlWork work(XmlWork::WithReserve{});
        rgen::guardStack(*context, work);
        EXPECT_TRUE(failure.reached());
        const std::ptrdiff_t room =
            static_cast<const char*>(__builtin_frame_address(0)) - work.lowestForTemplates();
        const std::size_t expected = rgen::assumedStack - rgen::unknownStackRule.reserve;
        EXPECT_LE(96 * kibibyte, expected);
        // The difference is the frame of this function, which sanitizers enlarge.
        EXPECT_NEAR(static_cast<double>(expected), static_cast<double>(room), 4096.0);
        EXPECT_EQ(rgen::unknownStackRule.withheldXPathLevels, context->xpathCtxt->depth);
        EXPECT_EQ(XSLT_DEBUG_RUN, context->debugStatus);
    }).join();
}

}  // namespace
}  // namespace rgen_test
