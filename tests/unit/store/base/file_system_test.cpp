// The file-system operations on both systems.
//
// SPDX-License-Identifier: MIT
#include "store/base/file_system.h"

#include <gtest/gtest.h>

#include <boost/filesystem/exception.hpp>
#include <cwchar>
#include <locale>
#include <stdexcept>
#include <string>

#include "support/fault_injection.h"
#include "support/temp_folder.h"

namespace rgen_test {
namespace {

using boost::filesystem::filesystem_error;

const char* const invalidNames[] = {"a\xFF", "a\xC3", "a\xED\xA0\x80", "a\xF4\x90\x80\x80"};

class FileSystemTest : public ::testing::Test {
protected:
    FileSystemTest() {
        writeFile(folder.file("file"), "12345");
        createFolder(folder.file("empty folder"));
        writeFile(folder.file("full folder/inside"), "x");
        writeFile(folder.file("\xD0\xBE\xD1\x82\xD1\x87\xD1\x91\xD1\x82 \xF0\x9F\x98\x80"), "x");
    }

    const TempFolder folder;
};

TEST_F(FileSystemTest, EverythingThatIsThereExists) {
    for (const std::string name :
         {"file", "empty folder", "full folder", "full folder/inside", "full folder/../file", ".",
          "\xD0\xBE\xD1\x82\xD1\x87\xD1\x91\xD1\x82 \xF0\x9F\x98\x80"}) {
        EXPECT_TRUE(rgen::pathExists(folder.file(name))) << name;
    }
}

TEST_F(FileSystemTest, WhatIsNotThereDoesNotExist) {
    for (const std::string name : {"none", "none/inside", "file2", "full folder/none"}) {
        EXPECT_FALSE(rgen::pathExists(folder.file(name))) << name;
    }
    EXPECT_FALSE(rgen::pathExists(""));
}

TEST_F(FileSystemTest, CreateDirectoryMakesOneLevel) {
    EXPECT_TRUE(rgen::createDirectory(folder.file("new")));
    EXPECT_TRUE(isFolder(folder.file("new")));
    EXPECT_TRUE(rgen::createDirectory(folder.file("with separator/")));
    EXPECT_TRUE(isFolder(folder.file("with separator")));
    EXPECT_FALSE(rgen::createDirectory(folder.file("new")));
    EXPECT_THROW(rgen::createDirectory(folder.file("two/levels")), filesystem_error);
    EXPECT_THROW(rgen::createDirectory(""), filesystem_error);
}

TEST_F(FileSystemTest, RemoveFileRemovesFilesAndEmptyFolders) {
    EXPECT_TRUE(rgen::removeFile(folder.file("file")));
    EXPECT_FALSE(exists(folder.file("file")));
    EXPECT_TRUE(rgen::removeFile(folder.file("empty folder")));
    EXPECT_FALSE(rgen::removeFile(folder.file("file")));
    EXPECT_THROW(rgen::removeFile(folder.file("full folder")), filesystem_error);
}

TEST_F(FileSystemTest, IsDirectoryTellsFoldersFromTheRest) {
    EXPECT_TRUE(rgen::isDirectory(folder.file("empty folder")));
    EXPECT_TRUE(rgen::isDirectory(folder.path()));
    EXPECT_FALSE(rgen::isDirectory(folder.file("file")));
    EXPECT_FALSE(rgen::isDirectory(folder.file("none")));
}

TEST_F(FileSystemTest, FileSizeIsInBytes) {
    EXPECT_EQ(5U, rgen::fileSize(folder.file("file")));
    writeFile(folder.file("nothing"), "");
    EXPECT_EQ(0U, rgen::fileSize(folder.file("nothing")));
    EXPECT_THROW(rgen::fileSize(folder.file("none")), filesystem_error);
}

TEST_F(FileSystemTest, MakeRoomForFileRemovesWhatCanBeRemoved) {
    EXPECT_TRUE(rgen::makeRoomForFile(folder.file("none")));
    EXPECT_TRUE(rgen::makeRoomForFile(folder.file("file")));
    EXPECT_FALSE(exists(folder.file("file")));
    EXPECT_TRUE(rgen::makeRoomForFile(folder.file("empty folder")));
    EXPECT_FALSE(exists(folder.file("empty folder")));
    EXPECT_FALSE(rgen::makeRoomForFile(folder.file("full folder")));
    EXPECT_TRUE(exists(folder.file("full folder/inside")));
}

TEST_F(FileSystemTest, MakeRoomForFileLeavesFoldersThatStay) {
    using rgen::EmptyFolder;
    EXPECT_TRUE(rgen::makeRoomForFile(folder.file("none"), EmptyFolder::Keep));
    EXPECT_FALSE(rgen::makeRoomForFile(folder.file("empty folder"), EmptyFolder::Keep));
    EXPECT_TRUE(exists(folder.file("empty folder")));
    EXPECT_FALSE(rgen::makeRoomForFile(folder.file("full folder"), EmptyFolder::Keep));
    EXPECT_TRUE(rgen::makeRoomForFile(folder.file("file"), EmptyFolder::Keep));
    EXPECT_FALSE(exists(folder.file("file")));
}

TEST_F(FileSystemTest, RemoveQuietlyNeverRaises) {
    rgen::removeQuietly(folder.file("file"));
    EXPECT_FALSE(exists(folder.file("file")));
    rgen::removeQuietly(folder.file("none"));
    rgen::removeQuietly(folder.file("none/inside"));
    rgen::removeQuietly(folder.file("full folder"));
    EXPECT_TRUE(exists(folder.file("full folder/inside")));
    rgen::removeQuietly("");
    for (const char* name : invalidNames)
        rgen::removeQuietly(folder.file(name));
}

TEST_F(FileSystemTest, WriteFileCreatesAndTruncates) {
    EXPECT_TRUE(rgen::writeFile(folder.file("new"), {'a', '\r', '\n', 0, 0xFF}));
    EXPECT_EQ(std::string("a\r\n\0\xFF", 5), readFile(folder.file("new")));
    EXPECT_TRUE(rgen::writeFile(folder.file("file"), {}));
    EXPECT_EQ("", readFile(folder.file("file")));
    EXPECT_FALSE(rgen::writeFile(folder.path(), {1}));
    EXPECT_FALSE(rgen::writeFile(folder.file("none/inside"), {1}));
    EXPECT_FALSE(rgen::writeFile("", {1}));
}

// On Windows, files of cloud folders and deduplicated ones are reparse points of other kinds.
TEST_F(FileSystemTest, ReadFileTakesAFileBehindAReparsePoint) {
    writeFile(folder.file("cloud"), "bytes");
    std::string text = "previous";
    const FailingCall reparsePoint(Call::TellFileKind);
    EXPECT_TRUE(rgen::readFile(folder.file("cloud"), text));
    EXPECT_TRUE(reparsePoint.reached());
    EXPECT_EQ("bytes", text);
}

TEST_F(FileSystemTest, ReadFileTakesRegularFilesAsTheyStand) {
    const std::string bytes("a\r\n\x1A\0\xFF", 6);
    writeFile(folder.file("bytes"), bytes);
    std::string text = "previous";
    EXPECT_TRUE(rgen::readFile(folder.file("bytes"), text));
    EXPECT_EQ(bytes, text);
    writeFile(folder.file("nothing"), "");
    EXPECT_TRUE(rgen::readFile(folder.file("nothing"), text));
    EXPECT_EQ("", text);
    for (const std::size_t size : {1U, 2U, 8191U, 8192U, 8193U, 1000000U}) {
        writeFile(folder.file("bytes"), std::string(size, 'x'));
        EXPECT_TRUE(rgen::readFile(folder.file("bytes"), text));
        EXPECT_EQ(std::string(size, 'x'), text);
    }
    EXPECT_FALSE(rgen::readFile(folder.file("none"), text));
    EXPECT_FALSE(rgen::readFile(folder.path(), text));
    EXPECT_FALSE(rgen::readFile("", text));
}

TEST_F(FileSystemTest, InvalidUtf8RaisesEverywhere) {
    for (const char* name : invalidNames) {
        const std::string path = folder.file(name);
        std::string bytes;
        EXPECT_THROW(rgen::toNativePath(path), std::range_error);
        EXPECT_THROW(rgen::pathExists(path), std::range_error);
        EXPECT_THROW(rgen::createDirectory(path), std::range_error);
        EXPECT_THROW(rgen::removeFile(path), std::range_error);
        EXPECT_THROW(rgen::isDirectory(path), std::range_error);
        EXPECT_THROW(rgen::fileSize(path), std::range_error);
        EXPECT_THROW(rgen::makeRoomForFile(path), std::range_error);
        EXPECT_THROW(rgen::writeFile(path, {1}), std::range_error);
        EXPECT_THROW(rgen::readFile(path, bytes), std::range_error);
    }
    EXPECT_EQ(4U, namesIn(folder.path()).size());
}

// Cannot write a single character.
class NoConversion : public std::codecvt<char, char, std::mbstate_t> {
protected:
    bool do_always_noconv() const noexcept override { return false; }
    result do_out(std::mbstate_t&, const char* from, const char*, const char*& fromNext, char* to,
                  char*, char*& toNext) const override {
        fromNext = from;
        toNext = to;
        return error;
    }
};

TEST(WriteFile, LocaleOfAHostThatCannotBeWrittenInGoesUnnoticed) {
    const TempFolder folder;
    const std::locale previous =
        std::locale::global(std::locale(std::locale::classic(), new NoConversion));
    bool written = false;
    EXPECT_NO_THROW(written = rgen::writeFile(folder.file("out"), {'a', 'b'}));
    std::locale::global(previous);
    EXPECT_TRUE(written);
    EXPECT_EQ("", readFile(folder.file("out")));
}

}  // namespace
}  // namespace rgen_test
