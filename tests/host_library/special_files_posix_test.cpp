// Pipes where files are expected: nothing waits for a writer.
//
// SPDX-License-Identifier: MIT
#include <sys/stat.h>

#include "host_library/host_library_fixture.h"

namespace rgen_test {
namespace {

using Pipes = HostLibraryTest;

TEST_F(Pipes, AtThePathOfAPdfAreNoPdfs) {
    const std::string path = folder.file("pipe.pdf");
    ASSERT_EQ(0, mkfifo(path.c_str(), 0600));
    EXPECT_EQ(RGEN_E_EXTERNAL_FAILED, rgenh_verifyPdf(path.c_str(), &error));
    EXPECT_EQ(path + ": the converter made no file", error.message);
}

TEST_F(Pipes, AndDevicesAreTheSame) {
    EXPECT_EQ(RGEN_E_EXTERNAL_FAILED, rgenh_verifyPdf("/dev/null", &error));
    EXPECT_STREQ("/dev/null: the converter made no file", error.message);
}

TEST_F(Pipes, AtThePathOfTheConvertersMessageAreNotRead) {
    ASSERT_EQ(0, mkfifo((output + ".error.txt").c_str(), 0600));
    converter.obey({{"write", output, "%PDF-1.7 %%EOF"}});
    Result result;
    EXPECT_EQ(RGEN_OK, rgenh_generateReport(host, input.get(), result.get(), &error))
        << error.message;
}

}  // namespace
}  // namespace rgen_test
