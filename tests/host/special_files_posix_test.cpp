// Pipes and devices in the places of files. Opening a pipe that nobody writes to would wait for
// ever; then the case comes to no end.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "support/report_fixture.h"

namespace rgen_test {
namespace {

class PipeInPlace : public ReportTest {
protected:
    // A pipe at a path, instead of what stands there.
    static void putPipe(const std::string& path) {
        removeAll(path);
        ASSERT_EQ(0, mkfifo(path.c_str(), S_IRUSR | S_IWUSR)) << path;
    }

    RgenStatus statusOfData() { return persistentData(generator, defaultGuid()).status; }
};

TEST_F(PipeInPlace, OfTheConfigurationCannotBeOpened) {
    putTemplate(textStylesheet("text"));
    putPipe(folder.dataFile("config.xml"));
    EXPECT_EQ(failure(RGEN_E_OPEN_CONFIG), reportOfValue("v"));
    EXPECT_EQ(statusHex(RGEN_E_OPEN_CONFIG), statusHex(statusOfData()));
}

TEST_F(PipeInPlace, OfPersistentDataCannotBeOpenedAndGivesAReportNothing) {
    putTemplate(textStylesheet(valueOf("v")));
    putPipe(folder.dataFile("persist_data.xml"));
    EXPECT_EQ(statusHex(RGEN_E_OPEN_PERSIST), statusHex(statusOfData()));
    EXPECT_EQ(reportOf("value"), reportOfValue("value"));
}

TEST_F(PipeInPlace, OfATemplateIsNoTemplate) {
    putTemplate(textStylesheet("text"));
    putPipe(folder.dataFile("templates/html/test_stylesheet.xsl"));
    EXPECT_EQ(failure(RGEN_E_XSLT_PARSE), reportOfValue("v"));
}

TEST_F(PipeInPlace, OfSimulatedInputGivesNoValues) {
    putPipe(folder.file("simulation.xml"));
    EXPECT_EQ(0, simulatedData(generator, folder.file("simulation.xml")).result);
    EXPECT_EQ(0, simulatedData(generator, "/dev/zero").result);
}

TEST_F(PipeInPlace, OfThePageForTheConverterIsNotWritten) {
    putTemplate(textStylesheet("text"), "pdf");
    putPipe(folder.file("report.pdf.html"));
    InputParams input;
    input.variants().addString("v", "value");
    input.format("pdf").output(RGEN_OUTPUT_FILE, folder.file("report.pdf"));
    EXPECT_EQ(statusHex(RGEN_E_CREATE_OUTPUT), generate(input));
    EXPECT_TRUE(std::filesystem::is_fifo(folder.file("report.pdf.html")));
}

TEST_F(PipeInPlace, OfADeleteOnCloseFileTakesWhatItHasRoomFor) {
    putTemplate(textStylesheet(valueOf("v")));
    putPipe(folder.file("report.txt"));
    const std::size_t moreThanAPipeHolds = 1024 * 1024;
    InputParams input;
    input.variants().addString("v", std::string(moreThanAPipeHolds, 'x'));
    input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, folder.file("report.txt"));
    EXPECT_EQ(statusHex(RGEN_E_WRITE_ALL_OUTPUT), generate(input));
    EXPECT_TRUE(std::filesystem::is_fifo(folder.file("report.txt")));
}

}  // namespace
}  // namespace rgen_test
