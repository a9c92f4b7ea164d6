// The functions that stand in front of the C library's. Each is given the name by which callers
// look for it, and finds the next one of that name behind it.
//
// SPDX-License-Identifier: MIT
#include "robustness/faults/io_faults_posix.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "robustness/faults/process_state.h"

namespace rgen_test {
namespace {

struct Watch {
    bool isArmed;
    unsigned long long thread;
    IoFault fault;
    std::array<char, 4096> folder;
    std::size_t folderLength;
    std::array<std::size_t, ioCallCount> counts;
    std::array<bool, 1024> descriptors;
};

Watch watch;

bool isWatching() {
    return watch.isArmed && watch.thread == callingThread();
}

bool isWatched(const char* path) {
    return isWatching() && path != nullptr &&
           std::strncmp(path, watch.folder.data(), watch.folderLength) == 0;
}

bool isKnown(int descriptor) {
    return descriptor >= 0 && static_cast<std::size_t>(descriptor) < watch.descriptors.size();
}

bool isWatched(int descriptor) {
    return isWatching() && isKnown(descriptor) &&
           watch.descriptors.at(static_cast<std::size_t>(descriptor));
}

int noted(int descriptor, bool isOpen) {
    if (isKnown(descriptor)) watch.descriptors.at(static_cast<std::size_t>(descriptor)) = isOpen;
    return descriptor;
}

bool countsAsFailure(IoCall call) {
    const std::size_t count = ++watch.counts.at(static_cast<std::size_t>(call));
    const IoFault& fault = watch.fault;
    if (fault.call != call || fault.number == 0 || count < fault.number) return false;
    return fault.form == FailureForm::AllFrom || count == fault.number;
}

// For calls that cannot be short.
template <typename Target>
bool fails(IoCall call, Target target) {
    if (!isWatched(target) || !countsAsFailure(call)) return false;
    errno = watch.fault.error;
    return watch.fault.error != shortCount;
}

template <typename Function>
Function behind(Function /*itself*/, const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

mode_t modeOf(int flags, std::va_list& arguments) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

extern "C" {

int frontOpen(const char* path, int flags, ...) __asm__("open");
int frontOpen64(const char* path, int flags, ...) __asm__("open64");
int frontOpenAt(int folder, const char* path, int flags, ...) __asm__("openat");
int frontOpenAt64(int folder, const char* path, int flags, ...) __asm__("openat64");
int frontDup(int descriptor) __asm__("dup");
FILE* frontFopen(const char* path, const char* mode) __asm__("fopen");
FILE* frontFopen64(const char* path, const char* mode) __asm__("fopen64");
ssize_t frontRead(int descriptor, void* bytes, std::size_t size) __asm__("read");
ssize_t frontWrite(int descriptor, const void* bytes, std::size_t size) __asm__("write");
ssize_t frontReadv(int descriptor, const iovec* parts, int count) __asm__("readv");
ssize_t frontWritev(int descriptor, const iovec* parts, int count) __asm__("writev");
int frontClose(int descriptor) __asm__("close");
int frontFclose(FILE* file) __asm__("fclose");
int frontUnlink(const char* path) __asm__("unlink");
int frontUnlinkAt(int folder, const char* path, int flags) __asm__("unlinkat");
int frontRmdir(const char* path) __asm__("rmdir");
int frontRemove(const char* path) __asm__("remove");
int frontMkdir(const char* path, mode_t mode) __asm__("mkdir");
int frontStat(const char* path, struct stat* information) __asm__("stat");
int frontStat64(const char* path, struct stat* information) __asm__("stat64");
int frontLstat(const char* path, struct stat* information) __asm__("lstat");
int frontLstat64(const char* path, struct stat* information) __asm__("lstat64");
int frontFstat(int descriptor, struct stat* information) __asm__("fstat");
int frontFstat64(int descriptor, struct stat* information) __asm__("fstat64");
int frontStatx(int folder, const char* path, int flags, unsigned mask,
               void* information) __asm__("statx");
off_t frontSeek(int descriptor, off_t offset, int origin) __asm__("lseek");
off_t frontSeek64(int descriptor, off_t offset, int origin) __asm__("lseek64");

int frontOpen(const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    if (fails(IoCall::Open, path)) return -1;
    return noted(behind(frontOpen, "open")(path, flags, mode), isWatched(path));
}

int frontOpen64(const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return frontOpen(path, flags | O_LARGEFILE, mode);
}

int frontOpenAt(int folder, const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    if (fails(IoCall::Open, path)) return -1;
    return noted(behind(frontOpenAt, "openat")(folder, path, flags, mode), isWatched(path));
}

int frontOpenAt64(int folder, const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return frontOpenAt(folder, path, flags | O_LARGEFILE, mode);
}

// A second number for an open file counts as opening one.
int frontDup(int descriptor) {
    if (fails(IoCall::Open, descriptor)) return -1;
    return noted(behind(frontDup, "dup")(descriptor), isWatched(descriptor));
}

FILE* frontFopen(const char* path, const char* mode) {
    if (fails(IoCall::Open, path)) return nullptr;
    FILE* file = behind(frontFopen, "fopen")(path, mode);
    if (file != nullptr) noted(fileno(file), isWatched(path));
    return file;
}

FILE* frontFopen64(const char* path, const char* mode) {
    return frontFopen(path, mode);
}

ssize_t frontRead(int descriptor, void* bytes, std::size_t size) {
    const auto next = behind(frontRead, "read");
    if (!isWatched(descriptor) || !countsAsFailure(IoCall::Read))
        return next(descriptor, bytes, size);
    if (watch.fault.error == shortCount) return next(descriptor, bytes, (size + 1) / 2);
    errno = watch.fault.error;
    return -1;
}

ssize_t frontWrite(int descriptor, const void* bytes, std::size_t size) {
    const auto next = behind(frontWrite, "write");
    if (!isWatched(descriptor) || !countsAsFailure(IoCall::Write))
        return next(descriptor, bytes, size);
    if (watch.fault.error == shortCount) return next(descriptor, bytes, (size + 1) / 2);
    errno = watch.fault.error;
    return -1;
}

// A short one takes the first part alone.
ssize_t frontReadv(int descriptor, const iovec* parts, int count) {
    const auto next = behind(frontReadv, "readv");
    if (!isWatched(descriptor) || !countsAsFailure(IoCall::Read))
        return next(descriptor, parts, count);
    if (watch.fault.error == shortCount) return next(descriptor, parts, 1);
    errno = watch.fault.error;
    return -1;
}

ssize_t frontWritev(int descriptor, const iovec* parts, int count) {
    const auto next = behind(frontWritev, "writev");
    if (!isWatched(descriptor) || !countsAsFailure(IoCall::Write))
        return next(descriptor, parts, count);
    if (watch.fault.error == shortCount) return next(descriptor, parts, 1);
    errno = watch.fault.error;
    return -1;
}

// A close that fails has closed all the same, as on Linux.
int frontClose(int descriptor) {
    const bool failing = fails(IoCall::Close, descriptor);
    noted(descriptor, false);
    const int result = behind(frontClose, "close")(descriptor);
    if (!failing) return result;
    errno = watch.fault.error;
    return -1;
}

int frontFclose(FILE* file) {
    const int descriptor = fileno(file);
    const bool failing = fails(IoCall::Close, descriptor);
    noted(descriptor, false);
    const int result = behind(frontFclose, "fclose")(file);
    if (!failing) return result;
    errno = watch.fault.error;
    return EOF;
}

int frontUnlink(const char* path) {
    return fails(IoCall::Remove, path) ? -1 : behind(frontUnlink, "unlink")(path);
}

int frontUnlinkAt(int folder, const char* path, int flags) {
    return fails(IoCall::Remove, path) ? -1
                                       : behind(frontUnlinkAt, "unlinkat")(folder, path, flags);
}

int frontRmdir(const char* path) {
    return fails(IoCall::Remove, path) ? -1 : behind(frontRmdir, "rmdir")(path);
}

int frontRemove(const char* path) {
    return fails(IoCall::Remove, path) ? -1 : behind(frontRemove, "remove")(path);
}

int frontMkdir(const char* path, mode_t mode) {
    return fails(IoCall::MakeFolder, path) ? -1 : behind(frontMkdir, "mkdir")(path, mode);
}

int frontStat(const char* path, struct stat* information) {
    return fails(IoCall::Look, path) ? -1 : behind(frontStat, "stat")(path, information);
}

int frontStat64(const char* path, struct stat* information) {
    return frontStat(path, information);
}

int frontLstat(const char* path, struct stat* information) {
    return fails(IoCall::Look, path) ? -1 : behind(frontLstat, "lstat")(path, information);
}

int frontLstat64(const char* path, struct stat* information) {
    return frontLstat(path, information);
}

int frontFstat(int descriptor, struct stat* information) {
    return fails(IoCall::Look, descriptor) ? -1
                                           : behind(frontFstat, "fstat")(descriptor, information);
}

int frontFstat64(int descriptor, struct stat* information) {
    return frontFstat(descriptor, information);
}

int frontStatx(int folder, const char* path, int flags, unsigned mask, void* information) {
    if (fails(IoCall::Look, path)) return -1;
    return behind(frontStatx, "statx")(folder, path, flags, mask, information);
}

off_t frontSeek(int descriptor, off_t offset, int origin) {
    return fails(IoCall::Seek, descriptor) ? -1
                                           : behind(frontSeek, "lseek")(descriptor, offset, origin);
}

off_t frontSeek64(int descriptor, off_t offset, int origin) {
    return frontSeek(descriptor, offset, origin);
}

}  // extern "C"

const char* nameOf(IoCall call) {
    static constexpr std::array<const char*, ioCallCount> names = {
        "open", "read", "write", "close", "remove", "mkdir", "stat", "seek"};
    return names.at(static_cast<std::size_t>(call));
}

FailingIo::FailingIo(const std::string& folder, const IoFault& fault) {
    watch.thread = callingThread();
    watch.fault = fault;
    watch.folderLength = folder.copy(watch.folder.data(), watch.folder.size());
    watch.counts = {};
    watch.descriptors = {};
    watch.isArmed = true;
}

FailingIo::~FailingIo() {
    watch.isArmed = false;
}

std::size_t FailingIo::count(IoCall call) const {
    return watch.counts.at(static_cast<std::size_t>(call));
}

}  // namespace rgen_test
