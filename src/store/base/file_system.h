// The file system as the library sees it: UTF-8 path texts in, Boost.Filesystem underneath in its
// throwing forms. Failures other than those named throw boost::filesystem::filesystem_error, and
// text that is not valid UTF-8 throws std::range_error ("bad conversion").
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

/// Creates one level. False only when the folder has come into being meanwhile.
bool createDirectory(const std::string& path);

/// Removes a file or an empty folder. False when nothing was there.
bool removeFile(const std::string& path);

bool isDirectory(const std::string& path);

/// Size in bytes.
std::uint64_t fileSize(const std::string& path);

/// What makeRoomForFile does with a folder that has nothing in it.
enum class EmptyFolder { Goes, Stays };

/// Removes what is at `path` to make room for a new file. False when it cannot be removed, in
/// whichever way that failed, and for what is left alone: devices, pipes, sockets, folders that
/// stay. True when nothing was there.
bool makeRoomForFile(const std::string& path, EmptyFolder emptyFolder = EmptyFolder::Goes);

/// Clean-up: removes a file if it is there and can be removed. Never throws.
void removeQuietly(const std::string& path) noexcept;

/// Clean-up that needs no memory: removes its file when it goes, if it is armed by then. Failures
/// are ignored.
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

/// Opens the remover's file by `open`, which gives whether it succeeded. Without memory for its
/// buffer a stream throws std::bad_alloc when the file is there already; the remover is then armed.
template <typename Open>
bool openForWriting(FileRemover& file, Open open) {
    try {
        return open(file.path().c_str());
    } catch (...) {
        file.arm();
        throw;
    }
}

/// Creates or overwrites a file. False when it cannot be opened, and for devices, pipes and
/// sockets; what happens to the bytes after the opening is not examined.
bool writeFile(const std::string& path, const std::vector<std::uint8_t>& bytes);

/// Reads a file. False when there is none that can be opened, and for folders, devices, pipes and
/// sockets.
bool readFile(const std::string& path, std::string& bytes);

}  // namespace rgen
