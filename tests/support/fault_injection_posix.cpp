// Replacements of the wrapped calls of Linux.
//
// SPDX-License-Identifier: MIT
#include <poll.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

#include "support/fault_injection.h"

namespace rgen_test {

unsigned long long currentThreadNumber() {
    return pthread_self();
}

namespace {

extern "C" {

ssize_t realWrite(int descriptor, const void* bytes, std::size_t size) __asm__("__real_write");
ssize_t wrappedWrite(int descriptor, const void* bytes, std::size_t size) __asm__("__wrap_write");
int realUnlink(const char* path) __asm__("__real_unlink");
int wrappedUnlink(const char* path) __asm__("__wrap_unlink");
int realPoll(pollfd* descriptors, nfds_t count, int milliseconds) __asm__("__real_poll");
int wrappedPoll(pollfd* descriptors, nfds_t count, int milliseconds) __asm__("__wrap_poll");
int realWaitid(idtype_t kind, id_t id, siginfo_t* info, int options) __asm__("__real_waitid");
int wrappedWaitid(idtype_t kind, id_t id, siginfo_t* info, int options) __asm__("__wrap_waitid");
long realSyscall(long number, long first, long second) __asm__("__real_syscall");
long wrappedSyscall(long number, long first, long second) __asm__("__wrap_syscall");

ssize_t wrappedWrite(int descriptor, const void* bytes, std::size_t size) {
    if (failsNow(Call::WriteFileShort)) return realWrite(descriptor, bytes, size / 2);
    const bool interrupted = failsNow(Call::WriteFileInterrupted);
    if (!interrupted && !failsNow(Call::WriteFile)) return realWrite(descriptor, bytes, size);
    errno = interrupted ? EINTR : EIO;
    return -1;
}

int wrappedUnlink(const char* path) {
    if (!failsNow(Call::DeleteName)) return realUnlink(path);
    errno = EACCES;
    return -1;
}

int wrappedPoll(pollfd* descriptors, nfds_t count, int milliseconds) {
    if (!failsNow(Call::WaitInterrupted)) return realPoll(descriptors, count, milliseconds);
    errno = EINTR;
    return -1;
}

int wrappedWaitid(idtype_t kind, id_t id, siginfo_t* info, int options) {
    if (!failsNow(Call::QueryExitCode)) return realWaitid(kind, id, info, options);
    errno = EINVAL;
    return -1;
}

// The library makes one system call of its own, pidfd_open, which takes two arguments.
long wrappedSyscall(long number, long first, long second) {
    if (!failsNow(Call::OpenProcessDescriptor)) return realSyscall(number, first, second);
    errno = ENOSYS;
    return -1;
}

}  // extern "C"

}  // namespace
}  // namespace rgen_test
