// The system calls on files, for POSIX systems.
//
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <stdexcept>

#include "floor_files.h"

namespace benchmarks {
namespace {

void require(bool done, const char* what, const std::string& path) {
    if (!done) throw std::runtime_error(std::string(what) + " " + path);
}

}  // namespace

void requireExists(const std::string& path) {
    struct stat properties {};
    require(stat(path.c_str(), &properties) == 0, "there is no", path);
}

std::string readWholeFile(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    require(file >= 0, "cannot open", path);
    struct stat properties {};
    require(fstat(file, &properties) == 0, "cannot query", path);
    std::string bytes(static_cast<std::size_t>(properties.st_size), '\0');
    const ssize_t count = read(file, bytes.data(), bytes.size());
    require(count == properties.st_size, "cannot read", path);
    close(file);
    return bytes;
}

void replaceFile(const std::string& path, const std::vector<unsigned char>& bytes) {
    struct stat properties {};
    if (stat(path.c_str(), &properties) == 0) {
        require(unlink(path.c_str()) == 0, "cannot remove", path);
    }
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    require(file >= 0, "cannot create", path);
    const ssize_t count = write(file, bytes.data(), bytes.size());
    require(count == static_cast<ssize_t>(bytes.size()), "cannot write", path);
    require(close(file) == 0, "cannot close", path);
}

}  // namespace benchmarks
