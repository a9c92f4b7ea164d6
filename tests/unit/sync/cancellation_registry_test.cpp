// The registry of running generations.
//
// SPDX-License-Identifier: MIT
#include "sync/cancellation_registry.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "unit/unit_fixture.h"

namespace rgen_test {
namespace {

using rgen::sync::CancellationTokenSource;
using rgen::sync::GenerationRegistration;

constexpr rgen::Guid firstGuid = rgen::defaultReportTypeGuid;

class RegistryTest : public ::testing::Test {
protected:
    // Inserts a source as a registration does and keeps it.
    std::shared_ptr<CancellationTokenSource> insert(const rgen::Guid& guid) {
        auto source = std::make_shared<CancellationTokenSource>();
        generator.cancellationRegistry.emplace(rgen::formatGuid(guid), source);
        return source;
    }
    std::vector<std::shared_ptr<CancellationTokenSource>> sourcesInOrder() const {
        std::vector<std::shared_ptr<CancellationTokenSource>> sources;
        for (const auto& entry : generator.cancellationRegistry)
            sources.push_back(entry.second);
        return sources;
    }

    rgen::ReportGenerator generator;
    rgen::ReportGenerator otherGenerator;
};

TEST_F(RegistryTest, RegistrationLastsAsLongAsItsObject) {
    {
        const GenerationRegistration registration(generator, otherGuid);
        ASSERT_EQ(1U, generator.cancellationRegistry.size());
        EXPECT_EQ(otherGuidText, generator.cancellationRegistry.begin()->first);
        EXPECT_FALSE(registration.token().isCancellationRequested());
        generator.cancellationRegistry.begin()->second->cancel();
        EXPECT_TRUE(registration.token().isCancellationRequested());
        EXPECT_TRUE(isUnlocked(generator));
    }
    EXPECT_TRUE(generator.cancellationRegistry.empty());
    EXPECT_TRUE(isUnlocked(generator));
}

TEST_F(RegistryTest, RegistrationEndsOnce) {
    GenerationRegistration registration(generator, otherGuid);
    registration.end();
    EXPECT_TRUE(generator.cancellationRegistry.empty());
    EXPECT_TRUE(isUnlocked(generator));
    const auto other = insert(otherGuid);
    registration.end();
    EXPECT_EQ(1U, generator.cancellationRegistry.size());
}

TEST_F(RegistryTest, EveryRegistrationStartsUnset) {
    {
        const GenerationRegistration cancelled(generator, otherGuid);
        rgen::sync::cancelGenerations(generator, otherGuid);
        const GenerationRegistration fresh(generator, otherGuid);
        EXPECT_TRUE(cancelled.token().isCancellationRequested());
        EXPECT_FALSE(fresh.token().isCancellationRequested());
    }
    EXPECT_TRUE(generator.cancellationRegistry.empty());
}

TEST_F(RegistryTest, NewEntryGoesBehindThoseOfItsKey) {
    const auto first = insert(otherGuid);
    const GenerationRegistration second(generator, otherGuid);
    const auto third = insert(otherGuid);
    const auto sources = sourcesInOrder();
    ASSERT_EQ(3U, sources.size());
    EXPECT_EQ(first, sources[0]);
    EXPECT_EQ(&second.token(), sources[1]->getToken().get());
    EXPECT_EQ(third, sources[2]);
}

TEST_F(RegistryTest, UnregisterErasesTheEntryOfItsOwnSourceOnly) {
    const std::string key = otherGuidText;
    const auto first = insert(otherGuid);
    const auto second = insert(otherGuid);
    const auto third = insert(otherGuid);
    const auto another = insert(firstGuid);
    rgen::sync::unregisterGeneration(generator, key, second);
    EXPECT_EQ((std::vector<std::shared_ptr<CancellationTokenSource>>{first, third, another}),
              sourcesInOrder());
    rgen::sync::unregisterGeneration(generator, key, second);
    rgen::sync::unregisterGeneration(generator, key, another);
    EXPECT_EQ(3U, generator.cancellationRegistry.size());
    rgen::sync::unregisterGeneration(generator, key, third);
    rgen::sync::unregisterGeneration(generator, key, first);
    EXPECT_EQ(std::vector<std::shared_ptr<CancellationTokenSource>>{another}, sourcesInOrder());
    EXPECT_FALSE(first->isCancellationRequested());
}

TEST_F(RegistryTest, UnregisterErasesOneOfTwoEntriesOfASource) {
    const auto source = insert(otherGuid);
    generator.cancellationRegistry.emplace(otherGuidText, source);
    rgen::sync::unregisterGeneration(generator, otherGuidText, source);
    EXPECT_EQ(1U, generator.cancellationRegistry.size());
}

TEST_F(RegistryTest, CancelByGuidReachesEveryEntryOfThatKey) {
    const auto first = insert(otherGuid);
    const auto second = insert(otherGuid);
    const auto another = insert(firstGuid);
    rgen::sync::cancelGenerations(generator, otherGuid);
    EXPECT_TRUE(first->isCancellationRequested());
    EXPECT_TRUE(second->isCancellationRequested());
    EXPECT_FALSE(another->isCancellationRequested());
    EXPECT_EQ(std::vector<std::shared_ptr<CancellationTokenSource>>{another}, sourcesInOrder());
    EXPECT_TRUE(isUnlocked(generator));
}

TEST_F(RegistryTest, CancelAllEmptiesTheRegistry) {
    const std::vector<std::shared_ptr<CancellationTokenSource>> sources = {
        insert(otherGuid), insert(firstGuid), insert(otherGuid), insert({1, 2, 3, {}})};
    const auto elsewhere = std::make_shared<CancellationTokenSource>();
    otherGenerator.cancellationRegistry.emplace(otherGuidText, elsewhere);
    rgen::sync::cancelAllGenerations(generator);
    for (const auto& source : sources) {
        EXPECT_TRUE(source->isCancellationRequested());
        EXPECT_EQ(1, source.use_count());
    }
    EXPECT_TRUE(generator.cancellationRegistry.empty());
    EXPECT_FALSE(elsewhere->isCancellationRequested());
    EXPECT_EQ(1U, otherGenerator.cancellationRegistry.size());
}

TEST_F(RegistryTest, CancelWithoutEntriesDoesNothing) {
    rgen::sync::cancelAllGenerations(generator);
    rgen::sync::cancelGenerations(generator, otherGuid);
    const auto another = insert(firstGuid);
    rgen::sync::cancelGenerations(generator, otherGuid);
    EXPECT_FALSE(another->isCancellationRequested());
    EXPECT_EQ(1U, generator.cancellationRegistry.size());
}

TEST_F(RegistryTest, CancelledGenerationUnregistersWithoutHarm) {
    {
        const GenerationRegistration cancelled(generator, otherGuid);
        rgen::sync::cancelAllGenerations(generator);
        EXPECT_TRUE(generator.cancellationRegistry.empty());
        EXPECT_TRUE(cancelled.token().isCancellationRequested());
    }
    EXPECT_TRUE(generator.cancellationRegistry.empty());
}

TEST(FreeingAGenerator, DropsItsReferencesWithoutCancelling) {
    const auto source = std::make_shared<CancellationTokenSource>();
    {
        rgen::ReportGenerator generator;
        generator.cancellationRegistry.emplace(otherGuidText, source);
    }
    EXPECT_EQ(1, source.use_count());
    EXPECT_FALSE(source->isCancellationRequested());
}

}  // namespace
}  // namespace rgen_test
