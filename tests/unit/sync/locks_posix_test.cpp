// Every stretch that the generator's mutex guards takes it before anything else. The wrapped call
// shows the moment at which a thread asks for a mutex, so no case has to wait for another thread.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <system_error>
#include <thread>

#include "generate/generation_driver.h"
#include "platform/child_process.h"
#include "store/data_directory.h"
#include "strata_repgenlib/rgen.h"
#include "support/converter_control.h"
#include "support/fault_injection.h"
#include "sync/cancellation_registry.h"
#include "unit/unit_fixture.h"

namespace rgen_test {
namespace {

using rgen::sync::CancellationTokenSource;
using rgen::sync::GenerationRegistration;

class LockTest : public UnitTest {
protected:
    // Runs `work` and, right before it locks its first mutex, `before`.
    static void expectLock(const std::function<void()>& work, const std::function<void()>& before) {
        const InterceptedCall locking(Call::LockMutex, before);
        work();
        EXPECT_TRUE(locking.reached());
    }

    RgenReportGenerator* handle() { return reinterpret_cast<RgenReportGenerator*>(&generator); }
    std::size_t entries() const { return generator.cancellationRegistry.size(); }
};

TEST_F(LockTest, TranslateCallbackIsStoredBehindIt) {
    const RgenTranslateFunction before = generator.translateFunction;
    const RgenTranslateFunction translate = [](const char*, void*) { return "translated"; };
    expectLock([&] { rgen_setTranslateFunction(handle(), translate, this); },
               [&] {
                   EXPECT_EQ(before, generator.translateFunction);
                   EXPECT_EQ(nullptr, generator.translateContext);
               });
    EXPECT_EQ(translate, generator.translateFunction);
    EXPECT_TRUE(isUnlocked(generator));
}

TEST_F(LockTest, DataDirectoryPathIsStoredAndReadBehindIt) {
    const std::string before = generator.dataDirPath;
    expectLock([&] { rgen::setDataDir(generator, "/"); },
               [&] { EXPECT_EQ(before, generator.dataDirPath); });
    expectLock([&] { EXPECT_EQ("changed", rgen::dataDirPathOf(generator)); },
               [&] { generator.dataDirPath = "changed"; });
    EXPECT_TRUE(isUnlocked(generator));
}

TEST_F(LockTest, GenerationIsRegisteredAndUnregisteredBehindIt) {
    expectLock(
        [&] {
            const GenerationRegistration registration(generator, otherGuid);
            expectLock([&] { rgen::sync::unregisterGeneration(generator, otherGuidText, nullptr); },
                       [&] { EXPECT_EQ(1U, entries()); });
        },
        [&] { EXPECT_EQ(0U, entries()); });
    EXPECT_EQ(0U, entries());
    EXPECT_TRUE(isUnlocked(generator));
}

TEST_F(LockTest, GenerationsAreCancelledBehindIt) {
    for (const bool all : {false, true}) {
        const auto source = std::make_shared<CancellationTokenSource>();
        generator.cancellationRegistry.emplace(otherGuidText, source);
        expectLock(
            [&] {
                if (all) {
                    rgen::sync::cancelAllGenerations(generator);
                } else {
                    rgen::sync::cancelGenerations(generator, otherGuid);
                }
            },
            [&] {
                EXPECT_EQ(1U, entries());
                EXPECT_FALSE(source->isCancellationRequested());
            });
        EXPECT_TRUE(source->isCancellationRequested());
        EXPECT_EQ(0U, entries());
    }
    EXPECT_TRUE(isUnlocked(generator));
}

// A canceller asks for two mutexes: for its turn, and for the one that everybody asks for.
TEST_F(LockTest, RefusedToACancellerIsAnExceptionAndLeavesNothingHeld) {
    for (int number = 1; number <= 2; ++number) {
        const FailingCall refused(Call::LockMutex, number);
        EXPECT_THROW(rgen_cancel(handle(), nullptr), std::system_error);
        EXPECT_TRUE(refused.reached());
        EXPECT_EQ(0U, generator.mutex.cancellers());
        EXPECT_TRUE(isUnlocked(generator));
    }
    rgen_cancel(handle(), nullptr);
    EXPECT_TRUE(isUnlocked(generator));
}

TEST_F(LockTest, RefusedToAGenerationAtItsEndIsAnExceptionAndIsTriedAgain) {
    {
        GenerationRegistration registration(generator, otherGuid);
        {
            const FailingCall refused(Call::LockMutex);
            EXPECT_THROW(registration.end(), std::system_error);
            EXPECT_TRUE(refused.reached());
        }
        EXPECT_EQ(1U, entries());
    }
    EXPECT_EQ(0U, entries());
    EXPECT_TRUE(isUnlocked(generator));
}

TEST_F(LockTest, RefusedBehindAnExceptionDoesNotEndTheProcess) {
    std::optional<GenerationRegistration> registration(std::in_place, generator, otherGuid);
    {
        const FailingCall refused(Call::LockMutex);
        registration.reset();
        EXPECT_TRUE(refused.reached());
    }
    EXPECT_EQ(1U, entries());
    EXPECT_TRUE(isUnlocked(generator));
    rgen_cancel(handle(), nullptr);
    EXPECT_EQ(0U, entries());
}

// The last mutex that a generation asks for is the one of its end.
TEST_F(LockTest, RefusedToAReportAtItsEndIsAnException) {
    putConfig();
    putTemplate(textTemplate("x"));
    const auto generate = [this] {
        rgen::InputParams request = {};
        request.templateGuid = rgen::defaultReportTypeGuid;
        request.outputMode = rgen::output_mode::bytes;
        request.outputFormat = "html";
        request.pairs = {{"a", "v"}};
        rgen::Variant result;
        return rgen::generate(generator, request, result);
    };
    EXPECT_EQ(RGEN_OK, generate());
    int last = 0;
    for (bool isReached = true; isReached; ++last) {
        const InterceptedCall locking(
            Call::LockMutex, [] {}, last + 1);
        EXPECT_EQ(RGEN_OK, generate());
        isReached = locking.reached();
    }
    const FailingCall refused(Call::LockMutex, last - 1);
    EXPECT_THROW(generate(), std::system_error);
    EXPECT_TRUE(refused.reached());
    EXPECT_EQ(0U, entries());
    EXPECT_TRUE(isUnlocked(generator));
}

TEST_F(LockTest, RefusedToAnyoneElseIsAnExceptionAndLeavesNothingHeld) {
    {
        const FailingCall refused(Call::LockMutex);
        EXPECT_THROW(rgen::dataDirPathOf(generator), std::system_error);
        EXPECT_TRUE(refused.reached());
    }
    EXPECT_TRUE(isUnlocked(generator));
}

// The canceller is announced and does not wait yet.
TEST_F(LockTest, IsNotTakenFromAnAnnouncedCanceller) {
    expectLock([this] { rgen_cancel(handle(), nullptr); },
               [this] {
                   EXPECT_EQ(1U, generator.mutex.cancellers());
                   EXPECT_FALSE(isUnlocked(generator));
               });
    EXPECT_TRUE(isUnlocked(generator));
}

// Others get the mutex, return it to the announced canceller, wait for its turn and ask again.
TEST_F(LockTest, RefusedToSomeoneWhoMakesWayIsAnExceptionAndLeavesNothingHeld) {
    for (int number = 2; number <= 3; ++number) {
        expectLock([this] { rgen_cancel(handle(), nullptr); },
                   [&] {
                       const FailingCall refused(Call::LockMutex, number);
                       EXPECT_THROW(generator.mutex.lock(), std::system_error);
                       EXPECT_TRUE(refused.reached());
                   });
        EXPECT_TRUE(isUnlocked(generator));
    }
}

TEST_F(LockTest, AbandonedProcessesAreKeptBehindOneOfTheirOwn) {
    const ConverterControl control{folder};
    control.obey({{"await", folder.file("go")}});
    expectLock(
        [] {
            rgen::platform::ChildProcess process("vellum");
            EXPECT_TRUE(process.waitTimedOut(1));
        },
        [] {});
    {
        const InterceptedCall collecting(Call::QueryExitCode, [] {
            std::thread(rgen::platform::reapAbandonedProcesses).join();
        });
        rgen::platform::reapAbandonedProcesses();
        EXPECT_TRUE(collecting.reached());
    }
    writeFile(folder.file("go"), "");
}

}  // namespace
}  // namespace rgen_test
