// Ctrl-C. While an InterruptGuard lives, the first one asks the library to cancel and lets the
// command end in order; otherwise, and at the second one, the program removes its temporary files
// and ends at once.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "base/part_folder.h"
#include "strata_repgenlib/rgen.h"

namespace cli {

/// Starts to listen; to be called once, before any thread is started.
void listenForInterrupts();

/// Throws the CommandError of an interruption when there was one.
void throwIfInterrupted();
bool isInterrupted();

/// Marks a stretch that ends in order. With a generator, its generations are cancelled on Ctrl-C.
class InterruptGuard {
public:
    explicit InterruptGuard(RgenReportGenerator* generator = nullptr);
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;

private:
    void cancelWhenInterrupted();

    RgenReportGenerator* generator_;
    bool over_ = false;
    std::thread canceller_;
};

/// A stretch in which the program may wait for somebody else, such as the reader of a pipe: every
/// Ctrl-C ends it at once, whatever guards there are. Throws the CommandError of an interruption
/// that came before.
class EndAtOnce {
public:
    EndAtOnce();
    ~EndAtOnce();
    EndAtOnce(const EndAtOnce&) = delete;
    EndAtOnce& operator=(const EndAtOnce&) = delete;

private:
    int guards_;
};

/// A file that is removed when this goes, and when the program is interrupted, unless it is kept.
class TemporaryFile {
public:
    /// `path` is UTF-8; the file need not exist yet.
    explicit TemporaryFile(std::string path);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& path() const { return path_; }

    /// Lets the file stay.
    void keep();

private:
    std::string path_;
};

/// A new folder for files that are not finished, which goes with everything in it in the same way,
/// or with a later run when the program is killed.
class TemporaryFolder {
public:
    /// In the system's folder for temporary files. Throws a CommandError.
    TemporaryFolder();
    /// Beside `target`, so that a file in it can take that name in one step. Throws
    /// std::system_error.
    explicit TemporaryFolder(const std::string& target);
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// The UTF-8 path of a file in it.
    std::string file(const std::string& name) const { return folder_.file(name); }

    /// Gives a file of this folder its final name, in place of a file or link that is there; the
    /// rights of an older file stay. Throws a CommandError.
    void deliver(const std::string& file, const std::string& target) const;

private:
    OwnFolder folder_;
};

}  // namespace cli
