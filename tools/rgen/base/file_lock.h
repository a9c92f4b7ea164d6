// Files that several processes change: a lock between them, and a new file in place of an old one.
// file_lock_posix.cpp and file_lock_windows.cpp implement it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <stdexcept>

namespace cli {

/// Something else than a lock file has the name of one. It is left alone: it may be anybody's data.
class NotALockFile : public std::runtime_error {
public:
    NotALockFile() : std::runtime_error("it is no empty file") {}
};

/// A lock that the system takes back when the process ends, in whatever way. Its file is empty and
/// goes with the lock; one that a killed process left locks nobody out.
class FileLock {
public:
    explicit FileLock(std::filesystem::path lockFile) : path_(std::move(lockFile)) {}
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /// False while another process holds the lock. Throws std::system_error when the file system
    /// or its rights allow no lock, and NotALockFile.
    bool tryLock();

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
    /// A descriptor (Linux) or a handle (Windows); -1 is none.
    std::intptr_t file_ = -1;
    int refusals_ = 0;
};

/// Brings the file `from` to the disk and gives it the name `to`, in one step and with the rights
/// and, where the system lets it, the owner of the file that had the name. A group that it cannot
/// have gets no rights through it that everybody else lacks. Both are on one file system. Throws
/// std::system_error, and the file that had the name is unchanged then.
void replaceFile(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace cli
