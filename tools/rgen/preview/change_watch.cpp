// The system's notices make a change visible at once. Besides, times and sizes of the files are
// compared now and then: network file systems do not send notices, and a link's target may be in
// another folder.
//
// SPDX-License-Identifier: MIT
#include "preview/change_watch.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>
#include <utility>

#include "base/paths.h"
#include "preview/folder_watcher.h"

namespace cli {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

constexpr Milliseconds pauseWithNotices{1000};
constexpr Milliseconds pauseWithoutNotices{200};
/// Files whose times change are complete when they have not changed for this long.
constexpr Milliseconds quietTime{50};
/// Some editors remove a file before they write it again.
constexpr Milliseconds longestAbsence{150};
constexpr Milliseconds shortPause{5};

/// Time of the last write and size of each file.
using FileStates = std::map<std::string, std::pair<fs::file_time_type, std::uintmax_t>>;

FileStates statesOf(const std::vector<std::string>& files) {
    FileStates states;
    for (const std::string& file : files) {
        std::error_code failure;
        const fs::path path = fs::u8path(file);
        const fs::file_time_type time = fs::last_write_time(path, failure);
        if (failure) continue;
        states[file] = {time, fs::file_size(path, failure)};
    }
    return states;
}

std::set<std::string> foldersOf(const std::vector<std::string>& files) {
    std::set<std::string> folders;
    for (const std::string& file : files)
        folders.insert(folderOf(file));
    return folders;
}

/// The files that are there, and what the system says about them.
class WatchedFiles {
public:
    explicit WatchedFiles(const ChangeWatch::Files& files) : files_(files) { look(files_()); }

    /// Waits for a while; tells whether one of the files has changed.
    bool hasChanged() {
        const FolderChanges changes =
            watcher_.wait(hasNotices_ ? pauseWithNotices : pauseWithoutNotices);
        const bool isNoticed = concerns(changes, current_);
        if (isNoticed) awaitReturn();
        const std::vector<std::string> next = files_();
        const bool isNew = !isNoticed && concerns(changes, next);
        const FileStates before = states_;
        look(next);
        return isNoticed || isNew || (states_ != before && awaitQuiet());
    }

private:
    void look(const std::vector<std::string>& files) {
        current_ = files;
        hasNotices_ = watcher_.watch(foldersOf(current_));
        states_ = statesOf(current_);
    }

    static bool concerns(const FolderChanges& changes, const std::vector<std::string>& files) {
        if (changes.isIncomplete) return true;
        return std::any_of(files.begin(), files.end(), [&changes](const std::string& file) {
            const std::string name = fs::u8path(file).filename().u8string();
            return changes.files.count(joinedPath(folderOf(file), name)) > 0;
        });
    }

    /// Waits until the files are back that were there.
    void awaitReturn() {
        const Clock::time_point end = Clock::now() + longestAbsence;
        const auto isMissing = [](const auto& state) { return !exists(state.first); };
        while (Clock::now() < end && std::any_of(states_.begin(), states_.end(), isMissing))
            watcher_.wait(shortPause);
    }

    /// Waits until no file changes any more.
    bool awaitQuiet() {
        for (FileStates before; before != states_;) {
            before = states_;
            watcher_.wait(quietTime);
            look(files_());
        }
        return true;
    }

    const ChangeWatch::Files& files_;
    FolderWatcher watcher_;
    std::vector<std::string> current_;
    FileStates states_;
    bool hasNotices_ = false;
};

}  // namespace

ChangeWatch::ChangeWatch(Files files, std::function<void()> changed)
    : files_(std::move(files)), changed_(std::move(changed)), thread_([this] { run(); }) {}

ChangeWatch::~ChangeWatch() {
    isOver_ = true;
    thread_.join();
}

void ChangeWatch::run() {
    WatchedFiles files(files_);
    while (!isOver_) {
        if (files.hasChanged()) changed_();
    }
}

}  // namespace cli
