// Creating temporary files on Windows.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include <system_error>

#include "engine/temporary_files.h"

namespace vellum {
namespace {

[[noreturn]] void fail(const char* what) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

}  // namespace

void createNewFile(const std::filesystem::path& path) {
    HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) fail("cannot make a file");
    CloseHandle(file);
}

void createPrivateFolder(const std::filesystem::path& path) {
    // The parent folder is the user's own on Windows and passes on its access rights.
    if (CreateDirectoryW(path.c_str(), nullptr) == 0) fail("cannot make a temporary folder");
}

}  // namespace vellum
