// Hosts that fork while another thread is inside the library.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "support/host_records.h"
#include "support/process_figures.h"

namespace rgen_test {
namespace {

// Ends with a signal where it cannot go on; no working child needs a fraction of that time.
[[noreturn]] void makeGeneratorAndEnd() {
    constexpr unsigned lastResort = 60;
    alarm(lastResort);
    RgenReportGenerator* generator = rgen_newReportGenerator();
    rgen_freeReportGenerator(generator);
    _exit(generator != nullptr ? 0 : 1);
}

TEST(ForkedHost, MakesAGeneratorWhateverAThreadThatMakesThemWasDoing) {
    const Generator kept;
    std::atomic<bool> isOver{false};
    std::thread other([&] {
        while (!isOver)
            rgen_freeReportGenerator(rgen_newReportGenerator());
    });
    int failed = 0;
    for (int number = 0; number < loopCount(500) && failed == 0; ++number) {
        const pid_t child = fork();
        if (child == 0) makeGeneratorAndEnd();
        int status = 0;
        EXPECT_EQ(child, waitpid(child, &status, 0));
        failed += status == 0 ? 0 : 1;
    }
    isOver = true;
    other.join();
    EXPECT_EQ(0, failed);
}

}  // namespace
}  // namespace rgen_test
