// Hosts that fork after they have used jobs.
//
// SPDX-License-Identifier: MIT
#include <sys/wait.h>
#include <unistd.h>

#include "host_library/host_library_fixture.h"

namespace rgen_test {
namespace {

class ForkedHostLibrary : public HostLibraryTest {
protected:
    ForkedHostLibrary() { putTemplate(textStylesheet(valueOf("v"))); }

    bool makesReport() { return finish(start(host, request)) == "x"; }

    // Ends with a signal where it cannot go on; no working child needs a fraction of that time.
    [[noreturn]] void makeReportsAndEnd() {
        constexpr unsigned lastResort = 60;
        alarm(lastResort);
        const bool areMade = makesReport() && makesReport();
        const bool isFreed = rgenh_freeReportGenerator(host, &error) == RGEN_OK;
        _exit(areMade && isFreed ? 0 : 1);
    }

    const HostRequest request{{rgenh_textValue("v", "x")}};
};

// The child has a copy of the generator, but none of the threads that were idle.
TEST_F(ForkedHostLibrary, MakesReportsAsJobsInTheChildToo) {
    EXPECT_TRUE(makesReport());
    const pid_t child = fork();
    if (child == 0) makeReportsAndEnd();
    int status = 0;
    EXPECT_EQ(child, waitpid(child, &status, 0));
    EXPECT_EQ(0, status);
    EXPECT_TRUE(makesReport());
}

}  // namespace
}  // namespace rgen_test
