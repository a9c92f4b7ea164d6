// Creating temporary files on Linux.
//
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "engine/temporary_files.h"

namespace vellum {
namespace {

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

void createNewFile(const std::filesystem::path& path) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (file < 0) fail("cannot make a file");
    close(file);
}

void createPrivateFolder(const std::filesystem::path& path) {
    if (mkdir(path.c_str(), 0700) != 0) fail("cannot make a temporary folder");
}

}  // namespace vellum
