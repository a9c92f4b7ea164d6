// The functions that replace the C library's. Each has the name by which callers look for it, and
// finds the next function of that name, the C library's own, at run time.
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

#include "support/test_platform.h"

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
    ++watch.counts.at(static_cast<std::size_t>(call));
    return watch.fault.call == call && failsNow(Call::FileOperation);
}

// For calls that cannot be short.
template <typename Target>
bool fails(IoCall call, Target target) {
    if (!isWatched(target) || !countsAsFailure(call)) return false;
    errno = watch.fault.error;
    return watch.fault.error != shortCount;
}

template <typename Function>
Function next(Function /*itself*/, const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

mode_t modeOf(int flags, std::va_list& arguments) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

extern "C" {

int replacedOpen(const char* path, int flags, ...) __asm__("open");
int replacedOpen64(const char* path, int flags, ...) __asm__("open64");
int replacedOpenAt(int folder, const char* path, int flags, ...) __asm__("openat");
int replacedOpenAt64(int folder, const char* path, int flags, ...) __asm__("openat64");
int replacedDup(int descriptor) __asm__("dup");
FILE* replacedFopen(const char* path, const char* mode) __asm__("fopen");
FILE* replacedFopen64(const char* path, const char* mode) __asm__("fopen64");
ssize_t replacedRead(int descriptor, void* bytes, std::size_t size) __asm__("read");
ssize_t replacedWrite(int descriptor, const void* bytes, std::size_t size) __asm__("write");
ssize_t replacedReadv(int descriptor, const iovec* parts, int count) __asm__("readv");
ssize_t replacedWritev(int descriptor, const iovec* parts, int count) __asm__("writev");
int replacedClose(int descriptor) __asm__("close");
int replacedFclose(FILE* file) __asm__("fclose");
int replacedUnlink(const char* path) __asm__("unlink");
int replacedUnlinkAt(int folder, const char* path, int flags) __asm__("unlinkat");
int replacedRmdir(const char* path) __asm__("rmdir");
int replacedRemove(const char* path) __asm__("remove");
int replacedMkdir(const char* path, mode_t mode) __asm__("mkdir");
int replacedStat(const char* path, struct stat* information) __asm__("stat");
int replacedStat64(const char* path, struct stat* information) __asm__("stat64");
int replacedLstat(const char* path, struct stat* information) __asm__("lstat");
int replacedLstat64(const char* path, struct stat* information) __asm__("lstat64");
int replacedFstat(int descriptor, struct stat* information) __asm__("fstat");
int replacedFstat64(int descriptor, struct stat* information) __asm__("fstat64");
int replacedStatx(int folder, const char* path, int flags, unsigned mask,
                  void* information) __asm__("statx");
off_t replacedSeek(int descriptor, off_t offset, int origin) __asm__("lseek");
off_t replacedSeek64(int descriptor, off_t offset, int origin) __asm__("lseek64");

int replacedOpen(const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    if (fails(IoCall::Open, path)) return -1;
    return noted(next(replacedOpen, "open")(path, flags, mode), isWatched(path));
}

int replacedOpen64(const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return replacedOpen(path, flags | O_LARGEFILE, mode);
}

int replacedOpenAt(int folder, const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    if (fails(IoCall::Open, path)) return -1;
    return noted(next(replacedOpenAt, "openat")(folder, path, flags, mode), isWatched(path));
}

int replacedOpenAt64(int folder, const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return replacedOpenAt(folder, path, flags | O_LARGEFILE, mode);
}

// A second number for an open file counts as opening one.
int replacedDup(int descriptor) {
    if (fails(IoCall::Open, descriptor)) return -1;
    return noted(next(replacedDup, "dup")(descriptor), isWatched(descriptor));
}

FILE* replacedFopen(const char* path, const char* mode) {
    if (fails(IoCall::Open, path)) return nullptr;
    FILE* file = next(replacedFopen, "fopen")(path, mode);
    if (file != nullptr) noted(fileno(file), isWatched(path));
    return file;
}

FILE* replacedFopen64(const char* path, const char* mode) {
    return replacedFopen(path, mode);
}

ssize_t replacedRead(int descriptor, void* bytes, std::size_t size) {
    const auto original = next(replacedRead, "read");
    if (!isWatched(descriptor) || !countsAsFailure(IoCall::Read))
        return original(descriptor, bytes, size);
    if (watch.fault.error == shortCount) return original(descriptor, bytes, (size + 1) / 2);
    errno = watch.fault.error;
    return -1;
}

ssize_t replacedWrite(int descriptor, const void* bytes, std::size_t size) {
    const auto original = next(replacedWrite, "write");
    if (!isWatched(descriptor) || !countsAsFailure(IoCall::Write))
        return original(descriptor, bytes, size);
    if (watch.fault.error == shortCount) return original(descriptor, bytes, (size + 1) / 2);
    errno = watch.fault.error;
    return -1;
}

// A short one handles only the first part.
ssize_t replacedReadv(int descriptor, const iovec* parts, int count) {
    const auto original = next(replacedReadv, "readv");
    if (!isWatched(descriptor) || !countsAsFailure(IoCall::Read))
        return original(descriptor, parts, count);
    if (watch.fault.error == shortCount) return original(descriptor, parts, 1);
    errno = watch.fault.error;
    return -1;
}

ssize_t replacedWritev(int descriptor, const iovec* parts, int count) {
    const auto original = next(replacedWritev, "writev");
    if (!isWatched(descriptor) || !countsAsFailure(IoCall::Write))
        return original(descriptor, parts, count);
    if (watch.fault.error == shortCount) return original(descriptor, parts, 1);
    errno = watch.fault.error;
    return -1;
}

// A close that fails has closed all the same, as on Linux.
int replacedClose(int descriptor) {
    const bool failing = fails(IoCall::Close, descriptor);
    noted(descriptor, false);
    const int result = next(replacedClose, "close")(descriptor);
    if (!failing) return result;
    errno = watch.fault.error;
    return -1;
}

int replacedFclose(FILE* file) {
    const int descriptor = fileno(file);
    const bool failing = fails(IoCall::Close, descriptor);
    noted(descriptor, false);
    const int result = next(replacedFclose, "fclose")(file);
    if (!failing) return result;
    errno = watch.fault.error;
    return EOF;
}

int replacedUnlink(const char* path) {
    return fails(IoCall::Remove, path) ? -1 : next(replacedUnlink, "unlink")(path);
}

int replacedUnlinkAt(int folder, const char* path, int flags) {
    return fails(IoCall::Remove, path) ? -1
                                       : next(replacedUnlinkAt, "unlinkat")(folder, path, flags);
}

int replacedRmdir(const char* path) {
    return fails(IoCall::Remove, path) ? -1 : next(replacedRmdir, "rmdir")(path);
}

int replacedRemove(const char* path) {
    return fails(IoCall::Remove, path) ? -1 : next(replacedRemove, "remove")(path);
}

int replacedMkdir(const char* path, mode_t mode) {
    return fails(IoCall::MakeFolder, path) ? -1 : next(replacedMkdir, "mkdir")(path, mode);
}

int replacedStat(const char* path, struct stat* information) {
    return fails(IoCall::Look, path) ? -1 : next(replacedStat, "stat")(path, information);
}

int replacedStat64(const char* path, struct stat* information) {
    return replacedStat(path, information);
}

int replacedLstat(const char* path, struct stat* information) {
    return fails(IoCall::Look, path) ? -1 : next(replacedLstat, "lstat")(path, information);
}

int replacedLstat64(const char* path, struct stat* information) {
    return replacedLstat(path, information);
}

int replacedFstat(int descriptor, struct stat* information) {
    return fails(IoCall::Look, descriptor) ? -1
                                           : next(replacedFstat, "fstat")(descriptor, information);
}

int replacedFstat64(int descriptor, struct stat* information) {
    return replacedFstat(descriptor, information);
}

int replacedStatx(int folder, const char* path, int flags, unsigned mask, void* information) {
    if (fails(IoCall::Look, path)) return -1;
    return next(replacedStatx, "statx")(folder, path, flags, mask, information);
}

off_t replacedSeek(int descriptor, off_t offset, int origin) {
    return fails(IoCall::Seek, descriptor)
               ? -1
               : next(replacedSeek, "lseek")(descriptor, offset, origin);
}

off_t replacedSeek64(int descriptor, off_t offset, int origin) {
    return replacedSeek(descriptor, offset, origin);
}

}  // extern "C"

const char* nameOf(IoCall call) {
    static constexpr std::array<const char*, ioCallCount> names = {
        "open", "read", "write", "close", "remove", "mkdir", "stat", "seek"};
    return names.at(static_cast<std::size_t>(call));
}

FailingIo::FailingIo(const std::string& folder, const IoFault& fault)
    : FailingCall({Call::FileOperation}, fault.number, fault.form) {
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
