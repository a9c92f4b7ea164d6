// Warnings about a page: missing files and characters without a font.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>

#include "page/staged_page.h"
#include "process/child_process.h"

namespace vellum {

/// Prints a warning for each local file that the page displays and that does not exist, at most 20.
void warnOfMissingFiles(const StagedPage& page, Checkpoint& checkpoint);

/// Searches for characters that no installed font has while the engine works. Does nothing where
/// the program fc-list of fontconfig is not installed.
class FontCheck {
public:
    /// The output of fc-list is written to a file in `folder`.
    FontCheck(const StagedPage& page, const std::filesystem::path& folder, Checkpoint& checkpoint);

    /// Prints a warning with the characters, unless fc-list takes longer than two seconds.
    /// `whileWaiting` is called repeatedly meanwhile and may throw a Failure.
    void finish(const std::function<void()>& whileWaiting);

private:
    std::set<char32_t> characters_;
    std::filesystem::path list_;
    std::unique_ptr<tools::ChildProcess> process_;
};

}  // namespace vellum
