// The file-system operations on Linux: devices, pipes, sockets and links.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <boost/filesystem/exception.hpp>
#include <cstring>
#include <string>

#include "store/base/file_system.h"
#include "support/temp_folder.h"

namespace rgen_test {
namespace {

// A socket that exists in the file system while this object lives.
class NamedSocket {
public:
    explicit NamedSocket(const std::string& path) : descriptor_(socket(AF_UNIX, SOCK_STREAM, 0)) {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
        EXPECT_EQ(0,
                  bind(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address));
    }
    ~NamedSocket() { close(descriptor_); }
    NamedSocket(const NamedSocket&) = delete;
    NamedSocket& operator=(const NamedSocket&) = delete;

private:
    int descriptor_;
};

TEST(MakeRoomForFile, DevicesPipesAndSocketsAreLeftAlone) {
    const TempFolder folder;
    ASSERT_EQ(0, mkfifo(folder.file("pipe").c_str(), S_IRUSR | S_IWUSR));
    const NamedSocket socket(folder.file("socket"));
    for (const std::string& path : {std::string("/dev/null"), std::string("/dev/full"),
                                    folder.file("pipe"), folder.file("socket")}) {
        EXPECT_TRUE(rgen::pathExists(path)) << path;
        EXPECT_FALSE(rgen::makeRoomForFile(path)) << path;
        EXPECT_TRUE(exists(path)) << path;
    }
}

TEST(MakeRoomForFile, LinkToADeviceIsLeftAlone) {
    const TempFolder folder;
    ASSERT_EQ(0, symlink("/dev/null", folder.file("link").c_str()));
    EXPECT_FALSE(rgen::makeRoomForFile(folder.file("link")));
    EXPECT_EQ(1U, namesIn(folder.path()).size());
}

TEST(MakeRoomForFile, LinkToAFileIsRemovedAndNotTheFile) {
    const TempFolder folder;
    writeFile(folder.file("target"), "x");
    ASSERT_EQ(0, symlink("target", folder.file("link").c_str()));
    EXPECT_TRUE(rgen::makeRoomForFile(folder.file("link")));
    EXPECT_EQ(std::vector<std::string>{"target"}, namesIn(folder.path()));
}

TEST(MakeRoomForFile, LinkToAFolderThatStaysIsLeftAlone) {
    const TempFolder folder;
    ASSERT_EQ(0, symlink(".", folder.file("link").c_str()));
    EXPECT_FALSE(rgen::makeRoomForFile(folder.file("link"), rgen::EmptyFolder::Keep));
    EXPECT_EQ(1U, namesIn(folder.path()).size());
}

TEST(ReadFile, FileWithoutAnEndIsNotRead) {
    std::string text = "previous";
    EXPECT_FALSE(rgen::readFile("/proc/version", text));
    EXPECT_EQ("previous", text);
}

TEST(PathExists, LinkToNowhereDoesNotExist) {
    const TempFolder folder;
    ASSERT_EQ(0, symlink("none", folder.file("link").c_str()));
    EXPECT_FALSE(rgen::pathExists(folder.file("link")));
}

TEST(PathExists, NameThatTheSystemRefusesRaises) {
    const TempFolder folder;
    EXPECT_THROW(rgen::pathExists(folder.file(std::string(300, 'x'))),
                 boost::filesystem::filesystem_error);
}

TEST(PathExists, BackslashIsAnOrdinaryCharacter) {
    const TempFolder folder;
    writeFile(folder.file("a\\b"), "x");
    EXPECT_TRUE(rgen::pathExists(folder.file("a\\b")));
    EXPECT_FALSE(rgen::pathExists(folder.file("a/b")));
}

TEST(ReadFile, PipesAndDevicesAreNotRead) {
    const TempFolder folder;
    std::string bytes;
    ASSERT_EQ(0, mkfifo(folder.file("pipe").c_str(), S_IRUSR | S_IWUSR));
    EXPECT_FALSE(rgen::readFile(folder.file("pipe"), bytes));
    EXPECT_FALSE(rgen::readFile("/dev/zero", bytes));
}

TEST(CreateDirectory, ExistingFileIsAnError) {
    const TempFolder folder;
    writeFile(folder.file("file"), "x");
    EXPECT_ANY_THROW(rgen::createDirectory(folder.file("file/")));
    EXPECT_ANY_THROW(rgen::createDirectory(folder.file("file")));
}

TEST(ReadFile, FileThatCannotBeOpenedKeepsTheText) {
    const TempFolder folder;
    writeFile(folder.file("file"), "x");
    rlimit limit = {};
    ASSERT_EQ(0, getrlimit(RLIMIT_NOFILE, &limit));
    const rlimit noDescriptor = {0, limit.rlim_max};
    std::string text = "previous";
    ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &noDescriptor));
    const bool read = rgen::readFile(folder.file("file"), text);
    setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_FALSE(read);
    EXPECT_EQ("previous", text);
    EXPECT_TRUE(rgen::readFile(folder.file("file"), text));
}

}  // namespace
}  // namespace rgen_test
