// The delete-on-close handle on Windows, and output files that another handle holds open.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "support/report_fixture.h"

namespace rgen_test {
namespace {

std::wstring wide(const std::string& path) {
    return std::filesystem::u8path(path).wstring();
}

HANDLE openFile(const std::string& path, DWORD access, DWORD sharing) {
    return CreateFileW(wide(path).c_str(), access, sharing, nullptr, OPEN_EXISTING,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

const DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

class DeleteOnCloseMode : public DeleteOnCloseTest {
protected:
    static std::int64_t sizeOf(HANDLE handle) {
        LARGE_INTEGER size = {};
        EXPECT_NE(0, GetFileSizeEx(handle, &size));
        return size.QuadPart;
    }
};

class HeldFile : public ReportTest {
protected:
    HeldFile() {
        for (const char* format : {"html", "pdf"})
            putTemplate(textStylesheet("done"), format);
        input.variants().addString("v", "value");
    }

    InputParams input;
};

TEST_F(DeleteOnCloseMode, GivesAHandleForWritingOnlyToTheWholeReport) {
    input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, folder.file("report.html"));
    const HANDLE handle = generateHandle();
    EXPECT_EQ(5, sizeOf(handle));
    char byte = 0;
    DWORD count = 0;
    SetFilePointer(handle, 0, nullptr, FILE_BEGIN);
    EXPECT_EQ(0, ReadFile(handle, &byte, 1, &count, nullptr));
    EXPECT_EQ(DWORD{ERROR_ACCESS_DENIED}, GetLastError());
    EXPECT_NE(0, WriteFile(handle, "V", 1, &count, nullptr));
    EXPECT_NE(0, CloseHandle(handle));
}

TEST_F(DeleteOnCloseMode, IsNotSharedAndNotInherited) {
    const std::string path = folder.file("report.html");
    input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, path);
    const HANDLE handle = generateHandle();
    for (const DWORD access : {DWORD{GENERIC_READ}, DWORD{GENERIC_WRITE}, DWORD{DELETE}}) {
        SCOPED_TRACE(access);
        EXPECT_EQ(INVALID_HANDLE_VALUE, openFile(path, access, shareAll));
        EXPECT_EQ(DWORD{ERROR_SHARING_VIOLATION}, GetLastError());
    }
    DWORD flags = HANDLE_FLAG_INHERIT;
    EXPECT_NE(0, GetHandleInformation(handle, &flags));
    EXPECT_EQ(0U, flags & HANDLE_FLAG_INHERIT);
    EXPECT_NE(0, CloseHandle(handle));
}

TEST_F(DeleteOnCloseMode, TheFileIsThereUntilTheHandleIsClosed) {
    const std::string path = folder.file("report.html");
    input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, path);
    const HANDLE handle = generateHandle();
    EXPECT_TRUE(exists(path));
    EXPECT_NE(0, CloseHandle(handle));
    EXPECT_FALSE(exists(path));
}

TEST_F(DeleteOnCloseMode, RefusesAFolderAMissingParentAndAHeldFile) {
    createFolder(folder.file("folder"));
    writeFile(folder.file("held"), "old");
    const HANDLE holder = openFile(folder.file("held"), GENERIC_READ, FILE_SHARE_READ);
    ASSERT_NE(INVALID_HANDLE_VALUE, holder);
    for (const std::string& path : {folder.file("folder"), folder.file("missing/report"),
                                    std::string(), folder.file("held")}) {
        SCOPED_TRACE(path);
        input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, path);
        EXPECT_EQ(statusHex(RGEN_E_CREATE_OUTPUT), generate(input));
    }
    CloseHandle(holder);
    EXPECT_EQ("old", readFile(folder.file("held")));
    EXPECT_TRUE(isFolder(folder.file("folder")));
}

// The letters above ASCII go through the ANSI code page, whichever it is on this system.
TEST_F(DeleteOnCloseMode, TakesThePathInTheAnsiCodePage) {
    const std::string path = folder.file("caf\xE9.html");
    wchar_t name[MAX_PATH];
    ASSERT_NE(0, MultiByteToWideChar(CP_ACP, 0, path.c_str(), -1, name, MAX_PATH));
    input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, path);
    const HANDLE handle = generateHandle();
    EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(name)));
    EXPECT_NE(0, CloseHandle(handle));
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(name)));
}

TEST_F(HeldFile, WithoutDeleteSharingIsNotOverwritten) {
    const std::string path = folder.file("report");
    writeFile(path, "old");
    const HANDLE holder = openFile(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE);
    ASSERT_NE(INVALID_HANDLE_VALUE, holder);
    for (const std::string format : {"html", "pdf"}) {
        SCOPED_TRACE(format);
        input.format(format).output(RGEN_OUTPUT_FILE, path);
        EXPECT_EQ(statusHex(RGEN_E_OVERWRITE_OUTPUT), generate(input));
        EXPECT_EQ("old", readFile(path));
        EXPECT_FALSE(exists(path + ".html"));
    }
    CloseHandle(holder);
    input.format("html");
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ("done", readFile(path));
}

TEST_F(HeldFile, BackslashesAndSlashesNameTheSameFile) {
    std::string path = folder.file("report.html");
    for (char& character : path) {
        if (character == '\\') character = '/';
    }
    input.output(RGEN_OUTPUT_FILE, path);
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ("done", readFile(folder.file("report.html")));
}

}  // namespace
}  // namespace rgen_test
