// Dump paths that only a POSIX file system knows: a scheme as a folder name, pipes, sockets, links.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "strata_repgenlib/rgen.h"
#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"
#include "support/working_folder.h"

namespace {

using rgen_test::Generator;
using rgen_test::InputParams;
using rgen_test::statusHex;
using rgen_test::TempFolder;

RgenStatus dumpTo(const std::string& path) {
    const Generator generator;
    InputParams input;
    return rgen_dumpRawInputDataToFile(generator.get(), input.get(), path.c_str());
}

TEST(DumpRawInputDataPath, ASchemeIsAFolderName) {
    const TempFolder folder;
    const rgen_test::WorkingFolder current(folder.path());
    EXPECT_EQ(statusHex(RGEN_E_CREATE_PERSIST), statusHex(dumpTo("file:///dump.xml")));
    EXPECT_FALSE(rgen_test::exists("/dump.xml"));
    rgen_test::createFolder(folder.file("file:"));
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(dumpTo("file:///dump.xml")));
    EXPECT_TRUE(rgen_test::exists(folder.file("file:/dump.xml")));
}

TEST(DumpRawInputDataPath, TheBackslashIsAnOrdinaryCharacter) {
    const TempFolder folder;
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(dumpTo(folder.file("a\\b.xml"))));
    EXPECT_EQ(std::vector<std::string>{"a\\b.xml"}, rgen_test::namesIn(folder.path()));
}

TEST(DumpRawInputDataPath, APipeIsNotRemoved) {
    const TempFolder folder;
    const std::string pipe = folder.file("pipe");
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    EXPECT_EQ(statusHex(RGEN_E_DELETE_DUMP), statusHex(dumpTo(pipe)));
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

TEST(DumpRawInputDataPath, ASocketIsNotRemoved) {
    const TempFolder folder;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = folder.file("socket");
    ASSERT_LT(path.size(), sizeof address.sun_path);
    path.copy(address.sun_path, path.size());
    const int socketDescriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_GE(socketDescriptor, 0);
    EXPECT_EQ(0,
              bind(socketDescriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address));
    EXPECT_EQ(statusHex(RGEN_E_DELETE_DUMP), statusHex(dumpTo(path)));
    EXPECT_TRUE(std::filesystem::is_socket(path));
    close(socketDescriptor);
}

TEST(DumpRawInputDataPath, ALinkIntoNowhereCannotBeWritten) {
    const TempFolder folder;
    std::filesystem::create_symlink(folder.file("none/x.xml"), folder.file("link.xml"));
    EXPECT_EQ(statusHex(RGEN_E_CREATE_PERSIST), statusHex(dumpTo(folder.file("link.xml"))));
    EXPECT_FALSE(rgen_test::exists(folder.file("none")));
}

TEST(DumpRawInputDataPath, RaisesOnANameThatTheFileSystemRefuses) {
    const TempFolder folder;
    EXPECT_THROW(dumpTo(folder.file(std::string(300, 'n'))), std::runtime_error);
}

TEST(PersistentDataPath, APipeIsNotRemoved) {
    const TempFolder folder;
    rgen_test::createFolder(folder.dataDir());
    const std::string pipe = folder.dataFile("persist_data.xml");
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    const Generator generator(folder.path());
    EXPECT_EQ(statusHex(RGEN_E_DELETE_PERSIST),
              statusHex(rgen_test::storePairs(generator, rgen_test::defaultGuid(), {{"a", "b"}})));
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

}  // namespace
