// The converter's command line, and the wait for a program.
//
// SPDX-License-Identifier: MIT
#include "generate/external_converter.h"

#include <mutex>
#include <stdexcept>
#include <string>

#include "platform/child_process.h"
#include "support/converter_control.h"
#include "support/fault_injection.h"
#include "unit/unit_fixture.h"

namespace rgen_test {
namespace {

using rgen::converterCommandLine;
using rgen::sync::CancellationTokenSource;

TEST(ConverterCommandLine, QuotesEachTextAndChangesNothingInside) {
    EXPECT_EQ("vellum -i \"in.html\" -b \"base\" -t html -o \"out.pdf\"",
              converterCommandLine("in.html", "base", "out.pdf"));
    EXPECT_EQ("vellum -i \"\" -b \"\" -t html -o \"\"", converterCommandLine("", "", ""));
    EXPECT_EQ("vellum -i \"C:\\a b\\\" -b \"x\"y\" -t html -o \"\xD0\xBE'%\"",
              converterCommandLine("C:\\a b\\", "x\"y", "\xD0\xBE'%"));
}

class RunExternalProgram : public UnitTest {
protected:
    std::string run(const std::string& commandLine) {
        return statusHex(rgen::runExternalProgram(generator, commandLine, *source.getToken()));
    }

    const ConverterControl control{folder};
    CancellationTokenSource source;
};

TEST_F(RunExternalProgram, ProgramThatIsMissingCannotBeRun) {
    EXPECT_EQ(statusHex(RGEN_E_RUN_EXTERNAL), run("no-such-program-here \"-i\""));
    EXPECT_EQ(statusHex(RGEN_E_RUN_EXTERNAL), run(folder.file("none/vellum")));
}

TEST_F(RunExternalProgram, TokenThatIsSetEndsTheWaitAndNotTheProgram) {
    source.cancel();
    control.obey({{"mark", folder.file("started")},
                  {"await", folder.file("go")},
                  {"mark", folder.file("ended")}});
    EXPECT_EQ(statusHex(RGEN_CANCELED), run("vellum"));
    EXPECT_TRUE(waitForFile(folder.file("started")));
    EXPECT_FALSE(exists(folder.file("ended")));
    writeFile(folder.file("go"), "");
    EXPECT_TRUE(waitForFile(folder.file("ended")));
    rgen::platform::reapAbandonedProcesses();
}

TEST_F(RunExternalProgram, ExitCodeThatCannotBeKnownIsAFailure) {
    const FailingCall failure(Call::QueryExitCode);
    EXPECT_EQ(statusHex(RGEN_E_EXTERNAL_FAILED), run("vellum"));
    EXPECT_TRUE(failure.reached());
}

TEST_F(RunExternalProgram, CommandLineThatIsNotUtf8Raises) {
    EXPECT_THROW(run("vellum \xFF"), std::range_error);
}

TEST_F(RunExternalProgram, MutexIsNotNeeded) {
    const std::lock_guard lock(generator.mutex);
    EXPECT_EQ(statusHex(RGEN_OK), run("vellum"));
}

}  // namespace
}  // namespace rgen_test
