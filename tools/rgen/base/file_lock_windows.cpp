// Locks and replaced files on Windows.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include <system_error>
#include <vector>

#include "base/file_lock.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

/// Access is also refused while a file is being removed or scanned for viruses.
constexpr int mostRefusals = 200;
constexpr DWORD pause = 20;

[[noreturn]] void fail(DWORD reason) {
    throw std::system_error(static_cast<int>(reason), std::system_category());
}

bool mayPass(DWORD reason) {
    return reason == ERROR_ACCESS_DENIED || reason == ERROR_DELETE_PENDING;
}

void flush(const fs::path& path) {
    constexpr DWORD everything = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, everything, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) fail(GetLastError());
    const bool isFlushed = FlushFileBuffers(file) != 0;
    const DWORD reason = GetLastError();
    CloseHandle(file);
    if (!isFlushed) fail(reason);
}

/// Copies the access control list. If the file system has none or the user may not change it, the
/// new file has the rights of the folder.
void copyRights(const fs::path& from, const fs::path& to) {
    DWORD size = 0;
    GetFileSecurityW(from.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<unsigned char> rights(size);
    if (size > 0 && GetFileSecurityW(from.c_str(), DACL_SECURITY_INFORMATION, rights.data(), size,
                                     &size) != 0) {
        SetFileSecurityW(to.c_str(), DACL_SECURITY_INFORMATION, rights.data());
    }
}

/// Tells whether an open file is an empty one with one name, and no link.
bool isLockFile(HANDLE file) {
    BY_HANDLE_FILE_INFORMATION facts = {};
    constexpr DWORD others = FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DIRECTORY;
    return GetFileType(file) == FILE_TYPE_DISK && GetFileInformationByHandle(file, &facts) != 0 &&
           (facts.dwFileAttributes & others) == 0 && facts.nFileSizeHigh == 0 &&
           facts.nFileSizeLow == 0 && facts.nNumberOfLinks == 1;
}

}  // namespace

FileLock::~FileLock() {
    if (file_ == -1) return;
    HANDLE file = reinterpret_cast<HANDLE>(file_);
    FILE_DISPOSITION_INFO disposition = {};
    disposition.DeleteFile = TRUE;
    if (isLockFile(file)) {
        SetFileInformationByHandle(file, FileDispositionInfo, &disposition, sizeof disposition);
    }
    CloseHandle(file);
}

/// Opened without delete-on-close, so that a file that turns out not to be a lock file stays.
bool FileLock::tryLock() {
    HANDLE file =
        CreateFileW(path_.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, /*share=*/0, nullptr,
                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file != INVALID_HANDLE_VALUE) {
        if (!isLockFile(file)) {
            CloseHandle(file);
            throw NotALockFile();
        }
        file_ = reinterpret_cast<std::intptr_t>(file);
        return true;
    }
    const DWORD reason = GetLastError();
    if (reason == ERROR_SHARING_VIOLATION) return false;
    if (mayPass(reason) && ++refusals_ < mostRefusals) return false;
    fail(reason);
}

/// The replacement fails while another program reads the old file, so it is tried again.
void replaceFile(const fs::path& from, const fs::path& to) {
    flush(from);
    copyRights(to, from);
    for (int refusals = 0;; ++refusals) {
        if (MoveFileExW(from.c_str(), to.c_str(),
                        MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0) {
            return;
        }
        const DWORD reason = GetLastError();
        const bool isFolder = (GetFileAttributesW(to.c_str()) & FILE_ATTRIBUTE_DIRECTORY) != 0;
        const bool isHeld = reason == ERROR_SHARING_VIOLATION || mayPass(reason);
        if (isFolder || !isHeld || refusals == mostRefusals) fail(reason);
        Sleep(pause);
    }
}

}  // namespace cli
