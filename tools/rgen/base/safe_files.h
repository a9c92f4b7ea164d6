// Writing files in folders where other users may write: links and files that somebody planted there
// are not opened, and every error of the system is reported. Implemented in safe_files_posix.cpp
// and safe_files_windows.cpp. Paths are UTF-8; failures are thrown as std::system_error.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace cli {

/// Creates a folder that only its owner may use, whatever the umask; returns false when the name is
/// taken.
bool makePrivateFolder(const std::string& path);

/// Tells whether a folder of this user is at the path itself, not a link to one.
bool isPrivateFolder(const std::string& path);

/// Writes a new file that its owner may read and write, whatever the umask. Fails when anything is
/// at the path, a link included.
void writeNewFile(const std::string& path, std::string_view bytes);

/// Applies the umask to the owner's rights of a file that writeNewFile made.
void applyMask(const std::string& path);

/// While it exists, the umask does not restrict the owner, so that a program that is started during
/// that time can read what it writes.
class OwnerRights {
public:
    OwnerRights();
    ~OwnerRights();
    OwnerRights(const OwnerRights&) = delete;
    OwnerRights& operator=(const OwnerRights&) = delete;

private:
    unsigned mask_;
};

/// Flushes a written file to the disk. Quotas and network file systems report some errors only
/// here. Called once for each report, because it is the slowest step.
void flushFile(const std::string& path);

/// Writes into an existing pipe or device.
void writeIntoSpecialFile(const std::string& path, std::string_view bytes);

/// Tells whether the error is a full disk, an exceeded quota or a file size limit.
bool isFullDisk(const std::error_code& failure);

/// The same text for all names of one existing file; nothing when the system cannot tell.
std::optional<std::string> fileIdentity(const std::string& path);

/// The same text for all spellings of a file name in one folder.
std::string comparableName(const std::string& name);

/// The lock of a folder of temporary files. The system releases it when the process ends for
/// whatever reason, so a folder whose lock can be taken over has no owner any more. Some network
/// file systems keep locks on one machine only, so the lock file also names the machine.
class FolderLock {
public:
    /// Locks a folder that was just created. Returns null when another run took it for an abandoned
    /// one. On a file system without locks it is not locked and never taken for abandoned.
    static std::unique_ptr<FolderLock> make(const std::string& folder);

    /// Takes the lock of a folder whose owner has ended. Returns null when the owner is running,
    /// ran on another machine or before this one was started, or when there is no lock.
    static std::unique_ptr<FolderLock> takeOver(const std::string& folder);

    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

private:
    struct State;
    explicit FolderLock(std::unique_ptr<State> state);
    std::unique_ptr<State> state_;
};

/// The name of the lock file in a folder.
inline constexpr const char* lockFileName = "lock";

}  // namespace cli
