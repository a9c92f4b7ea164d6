// SPDX-License-Identifier: MIT
#include <windows.h>

#include <array>
#include <cstddef>
#include <filesystem>
#include <map>
#include <string>

#include "base/paths.h"
#include "preview/folder_watcher.h"

namespace cli {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// A program that keeps a file open for writing is not waited for any longer.
constexpr std::chrono::seconds longestWriting{2};
/// How often files that are being written are looked at.
constexpr std::chrono::milliseconds pause{5};

constexpr DWORD wantedNotices = FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_DIR_NAME |
                                FILE_NOTIFY_CHANGE_LAST_WRITE | FILE_NOTIFY_CHANGE_SIZE;

/// Tells whether a program has the file open for writing. The system has no notice of its end.
bool isBeingWritten(const std::string& path) {
    const HANDLE file =
        CreateFileW(fs::u8path(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_SHARING_VIOLATION;
    CloseHandle(file);
    return false;
}

/// One folder with its pending request for notices.
class WatchedFolder {
public:
    explicit WatchedFolder(std::string folder)
        : folder_(std::move(folder)), event_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
        handle_ =
            CreateFileW(fs::u8path(folder_).c_str(), FILE_LIST_DIRECTORY,
                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                        OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OVERLAPPED, nullptr);
        request();
    }
    ~WatchedFolder() {
        if (isPending_) {
            DWORD size = 0;
            CancelIoEx(handle_, &overlapped_);
            GetOverlappedResult(handle_, &overlapped_, &size, TRUE);
        }
        if (handle_ != INVALID_HANDLE_VALUE) CloseHandle(handle_);
        CloseHandle(event_);
    }
    WatchedFolder(const WatchedFolder&) = delete;
    WatchedFolder& operator=(const WatchedFolder&) = delete;

    bool isWatched() const { return isPending_; }
    HANDLE event() const { return event_; }

    /// Adds what has happened and asks for more.
    void collect(FolderChanges& changes) {
        DWORD size = 0;
        if (!isPending_) return;
        if (GetOverlappedResult(handle_, &overlapped_, &size, FALSE) == 0) {
            if (GetLastError() == ERROR_IO_INCOMPLETE) return;
            // Such as a folder that was removed.
            isPending_ = false;
            changes.isIncomplete = true;
            return;
        }
        isPending_ = false;
        if (size == 0) changes.isIncomplete = true;
        addNotices(size, changes);
        request();
    }

private:
    void request() {
        if (handle_ == INVALID_HANDLE_VALUE) return;
        ResetEvent(event_);
        overlapped_ = {};
        overlapped_.hEvent = event_;
        isPending_ =
            ReadDirectoryChangesW(handle_, buffer_.data(), static_cast<DWORD>(buffer_.size()),
                                  FALSE, wantedNotices, nullptr, &overlapped_, nullptr) != 0;
    }

    void addNotices(DWORD size, FolderChanges& changes) const {
        for (std::size_t at = 0; at < size;) {
            const auto* const notice =
                reinterpret_cast<const FILE_NOTIFY_INFORMATION*>(&buffer_[at]);
            const std::wstring name(notice->FileName, notice->FileNameLength / sizeof(wchar_t));
            changes.files.insert(joinedPath(folder_, fs::path(name).u8string()));
            if (notice->NextEntryOffset == 0) return;
            at += notice->NextEntryOffset;
        }
    }

    std::string folder_;
    HANDLE event_;
    HANDLE handle_ = INVALID_HANDLE_VALUE;
    OVERLAPPED overlapped_ = {};
    bool isPending_ = false;
    alignas(FILE_NOTIFY_INFORMATION) std::array<char, 16384> buffer_{};
};

}  // namespace

struct FolderWatcher::State {
    std::map<std::string, std::unique_ptr<WatchedFolder>> folders;
    /// Changed files that a program still writes, and when that is no longer waited for.
    std::map<std::string, Clock::time_point> written;

    void sleep(std::chrono::milliseconds longest);
    void takeComplete(FolderChanges& changes);
};

void FolderWatcher::State::sleep(std::chrono::milliseconds longest) {
    std::vector<HANDLE> events;
    for (const auto& [name, folder] : folders) {
        if (folder->isWatched() && events.size() < MAXIMUM_WAIT_OBJECTS)
            events.push_back(folder->event());
    }
    const auto time = static_cast<DWORD>((written.empty() ? longest : pause).count());
    if (events.empty()) {
        Sleep(time);
    } else {
        WaitForMultipleObjects(static_cast<DWORD>(events.size()), events.data(), FALSE, time);
    }
}

/// Leaves the files that are complete in `changes`.
void FolderWatcher::State::takeComplete(FolderChanges& changes) {
    const Clock::time_point now = Clock::now();
    for (const std::string& path : changes.files)
        written.emplace(path, now + longestWriting);
    changes.files.clear();
    for (auto each = written.begin(); each != written.end();) {
        if (now < each->second && isBeingWritten(each->first)) {
            ++each;
            continue;
        }
        changes.files.insert(each->first);
        each = written.erase(each);
    }
}

FolderWatcher::FolderWatcher() : state_(std::make_unique<State>()) {}

FolderWatcher::~FolderWatcher() = default;

bool FolderWatcher::watch(const std::set<std::string>& folders) {
    auto& watched = state_->folders;
    for (auto each = watched.begin(); each != watched.end();) {
        const bool isWanted = folders.count(each->first) > 0 && each->second->isWatched();
        each = isWanted ? std::next(each) : watched.erase(each);
    }
    bool all = folders.size() <= MAXIMUM_WAIT_OBJECTS;
    for (const std::string& folder : folders) {
        std::unique_ptr<WatchedFolder>& entry = watched[folder];
        if (!entry) entry = std::make_unique<WatchedFolder>(folder);
        all = entry->isWatched() && all;
    }
    return all;
}

FolderChanges FolderWatcher::wait(std::chrono::milliseconds longest) {
    FolderChanges changes;
    state_->sleep(longest);
    for (const auto& [name, folder] : state_->folders)
        folder->collect(changes);
    state_->takeComplete(changes);
    return changes;
}

}  // namespace cli
