// platform.h on both systems: path texts, local time, delete-on-close files, stack limits.
//
// SPDX-License-Identifier: MIT
#include "platform/platform.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>

#include "support/fault_injection.h"
#include "support/sized_thread.h"
#include "support/temp_folder.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

namespace platform = rgen::platform;

TEST(ToWidePath, RaisesForTextThatIsNotStrictUtf8) {
    for (const char* text : {"\xFF", "a\xC3", "\xED\xA0\x80", "\xC0\x80", "\xF4\x90\x80\x80"}) {
        EXPECT_THROW(platform::toWidePath(text), std::range_error);
    }
    EXPECT_TRUE(platform::toWidePath("").empty());
}

TEST(LocalTime, BreaksDownInTheZoneInForce) {
    std::tm time = {};
    {
        const TimeZone zone("UTC0");
        ASSERT_TRUE(platform::localTime(951782399, time));
        EXPECT_EQ(100, time.tm_year);
        EXPECT_EQ(1, time.tm_mon);
        EXPECT_EQ(28, time.tm_mday);
        EXPECT_EQ(23, time.tm_hour);
        EXPECT_EQ(59, time.tm_min);
        EXPECT_EQ(59, time.tm_sec);
    }
    const TimeZone zone("EST5EDT");
    ASSERT_TRUE(platform::localTime(1625140800, time));
    EXPECT_EQ(8, time.tm_hour);
    EXPECT_GT(time.tm_isdst, 0);
    ASSERT_TRUE(platform::localTime(1609502400, time));
    EXPECT_EQ(7, time.tm_hour);
    EXPECT_EQ(0, time.tm_isdst);
}

TEST(LocalTime, RefusesNumbersOutOfRangeAndLeavesTheTarget) {
    for (const std::int64_t number :
         {std::int64_t{-1}, std::numeric_limits<std::int64_t>::min(), std::int64_t{32535216000},
          std::numeric_limits<std::int64_t>::max()}) {
        std::tm time = {};
        time.tm_year = 77;
        EXPECT_FALSE(platform::localTime(number, time)) << number;
        EXPECT_EQ(77, time.tm_year) << number;
    }
}

TEST(LocalTime, LastAcceptedSecondIsTheLastOfTheYear3000) {
    const TimeZone zone("UTC0");
    std::tm time = {};
    ASSERT_TRUE(platform::localTime(32535215999, time));
    EXPECT_EQ(1100, time.tm_year);
    EXPECT_EQ(11, time.tm_mon);
    EXPECT_EQ(31, time.tm_mday);
    ASSERT_TRUE(platform::localTime(0, time));
    EXPECT_EQ(70, time.tm_year);
}

TEST(DeleteOnCloseFile, TakesBytesAndVanishesWithItsHandle) {
    const TempFolder folder;
    const std::string path = folder.file("out.html");
    platform::FileHandle file = nullptr;
    ASSERT_TRUE(platform::createDeleteOnCloseFile(path, file));
    std::size_t written = 99;
    EXPECT_TRUE(platform::writeToFile(file, "abc", 3, written));
    EXPECT_EQ(3U, written);
    EXPECT_TRUE(platform::writeToFile(file, "", 0, written));
    EXPECT_EQ(0U, written);
    platform::closeFile(file);
    EXPECT_FALSE(exists(path));
}

TEST(DeleteOnCloseFile, OverwritesAnExistingFile) {
    const TempFolder folder;
    const std::string path = folder.file("out.html");
    writeFile(path, "previous");
    platform::FileHandle file = nullptr;
    ASSERT_TRUE(platform::createDeleteOnCloseFile(path, file));
    platform::closeFile(file);
    EXPECT_FALSE(exists(path));
}

TEST(DeleteOnCloseFile, CannotBeMadeWhereNoFileCanBe) {
    const TempFolder folder;
    platform::FileHandle file = nullptr;
    EXPECT_FALSE(platform::createDeleteOnCloseFile(folder.path(), file));
    EXPECT_FALSE(platform::createDeleteOnCloseFile(folder.file("none/out.html"), file));
    EXPECT_FALSE(platform::createDeleteOnCloseFile("", file));
    EXPECT_TRUE(isFolder(folder.path()));
}

TEST(WriteToFile, FailureThatWritesNothingGivesFalse) {
    const TempFolder folder;
    platform::FileHandle file = nullptr;
    ASSERT_TRUE(platform::createDeleteOnCloseFile(folder.file("out"), file));
    std::size_t written = 99;
    {
        const FailingCall failure(Call::WriteFile);
        EXPECT_FALSE(platform::writeToFile(file, "abcd", 4, written));
        EXPECT_TRUE(failure.reached());
    }
    platform::closeFile(file);
}

TEST(WriteToFile, ShortWriteTellsHowMuchArrived) {
    const TempFolder folder;
    platform::FileHandle file = nullptr;
    ASSERT_TRUE(platform::createDeleteOnCloseFile(folder.file("out"), file));
    std::size_t written = 99;
    {
        // On Linux the rest is written by a second call, which has to fail.
        const FailingCall secondHalf(Call::WriteFile, nativePath("/") == "/" ? 1 : 2);
        const FailingCall firstHalf(Call::WriteFileShort);
        EXPECT_TRUE(platform::writeToFile(file, "abcd", 4, written));
        EXPECT_TRUE(firstHalf.reached());
    }
    EXPECT_EQ(2U, written);
    platform::closeFile(file);
}

TEST(StackLimit, LiesBelowThisFrameByLessThanTheStack) {
    const char* limit = nullptr;
    const char* frame = nullptr;
    runOnStack(mebibyte, [&] {
        limit = platform::stackLimit();
        frame = static_cast<const char*>(__builtin_frame_address(0));
    });
    ASSERT_NE(nullptr, limit);
    EXPECT_LT(limit, frame);
    EXPECT_LT(frame - limit, static_cast<std::ptrdiff_t>(5 * mebibyte));
}

TEST(StackLimit, BelongsToTheThread) {
    const char* main = platform::stackLimit();
    const char* other = main;
    runOnStack(mebibyte, [&other] { other = platform::stackLimit(); });
    EXPECT_NE(main, other);
    EXPECT_EQ(main, platform::stackLimit());
}

TEST(NamesSpecialFile, FilesFoldersAndMissingNamesAreNone) {
    const TempFolder folder;
    writeFile(folder.file("file"), "text");
    for (const std::string& path : {folder.file("file"), folder.path(), folder.file("none"),
                                    folder.file("none/none"), std::string()}) {
        EXPECT_FALSE(platform::namesSpecialFile(path)) << path;
    }
    EXPECT_THROW(platform::namesSpecialFile(folder.file("a\xFF")), std::range_error);
}

}  // namespace
}  // namespace rgen_test
