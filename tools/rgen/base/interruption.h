// Ctrl-C. While an InterruptGuard exists, the first Ctrl-C cancels generations and the command ends
// in the normal way. Without a guard, at the second Ctrl-C and at SIGTERM, the program removes its
// temporary files and ends at once.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "base/part_folder.h"
#include "strata_repgenlib/rgen_host.h"

namespace cli {

/// Starts to listen for Ctrl-C; to be called once, before any thread is started.
void listenForInterrupts();

/// Throws the CommandError of an interruption when there was one.
void throwIfInterrupted();
bool isInterrupted();

/// Marks code that ends in the normal way on Ctrl-C. Generations of the generator are cancelled.
class InterruptGuard {
public:
    explicit InterruptGuard(RgenReportGenerator* generator = nullptr);
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;

private:
    void cancelWhenInterrupted();
    void noteRunningTemplate();

    RgenReportGenerator* generator_;
    bool over_ = false;
    int cancellations_ = 0;
    std::thread canceller_;
};

/// Marks code that may block, such as reading a pipe: any Ctrl-C ends the program at once, even
/// with an InterruptGuard. The constructor throws the CommandError of an earlier interruption.
class ImmediateInterrupt {
public:
    ImmediateInterrupt();
    ~ImmediateInterrupt();
    ImmediateInterrupt(const ImmediateInterrupt&) = delete;
    ImmediateInterrupt& operator=(const ImmediateInterrupt&) = delete;

private:
    int guards_;
};

/// A file that the destructor, or an interruption, removes unless keep() was called.
class TemporaryFile {
public:
    /// `path` is UTF-8; the file need not exist yet.
    explicit TemporaryFile(std::string path);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& path() const { return path_; }

    void keep();

private:
    std::string path_;
};

/// A new folder for unfinished files. The destructor or an interruption removes it with its
/// content; if the program is killed, a later run does.
class TemporaryFolder {
public:
    /// Creates it in the system's folder for temporary files. Throws a CommandError.
    TemporaryFolder();
    /// Creates it next to `target`, so that a file in it can be renamed to `target` in one step.
    /// Throws std::system_error.
    explicit TemporaryFolder(const std::string& target);
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// The UTF-8 path of a file in it.
    std::string file(const std::string& name) const { return folder_.file(name); }

    /// Renames a file of this folder to its final name and replaces a file or link of that name;
    /// the rights of a replaced file are kept. Throws a CommandError.
    void deliver(const std::string& file, const std::string& target) const;

private:
    PartFolder folder_;
};

}  // namespace cli
