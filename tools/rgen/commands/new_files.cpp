// SPDX-License-Identifier: MIT
#include "commands/new_files.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <system_error>

#include "base/command_error.h"
#include "base/host_system.h"
#include "base/paths.h"
#include "base/safe_files.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void failToWrite(const std::string& path, const std::error_code& reason) {
    throw CommandError(isFullDisk(reason) ? ExitCode::Unverified : ExitCode::Environment,
                       "cannot write \"" + path + "\": " + reason.message(),
                       "check the rights of the folder and the room on the disk");
}

void makeFolderOf(const std::string& path) {
    std::error_code failure;
    fs::create_directories(fs::u8path(folderOf(path)), failure);
    if (failure) failToWrite(folderOf(path), failure);
}

}  // namespace

void requireAbsent(const std::string& path) {
    std::error_code ignored;
    if (!fs::exists(fs::symlink_status(fs::u8path(path), ignored))) return;
    throw usageError("\"" + path + "\" exists; nothing was written");
}

void NewFiles::write(const std::string& path, std::string_view content) {
    files_.push_back(std::make_unique<TemporaryFile>(path));
    makeFolderOf(path);
    try {
        writeNewFile(path, content);
    } catch (const std::system_error& error) {
        failToWrite(path, error.code());
    }
}

void NewFiles::repeat(const std::string& path, const std::string& original) {
    files_.push_back(std::make_unique<TemporaryFile>(path));
    makeFolderOf(path);
    try {
        makeSameFile(path, original);
    } catch (const std::system_error& error) {
        failToWrite(path, error.code());
    }
}

void NewFiles::keep() {
    for (const auto& file : files_)
        file->keep();
}

std::string commandArgument(const std::string& path) {
    const bool isPlain = std::all_of(path.begin(), path.end(), [](char letter) {
        constexpr std::string_view plain = "_./\\:-+@%";
        const auto byte = static_cast<unsigned char>(letter);
        return byte >= 0x80 || std::isalnum(byte) != 0 ||
               plain.find(letter) != std::string_view::npos;
    });
    if (isPlain) return path;
    const char quote = path.find_first_of("\"$`!\\") == std::string::npos ? '"' : '\'';
    return quote + path + quote;
}

}  // namespace cli
