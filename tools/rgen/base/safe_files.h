// Files that are written where other users may write, too: nothing that somebody has planted under
// their names is opened, and every error of the system is reported. safe_files_posix.cpp and
// safe_files_windows.cpp implement it. Paths are UTF-8; failures are thrown as
// std::system_error.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace cli {

/// Makes a folder that its owner may use, whatever the umask says, and nobody else may enter;
/// false when something has the name already.
bool makeOwnFolder(const std::string& path);

/// Tells whether a folder of this user is at the path itself, not a link to one.
bool isOwnFolder(const std::string& path);

/// Writes a new file that its owner may read and write, whatever the umask says. Fails when
/// anything is at the path, a link included.
void writeNewFile(const std::string& path, std::string_view bytes);

/// Takes from a new file the rights of its owner that the umask takes from every other new file.
void applyMask(const std::string& path);

/// While it lives, the umask takes no rights from the owner of a new file, so that a program that
/// is started meanwhile can read what it writes.
class OwnerRights {
public:
    OwnerRights();
    ~OwnerRights();
    OwnerRights(const OwnerRights&) = delete;
    OwnerRights& operator=(const OwnerRights&) = delete;

private:
    unsigned mask_;
};

/// Brings a written file to the disk. Quotas and network file systems report some failures here
/// only. Once for each report: it is what takes the longest.
void flushFile(const std::string& path);

/// Writes into something that is there and is no ordinary file: a pipe or a device.
void writeIntoSpecialFile(const std::string& path, std::string_view bytes);

/// Tells whether a failure means that there is no room: a full disk, a quota, a limit of size.
bool isFullDisk(const std::error_code& failure);

/// What all names of one existing file have in common; nothing when it cannot be told.
std::optional<std::string> fileIdentity(const std::string& path);

/// What all spellings of the name of a file have in common in one folder.
std::string comparableName(const std::string& name);

/// The lock of a folder of temporary files. The system releases it when the process ends, in
/// whatever way; so a folder whose lock can be taken over has no owner any more. Some file systems
/// of a network keep locks on one machine only, so the file names the machine, too.
class FolderLock {
public:
    /// Locks a folder that was just made. Null when another run took it for an abandoned one. On a
    /// file system without locks the folder has none, and is never taken for abandoned.
    static std::unique_ptr<FolderLock> make(const std::string& folder);

    /// Takes the lock of a folder whose owner has ended. Null when the owner lives, when it ran on
    /// another machine or before this one was started, or when there is no lock.
    static std::unique_ptr<FolderLock> takeOver(const std::string& folder);

    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

private:
    struct State;
    explicit FolderLock(std::unique_ptr<State> state);
    std::unique_ptr<State> state_;
};

/// The file in a folder that is locked.
inline constexpr const char* lockFileName = "lock";

}  // namespace cli
