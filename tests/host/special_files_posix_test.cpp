// Pipes, devices and sockets in the places of files. Opening a pipe without a writer blocks; then
// the case does not end.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "support/report_fixture.h"

namespace rgen_test {
namespace {

class PipeInPlace : public ReportTest {
protected:
    // A pipe that replaces the file at a path.
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

// A device is a link to one, since only root makes devices; a read of it would never end.
void putDevice(const std::string& path) {
    std::filesystem::create_symlink("/dev/zero", path);
}

void putSocket(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof address.sun_path);
    path.copy(address.sun_path, path.size());
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(0, bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address));
    close(descriptor);
}

TEST_F(PipeInPlace, DevicesAndSocketsAreTakenAlike) {
    const std::vector<std::function<void(const std::string&)>> kinds = {putDevice, putSocket};
    putTemplate(textStylesheet(valueOf("v")));
    for (const auto& put : kinds) {
        const std::string simulation = folder.file("simulation.xml");
        put(simulation);
        EXPECT_EQ(0, simulatedData(generator, simulation).result);
        put(folder.dataFile("persist_data.xml"));
        EXPECT_EQ(statusHex(RGEN_E_OPEN_PERSIST), statusHex(statusOfData()));
        EXPECT_EQ(reportOf("value"), reportOfValue("value"));
        const std::string used = folder.dataFile("templates/html/test_stylesheet.xsl");
        removeAll(used);
        put(used);
        EXPECT_EQ(failure(RGEN_E_XSLT_PARSE), reportOfValue("v"));
        const std::string config = folder.dataFile("config.xml");
        std::filesystem::rename(config, folder.file("config"));
        put(config);
        EXPECT_EQ(failure(RGEN_E_OPEN_CONFIG), reportOfValue("v"));
        for (const std::string& path : {simulation, folder.dataFile("persist_data.xml"), used})
            removeAll(path);
        std::filesystem::rename(folder.file("config"), config);
        putTemplate(textStylesheet(valueOf("v")));
    }
}

}  // namespace
}  // namespace rgen_test
