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

#include "strata_repgenlib/rgen.h"

namespace cli {

/// Starts to listen; to be called once, before any thread is started.
void listenForInterrupts();

/// Raises the CommandError of an interruption when there was one.
void throwIfInterrupted();

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

/// A file that is removed when this goes, and when the program is interrupted, unless it was
/// renamed to its final name before.
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

    /// Gives the file its final name, in place of one that is there. Raises a CommandError.
    void renameTo(const std::string& finalPath);

private:
    std::string path_;
};

/// A new folder for temporary files, which goes with everything in it in the same way.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// The UTF-8 path of a file in it.
    std::string file(const std::string& name) const;

private:
    std::string path_;
};

/// `path` with a mark of this process before its ending: "report.part-4711.html".
std::string temporaryPathBeside(const std::string& path);

}  // namespace cli
