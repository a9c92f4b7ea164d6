// The output file, which is replaced by a complete PDF or not at all, and the error text next to
// it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "process/guardian.h"

namespace vellum {

/// The temporary file next to the output that the engine writes. The destructor removes it unless
/// it was delivered.
class PartFile {
public:
    /// Creates it, empty. Its name does not contain the name of the output, which may already have
    /// the maximum length. Throws a Failure when the output cannot be written.
    PartFile(const std::filesystem::path& output, tools::Guardian& guardian);
    ~PartFile();
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    const std::filesystem::path& path() const { return part_; }

    /// The bytes that the engine has written so far.
    std::uintmax_t size() const;

    bool isStarted() const { return size() > 0; }

    /// Returns whether the engine has written a complete PDF.
    bool isComplete() const;

    /// Renames the file to the output. Calls `lastCheck`, which may throw a Failure, directly
    /// before. Throws a Failure.
    void deliver(const std::function<void()>& lastCheck);

private:
    std::filesystem::path output_;
    std::filesystem::path part_;
};

/// Reports an error as VELLUM_ON_ERROR says: "text" (default) writes the message to a file next to
/// the output, with ".error.txt" appended to its name, which is shortened if necessary; "page" also
/// replaces the output by a PDF with the message, if `mayWriteOutput`; "none" does nothing.
/// Failures of all this are ignored.
void writeErrorReport(const std::filesystem::path& output, const std::string& message,
                      bool mayWriteOutput);

/// Removes the error text of an earlier failure.
void removeErrorText(const std::filesystem::path& output);

}  // namespace vellum
