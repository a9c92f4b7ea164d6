// The token and its source.
//
// SPDX-License-Identifier: MIT
#include "sync/cancellation.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <type_traits>

namespace rgen_test {
namespace {

using rgen::sync::CancellationToken;
using rgen::sync::CancellationTokenSource;

TEST(CancellationTokenSource, StartsUnset) {
    const CancellationTokenSource source;
    EXPECT_FALSE(source.isCancellationRequested());
    EXPECT_FALSE(source.getToken()->isCancellationRequested());
}

TEST(CancellationTokenSource, CancelIsSeenThroughEveryReferenceAndStays) {
    CancellationTokenSource source;
    const auto before = source.getToken();
    source.cancel();
    EXPECT_TRUE(source.isCancellationRequested());
    EXPECT_TRUE(before->isCancellationRequested());
    EXPECT_TRUE(source.getToken()->isCancellationRequested());
    source.cancel();
    EXPECT_TRUE(before->isCancellationRequested());
}

TEST(CancellationTokenSource, GivesOneTokenOnSharedReferences) {
    const CancellationTokenSource source;
    const auto first = source.getToken();
    const auto second = source.getToken();
    EXPECT_EQ(first, second);
    EXPECT_EQ(3, first.use_count());
}

TEST(CancellationTokenSource, TokenOutlivesItsSource) {
    std::shared_ptr<CancellationToken> token;
    {
        CancellationTokenSource source;
        token = source.getToken();
        source.cancel();
    }
    EXPECT_EQ(1, token.use_count());
    EXPECT_TRUE(token->isCancellationRequested());
}

TEST(CancellationTokenSource, SourcesAreIndependent) {
    CancellationTokenSource first;
    const CancellationTokenSource second;
    first.cancel();
    EXPECT_FALSE(second.isCancellationRequested());
}

TEST(CancellationTokenSource, FlagCrossesThreads) {
    CancellationTokenSource source;
    const auto token = source.getToken();
    std::thread other([&source] { source.cancel(); });
    while (!token->isCancellationRequested())
        std::this_thread::yield();
    other.join();
    EXPECT_TRUE(source.isCancellationRequested());
}

}  // namespace
}  // namespace rgen_test
