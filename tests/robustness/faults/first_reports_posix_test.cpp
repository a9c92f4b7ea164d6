// The first reports of a process, made by two threads at once: every attempt is a new process,
// which this one forks before it has called the library itself. Windows has no fork.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <string>
#include <thread>

#include "strata_repgenlib/rgen.h"
#include "support/host_records.h"
#include "support/temp_folder.h"

namespace rgen_test {
namespace {

// It uses an extension element, so that compiling it reads libxslt's table of extensions.
const char* const stylesheetText =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\""
    " xmlns:q=\"urn:q\" extension-element-prefixes=\"q\"><xsl:output method=\"text\"/>"
    "<xsl:template match=\"/\">QT_TRANSLATE_NOOP(\"QObject\", \"text \")"
    "<q:e><xsl:fallback>fallback</xsl:fallback></q:e></xsl:template></xsl:stylesheet>";

const char* const configuration =
    "<config><reportTypes><type guid=\"deadbabe-0000-0000-0000-000000000000\">"
    "<persistDataFile>persist_data.xml</persistDataFile>"
    "<reportTypeFile>test_stylesheet.xsl</reportTypeFile></type></reportTypes></config>";

// The threads wait for each other in the callback, which runs right before the template is
// compiled.
const char* RGEN_CALL meet(const char* text, void* context) {
    auto& arrived = *static_cast<std::atomic<int>*>(context);
    ++arrived;
    while (arrived < 2)
        std::this_thread::yield();
    return text;
}

bool reportIsRight(const TempFolder& folder, std::atomic<int>& arrived) {
    const Generator generator(folder.path());
    rgen_setTranslateFunction(generator.get(), meet, &arrived);
    InputParams input;
    input.variants().addString("v", "value");
    Result result;
    const RgenStatus status = rgen_generateReport(generator.get(), input.get(), result.get());
    // After a report that failed early no thread may wait any more.
    arrived = 2;
    return status == RGEN_OK && result.bytes() == "text fallback";
}

bool twoReportsAreRight(const TempFolder& folder) {
    std::atomic<int> arrived{0};
    bool isOtherRight = false;
    std::thread other([&] { isOtherRight = reportIsRight(folder, arrived); });
    const bool isOneRight = reportIsRight(folder, arrived);
    other.join();
    return isOneRight && isOtherRight;
}

// What the XML libraries initialise on first use is initialised before the threads use it. The
// thread sanitizer ends a child in which it is not.
TEST(FirstReports, OfTwoThreadsMayBeMadeAtOnce) {
    const TempFolder folder;
    writeFile(folder.dataFile("templates/html/test_stylesheet.xsl"), stylesheetText);
    // The library's own, which two generators at once may see half written.
    writeFile(folder.dataFile("config.xml"), configuration);
    for (int round = 0; round < 100; ++round) {
        std::fflush(stdout);
        const pid_t child = fork();
        if (child == 0) _exit(twoReportsAreRight(folder) ? 0 : 1);
        int status = 0;
        ASSERT_EQ(child, waitpid(child, &status, 0));
        ASSERT_EQ(0, status) << "in process " << round;
    }
}

}  // namespace
}  // namespace rgen_test
