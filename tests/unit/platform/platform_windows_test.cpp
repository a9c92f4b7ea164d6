// platform.h on Windows: UTF-16 paths, handles that are not shared.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>

#include "platform/platform.h"
#include "support/global_locale.h"
#include "support/temp_folder.h"

namespace rgen_test {
namespace {

namespace platform = rgen::platform;

HANDLE openForReading(const std::string& path, DWORD share) {
    return CreateFileW(std::filesystem::u8path(path).c_str(), GENERIC_READ, share, nullptr,
                       OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
}

TEST(ToWidePath, GivesUtf16) {
    EXPECT_EQ("\\", std::string(1, platform::pathSeparator));
    EXPECT_EQ(L"a/b\\\x043E\xD83D\xDE00", platform::toWidePath("a/b\\\xD0\xBE\xF0\x9F\x98\x80"));
    EXPECT_EQ(L"\xD7FF\xE000\xFFFF", platform::toWidePath("\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"));
}

TEST(DeleteOnCloseHandle, IsForWritingAloneAndNotShared) {
    const TempFolder folder;
    const std::string path = folder.file("out");
    platform::FileHandle file = nullptr;
    ASSERT_TRUE(platform::createDeleteOnCloseFile(path, file));
    std::size_t written = 0;
    EXPECT_TRUE(platform::writeToFile(file, "abc", 3, written));
    LARGE_INTEGER size = {};
    EXPECT_NE(FALSE, GetFileSizeEx(file, &size));
    EXPECT_EQ(3, size.QuadPart);
    EXPECT_TRUE(exists(path));
    EXPECT_EQ(INVALID_HANDLE_VALUE,
              openForReading(path, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE));
    char byte = 0;
    DWORD count = 0;
    EXPECT_EQ(FALSE, ReadFile(file, &byte, 1, &count, nullptr));
    platform::closeFile(file);
    EXPECT_FALSE(exists(path));
}

TEST(DeleteOnCloseHandle, CannotBeMadeOfAFileThatIsHeldOpen) {
    const TempFolder folder;
    const std::string path = folder.file("out");
    writeFile(path, "x");
    const HANDLE held = openForReading(path, FILE_SHARE_READ);
    ASSERT_NE(INVALID_HANDLE_VALUE, held);
    platform::FileHandle file = nullptr;
    EXPECT_FALSE(platform::createDeleteOnCloseFile(path, file));
    CloseHandle(held);
    EXPECT_EQ("x", readFile(path));
}

TEST(WriteToFile, InvalidHandleFails) {
    std::size_t written = 99;
    EXPECT_FALSE(platform::writeToFile(INVALID_HANDLE_VALUE, "abc", 3, written));
    EXPECT_EQ(0U, written);
}

TEST(AppendByHostFacet, NoFacetIsAsked) {
    const GlobalLocale patterns(new PatternTimeFacet);
    std::string text = "text";
    EXPECT_FALSE(platform::appendByHostFacet(text, std::tm{}, "%H"));
    EXPECT_EQ("text", text);
}

}  // namespace
}  // namespace rgen_test
