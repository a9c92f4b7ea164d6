// The listener runs on a thread of host_system. It never calls the library itself: rgenh_cancel
// waits for a running template, and the listener must react to the next Ctrl-C during that time.
//
// SPDX-License-Identifier: MIT
#include "base/interruption.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <system_error>
#include <utility>

#include "base/command_error.h"
#include "base/host_system.h"
#include "base/paths.h"
#include "base/safe_files.h"

namespace cli {
namespace {

// Shared by the listener and the commands. Never destroyed, because the listener outlives main.
struct State {
    std::mutex mutex;
    std::condition_variable changed;
    bool interrupted = false;
    int guards = 0;
    std::set<std::string> temporaryFiles;
    std::set<PartFolder*> temporaryFolders;
};

State& state() {
    static State& shared = *new State;
    return shared;
}

void removeQuietly(const std::string& path) {
    std::error_code ignored;
    std::filesystem::remove(std::filesystem::u8path(path), ignored);
}

/// The parent of a TemporaryFolder without a target.
std::string systemFolder() {
    return std::filesystem::temp_directory_path().u8string();
}

void handleInterrupt(bool mustEnd) {
    State& shared = state();
    const std::lock_guard lock(shared.mutex);
    const bool mayEndInOrder = !mustEnd && !shared.interrupted && shared.guards > 0;
    shared.interrupted = true;
    shared.changed.notify_all();
    if (mayEndInOrder) return;
    for (const std::string& path : shared.temporaryFiles)
        removeQuietly(path);
    for (PartFolder* const folder : shared.temporaryFolders)
        folder->remove();
    std::fputs("rgen: interrupted\n", stderr);
    std::_Exit(static_cast<int>(ExitCode::Interrupted));
}

}  // namespace

void listenForInterrupts() {
    state();
    watchInterrupts(handleInterrupt);
}

void throwIfInterrupted() {
    const std::lock_guard lock(state().mutex);
    if (state().interrupted) throw CommandError(ExitCode::Interrupted, "interrupted");
}

bool isInterrupted() {
    const std::lock_guard lock(state().mutex);
    return state().interrupted;
}

InterruptGuard::InterruptGuard(RgenReportGenerator* generator) : generator_(generator) {
    if (generator_ != nullptr) canceller_ = std::thread([this] { cancelWhenInterrupted(); });
    const std::lock_guard lock(state().mutex);
    ++state().guards;
}

InterruptGuard::~InterruptGuard() {
    {
        const std::lock_guard lock(state().mutex);
        --state().guards;
        over_ = true;
        state().changed.notify_all();
    }
    if (canceller_.joinable()) canceller_.join();
}

ImmediateInterrupt::ImmediateInterrupt() : guards_(0) {
    const std::lock_guard lock(state().mutex);
    if (state().interrupted) throw CommandError(ExitCode::Interrupted, "interrupted");
    std::swap(guards_, state().guards);
}

ImmediateInterrupt::~ImmediateInterrupt() {
    const std::lock_guard lock(state().mutex);
    state().guards += guards_;
}

/// The cancellation is repeated, because a generation that has not registered yet misses the first
/// one. A wait without time limit would need a newer C++ library than the oldest supported one.
void InterruptGuard::cancelWhenInterrupted() {
    constexpr auto longPause = std::chrono::hours(1);
    constexpr auto pause = std::chrono::milliseconds(50);
    State& shared = state();
    std::unique_lock lock(shared.mutex);
    const auto isOverOrInterrupted = [&] { return over_ || shared.interrupted; };
    while (!shared.changed.wait_for(lock, longPause, isOverOrInterrupted)) {
    }
    if (over_) return;
    std::thread notice([this] { noteRunningTemplate(); });
    while (!over_) {
        lock.unlock();
        rgenh_cancel(generator_, nullptr, nullptr);
        lock.lock();
        ++cancellations_;
        shared.changed.notify_all();
        shared.changed.wait_for(lock, pause, [&] { return over_; });
    }
    lock.unlock();
    notice.join();
}

/// A cancellation that does not return waits for a template.
void InterruptGuard::noteRunningTemplate() {
    constexpr auto patience = std::chrono::milliseconds(300);
    State& shared = state();
    std::unique_lock lock(shared.mutex);
    while (!over_) {
        const int before = cancellations_;
        const auto goesOn = [&] { return over_ || cancellations_ != before; };
        if (shared.changed.wait_for(lock, patience, goesOn)) continue;
        std::fputs("rgen: a template runs and cannot be interrupted; once more ends rgen\n",
                   stderr);
        // On Windows standard error has a buffer unless it is a terminal.
        std::fflush(stderr);
        return;
    }
}

TemporaryFile::TemporaryFile(std::string path) : path_(std::move(path)) {
    const std::lock_guard lock(state().mutex);
    state().temporaryFiles.insert(path_);
}

TemporaryFile::~TemporaryFile() {
    const std::lock_guard lock(state().mutex);
    if (state().temporaryFiles.erase(path_) > 0) removeQuietly(path_);
}

void TemporaryFile::keep() {
    const std::lock_guard lock(state().mutex);
    state().temporaryFiles.erase(path_);
}

TemporaryFolder::TemporaryFolder() try : folder_(systemFolder()) {
    const std::lock_guard lock(state().mutex);
    state().temporaryFolders.insert(&folder_);
} catch (const std::system_error& error) {
    throw CommandError(ExitCode::Environment,
                       "cannot make a temporary folder: " + error.code().message(),
                       "check the folder that TMPDIR names");
}

TemporaryFolder::TemporaryFolder(const std::string& target) : folder_(folderOf(target)) {
    const std::lock_guard lock(state().mutex);
    state().temporaryFolders.insert(&folder_);
}

TemporaryFolder::~TemporaryFolder() {
    const std::lock_guard lock(state().mutex);
    state().temporaryFolders.erase(&folder_);
    folder_.remove();
}

void TemporaryFolder::deliver(const std::string& file, const std::string& target) const {
    namespace fs = std::filesystem;
    const fs::path place = fs::u8path(target);
    try {
        flushFile(file);
        std::error_code ignored;
        const fs::file_status old = fs::symlink_status(place, ignored);
        if (fs::is_regular_file(old)) {
            fs::permissions(fs::u8path(file), old.permissions() & fs::perms::all, ignored);
        } else {
            applyMask(file);
        }
        // Under the lock, so that an interruption comes either before or after the rename.
        const std::lock_guard lock(state().mutex);
        if (state().interrupted) throw CommandError(ExitCode::Interrupted, "interrupted");
        fs::rename(fs::u8path(file), place);
    } catch (const std::system_error& error) {
        throw CommandError(ExitCode::Unverified,
                           "cannot write \"" + target + "\": " + error.code().message(),
                           "check that the file may be replaced and that the disk has room");
    }
}

}  // namespace cli
