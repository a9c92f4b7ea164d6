// File-system operations with UTF-8 paths, implemented with the throwing functions of
// Boost.Filesystem. Failures other than those documented throw
// boost::filesystem::filesystem_error; a path that is not valid UTF-8 throws std::range_error
// ("bad conversion").
//
// SPDX-License-Identifier: MIT
#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <string>
#include <vector>

namespace rgen {

boost::filesystem::path toNativePath(const std::string& path);

/// True for any file system object, not only for a folder.
bool pathExists(const std::string& path);

/// Creates one level. False only if the folder exists already.
bool createDirectory(const std::string& path);

/// Removes a file or an empty folder. False if nothing existed.
bool removeFile(const std::string& path);

bool isDirectory(const std::string& path);

/// Size in bytes.
std::uint64_t fileSize(const std::string& path);

/// How makeRoomForFile treats an empty folder.
enum class EmptyFolder { Remove, Keep };

/// Removes the object at `path` to make room for a new file. True if nothing existed. False if it
/// cannot be removed for any reason, and for objects that are never removed: devices, pipes,
/// sockets, and folders with EmptyFolder::Keep.
bool makeRoomForFile(const std::string& path, EmptyFolder emptyFolder = EmptyFolder::Remove);

/// Clean-up: removes a file if it exists and can be removed. Never throws.
void removeQuietly(const std::string& path) noexcept;

/// Clean-up that allocates no memory: the destructor removes the file if the object is armed.
/// Failures are ignored.
class FileRemover {
public:
    explicit FileRemover(const std::string& path) : path_(toNativePath(path)) {}
    ~FileRemover();
    FileRemover(const FileRemover&) = delete;
    FileRemover& operator=(const FileRemover&) = delete;

    const boost::filesystem::path& path() const { return path_; }
    void arm() { isArmed_ = true; }
    void disarm() { isArmed_ = false; }

private:
    boost::filesystem::path path_;
    bool isArmed_ = false;
};

/// Opens the remover's file with `open`, which returns whether it succeeded. If there is no memory
/// for its buffer, a stream throws std::bad_alloc after it has created the file; this function then
/// arms the remover.
template <typename Open>
bool openForWriting(FileRemover& file, Open open) {
    try {
        return open(file.path().c_str());
    } catch (...) {
        file.arm();
        throw;
    }
}

/// Creates or overwrites a file. False if it cannot be opened, and for devices, pipes and sockets;
/// errors after opening it are ignored.
bool writeFile(const std::string& path, const std::vector<std::uint8_t>& bytes);

/// Reads a file. False if it cannot be opened, and for folders, devices, pipes and sockets.
bool readFile(const std::string& path, std::string& bytes);

}  // namespace rgen
