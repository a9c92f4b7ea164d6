// Every call at the same time as every other one, on generators that threads share and on
// generators of their own. Each result is one that some order of the calls explains. The loops are
// bounded by counts.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "support/process_figures.h"
#include "support/report_fixture.h"

namespace rgen_test {
namespace {

constexpr unsigned racers = 8;
const std::string marker = "QT_TRANSLATE_NOOP(\"QObject\", \"end\")";

// Runs a function with the numbers 0 to count - 1, each on a thread of its own.
template <typename Function>
void onThreads(unsigned count, const Function& function) {
    std::vector<std::thread> threads;
    for (unsigned index = 0; index < count; ++index)
        threads.emplace_back([&function, index] { function(index); });
    for (std::thread& thread : threads)
        thread.join();
}

// Contexts of the callback, which threads exchange.
char prefixes[][2] = {"0", "1", "2"};

// Eight threads, each with a random sequence of calls, on two shared generators, with two data
// directories.
class MixedRace : public ReportTest {
protected:
    MixedRace() : second(other.path()) {
        prepare(folder, "A");
        prepare(other, "B");
        writeFile(folder.file("simulation.xml"),
                  "<data><properties><property name='s' type='string' hint='Generic'>text"
                  "</property></properties></data>");
        for (const Generator* shared : {&generator, &second})
            rgen_setTranslateFunction(shared->get(), translateWithPrefix, prefixes[0]);
    }

    static void prepare(const TempFolder& place, const std::string& name) {
        writeFile(place.dataFile("templates/html/test_stylesheet.xsl"),
                  textStylesheet(name + ":" + valueOf("v") + ":" + marker));
    }

    // What one thread does.
    class Worker {
    public:
        Worker(MixedRace& race, unsigned number)
            : race_(race), number_(number), random_(number + 1), own_(race.folder.path()) {
            rgen_setTranslateFunction(own_.get(), translateWithPrefix, prefixes[0]);
        }

        void run(int rounds) {
            for (int round = 0; round < rounds; ++round)
                act(random_() % 20);
        }

    private:
        const Generator& shared() { return random_() % 2 == 0 ? race_.generator : race_.second; }
        const TempFolder& place() { return random_() % 2 == 0 ? race_.folder : race_.other; }

        void act(unsigned long choice) {
            switch (choice) {
                case 0:
                    return cancel();
                case 1:
                    return store();
                case 2:
                    return readStore();
                case 3:
                    return rgen_setTranslateFunction(shared().get(), translateWithPrefix,
                                                     prefixes[random_() % 3]);
                case 4:
                    EXPECT_EQ(RGEN_OK, rgen_setDataDirPath(shared().get(), place().path().c_str()));
                    return;
                case 5:
                    return dump();
                case 6:
                    EXPECT_EQ("text", simulatedData(shared(), race_.folder.file("simulation.xml"))
                                          .values["s"]
                                          .text);
                    return;
                case 7:
                    EXPECT_STREQ("Canceled by request",
                                 rgen_getStatusCodeDescription(shared().get(), RGEN_CANCELED));
                    return;
                case 8:
                    return useNewGenerator();
                case 9:
                    return reportAsFile();
                default:
                    return choice % 2 == 0 ? reportOnShared() : reportOnOwn();
            }
        }

        void cancel() {
            const RgenGuid guid = defaultGuid();
            rgen_cancel(shared().get(), random_() % 2 == 0 ? &guid : nullptr);
        }

        RgenStatus generate(const Generator& used, std::uint64_t mode, Result& result) {
            InputParams input;
            value_ = "t" + std::to_string(number_) + "." + std::to_string(random_());
            input.variants().addString("v", value_);
            input.output(mode, race_.folder.file("file" + std::to_string(number_)));
            return rgen_generateReport(used.get(), input.get(), result.get());
        }

        // Either data directory, any prefix: both change all the time. The value is this thread's.
        void expectShared(const std::string& bytes) {
            const std::string middle = ":" + value_ + ":";
            EXPECT_EQ(value_.size() + 7, bytes.size()) << bytes;
            EXPECT_TRUE(bytes.front() == 'A' || bytes.front() == 'B') << bytes;
            EXPECT_EQ(1U, bytes.find(middle)) << bytes;
            EXPECT_NE(std::string::npos, std::string("012").find(bytes[middle.size() + 1]));
            EXPECT_EQ("end", bytes.substr(middle.size() + 2));
        }

        void reportOnShared() {
            Result result;
            const RgenStatus status = generate(shared(), RGEN_OUTPUT_BYTES, result);
            if (status == RGEN_CANCELED) return;
            EXPECT_EQ(statusHex(RGEN_OK), statusHex(status));
            expectShared(result.bytes());
        }

        void reportOnOwn() {
            Result result;
            EXPECT_EQ(RGEN_OK, generate(own_, RGEN_OUTPUT_BYTES, result));
            EXPECT_EQ("A:" + value_ + ":0end", result.bytes());
        }

        void reportAsFile() {
            Result result;
            const RgenStatus status = generate(shared(), RGEN_OUTPUT_FILE, result);
            if (status == RGEN_CANCELED) return;
            EXPECT_EQ(statusHex(RGEN_OK), statusHex(status));
            expectShared(readFile(race_.folder.file("file" + std::to_string(number_))));
        }

        void useNewGenerator() {
            const Generator fresh(race_.other.path());
            rgen_setTranslateFunction(fresh.get(), translateWithPrefix, prefixes[2]);
            Result result;
            EXPECT_EQ(RGEN_OK, generate(fresh, RGEN_OUTPUT_BYTES, result));
            EXPECT_EQ("B:" + value_ + ":2end", result.bytes());
        }

        void store() {
            const RgenStatus status = storePairs(shared(), defaultGuid(), {{"p", "stored"}});
            EXPECT_TRUE(status == RGEN_OK || status == RGEN_E_DELETE_PERSIST ||
                        status == RGEN_E_CREATE_PERSIST)
                << statusHex(status);
        }

        // Another thread may have removed the file or be about to write it.
        void readStore() {
            static const std::set<std::string> documented = {
                statusHex(RGEN_OK), statusHex(RGEN_E_OPEN_PERSIST),
                statusHex(RGEN_E_NO_PERSIST_VALUES), statusHex(RGEN_E_NO_VALID_PERSIST_VALUES)};
            const PersistentData data = persistentData(shared(), defaultGuid());
            EXPECT_EQ(1U, documented.count(statusHex(data.status))) << statusHex(data.status);
            for (const auto& [name, text] : data.pairs) {
                EXPECT_EQ("p", name);
                EXPECT_EQ(0U, std::string("stored").find(text)) << text;
            }
        }

        void dump() {
            const std::string path = race_.folder.file("dump" + std::to_string(number_));
            InputParams input;
            input.variants().addString("v", "dumped");
            EXPECT_EQ(RGEN_OK,
                      rgen_dumpRawInputDataToFile(shared().get(), input.get(), path.c_str()));
            EXPECT_NE(std::string::npos, readFile(path).find("<property name=\"v\">dumped<"));
        }

        MixedRace& race_;
        unsigned number_;
        std::mt19937 random_;
        Generator own_;
        std::string value_;
    };

    TempFolder other;
    Generator second;
};

TEST_F(MixedRace, OfAllCallsGivesResultsOfSomeOrder) {
    const int rounds = loopCount(6000);
    onThreads(racers, [&](unsigned thread) { Worker(*this, thread).run(rounds); });
    for (const Generator* shared : {&generator, &second}) {
        EXPECT_EQ(RGEN_OK, rgen_setDataDirPath(shared->get(), folder.path().c_str()));
        rgen_setTranslateFunction(shared->get(), translateWithPrefix, prefixes[1]);
    }
    EXPECT_EQ(reportOf("A:v:1end"), reportOfValue("v"));
}

class Race : public ReportTest {
protected:
    Race() { putTemplate(textStylesheet("[" + valueOf("v") + "]")); }

    static Report reportOn(const Generator& used, const std::string& text) {
        InputParams input;
        input.variants().addString("v", text);
        Result result;
        const RgenStatus status = rgen_generateReport(used.get(), input.get(), result.get());
        return {statusHex(status), result.bytes()};
    }
};

TEST_F(Race, TenThousandReportsOfEightThreadsAndFourGenerators) {
    const int reports = loopCount(10000) / static_cast<int>(racers);
    const Generator others[] = {Generator(folder.path()), Generator(folder.path()),
                                Generator(folder.path())};
    const Generator* const used[] = {&generator, &others[0], &others[1], &others[2]};
    const long threads = threadCount();
    const long handles = openHandles();
    onThreads(racers, [&](unsigned thread) {
        for (int number = 0; number < reports; ++number) {
            const std::string text = std::to_string(thread) + "." + std::to_string(number);
            ASSERT_EQ(reportOf("[" + text + "]"), reportOn(*used[thread % 4], text));
        }
    });
    EXPECT_EQ(threads, threadCount());
    EXPECT_LE(openHandles(), handles + handlesOfLocks);
    // No generation is left in a registry that a cancel could still reach.
    for (const Generator* each : used) {
        rgen_cancel(each->get(), nullptr);
        EXPECT_EQ(reportOf("[v]"), reportOn(*each, "v"));
    }
}

TEST_F(Race, FourThreadsThatCancelAllTheTimeStopNothingForGood) {
    constexpr int cancels = 50000;
    const RgenGuid guid = defaultGuid();
    const RgenGuid other = guidFromText(secondGuidText);
    const RgenGuid* const targets[] = {&guid, nullptr, &other, &guid};
    std::atomic<int> cancelling{4};
    std::vector<std::thread> threads;
    for (const RgenGuid* target : targets) {
        threads.emplace_back([this, target, &cancelling] {
            for (int call = 0; call < cancels; ++call)
                rgen_cancel(generator.get(), target);
            --cancelling;
        });
    }
    onThreads(4, [&](unsigned) {
        // The last report begins when no cancel can come any more.
        for (bool last = false; !last;) {
            last = cancelling == 0;
            const Report result = reportOn(generator, "v");
            EXPECT_TRUE(result == reportOf("[v]") || (!last && result == failure(RGEN_CANCELED)))
                << result;
        }
    });
    for (std::thread& thread : threads)
        thread.join();
}

}  // namespace
}  // namespace rgen_test
