// Locks and replaced files on Linux.
//
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "base/file_lock.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(int reason) {
    throw std::system_error(reason, std::generic_category());
}

class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return number_; }
    int release() {
        const int number = number_;
        number_ = -1;
        return number;
    }

private:
    int number_;
};

constexpr mode_t everybody = 0666;

/// Does not follow a link and does not block on a pipe. A file that another user left can be locked
/// without write access.
int openLockFile(const fs::path& path) {
    constexpr int flags = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int descriptor = open(path.c_str(), O_RDWR | O_CREAT | flags, everybody);
    if (descriptor >= 0 || errno != EACCES) return descriptor;
    const int readable = open(path.c_str(), O_RDONLY | flags);
    if (readable < 0) errno = EACCES;
    return readable;
}

/// Tells whether an open file may be a lock file: an empty one with one name, or with none when it
/// was just removed.
bool isLockFile(const struct stat& facts) {
    return S_ISREG(facts.st_mode) && facts.st_size == 0 && facts.st_nlink <= 1;
}

/// Everybody who may change the data must be able to lock the file, also after this process was
/// killed, and whatever its umask.
void openToEverybody(int descriptor, const struct stat& facts) {
    if ((facts.st_mode & everybody) == everybody || facts.st_uid != geteuid()) return;
    if (fchmod(descriptor, everybody) != 0) {
        // The lock works without it.
    }
}

/// Returns false when the previous owner of the lock has removed the opened file.
bool hasName(int descriptor, const fs::path& path) {
    struct stat opened = {};
    struct stat named = {};
    return fstat(descriptor, &opened) == 0 && lstat(path.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

/// Not every file system can flush a single file or folder.
bool flush(int descriptor) {
    while (fsync(descriptor) != 0) {
        if (errno == EINVAL || errno == ENOTSUP || errno == ENOSYS) return true;
        if (errno != EINTR) return false;
    }
    return true;
}

/// Flushes the new name. The rename itself has succeeded, so a failure here is ignored.
void flushFolderOf(const fs::path& path) {
    const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
    const Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.get() >= 0) flush(descriptor.get());
}

/// The owner is set first, because that may clear bits of the mode. The set-user-ID and
/// set-group-ID bits are not copied.
void copyRights(int descriptor, const fs::path& from) {
    struct stat old = {};
    struct stat own = {};
    if (stat(from.c_str(), &old) != 0 || fstat(descriptor, &own) != 0) return;
    constexpr auto unchanged = static_cast<uid_t>(-1);
    const bool isOwned = old.st_uid == own.st_uid && old.st_gid == own.st_gid;
    const bool keepsGroup = isOwned || fchown(descriptor, old.st_uid, old.st_gid) == 0 ||
                            old.st_gid == own.st_gid ||
                            fchown(descriptor, unchanged, old.st_gid) == 0;
    constexpr mode_t modeBits = 0777;
    mode_t mode = old.st_mode & modeBits;
    if (!keepsGroup) mode &= ~static_cast<mode_t>(S_IRWXG) | ((mode & S_IRWXO) << 3U);
    if (fchmod(descriptor, mode) != 0) fail(errno);
}

}  // namespace

FileLock::~FileLock() {
    if (file_ < 0) return;
    const int descriptor = static_cast<int>(file_);
    struct stat facts = {};
    const bool isStillOurs = fstat(descriptor, &facts) == 0 && isLockFile(facts);
    // The file is removed before it is unlocked, so that no other process locks it in between.
    if (isStillOurs && hasName(descriptor, path_)) unlink(path_.c_str());
    close(descriptor);
}

bool FileLock::tryLock() {
    for (;;) {
        Descriptor descriptor(openLockFile(path_));
        if (descriptor.get() < 0) fail(errno);
        struct stat facts = {};
        if (fstat(descriptor.get(), &facts) != 0) fail(errno);
        if (!isLockFile(facts)) throw NotALockFile();
        openToEverybody(descriptor.get(), facts);
        if (flock(descriptor.get(), LOCK_EX | LOCK_NB) != 0) {
            if (errno == EWOULDBLOCK || errno == EINTR) return false;
            const int reason = errno;
            const bool isWithoutLocks =
                reason == ENOLCK || reason == ENOTSUP || reason == ENOSYS || reason == EINVAL;
            if (isWithoutLocks && hasName(descriptor.get(), path_)) unlink(path_.c_str());
            fail(reason);
        }
        if (!hasName(descriptor.get(), path_)) continue;
        file_ = descriptor.release();
        return true;
    }
}

void replaceFile(const fs::path& from, const fs::path& to) {
    const Descriptor file(open(from.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.get() < 0) fail(errno);
    copyRights(file.get(), to);
    if (!flush(file.get())) fail(errno);
    if (rename(from.c_str(), to.c_str()) != 0) fail(errno);
    flushFolderOf(to);
}

}  // namespace cli
