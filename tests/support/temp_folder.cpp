// Temporary folders and file operations on std::filesystem, which takes UTF-8 through u8path.
//
// SPDX-License-Identifier: MIT
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <system_error>

namespace rgen_test {
namespace {

namespace fs = std::filesystem;

fs::path toPath(const std::string& utf8) {
    return fs::u8path(utf8);
}

std::string uniqueName() {
    static std::atomic<unsigned> counter{0};
    static const unsigned processPart = std::random_device{}();
    return "rgen_" + std::to_string(processPart) + "_" + std::to_string(++counter);
}

// Everything below is made removable first: cases may have taken rights away.
void makeRemovable(const fs::path& folder) {
    std::error_code ignored;
    fs::permissions(folder, fs::perms::owner_all, fs::perm_options::add, ignored);
    for (fs::recursive_directory_iterator entry(folder, ignored), end; !ignored && entry != end;
         entry.increment(ignored)) {
        std::error_code refused;
        if (!entry->is_symlink(refused)) {
            fs::permissions(entry->path(), fs::perms::owner_all, fs::perm_options::add, refused);
        }
    }
}

}  // namespace

TempFolder::TempFolder() : TempFolder(std::string()) {}

TempFolder::TempFolder(const std::string& nameEnding) {
    const fs::path parent = fs::temp_directory_path();
    fs::path created;
    do {
        created = parent / toPath(uniqueName() + nameEnding);
    } while (!fs::create_directory(created));
    path_ = created.u8string();
}

TempFolder::~TempFolder() {
    const fs::path folder = toPath(path_);
    makeRemovable(folder);
    std::error_code ignored;
    fs::remove_all(folder, ignored);
}

std::string TempFolder::file(const std::string& relativePath) const {
    return nativePath(path_ + "/" + relativePath);
}

std::string TempFolder::dataFile(const std::string& relativePath) const {
    return file(".rgen/" + relativePath);
}

std::string nativePath(std::string path) {
    const char separator = static_cast<char>(fs::path::preferred_separator);
    std::replace(path.begin(), path.end(), '/', separator);
    return path;
}

bool exists(const std::string& path) {
    std::error_code ignored;
    return fs::exists(toPath(path), ignored);
}

bool isFolder(const std::string& path) {
    std::error_code ignored;
    return fs::is_directory(toPath(path), ignored);
}

std::string readFile(const std::string& path) {
    std::ifstream stream(toPath(path), std::ios::binary);
    if (!stream) {
        ADD_FAILURE() << "cannot read " << path;
        return {};
    }
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void writeFile(const std::string& path, const std::string& bytes) {
    std::error_code ignored;
    fs::create_directories(toPath(path).parent_path(), ignored);
    std::ofstream stream(toPath(path), std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream) {
        ADD_FAILURE() << "cannot write " << path;
    }
}

void replaceFile(const std::string& path, const std::string& bytes) {
    std::error_code ignored;
    fs::remove(toPath(path), ignored);
    writeFile(path, bytes);
}

void createFolder(const std::string& path) {
    std::error_code error;
    fs::create_directories(toPath(path), error);
    if (error) {
        ADD_FAILURE() << "cannot create " << path << ": " << error.message();
    }
}

void removeAll(const std::string& path) {
    std::error_code error;
    fs::remove_all(toPath(path), error);
    if (error) {
        ADD_FAILURE() << "cannot remove " << path << ": " << error.message();
    }
}

std::vector<std::string> namesIn(const std::string& path) {
    std::vector<std::string> names;
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(toPath(path), ignored)) {
        names.push_back(entry.path().filename().u8string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace rgen_test
