// Child processes on Windows.
//
// SPDX-License-Identifier: MIT
#include "platform/child_process.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/converter_control.h"
#include "support/temp_folder.h"

namespace rgen_test {
namespace {

namespace platform = rgen::platform;

using Texts = std::vector<std::string>;

constexpr std::uint32_t longWait = 60000;

TEST(ChildProcess, GetsTheCommandLineUnchanged) {
    const TempFolder folder;
    const ConverterControl control(folder);
    control.obey({{"log", folder.file("log")}, {"exit", "7"}});
    const std::string commandLine =
        "vellum  -i \"a  b\"\" -b \"\\\" \xD0\xBE\xF0\x9F\x98\x80 %X% *";
    platform::ChildProcess process(commandLine);
    ASSERT_TRUE(process.started());
    EXPECT_FALSE(process.waitTimedOut(longWait));
    std::uint32_t exitCode = 0;
    EXPECT_TRUE(process.queryExitCode(exitCode));
    EXPECT_EQ(7U, exitCode);
    EXPECT_EQ(Texts{commandLine}, loggedFacts(folder.file("log"), "command-line"));
    EXPECT_EQ(Texts{"0"}, loggedFacts(folder.file("log"), "show-window"));
}

TEST(ChildProcess, RunningProgramTimesOut) {
    const TempFolder folder;
    const ConverterControl control(folder);
    control.obey({{"await", folder.file("go")}, {"mark", folder.file("ended")}});
    {
        platform::ChildProcess process("vellum");
        EXPECT_TRUE(process.waitTimedOut(1));
    }
    platform::reapAbandonedProcesses();
    writeFile(folder.file("go"), "");
    EXPECT_TRUE(waitForFile(folder.file("ended")));
}

TEST(ChildProcess, MissingProgramIsNotStarted) {
    const platform::ChildProcess process("no-such-program-here a b");
    EXPECT_FALSE(process.started());
}

}  // namespace
}  // namespace rgen_test
