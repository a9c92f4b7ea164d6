// Replacements of system calls of Linux.
//
// SPDX-License-Identifier: MIT
#include <poll.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

#include "support/fault_injection.h"

namespace rgen_test {

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
int realFstat(int descriptor, struct stat* information) __asm__("__real_fstat");
int wrappedFstat(int descriptor, struct stat* information) __asm__("__wrap_fstat");
long realSyscall(long number, long first, long second) __asm__("__real_syscall");
long wrappedSyscall(long number, long first, long second) __asm__("__wrap_syscall");

int realInitActions(posix_spawn_file_actions_t* actions) __asm__(
    "__real_posix_spawn_file_actions_init");
int wrappedInitActions(posix_spawn_file_actions_t* actions) __asm__(
    "__wrap_posix_spawn_file_actions_init");
int realInitAttributes(posix_spawnattr_t* attributes) __asm__("__real_posix_spawnattr_init");
int wrappedInitAttributes(posix_spawnattr_t* attributes) __asm__("__wrap_posix_spawnattr_init");
int realAddOpen(posix_spawn_file_actions_t* actions, int descriptor, const char* path, int flags,
                mode_t mode) __asm__("__real_posix_spawn_file_actions_addopen");
int wrappedAddOpen(posix_spawn_file_actions_t* actions, int descriptor, const char* path, int flags,
                   mode_t mode) __asm__("__wrap_posix_spawn_file_actions_addopen");
int realAddCloseFrom(posix_spawn_file_actions_t* actions,
                     int first) __asm__("__real_posix_spawn_file_actions_addclosefrom_np");
int wrappedAddCloseFrom(posix_spawn_file_actions_t* actions,
                        int first) __asm__("__wrap_posix_spawn_file_actions_addclosefrom_np");

int realReadAttributes(pthread_t thread,
                       pthread_attr_t* attributes) __asm__("__real_pthread_getattr_np");
int wrappedReadAttributes(pthread_t thread,
                          pthread_attr_t* attributes) __asm__("__wrap_pthread_getattr_np");
int realReadStack(const pthread_attr_t* attributes, void** lowest,
                  std::size_t* size) __asm__("__real_pthread_attr_getstack");
int wrappedReadStack(const pthread_attr_t* attributes, void** lowest,
                     std::size_t* size) __asm__("__wrap_pthread_attr_getstack");
int realSetPointer(pthread_key_t key, const void* pointer) __asm__("__real_pthread_setspecific");
int wrappedSetPointer(pthread_key_t key, const void* pointer) __asm__("__wrap_pthread_setspecific");
int realLock(pthread_mutex_t* mutex) __asm__("__real_pthread_mutex_lock");
int wrappedLock(pthread_mutex_t* mutex) __asm__("__wrap_pthread_mutex_lock");

int wrappedSetPointer(pthread_key_t key, const void* pointer) {
    return failsNow(Call::SetThreadPointer) ? ENOMEM : realSetPointer(key, pointer);
}

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
    const bool interrupted = failsNow(Call::WaitInterrupted);
    if (!interrupted && !failsNow(Call::Wait)) return realPoll(descriptors, count, milliseconds);
    errno = interrupted ? EINTR : EINVAL;
    return -1;
}

int wrappedWaitid(idtype_t kind, id_t id, siginfo_t* info, int options) {
    const bool interrupted = failsNow(Call::QueryInterrupted);
    if (!interrupted && !failsNow(Call::QueryExitCode)) return realWaitid(kind, id, info, options);
    errno = interrupted ? EINTR : EINVAL;
    return -1;
}

int wrappedFstat(int descriptor, struct stat* information) {
    if (!failsNow(Call::DescribeFile)) return realFstat(descriptor, information);
    errno = EIO;
    return -1;
}

int wrappedInitActions(posix_spawn_file_actions_t* actions) {
    return failsNow(Call::PrepareSpawn) ? ENOMEM : realInitActions(actions);
}

int wrappedInitAttributes(posix_spawnattr_t* attributes) {
    return failsNow(Call::PrepareSpawn) ? ENOMEM : realInitAttributes(attributes);
}

int wrappedAddOpen(posix_spawn_file_actions_t* actions, int descriptor, const char* path, int flags,
                   mode_t mode) {
    return failsNow(Call::PrepareSpawn) ? ENOMEM
                                        : realAddOpen(actions, descriptor, path, flags, mode);
}

int wrappedAddCloseFrom(posix_spawn_file_actions_t* actions, int first) {
    return failsNow(Call::PrepareSpawn) ? ENOMEM : realAddCloseFrom(actions, first);
}

int wrappedReadAttributes(pthread_t thread, pthread_attr_t* attributes) {
    return failsNow(Call::ReadThreadAttributes) ? ENOMEM : realReadAttributes(thread, attributes);
}

int wrappedReadStack(const pthread_attr_t* attributes, void** lowest, std::size_t* size) {
    return failsNow(Call::ReadThreadStack) ? EINVAL : realReadStack(attributes, lowest, size);
}

int wrappedLock(pthread_mutex_t* mutex) {
    return failsNow(Call::LockMutex) ? EAGAIN : realLock(mutex);
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
