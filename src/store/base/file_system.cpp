// File-system operations. std::filebuf is opened with a native path, which is UTF-16 on Windows.
//
// SPDX-License-Identifier: MIT
#include "store/base/file_system.h"

#include <boost/filesystem/operations.hpp>
#include <exception>
#include <fstream>

#include "platform/platform.h"

namespace rgen {
namespace {

namespace fs = boost::filesystem;

/// A file that is read or written in one call, without a buffer. Failures after opening it are not
/// reported: fewer bytes are read or written then.
class UnbufferedFile {
public:
    bool open(const fs::path::value_type* path, std::ios::openmode mode) {
        buffer_.pubsetbuf(nullptr, 0);
        return buffer_.open(path, mode | std::ios::binary) != nullptr;
    }

    /// False for a file that cannot be positioned.
    bool findSize(std::size_t& size) {
        const std::streamoff end = buffer_.pubseekoff(0, std::ios::end);
        if (end < 0) return false;
        size = static_cast<std::size_t>(end);
        return true;
    }

    std::size_t readFromStart(char* bytes, std::size_t size) try {
        buffer_.pubseekoff(0, std::ios::beg);
        return static_cast<std::size_t>(buffer_.sgetn(bytes, static_cast<std::streamsize>(size)));
    } catch (const std::exception&) {
        return 0;
    }

    void write(const std::uint8_t* bytes, std::size_t size) try {
        buffer_.sputn(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(size));
    } catch (const std::exception&) {
        return;
    }

private:
    std::filebuf buffer_;
};

bool objectExists(const fs::file_status& status) {
    return status.type() != fs::status_error && status.type() != fs::file_not_found;
}

bool isSpecialFile(const fs::file_status& status) {
    switch (status.type()) {
        case fs::block_file:
        case fs::character_file:
        case fs::fifo_file:
        case fs::socket_file:
            return true;
        default:
            return false;
    }
}

}  // namespace

fs::path toNativePath(const std::string& path) {
    return {platform::toWidePath(path)};
}

bool pathExists(const std::string& path) {
    return objectExists(fs::status(toNativePath(path)));
}

bool createDirectory(const std::string& path) {
    return fs::create_directory(toNativePath(path));
}

bool removeFile(const std::string& path) {
    return fs::remove(toNativePath(path));
}

// On purpose: no caller; makeRoomForFile checks the type of the file itself.
bool isDirectory(const std::string& path) {
    return fs::status(toNativePath(path)).type() == fs::directory_file;
}

// On purpose: no caller; readFile gets the size from the open file.
std::uint64_t fileSize(const std::string& path) {
    return fs::file_size(toNativePath(path));
}

bool makeRoomForFile(const std::string& path, EmptyFolder emptyFolder) {
    const fs::path nativePath = toNativePath(path);
    const fs::file_status status = fs::status(nativePath);
    if (!objectExists(status)) return true;
    if (isSpecialFile(status)) return false;
    if (status.type() == fs::directory_file && emptyFolder == EmptyFolder::Keep) return false;
    try {
        return fs::remove(nativePath);
    } catch (const fs::filesystem_error&) {
        return false;
    }
}

void removeQuietly(const std::string& path) noexcept {
    try {
        removeFile(path);
    } catch (const std::exception&) {
        // On purpose: a failed clean-up does not change the result of the operation.
    }
}

FileRemover::~FileRemover() {
    if (!isArmed_) return;
    try {
        boost::system::error_code ignored;
        fs::remove(path_, ignored);
    } catch (const std::exception&) {
        // On purpose: as removeQuietly.
    }
}

bool writeFile(const std::string& path, const std::vector<std::uint8_t>& bytes) {
    if (platform::namesSpecialFile(path)) return false;
    FileRemover remover(path);
    UnbufferedFile file;
    const bool isOpen = openForWriting(remover, [&file](const auto* nativePath) {
        return file.open(nativePath, std::ios::out | std::ios::trunc);
    });
    if (!isOpen) return false;
    // On purpose: errors of writing and closing are ignored, so a full disk is not detected.
    file.write(bytes.data(), bytes.size());
    return true;
}

bool readFile(const std::string& path, std::string& bytes) {
    const fs::path nativePath = toNativePath(path);
    // Not only regular files: on Windows files in cloud folders and deduplicated files have
    // reparse points of special kinds.
    const fs::file_status status = fs::status(nativePath);
    if (status.type() == fs::directory_file || isSpecialFile(status)) return false;
    UnbufferedFile file;
    std::size_t size = 0;
    if (!file.open(nativePath.c_str(), std::ios::in) || !file.findSize(size)) return false;
    bytes.resize(size);
    bytes.resize(file.readFromStart(bytes.data(), bytes.size()));
    return true;
}

}  // namespace rgen
