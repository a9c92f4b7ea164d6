// The system's notices about changes in folders: inotify in folder_watcher_posix.cpp,
// ReadDirectoryChangesW in folder_watcher_windows.cpp.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace cli {

struct FolderChanges {
    /// Completely written, renamed or removed: the folder as it was given, and the name in it.
    std::set<std::string> files;
    /// Notices were lost; any file may have changed.
    bool isIncomplete = false;

    bool empty() const { return files.empty() && !isIncomplete; }
};

class FolderWatcher {
public:
    FolderWatcher();
    ~FolderWatcher();
    FolderWatcher(const FolderWatcher&) = delete;
    FolderWatcher& operator=(const FolderWatcher&) = delete;

    /// Watches exactly these folders from now on, not those inside them. Returns whether the system
    /// watches all of them; it does not watch folders that do not exist.
    bool watch(const std::set<std::string>& folders);

    /// Waits for changes, at most `longest`. A file that is still being written is reported when it
    /// is closed.
    FolderChanges wait(std::chrono::milliseconds longest);

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace cli
