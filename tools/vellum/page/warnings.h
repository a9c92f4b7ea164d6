// What is wrong with a page but does not stop its conversion.
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

/// Warns of each local file that the page shows and that does not exist, of twenty at the most.
void warnOfMissingFiles(const StagedPage& page, Checkpoint& checkpoint);

/// Looks for characters that no installed font has, while the engine works. Does nothing where
/// fontconfig's list of fonts cannot be had.
class FontCheck {
public:
    /// `folder` takes a temporary file.
    FontCheck(const StagedPage& page, const std::filesystem::path& folder, Checkpoint& checkpoint);

    /// Warns of the characters, unless the list cannot be had soon. `whileWaiting` is called again
    /// and again and may raise a Failure.
    void finish(const std::function<void()>& whileWaiting);

private:
    std::set<char32_t> characters_;
    std::filesystem::path list_;
    std::unique_ptr<tools::ChildProcess> process_;
};

}  // namespace vellum
