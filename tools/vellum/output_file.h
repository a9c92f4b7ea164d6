// The output: a whole PDF or none, and what is said of a failure beside it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

namespace vellum {

/// The part file beside the output that an engine writes. Removed when this goes, unless delivered.
class PartFile {
public:
    /// Raises a Failure when the output cannot be written.
    explicit PartFile(const std::filesystem::path& output);
    ~PartFile();
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    const std::filesystem::path& path() const { return part_; }

    /// Tells whether the engine has written a whole PDF.
    bool isComplete() const;

    /// Gives the part the output's name. Raises a Failure.
    void deliver();

private:
    std::filesystem::path output_;
    std::filesystem::path part_;
};

/// Writes what VELLUM_ON_ERROR asks for: "text" (also without the variable) a text beside the
/// output, "page" a PDF with the message as well, unless the output must not be written; "none"
/// nothing. Failures are ignored.
void reportBeside(const std::filesystem::path& output, const std::string& message,
                  bool mayWriteOutput);

/// Removes the text that an earlier failure left.
void removeReport(const std::filesystem::path& output);

}  // namespace vellum
