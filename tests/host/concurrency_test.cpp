// Generators used from several threads at once.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/report_fixture.h"

namespace rgen_test {
namespace {

constexpr int threadCount = 4;
constexpr int reportsOfThread = 40;

// Runs a function with the numbers 0 to count - 1, each on a thread of its own.
void onThreads(int count, const std::function<void(int)>& function) {
    std::vector<std::thread> threads;
    for (int index = 0; index < count; ++index) {
        threads.emplace_back([&function, index] { function(index); });
    }
    for (std::thread& thread : threads)
        thread.join();
}

// Counts how many threads are inside a callback at once.
struct Gauge {
    std::atomic<int> inside{0};
    std::atomic<int> highest{0};
};

const char* RGEN_CALL measure(const char* text, void* context) {
    auto* gauge = static_cast<Gauge*>(context);
    const int inside = ++gauge->inside;
    int highest = gauge->highest;
    while (highest < inside && !gauge->highest.compare_exchange_weak(highest, inside)) {
    }
    std::this_thread::yield();
    --gauge->inside;
    return text;
}

// A place where that many threads wait for each other; the bound passes only when one never comes.
struct Meeting {
    std::mutex mutex;
    std::condition_variable changed;
    int arrived = 0;
    bool complete = false;
};

const char* RGEN_CALL meet(const char*, void* context) {
    auto* meeting = static_cast<Meeting*>(context);
    std::unique_lock<std::mutex> lock(meeting->mutex);
    if (++meeting->arrived == 2) meeting->complete = true;
    meeting->changed.notify_all();
    meeting->changed.wait_for(lock, std::chrono::seconds(30),
                              [meeting] { return meeting->complete; });
    return meeting->complete ? "met" : "alone";
}

// Callbacks that notice a context that was set with the other one.
char contextOfOne = '1';
char contextOfTwo = '2';

const char* RGEN_CALL translateOne(const char*, void* context) {
    return context == &contextOfOne ? "one," : "mixed,";
}

const char* RGEN_CALL translateTwo(const char*, void* context) {
    return context == &contextOfTwo ? "two," : "mixed,";
}

const std::string marker = "QT_TRANSLATE_NOOP(\"QObject\", \"a\")";

class Threads : public ReportTest {
protected:
    // Generates in mode 2 with one value on any generator.
    static Report reportOn(const Generator& generator, const std::string& text) {
        InputParams input;
        input.variants().addString("v", text);
        Result result;
        const RgenStatus status = rgen_generateReport(generator.get(), input.get(), result.get());
        return {statusHex(status), result.bytes()};
    }
};

TEST_F(Threads, GenerateOnOneGenerator) {
    putTemplate(textStylesheet("[" + valueOf("v") + marker + "]"));
    onThreads(threadCount, [this](int thread) {
        for (int number = 0; number < reportsOfThread; ++number) {
            const std::string text = std::to_string(thread) + "." + std::to_string(number);
            EXPECT_EQ(reportOf("[" + text + "a]"), reportOn(generator, text));
        }
    });
}

TEST_F(Threads, WriteTheirFilesOnOneGenerator) {
    putTemplate(textStylesheet(valueOf("v")));
    onThreads(threadCount, [this](int thread) {
        const std::string path = folder.file(std::to_string(thread) + ".html");
        for (int number = 0; number < reportsOfThread; ++number) {
            const std::string text = std::to_string(number);
            InputParams input;
            input.variants().addString("v", text);
            input.output(RGEN_OUTPUT_FILE, path);
            EXPECT_EQ(statusHex(RGEN_OK), generate(input));
            EXPECT_EQ(text, readFile(path));
        }
    });
}

TEST_F(Threads, GenerateOnGeneratorsSideBySide) {
    onThreads(threadCount, [](int thread) {
        const TempFolder own;
        const Generator other(own.path());
        const std::string name = std::to_string(thread);
        writeFile(own.dataFile("templates/html/test_stylesheet.xsl"),
                  textStylesheet(name + valueOf("v") + marker));
        for (int number = 0; number < reportsOfThread; ++number) {
            EXPECT_EQ(reportOf(name + "va"), reportOn(other, "v"));
        }
    });
}

TEST_F(Threads, CreateAndFreeGenerators) {
    putTemplate(textStylesheet(valueOf("v")));
    onThreads(threadCount, [this](int) {
        for (int number = 0; number < reportsOfThread; ++number) {
            const Generator own(folder.path());
            EXPECT_EQ(reportOf("v"), reportOn(own, "v"));
        }
    });
}

TEST_F(Threads, CreateTheDataDirectoryOnce) {
    const TempFolder fresh;
    const Generator other(fresh.path());
    onThreads(threadCount, [&other](int) {
        EXPECT_EQ(failure(RGEN_E_TEMPLATE_NOT_FOUND), reportOn(other, "v"));
    });
}

TEST_F(Threads, TransformOneAfterTheOtherOnOneGenerator) {
    putTemplate(textStylesheet(marker + marker + marker));
    Gauge gauge;
    rgen_setTranslateFunction(generator.get(), measure, &gauge);
    onThreads(threadCount, [this](int) {
        for (int number = 0; number < reportsOfThread; ++number) {
            EXPECT_EQ(reportOf("aaa"), reportOn(generator, "v"));
        }
    });
    EXPECT_EQ(1, gauge.highest);
}

TEST_F(Threads, TransformAtTheSameTimeOnTwoGenerators) {
    putTemplate(textStylesheet(marker));
    const Generator second(folder.path());
    Meeting meeting;
    rgen_setTranslateFunction(generator.get(), meet, &meeting);
    rgen_setTranslateFunction(second.get(), meet, &meeting);
    onThreads(2, [&](int thread) {
        EXPECT_EQ(reportOf("met"), reportOn(thread == 0 ? generator : second, "v"));
    });
}

TEST_F(Threads, SwapTheCallbackBetweenReportsOnly) {
    putTemplate(textStylesheet(marker + marker));
    rgen_setTranslateFunction(generator.get(), translateOne, &contextOfOne);
    std::atomic<bool> stop{false};
    std::thread swapping([this, &stop] {
        while (!stop) {
            rgen_setTranslateFunction(generator.get(), translateTwo, &contextOfTwo);
            rgen_setTranslateFunction(generator.get(), translateOne, &contextOfOne);
        }
    });
    onThreads(2, [this](int) {
        for (int number = 0; number < reportsOfThread; ++number) {
            const Report result = reportOn(generator, "v");
            EXPECT_TRUE(result == reportOf("one,one,") || result == reportOf("two,two,")) << result;
        }
    });
    stop = true;
    swapping.join();
}

TEST_F(Threads, ChangeTheDataDirectoryMeanwhile) {
    const TempFolder other;
    writeFile(other.dataFile("templates/html/test_stylesheet.xsl"), textStylesheet("second"));
    putTemplate(textStylesheet("first"));
    std::atomic<bool> stop{false};
    std::thread changing([this, &other, &stop] {
        while (!stop) {
            EXPECT_EQ(RGEN_OK, rgen_setDataDirPath(generator.get(), other.path().c_str()));
            EXPECT_EQ(RGEN_OK, rgen_setDataDirPath(generator.get(), folder.path().c_str()));
        }
    });
    onThreads(2, [this](int) {
        for (int number = 0; number < reportsOfThread; ++number) {
            const Report result = reportOn(generator, "v");
            EXPECT_TRUE(result == reportOf("first") || result == reportOf("second")) << result;
        }
    });
    stop = true;
    changing.join();
}

TEST_F(Threads, WritePersistentDataMeanwhile) {
    putTemplate(textStylesheet("[" + valueOf("p") + "]"));
    std::atomic<bool> stop{false};
    std::thread writing([this, &stop] {
        while (!stop) {
            const RgenStatus status = storePairs(generator, defaultGuid(), {{"p", "stored"}});
            EXPECT_TRUE(status == RGEN_OK || status == RGEN_E_DELETE_PERSIST ||
                        status == RGEN_E_CREATE_PERSIST)
                << statusHex(status);
        }
    });
    for (int number = 0; number < reportsOfThread; ++number) {
        const Report result = reportOn(generator, "v");
        EXPECT_EQ(statusHex(RGEN_OK), result.status);
        const std::string shown = result.bytes.substr(0, result.bytes.size() - 1);
        EXPECT_EQ(shown, std::string("[stored").substr(0, shown.size())) << result;
    }
    stop = true;
    writing.join();
}

TEST_F(Threads, CancelInAStormWithoutHarm) {
    putTemplate(textStylesheet(valueOf("v")));
    std::atomic<bool> stop{false};
    const RgenGuid guid = defaultGuid();
    const RgenGuid other = guidFromText(secondGuidText);
    std::vector<std::thread> cancelling;
    for (const RgenGuid* target : {&guid, &other, static_cast<const RgenGuid*>(nullptr)}) {
        cancelling.emplace_back([this, target, &stop] {
            for (int call = 0; call < 20000 && !stop; ++call)
                rgen_cancel(generator.get(), target);
        });
    }
    onThreads(2, [this](int) {
        for (int number = 0; number < reportsOfThread; ++number) {
            const Report result = reportOn(generator, "v");
            EXPECT_TRUE(result == reportOf("v") || result == failure(RGEN_CANCELED)) << result;
        }
    });
    stop = true;
    for (std::thread& thread : cancelling)
        thread.join();
    EXPECT_EQ(reportOf("v"), reportOn(generator, "v"));
}

TEST_F(Threads, ACancelBeforeAReportDoesNotReachIt) {
    putTemplate(textStylesheet(valueOf("v")));
    const RgenGuid guid = defaultGuid();
    rgen_cancel(generator.get(), &guid);
    rgen_cancel(generator.get(), nullptr);
    EXPECT_EQ(reportOf("v"), reportOn(generator, "v"));
    rgen_cancel(generator.get(), &guid);
    EXPECT_EQ(reportOf("v"), reportOn(generator, "v"));
}

// A cancel that arrives while the template runs waits for it and has no effect on the report.
TEST_F(Threads, ACancelBehindTheLastCheckLeavesTheReportItsStatus) {
    putTemplate(textStylesheet(marker));
    struct Shared {
        RgenReportGenerator* generator;
        std::thread cancelling;
    } shared = {generator.get(), std::thread()};
    rgen_setTranslateFunction(
        generator.get(),
        [](const char* text, void* context) {
            auto* call = static_cast<Shared*>(context);
            call->cancelling = std::thread([call] { rgen_cancel(call->generator, nullptr); });
            return text;
        },
        &shared);
    EXPECT_EQ(reportOf("a"), reportOn(generator, "v"));
    shared.cancelling.join();
}

}  // namespace
}  // namespace rgen_test
