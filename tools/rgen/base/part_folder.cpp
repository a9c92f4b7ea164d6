// The lock file is created first in a folder and removed last. So an empty folder is either new,
// and its owner notices when another run removes it, or the rest of an old one.
//
// SPDX-License-Identifier: MIT
#include "base/part_folder.h"

#include <algorithm>
#include <filesystem>
#include <random>
#include <set>
#include <system_error>
#include <vector>

#include "base/paths.h"
#include "base/safe_files.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* nameStart = "rgen.part-";
constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz234567";
constexpr std::size_t randomLetters = 10;

std::string newName() {
    std::random_device source;
    std::string name = nameStart;
    for (std::size_t i = 0; i < randomLetters; ++i)
        name += letters[source() % letters.size()];
    return name;
}

bool isNameOfOurs(const fs::path& path) {
    const std::string start = nameStart;
    std::string name;
    const fs::path file = path.filename();
    for (const fs::path::value_type letter : file.native()) {
        const bool isAscii = (static_cast<unsigned>(letter) & ~0x7FU) == 0;
        name += isAscii ? static_cast<char>(letter) : '?';
    }
    return name.size() == start.size() + randomLetters &&
           name.compare(0, start.size(), start) == 0 &&
           name.find_first_not_of(letters, start.size()) == std::string::npos;
}

/// Removes everything in a folder but the lock file.
std::vector<fs::path> contentsOf(const fs::path& folder) {
    std::vector<fs::path> entries;
    std::error_code failure;
    for (fs::directory_iterator entry(folder, failure), end; !failure && entry != end;
         entry.increment(failure)) {
        if (entry->path().filename() != lockFileName) entries.push_back(entry->path());
    }
    return entries;
}

/// The lock file stays if anything else does: it shows a later run that the folder is abandoned.
void removeLocked(const std::string& folder, std::unique_ptr<FolderLock> lock) {
    std::error_code ignored;
    const fs::path path = fs::u8path(folder);
    for (const fs::path& entry : contentsOf(path))
        fs::remove_all(entry, ignored);
    if (!contentsOf(path).empty()) return;
    // Removed before it is released, where the system allows it, so that no other run takes it
    // over.
    fs::remove(path / lockFileName, ignored);
    lock.reset();
    fs::remove(path / lockFileName, ignored);
    fs::remove(path, ignored);
}

void removeAbandoned(const fs::path& path) {
    const std::string folder = path.u8string();
    if (!isPrivateFolder(folder)) return;
    std::unique_ptr<FolderLock> lock = FolderLock::takeOver(folder);
    std::error_code ignored;
    if (lock) {
        removeLocked(folder, std::move(lock));
    } else if (fs::is_empty(path, ignored)) {
        fs::remove(path, ignored);
    }
}

/// Each folder is cleaned once only, also by a run that makes many reports.
void removeLeftoversIn(const std::string& parent) {
    static std::set<std::string> places;
    if (!places.insert(parent).second) return;
    std::vector<fs::path> found;
    std::error_code failure;
    for (fs::directory_iterator entry(fs::u8path(parent), failure), end; !failure && entry != end;
         entry.increment(failure)) {
        if (isNameOfOurs(entry->path())) found.push_back(entry->path());
    }
    std::for_each(found.begin(), found.end(), removeAbandoned);
}

}  // namespace

PartFolder::PartFolder(const std::string& parent) {
    removeLeftoversIn(parent);
    constexpr int mostAttempts = 100;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        const std::string path = joinedPath(parent, newName());
        if (!makePrivateFolder(path)) continue;
        try {
            lock_ = FolderLock::make(path);
        } catch (const std::system_error&) {
            std::error_code ignored;
            fs::remove(fs::u8path(path), ignored);
            throw;
        }
        if (lock_) {
            path_ = path;
            return;
        }
        std::error_code ignored;
        fs::remove(fs::u8path(path), ignored);
    }
    throw std::system_error(std::make_error_code(std::errc::file_exists), parent);
}

PartFolder::~PartFolder() {
    remove();
}

std::string PartFolder::file(const std::string& name) const {
    return joinedPath(path_, name);
}

void PartFolder::remove() {
    if (lock_) removeLocked(path_, std::move(lock_));
}

}  // namespace cli
