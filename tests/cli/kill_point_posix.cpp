// Ends the program that loads this (LD_PRELOAD) before its file operation number RGEN_KILL_POINT,
// with SIGKILL.
//
// SPDX-License-Identifier: MIT
#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace {

void reach() {
    static const char* const text = std::getenv("RGEN_KILL_POINT");
    static const long point = text == nullptr ? 0 : std::strtol(text, nullptr, 10);
    static std::atomic<long> count{0};
    if (++count == point) kill(getpid(), SIGKILL);
}

/// The function of the C library that has this name.
template <typename Function>
Function* original(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

int rename(const char* from, const char* to) noexcept {
    reach();
    return original<int(const char*, const char*)>("rename")(from, to);
}

int unlink(const char* path) noexcept {
    reach();
    return original<int(const char*)>("unlink")(path);
}

int unlinkat(int folder, const char* path, int flags) noexcept {
    reach();
    return original<int(int, const char*, int)>("unlinkat")(folder, path, flags);
}

int remove(const char* path) noexcept {
    reach();
    return original<int(const char*)>("remove")(path);
}

int rmdir(const char* path) noexcept {
    reach();
    return original<int(const char*)>("rmdir")(path);
}

int mkdir(const char* path, mode_t mode) noexcept {
    reach();
    return original<int(const char*, mode_t)>("mkdir")(path, mode);
}

int fchmod(int file, mode_t mode) noexcept {
    reach();
    return original<int(int, mode_t)>("fchmod")(file, mode);
}

int flock(int file, int operation) noexcept {
    reach();
    return original<int(int, int)>("flock")(file, operation);
}

int fsync(int file) {
    reach();
    return original<int(int)>("fsync")(file);
}

FILE* fopen(const char* path, const char* mode) {
    reach();
    return original<FILE*(const char*, const char*)>("fopen")(path, mode);
}

FILE* fopen64(const char* path, const char* mode) {
    reach();
    return original<FILE*(const char*, const char*)>("fopen64")(path, mode);
}

ssize_t write(int file, const void* bytes, size_t size) {
    reach();
    return original<ssize_t(int, const void*, size_t)>("write")(file, bytes, size);
}

ssize_t writev(int file, const iovec* parts, int count) {
    reach();
    return original<ssize_t(int, const iovec*, int)>("writev")(file, parts, count);
}
}
