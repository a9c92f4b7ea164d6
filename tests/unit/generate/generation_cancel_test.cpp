// Cancels that wait for the generator's lock. The lock itself tells that a canceller waits, so
// every cancel that counts here was called before what it has to precede.
//
// SPDX-License-Identifier: MIT
#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "generate/generation_driver.h"
#include "strata_repgenlib/rgen.h"
#include "support/fault_injection.h"
#include "support/process_figures.h"
#include "unit/unit_fixture.h"

namespace rgen_test {
namespace {

// What a request lacks, and how its generation ends where nobody cancels.
enum class Lack { Nothing, Template, Input };

const std::string marker = "QT_TRANSLATE_NOOP(\"QObject\", \"a\")";

class CancelTest : public UnitTest {
protected:
    CancelTest() {
        putConfig();
        putTemplate(textTemplate(marker));
    }

    rgen::Status generate(Lack lack = Lack::Nothing) {
        rgen::InputParams request = {};
        request.templateGuid = rgen::defaultReportTypeGuid;
        request.outputMode = rgen::output_mode::bytes;
        request.outputFormat = lack == Lack::Template ? "odt" : "html";
        if (lack != Lack::Input)
            request.variants = {{"a", rgen::Variant(std::string("v"), rgen::VariantHint::Generic)}};
        rgen::Variant result;
        return rgen::generate(generator, request, result);
    }

    // As a host does: by the GUID of the report type or for all.
    void cancel(bool all = true) {
        const RgenGuid guid = {0xDEADBABE, 0, 0, {}};
        rgen_cancel(reinterpret_cast<RgenReportGenerator*>(&generator), all ? nullptr : &guid);
    }

    void awaitCancellers(unsigned count) const {
        while (generator.mutex.cancellers() != count)
            std::this_thread::yield();
    }

    // Generates; while that call of the generation runs, that many cancels begin to wait.
    rgen::Status generateCancelledAt(Call call, unsigned cancels) {
        std::vector<std::thread> cancelling;
        const InterceptedCall step(call, [&] {
            for (unsigned number = 0; number < cancels; ++number)
                cancelling.emplace_back([this, number] { cancel(number % 2 == 0); });
            awaitCancellers(cancels);
        });
        const rgen::Status status = generate();
        for (std::thread& thread : cancelling)
            thread.join();
        EXPECT_TRUE(step.reached());
        return status;
    }
};

TEST_F(CancelTest, NoneOfAThousandThatWaitForTheLookupIsLost) {
    const int rounds = loopCount(1000);
    std::atomic<bool> mayCancel{false};
    std::thread cancelling([&] {
        for (int round = 0; round < rounds; ++round) {
            while (!mayCancel.exchange(false))
                std::this_thread::yield();
            cancel(round % 3 == 0);
        }
    });
    std::map<Lack, int> lost = {{Lack::Nothing, 0}, {Lack::Template, 0}, {Lack::Input, 0}};
    for (int round = 0; round < rounds; ++round) {
        const Call call = round % 2 == 0 ? Call::ReadXmlFile : Call::EvaluateXPath;
        const InterceptedCall step(call, [&] {
            mayCancel = true;
            awaitCancellers(1);
        });
        const auto lack = static_cast<Lack>(round / 2 % 3);
        lost[lack] += generate(lack) == RGEN_CANCELED ? 0 : 1;
        EXPECT_TRUE(step.reached());
    }
    cancelling.join();
    EXPECT_EQ(0, lost[Lack::Nothing]);
    EXPECT_EQ(0, lost[Lack::Template]);
    EXPECT_EQ(0, lost[Lack::Input]);
    EXPECT_FALSE(exists(folder.dataFile("templates/odt")));
    EXPECT_TRUE(generator.cancellationRegistry.empty());
}

TEST_F(CancelTest, LackingRequestsEndAsDocumentedWithoutOne) {
    EXPECT_EQ(RGEN_E_TEMPLATE_NOT_FOUND, generate(Lack::Template));
    EXPECT_TRUE(exists(folder.dataFile("templates/odt")));
    EXPECT_EQ(RGEN_E_EMPTY_INPUT, generate(Lack::Input));
}

TEST_F(CancelTest, SeveralThatWaitForTheLookupAllReturnBeforeTheTransformation) {
    std::atomic<int> begun{0};
    generator.translateContext = &begun;
    generator.translateFunction = [](const char* text, void* context) {
        ++*static_cast<std::atomic<int>*>(context);
        return text;
    };
    for (int round = 0; round < 30; ++round)
        ASSERT_EQ(RGEN_CANCELED, generateCancelledAt(Call::ReadXmlFile, 3));
    EXPECT_EQ(0, begun);
}

TEST_F(CancelTest, ThatWaitsReachesNoGenerationThatRegistersAfterwards) {
    for (int round = 0; round < 50; ++round) {
        rgen::Status status = RGEN_CANCELED;
        std::unique_lock held(generator.mutex);
        std::thread cancelling([this] { cancel(); });
        awaitCancellers(1);
        std::thread generating([&] { status = generate(); });
        held.unlock();
        cancelling.join();
        generating.join();
        ASSERT_EQ(RGEN_OK, status);
    }
}

TEST_F(CancelTest, ThatWaitsForTheEndOfItsGenerationDoesNoHarm) {
    for (int round = 0; round < 50; ++round) {
        // The last mutex-guarded step that still works for the generation is its transformation.
        ASSERT_EQ(RGEN_OK, generateCancelledAt(Call::SaveTransformResult, 2));
        ASSERT_TRUE(generator.cancellationRegistry.empty());
        ASSERT_TRUE(isUnlocked(generator));
    }
}

// Three threads generate on one generator and one cancels. The callback of a transformation waits
// until the canceller does; no other transformation may begin before that cancel has been served.
class CancelAmongThreads : public CancelTest {
protected:
    CancelAmongThreads() {
        generator.translateContext = this;
        generator.translateFunction = [](const char* text, void* context) {
            static_cast<CancelAmongThreads*>(context)->beginTransformation();
            return text;
        };
    }

    void beginTransformation() {
        if (cancelWaits && generator.mutex.cancellers() != 0) ++overtaken;
        if (!wanted.exchange(false)) return;
        mayCancel = true;
        awaitCancellers(1);
        cancelWaits = true;
    }

    void cancelOften(int rounds) {
        for (int round = 0; round < rounds; ++round) {
            wanted = true;
            while (!mayCancel.exchange(false))
                std::this_thread::yield();
            cancel(round % 2 == 0);
            cancelWaits = false;
        }
    }

    void generateUntilDone() {
        while (!done) {
            const rgen::Status status = generate();
            EXPECT_TRUE(status == RGEN_OK || status == RGEN_CANCELED) << statusHex(status);
        }
    }

    std::atomic<bool> wanted{false};
    std::atomic<bool> mayCancel{false};
    std::atomic<bool> cancelWaits{false};
    std::atomic<bool> done{false};
    std::atomic<int> overtaken{0};
};

TEST_F(CancelAmongThreads, WaitsForOneTransformationAtMost) {
    std::vector<std::thread> generating;
    for (int thread = 0; thread < 3; ++thread)
        generating.emplace_back([this] { generateUntilDone(); });
    cancelOften(300);
    done = true;
    for (std::thread& thread : generating)
        thread.join();
    EXPECT_EQ(0, overtaken);
    EXPECT_EQ(RGEN_OK, generate());
}

}  // namespace
}  // namespace rgen_test
