// The output: a whole PDF or none, and what is said of a failure beside it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "process/guardian.h"

namespace vellum {

/// The part file beside the output that an engine writes. Removed when this goes, unless delivered.
class PartFile {
public:
    /// Makes it, empty, under a name that has nothing of the output's, which may be as long as the
    /// system allows. Raises a Failure when the output cannot be written.
    PartFile(const std::filesystem::path& output, tools::Guardian& guardian);
    ~PartFile();
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    const std::filesystem::path& path() const { return part_; }

    /// What the engine has written so far, in bytes.
    std::uintmax_t size() const;

    bool isBegun() const { return size() > 0; }

    /// Tells whether the engine has written a whole PDF.
    bool isComplete() const;

    /// Gives the part the output's name. `lastCheck` is called directly before and may raise a
    /// Failure. Raises a Failure.
    void deliver(const std::function<void()>& lastCheck);

private:
    std::filesystem::path output_;
    std::filesystem::path part_;
};

/// Writes what VELLUM_ON_ERROR asks for: "text" (also without the variable) a text beside the
/// output, under its name with ".error.txt" (of a name that is too long for that, the beginning),
/// "page" a PDF with the message as well, unless the output must not be written; "none" nothing.
/// Failures are ignored.
void reportBeside(const std::filesystem::path& output, const std::string& message,
                  bool mayWriteOutput);

/// Removes the text that an earlier failure left.
void removeReport(const std::filesystem::path& output);

}  // namespace vellum
