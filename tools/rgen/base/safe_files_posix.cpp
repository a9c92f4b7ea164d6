// Safe files on Linux.
//
// SPDX-License-Identifier: MIT
#include "base/safe_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <mutex>
#include <set>
#include <system_error>

namespace cli {

struct FolderLock::State {
    /// -1 where the file system has no locks.
    int file = -1;
    /// Set for the folder of a lock that was made here.
    std::string ownFolder;

    ~State();
};

namespace {

[[noreturn]] void fail(const std::string& path, int reason) {
    throw std::system_error(reason, std::generic_category(), path);
}

std::string lockPath(const std::string& folder) {
    return folder + "/" + lockFileName;
}

/// Owns a descriptor. close() can fail like a write, so it is checked.
class File {
public:
    File(const std::string& path, int flags, mode_t mode = 0)
        : path_(path), descriptor_(open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY, mode)) {
        if (descriptor_ < 0) fail(path_, errno);
    }
    ~File() {
        if (descriptor_ >= 0) close(descriptor_);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool isOrdinary() const {
        struct stat facts = {};
        return fstat(descriptor_, &facts) == 0 && S_ISREG(facts.st_mode);
    }

    /// Restores the owner's rights that the umask removed; those of others stay.
    void openToOwner() const {
        constexpr mode_t needed = S_IRUSR | S_IWUSR;
        constexpr mode_t rights = 0777;
        struct stat facts = {};
        if (fstat(descriptor_, &facts) != 0) fail(path_, errno);
        if ((facts.st_mode & needed) == needed) return;
        setRights((facts.st_mode & rights) | needed);
    }

    void setRights(mode_t rights) const {
        if (fchmod(descriptor_, rights) != 0) fail(path_, errno);
    }

    void write(std::string_view bytes) const {
        while (!bytes.empty()) {
            const ssize_t size = ::write(descriptor_, bytes.data(), bytes.size());
            if (size < 0 && errno == EINTR) continue;
            if (size <= 0) fail(path_, size < 0 ? errno : ENOSPC);
            bytes.remove_prefix(static_cast<std::size_t>(size));
        }
    }

    void flush() const {
        while (fsync(descriptor_) != 0) {
            const bool isWithoutDisk = errno == EINVAL || errno == ENOTSUP || errno == ENOSYS;
            if (isWithoutDisk) return;
            if (errno != EINTR) fail(path_, errno);
        }
    }

    void finish() {
        const int descriptor = descriptor_;
        descriptor_ = -1;
        if (close(descriptor) != 0 && errno != EINTR) fail(path_, errno);
    }

private:
    const std::string path_;
    int descriptor_;
};

/// Locks without waiting; returns 0 or an errno. A POSIX lock, because a flock() lock would stay
/// alive in a forked child until it starts its program.
int lockNow(int file) {
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    while (fcntl(file, F_SETLK, &whole) != 0) {
        if (errno != EINTR) return errno == EACCES ? EAGAIN : errno;
    }
    return 0;
}

/// The identities of the folders that this process has locked. POSIX locks do not exclude the
/// process itself, and opening and closing the file again would release the lock.
struct OwnFolders {
    std::mutex mutex;
    std::set<std::string> identities;
};

OwnFolders& ownFolders() {
    static OwnFolders& folders = *new OwnFolders;
    return folders;
}

bool isLockedHere(const std::string& folder) {
    const auto identity = fileIdentity(folder);
    const std::lock_guard lock(ownFolders().mutex);
    return identity && ownFolders().identities.count(*identity) > 0;
}

std::string markLocked(const std::string& folder) {
    const std::string identity = fileIdentity(folder).value_or("");
    const std::lock_guard lock(ownFolders().mutex);
    ownFolders().identities.insert(identity);
    return identity;
}

constexpr std::size_t longestMachineName = 64;

/// Identifies the running system since its last start; empty when unknown.
std::string machineName() {
    std::ifstream file("/proc/sys/kernel/random/boot_id");
    std::string name;
    std::getline(file, name);
    return name.substr(0, longestMachineName);
}

/// Errors are ignored: without the text the folder is never taken for abandoned.
void writeMachineName(int file) {
    const std::string name = machineName();
    if (pwrite(file, name.data(), name.size(), 0) < 0) return;
}

bool isOfThisMachine(int file) {
    char bytes[longestMachineName + 1] = {};
    const ssize_t size = pread(file, bytes, sizeof bytes, 0);
    return size > 0 && std::string_view(bytes, static_cast<std::size_t>(size)) == machineName();
}

/// There is no other way to read it.
mode_t currentMask() {
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

bool hasName(int file) {
    struct stat facts = {};
    return fstat(file, &facts) == 0 && facts.st_nlink > 0;
}

}  // namespace

bool makePrivateFolder(const std::string& path) {
    if (mkdir(path.c_str(), S_IRWXU) != 0) {
        if (errno == EEXIST) return false;
        fail(path, errno);
    }
    // No other process knows the name yet.
    const bool isCut = (currentMask() & S_IRWXU) != 0;
    if (!isCut || chmod(path.c_str(), S_IRWXU) == 0) return true;
    const int reason = errno;
    rmdir(path.c_str());
    fail(path, reason);
}

bool isPrivateFolder(const std::string& path) {
    struct stat facts = {};
    return lstat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode) && facts.st_uid == geteuid();
}

void writeNewFile(const std::string& path, std::string_view bytes) {
    constexpr mode_t asTheMaskSays = 0666;
    File file(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, asTheMaskSays);
    file.openToOwner();
    file.write(bytes);
    file.finish();
}

void applyMask(const std::string& path) {
    const mode_t taken = currentMask() & S_IRWXU;
    struct stat facts = {};
    if (taken == 0 || lstat(path.c_str(), &facts) != 0) return;
    constexpr mode_t rights = 0777;
    if (chmod(path.c_str(), facts.st_mode & rights & ~taken) != 0) fail(path, errno);
}

OwnerRights::OwnerRights() : mask_(currentMask()) {
    umask(mask_ & ~static_cast<unsigned>(S_IRWXU));
}

OwnerRights::~OwnerRights() {
    umask(mask_);
}

void flushFile(const std::string& path) {
    struct stat facts = {};
    const bool isKnown = lstat(path.c_str(), &facts) == 0;
    const bool isClosed = isKnown && S_ISREG(facts.st_mode) && (facts.st_mode & S_IRUSR) == 0;
    if (isClosed && chmod(path.c_str(), S_IRUSR | S_IWUSR) != 0) fail(path, errno);
    File file(path, O_RDONLY | O_NOFOLLOW);
    constexpr mode_t rights = 0777;
    if (isClosed) file.setRights(facts.st_mode & rights);
    file.flush();
    file.finish();
}

void writeIntoSpecialFile(const std::string& path, std::string_view bytes) {
    File file(path, O_WRONLY);
    // A regular file that has replaced it would be truncated by a failed write.
    if (file.isOrdinary()) fail(path, EEXIST);
    file.write(bytes);
    file.finish();
}

bool isFullDisk(const std::error_code& failure) {
    const int reason = failure.value();
    return reason == ENOSPC || reason == EDQUOT || reason == EFBIG;
}

std::optional<std::string> fileIdentity(const std::string& path) {
    struct stat facts = {};
    if (stat(path.c_str(), &facts) != 0) return std::nullopt;
    return std::to_string(facts.st_dev) + ":" + std::to_string(facts.st_ino);
}

std::string comparableName(const std::string& name) {
    return name;
}

FolderLock::State::~State() {
    if (file >= 0) close(file);
    const std::lock_guard lock(ownFolders().mutex);
    ownFolders().identities.erase(ownFolder);
}

FolderLock::FolderLock(std::unique_ptr<State> state) : state_(std::move(state)) {}

FolderLock::~FolderLock() = default;

std::unique_ptr<FolderLock> FolderLock::make(const std::string& folder) {
    auto state = std::make_unique<State>();
    const std::string path = lockPath(folder);
    constexpr mode_t forOwner = S_IRUSR | S_IWUSR;
    state->file = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, forOwner);
    if (state->file < 0 && errno == ENOENT) return nullptr;
    if (state->file < 0) fail(path, errno);
    static_cast<void>(fchmod(state->file, forOwner));  // A file that cannot be opened is kept.
    const int reason = lockNow(state->file);
    const bool isTaken = reason == EAGAIN || (reason == 0 && !hasName(state->file));
    if (isTaken) {
        unlink(path.c_str());
        return nullptr;
    }
    // The file stays even if it cannot be locked: an empty folder is taken for abandoned.
    if (reason == 0) writeMachineName(state->file);
    state->ownFolder = markLocked(folder);
    return std::unique_ptr<FolderLock>(new FolderLock(std::move(state)));
}

std::unique_ptr<FolderLock> FolderLock::takeOver(const std::string& folder) {
    if (isLockedHere(folder)) return nullptr;
    auto state = std::make_unique<State>();
    state->file = open(lockPath(folder).c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (state->file < 0 || !isOfThisMachine(state->file)) return nullptr;
    if (lockNow(state->file) != 0 || !hasName(state->file)) return nullptr;
    return std::unique_ptr<FolderLock>(new FolderLock(std::move(state)));
}

}  // namespace cli
