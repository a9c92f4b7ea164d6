// Loaded into rgen, simulates a file system without locks.
//
// SPDX-License-Identifier: MIT
#include <dlfcn.h>
#include <fcntl.h>

#include <cerrno>
#include <cstdarg>

namespace {

using Control = int (*)(int, int, ...);

int control(const char* name, int file, int command, void* argument) {
    if (command == F_SETLK || command == F_SETLKW) {
        errno = ENOLCK;
        return -1;
    }
    return reinterpret_cast<Control>(dlsym(RTLD_NEXT, name))(file, command, argument);
}

void* argumentOf(va_list list) {
    return va_arg(list, void*);
}

}  // namespace

extern "C" int fcntl(int file, int command, ...) {
    va_list list;
    va_start(list, command);
    void* const argument = argumentOf(list);
    va_end(list);
    return control("fcntl", file, command, argument);
}

extern "C" int fcntl64(int file, int command, ...) {
    va_list list;
    va_start(list, command);
    void* const argument = argumentOf(list);
    va_end(list);
    return control("fcntl64", file, command, argument);
}
