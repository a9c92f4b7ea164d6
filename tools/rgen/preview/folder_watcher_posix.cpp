// SPDX-License-Identifier: MIT
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <map>
#include <system_error>
#include <thread>

#include "base/paths.h"
#include "preview/folder_watcher.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t wantedNotices = IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE |
                                        IN_CREATE | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF |
                                        IN_ONLYDIR;

/// A new file is not complete yet, unless it is a link to one that existed.
bool isComplete(const std::string& path, std::uint32_t notice) {
    if ((notice & IN_CREATE) == 0 || (notice & IN_ISDIR) != 0) return true;
    std::error_code ignored;
    return fs::is_symlink(fs::u8path(path), ignored) ||
           fs::hard_link_count(fs::u8path(path), ignored) > 1;
}

}  // namespace

struct FolderWatcher::State {
    int queue = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    /// A folder may have been given under several names.
    std::map<int, std::set<std::string>> folders;

    bool add(const std::string& folder);
    void removeAllBut(const std::set<std::string>& wanted);
    void add(const inotify_event& notice, FolderChanges& changes);
};

bool FolderWatcher::State::add(const std::string& folder) {
    const int watch = inotify_add_watch(queue, folder.c_str(), wantedNotices);
    if (watch >= 0) folders[watch].insert(folder);
    return watch >= 0;
}

void FolderWatcher::State::removeAllBut(const std::set<std::string>& wanted) {
    for (auto each = folders.begin(); each != folders.end();) {
        std::set<std::string> left;
        std::set_intersection(each->second.begin(), each->second.end(), wanted.begin(),
                              wanted.end(), std::inserter(left, left.end()));
        each->second = std::move(left);
        if (!each->second.empty()) {
            ++each;
            continue;
        }
        inotify_rm_watch(queue, each->first);
        each = folders.erase(each);
    }
}

void FolderWatcher::State::add(const inotify_event& notice, FolderChanges& changes) {
    if ((notice.mask & IN_Q_OVERFLOW) != 0) changes.isIncomplete = true;
    const auto found = folders.find(notice.wd);
    if (found == folders.end()) return;
    if ((notice.mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED)) != 0) {
        changes.isIncomplete = true;
        if ((notice.mask & IN_IGNORED) == 0) inotify_rm_watch(queue, notice.wd);
        folders.erase(found);
        return;
    }
    if (notice.len == 0) return;
    for (const std::string& folder : found->second) {
        std::string path = joinedPath(folder, notice.name);
        if (isComplete(path, notice.mask)) changes.files.insert(std::move(path));
    }
}

FolderWatcher::FolderWatcher() : state_(std::make_unique<State>()) {}

FolderWatcher::~FolderWatcher() {
    if (state_->queue >= 0) close(state_->queue);
}

bool FolderWatcher::watch(const std::set<std::string>& folders) {
    if (state_->queue < 0) return false;
    state_->removeAllBut(folders);
    bool all = true;
    for (const std::string& folder : folders)
        all = state_->add(folder) && all;
    return all;
}

FolderChanges FolderWatcher::wait(std::chrono::milliseconds longest) {
    FolderChanges changes;
    if (state_->queue < 0) {
        std::this_thread::sleep_for(longest);
        return changes;
    }
    pollfd waiting = {state_->queue, POLLIN, 0};
    if (poll(&waiting, 1, static_cast<int>(longest.count())) <= 0) return changes;
    alignas(inotify_event) std::array<char, 16384> buffer{};
    for (ssize_t size = 0; (size = read(state_->queue, buffer.data(), buffer.size())) > 0;) {
        for (ssize_t at = 0; at < size;) {
            const auto* const notice =
                reinterpret_cast<const inotify_event*>(&buffer[static_cast<std::size_t>(at)]);
            state_->add(*notice, changes);
            at += static_cast<ssize_t>(sizeof *notice + notice->len);
        }
    }
    return changes;
}

}  // namespace cli
