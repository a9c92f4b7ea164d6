// For files that several processes change: a lock, and replacing a file in one step. Implemented in
// file_lock_posix.cpp and file_lock_windows.cpp.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <stdexcept>

namespace cli {

/// Thrown when the file with the name of the lock is not one. It is not touched: it may be data.
class NotALockFile : public std::runtime_error {
public:
    NotALockFile() : std::runtime_error("it is no empty file") {}
};

/// A lock that the system releases when the process ends for whatever reason. Its file is empty and
/// is removed with the lock; a file that a killed process left does not block others.
class FileLock {
public:
    explicit FileLock(std::filesystem::path lockFile) : path_(std::move(lockFile)) {}
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /// Returns false while another process holds the lock. Throws std::system_error when the file
    /// system or missing rights do not allow a lock, and NotALockFile.
    bool tryLock();

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
    /// A descriptor (Linux) or a handle (Windows); -1 is none.
    std::intptr_t file_ = -1;
    int refusals_ = 0;
};

/// Flushes the file `from` to the disk and renames it to `to` in one step. It gets the rights and,
/// if the system allows it, owner and group of the file that it replaces; if the group cannot be
/// set, the group gets no more rights than everybody else. Both paths are on one file system.
/// Throws std::system_error; the old file is unchanged then.
void replaceFile(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace cli
