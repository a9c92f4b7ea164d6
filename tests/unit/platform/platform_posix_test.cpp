// platform.h on Linux: short writes, delete-on-close files, special files.
//
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "platform/platform.h"
#include "support/fault_injection.h"
#include "support/temp_folder.h"

namespace rgen_test {
namespace {

namespace platform = rgen::platform;

int asDescriptor(platform::FileHandle file) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(file));
}

std::size_t openDescriptors() {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        static_cast<void>(entry);
        ++count;
    }
    return count;
}

class WriteToFileTest : public ::testing::Test {
protected:
    WriteToFileTest() { EXPECT_TRUE(platform::createDeleteOnCloseFile(folder.file("out"), file)); }
    ~WriteToFileTest() override { platform::closeFile(file); }

    std::string content() const {
        char buffer[64] = {};
        const ssize_t size = pread(asDescriptor(file), buffer, sizeof buffer, 0);
        return {buffer, static_cast<std::size_t>(size < 0 ? 0 : size)};
    }

    const TempFolder folder;
    platform::FileHandle file = nullptr;
    std::size_t written = 99;
};

TEST_F(WriteToFileTest, ShortWritesGoOnWithTheRest) {
    const FailingCall first(Call::WriteFileShort, 1);
    const FailingCall second(Call::WriteFileShort, 2);
    EXPECT_TRUE(platform::writeToFile(file, "abcdefgh", 8, written));
    EXPECT_EQ(8U, written);
    EXPECT_EQ("abcdefgh", content());
    EXPECT_TRUE(second.reached());
}

TEST_F(WriteToFileTest, InterruptedWritesAreRepeated) {
    const FailingCall interrupted(Call::WriteFileInterrupted);
    EXPECT_TRUE(platform::writeToFile(file, "abcd", 4, written));
    EXPECT_TRUE(interrupted.reached());
    EXPECT_EQ(4U, written);
    EXPECT_EQ("abcd", content());
}

TEST_F(WriteToFileTest, FailureBehindAShortWriteIsAShortCount) {
    const FailingCall failure(Call::WriteFile);
    const FailingCall first(Call::WriteFileShort);
    EXPECT_TRUE(platform::writeToFile(file, "abcd", 4, written));
    EXPECT_EQ(2U, written);
    EXPECT_EQ("ab", content());
}

TEST(DeleteOnCloseDescriptor, NameIsGoneAtOnceAndRightsAreTheOwners) {
    const TempFolder folder;
    platform::FileHandle file = nullptr;
    ASSERT_TRUE(platform::createDeleteOnCloseFile(folder.file("out"), file));
    EXPECT_TRUE(namesIn(folder.path()).empty());
    struct stat information = {};
    EXPECT_EQ(0, fstat(asDescriptor(file), &information));
    EXPECT_EQ(0600U, information.st_mode & 0777U);
    EXPECT_EQ(O_RDWR, fcntl(asDescriptor(file), F_GETFL) & O_ACCMODE);
    EXPECT_EQ(FD_CLOEXEC, fcntl(asDescriptor(file), F_GETFD));
    platform::closeFile(file);
}

TEST(DeleteOnCloseDescriptor, NameThatCannotBeDeletedIsAFailure) {
    const TempFolder folder;
    const std::size_t before = openDescriptors();
    platform::FileHandle file = nullptr;
    const FailingCall failure(Call::DeleteName);
    EXPECT_FALSE(platform::createDeleteOnCloseFile(folder.file("out"), file));
    EXPECT_TRUE(failure.reached());
    EXPECT_EQ(before, openDescriptors());
}

TEST(DeleteOnCloseDescriptor, FileThatTheSystemDoesNotDescribeIsAFailure) {
    const TempFolder folder;
    const std::size_t before = openDescriptors();
    platform::FileHandle file = nullptr;
    const FailingCall failure(Call::DescribeFile);
    EXPECT_FALSE(platform::createDeleteOnCloseFile(folder.file("out"), file));
    EXPECT_TRUE(failure.reached());
    EXPECT_EQ(before, openDescriptors());
}

TEST(DeleteOnCloseDescriptor, FileWithoutAKnownNumberOfNamesKeepsItsRights) {
    const TempFolder folder;
    writeFile(folder.file("out"), "previous");
    ASSERT_EQ(0, chmod(folder.file("out").c_str(), 0640));
    platform::FileHandle file = nullptr;
    {
        const FailingCall failure(Call::DescribeFile, 2);
        ASSERT_TRUE(platform::createDeleteOnCloseFile(folder.file("out"), file));
        EXPECT_TRUE(failure.reached());
    }
    struct stat information = {};
    EXPECT_EQ(0, fstat(asDescriptor(file), &information));
    EXPECT_EQ(0640U, information.st_mode & 0777U);
    platform::closeFile(file);
}

TEST(DeleteOnCloseDescriptor, DevicesKeepTheirNames) {
    platform::FileHandle file = nullptr;
    ASSERT_TRUE(platform::createDeleteOnCloseFile("/dev/null", file));
    EXPECT_TRUE(exists("/dev/null"));
    platform::closeFile(file);
}

TEST(DeleteOnCloseDescriptor, WaitsForNoReaderOfAPipeAndForEveryDisk) {
    const TempFolder folder;
    ASSERT_EQ(0, mkfifo(folder.file("pipe").c_str(), S_IRUSR | S_IWUSR));
    platform::FileHandle file = nullptr;
    ASSERT_TRUE(platform::createDeleteOnCloseFile(folder.file("pipe"), file));
    EXPECT_NE(0, fcntl(asDescriptor(file), F_GETFL) & O_NONBLOCK);
    platform::closeFile(file);
    ASSERT_TRUE(platform::createDeleteOnCloseFile(folder.file("file"), file));
    EXPECT_EQ(0, fcntl(asDescriptor(file), F_GETFL) & O_NONBLOCK);
    platform::closeFile(file);
}

TEST(NamesSpecialFile, PipesSocketsAndDevicesAlsoThroughLinks) {
    const TempFolder folder;
    ASSERT_EQ(0, mkfifo(folder.file("pipe").c_str(), S_IRUSR | S_IWUSR));
    ASSERT_EQ(0, symlink("/dev/null", folder.file("link").c_str()));
    ASSERT_EQ(0, symlink("nowhere", folder.file("loose").c_str()));
    EXPECT_TRUE(platform::namesSpecialFile(folder.file("pipe")));
    EXPECT_TRUE(platform::namesSpecialFile("/dev/null"));
    EXPECT_TRUE(platform::namesSpecialFile(folder.file("link")));
    EXPECT_FALSE(platform::namesSpecialFile(folder.file("loose")));
}

TEST(DeleteOnCloseDescriptor, InvalidUtf8Raises) {
    const TempFolder folder;
    platform::FileHandle file = nullptr;
    EXPECT_THROW(platform::createDeleteOnCloseFile(folder.file("a\xC3"), file), std::range_error);
    EXPECT_TRUE(namesIn(folder.path()).empty());
}

TEST(ToWidePath, KeepsTheBytes) {
    EXPECT_EQ("/", std::string(1, platform::pathSeparator));
    EXPECT_EQ("a\\b/\xD0\xBE", platform::toWidePath("a\\b/\xD0\xBE"));
}

}  // namespace
}  // namespace rgen_test
