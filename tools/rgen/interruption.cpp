// The listener runs on a thread of the system layer. It never calls the library itself: rgen_cancel
// waits for a template that runs, and the next Ctrl-C must be heard meanwhile.
//
// SPDX-License-Identifier: MIT
#include "interruption.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <system_error>

#include "child_process.h"
#include "command_error.h"
#include "host_system.h"

namespace cli {
namespace {

// What the listener shares with the commands. Never destroyed: the listener outlives main.
struct State {
    std::mutex mutex;
    std::condition_variable changed;
    bool interrupted = false;
    int guards = 0;
    std::set<std::string> temporaryFiles;
    std::set<std::string> temporaryFolders;
};

State& state() {
    static State& shared = *new State;
    return shared;
}

void removeQuietly(const std::string& path) {
    std::error_code ignored;
    std::filesystem::remove(std::filesystem::u8path(path), ignored);
}

void removeFolderQuietly(const std::string& path) {
    std::error_code ignored;
    std::filesystem::remove_all(std::filesystem::u8path(path), ignored);
}

std::string makeFolder() {
    try {
        return tools::makePrivateFolder("rgen").u8string();
    } catch (const std::system_error& error) {
        throw CommandError(ExitCode::Environment,
                           "cannot make a temporary folder: " + error.code().message(),
                           "check the folder that TMPDIR names");
    }
}

void cancelAll(RgenReportGenerator* generator) {
    try {
        rgen_cancel(generator, nullptr);
    } catch (...) {
        // Memory is exhausted; the next round tries again.
    }
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
    for (const std::string& path : shared.temporaryFolders)
        removeFolderQuietly(path);
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

/// The request is repeated: a generation that has not registered yet would not see the first one.
/// Waiting without a limit would need a newer C++ library than the oldest that the program runs on.
void InterruptGuard::cancelWhenInterrupted() {
    constexpr auto longPause = std::chrono::hours(1);
    constexpr auto pause = std::chrono::milliseconds(50);
    State& shared = state();
    std::unique_lock lock(shared.mutex);
    const auto isOverOrInterrupted = [&] { return over_ || shared.interrupted; };
    while (!shared.changed.wait_for(lock, longPause, isOverOrInterrupted)) {
    }
    while (!over_) {
        lock.unlock();
        cancelAll(generator_);
        lock.lock();
        shared.changed.wait_for(lock, pause, [&] { return over_; });
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

void TemporaryFile::renameTo(const std::string& finalPath) {
    const std::lock_guard lock(state().mutex);
    const std::filesystem::path target = std::filesystem::u8path(finalPath);
    std::error_code failure;
    const std::filesystem::file_status old = std::filesystem::status(target, failure);
    if (std::filesystem::is_regular_file(old)) {
        std::filesystem::permissions(std::filesystem::u8path(path_), old.permissions(), failure);
    }
    std::filesystem::rename(std::filesystem::u8path(path_), target, failure);
    if (failure) {
        throw CommandError(ExitCode::Unverified,
                           "cannot write \"" + finalPath + "\": " + failure.message(),
                           "check whether the file may be replaced");
    }
    state().temporaryFiles.erase(path_);
}

TemporaryFolder::TemporaryFolder() : path_(makeFolder()) {
    const std::lock_guard lock(state().mutex);
    state().temporaryFolders.insert(path_);
}

TemporaryFolder::~TemporaryFolder() {
    const std::lock_guard lock(state().mutex);
    state().temporaryFolders.erase(path_);
    removeFolderQuietly(path_);
}

std::string TemporaryFolder::file(const std::string& name) const {
    return (std::filesystem::u8path(path_) / std::filesystem::u8path(name)).u8string();
}

std::string temporaryPathBeside(const std::string& path) {
    const std::filesystem::path name = std::filesystem::u8path(path).filename();
    const std::string folder = path.substr(0, path.size() - name.u8string().size());
    // Names have at most 255 bytes, and the converter's are longer still.
    constexpr std::size_t longest = 200;
    const std::string stem = name.u8string().size() > longest ? "report" : name.stem().u8string();
    return folder + stem + ".part-" + std::to_string(tools::processNumber()) +
           name.extension().u8string();
}

}  // namespace cli
