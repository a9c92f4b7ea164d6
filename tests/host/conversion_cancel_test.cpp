// rgen_cancel while the external converter, played by a stand-in, runs.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "support/conversion_fixture.h"

namespace rgen_test {
namespace {

class CancelConversion : public ConversionTest {
protected:
    // Cancels the running conversion of the fixture's request and expects it to be stopped while
    // the converter continues.
    void expectCancelledBy(const RgenGuid* guid) {
        converter.obey(
            waiting({{"write", output, "partial"}}, {{"mark", folder.file("survived")}}));
        RunningGeneration conversion(generator, input);
        ASSERT_TRUE(waitForStarted());
        rgen_cancel(generator.get(), guid);
        EXPECT_EQ(statusHex(RGEN_CANCELED), conversion.status());
        EXPECT_FALSE(exists(output));
        EXPECT_FALSE(exists(html));
        EXPECT_FALSE(exists(folder.file("survived")));
        release();
        EXPECT_TRUE(waitForFile(folder.file("survived")));
    }

    // Expects the running conversion to be completed although the action was taken.
    template <typename Action>
    void expectCompletedDespite(const Action& action) {
        converter.obey(waiting({}, {{"write", output, "converted"}}));
        RunningGeneration conversion(generator, input);
        ASSERT_TRUE(waitForStarted());
        action();
        release();
        EXPECT_EQ(statusHex(RGEN_OK), conversion.status());
        EXPECT_EQ("converted", readFile(output));
    }

    const RgenGuid first = defaultGuid();
    const RgenGuid second = guidFromText(secondGuidText);
};

TEST_F(CancelConversion, ByGuidStopsItAndRemovesWhatWasWritten) {
    expectCancelledBy(&first);
}

TEST_F(CancelConversion, ByNullStopsItAndRemovesWhatWasWritten) {
    expectCancelledBy(nullptr);
}

TEST_F(CancelConversion, ForAnotherGuidHasNoEffect) {
    expectCompletedDespite([this] { rgen_cancel(generator.get(), &second); });
}

TEST_F(CancelConversion, WithANullGeneratorHasNoEffect) {
    expectCompletedDespite([this] {
        rgen_cancel(nullptr, &first);
        rgen_cancel(nullptr, nullptr);
    });
}

TEST_F(CancelConversion, OfAnotherGeneratorHasNoEffect) {
    const Generator other(folder.path());
    expectCompletedDespite([this, &other] {
        rgen_cancel(other.get(), &first);
        rgen_cancel(other.get(), nullptr);
    });
}

TEST_F(CancelConversion, IsSeenWithinTheNextSlice) {
    converter.obey(waiting({}));
    RunningGeneration conversion(generator, input);
    ASSERT_TRUE(waitForStarted());
    const auto start = std::chrono::steady_clock::now();
    rgen_cancel(generator.get(), &first);
    EXPECT_EQ(statusHex(RGEN_CANCELED), conversion.status());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST_F(CancelConversion, BeforeTheConverterWroteLeavesNoOutput) {
    converter.obey(waiting({}));
    RunningGeneration conversion(generator, input);
    ASSERT_TRUE(waitForStarted());
    rgen_cancel(generator.get(), &first);
    EXPECT_EQ(statusHex(RGEN_CANCELED), conversion.status());
    EXPECT_FALSE(exists(output));
    EXPECT_FALSE(exists(html));
}

TEST_F(CancelConversion, DoesNotKeepTheConverterFromWritingLater) {
    converter.obey(waiting({}, {{"write", output, "late"}, {"mark", folder.file("survived")}}));
    RunningGeneration conversion(generator, input);
    ASSERT_TRUE(waitForStarted());
    rgen_cancel(generator.get(), nullptr);
    EXPECT_EQ(statusHex(RGEN_CANCELED), conversion.status());
    EXPECT_FALSE(exists(output));
    release();
    ASSERT_TRUE(waitForFile(folder.file("survived")));
    EXPECT_EQ("late", readFile(output));
}

TEST_F(CancelConversion, IsReportedAlthoughTheConverterHoldsItsFiles) {
    converter.obey(waiting({{"hold", output, "partial"}, {"read", html}}));
    RunningGeneration conversion(generator, input);
    ASSERT_TRUE(waitForStarted());
    rgen_cancel(generator.get(), &first);
    EXPECT_EQ(statusHex(RGEN_CANCELED), conversion.status());
}

TEST_F(CancelConversion, StopsTwoConversionsOfOneGuidByOneCall) {
    InputParams other;
    request(other, "other.pdf");
    converter.obey(waiting({}));
    RunningGeneration one(generator, input);
    RunningGeneration two(generator, other);
    ASSERT_TRUE(waitForStarted(2));
    rgen_cancel(generator.get(), &first);
    EXPECT_EQ(statusHex(RGEN_CANCELED), one.status());
    EXPECT_EQ(statusHex(RGEN_CANCELED), two.status());
}

TEST_F(CancelConversion, ByGuidLeavesTheConversionsOfOtherGuidsRunning) {
    InputParams other;
    request(other, "other.pdf");
    other.guid(second);
    converter.obey(waiting({}, {{"write", folder.file("other.pdf"), "converted"}}));
    RunningGeneration one(generator, input);
    RunningGeneration two(generator, other);
    ASSERT_TRUE(waitForStarted(2));
    rgen_cancel(generator.get(), &first);
    EXPECT_EQ(statusHex(RGEN_CANCELED), one.status());
    release();
    EXPECT_EQ(statusHex(RGEN_OK), two.status());
    // Not its content: the abandoned converter writes the same file at some time.
    EXPECT_TRUE(exists(folder.file("other.pdf")));
}

TEST_F(CancelConversion, ByNullStopsAllGuidsOfOneGeneratorOnly) {
    const Generator elsewhere(folder.path());
    InputParams other;
    InputParams untouched;
    request(other, "other.pdf");
    request(untouched, "untouched.pdf");
    other.guid(second);
    converter.obey(waiting({}));
    RunningGeneration one(generator, input);
    RunningGeneration two(generator, other);
    RunningGeneration three(elsewhere, untouched);
    ASSERT_TRUE(waitForStarted(3));
    rgen_cancel(generator.get(), nullptr);
    EXPECT_EQ(statusHex(RGEN_CANCELED), one.status());
    EXPECT_EQ(statusHex(RGEN_CANCELED), two.status());
    release();
    EXPECT_EQ(statusHex(RGEN_OK), three.status());
}

TEST_F(CancelConversion, HasNoEffectOnLaterConversions) {
    expectCancelledBy(&first);
    rgen_cancel(generator.get(), &first);
    rgen_cancel(generator.get(), nullptr);
    converter.obey({{"write", output, "converted"}});
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ("converted", readFile(output));
}

// The second conversion starts after the cancel and while the first one has not ended yet: its
// entry must outlive the clean-up of the first.
TEST_F(CancelConversion, TheCleanUpOfOneLeavesTheOtherOfItsGuidCancellable) {
    InputParams other;
    request(other, "other.pdf");
    converter.obey(waiting({}));
    RunningGeneration one(generator, input);
    ASSERT_TRUE(waitForStarted(1));
    rgen_cancel(generator.get(), &first);
    RunningGeneration two(generator, other);
    ASSERT_TRUE(waitForStarted(2));
    EXPECT_EQ(statusHex(RGEN_CANCELED), one.status());
    rgen_cancel(generator.get(), &first);
    EXPECT_EQ(statusHex(RGEN_CANCELED), two.status());
}

TEST_F(CancelConversion, TheEndOfOneLeavesAnOlderOneOfItsGuidCancellable) {
    InputParams other;
    request(other, "other.pdf");
    converter.obey(waiting({}));
    RunningGeneration older(generator, input);
    ASSERT_TRUE(waitForStarted(1));
    converter.obey({{"write", folder.file("other.pdf"), "converted"}});
    EXPECT_EQ(statusHex(RGEN_OK), generate(other));
    rgen_cancel(generator.get(), &first);
    EXPECT_EQ(statusHex(RGEN_CANCELED), older.status());
}

TEST_F(CancelConversion, AtItsEndGivesOneOfTheTwoStatuses) {
    converter.obey(waiting({}, {{"write", output, "converted"}}));
    RunningGeneration conversion(generator, input);
    ASSERT_TRUE(waitForStarted());
    release();
    rgen_cancel(generator.get(), &first);
    const std::string status = conversion.status();
    EXPECT_TRUE(status == statusHex(RGEN_OK) || status == statusHex(RGEN_CANCELED)) << status;
    EXPECT_FALSE(exists(html));
}

}  // namespace
}  // namespace rgen_test
