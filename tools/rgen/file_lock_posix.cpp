// Locks and replaced files on Linux.
//
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "file_lock.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(int reason) {
    throw std::system_error(reason, std::generic_category());
}

/// A descriptor with an owner.
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

/// A link or a pipe in the place of the lock file is neither followed nor waited for. Whoever may
/// not write a file that another user left can lock it all the same.
int openLockFile(const fs::path& path) {
    constexpr int flags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    constexpr mode_t everybody = 0666;
    const int descriptor = open(path.c_str(), O_RDWR | O_CREAT | flags, everybody);
    if (descriptor >= 0 || errno != EACCES) return descriptor;
    const int readable = open(path.c_str(), O_RDONLY | flags);
    if (readable < 0) errno = EACCES;
    return readable;
}

/// False when the process that had the lock before has removed the file that was opened.
bool hasName(int descriptor, const fs::path& path) {
    struct stat opened = {};
    struct stat named = {};
    return fstat(descriptor, &opened) == 0 && lstat(path.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

/// The owner comes first: changing it may take bits of the mode away.
void copyRights(int descriptor, const fs::path& from) {
    struct stat old = {};
    struct stat own = {};
    if (stat(from.c_str(), &old) != 0 || fstat(descriptor, &own) != 0) return;
    constexpr auto unchanged = static_cast<uid_t>(-1);
    const bool isOwned = old.st_uid == own.st_uid && old.st_gid == own.st_gid;
    if (!isOwned && fchown(descriptor, old.st_uid, old.st_gid) != 0 &&
        fchown(descriptor, unchanged, old.st_gid) != 0) {
        // Neither is allowed to everybody.
    }
    constexpr mode_t modeBits = 07777;
    if (fchmod(descriptor, old.st_mode & modeBits) != 0) fail(errno);
}

}  // namespace

FileLock::~FileLock() {
    if (file_ < 0) return;
    // The name goes first, while the lock still keeps others from taking it.
    unlink(path_.c_str());
    close(static_cast<int>(file_));
}

bool FileLock::tryLock() {
    for (;;) {
        Descriptor descriptor(openLockFile(path_));
        if (descriptor.get() < 0) fail(errno);
        if (flock(descriptor.get(), LOCK_EX | LOCK_NB) != 0) {
            if (errno == EWOULDBLOCK || errno == EINTR) return false;
            fail(errno);
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
    if (fsync(file.get()) != 0) fail(errno);
    if (rename(from.c_str(), to.c_str()) != 0) fail(errno);
}

}  // namespace cli
