// The file-system operations on Windows: separators, and files that are held open.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>

#include "store/base/file_system.h"
#include "support/fault_injection.h"
#include "support/temp_folder.h"

namespace rgen_test {
namespace {

TEST(PathExists, BothSeparatorsAreTaken) {
    const TempFolder folder;
    writeFile(folder.file("a/b"), "x");
    EXPECT_TRUE(rgen::pathExists(folder.path() + "/a/b"));
    EXPECT_TRUE(rgen::pathExists(folder.path() + "\\a\\b"));
    EXPECT_TRUE(rgen::pathExists(folder.path() + "/a\\b"));
}

TEST(ReadFile, AFolderBehindAReparsePointIsNotRead) {
    const TempFolder folder;
    std::string text = "previous";
    const FailingCall reparsePoint(Call::TellFileKind);
    EXPECT_FALSE(rgen::readFile(folder.path(), text));
    EXPECT_TRUE(reparsePoint.reached());
    EXPECT_EQ("previous", text);
}

TEST(MakeRoomForFile, FileThatIsHeldOpenStays) {
    const TempFolder folder;
    const std::string path = folder.file("held");
    writeFile(path, "x");
    constexpr DWORD notShared = 0;
    const HANDLE held = CreateFileW(std::filesystem::u8path(path).c_str(), GENERIC_READ, notShared,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, held);
    EXPECT_FALSE(rgen::makeRoomForFile(path));
    rgen::removeQuietly(path);
    EXPECT_TRUE(exists(path));
    CloseHandle(held);
    EXPECT_TRUE(rgen::makeRoomForFile(path));
    EXPECT_FALSE(exists(path));
}

}  // namespace
}  // namespace rgen_test
